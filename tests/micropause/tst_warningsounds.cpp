// The warnings' beep patterns and sound files, as a recording player hears them on its simulated clock;
// and the sound-selection form: which warning each mode edits, what the option pair shows, and what OK
// and Cancel leave in the record.
#include "micropause/WarningSounds.h"
#include "micropause/frmSound.h"
#include "platform/fake/RecordingSoundPlayer.h"
#include "platform/fake/ScriptedFileDialog.h"
#include "settings/SettingsRecord.h"

#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

using namespace tarvo;

namespace {

const QString kFolder = "/opt/tarvo";

// A record whose three sound paths tell apart which one a form touched.
SettingsRecord threePaths() {
    SettingsRecord settings;
    settings.WarningSound = "/snd/start.wav";
    settings.WarningSoundX = "/snd/exercise.wav";
    settings.WarningSoundPre = "/snd/pre.wav";
    return settings;
}

// The form with a scripted file dialog, and its controls.
struct Form {
    Form(SettingsRecord& settings, int mode)
        : form(settings, mode, dialog) {}
    template <typename T>
    T* child(const char* name) const {
        return form.findChild<T*>(QLatin1String(name));
    }
    QRadioButton* beeps() const { return child<QRadioButton>("optType_0"); }
    QRadioButton* file() const { return child<QRadioButton>("optType_1"); }
    void click(const char* button) const { child<QPushButton>(button)->click(); }
    void choose(const QString& path) {
        dialog.chooseNext(path);
        click("cmdSound");
    }

    ScriptedFileDialog dialog;
    frmSound form;
};

} // namespace

class TestWarningSounds : public QObject {
    Q_OBJECT

private slots:
    // Without files, each warning's beeps and pauses; with files, the file in the warning's own mode
    // and nothing else. The notification has no file and beeps whatever the others have.
    void beepsOrFiles() {
        // The warning, the moments of its beeps, how long it holds the caller, and what it plays instead.
        const std::tuple<void (Warnings::*)(), const char*, int, const char*> cases[] = {
            {&Warnings::AudibleWarningPre, "0 250 500 750", 1000, "sync /snd/pre.wav @0"},
            {&Warnings::AudibleWarning, "0 166 1165 2164", 4162, "sync /snd/start.wav @0"},
            {&Warnings::AudibleWarningX, "0 166 332 498 1497 2496 3495", 5493, "async /snd/exercise.wav @0"},
            {&Warnings::AudibleNotification, "0", 0, "beep @0"}};
        for (const auto& [warning, beeps, lasts, withFiles] : cases) {
            SettingsRecord settings;
            RecordingSoundPlayer player;
            WarningSounds warnings(settings, player, kFolder);
            (warnings.*warning)();
            QCOMPARE(player.log().join(u' ').remove("beep @"), QLatin1String(beeps));
            QCOMPARE(player.elapsed(), lasts);

            SettingsRecord files = threePaths();
            RecordingSoundPlayer filePlayer;
            WarningSounds withFile(files, filePlayer, kFolder);
            (withFile.*warning)();
            QCOMPARE(filePlayer.log(), QStringList{QLatin1String(withFiles)});
            QCOMPARE(filePlayer.elapsed(), 0);
        }
    }

    // A bare name (even a blank) is looked up in the program folder; a path with a folder is taken as
    // it is, a "\\" being a folder separator too and a drive letter the root.
    void whereAStoredPathPoints() {
        const std::pair<const char*, const char*> cases[] = {
            {"ding.wav", "/opt/tarvo/ding.wav"},        {"/home/u/ding.wav", "/home/u/ding.wav"},
            {"snd/ding.wav", "snd/ding.wav"},           {" ", "/opt/tarvo/ "},
            {"C:\\Media\\ding.wav", "/Media/ding.wav"}, {"sub\\beep.wav", "sub/beep.wav"},
            {"C:ding.wav", "/opt/tarvo/C:ding.wav"},
        };
        for (const auto& [stored, played] : cases) {
            SettingsRecord settings;
            settings.WarningSound = QString::fromLatin1(stored);
            RecordingSoundPlayer player;
            WarningSounds(settings, player, kFolder).AudibleWarning();
            QCOMPARE(player.log(), QStringList{QStringLiteral("sync %1 @0").arg(QLatin1String(played))});
        }
    }

    // Modes 0, 1 and 2 show and edit WarningSound, WarningSoundX and WarningSoundPre.
    void modeChoosesTheWarning() {
        QString SettingsRecord::*const field[] = {
            &SettingsRecord::WarningSound, &SettingsRecord::WarningSoundX, &SettingsRecord::WarningSoundPre};
        const char* const caption[] = {"Sound card (start.wav)", "Sound card (exercise.wav)",
                                       "Sound card (pre.wav)"};
        for (int mode = 0; mode < 3; ++mode) {
            SettingsRecord settings = threePaths();
            Form f(settings, mode);
            QVERIFY(f.file()->isChecked() && !f.beeps()->isChecked());
            QCOMPARE(f.file()->text(), QLatin1String(caption[mode]));

            f.choose("/home/u/Music/gong.wav");
            QCOMPARE(f.file()->text(), "Sound card (gong.wav)");
            QCOMPARE(f.dialog.requests().size(), 1u);
            QCOMPARE(f.dialog.requests().front().filter, "Audio|*.wav|All files|*.*");
            QVERIFY(f.dialog.requests().front().fileMustExist);
            f.click("cmdOK");
            QCOMPARE(f.form.result(), int(QDialog::Accepted));
            SettingsRecord expected = threePaths(); // the other two warnings keep theirs
            expected.*field[mode] = "/home/u/Music/gong.wav";
            QVERIFY2(settings == expected, caption[mode]);
        }
    }

    // An empty path shows beeps; a mode that names no warning shows beeps and, even with a file
    // chosen, stores nothing.
    void beepsWhenThereIsNoFile() {
        for (const int mode : {1, 7, -1}) {
            SettingsRecord settings = threePaths();
            if (mode == 1)
                settings.WarningSoundX.clear();
            const SettingsRecord before = settings;
            Form f(settings, mode);
            QVERIFY(f.beeps()->isChecked() && !f.file()->isChecked());
            QCOMPARE(f.file()->text(), "Sound card audio file");
            if (mode != 1) {
                f.choose("/tmp/chime.wav");
                QCOMPARE(f.file()->text(), "Sound card (chime.wav)");
            }
            f.click("cmdOK");
            QVERIFY2(settings == before, qPrintable(QString::number(mode)));
        }
    }

    // A file chosen and then given up for beeps: OK empties the path, unless the file is taken back.
    // A cancelled file dialog, and Cancel, change nothing.
    void givingUpAChoice() {
        for (const bool takenBack : {false, true}) {
            SettingsRecord settings = threePaths();
            Form f(settings, 2);
            f.choose("/tmp/chime.wav");
            f.beeps()->click();
            QVERIFY(!f.file()->isChecked());
            if (takenBack)
                f.file()->click();
            f.click("cmdOK");
            QCOMPARE(settings.WarningSoundPre, takenBack ? QStringLiteral("/tmp/chime.wav") : QString());
        }

        SettingsRecord settings = threePaths();
        Form f(settings, 0);
        f.dialog.cancelNext();
        f.click("cmdSound");
        QVERIFY(f.file()->isChecked());
        QCOMPARE(f.file()->text(), "Sound card (start.wav)");
        f.choose("/tmp/other.wav");
        f.click("cmdCancel");
        QCOMPARE(f.form.result(), int(QDialog::Rejected));
        QVERIFY(settings == threePaths());
    }
};

QTEST_MAIN(TestWarningSounds)
#include "tst_warningsounds.moc"

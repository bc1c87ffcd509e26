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

// What a recording player hears of the warning, and how long the warning holds the caller: "beep @0
// beep @250 ... / 1000".
QString heard(void (Warnings::*warning)(), const SettingsRecord& settings) {
    RecordingSoundPlayer player;
    WarningSounds warnings(settings, player, kFolder);
    (warnings.*warning)();
    return player.log().join(u' ') + QStringLiteral(" / %1").arg(player.elapsed());
}

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
    // optType_0 and optType_1, in the order the form makes them.
    QRadioButton* option(int k) const { return form.findChildren<QRadioButton*>()[k]; }
    void click(const char* button) const { form.findChild<QPushButton*>(QLatin1String(button))->click(); }
    void choose(const QString& path) {
        dialog.chooseNext(path);
        click("cmdSound");
    }
    // The option that is on (0 beeps, 1 the file; the pair is exclusive) and the file option's caption.
    QString shows() const {
        const int on = option(0)->isChecked() == option(1)->isChecked() ? -1 : option(1)->isChecked();
        return QString::number(on) + u' ' + option(1)->text();
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
        // The warning, the moments of its beeps and how long it holds the caller, and what it plays instead.
        const std::tuple<void (Warnings::*)(), const char*, const char*> cases[] = {
            {&Warnings::AudibleWarningPre, "0 250 500 750 / 1000", "sync /snd/pre.wav @0 / 0"},
            {&Warnings::AudibleWarning, "0 166 1165 2164 / 4162", "sync /snd/start.wav @0 / 0"},
            {&Warnings::AudibleWarningX, "0 166 332 498 1497 2496 3495 / 5493",
             "async /snd/exercise.wav @0 / 0"},
            {&Warnings::AudibleNotification, "0 / 0", "beep @0 / 0"}};
        for (const auto& [warning, beeps, withFiles] : cases) {
            QCOMPARE(heard(warning, {}).remove("beep @"), QLatin1String(beeps));
            QCOMPARE(heard(warning, threePaths()), QLatin1String(withFiles));
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
            QCOMPARE(heard(&Warnings::AudibleWarning, settings),
                     QStringLiteral("sync %1 @0 / 0").arg(played));
        }
    }

    // Modes 0, 1 and 2 show and edit WarningSound, WarningSoundX and WarningSoundPre: OK stores the
    // chosen file in the mode's own path only. A mode that names no warning has no path to show: beeps,
    // and nothing is stored, even with a file chosen.
    void eachModeItsWarning() {
        QString SettingsRecord::*const field[] = {
            &SettingsRecord::WarningSound, &SettingsRecord::WarningSoundX, &SettingsRecord::WarningSoundPre};
        const char* const shown[] = {"1 Sound card (start.wav)", "1 Sound card (exercise.wav)",
                                     "1 Sound card (pre.wav)", "0 Sound card audio file"};
        for (int mode = -1; mode < 4; ++mode) {
            const bool names = mode >= 0 && mode < 3;
            SettingsRecord settings = threePaths();
            Form f(settings, mode);
            QCOMPARE(f.shows(), QLatin1String(shown[names ? mode : 3]));
            f.choose("/home/u/Music/gong.wav");
            QCOMPARE(f.shows(), "1 Sound card (gong.wav)");
            f.click("cmdOK");
            SettingsRecord expected = threePaths(); // the other warnings keep theirs
            if (names)
                expected.*field[mode] = "/home/u/Music/gong.wav";
            QVERIFY2(f.form.result() == QDialog::Accepted && settings == expected,
                     qPrintable(QString::number(mode)));
        }
    }

    // A file chosen and then given up for beeps: OK empties the path, unless the file is taken back.
    // A cancelled file dialog, and Cancel, change nothing.
    void givingUpAChoice() {
        for (const bool takenBack : {false, true}) {
            SettingsRecord settings = threePaths();
            Form f(settings, 2);
            f.choose("/tmp/chime.wav");
            f.option(0)->click();
            QCOMPARE(f.shows(), "0 Sound card (chime.wav)");
            if (takenBack)
                f.option(1)->click();
            f.click("cmdOK");
            QCOMPARE(settings.WarningSoundPre, takenBack ? QStringLiteral("/tmp/chime.wav") : QString());
        }

        SettingsRecord settings = threePaths();
        Form f(settings, 0);
        f.dialog.cancelNext();
        f.click("cmdSound");
        QCOMPARE(f.shows(), "1 Sound card (start.wav)");
        f.choose("/tmp/other.wav");
        f.click("cmdCancel");
        QVERIFY(f.form.result() == QDialog::Rejected && settings == threePaths());
    }
};

QTEST_MAIN(TestWarningSounds)
#include "tst_warningsounds.moc"

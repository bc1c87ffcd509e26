// The sound-selection form: which warning each mode edits, what the option pair shows, and what OK
// and Cancel leave in the record; and the file dialog's filter as Qt takes it.
#include "QtFileDialog.h"
#include "ScriptedFileDialog.h"
#include "SettingsRecord.h"
#include "frmSound.h" // first, to show that it stands on its own

#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QtTest>

using namespace tarvo;

namespace {

// A record whose three sound paths tell apart which one a form touched.
SettingsRecord threePaths() {
    SettingsRecord settings;
    settings.WarningSound = QStringLiteral("/snd/start.wav");
    settings.WarningSoundX = QStringLiteral("/snd/exercise.wav");
    settings.WarningSoundPre = QStringLiteral("/snd/pre.wav");
    return settings;
}

// The field each mode edits.
QString SettingsRecord::*const kField[] = {&SettingsRecord::WarningSound, &SettingsRecord::WarningSoundX,
                                           &SettingsRecord::WarningSoundPre};

struct Controls {
    explicit Controls(const frmSound& form)
        : beeps(form.findChild<QRadioButton*>(QStringLiteral("optType_0")))
        , file(form.findChild<QRadioButton*>(QStringLiteral("optType_1")))
        , cmdSound(form.findChild<QPushButton*>(QStringLiteral("cmdSound")))
        , cmdOK(form.findChild<QPushButton*>(QStringLiteral("cmdOK")))
        , cmdCancel(form.findChild<QPushButton*>(QStringLiteral("cmdCancel"))) {}
    bool found() const { return beeps && file && cmdSound && cmdOK && cmdCancel; }

    QRadioButton* beeps;
    QRadioButton* file;
    QPushButton* cmdSound;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
};

} // namespace

class TestFrmSound : public QObject {
    Q_OBJECT

private slots:
    void modeChoosesTheWarning_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("caption");
        QTest::newRow("0: micropause") << 0 << "Sound card (start.wav)";
        QTest::newRow("1: exercise") << 1 << "Sound card (exercise.wav)";
        QTest::newRow("2: pre-warning") << 2 << "Sound card (pre.wav)";
    }
    void modeChoosesTheWarning() {
        QFETCH(int, mode);
        QFETCH(QString, caption);
        SettingsRecord settings = threePaths();
        const SettingsRecord before = settings;
        ScriptedFileDialog dialog;
        frmSound form(settings, mode, dialog);
        const Controls c(form);
        QVERIFY(c.found());
        QCOMPARE(form.windowTitle(), QStringLiteral("Sound warning"));
        QCOMPARE(c.beeps->text(), QStringLiteral("Standard computer beeps"));
        QVERIFY(c.file->isChecked() && !c.beeps->isChecked());
        QCOMPARE(c.file->text(), caption);

        dialog.chooseNext(QStringLiteral("/home/u/Music/gong.wav"));
        c.cmdSound->click();
        QCOMPARE(c.file->text(), QStringLiteral("Sound card (gong.wav)"));
        QCOMPARE(dialog.requests().size(), 1u);
        const FileDialog::OpenRequest& asked = dialog.requests().front();
        QCOMPARE(asked.title, QStringLiteral("Select warning sound"));
        QCOMPARE(asked.defaultExtension, QStringLiteral(".wav"));
        QCOMPARE(asked.filter, QStringLiteral("Audio|*.wav|All files|*.*"));
        QVERIFY(asked.fileMustExist);
        c.cmdOK->click();
        QCOMPARE(form.result(), int(QDialog::Accepted));
        SettingsRecord expected = before;
        expected.*kField[mode] = QStringLiteral("/home/u/Music/gong.wav");
        QVERIFY(settings == expected); // the other two warnings keep theirs
    }

    void emptyPathShowsBeeps() {
        SettingsRecord settings = threePaths();
        settings.WarningSoundX.clear();
        const SettingsRecord before = settings;
        ScriptedFileDialog dialog;
        frmSound form(settings, 1, dialog);
        const Controls c(form);
        QVERIFY(c.beeps->isChecked() && !c.file->isChecked());
        QCOMPARE(c.file->text(), QStringLiteral("Sound card audio file"));
        c.cmdOK->click();
        QVERIFY(settings == before);
    }

    // A file chosen and then given up for beeps in the same visit: OK empties the path. Going back to
    // the file before OK still has it.
    void beepsAfterChoosingAFile() {
        SettingsRecord settings = threePaths();
        ScriptedFileDialog dialog;
        frmSound form(settings, 2, dialog);
        const Controls c(form);
        dialog.chooseNext(QStringLiteral("/tmp/chime.wav"));
        c.cmdSound->click();
        c.beeps->click();
        QVERIFY(!c.file->isChecked());
        c.cmdOK->click();
        QCOMPARE(settings.WarningSoundPre, QString());

        SettingsRecord again = threePaths();
        frmSound second(again, 2, dialog);
        const Controls d(second);
        dialog.chooseNext(QStringLiteral("/tmp/chime.wav"));
        d.cmdSound->click();
        d.beeps->click();
        d.file->click();
        d.cmdOK->click();
        QCOMPARE(again.WarningSoundPre, QStringLiteral("/tmp/chime.wav"));
    }

    void cancelsChangeNothing() {
        SettingsRecord settings = threePaths();
        ScriptedFileDialog dialog;
        frmSound form(settings, 0, dialog);
        const Controls c(form);
        // Cancelling the file dialog leaves the form as it was.
        dialog.cancelNext();
        c.cmdSound->click();
        QVERIFY(c.file->isChecked());
        QCOMPARE(c.file->text(), QStringLiteral("Sound card (start.wav)"));
        // A file chosen and then the form cancelled: the record keeps its old path.
        dialog.chooseNext(QStringLiteral("/tmp/other.wav"));
        c.cmdSound->click();
        c.cmdCancel->click();
        QCOMPARE(form.result(), int(QDialog::Rejected));
        QVERIFY(settings == threePaths());
    }

    // An unknown mode edits nothing: beeps are shown, a file can be chosen, OK stores nothing.
    void unknownModeStoresNothing_data() {
        QTest::addColumn<int>("mode");
        QTest::newRow("7") << 7;
        QTest::newRow("-1") << -1;
    }
    void unknownModeStoresNothing() {
        QFETCH(int, mode);
        SettingsRecord settings = threePaths();
        ScriptedFileDialog dialog;
        frmSound form(settings, mode, dialog);
        const Controls c(form);
        QVERIFY(c.beeps->isChecked());
        QCOMPARE(c.file->text(), QStringLiteral("Sound card audio file"));
        dialog.chooseNext(QStringLiteral("/tmp/chime.wav"));
        c.cmdSound->click();
        QCOMPARE(c.file->text(), QStringLiteral("Sound card (chime.wav)"));
        c.cmdOK->click();
        QVERIFY(settings == threePaths());
    }

    void centredOnTheScreen() {
        SettingsRecord settings = threePaths();
        ScriptedFileDialog dialog;
        frmSound form(settings, 0, dialog);
        const QRect screen = form.screen()->geometry();
        QVERIFY(form.width() < screen.width() && form.height() < screen.height());
        QCOMPARE(form.x(), screen.x() + (screen.width() - form.width()) / 2);
        QCOMPARE(form.y(), screen.y() + (screen.height() - form.height()) / 2);
    }

    void filenameOnly_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::newRow("absolute") << "/home/u/Music/gong.wav"
                                  << "gong.wav";
        QTest::newRow("bare name") << "gong.wav"
                                   << "gong.wav";
        QTest::newRow("trailing slash") << "/home/u/"
                                        << "";
        QTest::newRow("backslashes are no separator here") << "C:\\Media\\gong.wav"
                                                           << "C:\\Media\\gong.wav";
        QTest::newRow("empty") << ""
                               << "";
    }
    void filenameOnly() {
        QFETCH(QString, path);
        QFETCH(QString, name);
        QCOMPARE(frmSound::filenameOnly(path), name);
    }

    void filterForQt_data() {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QStringList>("qt");
        QTest::newRow("sound") << "Audio|*.wav|All files|*.*"
                               << QStringList{"Audio (*.wav)", "All files (*)"};
        QTest::newRow("several patterns") << "Media|*.avi; *.bmp" << QStringList{"Media (*.avi *.bmp)"};
        QTest::newRow("description without patterns") << "Audio|*.wav|Odd" << QStringList{"Audio (*.wav)"};
        QTest::newRow("none") << "" << QStringList{};
    }
    void filterForQt() {
        QFETCH(QString, filter);
        QFETCH(QStringList, qt);
        QCOMPARE(QtFileDialog::nameFilters(filter), qt);
    }
};

QTEST_MAIN(TestFrmSound)
#include "tst_frmsound.moc"

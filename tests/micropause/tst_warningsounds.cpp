// The warnings' beep patterns and sound files as a recording player hears them on its simulated
// clock; the program folder; and the real player when there is no sound server at all.
#include "CanberraSoundPlayer.h"
#include "ProgramFolder.h"
#include "RecordingSoundPlayer.h"
#include "SettingsRecord.h"
#include "WarningSounds.h" // first, to show that it stands on its own

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

using namespace tarvo;

namespace {

enum Warning { Pre, Micropause, Exercise, Notification };

void sound(Warnings& warnings, int which) {
    switch (which) {
    case Pre:
        return warnings.AudibleWarningPre();
    case Micropause:
        return warnings.AudibleWarning();
    case Exercise:
        return warnings.AudibleWarningX();
    default:
        return warnings.AudibleNotification();
    }
}

const QString kFolder = QStringLiteral("/opt/tarvo");

// Set, this test program only prints its program folder, for programFolderIsTheRealOneBehindLinks.
constexpr char kShowFolder[] = "TARVO_TEST_SHOW_PROGRAM_FOLDER";

} // namespace

class TestWarningSounds : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;

private slots:
    void initTestCase() {
        QVERIFY(dir_.isValid());
        // No sound server anywhere: a socket that does not exist, and no server started on demand.
        const QString config = dir_.filePath(QStringLiteral("client.conf"));
        QFile file(config);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("autospawn = no\n");
        file.close();
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(dir_.filePath(QStringLiteral("no-server"))));
        qputenv("PULSE_CLIENTCONFIG", QFile::encodeName(config));
    }

    void beepPatterns_data() {
        QTest::addColumn<int>("which");
        QTest::addColumn<QStringList>("heard");
        QTest::addColumn<int>("lasts");
        QTest::newRow("pre-warning") << int(Pre)
                                     << QStringList{"beep @0", "beep @250", "beep @500", "beep @750"} << 1000;
        QTest::newRow("micropause") << int(Micropause)
                                    << QStringList{"beep @0", "beep @166", "beep @1165", "beep @2164"}
                                    << 4162;
        QTest::newRow("exercise") << int(Exercise)
                                  << QStringList{"beep @0",    "beep @166",  "beep @332", "beep @498",
                                                 "beep @1497", "beep @2496", "beep @3495"}
                                  << 5493;
        QTest::newRow("notification") << int(Notification) << QStringList{"beep @0"} << 0;
    }
    void beepPatterns() {
        QFETCH(int, which);
        QFETCH(QStringList, heard);
        QFETCH(int, lasts);
        const SettingsRecord settings; // no file chosen for any warning
        RecordingSoundPlayer player;
        WarningSounds warnings(settings, player, kFolder);
        sound(warnings, which);
        QCOMPARE(player.log(), heard);
        QCOMPARE(player.elapsed(), lasts);
    }

    // Each warning plays its own file, in its own mode, without beeps or pauses; the notification
    // has no file and beeps whatever the others have.
    void filesInsteadOfBeeps_data() {
        QTest::addColumn<int>("which");
        QTest::addColumn<QStringList>("heard");
        QTest::newRow("pre-warning") << int(Pre) << QStringList{"sync /snd/pre.wav @0"};
        QTest::newRow("micropause") << int(Micropause) << QStringList{"sync /snd/start.wav @0"};
        QTest::newRow("exercise") << int(Exercise) << QStringList{"async /snd/exercise.wav @0"};
        QTest::newRow("notification") << int(Notification) << QStringList{"beep @0"};
    }
    void filesInsteadOfBeeps() {
        QFETCH(int, which);
        QFETCH(QStringList, heard);
        SettingsRecord settings;
        settings.WarningSoundPre = QStringLiteral("/snd/pre.wav");
        settings.WarningSound = QStringLiteral("/snd/start.wav");
        settings.WarningSoundX = QStringLiteral("/snd/exercise.wav");
        RecordingSoundPlayer player;
        WarningSounds warnings(settings, player, kFolder);
        sound(warnings, which);
        QCOMPARE(player.log(), heard);
        QCOMPARE(player.elapsed(), 0);
    }

    void whereAStoredPathPoints_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("played");
        QTest::newRow("bare name: program folder") << "ding.wav"
                                                   << "/opt/tarvo/ding.wav";
        QTest::newRow("absolute") << "/home/u/ding.wav"
                                  << "/home/u/ding.wav";
        QTest::newRow("relative with a folder") << "snd/ding.wav"
                                                << "snd/ding.wav";
        QTest::newRow("blank is a name, not beeps") << " "
                                                    << "/opt/tarvo/ ";
        // A path from a Windows profile has no folder of ours in it: a name that is not there.
        QTest::newRow("Windows path") << "C:\\Media\\ding.wav"
                                      << "/opt/tarvo/C:\\Media\\ding.wav";
    }
    void whereAStoredPathPoints() {
        QFETCH(QString, stored);
        QFETCH(QString, played);
        SettingsRecord settings;
        settings.WarningSound = stored;
        RecordingSoundPlayer player;
        WarningSounds(settings, player, kFolder).AudibleWarning();
        QCOMPARE(player.log(), QStringList{QStringLiteral("sync %1 @0").arg(played)});
    }

    // Started through a link in another folder, the program still finds the files beside its real self.
    void programFolderIsTheRealOneBehindLinks() {
        const QString self = QCoreApplication::applicationFilePath();
        const QString link = dir_.filePath(QStringLiteral("linked-test"));
        QVERIFY(QFile::link(self, link));
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QString::fromLatin1(kShowFolder), QStringLiteral("1"));
        child.setProcessEnvironment(env);
        child.setWorkingDirectory(dir_.path());
        child.start(link, {});
        QVERIFY(child.waitForFinished(10000));
        QCOMPARE(QString::fromLocal8Bit(child.readAllStandardOutput()).trimmed(),
                 QFileInfo(self).canonicalPath());
    }

    // With no sound server, every kind of path is silence at once, and the beeps cost nothing.
    void noServerIsSilenceAtOnce_data() {
        QTest::addColumn<QString>("path");
        const QString wav = QStringLiteral(TARVO_PROGRAM_DIR "/beep.wav");
        QVERIFY2(QFileInfo(wav).isFile(), "the build puts the fallback beep in the program folder");
        QTest::newRow("sound file") << wav;
        QTest::newRow("missing") << dir_.filePath(QStringLiteral("missing.wav"));
        QTest::newRow("folder") << dir_.path();
        const QString text = dir_.filePath(QStringLiteral("notes.wav"));
        QFile file(text);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("these are not samples\n");
        QTest::newRow("not audio") << text;
    }
    void noServerIsSilenceAtOnce() {
        QFETCH(QString, path);
        CanberraSoundPlayer player(QStringLiteral(TARVO_PROGRAM_DIR "/beep.wav"));
        QElapsedTimer clock;
        clock.start();
        player.playSync(path);
        player.playAsync(path);
        player.beep();
        QCOMPARE_LT(clock.elapsed(), 500);
    }
    void noServerKeepsThePatternsTime() {
        const SettingsRecord settings;
        CanberraSoundPlayer player(QStringLiteral(TARVO_PROGRAM_DIR "/beep.wav"));
        QElapsedTimer clock;
        clock.start();
        WarningSounds(settings, player, kFolder).AudibleWarningPre();
        QCOMPARE_GE(clock.elapsed(), 1000);
        QCOMPARE_LT(clock.elapsed(), 1400);
    }
};

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsSet(kShowFolder)) {
        std::puts(QFile::encodeName(programFolder()).constData());
        return 0;
    }
    QCoreApplication app(argc, argv);
    TestWarningSounds test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_warningsounds.moc"

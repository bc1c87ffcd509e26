// The warnings' beep patterns and sound files as a recording player hears them on its simulated
// clock, and the real player when there is no sound server at all.
#include "CanberraSoundPlayer.h"
#include "RecordingSoundPlayer.h"
#include "SettingsRecord.h"
#include "WarningSounds.h" // first, to show that it stands on its own

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

using namespace tarvo;

namespace {

const QString kFolder = QStringLiteral("/opt/tarvo");
const QString kBeepFile = QStringLiteral(TARVO_PROGRAM_DIR "/beep.wav");

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
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("autospawn = no\n") > 0);
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(dir_.filePath(QStringLiteral("no-server"))));
        qputenv("PULSE_CLIENTCONFIG", QFile::encodeName(config));
    }

    // Without files, each warning's beeps and pauses; with files, the file in the warning's own mode
    // and nothing else. The notification has no file and beeps whatever the others have.
    void beepsOrFiles() {
        struct Case {
            void (Warnings::*warning)();
            QStringList beeps;
            int lasts;
            QString withFiles;
        };
        const Case cases[] = {
            {&Warnings::AudibleWarningPre,
             {"beep @0", "beep @250", "beep @500", "beep @750"},
             1000,
             "sync /snd/pre.wav @0"},
            {&Warnings::AudibleWarning,
             {"beep @0", "beep @166", "beep @1165", "beep @2164"},
             4162,
             "sync /snd/start.wav @0"},
            {&Warnings::AudibleWarningX,
             {"beep @0", "beep @166", "beep @332", "beep @498", "beep @1497", "beep @2496", "beep @3495"},
             5493,
             "async /snd/exercise.wav @0"},
            {&Warnings::AudibleNotification, {"beep @0"}, 0, "beep @0"},
        };
        for (const Case& c : cases) {
            SettingsRecord settings;
            RecordingSoundPlayer player;
            WarningSounds warnings(settings, player, kFolder);
            (warnings.*c.warning)();
            QCOMPARE(player.log(), c.beeps);
            QCOMPARE(player.elapsed(), c.lasts);

            settings.WarningSoundPre = QStringLiteral("/snd/pre.wav");
            settings.WarningSound = QStringLiteral("/snd/start.wav");
            settings.WarningSoundX = QStringLiteral("/snd/exercise.wav");
            RecordingSoundPlayer filePlayer;
            WarningSounds withFile(settings, filePlayer, kFolder);
            (withFile.*c.warning)();
            QCOMPARE(filePlayer.log(), QStringList{c.withFiles});
            QCOMPARE(filePlayer.elapsed(), 0);
        }
    }

    // A bare name (even a blank or a Windows path) is looked up in the program folder; a path with a
    // "/" is taken as it is.
    void whereAStoredPathPoints() {
        const std::pair<const char*, const char*> cases[] = {
            {"ding.wav", "/opt/tarvo/ding.wav"},
            {"/home/u/ding.wav", "/home/u/ding.wav"},
            {"snd/ding.wav", "snd/ding.wav"},
            {" ", "/opt/tarvo/ "},
            {"C:\\Media\\ding.wav", "/opt/tarvo/C:\\Media\\ding.wav"},
        };
        for (const auto& [stored, played] : cases) {
            SettingsRecord settings;
            settings.WarningSound = QString::fromLatin1(stored);
            RecordingSoundPlayer player;
            WarningSounds(settings, player, kFolder).AudibleWarning();
            QCOMPARE(player.log(), QStringList{QStringLiteral("sync %1 @0").arg(QLatin1String(played))});
        }
    }

    // With no sound server, every kind of path is silence at once and the beeps cost nothing, while the
    // patterns keep their pauses.
    void noServerIsSilenceAtOnce() {
        QVERIFY2(QFileInfo(kBeepFile).isFile(), "the build puts the fallback beep in the program folder");
        const QString text = dir_.filePath(QStringLiteral("notes.wav"));
        QFile file(text);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("these are not samples\n") > 0);
        file.close();
        for (const QString& path :
             {kBeepFile, dir_.filePath(QStringLiteral("missing.wav")), dir_.path(), text}) {
            CanberraSoundPlayer player(kBeepFile); // a fresh one, that has not yet given up on the server
            QElapsedTimer clock;
            clock.start();
            player.playSync(path);
            player.playAsync(path);
            player.beep();
            QVERIFY2(clock.elapsed() < 500, qPrintable(path));
        }
        const SettingsRecord settings;
        CanberraSoundPlayer player(kBeepFile);
        QElapsedTimer clock;
        clock.start();
        WarningSounds(settings, player, kFolder).AudibleWarningPre();
        QCOMPARE_GE(clock.elapsed(), 1000);
        QCOMPARE_LT(clock.elapsed(), 1400);
    }
};

QTEST_GUILESS_MAIN(TestWarningSounds)
#include "tst_warningsounds.moc"

// The warnings' beep patterns and sound files as a recording player hears them on its simulated clock;
// the real player with no sound server at all; and real warnings through a private PulseAudio server
// with a null sink, whose monitor is recorded with parec (real time passes there, about 15 s).
#include "micropause/WarningSounds.h" // first, to show that it stands on its own
#include "platform/fake/RecordingSoundPlayer.h"
#include "platform/linux/CanberraSoundPlayer.h"
#include "settings/SettingsRecord.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>

using namespace tarvo;

namespace {

const QString kFolder = "/opt/tarvo";
const QString kProgramDir = QStringLiteral(TARVO_PROGRAM_DIR);
const QString kBeepFile = kProgramDir + "/beep.wav";
constexpr int kRate = 44100; // recorded mono, 16 bits

struct Sound {
    int startMs;
    int endMs;
    int lengthMs() const { return endMs - startMs + 1; }
};

// The sounds in a recording: runs of 1 ms windows at or above a quarter of the loudest peak, each
// following at least 20 ms below it. A recording never louder than 300 is silence.
QList<Sound> soundsIn(const QByteArray& bytes) {
    const int perMs = kRate / 1000;
    QList<int> envelope;
    for (qsizetype i = 0; (i + perMs) * 2 <= bytes.size(); i += perMs) {
        int peak = 0;
        for (qsizetype j = i; j < i + perMs; ++j)
            peak = std::max(peak, std::abs(int(qFromLittleEndian<qint16>(bytes.constData() + 2 * j))));
        envelope << peak;
    }
    const int loudest = envelope.isEmpty() ? 0 : *std::max_element(envelope.cbegin(), envelope.cend());
    QList<Sound> sounds;
    int quietFor = 20;
    for (int ms = 0; loudest >= 300 && ms < envelope.size(); ++ms) {
        const bool loud = envelope[ms] * 4 >= loudest;
        if (loud && quietFor >= 20)
            sounds << Sound{ms, ms};
        if (loud)
            sounds.last().endMs = ms;
        quietFor = loud ? 0 : quietFor + 1;
    }
    return sounds;
}

QString describe(const QList<Sound>& sounds) {
    QString text;
    for (const Sound& s : sounds)
        text += QStringLiteral("%1+%2 ").arg(s.startMs).arg(s.lengthMs());
    return text;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

} // namespace

class TestWarningSounds : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    QProcess server_;
    QByteArray serverAddress_; // of the private server; empty without one

    // Points this process at the private server, or skips the test when there is none.
    bool useServer() {
        if (serverAddress_.isEmpty())
            return false;
        qputenv("PULSE_SERVER", serverAddress_);
        qputenv("CANBERRA_DRIVER", "pulse");
        return true;
    }

    // Records the null sink while `play` runs: the sounds heard, and how long `play` took (-1 if nothing
    // was recorded). parec delivers its first data up to 2 s late, so nothing plays before it has; the
    // last sound's tail gets half a second.
    qint64 record(const std::function<void()>& play, QList<Sound>& sounds) {
        const QString path = dir_.filePath("recording.raw");
        QProcess parec;
        parec.setStandardOutputFile(path);
        parec.start("parec",
                    QStringLiteral("--device=tarvo_test.monitor --raw --format=s16le --rate=%1 --channels=1 "
                                   "--latency-msec=20")
                        .arg(kRate)
                        .split(u' '));
        if (!parec.waitForStarted(5000) ||
            !QTest::qWaitFor([&] { return QFileInfo(path).size() > 0; }, 10000))
            return -1;
        QElapsedTimer clock;
        clock.start();
        play();
        const qint64 took = clock.elapsed();
        QTest::qWait(500);
        parec.terminate();
        parec.waitForFinished(5000);
        QFile file(path);
        sounds = soundsIn(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
        return took;
    }

    qint64 recordMicropauseWarning(const SettingsRecord& settings, QList<Sound>& sounds) {
        CanberraSoundPlayer player(kBeepFile);
        return record([&] { WarningSounds(settings, player, kProgramDir).AudibleWarning(); }, sounds);
    }

private slots:
    void initTestCase() {
        QVERIFY(dir_.isValid());
        // This process and its children never start a sound server of their own.
        const QString config = dir_.filePath("client.conf");
        writeFile(config, "autospawn = no\n");
        qputenv("PULSE_CLIENTCONFIG", QFile::encodeName(config));
        qputenv("XDG_CACHE_HOME", QFile::encodeName(dir_.filePath("cache")));
        if (QStandardPaths::findExecutable("pulseaudio").isEmpty())
            return;
        // A server of the test's own, in its own folders, that leaves the user's sound server alone.
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name :
             {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
            env.insert(QString::fromLatin1(name), dir_.path());
        env.remove("PULSE_SERVER");
        env.remove("DBUS_SESSION_BUS_ADDRESS");
        server_.setProcessEnvironment(env);
        server_.setStandardErrorFile(dir_.filePath("pulseaudio.log"));
        const QString socket = dir_.filePath("native");
        server_.start(
            "pulseaudio",
            QProcess::splitCommand(
                QStringLiteral("--daemonize=no -n --exit-idle-time=-1 --disallow-exit --use-pid-file=no "
                               "--realtime=no --high-priority=no --disable-shm=yes --log-target=stderr "
                               "-L \"module-null-sink sink_name=tarvo_test\" "
                               "-L \"module-native-protocol-unix auth-anonymous=1 socket=%1\"")
                    .arg(socket)));
        QVERIFY(server_.waitForStarted(5000));
        qputenv("PULSE_SERVER", QFile::encodeName(QStringLiteral("unix:") + socket));
        const bool up = QTest::qWaitFor(
            [&] {
                QProcess info;
                info.start("pactl", {"info"});
                return server_.state() == QProcess::Running && info.waitForFinished(5000) &&
                       info.exitStatus() == QProcess::NormalExit && info.exitCode() == 0;
            },
            10000);
        QVERIFY2(up, "the private PulseAudio server did not come up");
        serverAddress_ = qgetenv("PULSE_SERVER");
    }

    void cleanupTestCase() {
        server_.terminate();
        server_.waitForFinished(5000);
    }

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

            settings.WarningSoundPre = "/snd/pre.wav";
            settings.WarningSound = "/snd/start.wav";
            settings.WarningSoundX = "/snd/exercise.wav";
            RecordingSoundPlayer filePlayer;
            WarningSounds withFile(settings, filePlayer, kFolder);
            (withFile.*warning)();
            QCOMPARE(filePlayer.log(), QStringList{QLatin1String(withFiles)});
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
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(dir_.filePath("no-server")));
        qunsetenv("CANBERRA_DRIVER");
        const QString text = dir_.filePath("notes.wav");
        writeFile(text, "these are not samples\n");
        for (const QString& path : {kBeepFile, dir_.filePath("missing.wav"), dir_.path(), text}) {
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

    // The micropause warning with no file, heard: 4 beeps, 166 ms apart, then 999 ms, then 999 ms. With
    // a bare file name, whatever the current folder, the program folder's file plays (the bundled 150 ms
    // tone, about 105 ms above a quarter of its peak), whole, while the warning holds the caller.
    void micropauseWarningHeard() {
        if (!useServer())
            QSKIP("pulseaudio is not installed");
        QList<Sound> sounds;
        qint64 took = recordMicropauseWarning(SettingsRecord(), sounds);
        QVERIFY2(took >= 4162 && took < 4162 + 1000, QByteArray::number(took));
        QVERIFY2(sounds.size() == 4, qPrintable(describe(sounds)));
        for (const auto& [i, gap] : {std::pair{1, 166}, std::pair{2, 999}, std::pair{3, 999}})
            QVERIFY2(std::abs(sounds[i].startMs - sounds[i - 1].startMs - gap) <= 60,
                     qPrintable(describe(sounds)));

        QVERIFY(QDir::setCurrent(dir_.path()));
        SettingsRecord settings;
        settings.WarningSound = "beep.wav";
        took = recordMicropauseWarning(settings, sounds);
        QVERIFY2(took >= 150 && took < 150 + 300, QByteArray::number(took));
        QVERIFY2(sounds.size() == 1 && std::abs(sounds[0].lengthMs() - 105) <= 15,
                 qPrintable(describe(sounds)));
    }

    // With a server there, files that cannot play are still silence at once, and no beep stands in.
    void unplayableFilesAreSilenceWithAServer() {
        if (!useServer())
            QSKIP("pulseaudio is not installed");
        const QString text = dir_.filePath("notes.wav");
        const QString riff = dir_.filePath("broken.wav");
        writeFile(text, "no samples in here\n");
        writeFile(riff, QByteArray("RIFF\x24\0\0\0WAVEjunk", 16));
        CanberraSoundPlayer player(kBeepFile);
        QList<Sound> sounds;
        const qint64 took = record(
            [&] {
                for (const QString& path : {dir_.filePath("missing.wav"), dir_.path(), text, riff}) {
                    player.playSync(path);
                    player.playAsync(path);
                }
            },
            sounds);
        QVERIFY2(took >= 0 && took < 1000, QByteArray::number(took));
        QVERIFY2(sounds.isEmpty(), qPrintable(describe(sounds)));
    }
};

QTEST_GUILESS_MAIN(TestWarningSounds)
#include "tst_warningsounds.moc"

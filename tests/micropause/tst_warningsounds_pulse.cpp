// Real warnings through a private PulseAudio server with a null sink: its monitor is recorded with
// parec, and the sounds are found in the recorded samples. Real time passes here (about 20 s).
#include "CanberraSoundPlayer.h"
#include "SettingsRecord.h"
#include "WarningSounds.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace tarvo;

namespace {

constexpr int kRate = 44100;      // recorded mono, 16 bits, at the rate of the theme's bell
constexpr int kQuietGapMs = 20;   // a sound begins when it follows at least this much quiet
constexpr int kSilencePeak = 300; // a recording that never gets louder than this is silence
// Set, the process has no sound themes (see withoutABellTheBundledToneBeeps).
constexpr char kNoThemes[] = "TARVO_TEST_NO_SOUND_THEMES";
const QString kFallbackBeep = QStringLiteral(TARVO_PROGRAM_DIR "/beep.wav");

struct Sound {
    int startMs;
    int endMs;
    int lengthMs() const { return endMs - startMs + 1; }
};

// The sounds in a recording: runs of 1 ms envelope windows at or above a quarter of the loudest peak,
// each separated from the next by at least kQuietGapMs below it. A sound's start is its onset.
QList<Sound> soundsIn(const QList<qint16>& samples) {
    const int perMs = kRate / 1000;
    QList<int> envelope;
    for (qsizetype i = 0; i + perMs <= samples.size(); i += perMs) {
        int peak = 0;
        for (int j = 0; j < perMs; ++j)
            peak = std::max(peak, std::abs(int(samples[i + j])));
        envelope << peak;
    }
    const int loudest = envelope.isEmpty() ? 0 : *std::max_element(envelope.cbegin(), envelope.cend());
    QList<Sound> sounds;
    if (loudest < kSilencePeak)
        return sounds;
    int quietFor = kQuietGapMs;
    for (int ms = 0; ms < envelope.size(); ++ms) {
        if (envelope[ms] * 4 < loudest) {
            ++quietFor;
            continue;
        }
        if (quietFor >= kQuietGapMs)
            sounds << Sound{ms, ms};
        sounds.last().endMs = ms;
        quietFor = 0;
    }
    return sounds;
}

// A daemon of the test's own, in its own folders, with nothing but a null sink and a socket. It does
// not touch the user's sound server, if there is one, and runs unattended as root too.
class PulseServer {
public:
    static bool installed() {
        return !QStandardPaths::findExecutable(QStringLiteral("pulseaudio")).isEmpty();
    }

    bool start(const QString& folder) {
        socket_ = folder + QStringLiteral("/native");
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name :
             {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
            env.insert(QString::fromLatin1(name), folder);
        env.remove(QStringLiteral("PULSE_SERVER"));
        env.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        process_.setProcessEnvironment(env);
        process_.setStandardOutputFile(QProcess::nullDevice());
        process_.setStandardErrorFile(folder + QStringLiteral("/pulseaudio.log"));
        process_.start(QStringLiteral("pulseaudio"),
                       {QStringLiteral("--daemonize=no"), QStringLiteral("-n"),
                        QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--disallow-exit"),
                        QStringLiteral("--use-pid-file=no"), QStringLiteral("--realtime=no"),
                        QStringLiteral("--high-priority=no"), QStringLiteral("--disable-shm=yes"),
                        QStringLiteral("--log-target=stderr"), QStringLiteral("-L"),
                        QStringLiteral("module-null-sink sink_name=tarvo_test"), QStringLiteral("-L"),
                        QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") + socket_});
        if (!process_.waitForStarted(5000))
            return false;
        // Ready once a client gets an answer.
        QProcessEnvironment client = QProcessEnvironment::systemEnvironment();
        client.insert(QStringLiteral("PULSE_SERVER"), server());
        for (int attempt = 0; attempt < 50 && process_.state() == QProcess::Running; ++attempt) {
            QProcess info;
            info.setProcessEnvironment(client);
            info.start(QStringLiteral("pactl"), {QStringLiteral("info")});
            if (info.waitForFinished(5000) && info.exitStatus() == QProcess::NormalExit &&
                info.exitCode() == 0)
                return true;
            QTest::qWait(200);
        }
        return false;
    }

    ~PulseServer() {
        process_.terminate();
        if (!process_.waitForFinished(5000)) {
            process_.kill();
            process_.waitForFinished(5000);
        }
    }

    QString server() const { return QStringLiteral("unix:") + socket_; }

private:
    QProcess process_;
    QString socket_;
};

// Records the null sink's monitor into a file.
class Recorder {
public:
    // False if no data arrives. parec delivers its first data up to 2 s late; nothing may play before.
    bool start(const QString& file) {
        file_ = file;
        process_.setStandardOutputFile(file);
        process_.start(QStringLiteral("parec"),
                       {QStringLiteral("--device=tarvo_test.monitor"), QStringLiteral("--raw"),
                        QStringLiteral("--format=s16le"), QStringLiteral("--rate=%1").arg(kRate),
                        QStringLiteral("--channels=1"), QStringLiteral("--latency-msec=20")});
        return process_.waitForStarted(5000) &&
               QTest::qWaitFor([&] { return QFileInfo(file).size() > 0; }, 10000);
    }

    // Waits a moment for the last sound's tail to come through, stops, and returns the sounds heard.
    QList<Sound> stop() {
        QTest::qWait(500);
        process_.terminate();
        process_.waitForFinished(5000);
        QFile file(file_);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QByteArray bytes = file.readAll();
        QList<qint16> samples(bytes.size() / 2);
        qFromLittleEndian<qint16>(bytes.constData(), samples.size(), samples.data());
        return soundsIn(samples);
    }

    ~Recorder() {
        if (process_.state() != QProcess::NotRunning) {
            process_.kill();
            process_.waitForFinished(5000);
        }
    }

private:
    QProcess process_;
    QString file_;
};

QString describe(const QList<Sound>& sounds) {
    QStringList parts;
    for (const Sound& s : sounds)
        parts << QStringLiteral("%1+%2").arg(s.startMs).arg(s.lengthMs());
    return parts.join(QStringLiteral(", "));
}

} // namespace

class TestWarningSoundsPulse : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    std::unique_ptr<PulseServer> server_;

    QString recording(const char* name) const {
        return dir_.filePath(QString::fromLatin1(name) + QStringLiteral(".raw"));
    }

private slots:
    void initTestCase() {
        if (!PulseServer::installed())
            QSKIP("pulseaudio is not installed");
        QVERIFY(dir_.isValid());
        QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("parec")).isEmpty(), "parec is missing");
        server_ = std::make_unique<PulseServer>();
        QVERIFY2(server_->start(dir_.path()), "the private PulseAudio server did not come up");
        // This process and its children talk to that server only, through PulseAudio, and never start
        // another one.
        const QString config = dir_.filePath(QStringLiteral("client.conf"));
        QFile file(config);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("autospawn = no\n");
        file.close();
        qputenv("PULSE_SERVER", server_->server().toLocal8Bit());
        qputenv("PULSE_CLIENTCONFIG", QFile::encodeName(config));
        qputenv("CANBERRA_DRIVER", "pulse");
        // Sound themes where libcanberra finds them, or none at all; its cache of look-ups is ours, not
        // the user's.
        QString cache = dir_.filePath(QStringLiteral("cache"));
        if (qEnvironmentVariableIsSet(kNoThemes)) {
            cache = dir_.filePath(QStringLiteral("no-themes"));
            QVERIFY(QDir().mkpath(cache));
            qputenv("XDG_DATA_DIRS", QFile::encodeName(cache));
            qputenv("XDG_DATA_HOME", QFile::encodeName(cache));
        }
        qputenv("XDG_CACHE_HOME", QFile::encodeName(cache));
    }

    // The micropause warning with no file: 4 beeps of the theme's bell, 166 ms apart, then 999 ms.
    void micropauseBeepsWithTheirGaps() {
        const SettingsRecord settings;
        CanberraSoundPlayer player(kFallbackBeep);
        Recorder recorder;
        QVERIFY(recorder.start(recording("beeps")));
        QElapsedTimer clock;
        clock.start();
        WarningSounds(settings, player, QStringLiteral(TARVO_PROGRAM_DIR)).AudibleWarning();
        const qint64 took = clock.elapsed();
        const QList<Sound> sounds = recorder.stop();
        QCOMPARE_GE(took, 4162);
        QCOMPARE_LT(took, 4162 + 1000);
        QVERIFY2(sounds.size() == 4, qPrintable(describe(sounds)));
        const int expected[] = {166, 999, 999};
        QStringList gaps;
        for (int i = 0; i < 3; ++i) {
            const int gap = sounds[i + 1].startMs - sounds[i].startMs;
            gaps << QString::number(gap);
            QVERIFY2(std::abs(gap - expected[i]) <= 60, qPrintable(describe(sounds)));
        }
        qInfo("beep onsets 166/999/999 ms apart measured as %s ms", qPrintable(gaps.join(u'/')));
    }

    // A desktop whose sound themes have no "bell" hears the bundled tone instead: about 105 ms at
    // full strength, where the theme's bell decays within about 70. libcanberra keeps a cache of its
    // look-ups that it opens once per process, so this runs in a process of its own that never had
    // sound themes (and has its own server, which never cached a bell).
    void withoutABellTheBundledToneBeeps() {
        if (!qEnvironmentVariableIsSet(kNoThemes)) {
            QProcess child;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QString::fromLatin1(kNoThemes), QStringLiteral("1"));
            child.setProcessEnvironment(env);
            child.start(QCoreApplication::applicationFilePath(),
                        {QString::fromLatin1(QTest::currentTestFunction())});
            QVERIFY(child.waitForFinished(60000));
            QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                     child.readAllStandardOutput().constData());
            return;
        }
        CanberraSoundPlayer player(kFallbackBeep);
        Recorder recorder;
        QVERIFY(recorder.start(recording("fallback")));
        player.beep();
        player.sleep(400);
        player.beep();
        const QList<Sound> sounds = recorder.stop();
        QVERIFY2(sounds.size() == 2, qPrintable(describe(sounds)));
        for (const Sound& s : sounds)
            QVERIFY2(std::abs(s.lengthMs() - 105) <= 15, qPrintable(describe(sounds)));
        QVERIFY2(std::abs(sounds[1].startMs - sounds[0].startMs - 400) <= 60, qPrintable(describe(sounds)));
    }

    // A bare file name plays the program folder's file (the bundled 150 ms tone), and the micropause
    // warning holds the caller until it has finished; a time-out lets a sound play on while the caller
    // goes on; the exercise warning does not wait at all.
    void playersHoldTheCallerAsTheirModeSays() {
        SettingsRecord settings;
        settings.WarningSound = settings.WarningSoundX = QStringLiteral("beep.wav");
        CanberraSoundPlayer player(kFallbackBeep);
        CanberraSoundPlayer impatient(kFallbackBeep, 40);
        WarningSounds warnings(settings, player, QStringLiteral(TARVO_PROGRAM_DIR));
        Recorder recorder;
        QVERIFY(recorder.start(recording("players")));
        QElapsedTimer clock;
        clock.start();
        warnings.AudibleWarning();
        const qint64 sync = clock.restart();
        impatient.playSync(kFallbackBeep);
        const qint64 timedOut = clock.elapsed();
        QTest::qWait(400);
        clock.restart();
        warnings.AudibleWarningX();
        const qint64 async = clock.elapsed();
        const QList<Sound> sounds = recorder.stop();

        QCOMPARE_GE(sync, 150);
        QCOMPARE_LT(sync, 150 + 300);
        QCOMPARE_GE(timedOut, 40);
        QCOMPARE_LT(timedOut, 100);
        QCOMPARE_LT(async, 40);
        QVERIFY2(sounds.size() == 3, qPrintable(describe(sounds)));
        for (const Sound& s : sounds) // each played whole
            QVERIFY2(std::abs(s.lengthMs() - 105) <= 15, qPrintable(describe(sounds)));
    }

    // With a server there, files that cannot play are still silence at once, and no beep stands in.
    void unplayableFilesAreSilence() {
        const QString text = dir_.filePath(QStringLiteral("notes.wav"));
        const QString riff = dir_.filePath(QStringLiteral("broken.wav"));
        for (const auto& [path, bytes] : {std::pair{text, QByteArray("no samples in here\n")},
                                          std::pair{riff, QByteArray("RIFF\x24\0\0\0WAVEjunk", 16)}}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
        const QStringList paths{dir_.filePath(QStringLiteral("missing.wav")), dir_.path(), text, riff};
        CanberraSoundPlayer player(kFallbackBeep);
        Recorder recorder;
        QVERIFY(recorder.start(recording("silence")));
        for (const QString& path : paths) {
            QElapsedTimer clock;
            clock.start();
            player.playSync(path);
            player.playAsync(path);
            QVERIFY2(clock.elapsed() < 500, qPrintable(path));
        }
        const QList<Sound> sounds = recorder.stop();
        QVERIFY2(sounds.isEmpty(), qPrintable(describe(sounds)));
    }
};

QTEST_GUILESS_MAIN(TestWarningSoundsPulse)
#include "tst_warningsounds_pulse.moc"

// Real warnings through a private PulseAudio server with a null sink: its monitor is recorded with
// parec, and the sounds are found in the recorded samples. Real time passes here (about 15 s).
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
#include <functional>

using namespace tarvo;

namespace {

constexpr int kRate = 44100; // recorded mono, 16 bits
const QString kProgramDir = QStringLiteral(TARVO_PROGRAM_DIR);
const QString kFallbackBeep = kProgramDir + QStringLiteral("/beep.wav");

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

} // namespace

class TestWarningSoundsPulse : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    QProcess server_;

    // Records the null sink while `play` runs: the sounds heard, and how long `play` took (-1 if nothing
    // was recorded, or parec is missing). parec delivers its first data up to 2 s late, so nothing plays
    // before it has; the last sound's tail gets half a second.
    qint64 record(const std::function<void()>& play, QList<Sound>& sounds) {
        const QString path = dir_.filePath(QStringLiteral("recording.raw"));
        QProcess parec;
        parec.setStandardOutputFile(path);
        parec.start(QStringLiteral("parec"),
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

    // A micropause warning with these settings, recorded.
    qint64 recordMicropauseWarning(const SettingsRecord& settings, QList<Sound>& sounds) {
        CanberraSoundPlayer player(kFallbackBeep);
        return record([&] { WarningSounds(settings, player, kProgramDir).AudibleWarning(); }, sounds);
    }

private slots:
    void initTestCase() {
        if (QStandardPaths::findExecutable(QStringLiteral("pulseaudio")).isEmpty())
            QSKIP("pulseaudio is not installed");
        QVERIFY(dir_.isValid());
        // A server of the test's own, in its own folders, that leaves the user's sound server alone.
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name :
             {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
            env.insert(QString::fromLatin1(name), dir_.path());
        env.remove(QStringLiteral("PULSE_SERVER"));
        env.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        server_.setProcessEnvironment(env);
        server_.setStandardErrorFile(dir_.filePath(QStringLiteral("pulseaudio.log")));
        const QString socket = dir_.filePath(QStringLiteral("native"));
        server_.start(
            QStringLiteral("pulseaudio"),
            QProcess::splitCommand(
                QStringLiteral("--daemonize=no -n --exit-idle-time=-1 --disallow-exit --use-pid-file=no "
                               "--realtime=no --high-priority=no --disable-shm=yes --log-target=stderr "
                               "-L \"module-null-sink sink_name=tarvo_test\" "
                               "-L \"module-native-protocol-unix auth-anonymous=1 socket=%1\"")
                    .arg(socket)));
        QVERIFY(server_.waitForStarted(5000));
        // This process and its children talk to that server only and never start another one.
        const QString config = dir_.filePath(QStringLiteral("client.conf"));
        QFile file(config);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("autospawn = no\n") > 0);
        file.close();
        qputenv("PULSE_SERVER", QFile::encodeName(QStringLiteral("unix:") + socket));
        qputenv("PULSE_CLIENTCONFIG", QFile::encodeName(config));
        qputenv("CANBERRA_DRIVER", "pulse");
        qputenv("XDG_CACHE_HOME", QFile::encodeName(dir_.filePath(QStringLiteral("cache"))));
        bool up = false;
        for (int attempt = 0; attempt < 50 && !up && server_.state() == QProcess::Running; ++attempt) {
            QProcess info;
            info.start(QStringLiteral("pactl"), {QStringLiteral("info")});
            up = info.waitForFinished(5000) && info.exitStatus() == QProcess::NormalExit &&
                 info.exitCode() == 0;
            if (!up)
                QTest::qWait(200);
        }
        QVERIFY2(up, "the private PulseAudio server did not come up");
    }

    void cleanupTestCase() {
        server_.terminate();
        server_.waitForFinished(5000);
    }

    // The micropause warning with no file: 4 beeps, 166 ms apart, then 999 ms, then 999 ms. With a bare
    // file name, whatever the current folder, the program folder's file plays (the bundled 150 ms
    // tone, about 105 ms above a quarter of its peak), whole, while the warning holds the caller.
    void micropauseWarning() {
        QList<Sound> sounds;
        qint64 took = recordMicropauseWarning(SettingsRecord(), sounds);
        QVERIFY2(took >= 4162 && took < 4162 + 1000, QByteArray::number(took));
        QVERIFY2(sounds.size() == 4, qPrintable(describe(sounds)));
        for (const auto& [i, gap] : {std::pair{1, 166}, std::pair{2, 999}, std::pair{3, 999}})
            QVERIFY2(std::abs(sounds[i].startMs - sounds[i - 1].startMs - gap) <= 60,
                     qPrintable(describe(sounds)));

        QVERIFY(QDir::setCurrent(dir_.path()));
        SettingsRecord settings;
        settings.WarningSound = QStringLiteral("beep.wav");
        took = recordMicropauseWarning(settings, sounds);
        QVERIFY2(took >= 150 && took < 150 + 300, QByteArray::number(took));
        QVERIFY2(sounds.size() == 1 && std::abs(sounds[0].lengthMs() - 105) <= 15,
                 qPrintable(describe(sounds)));
    }

    // With a server there, files that cannot play are still silence at once, and no beep stands in.
    void unplayableFilesAreSilence() {
        const QString text = dir_.filePath(QStringLiteral("notes.wav"));
        const QString riff = dir_.filePath(QStringLiteral("broken.wav"));
        for (const auto& [path, bytes] : {std::pair{text, QByteArray("no samples in here\n")},
                                          std::pair{riff, QByteArray("RIFF\x24\0\0\0WAVEjunk", 16)}}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        CanberraSoundPlayer player(kFallbackBeep);
        QList<Sound> sounds;
        const qint64 took = record(
            [&] {
                for (const QString& path :
                     {dir_.filePath(QStringLiteral("missing.wav")), dir_.path(), text, riff}) {
                    player.playSync(path);
                    player.playAsync(path);
                }
            },
            sounds);
        QVERIFY2(took >= 0 && took < 1000, QByteArray::number(took));
        QVERIFY2(sounds.isEmpty(), qPrintable(describe(sounds)));
    }
};

QTEST_GUILESS_MAIN(TestWarningSoundsPulse)
#include "tst_warningsounds_pulse.moc"

#include "support/PulseServer.h"

#include "support/Programs.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTest>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int kRate = 44100; // recorded mono, 16 bits

QList<PulseServer::Sound> soundsIn(const QByteArray& raw) {
    const qsizetype samples = raw.size() / 2;
    const auto level = [&](qsizetype i) {
        return std::abs(int(qFromLittleEndian<qint16>(raw.constData() + 2 * i)));
    };
    int loudest = 0;
    for (qsizetype i = 0; i < samples; ++i)
        loudest = std::max(loudest, level(i));
    QList<PulseServer::Sound> sounds;
    qsizetype lastLoud = -kRate;
    for (qsizetype i = 0; loudest >= 300 && i < samples; ++i) {
        if (level(i) * 4 < loudest)
            continue;
        const int ms = int(i * 1000 / kRate);
        if (i - lastLoud >= kRate / 50) // after 20 ms below the mark: a sound of its own
            sounds << PulseServer::Sound{ms, ms};
        sounds.last().endMs = ms;
        lastLoud = i;
    }
    return sounds;
}

} // namespace

PulseServer::PulseServer() {
    writeFile(dir_.filePath("client.conf"), "autospawn = no\n");
    qputenv("PULSE_CLIENTCONFIG", QFile::encodeName(dir_.filePath("client.conf")));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(dir_.filePath("cache")));
}

bool PulseServer::start() {
    if (QStandardPaths::findExecutable("pulseaudio").isEmpty())
        return false;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name :
         {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
        env.insert(name, dir_.path());
    env.remove("PULSE_SERVER");
    env.remove("DBUS_SESSION_BUS_ADDRESS");
    server_.setProcessEnvironment(env);
    server_.setStandardErrorFile(dir_.filePath("pulseaudio.log"));
    const QString socket = dir_.filePath("native");
    server_.start(
        "pulseaudio",
        QProcess::splitCommand(QStringLiteral("--daemonize=no -n --exit-idle-time=-1 --disallow-exit "
                                              "--use-pid-file=no --realtime=no --high-priority=no "
                                              "--disable-shm=yes --log-target=stderr "
                                              "-L \"module-null-sink sink_name=tarvo_test\" "
                                              "-L \"module-native-protocol-unix auth-anonymous=1 socket=%1\"")
                                   .arg(socket)));
    qputenv("PULSE_SERVER", QFile::encodeName("unix:" + socket));
    qputenv("CANBERRA_DRIVER", "pulse");
    // The socket is made once the modules before it, the null sink among them, are loaded.
    return QTest::qWaitFor(
               [&] { return server_.state() == QProcess::NotRunning || QFileInfo::exists(socket); }, 10000) &&
           server_.state() == QProcess::Running;
}

qint64 PulseServer::record(const std::function<void()>& play, QList<Sound>& sounds) {
    const QString path = dir_.filePath("recording.raw");
    QProcess parec;
    parec.setStandardOutputFile(path);
    parec.start("parec", {"--device=tarvo_test.monitor", "--raw", "--format=s16le", "--channels=1",
                          QStringLiteral("--rate=%1").arg(kRate), "--latency-msec=20"});
    if (!parec.waitForStarted(5000) || !QTest::qWaitFor([&] { return QFileInfo(path).size() > 0; }, 10000))
        return -1;
    QElapsedTimer clock;
    clock.start();
    play();
    const qint64 took = clock.elapsed();
    QTest::qWait(500);
    parec.terminate();
    parec.waitForFinished(5000);
    sounds = soundsIn(readFile(path));
    return took;
}

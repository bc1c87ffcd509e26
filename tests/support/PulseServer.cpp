#include "support/PulseServer.h"

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

} // namespace

PulseServer::PulseServer() {
    const QString config = dir_.filePath(QStringLiteral("client.conf"));
    QFile file(config);
    if (file.open(QIODevice::WriteOnly))
        file.write("autospawn = no\n");
    qputenv("PULSE_CLIENTCONFIG", QFile::encodeName(config));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(dir_.filePath(QStringLiteral("cache"))));
}

PulseServer::~PulseServer() {
    server_.terminate();
    server_.waitForFinished(5000);
}

bool PulseServer::start() {
    if (QStandardPaths::findExecutable(QStringLiteral("pulseaudio")).isEmpty())
        return false;
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
    if (!server_.waitForStarted(5000))
        return false;
    qputenv("PULSE_SERVER", QFile::encodeName(QStringLiteral("unix:") + socket));
    qputenv("CANBERRA_DRIVER", "pulse");
    return QTest::qWaitFor(
        [&] {
            QProcess info;
            info.start(QStringLiteral("pactl"), {QStringLiteral("info")});
            return server_.state() == QProcess::Running && info.waitForFinished(5000) &&
                   info.exitStatus() == QProcess::NormalExit && info.exitCode() == 0;
        },
        10000);
}

qint64 PulseServer::record(const std::function<void()>& play, QList<Sound>& sounds) {
    const QString path = dir_.filePath(QStringLiteral("recording.raw"));
    QProcess parec;
    parec.setStandardOutputFile(path);
    parec.start(QStringLiteral("parec"),
                QStringLiteral("--device=tarvo_test.monitor --raw --format=s16le --rate=%1 --channels=1 "
                               "--latency-msec=20")
                    .arg(kRate)
                    .split(u' '));
    if (!parec.waitForStarted(5000) || !QTest::qWaitFor([&] { return QFileInfo(path).size() > 0; }, 10000))
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

QList<PulseServer::Sound> PulseServer::soundsIn(const QByteArray& samples) {
    const int perMs = kRate / 1000;
    QList<int> envelope;
    for (qsizetype i = 0; (i + perMs) * 2 <= samples.size(); i += perMs) {
        int peak = 0;
        for (qsizetype j = i; j < i + perMs; ++j)
            peak = std::max(peak, std::abs(int(qFromLittleEndian<qint16>(samples.constData() + 2 * j))));
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

QString PulseServer::describe(const QList<Sound>& sounds) {
    QString text;
    for (const Sound& s : sounds)
        text += QStringLiteral("%1+%2 ").arg(s.startMs).arg(s.lengthMs());
    return text;
}

// The single instance between real processes: the lock as the previous-instance report, key codes
// answered after they were handled, what a killed instance leaves behind, and who may connect.
// Every test runs with a private runtime folder, which the peer processes inherit.
#include "platform/linux/LocalSingleInstance.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <cstring>
#include <memory>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace tarvo;

namespace {

QString peerPath() {
    return QCoreApplication::applicationDirPath() + "/instance_peer";
}

QByteArray runPeer(const QStringList& args) {
    QProcess peer;
    peer.start(peerPath(), args);
    if (!peer.waitForFinished(30000))
        return "no answer";
    return peer.readAllStandardOutput().trimmed();
}

// waitForFinished() fails for a process that the event loop has already seen end.
bool ends(QProcess& peer) {
    return peer.state() == QProcess::NotRunning || peer.waitForFinished(30000);
}

// Starts a peer that becomes the running instance; its handle, or 0 when it did not.
std::int32_t startHolder(QProcess& holder, const QStringList& extra = {}) {
    holder.start(peerPath(), QStringList{"hold"} + extra);
    if (!holder.waitForReadyRead(30000))
        return 0;
    const QByteArray line = holder.readLine().trimmed();
    return line.startsWith("running ") ? line.mid(8).toInt() : 0;
}

// A raw connection to an instance's socket, for senders that do not keep to the protocol.
int connectRaw(std::int32_t handle) {
    const QByteArray path = QFile::encodeName(LocalSingleInstance::socketPath(handle));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return fd;
}

// Whether the other end has closed the connection (a reset counts: unread junk was thrown away).
bool closedByInstance(int fd) {
    char c = 0;
    const ssize_t got = ::recv(fd, &c, 1, MSG_DONTWAIT);
    return got == 0 || (got < 0 && errno != EAGAIN);
}

// Hands each key code to a function of the test.
struct KeyListener : SingleInstance::Listener {
    std::function<void(int)> onKey = [](int) {};
    void keyDown(int keyCode) override { onKey(keyCode); }
};

} // namespace

class TestSingleInstance : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> runtime_;
    QByteArray savedTmpDir_ = qgetenv("TMPDIR");

private slots:
    void init() {
        runtime_ = std::make_unique<QTemporaryDir>();
        QVERIFY(runtime_->isValid());
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime_->path()));
    }
    void cleanup() {
        if (savedTmpDir_.isNull())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", savedTmpDir_);
    }

    // The program names itself differently from its executable; its lock must count either way.
    void secondProcessSeesRunningInstance() {
        for (const QStringList& holdArgs : {QStringList(), QStringList{"Tarvo Micropause"}}) {
            QProcess holder;
            const std::int32_t handle = startHolder(holder, holdArgs);
            QCOMPARE(handle, static_cast<std::int32_t>(holder.processId()));
            const QString lockPath = runtime_->filePath("tarvo-micropause.lock");
            QCOMPARE(runPeer({"probe"}), QByteArray("previous"));

            // A lock does not go stale with age while its instance lives.
            QFile lockFile(lockPath);
            QVERIFY(lockFile.open(QIODevice::ReadOnly));
            QVERIFY(lockFile.setFileTime(QDateTime::currentDateTime().addDays(-2),
                                         QFileDevice::FileModificationTime));
            LocalSingleInstance second;
            QVERIFY(second.previousInstance());

            // "shutdown": the sender is answered, the holder ends and the next start becomes the instance.
            QCOMPARE(runPeer({"send", QString::number(handle), "99"}), QByteArray("sent 1"));
            QVERIFY(ends(holder));
            QCOMPARE(holder.readAllStandardOutput().trimmed(), QByteArray("key 99"));
            QCOMPARE(holder.exitCode(), 0);
            QVERIFY(!QFile::exists(LocalSingleInstance::socketPath(handle)));
            QVERIFY(!second.previousInstance());
            QCOMPARE(runPeer({"probe"}), QByteArray("previous"));
            second.release();
            QVERIFY(!QFile::exists(lockPath));
            QCOMPARE(runPeer({"probe"}), QByteArray("none"));
        }
    }

    // Connections that send no key code are cut off without reaching the listener, and so is the oldest
    // of too many silent ones. A real sender returns only once its code has been handled; one that is
    // killed while its code is handled (the popped-up menu runs an event loop of its own meanwhile)
    // leaves the instance unhurt and serving the next.
    void senderReturnsAfterCodeWasHandled() {
        LocalSingleInstance instance;
        QVERIFY(!instance.previousInstance());
        QProcess sender;
        QList<int> handled;
        bool senderWaited = false;
        KeyListener listener;
        listener.onKey = [&](int keyCode) {
            handled.append(keyCode);
            if (keyCode == 7) {
                sender.kill();
                QEventLoop menu;
                QTimer::singleShot(300, &menu, &QEventLoop::quit);
                menu.exec();
                return;
            }
            senderWaited = sender.state() == QProcess::Running && !sender.waitForFinished(300);
        };
        instance.listen(listener);
        for (const QByteArray& junk :
             {QByteArray("abc\n"), QByteArray("12x\n"), QByteArray(100, '1'), QByteArray()}) {
            const int intruder = connectRaw(instance.handle());
            ::send(intruder, junk.constData(), static_cast<std::size_t>(junk.size()), MSG_NOSIGNAL);
            if (junk.isEmpty())
                ::shutdown(intruder, SHUT_WR);
            QTRY_VERIFY_WITH_TIMEOUT(closedByInstance(intruder), 10000);
            ::close(intruder);
        }
        std::vector<int> silent;
        for (int i = 0; i < 9; ++i)
            silent.push_back(connectRaw(instance.handle()));
        QTRY_VERIFY_WITH_TIMEOUT(closedByInstance(silent.front()), 10000);
        QVERIFY(!closedByInstance(silent.back()));
        for (const int fd : silent)
            ::close(fd);

        const QList<int> codes{7, 0, 99, -5};
        for (const int keyCode : codes) {
            senderWaited = false;
            sender.start(peerPath(), {"send", QString::number(instance.handle()), QString::number(keyCode)});
            QTRY_COMPARE_WITH_TIMEOUT(handled.size(), codes.indexOf(keyCode) + 1, 30000);
            QVERIFY(ends(sender));
            if (keyCode == 7)
                continue;
            QVERIFY2(senderWaited, "the sender returned while the key code was being handled");
            QCOMPARE(sender.readAllStandardOutput().trimmed(), QByteArray("sent 1"));
        }
        QCOMPARE(handled, codes);
    }

    // A killed instance leaves its lock and socket behind; neither holds up the next start, and a send
    // to its stale handle, or to any handle nobody listens on, fails at once.
    void killedInstanceDoesNotBlockNextStart() {
        QProcess holder;
        const std::int32_t killed = startHolder(holder);
        QVERIFY(killed > 0);
        ::kill(killed, SIGKILL);
        QVERIFY(ends(holder));
        QVERIFY(QFile::exists(LocalSingleInstance::lockFilePath()) &&
                QFile::exists(LocalSingleInstance::socketPath(killed)));

        LocalSingleInstance next;
        QVERIFY(!next.previousInstance());
        QCOMPARE(runPeer({"probe"}), QByteArray("previous"));
        const std::int32_t notASocket = 2147483000;
        QFile plain(LocalSingleInstance::socketPath(notASocket));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        for (const std::int32_t handle : {killed, 0, -1, next.handle(), notASocket}) {
            QElapsedTimer clock;
            clock.start();
            QVERIFY2(!next.sendKeyDown(handle, 0), qPrintable(QString::number(handle)));
            QVERIFY(clock.elapsed() < 1000);
        }
    }

    // A file under our socket's name was left by a gone process with our id: it is replaced.
    void socketIsPrivateToUser() {
        LocalSingleInstance instance;
        QVERIFY(!instance.previousInstance());
        const QByteArray path = QFile::encodeName(LocalSingleInstance::socketPath(instance.handle()));
        QFile stale(QString::fromLocal8Bit(path));
        QVERIFY(stale.open(QIODevice::WriteOnly));
        stale.close();
        KeyListener listener;
        instance.listen(listener);
        struct stat st {};
        QCOMPARE(::stat(path.constData(), &st), 0);
        QVERIFY(S_ISSOCK(st.st_mode));
        QCOMPARE(st.st_mode & 077, static_cast<mode_t>(0));
    }

    void fallsBackToTemporaryFolder() {
        QTemporaryDir tmp;
        qputenv("TMPDIR", QFile::encodeName(tmp.path()));
        const QString prefix = QDir(QDir(tmp.path()).canonicalPath())
                                   .filePath(QStringLiteral("tarvo-micropause-%1").arg(::getuid()));
        for (const QByteArray& runtime :
             {QByteArray(), QByteArray("run/user"), QByteArray("/nonexistent/tarvo-runtime")}) {
            if (runtime.isNull())
                qunsetenv("XDG_RUNTIME_DIR");
            else
                qputenv("XDG_RUNTIME_DIR", runtime);
            LocalSingleInstance instance;
            QVERIFY(!instance.previousInstance());
            QVERIFY2(QFile::exists(prefix + ".lock"), runtime.constData());
            KeyListener listener;
            instance.listen(listener);
            QVERIFY(QFile::exists(prefix + QStringLiteral("-%1").arg(instance.handle())));
            QCOMPARE(runPeer({"probe"}), QByteArray("previous"));
        }
    }
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"

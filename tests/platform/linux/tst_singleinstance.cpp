// The single instance between real processes: the lock as the previous-instance report and the
// holder's handle, key codes answered after they were handled, a send's time limit, what a killed
// instance leaves behind, and who may connect. Every test runs with a private runtime folder, which
// the peer processes inherit.
#include "platform/linux/LocalSingleInstance.h"
#include "support/Programs.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

using namespace tarvo;

namespace {

int umaskCalls = 0;

QString peerPath() {
    return QCoreApplication::applicationDirPath() + "/instance_peer";
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

// Whether a start of this process would find another instance (it lets go of the lock it may take).
bool anotherRuns() {
    return LocalSingleInstance().previousInstance();
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

struct KeyListener : SingleInstance::Listener {
    std::function<void(int)> onKey = [](int) {};
    void keyDown(int keyCode) override { onKey(keyCode); }
};

} // namespace

// Every umask() of this process comes here: the mask belongs to the whole process, and Qt's threads
// create files while the instance starts listening, so listening must not touch it.
extern "C" mode_t umask(mode_t mask) {
    ++umaskCalls;
    return static_cast<mode_t>(::syscall(SYS_umask, mask));
}

class TestSingleInstance : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> runtime_;

private slots:
    void init() {
        runtime_ = std::make_unique<QTemporaryDir>();
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime_->path()));
    }

    // The program names itself differently from its executable; its lock must count either way, and
    // name its holder. "shutdown" is answered and ends the holder; the lock then goes to the next start.
    void secondProcessSeesRunningInstance() {
        for (const QStringList& holdArgs : {QStringList(), QStringList{"Tarvo Micropause"}}) {
            QProcess holder;
            const std::int32_t handle = startHolder(holder, holdArgs);
            QCOMPARE(handle, static_cast<std::int32_t>(holder.processId()));
            // A lock does not go stale with age while its instance lives.
            QFile lockFile(LocalSingleInstance::lockFilePath());
            QVERIFY(lockFile.open(QIODevice::ReadOnly) &&
                    lockFile.setFileTime(QDateTime::currentDateTime().addDays(-2),
                                         QFileDevice::FileModificationTime));
            LocalSingleInstance second;
            QVERIFY(second.previousInstance());
            QCOMPARE(second.runningHandle(), handle);

            QCOMPARE(second.sendKeyDown(handle, 99), SingleInstance::Delivery::Handled);
            QVERIFY(ends(holder));
            QCOMPARE(holder.readAllStandardOutput().trimmed(), QByteArray("key 99"));
            QVERIFY(!QFile::exists(LocalSingleInstance::socketPath(handle)));
            QVERIFY(!second.previousInstance() && anotherRuns());
            QCOMPARE(second.runningHandle(), second.handle());
            second.release();
            QVERIFY(!QFile::exists(lockFile.fileName()) && !anotherRuns());
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
        for (const QByteArray& junk : {QByteArray("abc\n"), QByteArray(100, '1'), QByteArray()}) {
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
            QCOMPARE(sender.readAllStandardOutput().trimmed(), QByteArray("handled"));
        }
        QCOMPARE(handled, codes);
    }

    // An instance that does not answer (stopped here) costs a sender its time limit, no more. A killed
    // instance leaves its lock and socket behind; neither holds up the next start, and a send to its
    // stale handle, or to any handle nobody listens on, fails at once.
    void unansweredAndKilledInstances() {
        QProcess holder;
        const std::int32_t killed = startHolder(holder);
        QVERIFY(killed > 0);
        ::kill(killed, SIGSTOP);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(LocalSingleInstance(300).sendKeyDown(killed, 0), SingleInstance::Delivery::NoAnswer);
        QVERIFY(clock.elapsed() >= 300 && clock.elapsed() < 2000);
        ::kill(killed, SIGKILL);
        QVERIFY(ends(holder));
        QVERIFY(QFile::exists(LocalSingleInstance::lockFilePath()) &&
                QFile::exists(LocalSingleInstance::socketPath(killed)));

        LocalSingleInstance next;
        QVERIFY(!next.previousInstance() && anotherRuns());
        const std::int32_t notASocket = 2147483000;
        QVERIFY(writeFile(LocalSingleInstance::socketPath(notASocket), {}));
        for (const std::int32_t handle : {killed, 0, -1, next.handle(), notASocket}) {
            clock.restart();
            QCOMPARE(next.sendKeyDown(handle, 0), SingleInstance::Delivery::NotListening);
            QVERIFY(clock.elapsed() < 1000);
        }
    }

    // The socket is user-only whatever the umask, which stays untouched. A file under our socket's name
    // was left by a gone process with our id: it is replaced. Without a usable runtime folder, the lock
    // and the socket go to the temporary folder with the user id in their names.
    void socketIsPrivateToUser() {
        QTemporaryDir tmp;
        qputenv("TMPDIR", QFile::encodeName(tmp.path()));
        const QString prefix = QDir(QDir(tmp.path()).canonicalPath())
                                   .filePath(QStringLiteral("tarvo-micropause-%1").arg(::getuid()));
        const mode_t userMask = ::umask(0);
        umaskCalls = 0;
        for (const QByteArray& runtime : {runtime_->path().toLocal8Bit(), QByteArray(),
                                          QByteArray("run/user"), QByteArray("/nonexistent/tarvo-runtime")}) {
            qputenv("XDG_RUNTIME_DIR", runtime);
            LocalSingleInstance instance;
            QVERIFY(!instance.previousInstance());
            const QByteArray path = QFile::encodeName(LocalSingleInstance::socketPath(instance.handle()));
            QVERIFY(writeFile(QFile::decodeName(path), {}));
            KeyListener listener;
            instance.listen(listener);
            struct stat st {};
            QCOMPARE(::stat(path.constData(), &st), 0);
            QVERIFY2(S_ISSOCK(st.st_mode) && (st.st_mode & 0777) == 0600, runtime.constData());
            QCOMPARE(path.startsWith(QFile::encodeName(prefix)), runtime != runtime_->path().toLocal8Bit());
            QVERIFY(QFile::exists(LocalSingleInstance::lockFilePath()) && anotherRuns());
        }
        QCOMPARE(umaskCalls, 0);
        ::umask(userMask);
        qunsetenv("TMPDIR");
    }
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"

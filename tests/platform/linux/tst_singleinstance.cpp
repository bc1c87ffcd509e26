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
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

using namespace tarvo;
using Delivery = SingleInstance::Delivery;

namespace {

int umaskCalls = 0;

// Starts a peer that becomes the running instance, calling itself `name` if given; its handle, or 0
// when it did not.
std::int32_t startHolder(QProcess& holder, const QStringList& name = {}) {
    holder.start(QCoreApplication::applicationDirPath() + "/instance_peer", name);
    const QByteArray line = holder.waitForReadyRead(30000) ? holder.readLine().trimmed() : QByteArray();
    return line.startsWith("running ") ? line.mid(8).toInt() : 0;
}

// waitForFinished() fails for a process that the event loop has already seen end.
bool ends(QProcess& peer) {
    return peer.state() == QProcess::NotRunning || peer.waitForFinished(30000);
}

// Whether a start of this process would find another instance (it lets go of the lock it may take).
bool anotherRuns() {
    return LocalSingleInstance().previousInstance();
}

// A raw connection to an instance's socket that sends `junk`, for senders that do not keep to the
// protocol.
int connectRaw(std::int32_t handle, const QByteArray& junk = {}) {
    sockaddr_un address{AF_UNIX, {}};
    qstrncpy(address.sun_path, QFile::encodeName(LocalSingleInstance::socketPath(handle)),
             sizeof address.sun_path);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::send(fd, junk.constData(), static_cast<std::size_t>(junk.size()), MSG_NOSIGNAL);
    return fd;
}

// Whether the other end has closed the connection (a reset counts: unread junk was thrown away).
bool closedByInstance(int fd) {
    char c = 0;
    const ssize_t got = ::recv(fd, &c, 1, MSG_DONTWAIT);
    return got == 0 || (got < 0 && errno != EAGAIN);
}

struct KeyListener : SingleInstance::Listener {
    std::function<void(int)> onKey;
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

    // The lock counts whatever the program calls itself, however old it is, and names its holder. A
    // holder that does not answer (stopped here) costs a sender its time limit, no more; one busy with
    // the key code (its menu open) keeps the sender until it is done; "shutdown" is answered and ends
    // it, and the lock goes to the next start. A killed instance leaves its lock and socket behind; neither
    // holds up the next start, and a send to its stale handle, or to any handle nobody listens on, fails at
    // once.
    void runningStoppedEndedAndKilledInstances() {
        QProcess holder;
        const std::int32_t handle = startHolder(holder, {"Tarvo Micropause"});
        QCOMPARE(handle, static_cast<std::int32_t>(holder.processId()));
        QFile lockFile(LocalSingleInstance::lockFilePath());
        QVERIFY(lockFile.open(QIODevice::ReadOnly) &&
                lockFile.setFileTime(QDateTime::currentDateTime().addDays(-2),
                                     QFileDevice::FileModificationTime));
        LocalSingleInstance second(300);
        QVERIFY(second.previousInstance() && second.runningHandle() == handle);
        ::kill(handle, SIGSTOP);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(second.sendKeyDown(handle, 0), Delivery::NoAnswer);
        QVERIFY(clock.elapsed() >= 300 && clock.elapsed() < 2000);
        ::kill(handle, SIGCONT);
        clock.restart(); // a menu kept open longer than the limit: the sender waits for its end
        QCOMPARE(second.sendKeyDown(handle, 5), Delivery::Handled);
        QVERIFY(clock.elapsed() >= 1000);
        QCOMPARE(second.sendKeyDown(handle, 99), Delivery::Handled);
        QVERIFY(ends(holder) && holder.readAllStandardOutput() == "key 0\nkey 5\nkey 99\n");
        QVERIFY(!QFile::exists(LocalSingleInstance::socketPath(handle)));
        QVERIFY(!second.previousInstance() && anotherRuns() && second.runningHandle() == second.handle());
        second.release();
        QVERIFY(!QFile::exists(lockFile.fileName()) && !anotherRuns());

        const std::int32_t killed = startHolder(holder);
        QVERIFY(killed > 0 && anotherRuns());
        ::kill(killed, SIGKILL);
        QVERIFY(ends(holder) && QFile::exists(lockFile.fileName()) &&
                QFile::exists(LocalSingleInstance::socketPath(killed)));
        QVERIFY(!second.previousInstance() && anotherRuns());
        const std::int32_t notASocket = 2147483000;
        QVERIFY(writeFile(LocalSingleInstance::socketPath(notASocket), {}));
        clock.restart();
        for (const std::int32_t stale : {killed, 0, -1, second.handle(), notASocket})
            QCOMPARE(second.sendKeyDown(stale, 0), Delivery::NotListening);
        QVERIFY(clock.elapsed() < 1000);

        // A lock file that names nobody (a start that ended before writing its id) is taken for a
        // start in progress while fresh, and for nobody's once older than a moment.
        second.release();
        lockFile.close();
        QVERIFY(writeFile(lockFile.fileName(), {}));
        QVERIFY(anotherRuns());
        QVERIFY(lockFile.open(QIODevice::ReadOnly) &&
                lockFile.setFileTime(QDateTime::currentDateTime().addSecs(-10),
                                     QFileDevice::FileModificationTime));
        lockFile.close();
        QVERIFY(!second.previousInstance() && anotherRuns());
    }

    // Connections that send no key code are cut off without reaching the listener, and so is the oldest
    // of too many silent ones. A sender that goes away while its code is handled (the popped-up menu
    // runs an event loop of its own meanwhile) leaves the instance unhurt and answering the next.
    void sendersThatDoNotKeepToTheProtocol() {
        LocalSingleInstance instance;
        QVERIFY(!instance.previousInstance());
        int leaving = -1;
        QList<int> handled;
        KeyListener listener;
        listener.onKey = [&](int keyCode) {
            handled.append(keyCode);
            if (keyCode == 7) {
                ::close(leaving);
                QEventLoop menu;
                QTimer::singleShot(300, &menu, &QEventLoop::quit);
                menu.exec();
            }
        };
        instance.listen(listener);
        for (const QByteArray& junk : {QByteArray("abc\n"), QByteArray(100, '1'), QByteArray()}) {
            const int intruder = connectRaw(instance.handle(), junk);
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

        leaving = connectRaw(instance.handle(), "7\n");
        QTRY_COMPARE(handled, QList<int>{7});
        const int next = connectRaw(instance.handle(), "-5\n");
        QTRY_COMPARE(handled, QList<int>({7, -5}));
        char answer[9] = {};
        QVERIFY(::recv(next, answer, sizeof answer, MSG_WAITALL) == 9 &&
                QByteArray(answer, 9) == "taken\nok\n");
        ::close(next);
    }

    // The socket is user-only whatever the umask, which stays untouched. A file under our socket's name
    // was left by a gone process with our id: it is replaced. Without a usable runtime folder, the lock
    // and the socket go to the temporary folder with the user id in their names.
    void socketIsPrivateToUser() {
        QTemporaryDir tmp;
        qputenv("TMPDIR", QFile::encodeName(tmp.path()));
        const QByteArray fallback = QFile::encodeName(
            QDir(tmp.path()).canonicalPath() + QStringLiteral("/tarvo-micropause-%1-").arg(::getuid()));
        const mode_t userMask = ::umask(0);
        for (const QByteArray& runtime : {QFile::encodeName(runtime_->path()), QByteArray(),
                                          QByteArray("run/user"), QByteArray("/nonexistent/tarvo-runtime")}) {
            qputenv("XDG_RUNTIME_DIR", runtime);
            LocalSingleInstance instance;
            QVERIFY(!instance.previousInstance() && anotherRuns());
            const QByteArray path = QFile::encodeName(LocalSingleInstance::socketPath(instance.handle()));
            QVERIFY(writeFile(QFile::decodeName(path), {}));
            KeyListener listener;
            instance.listen(listener);
            struct stat st {};
            QVERIFY2(::stat(path, &st) == 0 && S_ISSOCK(st.st_mode) && (st.st_mode & 0777) == 0600, path);
            QCOMPARE(path.startsWith(fallback), runtime != QFile::encodeName(runtime_->path()));
        }
        QCOMPARE(umaskCalls, 1); // this test's own: listening made none
        ::umask(userMask);
        qunsetenv("TMPDIR");
    }
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"

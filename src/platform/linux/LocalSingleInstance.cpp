#include "platform/linux/LocalSingleInstance.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace tarvo {

namespace {

// A key code is a short decimal number; a sender that writes more than this without a line end is
// not one of ours and is cut off before it fills our memory.
constexpr std::size_t kMaxLineLength = 32;

// Connections that connect and then say nothing are not ours either; beyond this many waiting at
// once, the oldest is cut off, so that such a sender cannot use up the instance's file descriptors.
constexpr std::size_t kMaxWaitingConnections = 8;

// The runtime folder is private to the user and cleared at log-out, so the names need nothing more.
// The temporary folder is shared by all users: the user id in the names keeps two users' instances
// apart (and keeps one user from blocking the other with a file of the same name).
QString namePrefix() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QDir::isAbsolutePath(runtime) && QFileInfo(runtime).isDir())
        return QDir(runtime).filePath(QStringLiteral("tarvo-micropause"));
    return QDir(QDir::tempPath()).filePath(QStringLiteral("tarvo-micropause-%1").arg(::getuid()));
}

// The socket address of a path; false when the path does not fit into one.
bool socketAddress(const QString& path, sockaddr_un& address) {
    const QByteArray name = QFile::encodeName(path);
    address = {};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || static_cast<std::size_t>(name.size()) >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    return true;
}

// A lock file that names no holder is left by a start that ended between making the file and writing
// its process id into it (which follow each other at once). Older than this, it is nobody's.
constexpr int kUnnamedLockGraceMs = 5000;

// Removes a lock file that names no holder and is older than the grace time, under a second lock so that
// two starts that both found it do not remove each other's fresh lock; true when it was removed.
bool removeUnnamedLock(QLockFile& lock, const QString& path) {
    const auto unnamed = [&] {
        qint64 pid = 0;
        QString host, application;
        const QDateTime modified = QFileInfo(path).lastModified();
        return !lock.getLockInfo(&pid, &host, &application) && modified.isValid() &&
               modified.msecsTo(QDateTime::currentDateTime()) >= kUnnamedLockGraceMs;
    };
    if (!unnamed())
        return false;
    QLockFile removal(path + QStringLiteral(".rmlock"));
    return removal.tryLock(0) && unnamed() && lock.removeStaleLockFile();
}

// The instance's answers to a key code: being handled, and handled.
constexpr char kTaken[] = "taken\n";
constexpr char kHandled[] = "ok\n";

// Waits until the socket is readable or the deadline passes; false on time-out.
bool waitReadable(int fd, const QDeadlineTimer& deadline) {
    for (;;) {
        pollfd wanted{fd, POLLIN, 0};
        const int result = ::poll(&wanted, 1, static_cast<int>(deadline.remainingTime()));
        if (result >= 0)
            return result > 0;
        if (errno != EINTR)
            return true; // let the read that follows report the failure
    }
}

class FileDescriptor {
public:
    explicit FileDescriptor(int fd)
        : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ >= 0)
            ::close(fd_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

} // namespace

// One sender's connection while its key code arrives. The socket closes with it.
struct LocalSingleInstance::Connection {
    explicit Connection(int socket)
        : fd(socket)
        , notifier(socket, QSocketNotifier::Read) {}

    FileDescriptor fd;
    QSocketNotifier notifier;
    char line[kMaxLineLength] = {};
    std::size_t size = 0;
};

LocalSingleInstance::LocalSingleInstance(int replyTimeoutMs)
    : replyTimeoutMs_(replyTimeoutMs) {}

LocalSingleInstance::~LocalSingleInstance() {
    release();
}

QString LocalSingleInstance::lockFilePath() {
    return namePrefix() + QStringLiteral(".lock");
}

QString LocalSingleInstance::socketPath(std::int32_t handle) {
    return namePrefix() + QStringLiteral("-%1").arg(handle);
}

bool LocalSingleInstance::previousInstance() {
    if (lock_)
        return false; // this is the running instance
    auto lock = std::make_unique<QLockFile>(lockFilePath());
    // Only a holder that is gone makes the lock stale. The default age limit would let a second start
    // take the lock of an instance that has simply been running for more than half a minute.
    lock->setStaleLockTime(0);
    if (lock->tryLock(0) || (lock->error() == QLockFile::LockFailedError &&
                             removeUnnamedLock(*lock, lockFilePath()) && lock->tryLock(0))) {
        lock_ = std::move(lock);
        return false;
    }
    if (lock->error() == QLockFile::LockFailedError)
        return true;
    // The folder cannot hold a lock (not writable, full). Whether another instance runs is then
    // unknown; starting without the lock is better than a program that never starts.
    qWarning("Tarvo Micropause: cannot create the instance lock %s", qPrintable(lockFilePath()));
    return false;
}

std::int32_t LocalSingleInstance::handle() const {
    return static_cast<std::int32_t>(::getpid());
}

void LocalSingleInstance::listen(Listener& listener) {
    listener_ = &listener;
    if (listenFd_ >= 0 || openListeningSocket())
        return;
    qWarning("Tarvo Micropause: cannot listen on %s: %s", qPrintable(socketPath(handle())),
             std::strerror(errno));
}

bool LocalSingleInstance::openListeningSocket() {
    const QString path = socketPath(handle());
    sockaddr_un address{};
    if (!socketAddress(path, address)) {
        errno = ENAMETOOLONG;
        return false;
    }
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0)
        return false;
    // The name carries our own process id, so a file under it was left by a process that had the same
    // id before and is gone: it is ours to replace.
    ::unlink(address.sun_path);
    // The socket file is user-only from the moment it exists: in the shared temporary folder another
    // user must not get in even between bind and a chmod (connecting to a socket file takes write
    // permission on it, on Linux). Linux's bind creates the file with the mode of the socket's own
    // inode less the umask, and fchmod on a socket sets that inode's mode: so the file is born 0600 or
    // stricter, whatever the umask. The umask itself is left alone: it belongs to the whole process,
    // and Qt's threads (D-Bus, the X event reader) create files while this runs. The chmod after bind
    // only puts back what a umask stricter than 077 took away.
    if (::fchmod(fd, 0600) != 0 ||
        ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::chmod(address.sun_path, 0600) != 0 || ::listen(fd, SOMAXCONN) != 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return false;
    }
    listenFd_ = fd;
    listenPath_ = path;
    listenNotifier_ = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    QObject::connect(listenNotifier_.get(), &QSocketNotifier::activated, listenNotifier_.get(),
                     [this] { accept(); });
    return true;
}

void LocalSingleInstance::closeListeningSocket() {
    if (listenFd_ < 0)
        return;
    listenNotifier_.reset();
    ::close(listenFd_);
    listenFd_ = -1;
    QFile::remove(listenPath_);
}

void LocalSingleInstance::accept() {
    for (;;) {
        const int fd = ::accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (fd < 0)
            return; // nothing more waiting (or the sender gave up before we got to it)
        if (connections_.size() >= kMaxWaitingConnections)
            connections_.erase(connections_.begin());
        auto connection = std::make_unique<Connection>(fd);
        Connection* raw = connection.get();
        QObject::connect(&raw->notifier, &QSocketNotifier::activated, &raw->notifier,
                         [this, raw] { readFrom(raw); });
        connections_.push_back(std::move(connection));
    }
}

std::unique_ptr<LocalSingleInstance::Connection> LocalSingleInstance::takeConnection(Connection* connection) {
    const auto found = std::find_if(connections_.begin(), connections_.end(),
                                    [connection](const auto& c) { return c.get() == connection; });
    std::unique_ptr<Connection> taken = std::move(*found);
    connections_.erase(found);
    taken->notifier.setEnabled(false);
    return taken;
}

void LocalSingleInstance::readFrom(Connection* connection) {
    const ssize_t got = ::recv(connection->fd.get(), connection->line + connection->size,
                               sizeof connection->line - connection->size, MSG_DONTWAIT);
    if (got < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (got <= 0) {
        takeConnection(connection); // gone before its line was complete: closed unanswered
        return;
    }
    connection->size += static_cast<std::size_t>(got);
    const char* end = static_cast<const char*>(std::memchr(connection->line, '\n', connection->size));
    if (end == nullptr) {
        if (connection->size == sizeof connection->line)
            takeConnection(connection);
        return;
    }
    // One key code per connection: whatever follows the line is ignored. From here on the connection
    // belongs to this call alone.
    const std::unique_ptr<Connection> owned = takeConnection(connection);
    bool isNumber = false;
    const int keyCode = QByteArray::fromRawData(owned->line, static_cast<qsizetype>(end - owned->line))
                            .trimmed()
                            .toInt(&isNumber);
    if (!isNumber)
        return;
    // A sender that went away meanwhile gets nothing and costs nothing: no signal, no error.
    const auto say = [&owned](const char* line) {
        (void)::send(owned->fd.get(), line, std::strlen(line), MSG_NOSIGNAL | MSG_DONTWAIT);
    };
    // The popped-up menu stays for as long as the user keeps it open: the sender learns at once that
    // its key code is being handled, and is answered when that is over. (A shut-down ends the
    // instance, which closes the connection: that is its answer.)
    if (keyCode != kShutdownKey)
        say(kTaken);
    if (listener_)
        listener_->keyDown(keyCode);
    say(kHandled);
}

std::int32_t LocalSingleInstance::runningHandle() const {
    if (lock_)
        return handle();
    qint64 pid = 0;
    QString host;
    QString application;
    if (!QLockFile(lockFilePath()).getLockInfo(&pid, &host, &application) || pid <= 0 ||
        pid > std::numeric_limits<std::int32_t>::max())
        return 0;
    return static_cast<std::int32_t>(pid);
}

SingleInstance::Delivery LocalSingleInstance::sendKeyDown(std::int32_t handle, int keyCode) {
    sockaddr_un address{};
    if (handle <= 0 || !socketAddress(socketPath(handle), address))
        return Delivery::NotListening;
    const QDeadlineTimer deadline(replyTimeoutMs_);
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    // A missing socket, a plain file, or one left by an instance that is gone fails here at once.
    if (socket.get() < 0 ||
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return Delivery::NotListening;
    const QByteArray line = QByteArray::number(keyCode) + '\n';
    if (::send(socket.get(), line.constData(), static_cast<std::size_t>(line.size()), MSG_NOSIGNAL) !=
        line.size())
        return Delivery::NotListening;
    // The instance has the key code. Wait for its answer within the time limit; once it says the code
    // is being handled (a menu that the user keeps open), for as long as that takes, as a sent
    // message waits for its window's handling. An instance that ends while handling the code
    // (shut-down) closes the connection without an answer, which ends the wait just as well.
    QDeadlineTimer limit = deadline;
    char answer[16];
    std::size_t size = 0;
    for (;;) {
        if (!waitReadable(socket.get(), limit))
            return Delivery::NoAnswer;
        const ssize_t got = ::recv(socket.get(), answer + size, sizeof answer - size, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return Delivery::Handled;
        size += static_cast<std::size_t>(got);
        const std::string_view said(answer, size);
        if (said.find(kHandled) != std::string_view::npos || size == sizeof answer)
            return Delivery::Handled;
        if (said.find(kTaken) != std::string_view::npos)
            limit = QDeadlineTimer(QDeadlineTimer::Forever);
    }
}

void LocalSingleInstance::release() {
    listener_ = nullptr;
    closeListeningSocket();
    connections_.clear();
    lock_.reset(); // unlocks and removes the lock file
}

} // namespace tarvo

#include "platform/linux/LocalSingleInstance.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QPointer>

#include <unistd.h>

namespace tarvo {

namespace {

// A key code is a short decimal number; a sender that writes more than this without a line end is
// not one of ours and is cut off before it fills our memory.
constexpr qint64 kMaxLineLength = 32;

// The runtime folder is private to the user and cleared at log-out, so the names need nothing more.
// The temporary folder is shared by all users: the user id in the names keeps two users' instances
// apart (and keeps one user from blocking the other with a file of the same name).
QString namePrefix() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QDir::isAbsolutePath(runtime) && QFileInfo(runtime).isDir())
        return QDir(runtime).filePath(QStringLiteral("tarvo-micropause"));
    return QDir(QDir::tempPath()).filePath(QStringLiteral("tarvo-micropause-%1").arg(::getuid()));
}

int remainingMs(const QDeadlineTimer& deadline) {
    return static_cast<int>(deadline.remainingTime());
}

} // namespace

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
    if (lock->tryLock(0)) {
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
    return static_cast<std::int32_t>(QCoreApplication::applicationPid());
}

void LocalSingleInstance::listen(Listener& listener) {
    listener_ = &listener;
    if (server_ && server_->isListening())
        return;
    if (!server_) {
        server_ = std::make_unique<QLocalServer>();
        server_->setSocketOptions(QLocalServer::UserAccessOption);
        QObject::connect(server_.get(), &QLocalServer::newConnection, server_.get(), [this] { accept(); });
    }
    const QString path = socketPath(handle());
    // The name carries our own process id, so a file under it was left by a process that had the same
    // id before and is gone: it is ours to replace.
    QLocalServer::removeServer(path);
    if (!server_->listen(path))
        qWarning("Tarvo Micropause: cannot listen on %s: %s", qPrintable(path),
                 qPrintable(server_->errorString()));
}

void LocalSingleInstance::accept() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] { answer(socket); });
    }
}

void LocalSingleInstance::answer(QLocalSocket* socket) {
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() > kMaxLineLength)
            socket->abort();
        return;
    }
    // One key code per connection: whatever follows the line is ignored.
    QObject::disconnect(socket, &QLocalSocket::readyRead, nullptr, nullptr);
    bool isNumber = false;
    const int keyCode = socket->readLine().trimmed().toInt(&isNumber);
    if (!isNumber) {
        socket->abort();
        return;
    }
    // The listener may release() this instance (shut-down); the guard notices the socket going with it.
    const QPointer<QLocalSocket> guard(socket);
    if (listener_)
        listener_->keyDown(keyCode);
    if (!guard || guard->state() != QLocalSocket::ConnectedState)
        return;
    // flush() hands the answer to the kernel at once, so it reaches the sender even when the callback
    // asked the event loop to end and the process is gone before the socket would next be serviced.
    guard->write("ok\n");
    guard->flush();
    guard->disconnectFromServer();
}

bool LocalSingleInstance::sendKeyDown(std::int32_t handle, int keyCode) {
    if (handle <= 0)
        return false;
    const QDeadlineTimer deadline(replyTimeoutMs_);
    QLocalSocket socket;
    // A missing socket, or one left by an instance that is gone, fails here at once.
    socket.connectToServer(socketPath(handle));
    if (!socket.waitForConnected(remainingMs(deadline)))
        return false;
    socket.write(QByteArray::number(keyCode) + '\n');
    socket.flush();
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(remainingMs(deadline)))
            return false;
    }
    // The instance has the key code. Wait for its answer; an instance that ends while handling the
    // code (shut-down) closes the connection without one, which ends the wait just as well.
    while (!socket.canReadLine() && socket.state() == QLocalSocket::ConnectedState) {
        if (!socket.waitForReadyRead(remainingMs(deadline)))
            break;
    }
    if (!socket.canReadLine() && socket.state() == QLocalSocket::ConnectedState)
        qWarning("Tarvo Micropause: the running instance did not answer within %d ms", replyTimeoutMs_);
    return true;
}

void LocalSingleInstance::release() {
    listener_ = nullptr;
    // The server object stays until destruction: a connection being answered belongs to it.
    if (server_)
        server_->close();
    lock_.reset(); // unlocks and removes the lock file
}

} // namespace tarvo

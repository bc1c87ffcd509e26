#pragma once

#include "core/SingleInstance.h"

#include <QString>

#include <memory>
#include <vector>

class QLockFile;
class QSocketNotifier;

namespace tarvo {

// Single instance through a lock file and a Unix socket, both in the user's runtime folder
// ($XDG_RUNTIME_DIR; without one, the temporary folder with the user id in the names, since that
// folder is shared by every user).
//
// The lock "tarvo-micropause.lock" is held for the life of the instance. Whether a lock counts is
// decided by the process id written in it alone: the lock of a process that is gone (killed, crashed)
// is taken over, the lock of a live one never is, however old it is.
//
// The handle is the process id. The instance listens on the socket "tarvo-micropause-<handle>",
// accessible to its own user only. A sender writes the key code as one decimal line; the instance
// hands it to the listener and then answers "ok" on one line, which the sender waits for. The lock
// file names the process that holds it, so a sender can tell whether a handle is the running
// instance's.
//
// The instance's side is a plain socket under socket notifiers on the user-interface thread. A
// connection is taken out of the watched set before its key code is handed on, so that whatever the
// sender does meanwhile (it may be killed while the popped-up menu runs its own event loop) cannot
// reach it: the answer goes to a socket that is still ours, and a sender that is gone simply misses it.
// The sending side needs no event loop and no display: it blocks on the socket with a time limit.
class LocalSingleInstance : public SingleInstance {
public:
    // How long a sender waits for the answer before it gives up and ends anyway. The running
    // instance answers only from its event loop, which a micropause's beep pattern or a first-run
    // import may hold for a while.
    static constexpr int kReplyTimeoutMs = 30000;

    explicit LocalSingleInstance(int replyTimeoutMs = kReplyTimeoutMs);
    ~LocalSingleInstance() override;
    LocalSingleInstance(const LocalSingleInstance&) = delete;
    LocalSingleInstance& operator=(const LocalSingleInstance&) = delete;

    bool previousInstance() override;
    std::int32_t handle() const override;
    void listen(Listener& listener) override;
    std::int32_t runningHandle() const override;
    Delivery sendKeyDown(std::int32_t handle, int keyCode) override;
    void release() override;

    // Where the instance lock and the socket of the instance with this handle are, as the current
    // environment places them.
    static QString lockFilePath();
    static QString socketPath(std::int32_t handle);

private:
    struct Connection;

    bool openListeningSocket();
    void closeListeningSocket();
    void accept();
    void readFrom(Connection* connection);
    std::unique_ptr<Connection> takeConnection(Connection* connection);

    int replyTimeoutMs_;
    std::unique_ptr<QLockFile> lock_;
    int listenFd_ = -1;
    QString listenPath_;
    std::unique_ptr<QSocketNotifier> listenNotifier_;
    std::vector<std::unique_ptr<Connection>> connections_;
    Listener* listener_ = nullptr;
};

} // namespace tarvo

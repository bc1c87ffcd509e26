#pragma once

#include "core/SingleInstance.h"

#include <QString>

#include <memory>

class QLocalServer;
class QLocalSocket;
class QLockFile;

namespace tarvo {

// Single instance through a lock file and a local socket, both in the user's runtime folder
// ($XDG_RUNTIME_DIR; without one, the temporary folder with the user id in the names, since that
// folder is shared by every user).
//
// The lock "tarvo-micropause.lock" is held for the life of the instance. Whether a lock counts is
// decided by the process id written in it alone: the lock of a process that is gone (killed, crashed)
// is taken over, the lock of a live one never is, however old it is.
//
// The handle is the process id. The instance listens on the socket "tarvo-micropause-<handle>",
// accessible to its own user only. A sender writes the key code as one decimal line; the instance
// hands it to the callback and then answers "ok" on one line, which the sender waits for. All of the
// instance's side runs on the user-interface thread, from its event loop.
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
    bool sendKeyDown(std::int32_t handle, int keyCode) override;
    void release() override;

    // Where the instance lock and the socket of the instance with this handle are, as the current
    // environment places them.
    static QString lockFilePath();
    static QString socketPath(std::int32_t handle);

private:
    void accept();
    void answer(QLocalSocket* socket);

    int replyTimeoutMs_;
    std::unique_ptr<QLockFile> lock_;
    std::unique_ptr<QLocalServer> server_;
    Listener* listener_ = nullptr;
};

} // namespace tarvo

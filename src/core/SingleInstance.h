#pragma once

#include <cstdint>

namespace tarvo {

// One running instance per user, and the way a second start talks to it.
//
// The running instance is identified by a handle that start-up stores under "tray" in "Options"; a
// second start reads it back and sends a key code to that instance: kShutdownKey asks it to shut down,
// any other code to pop up its tray menu. The send is synchronous: it returns only after the running
// instance has handled the code (or at once, when nothing listens under that handle, or when the
// sender's time limit has passed).
class SingleInstance {
public:
    // The key code that asks the running instance to shut down.
    static constexpr int kShutdownKey = 99;

    // Where the key codes sent to this instance go.
    class Listener {
    public:
        virtual void keyDown(int keyCode) = 0;

    protected:
        ~Listener() = default;
    };

    virtual ~SingleInstance() = default;

    // Whether another instance of the program is running for this user. When none is, this instance
    // becomes the running one (it takes the instance lock and keeps it until release()). A crashed
    // instance's stale lock does not count.
    virtual bool previousInstance() = 0;

    // This instance's handle, as start-up writes it to "tray" (never 0).
    virtual std::int32_t handle() const = 0;

    // Starts answering key codes sent to this instance's handle. The listener is called on the
    // user-interface thread; the sender is answered as soon as it returns. A popped-up tray menu is
    // modal, so a second start that popped it up ends once the user has closed it (or when the
    // sender's own time limit runs out). The listener may call release(); it must not destroy this
    // object.
    virtual void listen(Listener& listener) = 0;

    // The handle of the instance that holds the lock, as the lock tells it; 0 when that cannot be told
    // (none holds it, or the lock cannot be read).
    virtual std::int32_t runningHandle() const = 0;

    // What became of a key code sent.
    enum class Delivery {
        Handled,      // the instance has handled it, or ended while handling it (shut-down)
        NotListening, // nothing listens under the handle
        NoAnswer,     // the instance took it but did not answer within the sender's time limit
    };

    // Sends a key code to the instance with this handle and waits, up to a time limit of the
    // sender's, until it has been handled. Needs neither a display nor an event loop.
    virtual Delivery sendKeyDown(std::int32_t handle, int keyCode) = 0;

    // Stops answering and gives up the instance lock (shut-down).
    virtual void release() = 0;
};

} // namespace tarvo

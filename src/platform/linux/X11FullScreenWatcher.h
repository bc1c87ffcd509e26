#pragma once

#include <QByteArray>

#include <cstdint>
#include <functional>
#include <memory>

class QSocketNotifier;
struct xcb_connection_t;

namespace tarvo {

// Whether the window that has the focus fills the screen, as the window manager tells it: the root's
// _NET_ACTIVE_WINDOW and that window's _NET_WM_STATE holding _NET_WM_STATE_FULLSCREEN. Followed through
// property notifications on the root and on the active window alone, on a connection of its own
// (selecting on Qt's would replace Qt's own selection on the root), so nothing wakes the program while
// neither changes. Without a window manager there is no active window, and it never holds.
class X11FullScreenWatcher {
public:
    // Connects to the display (empty: $DISPLAY); null when there is none. `changed` is called on the
    // user-interface thread whenever fullScreen() may have changed.
    static std::unique_ptr<X11FullScreenWatcher> open(const QByteArray& display,
                                                      std::function<void()> changed);

    ~X11FullScreenWatcher();
    X11FullScreenWatcher(const X11FullScreenWatcher&) = delete;
    X11FullScreenWatcher& operator=(const X11FullScreenWatcher&) = delete;

    bool fullScreen() const { return fullScreen_; }
    // A window manager of the freedesktop kind runs (its check window is on the root): for the report.
    bool windowManager() const;
    // Property notifications received: what following the window costs, for the tests.
    std::uint64_t notifications() const { return notifications_; }

private:
    X11FullScreenWatcher(xcb_connection_t* connection, std::function<void()> changed);

    std::uint32_t atom(const char* name) const;
    void service();
    void followActive();
    void readState();

    xcb_connection_t* connection_;
    std::function<void()> changed_;
    std::uint32_t root_ = 0;
    std::uint32_t activeAtom_ = 0, stateAtom_ = 0, fullScreenAtom_ = 0;
    std::uint32_t active_ = 0;
    bool fullScreen_ = false;
    std::uint64_t notifications_ = 0;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace tarvo

#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>
#include <memory>

class QObject;
struct xcb_connection_t;

namespace tarvo {

// Whether the window that has the focus fills the screen, as the window manager tells it: the root's
// _NET_ACTIVE_WINDOW and that window's _NET_WM_STATE holding _NET_WM_STATE_FULLSCREEN.
//
// Followed on Qt's own connection, through a native event filter, like X11TrayHostWatcher: Qt already
// listens to the root's property changes (it follows the work area there), so a change of the active
// window reaches the program anyway and costs no socket, buffers or wakeup of its own. Of a window of
// another program only the active one's property changes are asked for, and given up again when
// another window becomes active, so an inactive window that retitles itself wakes nothing. The
// program's own windows are left alone: Qt has asked for their property changes already, and asking on
// the same connection would replace Qt's own choice of their events. Without a window manager there is
// no active window, and it never holds.
class X11FullScreenWatcher : public QAbstractNativeEventFilter {
public:
    // Installs itself on the application's X connection; null unless the application runs on X11.
    // `changed` is called from the event loop whenever fullScreen() may have changed.
    static std::unique_ptr<X11FullScreenWatcher> attach(std::function<void()> changed);

    ~X11FullScreenWatcher() override;
    X11FullScreenWatcher(const X11FullScreenWatcher&) = delete;
    X11FullScreenWatcher& operator=(const X11FullScreenWatcher&) = delete;

    bool fullScreen() const { return fullScreen_; }
    // A window manager of the freedesktop kind runs (its check window is on the root): for the report.
    bool windowManager() const;
    // Property notifications of other programs' windows that reached the program: what following the
    // active window costs, for the tests.
    std::uint64_t foreignNotifications() const { return foreignNotifications_; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    X11FullScreenWatcher(xcb_connection_t* connection, std::function<void()> changed);

    bool ours(std::uint32_t window) const;
    void listen(std::uint32_t window, std::uint32_t mask) const;
    // The round trips of following run from the event loop, after Qt has handled the notification.
    void schedule(bool activeChanged);
    void follow();
    void followActive();
    void readState();

    xcb_connection_t* connection_;
    std::function<void()> changed_;
    std::unique_ptr<QObject> context_; // owns the queued follow-ups: none runs after the watcher is gone
    std::uint32_t root_ = 0, idBase_ = 0, idMask_ = 0;
    std::uint32_t activeAtom_ = 0, stateAtom_ = 0, fullScreenAtom_ = 0;
    std::uint32_t active_ = 0;
    bool fullScreen_ = false;
    bool activePending_ = false, statePending_ = false;
    std::uint64_t foreignNotifications_ = 0;
};

} // namespace tarvo

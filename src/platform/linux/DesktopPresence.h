#pragma once

#include "core/PresenceMonitor.h"

#include <QDBusConnection>
#include <QString>

#include <memory>

namespace tarvo {

class BusPresence;
class X11FullScreenWatcher;

// The presence seam on a Linux desktop: the D-Bus services of BusPresence for a locked screen,
// do-not-disturb and idle inhibitors, and the X11 window manager's word on the focused window for a
// full-screen one. On Wayland the X11 display sees only X11 windows, so a native full-screen window
// holds no break there.
class DesktopPresence : public PresenceMonitor {
public:
    // followWindows: follow the focused window on the application's X11 display (without one, or
    // when false, no window holds a break).
    DesktopPresence(const QDBusConnection& session, const QDBusConnection& system, bool followWindows);
    ~DesktopPresence() override;

    void setListener(Listener* listener) override { listener_ = listener; }
    bool holds(PresenceCondition condition) const override;

    // One line for standard error at start-up: the sources that are followed.
    QString report() const;

private:
    void changed();

    Listener* listener_ = nullptr;
    std::unique_ptr<BusPresence> bus_;
    std::unique_ptr<X11FullScreenWatcher> window_;
};

} // namespace tarvo

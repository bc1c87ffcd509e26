#pragma once

#include <QString>

namespace tarvo {

// What the desktop tells about the person at it, beyond the keyboard and the mouse: the screen is
// locked (they are away), or they are busy in a way a break must not cut into (a full-screen window
// has the focus, the desktop's do-not-disturb is on, an application keeps the session from idling
// for a call or a film).
enum class PresenceCondition { Locked, FullScreen, DoNotDisturb, IdleInhibited };

// Follows the conditions by the desktop's own notifications, never by polling. A condition whose
// source the desktop lacks (no logind, no notification server, no window manager) simply never holds,
// and a source that leaves and comes back is followed again.
class PresenceMonitor {
public:
    // Told whenever a condition may have changed; it asks holds() for the news.
    class Listener {
    public:
        virtual void presenceChanged() = 0;

    protected:
        ~Listener() = default;
    };

    virtual ~PresenceMonitor() = default;

    // Where changes go; null for nowhere. The listener must outlive the monitor or be taken away.
    virtual void setListener(Listener* listener) = 0;
    virtual bool holds(PresenceCondition condition) const = 0;
};

} // namespace tarvo

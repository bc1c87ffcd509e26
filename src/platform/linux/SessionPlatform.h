#pragma once

#include <QByteArray>

namespace tarvo {

// What the environment says about the desktop session the program starts in.
struct SessionEnvironment {
    QByteArray qtPlatform;     // $QT_QPA_PLATFORM: the user's own choice, when set
    QByteArray waylandDisplay; // $WAYLAND_DISPLAY
    QByteArray x11Display;     // $DISPLAY
    QByteArray sessionType;    // $XDG_SESSION_TYPE
};

// A Wayland session is one that names its Wayland display or its type.
bool isWaylandSession(const SessionEnvironment& session);
// The same, of the environment the program runs in.
SessionEnvironment currentSession();

// The Qt platform the program's windows live on; empty: leave Qt's own choice alone.
//
// In a Wayland session that also offers X11 (XWayland, which GNOME, Plasma and sway start for their
// X11 programs), the windows go through XWayland. A Wayland client cannot keep an ordinary window on
// top, choose the output and place of a window, or show another process's window inside its own; the
// break screen, its covers, the exercise prompt and the player (whose video another process paints
// into the player's window) need all of these, and an X11 client has them. The activity sources do
// not follow this choice: they ask the compositor itself (see ActivityMonitorFactory.h).
//
// A platform the user names in $QT_QPA_PLATFORM is always kept, and a Wayland session without X11
// stays on Qt's wayland platform: the breaks then come up as ordinary windows, which is still better
// than none.
QByteArray qtPlatformForSession(const SessionEnvironment& session);

// Applies that choice to the running process (and the helpers it starts) before the application
// object exists.
void chooseQtPlatformForSession();

} // namespace tarvo

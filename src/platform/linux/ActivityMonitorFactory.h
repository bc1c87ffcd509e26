#pragma once

#include "core/ActivityMonitor.h"

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <memory>

namespace tarvo {

class ActivitySource;
class Clock;

// What decides where activity can be seen.
struct ActivitySession {
    QString qtPlatform;        // QGuiApplication::platformName()
    QByteArray x11Display;     // empty: $DISPLAY, the display that Qt's xcb platform connects to as well
    QByteArray waylandDisplay; // empty: $WAYLAND_DISPLAY
    const Clock& clock;        // the time base of the stamps; must outlive the monitor
    std::FILE* messages = stderr;
};

// The best source of activity for the session, in this order:
// 1. The X11 one (X11ActivityMonitor), when the program runs on an X11 display with XInput 2. The Qt
//    platform decides, not $DISPLAY alone: a program on the offscreen platform (or any other but "xcb")
//    has no windows on an X server. A Wayland session (WAYLAND_DISPLAY set, or XDG_SESSION_TYPE
//    "wayland") does not qualify even when Qt runs on XWayland: the X server there sees input only while
//    one of its own windows has the focus.
// 2. The Wayland compositor's idle notification (ExtIdleNotifyMonitor), where it offers one: wlroots
//    compositors and others.
// 3. GNOME's idle monitor on the session bus (MutterIdleMonitor): GNOME on Wayland.
// 4. Otherwise the user counts as always active (AlwaysActiveActivityMonitor), with the reason: the
//    X11 display's, or lostReason when the choice replaces a lost source.
std::unique_ptr<ActivitySource> chooseActivitySource(const ActivitySession& session,
                                                     const QString& lostReason = {});

// The program's monitor: the best source, replaced by the best one then when it is lost
// (FallbackActivityMonitor).
std::unique_ptr<ActivityMonitor> createActivityMonitor(const ActivitySession& session);

// The same for the running application.
std::unique_ptr<ActivityMonitor> createActivityMonitor(const Clock& clock);

} // namespace tarvo

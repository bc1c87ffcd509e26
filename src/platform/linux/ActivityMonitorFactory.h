#pragma once

#include "core/ActivityMonitor.h"

#include <QString>

#include <cstdio>
#include <memory>

namespace tarvo {

// The activity monitor for this session: the X11 one when the program runs on an X11 display with
// XInput 2, otherwise one that reports no activity and says why once (UnavailableActivityMonitor).
//
// The Qt platform decides, not $DISPLAY alone: a program on the offscreen platform (or any other but
// "xcb") has no windows on an X server, so even with DISPLAY set the session is treated as having no
// display. A Wayland session (WAYLAND_DISPLAY set, or XDG_SESSION_TYPE "wayland") is treated the same
// even when Qt runs on XWayland: the X server there sees input only while one of its own windows has the
// focus, so it would take typing into every other window for a natural pause.
//
// The X11 monitor connects to $DISPLAY, the display that Qt's xcb platform connects to as well.
std::unique_ptr<ActivityMonitor> createActivityMonitor(const QString& qtPlatform,
                                                       std::FILE* messages = stderr);

// The same for the running application (QGuiApplication::platformName()).
std::unique_ptr<ActivityMonitor> createActivityMonitor();

} // namespace tarvo

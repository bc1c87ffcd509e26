#pragma once

#include <QIcon>

namespace tarvo {

// The program's icon: the tray icon, the stand-in window's and the About box's. It is drawn from the
// SVG source compiled into the program, by Qt's SVG icon engine, at whatever size is asked for, so it
// is as sharp in a 16-pixel panel as in a 256-pixel dock. Needs a QGuiApplication.
QIcon programIcon();

} // namespace tarvo

#pragma once

#include <QIcon>

namespace tarvo {

// The program's icon: the tray icon, the stand-in window's and the About box's. The build draws it from
// its SVG source at every common size from 16 to 256 pixels, so it is as sharp in a 16-pixel panel as
// in a 256-pixel dock without the SVG renderer loaded at run time. Needs a QGuiApplication.
QIcon programIcon();

} // namespace tarvo

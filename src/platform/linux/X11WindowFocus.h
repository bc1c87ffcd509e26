#pragma once

#include "core/WindowFocus.h"

namespace tarvo {

// On Qt's X11 platform: WM_TAKE_FOCUS taken out of the window's WM_PROTOCOLS, so that with an input
// hint of false (Qt::WindowDoesNotAcceptFocus) the window manager sees a window that takes no input
// focus. Needed in a Wayland session only; elsewhere nothing is done: Qt's flag is all a platform
// offers.
class X11WindowFocus : public WindowFocus {
public:
    bool needed() const override;
    void offerNoFocus(QWidget& window) override;
};

} // namespace tarvo

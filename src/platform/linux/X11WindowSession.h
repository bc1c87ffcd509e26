#pragma once

#include "core/WindowSession.h"

namespace tarvo {

// Whether the session is a Wayland one: isWaylandSession. On Qt's X11 platform a window
// that takes no focus has WM_TAKE_FOCUS taken out of its WM_PROTOCOLS, so that with an input hint of
// false (Qt::WindowDoesNotAcceptFocus) the window manager sees a window that takes no input focus;
// elsewhere nothing is done: Qt's flag is all a platform offers.
class X11WindowSession : public WindowSession {
public:
    bool wayland() const override;
    void offerNoFocus(QWidget& window) override;
};

} // namespace tarvo

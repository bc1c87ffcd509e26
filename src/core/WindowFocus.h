#pragma once

class QWidget;

namespace tarvo {

// What the window system is told about a window that is not to take the keyboard when it appears.
// Qt's Qt::WindowDoesNotAcceptFocus is not enough for every window manager: an X11 window that also
// offers to take the focus (WM_TAKE_FOCUS, which Qt's windows always offer) is given the keyboard by
// sway when it is mapped.
class WindowFocus {
public:
    virtual ~WindowFocus() = default;

    // The window, created but not yet shown, withdraws its offer to take the focus. The form keeps
    // Qt::WindowDoesNotAcceptFocus for as long as it is to take none.
    virtual void offerNoFocus(QWidget& window) = 0;
};

} // namespace tarvo

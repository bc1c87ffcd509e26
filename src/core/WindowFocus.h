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

    // Whether such a window needs more than Qt::WA_ShowWithoutActivating, which window managers of
    // an X11 session honour: in a Wayland session's XWayland it does.
    virtual bool needed() const = 0;
    // Then the window, with Qt::WindowDoesNotAcceptFocus set and not yet shown, withdraws its offer to
    // take the focus; it takes the keyboard only once the form clears that flag.
    virtual void offerNoFocus(QWidget& window) = 0;
};

} // namespace tarvo

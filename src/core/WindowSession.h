#pragma once

class QWidget;

namespace tarvo {

// What the window system of the session does with the program's windows beyond what Qt can say. In a
// Wayland session the windows go through XWayland, and the compositor's window manager honours fewer
// of X11's conventions than the window managers of an X11 session: sway gives the keyboard to every
// new window that offers to take the focus (which Qt's windows always offer), and it tiles a window
// that asks to be maximised instead of maximising it.
class WindowSession {
public:
    virtual ~WindowSession() = default;

    // Whether the windows live in a Wayland session's XWayland. Elsewhere Qt::WA_ShowWithoutActivating
    // and a maximised window state do what they say.
    virtual bool wayland() const = 0;
    // Then a window that is not to take the keyboard when it appears (Qt::WindowDoesNotAcceptFocus set,
    // not yet shown) withdraws its offer to take the focus; it takes the keyboard only once the form
    // clears that flag.
    virtual void offerNoFocus(QWidget& window) = 0;
};

} // namespace tarvo

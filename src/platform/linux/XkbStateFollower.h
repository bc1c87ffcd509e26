#pragma once

#include <QObject>

#include <memory>

struct xcb_connection_t;

namespace tarvo {

// Lets Qt follow the keyboard's state (modifiers and layout group) only while a window of the program
// has the focus.
//
// Qt keeps its idea of the modifiers up to date from XKB state notifications, and the X server sends
// those to every client that asked for them whatever window has the focus: each press and release of
// Shift, anywhere on the desktop, woke the idle program twice (Qt's event reader thread and the main
// thread) for a state that nothing of ours reads while the user types elsewhere. Mouse clicks carry
// their own modifiers, so the tray icon needs none of it.
//
// So while the application is inactive the notifications are switched off on Qt's own connection
// (keymap changes stay selected: they are rare and Qt must not miss one). When a window of ours takes
// the focus they are switched on again, and the server's current state is handed to Qt as a
// notification of its own (sent to a window of ours), so that a Shift released or a Caps Lock pressed
// meanwhile is not taken for the state Qt saw last. Between reading that state and Qt receiving it, a
// modifier change is still heard from the server in its own notification, at most a moment before
// the copy; a key pressed within that moment is the only one that could be read with the earlier state.
//
// Only on the xcb platform with XKB; elsewhere attach() returns nothing and Qt keeps its own selection.
class XkbStateFollower : public QObject {
    Q_OBJECT

public:
    static std::unique_ptr<XkbStateFollower> attach();
    ~XkbStateFollower() override;

    // Whether the state notifications are selected now (for tests).
    bool following() const { return following_; }

private:
    XkbStateFollower(xcb_connection_t* connection, int firstEvent);
    void follow(bool on);

    xcb_connection_t* connection_;
    int firstEvent_;
    bool following_ = true; // as Qt left it
};

} // namespace tarvo

#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>
#include <memory>

struct xcb_connection_t;

namespace tarvo {

// Lets Qt follow the keyboard (its state and its keymap) only while a window of the program has the
// focus, the tray menu and a break screen included.
//
// Qt asks the X server for XKB notifications of the keyboard's state and keymap, and the server sends
// them to every client that asked whatever window has the focus:
// - State: each press and release of Shift, anywhere on the desktop, woke the idle program twice (Qt's
//   event reader thread and the main thread). While the application is inactive the state
//   notifications are switched off on Qt's own connection. Nothing is lost by it: Qt reads each key with
//   the modifiers and layout group that the key event itself carries, and a modifier pressed once a
//   window of ours has the focus brings the whole state with it.
// - Keymap: the server announces a new keymap when the layout changes and also whenever the keys start
//   coming from another keyboard (a second keyboard, or the XTEST device that input tools type
//   through), and Qt answers each by loading the whole keymap anew, some twenty round trips to the
//   server. That cannot be read from a key event, so the notifications stay selected, but while the
//   application is inactive they are held back from Qt: the filter takes them and notes that the
//   keymap changed. When a window of ours takes the focus, Qt is told to load the keymap, once, by a
//   notification of its own sent to that window; it is back within a round trip to the server, and only
//   a key pressed in that moment could still be read on the earlier keymap.
//
// Only on the xcb platform with XKB; elsewhere attach() returns nothing and Qt keeps its own selection.
class XkbStateFollower : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    static std::unique_ptr<XkbStateFollower> attach();
    ~XkbStateFollower() override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    XkbStateFollower(xcb_connection_t* connection, int firstEvent);
    void follow(bool on);

    xcb_connection_t* connection_;
    int firstEvent_;
    bool following_ = true; // as Qt left it
    bool keymapChanged_ = false;
    std::uint8_t keyboard_ = 0; // the device the held-back notifications were about
};

} // namespace tarvo

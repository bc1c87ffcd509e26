#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>

struct xcb_connection_t;

namespace tarvo {

// Notices an XEmbed notification area ("system tray") appearing on or leaving the X display, without
// polling and without a connection of its own.
//
// A tray host owns the selection _NET_SYSTEM_TRAY_S<screen> and announces a new ownership with a
// MANAGER client message on the root window. Qt's own connection already listens to the root window's
// structure events (which is how those messages are sent), so a native event filter on that connection
// sees the announcement at no extra cost: no second socket, no timer, no wakeup while nothing changes.
// For the host leaving, the watcher asks for the structure events of the selection owner's window and
// takes its DestroyNotify as the end of that host. A dedicated XCB connection with a QSocketNotifier
// would work as well, but would cost a connection and would have to select the root window's structure
// events itself.
//
// The screen is the one the display name names ($DISPLAY, screen 0 when it names none), the screen whose
// tray Qt's own tray icon docks into.
//
// The watcher only says "the tray may have changed" (hostChanged, always delivered from the event
// loop after Qt has seen the same event); whether a tray is there is for QSystemTrayIcon to judge.
class X11TrayHostWatcher : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // Installs itself on the application's X connection. Only valid on the xcb platform.
    explicit X11TrayHostWatcher(xcb_connection_t* connection, QObject* parent = nullptr);
    ~X11TrayHostWatcher() override;

    // Whether a window owns the tray selection, as last seen.
    bool hostPresent() const { return owner_ != 0; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

signals:
    void hostChanged();

private:
    // Looks up the selection owner again and follows its window's destruction.
    void follow();
    void recheck();

    xcb_connection_t* connection_;
    std::uint32_t selection_ = 0; // _NET_SYSTEM_TRAY_S<screen>
    std::uint32_t manager_ = 0;   // MANAGER
    std::uint32_t owner_ = 0;     // the tray host's selection window, 0 while none
};

} // namespace tarvo

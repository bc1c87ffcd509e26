#pragma once

#include "platform/linux/IdleNotificationMonitor.h"

#include <QByteArray>
#include <QString>

#include <memory>

class QSocketNotifier;
struct ext_idle_notification_v1;
struct ext_idle_notifier_v1;
struct wl_display;
struct wl_registry;
struct wl_seat;

namespace tarvo {

// Activity from the Wayland compositor's idle notification (ext-idle-notify-v1, offered by wlroots
// compositors and others): one notification object of kIdleAfter ms (the input-idle kind where the
// compositor offers version 2, which idle inhibitors do not hold back), whose "idled" and "resumed"
// events are exactly IdleNotificationMonitor's two notifications. While the user works or is away
// nothing arrives; a pause of kIdleAfter or more costs one event each way.
//
// Its own connection. Like the X11 monitor, it opens a connection of its own to the compositor rather
// than reach into Qt's (which exists only on Qt's wayland platform, and whose event queue is Qt's to
// dispatch), serviced by a QSocketNotifier on the user-interface thread. It connects to the socket
// itself instead of through wl_display_connect, which would take over a WAYLAND_SOCKET meant for Qt.
//
// The monitor counts as lost when the connection breaks.
class ExtIdleNotifyMonitor : public IdleNotificationMonitor {
public:
    // Connects to the compositor's socket (display: a name in $XDG_RUNTIME_DIR or an absolute path;
    // empty: $WAYLAND_DISPLAY). Returns null, with the reason in whyNot, when there is no such
    // compositor or it offers no idle notification. The clock must outlive the monitor.
    static std::unique_ptr<ExtIdleNotifyMonitor> open(const QByteArray& display, const Clock& clock,
                                                      QString* whyNot);

    ~ExtIdleNotifyMonitor() override;
    ExtIdleNotifyMonitor(const ExtIdleNotifyMonitor&) = delete;
    ExtIdleNotifyMonitor& operator=(const ExtIdleNotifyMonitor&) = delete;

    QString description() const override;
    QString lostReason() const override;

    // Idle and resume events that have reached this process: what the monitor costs, for the tests.
    std::uint64_t notifications() const { return notifications_; }

private:
    struct Listeners;

    ExtIdleNotifyMonitor(wl_display* display, const Clock& clock);

    void startWatching() override;
    void stopWatching() override;
    void service(); // reads and dispatches what the compositor sent
    void flush();
    void lose();

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    wl_seat* seat_ = nullptr;
    ext_idle_notifier_v1* notifier_ = nullptr;
    ext_idle_notification_v1* notification_ = nullptr;
    std::unique_ptr<QSocketNotifier> socket_;
    std::uint64_t notifications_ = 0;
    bool lost_ = false;
};

} // namespace tarvo

#include "platform/linux/ExtIdleNotifyMonitor.h"

#include "ext-idle-notify-v1-client.h"

#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-client.h>

namespace tarvo {

// Wayland's listeners are tables of plain functions, with the monitor as their data.
struct ExtIdleNotifyMonitor::Listeners {
    static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t version) {
        auto* monitor = static_cast<ExtIdleNotifyMonitor*>(data);
        if (!monitor->seat_ && std::strcmp(interface, wl_seat_interface.name) == 0)
            monitor->seat_ = static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
        else if (!monitor->notifier_ && std::strcmp(interface, ext_idle_notifier_v1_interface.name) == 0)
            monitor->notifier_ = static_cast<ext_idle_notifier_v1*>(
                wl_registry_bind(registry, name, &ext_idle_notifier_v1_interface, std::min(version, 2u)));
    }
    static void globalRemove(void*, wl_registry*, std::uint32_t) {}
    static void idled(void* data, ext_idle_notification_v1*) {
        auto* monitor = static_cast<ExtIdleNotifyMonitor*>(data);
        ++monitor->notifications_;
        monitor->idled();
    }
    static void resumed(void* data, ext_idle_notification_v1*) {
        auto* monitor = static_cast<ExtIdleNotifyMonitor*>(data);
        ++monitor->notifications_;
        monitor->resumed();
    }

    static constexpr wl_registry_listener registry{global, globalRemove};
    static constexpr ext_idle_notification_v1_listener notification{idled, resumed};
};

std::unique_ptr<ExtIdleNotifyMonitor> ExtIdleNotifyMonitor::open(const QByteArray& display,
                                                                 const Clock& clock, QString* whyNot) {
    const QByteArray name = display.isEmpty() ? qgetenv("WAYLAND_DISPLAY") : display;
    const auto fail = [&](const char* reason) {
        if (whyNot)
            *whyNot = QString::fromLatin1(reason).arg(QString::fromLocal8Bit(name));
        return std::unique_ptr<ExtIdleNotifyMonitor>();
    };
    if (name.isEmpty())
        return fail("there is no Wayland display (WAYLAND_DISPLAY is not set)");
    const QByteArray path = name.startsWith('/') ? name : qgetenv("XDG_RUNTIME_DIR") + '/' + name;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (!path.startsWith('/') || std::size_t(path.size()) >= sizeof(address.sun_path))
        return fail("the Wayland display \"%1\" cannot be found");
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0 || ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        if (fd >= 0)
            ::close(fd);
        return fail("cannot connect to the Wayland display \"%1\"");
    }
    wl_display* connection = wl_display_connect_to_fd(fd); // closes the socket itself if it fails
    if (!connection)
        return fail("cannot connect to the Wayland display \"%1\"");

    std::unique_ptr<ExtIdleNotifyMonitor> monitor(new ExtIdleNotifyMonitor(connection, clock));
    if (wl_display_roundtrip(connection) < 0) // the globals arrive
        return fail("cannot connect to the Wayland display \"%1\"");
    if (!monitor->notifier_ || !monitor->seat_)
        return fail("the Wayland display \"%1\" offers no idle notification");
    monitor->socket_ =
        std::make_unique<QSocketNotifier>(wl_display_get_fd(connection), QSocketNotifier::Read);
    QObject::connect(monitor->socket_.get(), &QSocketNotifier::activated, monitor->socket_.get(),
                     [raw = monitor.get()] { raw->service(); });
    return monitor;
}

ExtIdleNotifyMonitor::ExtIdleNotifyMonitor(wl_display* display, const Clock& clock)
    : IdleNotificationMonitor(clock)
    , display_(display)
    , registry_(wl_display_get_registry(display)) {
    wl_registry_add_listener(registry_, &Listeners::registry, this);
}

ExtIdleNotifyMonitor::~ExtIdleNotifyMonitor() {
    socket_.reset(); // before the socket it watches closes
    if (notification_)
        ext_idle_notification_v1_destroy(notification_);
    if (notifier_)
        ext_idle_notifier_v1_destroy(notifier_);
    if (seat_)
        wl_seat_destroy(seat_);
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

QString ExtIdleNotifyMonitor::description() const {
    return QStringLiteral(
        "Natural pauses are detected through the compositor's idle notification (ext-idle-notify-v1).");
}

QString ExtIdleNotifyMonitor::lostReason() const {
    return lost_ ? QStringLiteral("the connection to the Wayland compositor was lost") : QString();
}

void ExtIdleNotifyMonitor::startWatching() {
    if (lost_)
        return;
    // Version 2's input-idle notification sees the user's input alone: with version 1 a film's idle
    // inhibitor keeps the user from ever going idle, and a natural pause in front of it is never seen.
    notification_ = ext_idle_notifier_v1_get_version(notifier_) >= 2
                        ? ext_idle_notifier_v1_get_input_idle_notification(notifier_, kIdleAfter, seat_)
                        : ext_idle_notifier_v1_get_idle_notification(notifier_, kIdleAfter, seat_);
    ext_idle_notification_v1_add_listener(notification_, &Listeners::notification, this);
    flush();
}

void ExtIdleNotifyMonitor::stopWatching() {
    if (!notification_)
        return;
    ext_idle_notification_v1_destroy(notification_); // events still on their way are dropped
    notification_ = nullptr;
    flush();
}

void ExtIdleNotifyMonitor::service() {
    if (lost_)
        return;
    // Reads without blocking: the socket is readable, and if it was not after all, nothing is read.
    while (wl_display_prepare_read(display_) != 0)
        wl_display_dispatch_pending(display_);
    if (wl_display_read_events(display_) < 0 || wl_display_dispatch_pending(display_) < 0)
        lose();
}

void ExtIdleNotifyMonitor::flush() {
    if (!lost_ && wl_display_flush(display_) < 0 && errno != EAGAIN)
        lose();
}

void ExtIdleNotifyMonitor::lose() {
    lost_ = true;
    if (socket_)
        socket_->setEnabled(false); // a closed socket stays readable: never spin on it
}

} // namespace tarvo

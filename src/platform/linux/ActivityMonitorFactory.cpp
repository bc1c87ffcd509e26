#include "platform/linux/ActivityMonitorFactory.h"

#include "platform/linux/AlwaysActiveActivityMonitor.h"
#include "platform/linux/ExtIdleNotifyMonitor.h"
#include "platform/linux/FallbackActivityMonitor.h"
#include "platform/linux/MutterIdleMonitor.h"
#include "platform/linux/SessionPlatform.h"
#include "platform/linux/X11ActivityMonitor.h"

#include <QDBusConnection>
#include <QGuiApplication>

namespace tarvo {

namespace {

// Only the reason for the X11 source is known here; in a Wayland session it is given only when the
// compositor's sources have been tried in vain, so it names what that compositor lacks.
QString whyNoX11(const QString& qtPlatform) {
    const QString noIdleProtocol =
        QStringLiteral("this is a Wayland session whose compositor offers neither ext-idle-notify-v1 "
                       "nor GNOME's idle monitor");
    if (qtPlatform.startsWith(QLatin1String("wayland")))
        return noIdleProtocol;
    if (qtPlatform != QLatin1String("xcb"))
        return QStringLiteral("the program is not running on an X11 display (Qt platform \"%1\")")
            .arg(qtPlatform);
    if (isWaylandSession(currentSession()))
        return noIdleProtocol + QStringLiteral(" (and its X11 server sees only input to X11 windows)");
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return QStringLiteral("there is no X11 display (DISPLAY is not set)");
    return {};
}

} // namespace

std::unique_ptr<ActivitySource> chooseActivitySource(const ActivitySession& session,
                                                     const QString& lostReason) {
    QString reason = whyNoX11(session.qtPlatform);
    if (reason.isEmpty()) {
        if (auto monitor = X11ActivityMonitor::open(session.x11Display, &reason, &session.clock))
            return monitor;
    }
    if (auto monitor = ExtIdleNotifyMonitor::open(session.waylandDisplay, session.clock, nullptr))
        return monitor;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (MutterIdleMonitor::offered(bus))
        return std::make_unique<MutterIdleMonitor>(bus, session.clock);
    return std::make_unique<AlwaysActiveActivityMonitor>(lostReason.isEmpty() ? reason : lostReason,
                                                         session.clock, session.messages);
}

std::unique_ptr<ActivityMonitor> createActivityMonitor(const ActivitySession& session) {
    return std::make_unique<FallbackActivityMonitor>(
        [session](const QString& lostReason) { return chooseActivitySource(session, lostReason); },
        session.clock, session.messages);
}

std::unique_ptr<ActivityMonitor> createActivityMonitor(const Clock& clock) {
    return createActivityMonitor(
        ActivitySession{QGuiApplication::platformName(), QByteArray(), QByteArray(), clock});
}

} // namespace tarvo

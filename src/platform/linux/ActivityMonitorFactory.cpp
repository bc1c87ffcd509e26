#include "platform/linux/ActivityMonitorFactory.h"

#include "platform/linux/UnavailableActivityMonitor.h"
#include "platform/linux/X11ActivityMonitor.h"

#include <QGuiApplication>

namespace tarvo {

namespace {

QString whyNoX11(const QString& qtPlatform) {
    if (qtPlatform.startsWith(QLatin1String("wayland")))
        return QStringLiteral("this is a Wayland session");
    if (qtPlatform != QLatin1String("xcb"))
        return QStringLiteral("the program is not running on an X11 display (Qt platform \"%1\")")
            .arg(qtPlatform);
    if (qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
        qEnvironmentVariable("XDG_SESSION_TYPE").compare(QLatin1String("wayland"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("this is a Wayland session (its X11 server sees only input to X11 windows)");
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return QStringLiteral("there is no X11 display (DISPLAY is not set)");
    return {};
}

} // namespace

std::unique_ptr<ActivityMonitor> createActivityMonitor(const QString& qtPlatform, std::FILE* messages) {
    QString reason = whyNoX11(qtPlatform);
    if (reason.isEmpty()) {
        if (auto monitor = X11ActivityMonitor::open(QByteArray(), &reason))
            return monitor;
    }
    return std::make_unique<UnavailableActivityMonitor>(reason, messages);
}

std::unique_ptr<ActivityMonitor> createActivityMonitor() {
    return createActivityMonitor(QGuiApplication::platformName());
}

} // namespace tarvo

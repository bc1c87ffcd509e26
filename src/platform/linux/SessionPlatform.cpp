#include "platform/linux/SessionPlatform.h"

#include <QtGlobal>

namespace tarvo {

QByteArray qtPlatformForSession(const SessionEnvironment& session) {
    if (!session.qtPlatform.isEmpty())
        return {};
    const bool wayland = !session.waylandDisplay.isEmpty() || session.sessionType.toLower() == "wayland";
    if (wayland && !session.x11Display.isEmpty())
        return QByteArrayLiteral("xcb");
    return {};
}

void chooseQtPlatformForSession() {
    const QByteArray platform = qtPlatformForSession({qgetenv("QT_QPA_PLATFORM"), qgetenv("WAYLAND_DISPLAY"),
                                                      qgetenv("DISPLAY"), qgetenv("XDG_SESSION_TYPE")});
    if (!platform.isEmpty())
        qputenv("QT_QPA_PLATFORM", platform);
}

} // namespace tarvo

#include "platform/linux/SessionPlatform.h"

#include <QtGlobal>

namespace tarvo {

bool isWaylandSession(const SessionEnvironment& session) {
    return !session.waylandDisplay.isEmpty() || session.sessionType.toLower() == "wayland";
}

SessionEnvironment currentSession() {
    return {qgetenv("QT_QPA_PLATFORM"), qgetenv("WAYLAND_DISPLAY"), qgetenv("DISPLAY"),
            qgetenv("XDG_SESSION_TYPE")};
}

QByteArray qtPlatformForSession(const SessionEnvironment& session) {
    if (!session.qtPlatform.isEmpty())
        return {};
    if (isWaylandSession(session) && !session.x11Display.isEmpty())
        return QByteArrayLiteral("xcb");
    return {};
}

void chooseQtPlatformForSession() {
    const QByteArray platform = qtPlatformForSession(currentSession());
    if (!platform.isEmpty())
        qputenv("QT_QPA_PLATFORM", platform);
}

} // namespace tarvo

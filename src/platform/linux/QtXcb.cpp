#include "platform/linux/QtXcb.h"

#include <QGuiApplication>

namespace tarvo {

xcb_connection_t* qtXcbConnection() {
    if (qGuiApp == nullptr || QGuiApplication::platformName() != QLatin1String("xcb"))
        return nullptr;
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

} // namespace tarvo

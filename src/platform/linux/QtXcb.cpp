#include "platform/linux/QtXcb.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

namespace tarvo {

xcb_connection_t* qtXcbConnection() {
    if (qGuiApp == nullptr || QGuiApplication::platformName() != QLatin1String("xcb"))
        return nullptr;
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

std::uint32_t internAtom(xcb_connection_t* connection, std::string_view name) {
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : 0;
}

} // namespace tarvo

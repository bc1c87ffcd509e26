#include "platform/linux/X11WindowSession.h"

#include "platform/linux/QtXcb.h"
#include "platform/linux/SessionPlatform.h"

#include <QWidget>

#include <vector>
#include <xcb/xcb.h>

namespace tarvo {

bool X11WindowSession::wayland() const {
    return isWaylandSession(currentSession());
}

void X11WindowSession::offerNoFocus(QWidget& window) {
    xcb_connection_t* connection = qtXcbConnection();
    if (connection == nullptr)
        return;
    const auto id = static_cast<xcb_window_t>(window.winId());
    const xcb_atom_t protocols = internAtom(connection, "WM_PROTOCOLS");
    const xcb_atom_t takeFocus = internAtom(connection, "WM_TAKE_FOCUS");
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, id, protocols, XCB_ATOM_ATOM, 0, 32), nullptr));
    if (!reply || reply->format != 32)
        return;
    const auto* offered = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    std::vector<xcb_atom_t> kept;
    for (int i = 0; i < xcb_get_property_value_length(reply.get()) / 4; ++i)
        if (offered[i] != takeFocus)
            kept.push_back(offered[i]);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, protocols, XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(kept.size()), kept.data());
    xcb_flush(connection);
}

} // namespace tarvo

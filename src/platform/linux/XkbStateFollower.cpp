#include "platform/linux/XkbStateFollower.h"

#include <QGuiApplication>
#include <QWindow>

#include <cstdlib>
#include <cstring>
#define explicit explicit_ // the XKB header names a field "explicit"
#include <xcb/xkb.h>
#undef explicit

namespace tarvo {

std::unique_ptr<XkbStateFollower> XkbStateFollower::attach() {
    if (qGuiApp == nullptr || QGuiApplication::platformName() != QLatin1String("xcb"))
        return nullptr;
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 != nullptr ? x11->connection() : nullptr;
    if (connection == nullptr)
        return nullptr;
    // Qt has already enabled the extension on its connection, or found it missing.
    const xcb_query_extension_reply_t* xkb = xcb_get_extension_data(connection, &xcb_xkb_id);
    if (xkb == nullptr || !xkb->present)
        return nullptr;
    std::unique_ptr<XkbStateFollower> follower(new XkbStateFollower(connection, xkb->first_event));
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, follower.get(),
            [f = follower.get()](Qt::ApplicationState state) { f->follow(state == Qt::ApplicationActive); });
    follower->follow(QGuiApplication::applicationState() == Qt::ApplicationActive);
    return follower;
}

XkbStateFollower::XkbStateFollower(xcb_connection_t* connection, int firstEvent)
    : connection_(connection)
    , firstEvent_(firstEvent) {}

XkbStateFollower::~XkbStateFollower() {
    // Qt's selection as it was, for whatever of the application outlives the platform.
    follow(true);
}

void XkbStateFollower::follow(bool on) {
    if (on == following_)
        return;
    following_ = on;
    constexpr std::uint16_t state = XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    // Only the state notification is affected; on, every detail of it, as Qt selects it.
    xcb_xkb_select_events(connection_, XCB_XKB_ID_USE_CORE_KBD, state, on ? 0 : state, on ? state : 0, 0, 0,
                          nullptr);
    if (!on) {
        xcb_flush(connection_);
        return;
    }
    QWindow* window = QGuiApplication::focusWindow();
    auto* reply = xcb_xkb_get_state_reply(connection_,
                                          xcb_xkb_get_state(connection_, XCB_XKB_ID_USE_CORE_KBD), nullptr);
    if (reply == nullptr || window == nullptr) {
        std::free(reply);
        xcb_flush(connection_);
        return;
    }
    // The state as a notification of every part changed, the form in which Qt takes it in.
    xcb_xkb_state_notify_event_t event;
    std::memset(&event, 0, sizeof event);
    event.response_type = static_cast<std::uint8_t>(firstEvent_);
    event.xkbType = XCB_XKB_STATE_NOTIFY;
    event.time = XCB_CURRENT_TIME;
    event.deviceID = reply->deviceID;
    event.mods = reply->mods;
    event.baseMods = reply->baseMods;
    event.latchedMods = reply->latchedMods;
    event.lockedMods = reply->lockedMods;
    event.group = reply->group;
    event.baseGroup = reply->baseGroup;
    event.latchedGroup = reply->latchedGroup;
    event.lockedGroup = reply->lockedGroup;
    event.compatState = reply->compatState;
    event.grabMods = reply->grabMods;
    event.compatGrabMods = reply->compatGrabMods;
    event.lookupMods = reply->lookupMods;
    event.compatLoockupMods = reply->compatLookupMods;
    event.ptrBtnState = reply->ptrBtnState;
    event.changed = 0x3fff; // every part of the state
    std::free(reply);
    // With no event mask the server hands the event to the client that made the window: this program.
    static_assert(sizeof event == 32, "a core-sized event");
    xcb_send_event(connection_, 0, static_cast<xcb_window_t>(window->winId()), 0,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection_);
}

} // namespace tarvo

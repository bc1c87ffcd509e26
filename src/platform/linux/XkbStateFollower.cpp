#include "platform/linux/XkbStateFollower.h"

#include "platform/linux/QtXcb.h"

#include <QGuiApplication>
#include <QWindow>

#include <cstring>
#define explicit explicit_ // the XKB header names a field "explicit"
#include <xcb/xkb.h>
#undef explicit

namespace tarvo {

std::unique_ptr<XkbStateFollower> XkbStateFollower::attach() {
    xcb_connection_t* connection = qtXcbConnection();
    if (connection == nullptr)
        return nullptr;
    // Qt has already enabled the extension on its connection, or found it missing.
    const xcb_query_extension_reply_t* xkb = xcb_get_extension_data(connection, &xcb_xkb_id);
    if (xkb == nullptr || !xkb->present)
        return nullptr;
    std::unique_ptr<XkbStateFollower> follower(new XkbStateFollower(connection, xkb->first_event));
    qGuiApp->installNativeEventFilter(follower.get());
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, follower.get(),
            [f = follower.get()](Qt::ApplicationState state) { f->follow(state == Qt::ApplicationActive); });
    follower->follow(QGuiApplication::applicationState() == Qt::ApplicationActive);
    return follower;
}

XkbStateFollower::XkbStateFollower(xcb_connection_t* connection, int firstEvent)
    : connection_(connection)
    , firstEvent_(firstEvent) {}

XkbStateFollower::~XkbStateFollower() {
    if (qGuiApp != nullptr)
        qGuiApp->removeNativeEventFilter(this);
    // Qt's selection as it was, for whatever of the application outlives the platform.
    follow(true);
}

bool XkbStateFollower::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (following_ || eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_xkb_map_notify_event_t*>(message);
    if ((event->response_type & 0x7f) != firstEvent_ ||
        (event->xkbType != XCB_XKB_NEW_KEYBOARD_NOTIFY && event->xkbType != XCB_XKB_MAP_NOTIFY))
        return false;
    keymapChanged_ = true;
    keyboard_ = event->deviceID; // the same place in both
    return true;
}

void XkbStateFollower::follow(bool on) {
    if (on == following_)
        return;
    following_ = on;
    constexpr std::uint16_t state = XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    // Only the state notification is affected; on, every detail of it, as Qt selects it.
    xcb_xkb_select_events(connection_, XCB_XKB_ID_USE_CORE_KBD, state, on ? 0 : state, on ? state : 0, 0, 0,
                          nullptr);
    QWindow* window = QGuiApplication::focusWindow();
    if (on && keymapChanged_ && window != nullptr) {
        keymapChanged_ = false;
        // A change of every part of the map, as the server would announce it; Qt loads the whole keymap
        // on any. With no event mask the server hands the event to the client that made the window.
        xcb_xkb_map_notify_event_t map;
        std::memset(&map, 0, sizeof map);
        map.response_type = static_cast<std::uint8_t>(firstEvent_);
        map.xkbType = XCB_XKB_MAP_NOTIFY;
        map.time = XCB_CURRENT_TIME;
        map.deviceID = keyboard_;
        map.changed = 0xff;
        map.minKeyCode = xcb_get_setup(connection_)->min_keycode;
        map.maxKeyCode = xcb_get_setup(connection_)->max_keycode;
        static_assert(sizeof map == 32, "a core-sized event");
        xcb_send_event(connection_, 0, static_cast<xcb_window_t>(window->winId()), 0,
                       reinterpret_cast<const char*>(&map));
    }
    xcb_flush(connection_);
}

} // namespace tarvo

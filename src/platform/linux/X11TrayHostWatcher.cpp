#include "platform/linux/X11TrayHostWatcher.h"

#include "platform/linux/QtXcb.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <cstdlib>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace tarvo {

namespace {

int displayScreen() {
    int screen = 0;
    char* host = nullptr;
    int display = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) == 0)
        screen = 0;
    std::free(host);
    return screen;
}

} // namespace

X11TrayHostWatcher::X11TrayHostWatcher(xcb_connection_t* connection, QObject* parent)
    : QObject(parent)
    , connection_(connection) {
    selection_ = internAtom(connection_, "_NET_SYSTEM_TRAY_S" + std::to_string(displayScreen()));
    manager_ = internAtom(connection_, "MANAGER");
    follow();
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11TrayHostWatcher::~X11TrayHostWatcher() {
    if (QCoreApplication::instance() != nullptr)
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

void X11TrayHostWatcher::follow() {
    owner_ = 0;
    if (selection_ == 0)
        return;
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_, xcb_get_selection_owner(connection_, selection_), nullptr));
    if (!reply || reply->owner == 0)
        return;
    // Checked, so that an owner that has just gone away costs a failed request here instead of an error
    // report in Qt's event handling; it then counts as no host.
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const xcb_void_cookie_t cookie =
        xcb_change_window_attributes_checked(connection_, reply->owner, XCB_CW_EVENT_MASK, &mask);
    if (const XcbReply<xcb_generic_error_t> error(xcb_request_check(connection_, cookie)); error)
        return;
    owner_ = reply->owner;
}

bool X11TrayHostWatcher::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    bool changed = false;
    switch (event->response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE: {
        const auto* client = static_cast<const xcb_client_message_event_t*>(message);
        changed = client->type == manager_ && client->format == 32 && client->data.data32[1] == selection_;
        break;
    }
    case XCB_DESTROY_NOTIFY:
        changed = owner_ != 0 && static_cast<const xcb_destroy_notify_event_t*>(message)->window == owner_;
        break;
    default:
        break;
    }
    // Queued: Qt's own tray bookkeeping handles the same event after this filter, and whoever listens
    // should see the state after it. The round trips of follow() stay out of event dispatching too.
    if (changed)
        QMetaObject::invokeMethod(this, &X11TrayHostWatcher::recheck, Qt::QueuedConnection);
    return false;
}

void X11TrayHostWatcher::recheck() {
    // After a DestroyNotify a successor may already own the selection (its MANAGER message follows).
    follow();
    emit hostChanged();
}

} // namespace tarvo

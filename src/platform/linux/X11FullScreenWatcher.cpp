#include "platform/linux/X11FullScreenWatcher.h"

#include "platform/linux/QtXcb.h"

#include <QGuiApplication>
#include <QMetaObject>
#include <QObject>

#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

namespace tarvo {

std::unique_ptr<X11FullScreenWatcher> X11FullScreenWatcher::attach(std::function<void()> changed) {
    xcb_connection_t* connection = qtXcbConnection();
    if (connection == nullptr)
        return nullptr;
    std::unique_ptr<X11FullScreenWatcher> watcher(new X11FullScreenWatcher(connection, std::move(changed)));
    qGuiApp->installNativeEventFilter(watcher.get());
    return watcher;
}

X11FullScreenWatcher::X11FullScreenWatcher(xcb_connection_t* connection, std::function<void()> changed)
    : connection_(connection)
    , changed_(std::move(changed))
    , context_(std::make_unique<QObject>())
    , root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    , idBase_(xcb_get_setup(connection)->resource_id_base)
    , idMask_(xcb_get_setup(connection)->resource_id_mask)
    , activeAtom_(internAtom(connection, "_NET_ACTIVE_WINDOW"))
    , stateAtom_(internAtom(connection, "_NET_WM_STATE"))
    , fullScreenAtom_(internAtom(connection, "_NET_WM_STATE_FULLSCREEN")) {
    followActive();
}

X11FullScreenWatcher::~X11FullScreenWatcher() {
    if (qGuiApp != nullptr)
        qGuiApp->removeNativeEventFilter(this);
    if (active_ != 0 && !ours(active_))
        listen(active_, XCB_EVENT_MASK_NO_EVENT);
}

bool X11FullScreenWatcher::ours(std::uint32_t window) const {
    // The server hands each client its own range of resource identifiers.
    return (window & ~idMask_) == idBase_;
}

void X11FullScreenWatcher::listen(std::uint32_t window, std::uint32_t mask) const {
    // Checked, so that a window that has just gone away costs a failed request here instead of an error
    // report in Qt's event handling.
    const xcb_void_cookie_t cookie =
        xcb_change_window_attributes_checked(connection_, window, XCB_CW_EVENT_MASK, &mask);
    std::free(xcb_request_check(connection_, cookie));
}

bool X11FullScreenWatcher::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto* notify = static_cast<const xcb_property_notify_event_t*>(message);
    if (notify->window != root_ && !ours(notify->window))
        ++foreignNotifications_;
    if (notify->window == root_ && notify->atom == activeAtom_)
        schedule(true);
    else if (notify->window == active_ && notify->atom == stateAtom_)
        schedule(false);
    return false;
}

void X11FullScreenWatcher::schedule(bool activeChanged) {
    const bool queued = activePending_ || statePending_;
    (activeChanged ? activePending_ : statePending_) = true;
    if (!queued)
        QMetaObject::invokeMethod(
            context_.get(), [this] { follow(); }, Qt::QueuedConnection);
}

void X11FullScreenWatcher::follow() {
    const bool before = fullScreen_;
    if (activePending_)
        followActive();
    else if (statePending_)
        readState();
    activePending_ = statePending_ = false;
    if (fullScreen_ != before)
        changed_();
}

void X11FullScreenWatcher::followActive() {
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, root_, activeAtom_, XCB_ATOM_WINDOW, 0, 1), nullptr));
    std::uint32_t window = 0;
    if (reply && reply->type == XCB_ATOM_WINDOW && reply->format == 32 &&
        xcb_get_property_value_length(reply.get()) >= 4)
        std::memcpy(&window, xcb_get_property_value(reply.get()), sizeof window);
    if (window != active_) {
        if (active_ != 0 && !ours(active_))
            listen(active_, XCB_EVENT_MASK_NO_EVENT);
        if (window != 0 && !ours(window))
            listen(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
        active_ = window;
    }
    readState();
}

bool X11FullScreenWatcher::windowManager() const {
    const std::uint32_t check = internAtom(connection_, "_NET_SUPPORTING_WM_CHECK");
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, root_, check, XCB_ATOM_WINDOW, 0, 1), nullptr));
    return reply && reply->type == XCB_ATOM_WINDOW;
}

void X11FullScreenWatcher::readState() {
    fullScreen_ = false;
    if (active_ == 0)
        return;
    xcb_generic_error_t* error = nullptr; // a window gone meanwhile: not full screen, and no report
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, active_, stateAtom_, XCB_ATOM_ATOM, 0, 64), &error));
    std::free(error);
    if (reply && reply->type == XCB_ATOM_ATOM && reply->format == 32) {
        const auto* atoms = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
        const int count = xcb_get_property_value_length(reply.get()) / 4;
        for (int i = 0; i < count && !fullScreen_; ++i)
            fullScreen_ = atoms[i] == fullScreenAtom_;
    }
}

} // namespace tarvo

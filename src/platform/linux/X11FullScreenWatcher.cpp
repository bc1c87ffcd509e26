#include "platform/linux/X11FullScreenWatcher.h"

#include <QSocketNotifier>

#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

namespace tarvo {

std::unique_ptr<X11FullScreenWatcher> X11FullScreenWatcher::open(const QByteArray& display,
                                                                 std::function<void()> changed) {
    xcb_connection_t* connection = xcb_connect(display.isEmpty() ? nullptr : display.constData(), nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<X11FullScreenWatcher>(new X11FullScreenWatcher(connection, std::move(changed)));
}

X11FullScreenWatcher::X11FullScreenWatcher(xcb_connection_t* connection, std::function<void()> changed)
    : connection_(connection)
    , changed_(std::move(changed))
    , root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    , activeAtom_(atom("_NET_ACTIVE_WINDOW"))
    , stateAtom_(atom("_NET_WM_STATE"))
    , fullScreenAtom_(atom("_NET_WM_STATE_FULLSCREEN"))
    , notifier_(
          std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read)) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
    followActive();
    service(); // what came along with the replies
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { service(); });
}

X11FullScreenWatcher::~X11FullScreenWatcher() {
    notifier_.reset(); // before the socket it watches closes
    xcb_disconnect(connection_);
}

std::uint32_t X11FullScreenWatcher::atom(const char* name) const {
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr);
    const std::uint32_t value = reply ? reply->atom : 0;
    std::free(reply);
    return value;
}

void X11FullScreenWatcher::service() {
    const bool before = fullScreen_;
    // The replies read while following a change may bring further events along, which then wait in
    // XCB's queue, not on the socket: they are taken too before the next wait for the socket.
    for (bool readSocket = true;; readSocket = false) {
        bool activeChanged = false, stateChanged = false;
        while (xcb_generic_event_t* event =
                   readSocket ? xcb_poll_for_event(connection_) : xcb_poll_for_queued_event(connection_)) {
            if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
                const auto* notify = reinterpret_cast<const xcb_property_notify_event_t*>(event);
                ++notifications_;
                activeChanged |= notify->window == root_ && notify->atom == activeAtom_;
                stateChanged |= notify->window == active_ && notify->atom == stateAtom_;
            }
            std::free(event); // an error (a window that went away under a request) says nothing new
        }
        if (xcb_connection_has_error(connection_)) {
            notifier_->setEnabled(false); // a closed socket stays readable: never spin on it
            fullScreen_ = false;
            break;
        }
        if (activeChanged)
            followActive();
        else if (stateChanged)
            readState();
        else
            break;
    }
    if (fullScreen_ != before)
        changed_();
}

void X11FullScreenWatcher::followActive() {
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, root_, activeAtom_, XCB_ATOM_WINDOW, 0, 1), nullptr);
    std::uint32_t window = 0;
    if (reply && reply->type == XCB_ATOM_WINDOW && reply->format == 32 &&
        xcb_get_property_value_length(reply) >= 4)
        std::memcpy(&window, xcb_get_property_value(reply), sizeof window);
    std::free(reply);
    if (window != active_) {
        // Only the active window's notifications reach us: the one before is left alone again.
        const std::uint32_t none = XCB_EVENT_MASK_NO_EVENT, mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        if (active_ != 0)
            xcb_change_window_attributes(connection_, active_, XCB_CW_EVENT_MASK, &none);
        if (window != 0)
            xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &mask);
        active_ = window;
    }
    readState();
}

bool X11FullScreenWatcher::windowManager() const {
    const std::uint32_t check = atom("_NET_SUPPORTING_WM_CHECK");
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, root_, check, XCB_ATOM_WINDOW, 0, 1), nullptr);
    const bool present = reply && reply->type == XCB_ATOM_WINDOW;
    std::free(reply);
    return present;
}

void X11FullScreenWatcher::readState() {
    fullScreen_ = false;
    if (active_ == 0)
        return;
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, active_, stateAtom_, XCB_ATOM_ATOM, 0, 64), nullptr);
    if (reply && reply->type == XCB_ATOM_ATOM && reply->format == 32) {
        const auto* atoms = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
        const int count = xcb_get_property_value_length(reply) / 4;
        for (int i = 0; i < count && !fullScreen_; ++i)
            fullScreen_ = atoms[i] == fullScreenAtom_;
    }
    std::free(reply);
}

} // namespace tarvo

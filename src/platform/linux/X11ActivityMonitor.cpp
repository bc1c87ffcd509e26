#include "platform/linux/X11ActivityMonitor.h"

#include "platform/linux/SystemClock.h"

#include <QSocketNotifier>

#include <cstdlib>
#include <utility>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

namespace tarvo {

namespace {

constexpr std::uint32_t keyboardMask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS;
constexpr std::uint32_t mouseMask =
    XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS;

bool isChannel(std::int32_t channel) {
    return channel == 0 || channel == 1;
}

} // namespace

std::unique_ptr<X11ActivityMonitor> X11ActivityMonitor::open(const QByteArray& displayName, QString* whyNot,
                                                             const Clock* clock) {
    const auto fail = [whyNot](const QString& reason) {
        if (whyNot)
            *whyNot = reason;
        return std::unique_ptr<X11ActivityMonitor>();
    };
    const QString shownName =
        QString::fromLocal8Bit(displayName.isEmpty() ? qgetenv("DISPLAY") : displayName);

    xcb_connection_t* connection =
        xcb_connect(displayName.isEmpty() ? nullptr : displayName.constData(), nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return fail(QStringLiteral("cannot connect to the X11 display \"%1\"").arg(shownName));
    }
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present) {
        xcb_disconnect(connection);
        return fail(QStringLiteral("the X11 display \"%1\" has no XInput extension").arg(shownName));
    }
    // Announcing 2.2 (raw events exist since 2.0) makes the server deliver raw events even while another
    // client grabs the keyboard or pointer, as a menu or a game does.
    xcb_input_xi_query_version_reply_t* version =
        xcb_input_xi_query_version_reply(connection, xcb_input_xi_query_version(connection, 2, 2), nullptr);
    const bool xi2 = version && version->major_version >= 2;
    std::free(version);
    if (!xi2) {
        xcb_disconnect(connection);
        return fail(QStringLiteral("the X11 display \"%1\" has no XInput 2 extension").arg(shownName));
    }
    return std::unique_ptr<X11ActivityMonitor>(
        new X11ActivityMonitor(connection, shownName, extension->major_opcode, clock));
}

X11ActivityMonitor::X11ActivityMonitor(xcb_connection_t* connection, QString displayName,
                                       std::uint8_t xinputOpcode, const Clock* clock)
    : connection_(connection)
    , displayName_(std::move(displayName))
    , clock_(clock)
    , xinputOpcode_(xinputOpcode)
    , notifier_(
          std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { drain(); });
}

X11ActivityMonitor::~X11ActivityMonitor() {
    notifier_.reset(); // before the socket it watches closes
    xcb_disconnect(connection_);
}

void X11ActivityMonitor::InstallFilter(std::int32_t channel, bool on) {
    if (!isChannel(channel))
        return;
    on_[static_cast<size_t>(channel)] = on;
    armed_[static_cast<size_t>(channel)] = on;
    select();
}

std::int32_t X11ActivityMonitor::VexGetTime(std::int32_t channel) {
    if (!isChannel(channel))
        return 0;
    const auto c = static_cast<size_t>(channel);
    // Input that has arrived but whose wakeup has not been serviced yet still belongs before this look.
    drain();
    reported_[c] = stamps_[c];
    if (on_[c] && !armed_[c]) {
        armed_[c] = true;
        select();
    }
    return stamps_[c];
}

QString X11ActivityMonitor::description() const {
    return QStringLiteral("Natural pauses are detected from the keyboard and mouse of the X11 display.");
}

QString X11ActivityMonitor::lostReason() const {
    if (!dead_)
        return {};
    return QStringLiteral("the connection to the X11 display \"%1\" was lost").arg(displayName_);
}

void X11ActivityMonitor::drain() {
    if (dead_)
        return;
    takeEvents(true);
    if (xcb_connection_has_error(connection_)) {
        lost();
        return;
    }
    select(); // stop the channels that have just been heard from
}

void X11ActivityMonitor::takeEvents(bool readSocket) {
    while (xcb_generic_event_t* event =
               readSocket ? xcb_poll_for_event(connection_) : xcb_poll_for_queued_event(connection_)) {
        if ((event->response_type & 0x7f) == XCB_GE_GENERIC) {
            const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event);
            if (generic->extension == xinputOpcode_)
                handleEvent(generic->event_type);
        }
        std::free(event); // anything else (an error reply, say) has nothing to tell us
    }
}

void X11ActivityMonitor::handleEvent(std::uint16_t xinputEventType) {
    ++eventsReceived_;
    switch (xinputEventType) {
    case XCB_INPUT_RAW_KEY_PRESS:
        stamp(0);
        break;
    case XCB_INPUT_RAW_MOTION:
    case XCB_INPUT_RAW_BUTTON_PRESS:
        stamp(1);
        break;
    default:
        break;
    }
}

void X11ActivityMonitor::stamp(int channel) {
    const auto c = static_cast<size_t>(channel);
    if (!on_[c])
        return; // still in flight when the channel was switched off
    std::int32_t now = clock_ ? clock_->tickCount() : SystemClock::currentTickCount();
    if (now == reported_[c]) // the previous look returned this very millisecond: still count as growth
        now = static_cast<std::int32_t>(static_cast<std::uint32_t>(now) + 1u);
    stamps_[c] = now;
    armed_[c] = false;
}

void X11ActivityMonitor::select() {
    // Loops because sending may read events into XCB's queue (where the socket notifier no longer sees
    // them), and one of those may disarm a channel.
    while (!dead_) {
        const std::uint32_t wanted = (armed_[0] ? keyboardMask : 0u) | (armed_[1] ? mouseMask : 0u);
        if (wanted == selectedMask_)
            return;
        struct {
            xcb_input_event_mask_t head;
            std::uint32_t bits;
        } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, wanted};
        for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_)); screens.rem;
             xcb_screen_next(&screens))
            xcb_input_xi_select_events(connection_, screens.data->root, 1, &mask.head);
        selectedMask_ = wanted;
        if (xcb_flush(connection_) <= 0) {
            lost();
            return;
        }
        takeEvents(false);
    }
}

void X11ActivityMonitor::lost() {
    if (dead_)
        return;
    dead_ = true;
    notifier_->setEnabled(false); // a closed socket stays readable: never spin on it
    armed_ = {false, false};
}

} // namespace tarvo

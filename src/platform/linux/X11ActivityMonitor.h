#pragma once

#include "core/Clock.h"
#include "platform/linux/ActivitySource.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>

class QSocketNotifier;
struct xcb_connection_t;

namespace tarvo {

// Keyboard and mouse activity on an X11 display, from XInput2 raw events.
//
// Where the events come from. Raw events are selected on the root window of every screen for
// XIAllMasterDevices, so every keyboard and pointer counts, whichever window has the focus and even
// while another client holds a grab (the server delivers raw events regardless of grabs to clients
// that announce XInput 2.1 or later; we announce 2.2). Channel 0 is XI_RawKeyPress; channel 1 is
// XI_RawMotion and XI_RawButtonPress (buttons and the wheel). A channel that is off is not selected.
//
// Its own connection. The monitor opens a dedicated XCB connection instead of sharing Qt's: selecting
// for a device set on the root window replaces that client's earlier selection for the same set, so
// sharing would meddle with Qt's own input selection. XCB rather than Xlib keeps the connection's
// errors to itself; Xlib's error handlers are process-wide and Qt installs its own. The connection's
// socket is watched by a QSocketNotifier on the thread that creates the monitor, the user-interface
// thread, so stamps are written and read on one thread without locks.
//
// Why its cost does not follow the input rate. The scheduler asks each channel's stamp every few
// seconds and wants to know only whether it grew since the previous look. So one event per channel
// between two looks is all the information there is to have. When a channel's event arrives the monitor
// stamps the channel and at once deselects that channel's events ("disarms" it), so the server stops
// sending them; VexGetTime re-selects ("re-arms") the channel after reading it. A 1000 Hz mouse thus
// costs one event (plus the few already on their way when the deselection reaches the server) and one
// deselection and one re-selection per look, not a thousand wakeups a second. A channel that stays quiet
// costs nothing at all. Each wakeup drains every event that is waiting.
//
// The stamp is therefore the tick count of the first input after the previous look (or a later one that
// was already in flight), not necessarily of the very last input: enough for "did it grow". One detail
// keeps that answer honest: an event seen in the same millisecond as the stamp the previous look returned
// is stamped one millisecond later, so that it still counts as growth.
//
// If the connection breaks (the X server goes away, or closes it) the monitor stops watching, never spins
// on the dead socket and reports itself lost, so that the program's monitor connects anew or falls back
// (FallbackActivityMonitor).
class X11ActivityMonitor : public ActivitySource {
public:
    // Connects to the display (empty: $DISPLAY). Returns null, with the reason in whyNot, when there is
    // no such display or it lacks XInput 2.0 or later. Stamps are read from the clock (null: the system's
    // tick count, SystemClock), which must outlive the monitor.
    static std::unique_ptr<X11ActivityMonitor> open(const QByteArray& displayName, QString* whyNot,
                                                    const Clock* clock = nullptr);

    ~X11ActivityMonitor() override;
    X11ActivityMonitor(const X11ActivityMonitor&) = delete;
    X11ActivityMonitor& operator=(const X11ActivityMonitor&) = delete;

    void InstallFilter(std::int32_t channel, bool on) override;
    std::int32_t VexGetTime(std::int32_t channel) override;
    QString description() const override;
    QString lostReason() const override;

    // Input events that have reached this process since it started: the measure of what the design above
    // saves, for the benchmark and the tests.
    std::uint64_t eventsReceived() const { return eventsReceived_; }

private:
    X11ActivityMonitor(xcb_connection_t* connection, QString displayName, std::uint8_t xinputOpcode,
                       const Clock* clock);

    void drain();
    void takeEvents(bool readSocket);
    void handleEvent(std::uint16_t xinputEventType);
    void stamp(int channel);
    void select();
    void lost();

    xcb_connection_t* connection_;
    QString displayName_;
    const Clock* clock_; // null: SystemClock
    std::uint8_t xinputOpcode_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::array<bool, 2> on_{false, false};
    // A channel is armed while its events are selected: switched on and not yet heard from since the
    // scheduler's last look.
    std::array<bool, 2> armed_{false, false};
    std::array<std::int32_t, 2> stamps_{0, 0};
    std::array<std::int32_t, 2> reported_{0, 0};
    std::uint32_t selectedMask_ = 0;
    std::uint64_t eventsReceived_ = 0;
    bool dead_ = false;
};

} // namespace tarvo

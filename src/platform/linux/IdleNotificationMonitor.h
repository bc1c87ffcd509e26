#pragma once

#include "platform/linux/ActivitySource.h"

#include <array>
#include <cstdint>

namespace tarvo {

class Clock;

// Activity from a desktop that tells only when the user has gone idle and when they are back, not each
// input: the compositor's idle notification. A subclass does the talking to the desktop; this part turns
// its two notifications into the stamps of ActivityMonitor. Keyboard and mouse cannot be told apart, so
// both channels get the same stamps.
//
// What the desktop is asked for. "Tell me when the user has been idle for idleAfter ms" (idled(), which
// means the last input was idleAfter ms ago), and after that "tell me at the next input" (resumed()).
// While the user works, nothing is said at all; a pause of idleAfter or more costs one notification
// each way. Neither the input rate nor the scheduler's looks cost anything.
//
// Which stamp a look reports. Idle: the time of the last input, idleAfter before idled() came. Active:
// the tick count of the look itself. The scheduler asks whether a stamp grew since its previous look,
// an interval of at least kShortestLookInterval earlier, and that answer is exact as long as idleAfter
// is shorter than that interval:
// - active at this look means the last input was less than idleAfter ago, so after the previous look:
//   the stamp, now, is above anything reported before: activity.
// - idle at this look: the stamp is the last input. It lies above the previous look's stamp exactly
//   when that input came after the previous look (an earlier one would have been before the previous
//   look's now, or equal to its stamp if that look was idle too).
// A notification that arrives late makes the last input look later than it was: a pause may be missed
// by a hair, but input never passes for a pause.
class IdleNotificationMonitor : public ActivitySource {
public:
    // The shortest interval between two looks of the scheduler (its shortest natural-pause check).
    static constexpr std::int32_t kShortestLookInterval = 3000;
    // The idle time after which the desktop is to say so: well below the shortest look interval.
    static constexpr std::int32_t kIdleAfter = 2000;

    void InstallFilter(std::int32_t channel, bool on) override;
    std::int32_t VexGetTime(std::int32_t channel) override;

protected:
    explicit IdleNotificationMonitor(const Clock& clock);

    // Asks the desktop to notify idled() after kIdleAfter ms without input (at once if the user is idle
    // already) and, from then on, resumed() at the next input, and idled() again after each return.
    // Called when the first channel goes on.
    virtual void startWatching() = 0;
    // Withdraws the requests; called when the last channel goes off.
    virtual void stopWatching() = 0;

    // The notifications, as they arrive.
    void idled();
    void resumed();

private:
    const Clock& clock_;
    std::array<bool, 2> on_{false, false};
    std::array<std::int32_t, 2> stamps_{0, 0};
    bool watching_ = false;
    bool idle_ = false;
    std::int32_t lastInput_ = 0;
};

} // namespace tarvo

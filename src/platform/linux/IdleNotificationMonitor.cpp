#include "platform/linux/IdleNotificationMonitor.h"

#include "core/Clock.h"

namespace tarvo {

static_assert(IdleNotificationMonitor::kIdleAfter < IdleNotificationMonitor::kShortestLookInterval);

IdleNotificationMonitor::IdleNotificationMonitor(const Clock& clock)
    : clock_(clock) {}

void IdleNotificationMonitor::InstallFilter(std::int32_t channel, bool on) {
    if (channel != 0 && channel != 1)
        return;
    on_[static_cast<std::size_t>(channel)] = on;
    const bool wanted = on_[0] || on_[1];
    if (wanted == watching_)
        return;
    watching_ = wanted;
    // A fresh watch starts from "active"; if the user is idle already the desktop says so at once.
    idle_ = false;
    if (wanted)
        startWatching();
    else
        stopWatching();
}

std::int32_t IdleNotificationMonitor::VexGetTime(std::int32_t channel) {
    if (channel != 0 && channel != 1)
        return 0;
    const auto c = static_cast<std::size_t>(channel);
    if (on_[c])
        stamps_[c] = idle_ ? lastInput_ : clock_.tickCount();
    return stamps_[c];
}

void IdleNotificationMonitor::idled() {
    idle_ = true;
    // Wrapping arithmetic, like the tick count itself.
    lastInput_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(clock_.tickCount()) -
                                           static_cast<std::uint32_t>(kIdleAfter));
}

void IdleNotificationMonitor::resumed() {
    idle_ = false;
}

} // namespace tarvo

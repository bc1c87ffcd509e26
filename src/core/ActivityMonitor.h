#pragma once

#include <QString>

#include <cstdint>

namespace tarvo {

// The user's keyboard and mouse activity, on two channels: 0 is keyboard use, 1 is mouse movement
// (with buttons and wheel). Stamps are on the tick-count time base of Clock::tickCount. The scheduler
// only ever asks whether a channel's stamp grew since it last looked, so an implementation may record
// just the first input after each look: it need not (and should not) wake for every event.
class ActivityMonitor {
public:
    virtual ~ActivityMonitor() = default;

    // Switches watching of one channel on or off. A channel that is off is not watched at all and its
    // stamp stays where it was.
    virtual void InstallFilter(std::int32_t channel, bool on) = 0;

    // The tick count at the last input seen on the channel (0 before any).
    virtual std::int32_t VexGetTime(std::int32_t channel) = 0;

    // One line for the status window on where the activity comes from, or, where no input can be seen
    // and natural pauses go undetected, why not.
    virtual QString description() const = 0;
};

} // namespace tarvo

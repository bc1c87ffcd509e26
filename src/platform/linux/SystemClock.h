#pragma once

#include "core/Clock.h"

namespace tarvo {

// The tick count on CLOCK_BOOTTIME: like the classic tick count it keeps counting while the machine
// is suspended, so a night in standby counts as a (very) natural pause.
class SystemClock : public Clock {
public:
    std::int32_t tickCount() const override;
    QDateTime localNow() const override;
    // CLOCK_BOOTTIME less CLOCK_MONOTONIC: the two run together except while the machine sleeps.
    std::int64_t suspendedMs() const override;

    // The same reading for code that has no Clock at hand (the activity monitor stamps events with it).
    static std::int32_t currentTickCount();
};

} // namespace tarvo

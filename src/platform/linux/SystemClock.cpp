#include "platform/linux/SystemClock.h"

#include <ctime>

namespace tarvo {

std::int32_t SystemClock::currentTickCount() {
    timespec ts{};
    clock_gettime(CLOCK_BOOTTIME, &ts);
    const auto ms =
        static_cast<std::uint64_t>(ts.tv_sec) * 1000u + static_cast<std::uint64_t>(ts.tv_nsec) / 1000000u;
    // Truncated to 32 bits and read as signed: the value wraps like the classic tick count.
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(ms));
}

std::int32_t SystemClock::tickCount() const {
    return currentTickCount();
}

std::int64_t SystemClock::suspendedMs() const {
    const auto ms = [](clockid_t id) {
        timespec ts{};
        clock_gettime(id, &ts);
        return static_cast<std::int64_t>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
    };
    return ms(CLOCK_BOOTTIME) - ms(CLOCK_MONOTONIC);
}

QDateTime SystemClock::localNow() const {
    return QDateTime::currentDateTime();
}

} // namespace tarvo

#pragma once

#include "core/Clock.h"

namespace tarvo {

// A clock that moves only when a test moves it. The tick count and the local time advance together.
class FakeClock : public Clock {
public:
    explicit FakeClock(std::int32_t tick = 1000,
                       QDateTime local = QDateTime(QDate(2026, 11, 22), QTime(9, 0)))
        : tick_(tick)
        , local_(std::move(local)) {}

    std::int32_t tickCount() const override { return tick_; }
    QDateTime localNow() const override { return local_; }
    std::int64_t suspendedMs() const override { return suspended_; }

    // Moves both readings forward; the tick count wraps like the real one.
    void advance(std::int64_t milliseconds) {
        tick_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(tick_) +
                                          static_cast<std::uint32_t>(milliseconds));
        local_ = local_.addMSecs(milliseconds);
    }
    // The machine sleeps: the readings move on as in advance(), and no timer notices.
    void suspend(std::int64_t milliseconds) {
        advance(milliseconds);
        suspended_ += milliseconds;
    }
    void setTickCount(std::int32_t tick) { tick_ = tick; }
    void setLocalNow(const QDateTime& local) { local_ = local; }

private:
    std::int32_t tick_;
    QDateTime local_;
    std::int64_t suspended_ = 0;
};

} // namespace tarvo

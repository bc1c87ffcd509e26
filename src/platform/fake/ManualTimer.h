#pragma once

#include "core/Timer.h"

#include <cstdint>
#include <vector>

namespace tarvo {

class FakeClock;
class ManualTimeline;

// A timer that fires only when a test says so: directly with fire(), or when its ManualTimeline
// advances past its due time.
class ManualTimer : public Timer {
public:
    explicit ManualTimer(Listener& listener, ManualTimeline* timeline = nullptr);
    ~ManualTimer() override;

    void setInterval(int milliseconds) override;
    int interval() const override { return interval_; }
    void setEnabled(bool enabled) override;
    bool isEnabled() const override { return enabled_; }

    // Delivers one tick if the timer would run (enabled with a positive interval); returns whether it did.
    bool fire();
    bool isRunning() const { return enabled_ && interval_ > 0; }
    std::int64_t dueAt() const { return dueAt_; }
    int firedCount() const { return fired_; }

private:
    friend class ManualTimeline;
    void restart();

    ManualTimeline* timeline_;
    int interval_ = 0;
    bool enabled_ = false;
    std::int64_t dueAt_ = 0;
    int fired_ = 0;
};

// Simulated time for a set of manual timers and, optionally, a fake clock: advance() moves time forward
// and fires every timer that falls due, in order of due time, moving the clock to each tick's moment
// first. Timers due at the same moment fire in the order they were created. An hour of schedule runs
// in microseconds.
class ManualTimeline : public TimerFactory {
public:
    explicit ManualTimeline(FakeClock* clock = nullptr)
        : clock_(clock) {}

    std::unique_ptr<Timer> createTimer(Timer::Listener& listener) override {
        return std::make_unique<ManualTimer>(listener, this);
    }

    std::int64_t now() const { return now_; }
    // Returns the number of ticks delivered.
    int advance(std::int64_t milliseconds);

private:
    friend class ManualTimer;
    void moveTo(std::int64_t t);

    FakeClock* clock_;
    std::int64_t now_ = 0;
    std::vector<ManualTimer*> timers_;
};

} // namespace tarvo

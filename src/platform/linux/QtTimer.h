#pragma once

#include "core/Timer.h"

#include <QTimer>

namespace tarvo {

// A form timer on QTimer. Precise timing: the 100 ms break tick and the minute tick must not drift by
// the 5 % that Qt's coarse timers allow, and they wake the process only when they are due anyway.
class QtTimer : public Timer {
public:
    explicit QtTimer(Listener& listener);
    void setInterval(int milliseconds) override;
    int interval() const override { return interval_; }
    void setEnabled(bool enabled) override;
    bool isEnabled() const override { return enabled_; }

private:
    void apply();

    QTimer timer_;
    int interval_ = 0;
    bool enabled_ = false;
};

class QtTimerFactory : public TimerFactory {
public:
    std::unique_ptr<Timer> createTimer(Timer::Listener& listener) override {
        return std::make_unique<QtTimer>(listener);
    }
};

} // namespace tarvo

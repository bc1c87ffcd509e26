#include "platform/fake/ManualTimer.h"

#include "platform/fake/FakeClock.h"

#include <algorithm>

namespace tarvo {

ManualTimer::ManualTimer(Listener& listener, ManualTimeline* timeline)
    : Timer(listener)
    , timeline_(timeline) {
    if (timeline_)
        timeline_->timers_.push_back(this);
}

ManualTimer::~ManualTimer() {
    if (timeline_)
        std::erase(timeline_->timers_, this);
}

void ManualTimer::restart() {
    dueAt_ = (timeline_ ? timeline_->now() : 0) + interval_;
}

void ManualTimer::setInterval(int milliseconds) {
    interval_ = milliseconds;
    if (enabled_)
        restart();
}

void ManualTimer::setEnabled(bool enabled) {
    if (enabled == enabled_)
        return;
    enabled_ = enabled;
    if (enabled_)
        restart();
}

bool ManualTimer::fire() {
    if (!isRunning())
        return false;
    ++fired_;
    restart();
    tick();
    return true;
}

void ManualTimeline::moveTo(std::int64_t t) {
    if (clock_)
        clock_->advance(t - now_);
    now_ = t;
}

int ManualTimeline::advance(std::int64_t milliseconds) {
    const std::int64_t end = now_ + milliseconds;
    int delivered = 0;
    while (true) {
        ManualTimer* next = nullptr;
        for (ManualTimer* t : timers_)
            if (t->isRunning() && t->dueAt() <= end && (!next || t->dueAt() < next->dueAt()))
                next = t;
        if (!next)
            break;
        moveTo(std::max(now_, next->dueAt()));
        next->fire();
        ++delivered;
    }
    moveTo(end);
    return delivered;
}

} // namespace tarvo

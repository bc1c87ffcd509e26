#pragma once

#include <memory>

namespace tarvo {

// An interval timer of a form, with the semantics the schedule is written in:
//  - it fires every `interval` milliseconds while it is enabled;
//  - an interval of 0 (or less) never fires, even when enabled;
//  - setting the interval of an enabled timer restarts its period; enabling an enabled timer
//    changes nothing.
// Ticks are delivered on the user-interface thread and never interrupt another handler.
class Timer {
public:
    // Where a timer's ticks go; whoever creates the timer implements it.
    class Listener {
    public:
        virtual void timerTick(Timer& timer) = 0;

    protected:
        ~Listener() = default;
    };

    explicit Timer(Listener& listener)
        : listener_(listener) {}
    virtual ~Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    virtual void setInterval(int milliseconds) = 0;
    virtual int interval() const = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual bool isEnabled() const = 0;

protected:
    void tick() { listener_.timerTick(*this); }

private:
    Listener& listener_;
};

class TimerFactory {
public:
    virtual ~TimerFactory() = default;
    virtual std::unique_ptr<Timer> createTimer(Timer::Listener& listener) = 0;
};

} // namespace tarvo

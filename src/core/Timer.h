#pragma once

#include <functional>
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
    virtual ~Timer() = default;

    virtual void setInterval(int milliseconds) = 0;
    virtual int interval() const = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual bool isEnabled() const = 0;

    void setHandler(std::function<void()> handler) { handler_ = std::move(handler); }

protected:
    void tick() {
        if (handler_)
            handler_();
    }

private:
    std::function<void()> handler_;
};

class TimerFactory {
public:
    virtual ~TimerFactory() = default;
    virtual std::unique_ptr<Timer> createTimer() = 0;
};

} // namespace tarvo

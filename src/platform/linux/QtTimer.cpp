#include "platform/linux/QtTimer.h"

namespace tarvo {

QtTimer::QtTimer(Listener& listener)
    : Timer(listener) {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { tick(); });
}

void QtTimer::setInterval(int milliseconds) {
    interval_ = milliseconds;
    if (enabled_)
        apply(); // a new interval restarts the period
}

void QtTimer::setEnabled(bool enabled) {
    if (enabled == enabled_)
        return;
    enabled_ = enabled;
    apply();
}

void QtTimer::apply() {
    if (enabled_ && interval_ > 0)
        timer_.start(interval_);
    else
        timer_.stop();
}

} // namespace tarvo

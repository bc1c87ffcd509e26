#pragma once

#include <QDateTime>
#include <QString>

#include <cstdint>

namespace tarvo {

// Every reading of time goes through this seam, so that tests can run hours of schedule in
// milliseconds on a fake clock.
class Clock {
public:
    virtual ~Clock() = default;

    // Milliseconds since the system started, counting time spent suspended, truncated to 32 bits
    // and read as a signed number: it wraps to negative after 24.8 days, as the classic tick count does.
    // Input time stamps of the activity monitor share this time base.
    virtual std::int32_t tickCount() const = 0;

    // The local wall-clock time, for the status texts.
    virtual QDateTime localNow() const = 0;

    // Milliseconds the machine has spent suspended since it started. The tick count includes them and
    // the timers do not (a timer's interval runs on after resume as if no time had passed), so the
    // scheduler reads this to learn that the user was away while the machine slept.
    virtual std::int64_t suspendedMs() const = 0;
};

// A time of day as the status texts show it: two-digit hour and minute, "09:05". Built from the
// numbers rather than through a date format, which would parse its pattern and consult the calendar
// on every idle check.
inline QString formatHhNn(const QDateTime& t) {
    const QTime time = t.time();
    return QStringLiteral("%1:%2")
        .arg(time.hour(), 2, 10, QLatin1Char('0'))
        .arg(time.minute(), 2, 10, QLatin1Char('0'));
}

} // namespace tarvo

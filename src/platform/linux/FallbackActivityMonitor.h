#pragma once

#include "core/ActivityMonitor.h"
#include "platform/linux/ActivitySource.h"

#include <array>
#include <cstdio>
#include <functional>
#include <memory>

namespace tarvo {

class Clock;

// The program's activity monitor: the best source the session offers, and when that source is lost
// (the X server closed its connection, the desktop's idle service went away) the best one then, so that
// watching never dies quietly. The replacement is chosen at the next call, which is never inside one of
// the old source's own handlers; it gets the channels switched on that its predecessor had.
//
// What happened between the loss and the replacement is unknown, so the first look at a channel after a
// replacement counts as activity (the tick count of the look): a lost source must not pass for a
// natural pause. From the next look on the stamps are the new source's.
class FallbackActivityMonitor : public ActivityMonitor {
public:
    // Picks the source; the argument is why the previous one was lost (empty for the first pick).
    using Chooser = std::function<std::unique_ptr<ActivitySource>(const QString& lostReason)>;

    FallbackActivityMonitor(Chooser choose, const Clock& clock, std::FILE* messages = stderr);

    void InstallFilter(std::int32_t channel, bool on) override;
    std::int32_t VexGetTime(std::int32_t channel) override;
    QString description() const override;

private:
    // Whether it replaced the source.
    bool replaceIfLost();

    Chooser choose_;
    const Clock& clock_;
    std::FILE* messages_;
    std::unique_ptr<ActivitySource> source_;
    std::array<bool, 2> on_{false, false};
    std::array<bool, 2> replaced_{false, false};
};

} // namespace tarvo

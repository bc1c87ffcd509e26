#pragma once

#include "platform/linux/ActivitySource.h"

#include <QString>

#include <array>
#include <cstdio>

namespace tarvo {

class Clock;

// Stands in where no input can be seen at all: no X11 display and no idle-time service (a Wayland
// session whose compositor offers none, no display), or a source that was lost with nothing to take
// over. The user counts as always active: a channel that is on reports the tick count of each look, so
// its stamp grows at every look and the scheduler never takes a check for a natural pause. Breaks thus
// keep their schedule; only natural pauses go undetected. Stamps that read 0 instead would turn every
// check into a natural pause, and with IntelliReset hold the micropause countdown for good.
//
// The first time a channel is switched on it says once, on the given stream, why natural pauses cannot
// be detected; with both channels off nothing is asked of it, so it stays quiet.
class AlwaysActiveActivityMonitor : public ActivitySource {
public:
    AlwaysActiveActivityMonitor(QString reason, const Clock& clock, std::FILE* messages = stderr);

    void InstallFilter(std::int32_t channel, bool on) override;
    std::int32_t VexGetTime(std::int32_t channel) override;
    QString description() const override;
    bool seesInput() const override { return false; }

private:
    QString reason_;
    const Clock& clock_;
    std::FILE* messages_;
    bool told_ = false;
    std::array<bool, 2> on_{false, false};
    std::array<std::int32_t, 2> stamps_{0, 0};
};

} // namespace tarvo

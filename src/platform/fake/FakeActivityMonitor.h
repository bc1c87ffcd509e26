#pragma once

#include "core/ActivityMonitor.h"

#include <array>
#include <cstddef>

namespace tarvo {

// Activity that a test makes up: input() stamps a channel, but only while the channel is switched on.
class FakeActivityMonitor : public ActivityMonitor {
public:
    void InstallFilter(std::int32_t channel, bool on) override {
        if (channel == 0 || channel == 1)
            on_[static_cast<std::size_t>(channel)] = on;
        ++installCalls_;
    }
    std::int32_t VexGetTime(std::int32_t channel) override {
        return (channel == 0 || channel == 1) ? stamps_[static_cast<std::size_t>(channel)] : 0;
    }
    QString description() const override { return description_; }

    void input(int channel, std::int32_t tick) {
        if (on_[static_cast<std::size_t>(channel)])
            stamps_[static_cast<std::size_t>(channel)] = tick;
    }
    // Sets a stamp regardless of the switch, e.g. to simulate a value that goes down.
    void setStamp(int channel, std::int32_t tick) { stamps_[static_cast<std::size_t>(channel)] = tick; }
    bool isOn(int channel) const { return on_[static_cast<std::size_t>(channel)]; }
    int installCalls() const { return installCalls_; }
    void setDescription(const QString& text) { description_ = text; }

private:
    std::array<bool, 2> on_{false, false};
    std::array<std::int32_t, 2> stamps_{0, 0};
    int installCalls_ = 0;
    QString description_ = QStringLiteral("Activity: made up by the test");
};

} // namespace tarvo

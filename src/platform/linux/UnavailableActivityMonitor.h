#pragma once

#include "core/ActivityMonitor.h"

#include <QString>

#include <cstdio>

namespace tarvo {

// Stands in where keyboard and mouse activity cannot be watched: no X11 display, a Wayland session, a
// display without XInput 2. The program runs on without activity: no stamp ever moves from 0. The first
// time a channel is switched on it says once, on the given stream, why natural pauses cannot be detected;
// with both channels off nothing is asked of it, so it stays quiet.
class UnavailableActivityMonitor : public ActivityMonitor {
public:
    explicit UnavailableActivityMonitor(QString reason, std::FILE* messages = stderr);

    void InstallFilter(std::int32_t channel, bool on) override;
    std::int32_t VexGetTime(std::int32_t) override { return 0; }

    const QString& reason() const { return reason_; }

private:
    QString reason_;
    std::FILE* messages_;
    bool told_ = false;
};

} // namespace tarvo

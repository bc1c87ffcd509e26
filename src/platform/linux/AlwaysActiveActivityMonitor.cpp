#include "platform/linux/AlwaysActiveActivityMonitor.h"

#include "core/Clock.h"

#include <utility>

namespace tarvo {

AlwaysActiveActivityMonitor::AlwaysActiveActivityMonitor(QString reason, const Clock& clock,
                                                         std::FILE* messages)
    : reason_(std::move(reason))
    , clock_(clock)
    , messages_(messages) {}

void AlwaysActiveActivityMonitor::InstallFilter(std::int32_t channel, bool on) {
    if (channel != 0 && channel != 1)
        return;
    on_[static_cast<std::size_t>(channel)] = on;
    if (!on || std::exchange(told_, true))
        return;
    const QByteArray text =
        QStringLiteral("Tarvo Micropause: natural pauses cannot be detected here, because %1; "
                       "keyboard and mouse activity is not watched.\n")
            .arg(reason_)
            .toLocal8Bit();
    std::fputs(text.constData(), messages_);
    std::fflush(messages_);
}

std::int32_t AlwaysActiveActivityMonitor::VexGetTime(std::int32_t channel) {
    if (channel != 0 && channel != 1)
        return 0;
    const auto c = static_cast<std::size_t>(channel);
    if (on_[c])
        stamps_[c] = clock_.tickCount();
    return stamps_[c];
}

QString AlwaysActiveActivityMonitor::description() const {
    return QStringLiteral("Natural pauses are not detected here: %1.").arg(reason_);
}

} // namespace tarvo

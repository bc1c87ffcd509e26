#include "platform/linux/FallbackActivityMonitor.h"

#include "core/Clock.h"

#include <utility>

namespace tarvo {

FallbackActivityMonitor::FallbackActivityMonitor(Chooser choose, const Clock& clock, std::FILE* messages)
    : choose_(std::move(choose))
    , clock_(clock)
    , messages_(messages)
    , source_(choose_(QString())) {}

void FallbackActivityMonitor::InstallFilter(std::int32_t channel, bool on) {
    replaceIfLost();
    if (channel == 0 || channel == 1)
        on_[static_cast<std::size_t>(channel)] = on;
    source_->InstallFilter(channel, on);
}

std::int32_t FallbackActivityMonitor::VexGetTime(std::int32_t channel) {
    replaceIfLost();
    std::int32_t stamp = source_->VexGetTime(channel);
    if (replaceIfLost()) // the read itself found the source lost
        stamp = source_->VexGetTime(channel);
    if (channel != 0 && channel != 1)
        return stamp;
    const auto c = static_cast<std::size_t>(channel);
    return std::exchange(replaced_[c], false) && on_[c] ? clock_.tickCount() : stamp;
}

QString FallbackActivityMonitor::description() const {
    return source_->description();
}

bool FallbackActivityMonitor::replaceIfLost() {
    const QString reason = source_->lostReason();
    if (reason.isEmpty())
        return false;
    source_ = choose_(reason);
    replaced_ = {true, true};
    // The stand-in that sees nothing says why itself once a channel is on.
    if (source_->seesInput()) {
        const QByteArray text =
            QStringLiteral("Tarvo Micropause: %1. %2\n").arg(reason, source_->description()).toLocal8Bit();
        std::fputs(text.constData(), messages_);
        std::fflush(messages_);
    }
    for (std::int32_t channel = 0; channel < 2; ++channel)
        if (on_[static_cast<std::size_t>(channel)])
            source_->InstallFilter(channel, true);
    return true;
}

} // namespace tarvo

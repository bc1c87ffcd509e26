#include "platform/linux/UnavailableActivityMonitor.h"

#include <utility>

namespace tarvo {

UnavailableActivityMonitor::UnavailableActivityMonitor(QString reason, std::FILE* messages)
    : reason_(std::move(reason))
    , messages_(messages) {}

void UnavailableActivityMonitor::InstallFilter(std::int32_t channel, bool on) {
    if (!on || told_ || (channel != 0 && channel != 1))
        return;
    told_ = true;
    const QByteArray text =
        QStringLiteral("Tarvo Micropause: natural pauses cannot be detected here, because %1; "
                       "keyboard and mouse activity is not watched.\n")
            .arg(reason_)
            .toLocal8Bit();
    std::fputs(text.constData(), messages_);
    std::fflush(messages_);
}

} // namespace tarvo

#include "engine/HistoryTap.h"

#include "core/Clock.h"

#include <array>
#include <utility>

namespace tarvo {

namespace {

constexpr std::array kKindNames = {
    std::pair{HistoryKind::Startup, QLatin1String("start")},
    std::pair{HistoryKind::Shutdown, QLatin1String("shut down")},
    std::pair{HistoryKind::Micropause, QLatin1String("micropause")},
    std::pair{HistoryKind::ExercisePrompt, QLatin1String("exercise prompt")},
    std::pair{HistoryKind::ExerciseBreak, QLatin1String("exercise break")},
    std::pair{HistoryKind::Sleep, QLatin1String("sleep")},
    std::pair{HistoryKind::Lock, QLatin1String("lock")},
    std::pair{HistoryKind::Hold, QLatin1String("hold")},
};

} // namespace

QLatin1String historyKindName(HistoryKind kind) {
    for (const auto& [k, name] : kKindNames)
        if (k == kind)
            return name;
    return QLatin1String("?");
}

std::optional<HistoryKind> historyKindFromName(QStringView name) {
    for (const auto& [k, known] : kKindNames)
        if (name == known)
            return k;
    return std::nullopt;
}

HistoryTap::Moment HistoryTap::now() const {
    return {clock_.localNow(), clock_.tickCount()};
}

void HistoryTap::record(HistoryKind kind, const Moment& start, QString outcome, QString details) {
    if (!start.isSet())
        return; // a break whose start nobody saw (one set up by hand) has no time to tell
    // The tick count, not the wall clock, measures the length: a clock set forward is no longer break.
    // Unsigned, so that a length across the count's wrap comes out right.
    const auto elapsedMs =
        static_cast<std::uint32_t>(clock_.tickCount()) - static_cast<std::uint32_t>(start.tick);
    record(kind, start.local, std::move(outcome), (elapsedMs + 500) / 1000, std::move(details));
}

void HistoryTap::record(HistoryKind kind, QDateTime at, QString outcome, std::int64_t seconds,
                        QString details) {
    if (recorder_)
        recorder_->record({kind, std::move(at), std::move(outcome), seconds, std::move(details)});
}

} // namespace tarvo

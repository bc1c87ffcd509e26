#include "history/HistorySummary.h"

#include <algorithm>
#include <optional>

namespace tarvo {

namespace {

enum class Effect { None, Taken, Skipped, Postponed, Away, Held };

Effect effectOf(const StoredEvent& e) {
    switch (e.kind) {
    case HistoryKind::Micropause:
    case HistoryKind::ExerciseBreak:
        if (e.outcome == outcome::Completed || e.outcome == outcome::Credited)
            return Effect::Taken;
        return e.outcome == outcome::EndedEarly || e.outcome == outcome::Quit ? Effect::Skipped
                                                                              : Effect::None;
    case HistoryKind::ExercisePrompt:
        if (e.outcome == outcome::Later)
            return Effect::Postponed;
        return e.outcome == outcome::Closed ? Effect::Skipped : Effect::None;
    case HistoryKind::Sleep:
    case HistoryKind::Lock:
        return Effect::Away;
    case HistoryKind::Hold:
        return Effect::Held;
    case HistoryKind::Startup:
    case HistoryKind::Shutdown:
        break;
    }
    return Effect::None;
}

// The days' local midnights in milliseconds, one more than there are days, so that day i runs from
// starts[i] to starts[i + 1] (a day of a clock change is 23 or 25 hours long).
class Days {
public:
    Days(QDate first, QDate last) {
        for (QDate d = first; d <= last.addDays(1); d = d.addDays(1))
            starts_.push_back(QDateTime(d, QTime(0, 0)).toMSecsSinceEpoch());
    }
    std::size_t count() const { return starts_.size() - 1; }
    // The day that holds `ms`, if it is one of them.
    std::optional<std::size_t> dayOf(std::int64_t ms) const {
        const auto next = std::upper_bound(starts_.begin(), starts_.end(), ms);
        if (next == starts_.begin() || next == starts_.end())
            return std::nullopt;
        return static_cast<std::size_t>(next - starts_.begin() - 1);
    }
    std::int64_t start(std::size_t day) const { return starts_[day]; }
    std::int64_t end(std::size_t day) const { return starts_[day + 1]; }

private:
    std::vector<std::int64_t> starts_;
};

class Summariser {
public:
    Summariser(QDate first, QDate today)
        : days_(first, today) {
        for (QDate d = first; d <= today; d = d.addDays(1))
            summary_.days.push_back({.day = d});
    }

    void take(const StoredEvent& e) {
        const std::int64_t end = e.atMs + e.seconds * 1000;
        const Effect effect = effectOf(e);
        if (e.kind == HistoryKind::Startup) {
            if (stretchFrom_)
                work(lastEnd_); // the run before ended without a word: its last event ends its work
            stretchFrom_ = e.atMs;
        } else if (e.kind == HistoryKind::Shutdown) {
            work(e.atMs);
            stretchFrom_.reset();
        } else if (effect == Effect::Taken || effect == Effect::Away) {
            work(e.atMs);
            stretchFrom_ = end; // the first event of a history begun mid-run starts its work too
        } else if (!stretchFrom_) {
            stretchFrom_ = e.atMs;
        }
        lastEnd_ = std::max({lastEnd_, end, e.atMs});
        count(e, effect);
    }

    HistorySummary finish(std::int64_t nowMs) {
        if (stretchFrom_)
            work(std::max(nowMs, *stretchFrom_));
        return std::move(summary_);
    }

private:
    void count(const StoredEvent& e, Effect effect) {
        const std::optional<std::size_t> day = days_.dayOf(e.atMs);
        if (!day || effect == Effect::None)
            return;
        DayTotals& totals = summary_.days[*day];
        using Type = TimelineMark::Type;
        Type type = Type::Away;
        switch (effect) {
        case Effect::Taken:
            ++totals.taken;
            type = Type::Taken;
            break;
        case Effect::Skipped:
            ++totals.skipped;
            type = Type::Skipped;
            break;
        case Effect::Postponed:
            ++totals.postponed;
            type = Type::Postponed;
            break;
        case Effect::Held:
            type = Type::Held;
            break;
        default:
            break;
        }
        if (*day == days_.count() - 1)
            summary_.todayMarks.push_back({(e.atMs - days_.start(*day)) / 1000, e.seconds, e.kind, type});
    }

    // Work from the stretch's start to `until`, cut at midnights.
    void work(std::int64_t until) {
        if (!stretchFrom_)
            return;
        std::int64_t from = *stretchFrom_;
        while (from < until) {
            const std::optional<std::size_t> day = days_.dayOf(from);
            // Before the first day the stretch counts from that day's midnight on.
            const std::int64_t dayEnd = day                     ? days_.end(*day)
                                        : from < days_.start(0) ? days_.start(0)
                                                                : until;
            const std::int64_t to = std::min(until, dayEnd);
            if (day && to > from) {
                DayTotals& totals = summary_.days[*day];
                totals.longestStretch = std::max(totals.longestStretch, (to - from) / 1000);
                if (*day == days_.count() - 1)
                    summary_.todayWork.push_back(
                        {(from - days_.start(*day)) / 1000, (to - days_.start(*day)) / 1000});
            }
            from = std::max(to, from + 1);
        }
    }

    Days days_;
    HistorySummary summary_;
    std::optional<std::int64_t> stretchFrom_; // the current stretch of work began here
    std::int64_t lastEnd_ = 0;
};

} // namespace

HistorySummary summariseHistory(const std::vector<StoredEvent>& events, QDate first, const QDateTime& now) {
    Summariser summariser(first, now.date());
    for (const StoredEvent& e : events)
        summariser.take(e);
    return summariser.finish(now.toMSecsSinceEpoch());
}

QString stretchText(std::int64_t seconds) {
    const std::int64_t minutes = seconds / 60;
    if (minutes < 60)
        return QStringLiteral("%1 min").arg(minutes);
    return QStringLiteral("%1 h %2").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

} // namespace tarvo

#pragma once

#include "history/HistoryDatabase.h"

#include <QDate>

#include <cstdint>
#include <vector>

namespace tarvo {

// What the status window draws of the history, worked out without a display.
//
// A break counts as taken (a micropause to its end, a natural pause, an exercise break to its end),
// skipped (a micropause ended early, an exercise break quit, the prompt closed without an answer) or
// put off (the prompt's "Later"). Work is the time the program ran (start to shut-down; a run that
// ended without one ends at its last event) less the breaks taken and the time away (asleep, locked):
// a stretch runs from one such break to the next, and a stretch across midnight counts on each day for
// its part. Time in which breaks were held back is work, marked as held. Days are local days.
struct DayTotals {
    QDate day;
    int taken = 0, skipped = 0, postponed = 0;
    std::int64_t longestStretch = 0; // seconds of work without a break taken
};

struct TimeSpan {
    std::int64_t from = 0, to = 0; // seconds since the day's local midnight
};

struct TimelineMark {
    enum class Type { Taken, Skipped, Postponed, Away, Held };
    std::int64_t at = 0; // seconds since the day's local midnight
    std::int64_t seconds = 0;
    HistoryKind kind = HistoryKind::Micropause;
    Type type = Type::Taken;
};

struct HistorySummary {
    std::vector<DayTotals> days; // one per day from `first` to `today`, oldest first
    std::vector<TimeSpan> todayWork;
    std::vector<TimelineMark> todayMarks;
};

// `events` by time, from a while before `first` (a stretch may have begun earlier); `now` ends the
// stretch of the run that is still going on.
HistorySummary summariseHistory(const std::vector<StoredEvent>& events, QDate first, const QDateTime& now);

// "1 h 05" or "35 min": a stretch as the pictures label it.
QString stretchText(std::int64_t seconds);

} // namespace tarvo

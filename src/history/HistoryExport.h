#pragma once

#include <QString>

class QTextStream;

namespace tarvo {

class Clock;
class HistoryDatabase;
struct StoredEvent;

// The history as comma-separated values: a header row, then one row per event, oldest first, with its
// time in ISO 8601 local time with the offset it happened in ("2026-11-23T09:05:00+01:00").
QString csvHeader();
QString csvRow(const StoredEvent& event);

// `tarvo history --csv [FILE]`, without a display and beside a running program: the history at
// `historyPath`, read through the module in `programFolder`, to FILE, or to standard output without
// one. Returns the exit status; says what went wrong on standard error.
int runHistoryCommand(const QStringList& arguments, const QString& historyPath, const QString& programFolder,
                      const Clock& clock);

} // namespace tarvo

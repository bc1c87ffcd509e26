#pragma once

#include "history/HistorySummary.h"

#include <QWidget>

namespace tarvo {

class Clock;
class HistoryLog;

// The status window's look back, below its labels: today as a timeline (the stretches of work, the
// breaks taken as marks on them, the skipped and put-off ones set apart below), then the last 7 and the
// last 30 days as bars of breaks taken (up) against skipped and put off (down), with each day's longest
// stretch of work without a break as a dot on a line. A line above says when the history is not being
// recorded, and why.
//
// Made when the status window opens and gone with it: the history is read once, for the window, and
// the idle program holds none of it.
class HistoryPanel : public QWidget {
    Q_OBJECT

public:
    HistoryPanel(HistoryLog& log, const Clock& clock, QWidget* parent = nullptr);

    const HistorySummary& summary() const { return summary_; }

    static constexpr int kDays = 30;

private:
    HistorySummary summary_;
};

} // namespace tarvo

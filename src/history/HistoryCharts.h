#pragma once

#include "history/HistorySummary.h"

#include <QColor>
#include <QWidget>

namespace tarvo {

// The pictures' colours: strong enough to read on a light and on a dark window alike.
namespace historycolor {
inline const QColor Taken(0x2a, 0x9d, 0x8f);
inline const QColor Skipped(0xe0, 0x5a, 0x47);
inline const QColor Postponed(0xe9, 0xa8, 0x3a);
inline const QColor Work(0x6c, 0x8e, 0xbf);
inline const QColor Away(0x8a, 0x8a, 0x8a);
inline const QColor Held(0x9b, 0x6f, 0xc4);
} // namespace historycolor

// Today from the first hour of work to now: work as a band, breaks taken as marks across it, time away
// in grey, time in which breaks were held as a strip along its foot, skipped and put-off breaks as
// marks below it. Sized by the font, so that it scales.
class TodayTimeline : public QWidget {
public:
    TodayTimeline(const HistorySummary& summary, std::int64_t nowSeconds, QWidget* parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const HistorySummary& summary_;
    int fromHour_ = 8, toHour_ = 18;
};

// The last `days` days: per day, breaks taken up from the middle line, skipped and put off down from it,
// and the longest stretch of work as a dot on a line of its own scale.
class DayBars : public QWidget {
public:
    DayBars(const HistorySummary& summary, int days, QWidget* parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const HistorySummary& summary_;
    int days_;
};

} // namespace tarvo

#include "history/HistoryCharts.h"

#include <QLocale>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tarvo {

namespace {

QColor textColor(const QWidget& w) {
    return w.palette().color(QPalette::WindowText);
}

} // namespace

TodayTimeline::TodayTimeline(const HistorySummary& summary, std::int64_t nowSeconds, QWidget* parent)
    : QWidget(parent)
    , summary_(summary) {
    setObjectName(QStringLiteral("picToday"));
    setAccessibleName(tr("Today's work and breaks"));
    std::int64_t first = nowSeconds;
    for (const TimeSpan& s : summary.todayWork)
        first = std::min(first, s.from);
    for (const TimelineMark& m : summary.todayMarks)
        first = std::min(first, m.at);
    // Whole hours from the first thing that happened to now, at least four of them.
    fromHour_ = static_cast<int>(std::clamp<std::int64_t>(first / 3600, 0, 20));
    toHour_ = static_cast<int>(std::clamp<std::int64_t>((nowSeconds + 3599) / 3600, fromHour_ + 4, 24));
    fromHour_ = std::min(fromHour_, toHour_ - 4);
}

QSize TodayTimeline::sizeHint() const {
    const int line = fontMetrics().height();
    return {line * 26, line * 3};
}

void TodayTimeline::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics fm = fontMetrics();
    const qreal line = fm.height();
    const qreal margin = fm.horizontalAdvance(QStringLiteral("00")) / 2.0 + 1;
    const qreal left = margin, width = this->width() - 2 * margin;
    const qreal span = (toHour_ - fromHour_) * 3600.0;
    auto x = [&](std::int64_t seconds) {
        return left + (static_cast<qreal>(seconds) - fromHour_ * 3600.0) / span * width;
    };
    const QRectF band(left, line * 0.25, width, line);
    const qreal below = band.bottom() + line * 0.2;

    p.fillRect(band, palette().color(QPalette::Base));
    for (const TimeSpan& s : summary_.todayWork)
        p.fillRect(QRectF(x(s.from), band.top(), std::max(1.0, x(s.to) - x(s.from)), band.height()),
                   historycolor::Work);
    for (const TimelineMark& m : summary_.todayMarks) {
        const qreal from = x(m.at), w = std::max(2.0, x(m.at + m.seconds) - from);
        switch (m.type) {
        case TimelineMark::Type::Taken:
            p.fillRect(QRectF(from, band.top() - line * 0.2, w, band.height() + line * 0.4),
                       historycolor::Taken);
            break;
        case TimelineMark::Type::Away:
            p.fillRect(QRectF(from, band.top(), w, band.height()), historycolor::Away);
            break;
        case TimelineMark::Type::Held: // still work: the band shows above it
            p.fillRect(QRectF(from, band.bottom() - band.height() / 3, w, band.height() / 3),
                       historycolor::Held);
            break;
        case TimelineMark::Type::Skipped:
        case TimelineMark::Type::Postponed: {
            // Set apart below the band: a small triangle pointing at the moment.
            const QColor color =
                m.type == TimelineMark::Type::Skipped ? historycolor::Skipped : historycolor::Postponed;
            const qreal half = line * 0.25;
            const QPointF tip(from, below);
            p.setPen(Qt::NoPen);
            p.setBrush(color);
            p.drawPolygon(
                QPolygonF({tip, tip + QPointF(-half, line * 0.45), tip + QPointF(half, line * 0.45)}));
            break;
        }
        }
    }
    // The hours, as many as fit.
    p.setPen(textColor(*this));
    const int labelWidth = fm.horizontalAdvance(QStringLiteral("00")) * 2;
    const int hours = toHour_ - fromHour_;
    const int step = std::max(1, static_cast<int>(std::ceil(hours * labelWidth / std::max(1.0, width))));
    for (int h = fromHour_; h <= toHour_; h += step) {
        const qreal hx = x(static_cast<std::int64_t>(h) * 3600);
        p.drawLine(QPointF(hx, band.bottom()), QPointF(hx, band.bottom() + line * 0.15));
        const QString label = QStringLiteral("%1").arg(h % 24, 2, 10, QLatin1Char('0'));
        p.drawText(QRectF(hx - labelWidth, below + line * 0.5, 2 * labelWidth, line),
                   Qt::AlignHCenter | Qt::AlignTop, label);
    }
}

DayBars::DayBars(const HistorySummary& summary, int days, QWidget* parent)
    : QWidget(parent)
    , summary_(summary)
    , days_(std::min<int>(days, static_cast<int>(summary.days.size()))) {
    setObjectName(QStringLiteral("picDays%1").arg(days));
    setAccessibleName(tr("Breaks of the last %1 days").arg(days));
}

QSize DayBars::sizeHint() const {
    const int line = fontMetrics().height();
    return {line * 26, days_ <= 7 ? line * 6 : line * 5};
}

void DayBars::paintEvent(QPaintEvent*) {
    if (days_ <= 0)
        return;
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics fm = fontMetrics();
    const qreal line = fm.height();
    const bool week = days_ <= 7;
    const auto first = summary_.days.end() - days_;
    int mostUp = 1, mostDown = 1;
    std::int64_t longest = 0;
    for (auto d = first; d != summary_.days.end(); ++d) {
        mostUp = std::max(mostUp, d->taken);
        mostDown = std::max(mostDown, d->skipped + d->postponed);
        longest = std::max(longest, d->longestStretch);
    }
    const qreal up = line * 2.5, down = line * 1.2, top = line * 0.3, middle = top + up;
    const qreal scale = std::min(up / mostUp, down / mostDown); // one count, one height, up and down
    const qreal column = static_cast<qreal>(width()) / days_;
    const qreal bar = column * 0.6;
    const QColor text = textColor(*this);

    p.setPen(QPen(text, 1));
    p.drawLine(QPointF(0, middle), QPointF(width(), middle));
    QPolygonF stretches;
    int i = 0;
    for (auto d = first; d != summary_.days.end(); ++d, ++i) {
        const qreal cx = column * (i + 0.5), bx = cx - bar / 2;
        p.fillRect(QRectF(bx, middle - d->taken * scale, bar, d->taken * scale), historycolor::Taken);
        p.fillRect(QRectF(bx, middle, bar, d->skipped * scale), historycolor::Skipped);
        p.fillRect(QRectF(bx, middle + d->skipped * scale, bar, d->postponed * scale),
                   historycolor::Postponed);
        const qreal share =
            longest > 0 ? static_cast<qreal>(d->longestStretch) / static_cast<qreal>(longest) : 0;
        stretches << QPointF(cx, middle - up * share);
        // The day below: its name (a week) or every fifth date counted back from today (a month).
        const qreal labels = middle + down + line * 0.2;
        p.setPen(text);
        if (week) {
            p.drawText(QRectF(cx - column / 2, labels, column, line), Qt::AlignHCenter | Qt::AlignTop,
                       QLocale().dayName(d->day.dayOfWeek(), QLocale::ShortFormat));
            if (d->longestStretch >= 60)
                p.drawText(QRectF(cx - column / 2, labels + line, column, line),
                           Qt::AlignHCenter | Qt::AlignTop, stretchText(d->longestStretch));
        } else if ((days_ - 1 - i) % 5 == 0) {
            // Today's date at the right edge keeps to the picture.
            const QString date = QString::number(d->day.day());
            const qreal half = fm.horizontalAdvance(date) / 2.0;
            p.drawText(QPointF(std::min(cx - half, width() - 2 * half), labels + fm.ascent()), date);
        }
    }
    // The longest stretches: a dot for each day with work, joined where the days follow each other.
    p.setPen(QPen(text, std::max(1.0, line / 12)));
    p.setBrush(text);
    const qreal dot = std::max(2.0, line / 7);
    i = 0;
    for (auto d = first; d != summary_.days.end(); ++d, ++i) {
        if (d->longestStretch <= 0)
            continue;
        p.drawEllipse(stretches[i], dot, dot);
        if (i > 0 && (d - 1)->longestStretch > 0)
            p.drawLine(stretches[i - 1], stretches[i]);
    }
}

} // namespace tarvo

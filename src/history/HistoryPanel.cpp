#include "history/HistoryPanel.h"

#include "core/Clock.h"
#include "history/HistoryCharts.h"
#include "history/HistoryLog.h"

#include <QLabel>
#include <QVBoxLayout>

namespace tarvo {

namespace {

// A chart's heading, with the longest stretch of work without a break in its days.
QLabel* heading(const QString& text, QWidget* parent, const HistorySummary* summary = nullptr, int days = 0) {
    QString html = QStringLiteral("<b>%1</b>").arg(text.toHtmlEscaped());
    if (summary) {
        std::int64_t longest = 0;
        for (auto d = summary->days.end() - std::min<std::ptrdiff_t>(days, std::ssize(summary->days));
             d != summary->days.end(); ++d)
            longest = std::max(longest, d->longestStretch);
        html += QObject::tr(" &nbsp; longest stretch without a break: %1").arg(stretchText(longest));
    }
    auto* label = new QLabel(html, parent);
    label->setTextFormat(Qt::RichText);
    return label;
}

QString swatch(const QColor& color, const QString& what) {
    QString label = what.toHtmlEscaped();
    label.replace(QLatin1Char(' '), QStringLiteral("&nbsp;")); // a swatch and its words stay together
    return QStringLiteral("<span style=\"color:%1\">&#9632;</span>&nbsp;%2").arg(color.name(), label);
}

} // namespace

HistoryPanel::HistoryPanel(HistoryLog& log, const Clock& clock, QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("pnlHistory"));
    const QDateTime now = clock.localNow();
    const QDate first = now.date().addDays(-(kDays - 1));
    // From a day earlier: the stretch of work under way at the first midnight began before it.
    summary_ = summariseHistory(log.eventsSince(QDateTime(first.addDays(-1), QTime(0, 0))), first, now);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    const QString note =
        log.recording() ? log.problem() : tr("History is not recorded: it is switched off in the options.");
    if (!note.isEmpty()) {
        auto* problem = new QLabel(note, this);
        problem->setObjectName(QStringLiteral("lblHistoryProblem"));
        problem->setWordWrap(true);
        layout->addWidget(problem);
    }
    layout->addWidget(heading(tr("Today"), this));
    layout->addWidget(new TodayTimeline(summary_, QTime(0, 0).secsTo(now.time()), this));
    layout->addWidget(heading(tr("Last 7 days"), this, &summary_, 7));
    layout->addWidget(new DayBars(summary_, 7, this));
    layout->addWidget(heading(tr("Last 30 days"), this, &summary_, kDays));
    layout->addWidget(new DayBars(summary_, kDays, this));
    auto* legend = new QLabel(
        QStringList{swatch(historycolor::Work, tr("work")), swatch(historycolor::Taken, tr("breaks taken")),
                    swatch(historycolor::Skipped, tr("skipped")),
                    swatch(historycolor::Postponed, tr("put off")), swatch(historycolor::Away, tr("away")),
                    swatch(historycolor::Held, tr("held")),
                    tr("&#9679;&nbsp;longest&nbsp;stretch&nbsp;of&nbsp;work")}
            .join(QStringLiteral(" &nbsp; ")),
        this);
    legend->setTextFormat(Qt::RichText);
    legend->setWordWrap(true);
    layout->addWidget(legend);
}

} // namespace tarvo

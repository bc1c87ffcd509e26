#include "history/HistoryLog.h"

#include "core/Clock.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"

#include <QDir>

#include <cstdio>

namespace tarvo {

HistoryLog::HistoryLog(QString path, const QString& programFolder, SettingsStore& settings,
                       const Clock& clock, TimerFactory& timers, std::function<void()> afterUse)
    : database_(std::move(path), programFolder)
    , settings_(settings)
    , clock_(clock)
    , afterUse_(std::move(afterUse))
    , quiet_(timers.createTimer(*this))
    , recording_(settings.readNumber(option("RecordHistory")) != 0) {
    quiet_->setInterval(kQuietMs);
}

HistoryLog::~HistoryLog() = default;

bool HistoryLog::ready() {
    if (database_.isOpen())
        return true;
    if (givenUp_)
        return false;
    const QDateTime now = clock_.localNow();
    // Old events go when the file is first opened in a run, which is at start-up while recording.
    if (!database_.open(now, opened_ ? QDateTime() : now.addDays(-kKeptDays))) {
        const auto failure = database_.failure();
        givenUp_ =
            failure == HistoryDatabase::Failure::Newer || failure == HistoryDatabase::Failure::NoDriver;
        report(database_.problem());
        done(); // the module, loaded for nothing, goes too
        return false;
    }
    opened_ = true;
    if (!database_.setAsidePath().isEmpty() && notice_.isEmpty()) {
        notice_ = QStringLiteral("The history file was damaged; it was kept as %1 and a new one was started.")
                      .arg(QDir::toNativeSeparators(database_.setAsidePath()));
        std::fprintf(stderr, "tarvo: %s\n", qPrintable(notice_));
    }
    return true;
}

void HistoryLog::record(const HistoryEvent& event) {
    if (!recording_)
        return;
    waiting_.push_back(event);
    if (waiting_.size() > kMostWaiting)
        waiting_.pop_front();
    if (!ready())
        return;
    while (!waiting_.empty()) {
        if (!database_.append(waiting_.front())) {
            report(database_.problem()); // the events wait for the next one
            break;
        }
        waiting_.pop_front();
    }
    if (waiting_.empty())
        problem_.clear();
    done();
}

void HistoryLog::done() {
    database_.close();
    afterUse_();
    // Each use starts the quiet period afresh.
    quiet_->setEnabled(false);
    quiet_->setEnabled(true);
}

void HistoryLog::timerTick(Timer&) {
    quiet_->setEnabled(false);
    database_.unloadModule();
    afterUse_();
}

void HistoryLog::setRecording(bool on) {
    settings_.writeNumber(option("RecordHistory"), on ? 1 : 0);
    recording_ = on;
    if (!on) {
        waiting_.clear();
        problem_.clear();
        quiet_->setEnabled(false);
        database_.unloadModule(); // nothing is kept for a history that is not kept
    }
}

bool HistoryLog::clear() {
    waiting_.clear();
    const bool cleared = ready() && database_.clear();
    if (!cleared)
        report(database_.problem());
    done();
    return cleared;
}

std::vector<StoredEvent> HistoryLog::eventsSince(const QDateTime& from) {
    if (!ready())
        return {};
    std::vector<StoredEvent> events = database_.eventsSince(from);
    done();
    return events;
}

void HistoryLog::report(const QString& problem) {
    problem_ = QStringLiteral("History is not recorded: %1.").arg(problem);
    // Once each: a file that stays in use must not fill the terminal with one line per break.
    if (!reported_.contains(problem_)) {
        reported_.append(problem_);
        std::fprintf(stderr, "tarvo: %s\n", qPrintable(problem_));
        std::fflush(stderr);
    }
}

} // namespace tarvo

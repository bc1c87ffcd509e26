#pragma once

#include "core/Timer.h"
#include "engine/HistoryRecorder.h"
#include "history/HistoryDatabase.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <memory>

namespace tarvo {

class Clock;
class SettingsStore;

// The recorder that the running program connects to its engine: each event goes into the history file
// as it happens, unless the user has switched recording off ("RecordHistory"). The file is opened at
// the first event, not before, with the events older than 400 days pruned then.
//
// The file is open only while an event is written or the pictures read it: between events the program
// keeps nothing of SQLite's (its caches, the log's shared index), and gives the memory back through
// `afterUse` (the platform's releaseFreedMemory). The history's module in `programFolder`, and with it
// Qt SQL, its SQLite driver and SQLite itself, stay loaded for a few quiet seconds after, so that the
// events of a burst (a break's end and the next prompt) do not load them once each, and are then
// unloaded: the idle program does not carry them.
//
// Nothing here stops the program: when the file cannot be written, the program runs on, says why once
// on standard error and in the status window (problem()), and tries again at the next event. Events
// that met a file in use by another program wait in memory (a few, not forever) and follow with the
// next event that gets through.
class HistoryLog : public HistoryRecorder, private Timer::Listener {
public:
    HistoryLog(
        QString path, const QString& programFolder, SettingsStore& settings, const Clock& clock,
        TimerFactory& timers, std::function<void()> afterUse = [] {});
    ~HistoryLog();

    void record(const HistoryEvent& event) override;

    bool recording() const { return recording_; }
    QString path() const { return database_.path(); }
    // Switches recording on or off, and keeps the choice.
    void setRecording(bool on);
    // Empties the history; false (with problem() saying why) when the file cannot be written.
    bool clear();
    // The events from `from` on, for the pictures; opens the file when it is not open yet.
    std::vector<StoredEvent> eventsSince(const QDateTime& from);

    // Why the history is not being recorded, or else what became of a damaged file; empty when all is
    // well.
    QString problem() const { return problem_.isEmpty() ? notice_ : problem_; }

    static constexpr int kKeptDays = 400;
    static constexpr std::size_t kMostWaiting = 1000;
    static constexpr int kQuietMs = 3000; // after the last use, before the module is unloaded

private:
    bool ready();
    void done();
    void report(const QString& problem);
    void timerTick(Timer& timer) override;

    HistoryDatabase database_;
    SettingsStore& settings_;
    const Clock& clock_;
    std::function<void()> afterUse_;
    std::unique_ptr<Timer> quiet_;
    bool recording_;
    bool opened_ = false;  // opened once this run (the pruning is done)
    bool givenUp_ = false; // a file of a newer version, or no module or driver: no use trying again this run
    std::deque<HistoryEvent> waiting_;
    QString problem_, notice_;
    QStringList reported_; // said once on standard error each; a few at most, no hash table needed
};

} // namespace tarvo

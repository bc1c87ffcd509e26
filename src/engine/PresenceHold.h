#pragma once

#include "core/PresenceMonitor.h"
#include "core/Timer.h"

#include <QString>

#include <cstdint>
#include <memory>

namespace tarvo {

class Clock;
class ExerciseView;
class MainView;
class MicropauseBreak;
class Scheduler;
class Warnings;
struct SchedulerState;
struct SettingsRecord;

// Keeps breaks out of the way of a person who is away or busy, without giving up the schedule.
//
// A locked screen (with LockPause) is a pause: a micropause on screen when the lock comes ends as
// taken (an exercise break runs its course), and when the lock ends the time it lasted counts as a
// sleeping machine's would: one micropause length or more is a natural micropause, EveryM minutes or
// more starts the exercise countdown afresh.
//
// While the screen is locked, or a busy condition holds (a full-screen window, do-not-disturb, an
// idle inhibitor, each with its option), a micropause, its pre-warning and the exercise prompt that
// fall due are held: noted, not shown. The countdowns run on as if each had come, so the one late
// break does not move the ones after it, and a micropause that falls due again during the same hold
// is the same held one: when the hold ends, at most one of each comes. They come once nothing has held
// them for kSettleMs, so that switching between two full-screen windows does not let a break slip in
// between. A natural pause during the hold (with IntelliReset) or a long enough lock covers a held
// micropause, which then does not come at all. With HoldLimit N > 0 a busy hold keeps a break back
// for at most N minute ticks; a locked screen keeps it back for as long as it lasts.
//
// The status window shows what holds a break now ("Screen locked", "Held: ...", or nothing).
class PresenceHold : private PresenceMonitor::Listener, private Timer::Listener {
public:
    // Held breaks come this long after the last condition that held them ended.
    static constexpr int kSettleMs = 2000;

    PresenceHold(const SettingsRecord& settings, SchedulerState& state, const Clock& clock,
                 PresenceMonitor& monitor, TimerFactory& timers, Scheduler& scheduler,
                 MicropauseBreak& micropause, Warnings& warnings, MainView& view, ExerciseView& exerciseView);
    ~PresenceHold();
    PresenceHold(const PresenceHold&) = delete;
    PresenceHold& operator=(const PresenceHold&) = delete;

    // The scheduler asks as each falls due: true when it is held (and will come later).
    bool holdsPreWarning();
    bool holdsMicropause();
    bool holdsPrompt();
    // A natural micropause with IntelliReset: a held micropause is taken already.
    void naturalPause();
    // Every minute tick, for the limit.
    void minuteTick();
    // The schedule starts afresh: nothing is held any more.
    void reset();
    // The presence options changed (their dialog's OK): the conditions are weighed again.
    void optionsChanged() { presenceChanged(); }

    bool locked() const { return locked_; }

private:
    void presenceChanged() override;
    void timerTick(Timer& timer) override;
    bool busy() const;
    bool anyHeld() const { return heldPre_ || heldMicropause_ || heldPrompt_; }
    void lockEnded();
    void deliver();
    void showStatus();

    const SettingsRecord& settings_;
    SchedulerState& state_;
    const Clock& clock_;
    PresenceMonitor& monitor_;
    Scheduler& scheduler_;
    MicropauseBreak& micropause_;
    Warnings& warnings_;
    MainView& view_;
    ExerciseView& exerciseView_;
    std::unique_ptr<Timer> settle_;

    bool locked_ = false;
    std::int32_t lockedAt_ = 0; // tick count
    bool heldPre_ = false;
    bool heldMicropause_ = false;
    bool heldPrompt_ = false;
    std::int32_t heldMinutes_ = 0; // minute ticks since the first held break
    QString shown_;
};

} // namespace tarvo

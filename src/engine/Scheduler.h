#pragma once

#include <QString>

#include <cstdint>

namespace tarvo {

class ActivityMonitor;
class Clock;
class ExerciseSequencer;
class ExerciseView;
class MainView;
class MicropauseBreak;
class PresenceHold;
class Timer;
class Warnings;
struct SchedulerState;
struct SettingsRecord;

// Decides when a micropause and when an exercise break are due. It is driven by the two timers,
// tMinutes (once a minute) and tSeconds (the natural-pause check every InterruptFor seconds, the break
// screen's 100 ms tick, or the exercise break's one-second tick), and re-arms them itself; it needs no
// display.
//
// Each minute tick advances exactly one countdown: the exercise countdown while no exercise prompt is
// up, the micropause countdown while it is. The two never move on the same tick.
//
// The status window's line on where activity comes from (ActivityMonitor::description) is written at
// SetTimers and again whenever a natural-pause check finds it changed (a lost source replaced).
//
// A suspended machine is a pause too, though no timer ticks through it: the first tick after resume
// learns from the clock how long the machine slept. At least one micropause length counts as a natural
// micropause; at least EveryM minutes starts the exercise countdown afresh.
//
// A locked screen and a busy person (PresenceHold) hold the micropause, its pre-warning and the exercise
// prompt as they fall due; the countdowns run on regardless.
//
// All counter arithmetic is checked: an overflow is run-time error 6 and leaves the handler, like any
// other error of a tick; nothing here catches.
class Scheduler {
public:
    Scheduler(const SettingsRecord& settings, SchedulerState& state, const Clock& clock,
              ActivityMonitor& monitor, Timer& tMinutes, Timer& tSeconds, MicropauseBreak& micropause,
              ExerciseSequencer& exercise, Warnings& warnings, MainView& view, ExerciseView& exerciseView,
              PresenceHold& hold);
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;

    // (Re)starts the whole schedule from the settings: both countdowns from their full intervals,
    // tMinutes every minute and tSeconds on the natural-pause check. Called at the end of start-up
    // and when an exercise break starts and ends.
    void SetTimers();

    // The timers' tick handlers; nothing else calls them.
    void tMinutes_Timer();
    void tSeconds_Timer();

    // The options dialog's Apply, in two steps; the schedule keeps running rather than restarting.
    // Once the new InterruptFor and InterruptEvery are in the record: tSeconds gets the new check
    // interval, and the minutes to the next micropause move by the change of interval but never come
    // closer than 2.
    void ApplyMicropauseOptions();
    // Once the new EveryM is in the record: the minutes to the next exercise prompt are lowered to
    // the new interval, never raised.
    void ApplyExerciseOptions();

    // The user was away this long (a suspended machine, a locked screen): one micropause length or more
    // is a natural micropause, EveryM minutes or more (with no prompt pending) restarts the exercise
    // countdown. True when it restarted the exercise countdown.
    bool awayFor(std::int64_t ms);

    // The tSeconds interval between breaks: InterruptFor seconds, in milliseconds.
    static int naturalPauseInterval(const SettingsRecord& settings);

private:
    void checkNaturalPause();
    bool noticeSleep(); // true when it restarted the exercise countdown
    void countNaturalPause();
    void showMinutesToExercise();
    void showActivitySource();

    const SettingsRecord& settings_;
    SchedulerState& state_;
    const Clock& clock_;
    ActivityMonitor& monitor_;
    Timer& tMinutes_;
    Timer& tSeconds_;
    MicropauseBreak& micropause_;
    ExerciseSequencer& exercise_;
    Warnings& warnings_;
    MainView& view_;
    ExerciseView& exerciseView_;
    PresenceHold& hold_;
    QString shownSource_;
    std::int64_t suspendedSeen_; // the clock's suspended total at the last tick
};

} // namespace tarvo

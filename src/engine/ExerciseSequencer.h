#pragma once

#include "engine/HistoryTap.h"

#include <QString>

#include <cstdint>

namespace tarvo {

class ExerciseView;
struct ExerciseRecord;
class MainView;
class Scheduler;
class Timer;
class Warnings;
struct AppContext;

// The exercise breaks: which exercise of the loaded scheme is shown when, for how long, and what the
// prompt's and the player's buttons do to the break. Driven by tSeconds' one-second ticks while
// InExerciseBreak is set; the break stops both timers while it runs and re-arms the schedule when it
// ends (or cannot start).
//
// The place in the scheme carries over from one break to the next for the whole run: the first break
// of a run opens with the title entry (index 0), which counts as one of its exercises, and then starts
// at the first exercise, or with "xStart" set at a random one; every later break goes on where the last
// one stopped. Exercises left out (Include 0) are never shown, forwards or backwards. An exercise of S
// seconds stays for S + 1 ticks: its caption counts S, S − 1, …, 0, and the tick below 0 moves on.
class ExerciseSequencer {
public:
    ExerciseSequencer(AppContext& context, Timer& tMinutes, Timer& tSeconds, Scheduler& scheduler,
                      ExerciseView& view, MainView& mainView, Warnings& warnings, HistoryTap& history);
    ExerciseSequencer(const ExerciseSequencer&) = delete;
    ExerciseSequencer& operator=(const ExerciseSequencer&) = delete;

    // Starts a break, unless no exercise of the scheme is included: then only the schedule is re-armed.
    void ExerciseBreak();
    // The next exercise, or the end of the break once ExercisesPerBreak have been shown.
    void LoadNextExercise();
    // The previous included exercise (never the title); the break gets one exercise more for it.
    void LoadPrevExercise();
    void UpdateExerciseCaption();
    // One tSeconds tick of a running break.
    void tick();

    // "&Exercise Now!" in the tray menu (with the exercise warning when it is on) and "&Exercise Now..."
    // in the prompt: the break starts at once, with the number of exercises read afresh.
    void exerciseNowFromTray();
    void exerciseNowFromPrompt();
    // The prompt has loaded: its minutes field shows "ProcrastinateM", which becomes the minutes to the
    // next prompt. Returns the field's text.
    QString promptLoaded();
    // "&Later": the typed minutes (5 when they are not a number, at most 120, no lower limit) are saved
    // as "ProcrastinateM" and become the minutes to the next prompt.
    void later(const QString& typedMinutes);
    // The prompt has unloaded: the minute tick counts the exercise countdown again.
    void promptUnloaded();

    // The player's gestures.
    void amx_Click();       // skips to the next exercise on the next tick
    void amx_DblClick();    // ends the break on the next tick
    void amx_KeyPressEsc(); // jumps to the last exercise, so that the next tick wraps to the first
    void togglePause();     // the pause and play buttons: the countdown stops or goes on
    void askToQuit();       // the stop button and Esc: ends the break if the user says Yes

    std::int32_t ExercisesPerBreak = 0;
    std::int32_t ExercisesPlayed = 0;
    // 0: nothing shown since start-up; 1: the title shown, the start not yet chosen; 2: running through
    // the scheme.
    std::int32_t SequencePhase = 0;
    std::int32_t ExerciseIndex = 0;
    std::int32_t SecondsLeft = 0;

private:
    void startNow(QLatin1String origin);
    void show(bool topmost);
    // Moves ExerciseIndex by `step` (wrapping within 1 … ExerciseCount) until it stands on an included
    // exercise; false when the scheme has none.
    bool moveToIncluded(int step);
    // The highest index of an exercise in the table as it is now: the scheme may change under a break.
    std::int32_t lastExercise() const;
    // The table's entry at ExerciseIndex; run-time error 9 where the table has none.
    const ExerciseRecord& exerciseOnScreen() const;
    void endBreak();

    AppContext& ctx_;
    Timer& tMinutes_;
    Timer& tSeconds_;
    Scheduler& scheduler_;
    ExerciseView& view_;
    MainView& mainView_;
    Warnings& warnings_;
    HistoryTap& history_;
    // The prompt and the break as the history will tell them once they are over.
    HistoryTap::Moment promptShown_;
    QString promptAnswer_, postponement_;
    std::int64_t postponedSeconds_ = 0;
    HistoryTap::Moment breakStarted_;
    QLatin1String breakOrigin_ = origin::Menu;
    std::int32_t exercisesShown_ = 0, exercisesPlanned_ = 0;
    bool quit_ = false;
};

} // namespace tarvo

#pragma once

#include <QString>

namespace tarvo {

// What the scheduler hands over. The scheduler only decides *when* a micropause, a warning or an
// exercise prompt is due and whose turn a tSeconds tick is; the break screen, the warning sounds and
// the exercise break decide *how*, and the main form shows the status texts. Every call comes from a
// timer tick on the user-interface thread, and the tick goes on only after the call has returned.
class SchedulerPort {
public:
    virtual ~SchedulerPort() = default;

    // A micropause is due. The break screen takes over: it reloads MinutesToMicropause from
    // MicropauseReload, sets InMicropause and runs tSeconds at 100 ms until the break is over.
    virtual void TarvoMicropause() = 0;
    // A tSeconds tick while InMicropause is set: one step of the break screen's countdown.
    virtual void breakTick() = 0;

    // One minute is left before a micropause (only when AudiblePre is on). Returns when the sound is over.
    virtual void AudibleWarningPre() = 0;
    // The exercise countdown has reached 0 (only when AudibleX is on). Returns when the sound is over.
    virtual void AudibleWarningX() = 0;

    // The exercise countdown has reached 0 and ExercisePromptPending is set: load frmChkExercise and
    // show it without taking the focus from what the user is doing. The prompt clears
    // ExercisePromptPending when it unloads.
    virtual void showExercisePrompt() = 0;
    // A tSeconds tick while InExerciseBreak is set (once a second). The whole tick is the exercise
    // sequencer's: SecondsLeft -= 1 (checked); below 0 it shows the next exercise (LoadNextExercise),
    // otherwise it updates the countdown in the player's title (UpdateExerciseCaption). SecondsLeft is
    // set by the sequencer's load procedures and read by its caption, so the one decrement stays with
    // them rather than reaching into the exercise break's state from here.
    virtual void exerciseTick() = 0;

    // The caption of lblExercise: "Next Exercise Break: <n> minutes".
    virtual void showExerciseStatus(const QString& text) = 0;
    // The caption of lblvoluntary: "Last natural micropause: hh:nn".
    virtual void showVoluntaryStatus(const QString& text) = 0;
};

} // namespace tarvo

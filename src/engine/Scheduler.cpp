#include "engine/Scheduler.h"

#include "core/ActivityMonitor.h"
#include "core/Checked.h"
#include "core/Clock.h"
#include "core/Timer.h"
#include "engine/ExerciseSequencer.h"
#include "engine/ExerciseView.h"
#include "engine/MainView.h"
#include "engine/MicropauseBreak.h"
#include "engine/PresenceHold.h"
#include "engine/SchedulerState.h"
#include "engine/Warnings.h"
#include "settings/SettingsRecord.h"

namespace tarvo {

namespace {

constexpr int kMinuteMs = 60000;
// A change of interval at Apply never brings the next micropause closer than this many minutes.
constexpr std::int32_t kMinMinutesAfterApply = 2;

} // namespace

Scheduler::Scheduler(const SettingsRecord& settings, SchedulerState& state, const Clock& clock,
                     ActivityMonitor& monitor, Timer& tMinutes, Timer& tSeconds, MicropauseBreak& micropause,
                     ExerciseSequencer& exercise, Warnings& warnings, MainView& view,
                     ExerciseView& exerciseView, PresenceHold& hold)
    : settings_(settings)
    , state_(state)
    , clock_(clock)
    , monitor_(monitor)
    , tMinutes_(tMinutes)
    , tSeconds_(tSeconds)
    , micropause_(micropause)
    , exercise_(exercise)
    , warnings_(warnings)
    , view_(view)
    , exerciseView_(exerciseView)
    , hold_(hold)
    , suspendedSeen_(clock.suspendedMs()) {}

int Scheduler::naturalPauseInterval(const SettingsRecord& settings) {
    return checked::mul(settings.InterruptFor, std::int32_t{1000});
}

void Scheduler::SetTimers() {
    tSeconds_.setEnabled(false);
    tMinutes_.setEnabled(false);

    state_.MicropauseReload = settings_.InterruptEvery;
    state_.MinutesToMicropause = settings_.InterruptEvery;

    tMinutes_.setInterval(kMinuteMs);
    tMinutes_.setEnabled(true);

    state_.MinutesToExercise = settings_.EveryM;
    showMinutesToExercise();
    showActivitySource();

    tSeconds_.setInterval(naturalPauseInterval(settings_));
    tSeconds_.setEnabled(true);
    suspendedSeen_ = clock_.suspendedMs();
    hold_.reset();
}

void Scheduler::tMinutes_Timer() {
    // The tick that finds the exercise countdown restarted after a sleep leaves it at its full length.
    if (noticeSleep())
        return;
    hold_.minuteTick();
    if (state_.ExercisePromptPending) {
        state_.MinutesToMicropause = checked::sub(state_.MinutesToMicropause, std::int32_t{1});
        if (state_.MinutesToMicropause == 1 && settings_.AudiblePre) {
            if (!hold_.holdsPreWarning())
                warnings_.AudibleWarningPre();
        } else if (state_.MinutesToMicropause < 1) {
            if (hold_.holdsMicropause())
                state_.MinutesToMicropause = state_.MicropauseReload; // runs on, as if it had come
            else
                micropause_.TarvoMicropause();
        }
        return;
    }

    state_.MinutesToExercise = checked::sub(state_.MinutesToExercise, std::int32_t{1});
    showMinutesToExercise();
    // Only the step onto 0 offers a break: a countdown that started below 1 (an interval of 0) runs
    // on into the negative and never does.
    if (state_.MinutesToExercise != 0)
        return;
    if (hold_.holdsPrompt()) {
        state_.ExercisePromptPending = true; // the micropause countdown runs on as if it were up
        return;
    }
    if (settings_.AudibleX)
        warnings_.AudibleWarningX();
    state_.ExercisePromptPending = true;
    exerciseView_.showExercisePrompt();
}

void Scheduler::tSeconds_Timer() {
    noticeSleep();
    if (state_.InExerciseBreak)
        exercise_.tick();
    else if (state_.InMicropause)
        micropause_.breakTick();
    else
        checkNaturalPause();
}

void Scheduler::checkNaturalPause() {
    // Both channels are read on every check, so that each keeps its latest stamp. A stamp that went
    // down (the tick count wrapped) is no activity for this check, and the next check compares
    // against it again.
    bool activitySeen = false;
    for (std::int32_t channel = 0; channel < 2; ++channel) {
        const std::int32_t stamp = monitor_.VexGetTime(channel);
        auto& last = state_.LastActivityTimes[static_cast<std::size_t>(channel)];
        if (stamp > last)
            activitySeen = true;
        last = stamp;
    }
    showActivitySource(); // after the reads, which may have put a new source in place of a lost one
    // No input for a whole check interval, which is one micropause length: the user has taken a
    // micropause of their own.
    if (!activitySeen)
        countNaturalPause();
}

bool Scheduler::noticeSleep() {
    const std::int64_t total = clock_.suspendedMs();
    const std::int64_t slept = total - suspendedSeen_;
    suspendedSeen_ = total;
    // A break on screen ends by its own count and restarts the schedule itself; a pending exercise
    // prompt stays for the user to answer, with its micropause countdown.
    if (slept <= 0 || state_.InMicropause || state_.InExerciseBreak)
        return false;
    // Whoever was at the machine while it slept was not typing. Counted here, at the first tick after
    // resume, rather than by the natural-pause check: the keys pressed to wake the machine are
    // activity, and the minute tick may come first and start a micropause on the user's return.
    return awayFor(slept);
}

bool Scheduler::awayFor(std::int64_t slept) {
    if (slept >= naturalPauseInterval(settings_))
        countNaturalPause();
    if (!state_.ExercisePromptPending && settings_.EveryM > 0 &&
        slept >= std::int64_t{settings_.EveryM} * kMinuteMs) {
        state_.MinutesToExercise = settings_.EveryM;
        showMinutesToExercise();
        return true;
    }
    return false;
}

void Scheduler::countNaturalPause() {
    // The text is kept up to date whether or not it resets the countdown; with IntelliReset a long
    // absence holds the countdown at its full value.
    view_.showVoluntaryStatus(QStringLiteral("Last natural micropause: ") + formatHhNn(clock_.localNow()));
    if (settings_.IntelliReset) {
        state_.MinutesToMicropause = state_.MicropauseReload;
        hold_.naturalPause();
    }
}

void Scheduler::ApplyMicropauseOptions() {
    tSeconds_.setEnabled(false);
    tSeconds_.setInterval(naturalPauseInterval(settings_));
    tSeconds_.setEnabled(true);

    const std::int32_t change = checked::sub(settings_.InterruptEvery, state_.MicropauseReload);
    state_.MinutesToMicropause = checked::add(state_.MinutesToMicropause, change);
    if (state_.MinutesToMicropause < kMinMinutesAfterApply)
        state_.MinutesToMicropause = kMinMinutesAfterApply;
    state_.MicropauseReload = settings_.InterruptEvery;
}

void Scheduler::ApplyExerciseOptions() {
    if (state_.MinutesToExercise > settings_.EveryM)
        state_.MinutesToExercise = settings_.EveryM;
}

void Scheduler::showActivitySource() {
    QString text = monitor_.description();
    if (text != shownSource_) {
        view_.showActivitySource(text);
        shownSource_ = std::move(text);
    }
}

void Scheduler::showMinutesToExercise() {
    // The number shown is one less than the counter: the minute that is running is not counted.
    const std::int32_t shown = checked::sub(state_.MinutesToExercise, std::int32_t{1});
    view_.showExerciseStatus(QStringLiteral("Next Exercise Break: %1 minutes").arg(shown));
}

} // namespace tarvo

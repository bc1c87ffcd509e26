#include "engine/PresenceHold.h"

#include "core/Clock.h"
#include "engine/ExerciseView.h"
#include "engine/MainView.h"
#include "engine/MicropauseBreak.h"
#include "engine/Scheduler.h"
#include "engine/SchedulerState.h"
#include "engine/Warnings.h"
#include "settings/SettingsRecord.h"

#include <utility>

namespace tarvo {

PresenceHold::PresenceHold(const SettingsRecord& settings, SchedulerState& state, const Clock& clock,
                           PresenceMonitor& monitor, TimerFactory& timers, Scheduler& scheduler,
                           MicropauseBreak& micropause, Warnings& warnings, MainView& view,
                           ExerciseView& exerciseView, HistoryTap& history)
    : settings_(settings)
    , state_(state)
    , clock_(clock)
    , monitor_(monitor)
    , scheduler_(scheduler)
    , micropause_(micropause)
    , warnings_(warnings)
    , view_(view)
    , exerciseView_(exerciseView)
    , history_(history)
    , settle_(timers.createTimer(*this)) {
    settle_->setInterval(kSettleMs);
    monitor_.setListener(this);
}

PresenceHold::~PresenceHold() {
    monitor_.setListener(nullptr);
}

QLatin1String PresenceHold::busyWith() const {
    if (settings_.HoldFullScreen != 0 && monitor_.holds(PresenceCondition::FullScreen))
        return QLatin1String("full-screen window");
    if (settings_.HoldDoNotDisturb != 0 && monitor_.holds(PresenceCondition::DoNotDisturb))
        return QLatin1String("do not disturb");
    if (settings_.HoldInhibited != 0 && monitor_.holds(PresenceCondition::IdleInhibited))
        return QLatin1String("idle inhibitor");
    return {};
}

// Notes a break as held, unless nothing holds it. The limit, and the hold the history tells, count
// from the first held break.
bool PresenceHold::hold(bool& flag) {
    if (!locked_ && !busy())
        return false;
    if (!anyHeld()) {
        heldMinutes_ = 0;
        if (!locked_) {
            heldSince_ = history_.now();
            heldBy_ = busyWith();
        }
    }
    flag = true;
    return true;
}

void PresenceHold::endHold(QLatin1String outcome) {
    if (heldSince_.isSet())
        history_.record(HistoryKind::Hold, std::exchange(heldSince_, {}), outcome, heldBy_);
}

bool PresenceHold::holdsPreWarning() {
    return hold(heldPre_);
}

bool PresenceHold::holdsMicropause() {
    return hold(heldMicropause_);
}

bool PresenceHold::holdsPrompt() {
    return hold(heldPrompt_);
}

void PresenceHold::naturalPause() {
    heldMicropause_ = false;
    heldPre_ = false;
    if (!anyHeld())
        endHold(outcome::Covered);
}

void PresenceHold::minuteTick() {
    // A locked screen has nobody to show a break to: the limit is for a busy person only.
    if (!anyHeld() || locked_ || settings_.HoldLimit <= 0)
        return;
    if (++heldMinutes_ >= settings_.HoldLimit)
        deliver(outcome::CameAtLimit);
}

void PresenceHold::reset() {
    // A prompt that was due but never shown has no form whose unloading would clear its flag.
    if (std::exchange(heldPrompt_, false))
        state_.ExercisePromptPending = false;
    heldPre_ = false;
    heldMicropause_ = false;
    endHold(outcome::Covered); // by the exercise break that restarts the schedule
    settle_->setEnabled(false);
    presenceChanged();
}

void PresenceHold::presenceChanged() {
    const bool lockedNow = settings_.LockPause != 0 && monitor_.holds(PresenceCondition::Locked);
    if (lockedNow && !locked_) {
        locked_ = true;
        lockedAt_ = history_.now();
        micropause_.endAsTaken(); // an exercise break, on the other hand, runs its course
    } else if (!lockedNow && locked_) {
        locked_ = false;
        lockEnded();
    }
    if (anyHeld() && !locked_ && !heldSince_.isSet() && busy()) {
        // Breaks the lock held wait on for a busy person: from now on, that is a hold of its own.
        heldSince_ = history_.now();
        heldBy_ = busyWith();
    }
    showStatus();
    // Every change starts the settle time afresh.
    settle_->setEnabled(false);
    if (anyHeld() && !locked_ && !busy())
        settle_->setEnabled(true);
}

void PresenceHold::lockEnded() {
    // The tick count wraps after 24.8 days; the difference of its unsigned readings does not mind.
    const std::int64_t away =
        static_cast<std::uint32_t>(clock_.tickCount()) - static_cast<std::uint32_t>(lockedAt_.tick);
    const bool natural = away >= Scheduler::naturalPauseInterval(settings_);
    if (natural)
        naturalPause(); // whatever the IntelliReset option: the person was away, not just still
    if (heldPrompt_ && settings_.EveryM > 0 && away >= std::int64_t{settings_.EveryM} * 60000) {
        heldPrompt_ = false; // the exercise countdown starts afresh instead
        state_.ExercisePromptPending = false;
    }
    const bool restarted = scheduler_.awayFor(away);
    QString details;
    if (natural)
        details = restarted ? QStringLiteral("natural micropause, exercise countdown restarted")
                            : QStringLiteral("natural micropause");
    history_.record(HistoryKind::Lock, lockedAt_, outcome::Away, details);
    if (!anyHeld())
        endHold(outcome::Covered);
}

void PresenceHold::programEnds() {
    if (locked_)
        history_.record(HistoryKind::Lock, lockedAt_, outcome::Away);
    endHold(outcome::StillHeld);
}

void PresenceHold::timerTick(Timer&) {
    settle_->setEnabled(false);
    // An exercise break started meanwhile (from the tray) restarts the schedule when it ends.
    if (!locked_ && !busy() && !state_.InExerciseBreak)
        deliver(outcome::CameAfter);
}

void PresenceHold::deliver(QLatin1String outcome) {
    endHold(outcome);
    settle_->setEnabled(false);
    heldMinutes_ = 0;
    const bool pre = std::exchange(heldPre_, false);
    const bool micropause = std::exchange(heldMicropause_, false);
    if (std::exchange(heldPrompt_, false)) {
        if (settings_.AudibleX)
            warnings_.AudibleWarningX();
        exerciseView_.showExercisePrompt();
    }
    if (micropause && !state_.InMicropause) {
        // The countdown ran on during the hold; the late break does not restart it.
        const std::int32_t next = state_.MinutesToMicropause;
        micropause_.TarvoMicropause();
        state_.MinutesToMicropause = next;
    } else if (pre && settings_.AudiblePre && state_.ExercisePromptPending &&
               state_.MinutesToMicropause == 1) {
        warnings_.AudibleWarningPre(); // only while its micropause is still a minute ahead
    }
}

void PresenceHold::showStatus() {
    QString text;
    if (locked_)
        text = QStringLiteral("Screen locked");
    else if (const QLatin1String condition = busyWith(); !condition.isEmpty())
        text = QStringLiteral("Held: ") + condition;
    if (text != shown_) {
        view_.showPresenceStatus(text);
        shown_ = text;
    }
}

} // namespace tarvo

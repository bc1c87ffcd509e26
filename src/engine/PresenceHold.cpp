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
                           ExerciseView& exerciseView)
    : settings_(settings)
    , state_(state)
    , clock_(clock)
    , monitor_(monitor)
    , scheduler_(scheduler)
    , micropause_(micropause)
    , warnings_(warnings)
    , view_(view)
    , exerciseView_(exerciseView)
    , settle_(timers.createTimer(*this)) {
    settle_->setInterval(kSettleMs);
    monitor_.setListener(this);
}

PresenceHold::~PresenceHold() {
    monitor_.setListener(nullptr);
}

bool PresenceHold::busy() const {
    return (settings_.HoldFullScreen != 0 && monitor_.holds(PresenceCondition::FullScreen)) ||
           (settings_.HoldDoNotDisturb != 0 && monitor_.holds(PresenceCondition::DoNotDisturb)) ||
           (settings_.HoldInhibited != 0 && monitor_.holds(PresenceCondition::IdleInhibited));
}

namespace {

// Notes a break as held, unless nothing holds it. The limit counts from the first held break.
bool hold(bool blocked, bool anyHeld, bool& flag, std::int32_t& heldMinutes) {
    if (!blocked)
        return false;
    if (!anyHeld)
        heldMinutes = 0;
    flag = true;
    return true;
}

} // namespace

bool PresenceHold::holdsPreWarning() {
    return hold(locked_ || busy(), anyHeld(), heldPre_, heldMinutes_);
}

bool PresenceHold::holdsMicropause() {
    return hold(locked_ || busy(), anyHeld(), heldMicropause_, heldMinutes_);
}

bool PresenceHold::holdsPrompt() {
    return hold(locked_ || busy(), anyHeld(), heldPrompt_, heldMinutes_);
}

void PresenceHold::naturalPause() {
    heldMicropause_ = false;
    heldPre_ = false;
}

void PresenceHold::minuteTick() {
    // A locked screen has nobody to show a break to: the limit is for a busy person only.
    if (!anyHeld() || locked_ || settings_.HoldLimit <= 0)
        return;
    if (++heldMinutes_ >= settings_.HoldLimit)
        deliver();
}

void PresenceHold::reset() {
    // A prompt that was due but never shown has no form whose unloading would clear its flag.
    if (std::exchange(heldPrompt_, false))
        state_.ExercisePromptPending = false;
    heldPre_ = false;
    heldMicropause_ = false;
    settle_->setEnabled(false);
    presenceChanged();
}

void PresenceHold::presenceChanged() {
    const bool lockedNow = settings_.LockPause != 0 && monitor_.holds(PresenceCondition::Locked);
    if (lockedNow && !locked_) {
        locked_ = true;
        lockedAt_ = clock_.tickCount();
        micropause_.endAsTaken(); // an exercise break, on the other hand, runs its course
    } else if (!lockedNow && locked_) {
        locked_ = false;
        lockEnded();
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
        static_cast<std::uint32_t>(clock_.tickCount()) - static_cast<std::uint32_t>(lockedAt_);
    if (away >= Scheduler::naturalPauseInterval(settings_))
        naturalPause(); // whatever the IntelliReset option: the person was away, not just still
    if (heldPrompt_ && settings_.EveryM > 0 && away >= std::int64_t{settings_.EveryM} * 60000) {
        heldPrompt_ = false; // the exercise countdown starts afresh instead
        state_.ExercisePromptPending = false;
    }
    scheduler_.awayFor(away);
}

void PresenceHold::timerTick(Timer&) {
    settle_->setEnabled(false);
    // An exercise break started meanwhile (from the tray) restarts the schedule when it ends.
    if (!locked_ && !busy() && !state_.InExerciseBreak)
        deliver();
}

void PresenceHold::deliver() {
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
    else if (settings_.HoldFullScreen != 0 && monitor_.holds(PresenceCondition::FullScreen))
        text = QStringLiteral("Held: full-screen window");
    else if (settings_.HoldDoNotDisturb != 0 && monitor_.holds(PresenceCondition::DoNotDisturb))
        text = QStringLiteral("Held: do not disturb");
    else if (settings_.HoldInhibited != 0 && monitor_.holds(PresenceCondition::IdleInhibited))
        text = QStringLiteral("Held: idle inhibitor");
    if (text != shown_) {
        view_.showPresenceStatus(text);
        shown_ = text;
    }
}

} // namespace tarvo

#include "engine/MicropauseBreak.h"

#include "core/Checked.h"
#include "core/Clock.h"
#include "core/Timer.h"
#include "core/VbConvert.h"
#include "engine/CountdownBar.h"
#include "engine/MainView.h"
#include "engine/Scheduler.h"
#include "engine/SchedulerState.h"
#include "engine/Warnings.h"
#include "settings/SettingsRecord.h"

namespace tarvo {

namespace {
// The bar moves ten steps a second.
constexpr std::int32_t kStepsPerSecond = 10;
} // namespace

MicropauseBreak::MicropauseBreak(const SettingsRecord& settings, SchedulerState& state, Timer& tSeconds,
                                 Warnings& warnings, MainView& view, const Clock& clock)
    : settings_(settings)
    , state_(state)
    , tSeconds_(tSeconds)
    , warnings_(warnings)
    , view_(view)
    , clock_(clock) {}

void MicropauseBreak::TarvoMicropause() {
    CountdownBar& bar = view_.countdownBar();
    state_.MinutesToMicropause = state_.MicropauseReload;
    tSeconds_.setEnabled(false);
    // An InterruptFor of 0 asks the bar for a maximum of 0, which it refuses with its own error.
    bar.setMax(checked::mul(settings_.InterruptFor, kStepsPerSecond));
    state_.InMicropause = true;
    bar.setValue(1);
    view_.prepareBreak(settings_.DisableEsc == 0);
    if (settings_.Audible)
        warnings_.AudibleWarning();
    tSeconds_.setInterval(vb::toLong(1000.0 / kStepsPerSecond));
    tSeconds_.setEnabled(true);
    view_.presentBreak(settings_.Blank != 0);
}

void MicropauseBreak::cutShort() {
    if (!state_.InMicropause)
        return; // and the view need not load its bar for nothing
    CountdownBar& bar = view_.countdownBar();
    if (bar.Value() < checked::sub(bar.Max(), std::int32_t{3}))
        bar.setValue(checked::sub(bar.Max(), std::int32_t{1}));
}

void MicropauseBreak::breakTick() {
    CountdownBar& bar = view_.countdownBar();
    bar.setValue(checked::add(bar.Value(), std::int32_t{1}));
    if (bar.Value() < bar.Max())
        return;
    finish(true);
}

void MicropauseBreak::endAsTaken() {
    if (state_.InMicropause)
        finish(false);
}

void MicropauseBreak::finish(bool withSound) {
    tSeconds_.setEnabled(false);
    view_.dismissBreak();
    state_.InMicropause = false;
    tSeconds_.setInterval(Scheduler::naturalPauseInterval(settings_));
    tSeconds_.setEnabled(true);
    view_.showLastMicropause(QStringLiteral("Last tarvo micropause: ") + formatHhNn(clock_.localNow()));
    if (withSound && settings_.Audible)
        warnings_.AudibleNotification();
}

void MicropauseBreak::cmdCancel_Click() {
    if (settings_.DisableEsc != 0)
        return;
    CountdownBar& bar = view_.countdownBar();
    bar.setValue(checked::sub(bar.Max(), std::int32_t{1}));
}

} // namespace tarvo

#include "micropause/MicropauseBreak.h"

#include "core/Checked.h"
#include "core/Clock.h"
#include "core/Timer.h"
#include "core/VbConvert.h"
#include "micropause/BreakView.h"
#include "micropause/CProgressBar.h"
#include "micropause/Scheduler.h"
#include "micropause/SchedulerState.h"
#include "micropause/Warnings.h"
#include "settings/SettingsRecord.h"

namespace tarvo {

namespace {
// The bar moves ten steps a second.
constexpr std::int32_t kStepsPerSecond = 10;
} // namespace

MicropauseBreak::MicropauseBreak(const SettingsRecord& settings, SchedulerState& state,
                                 const Scheduler& scheduler, Timer& tSeconds, CProgressBar& bar,
                                 Warnings& warnings, BreakView& view, const Clock& clock)
    : settings_(settings)
    , state_(state)
    , scheduler_(scheduler)
    , tSeconds_(tSeconds)
    , bar_(bar)
    , warnings_(warnings)
    , view_(view)
    , clock_(clock) {}

void MicropauseBreak::TarvoMicropause() {
    state_.MinutesToMicropause = state_.MicropauseReload;
    tSeconds_.setEnabled(false);
    // An InterruptFor of 0 asks the bar for a maximum of 0, which it refuses with its own error.
    bar_.setMax(checked::mul(settings_.InterruptFor, kStepsPerSecond));
    state_.InMicropause = true;
    bar_.setValue(1);
    view_.prepareBreak(settings_.DisableEsc == 0);
    if (settings_.Audible)
        warnings_.AudibleWarning();
    tSeconds_.setInterval(vb::toLong(1000.0 / kStepsPerSecond));
    tSeconds_.setEnabled(true);
    view_.presentBreak(settings_.Blank != 0);
}

void MicropauseBreak::breakTick() {
    bar_.setValue(checked::add(bar_.Value(), std::int32_t{1}));
    if (bar_.Value() < bar_.Max())
        return;
    tSeconds_.setEnabled(false);
    view_.dismissBreak();
    state_.InMicropause = false;
    tSeconds_.setInterval(scheduler_.naturalPauseInterval());
    tSeconds_.setEnabled(true);
    view_.showLastMicropause(QStringLiteral("Last tarvo micropause: ") + formatHhNn(clock_.localNow()));
    if (settings_.Audible)
        warnings_.AudibleNotification();
}

void MicropauseBreak::cmdCancel_Click() {
    if (settings_.DisableEsc != 0)
        return;
    bar_.setValue(checked::sub(bar_.Max(), std::int32_t{1}));
}

} // namespace tarvo

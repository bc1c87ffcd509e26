#include "engine/BreakEngine.h"

#include "engine/AppContext.h"

namespace tarvo {

BreakEngine::BreakEngine(AppContext& ctx, MainView& view, ExerciseView& exerciseView, Warnings& warnings)
    : tMinutes_(ctx.timers.createTimer(*this))
    , tSeconds_(ctx.timers.createTimer(*this))
    , history_(ctx.clock)
    , micropause_(ctx.record, ctx.schedule, *tSeconds_, warnings, view, ctx.clock, history_)
    , presence_(ctx.record, ctx.schedule, ctx.clock, ctx.presence, ctx.timers, scheduler_, micropause_,
                warnings, view, exerciseView, history_)
    , scheduler_(ctx.record, ctx.schedule, ctx.clock, ctx.monitor, *tMinutes_, *tSeconds_, micropause_,
                 exercise_, warnings, view, exerciseView, presence_, history_)
    , exercise_(ctx, *tMinutes_, *tSeconds_, scheduler_, exerciseView, view, warnings, history_) {}

BreakEngine::~BreakEngine() = default;

void BreakEngine::programStarts() {
    history_.record(HistoryKind::Startup, history_.now().local, {}, 0);
}

void BreakEngine::programEnds() {
    scheduler_.closeNaturalPause();
    presence_.programEnds();
    history_.record(HistoryKind::Shutdown, history_.now().local, {}, 0);
}

void BreakEngine::timerTick(Timer& timer) {
    if (&timer == tMinutes_.get())
        scheduler_.tMinutes_Timer();
    else
        scheduler_.tSeconds_Timer();
}

} // namespace tarvo

#include "engine/BreakEngine.h"

#include "engine/AppContext.h"

namespace tarvo {

BreakEngine::BreakEngine(AppContext& ctx, MainView& view, ExerciseView& exerciseView, Warnings& warnings)
    : tMinutes_(ctx.timers.createTimer(*this))
    , tSeconds_(ctx.timers.createTimer(*this))
    , micropause_(ctx.record, ctx.schedule, *tSeconds_, warnings, view, ctx.clock)
    , presence_(ctx.record, ctx.schedule, ctx.clock, ctx.presence, ctx.timers, scheduler_, micropause_,
                warnings, view, exerciseView)
    , scheduler_(ctx.record, ctx.schedule, ctx.clock, ctx.monitor, *tMinutes_, *tSeconds_, micropause_,
                 exercise_, warnings, view, exerciseView, presence_)
    , exercise_(ctx, *tMinutes_, *tSeconds_, scheduler_, exerciseView, view, warnings) {}

BreakEngine::~BreakEngine() = default;

void BreakEngine::timerTick(Timer& timer) {
    if (&timer == tMinutes_.get())
        scheduler_.tMinutes_Timer();
    else
        scheduler_.tSeconds_Timer();
}

} // namespace tarvo

#include "engine/BreakEngine.h"

#include "core/Timer.h"
#include "engine/AppContext.h"

namespace tarvo {

BreakEngine::BreakEngine(AppContext& ctx, MainView& view, Warnings& warnings)
    : tMinutes_(ctx.timers.createTimer(*this))
    , tSeconds_(ctx.timers.createTimer(*this))
    , micropause_(ctx.record, ctx.schedule, *tSeconds_, warnings, view, ctx.clock)
    , scheduler_(ctx.record, ctx.schedule, ctx.clock, ctx.monitor, *tMinutes_, *tSeconds_, micropause_,
                 warnings, view) {}

BreakEngine::~BreakEngine() = default;

void BreakEngine::timerTick(Timer& timer) {
    if (&timer == tMinutes_.get())
        scheduler_.tMinutes_Timer();
    else
        scheduler_.tSeconds_Timer();
}

} // namespace tarvo

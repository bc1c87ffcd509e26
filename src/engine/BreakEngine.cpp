#include "engine/BreakEngine.h"

#include "core/Timer.h"
#include "engine/AppContext.h"

namespace tarvo {

BreakEngine::BreakEngine(AppContext& ctx, MainView& view, Warnings& warnings)
    : tMinutes_(ctx.timers.createTimer())
    , tSeconds_(ctx.timers.createTimer())
    , micropause_(ctx.record, ctx.schedule, *tSeconds_, warnings, view, ctx.clock)
    , scheduler_(ctx.record, ctx.schedule, ctx.clock, ctx.monitor, *tMinutes_, *tSeconds_, micropause_,
                 warnings, view) {
    tMinutes_->setHandler([this] { scheduler_.tMinutes_Timer(); });
    tSeconds_->setHandler([this] { scheduler_.tSeconds_Timer(); });
}

BreakEngine::~BreakEngine() = default;

} // namespace tarvo

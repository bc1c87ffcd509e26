#include "options/PresenceOptions.h"

#include "engine/AppContext.h"
#include "engine/PresenceHold.h"
#include "settings/Options.h"

#include <algorithm>

namespace tarvo {

PresenceFields presenceFromRecord(const SettingsRecord& r) {
    return {r.LockPause != 0, r.HoldFullScreen != 0, r.HoldDoNotDisturb != 0, r.HoldInhibited != 0,
            r.HoldLimit};
}

void applyPresence(const PresenceFields& f, AppContext& ctx, PresenceHold& hold) {
    SettingsRecord& r = ctx.record;
    const OptionRange limit = *option("HoldLimit").clamp;
    r.LockPause = f.chkLockPause;
    r.HoldFullScreen = f.chkFullScreen;
    r.HoldDoNotDisturb = f.chkDoNotDisturb;
    r.HoldInhibited = f.chkInhibited;
    r.HoldLimit = std::clamp(f.spnHoldLimit, limit.min, limit.max);
    StoreBatch batch(ctx.store);
    for (const Option* o : {&option("LockPause"), &option("HoldFullScreen"), &option("HoldDoNotDisturb"),
                            &option("HoldInhibited"), &option("HoldLimit")})
        ctx.settings.writeNumber(*o, o->number(r));
    batch.finish();
    hold.optionsChanged();
}

} // namespace tarvo

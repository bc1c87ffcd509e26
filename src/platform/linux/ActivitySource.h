#pragma once

#include "core/ActivityMonitor.h"

#include <QString>

namespace tarvo {

// One way of seeing the user's activity, which may stop working while the program runs: its X server
// connection breaks, or the desktop service it listens to leaves the bus. The program's monitor
// (FallbackActivityMonitor) then picks the best source anew.
class ActivitySource : public ActivityMonitor {
public:
    // Why the source sees nothing any more; empty while it works.
    virtual QString lostReason() const { return {}; }
    // False for the stand-in that sees no input at all (AlwaysActiveActivityMonitor).
    virtual bool seesInput() const { return true; }
};

} // namespace tarvo

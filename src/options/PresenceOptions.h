#pragma once

#include <cstdint>

namespace tarvo {

struct AppContext;
class PresenceHold;
struct SettingsRecord;

// The presence dialog's controls as values: a locked screen as a pause, the three conditions that
// hold breaks back, and the most minutes a busy person holds one (0: no limit).
struct PresenceFields {
    bool chkLockPause = false;
    bool chkFullScreen = false;
    bool chkDoNotDisturb = false;
    bool chkInhibited = false;
    std::int32_t spnHoldLimit = 0;
};

PresenceFields presenceFromRecord(const SettingsRecord& record);

// OK in the presence dialog: the record takes the fields (the limit kept within its bounds), the store
// gets them as one durable update, and the breaks held now are weighed again at once.
void applyPresence(const PresenceFields& fields, AppContext& ctx, PresenceHold& hold);

} // namespace tarvo

#pragma once

#include "settings/SettingsRecord.h"
#include "settings/SettingsStore.h"

namespace tarvo {

class SettingsPort;

// Fills the record from the store, option by option in the table's order: "Exercise" ("Scheme" first),
// then "Micropause" (with "DisableEsc2" or-ed into DisableEsc), then the two "Monitor" keys. A bad
// number stops the load with its run-time error; the fields read before it keep their new values.
void loadAllSettings(SettingsStore& settings, SettingsRecord& record, SettingsPort* port = nullptr);

// Writes every option of the record in the order Apply writes them, as one durable update. The port
// saves the edited scheme between "ViewAm" and "Scheme".
void commitSettings(SettingsStore& settings, const SettingsRecord& record, SettingsPort* port = nullptr);

// Apply's writes fall into three groups, in this order: the micropause options, the other exercise
// options, and the scheme's name with the cycler's options. Apply takes the fields of one group from
// the dialog and writes the group before it reads the next, so that a field of a later group that
// cannot be read stops Apply with the earlier groups safely in the store.
enum class CommitGroup { Micropause, Exercise, Scheme };

// Writes one group of options in Apply's order, as one durable update.
void commitSettings(SettingsStore& settings, const SettingsRecord& record, SettingsPort* port,
                    CommitGroup group);

} // namespace tarvo

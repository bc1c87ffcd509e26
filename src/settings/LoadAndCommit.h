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

} // namespace tarvo

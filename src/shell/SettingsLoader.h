#pragma once

#include "shell/SettingsRecord.h"
#include "shell/SettingsStore.h"

#include <functional>

namespace tarvo {

// What start-up does between the reads of "Load all": the scheme is loaded as soon as its name is
// known, the break screen takes the message once the micropause options are in, and each input
// channel is switched on as its "Monitor" key is read. Any step may be left empty.
struct SettingsLoadSteps {
    std::function<void(const QString& scheme)> loadScheme;
    std::function<void(const QString& warning)> showWarning;
    std::function<void(int source, std::int32_t monitor)> monitorSource;
};

// Fills the record from the store in start-up order: "Exercise" ("Scheme" first), then "Micropause"
// (with "DisableEsc2" or-ed into DisableEsc), then the two "Monitor" keys. A bad number stops the
// load with its run-time error; the fields read before it keep their new values.
void loadAllSettings(SettingsStore& settings, SettingsRecord& record, const SettingsLoadSteps& steps = {});

// Writes every option of the record in the order Apply writes them, as one durable update.
// `saveScheme` runs between "ViewAm" and "Scheme", where the edited scheme is saved.
void commitSettings(SettingsStore& settings, const SettingsRecord& record,
                    const std::function<void()>& saveScheme = {});

} // namespace tarvo

#pragma once

#include "settings/SettingsPort.h"

#include <QString>

#include <array>
#include <cstdint>

namespace tarvo {

struct AppContext;
class Scheduler;
struct SettingsRecord;

// The options dialog's controls on its first two tabs, as values: the working copy that LoadMeUp
// fills from the record and Apply reads back. Digit fields are texts, since the user may have left
// them empty or typed past a spinner's bound.
struct OptionFields {
    // "Micropauses"
    QString txtIntFor;
    QString txtIntEvery;
    bool chkReset = false;
    std::array<bool, 2> chkMonitor{}; // 0 keyboard use, 1 mouse movement
    bool chkBlank = false;
    bool chkDisableEsc = false;
    bool chkAudible = false;
    bool chkAudiblePre = false;
    QString txtWarning;
    // "Exercise Breaks"
    QString txtEveryM;
    bool chkAudibleX = false;
    bool chkBlankX = false;
    int comboView = 0;
    QString txtNumAtaTime;
    bool optXstartRandom = false; // optXstart(1); optXstart(0), from the beginning, otherwise
};

// What LoadMeUp shows for the record.
OptionFields fieldsFromRecord(const SettingsRecord& record);

// What Apply asks of the rest of the program on its way: the break screen takes the new message at
// once, and (from SettingsPort) the scheme tab's list is copied into the exercise table and saved
// under the current scheme just before the scheme's name is written.
class ApplyPort : public SettingsPort {
public:
    virtual void warningChanged(const QString& warning) = 0;
};

// Apply. Repairs the two micropause fields in place (an unreadable text gets the option's value back,
// then a number out of range is set to the nearest bound; the values corrected are the ones applied),
// copies every field into the record, moves the running countdowns and writes the options group by
// group. An empty or unreadable exercise field is not repaired: its conversion error leaves Apply
// with the micropause options already written.
void applyOptions(OptionFields& fields, AppContext& ctx, Scheduler& scheduler, ApplyPort& port);

} // namespace tarvo

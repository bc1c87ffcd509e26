#include "options/OptionFields.h"

#include "core/RuntimeError.h"
#include "core/VbConvert.h"
#include "engine/AppContext.h"
#include "engine/Scheduler.h"
#include "settings/LoadAndCommit.h"
#include "settings/Options.h"

namespace tarvo {

namespace {

// One micropause field's repair. `lastRead` is the number last read in this Apply, shared by both
// fields: a field that cannot be read gets the option's value back but is then checked against the
// number read before it (0 when none was), so an emptied first field ends at its lower bound.
void repair(QString& field, std::int32_t current, const Option& o, std::int32_t& lastRead) {
    try {
        lastRead = vb::toLong(field);
    } catch (const RuntimeError&) {
        field = QString::number(current);
    }
    const OptionRange range = *o.clamp;
    if (lastRead > range.max)
        field = QString::number(range.max);
    if (lastRead < range.min)
        field = QString::number(range.min);
}

std::int32_t yesNo(bool checked) {
    return checked ? 1 : 0;
}

} // namespace

OptionFields fieldsFromRecord(const SettingsRecord& r) {
    OptionFields f;
    f.txtIntFor = QString::number(r.InterruptFor);
    f.txtIntEvery = QString::number(r.InterruptEvery);
    f.chkReset = r.IntelliReset != 0;
    f.chkMonitor = {r.Monitor[0] != 0, r.Monitor[1] != 0};
    f.chkAudible = r.Audible != 0;
    f.chkAudiblePre = r.AudiblePre != 0;
    f.chkBlank = r.Blank != 0;
    f.txtWarning = r.Warning;
    f.chkDisableEsc = r.DisableEsc != 0;
    f.txtEveryM = QString::number(r.EveryM);
    f.chkAudibleX = r.AudibleX != 0;
    f.chkBlankX = r.BlankX != 0;
    f.comboView = r.ViewAm;
    f.txtNumAtaTime = QString::number(r.NumAtaTime);
    f.optXstartRandom = r.xStart != 0;
    return f;
}

void applyOptions(OptionFields& f, AppContext& ctx, Scheduler& scheduler, ApplyPort& port) {
    SettingsRecord& r = ctx.record;
    std::int32_t lastRead = 0;
    repair(f.txtIntFor, r.InterruptFor, option("InterruptFor"), lastRead);
    repair(f.txtIntEvery, r.InterruptEvery, option("InterruptEvery"), lastRead);

    r.InterruptFor = vb::toLong(f.txtIntFor);
    r.InterruptEvery = vb::toLong(f.txtIntEvery);
    scheduler.ApplyMicropauseOptions();
    r.IntelliReset = yesNo(f.chkReset);
    r.Audible = yesNo(f.chkAudible);
    r.AudiblePre = yesNo(f.chkAudiblePre);
    r.Blank = yesNo(f.chkBlank);
    r.DisableEsc = yesNo(f.chkDisableEsc);
    r.Monitor[0] = yesNo(f.chkMonitor[0]);
    r.Monitor[1] = yesNo(f.chkMonitor[1]);
    r.Warning = f.txtWarning;
    port.warningChanged(r.Warning);
    commitSettings(ctx.settings, r, &port, CommitGroup::Micropause);

    r.AudibleX = yesNo(f.chkAudibleX);
    r.BlankX = yesNo(f.chkBlankX);
    r.ViewAm = f.comboView;
    r.EveryM = vb::toLong(f.txtEveryM);
    r.xStart = f.optXstartRandom ? -1 : 0;
    r.NumAtaTime = vb::toLong(f.txtNumAtaTime);
    scheduler.ApplyExerciseOptions();
    commitSettings(ctx.settings, r, &port, CommitGroup::Exercise);

    r.Scheme = ctx.exercises.CurrentScheme;
    commitSettings(ctx.settings, r, &port, CommitGroup::Scheme);
}

} // namespace tarvo

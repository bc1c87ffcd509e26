#include "shell/SettingsLoader.h"

#include "shell/SettingsKeys.h"

namespace tarvo {

namespace {

const SettingsRecord kDefaults;

// Yes/no options are stored as the state of their check box.
QString checkState(std::int32_t v) {
    return v != 0 ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

void loadAllSettings(SettingsStore& s, SettingsRecord& r, const SettingsLoadSteps& steps) {
    const QString& ex = keys::Exercise;
    r.Scheme = s.readText(ex, keys::Scheme, kDefaults.Scheme);
    if (steps.loadScheme)
        steps.loadScheme(r.Scheme);
    r.EveryM = s.readNumber(ex, keys::EveryM, kDefaults.EveryM);
    r.AudibleX = s.readNumber(ex, keys::AudibleX, kDefaults.AudibleX);
    r.WarningSoundX = s.readText(ex, keys::WarningSoundX, kDefaults.WarningSoundX);
    r.BlankX = s.readNumber(ex, keys::BlankX, kDefaults.BlankX);
    r.ViewAm = s.readNumber(ex, keys::ViewAm, kDefaults.ViewAm);
    r.xStart = s.readNumber(ex, keys::xStart, kDefaults.xStart);
    r.NumAtaTime = s.readNumber(ex, keys::NumAtaTime, kDefaults.NumAtaTime);

    const QString& mp = keys::Micropause;
    r.InterruptFor = s.readNumber(mp, keys::InterruptFor, kDefaults.InterruptFor);
    r.InterruptEvery = s.readNumber(mp, keys::InterruptEvery, kDefaults.InterruptEvery);
    r.IntelliReset = s.readNumber(mp, keys::IntelliReset, kDefaults.IntelliReset);
    r.Audible = s.readNumber(mp, keys::Audible, kDefaults.Audible);
    r.WarningSound = s.readText(mp, keys::WarningSound, kDefaults.WarningSound);
    r.AudiblePre = s.readNumber(mp, keys::AudiblePre, kDefaults.AudiblePre);
    r.WarningSoundPre = s.readText(mp, keys::WarningSoundPre, kDefaults.WarningSoundPre);
    // Either switch forbids ending a micropause with Esc; "DisableEsc2" can only be set from outside.
    const std::int32_t disableEsc = s.readNumber(mp, keys::DisableEsc, 0);
    r.DisableEsc = disableEsc | s.readNumber(mp, keys::DisableEsc2, 0);
    r.Blank = s.readNumber(mp, keys::Blank, kDefaults.Blank);
    r.Warning = s.readText(mp, keys::Warning, kDefaults.Warning);
    if (steps.showWarning)
        steps.showWarning(r.Warning);

    for (int source = 0; source < 2; ++source) {
        r.Monitor[static_cast<size_t>(source)] = s.readNumber(mp, keys::monitor(source), 1);
        if (steps.monitorSource)
            steps.monitorSource(source, r.Monitor[static_cast<size_t>(source)]);
    }
}

void commitSettings(SettingsStore& s, const SettingsRecord& r, const std::function<void()>& saveScheme) {
    StoreBatch batch(s.store());
    const QString& mp = keys::Micropause;
    s.writeNumber(mp, keys::InterruptFor, r.InterruptFor);
    s.writeNumber(mp, keys::InterruptEvery, r.InterruptEvery);
    s.write(mp, keys::Audible, checkState(r.Audible));
    s.write(mp, keys::WarningSound, r.WarningSound);
    s.write(mp, keys::AudiblePre, checkState(r.AudiblePre));
    s.write(mp, keys::WarningSoundPre, r.WarningSoundPre);
    s.write(mp, keys::Blank, checkState(r.Blank));
    s.write(mp, keys::Warning, r.Warning);
    s.write(mp, keys::DisableEsc, checkState(r.DisableEsc));
    s.write(mp, keys::IntelliReset, checkState(r.IntelliReset));
    s.write(mp, keys::monitor(0), checkState(r.Monitor[0]));
    s.write(mp, keys::monitor(1), checkState(r.Monitor[1]));

    const QString& ex = keys::Exercise;
    s.write(ex, keys::AudibleX, checkState(r.AudibleX));
    s.writeNumber(ex, keys::EveryM, r.EveryM);
    s.write(ex, keys::WarningSoundX, r.WarningSoundX);
    s.write(ex, keys::BlankX, checkState(r.BlankX));
    s.writeNumber(ex, keys::ViewAm, r.ViewAm);
    if (saveScheme)
        saveScheme();
    s.write(ex, keys::Scheme, r.Scheme);
    s.writeNumber(ex, keys::xStart, r.xStart);
    s.writeNumber(ex, keys::NumAtaTime, r.NumAtaTime);
    batch.finish();
}

} // namespace tarvo

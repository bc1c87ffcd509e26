#pragma once

#include <QString>

#include <array>
#include <cstdint>

namespace tarvo {

// Every option of the program, read once at start-up and changed only by Apply (and, for the three
// sound paths, by the sound choice). Fields are in the order start-up fills them. A new record holds
// the defaults a fresh profile gets, as the option table (settings/Options.h) gives them.
struct SettingsRecord {
    SettingsRecord();

    QString Scheme;
    std::int32_t EveryM;
    std::int32_t AudibleX;
    QString WarningSoundX;
    std::int32_t BlankX;
    std::int32_t ViewAm;
    std::int32_t xStart; // 0: the first exercise break starts at the beginning; else at random
    std::int32_t NumAtaTime;
    std::int32_t InterruptFor;   // seconds
    std::int32_t InterruptEvery; // minutes
    std::int32_t IntelliReset;
    std::int32_t Audible;
    QString WarningSound;
    std::int32_t AudiblePre;
    QString WarningSoundPre;
    std::int32_t DisableEsc; // the stored "DisableEsc" or-ed with "DisableEsc2"
    std::int32_t Blank;
    QString Warning;
    std::array<std::int32_t, 2> Monitor; // 0: keyboard use, 1: mouse movement
    // Presence: a locked screen counts as a pause; breaks wait while a full-screen window, the
    // desktop's do-not-disturb or an idle inhibitor holds them, at most HoldLimit minutes (0: no limit).
    std::int32_t LockPause;
    std::int32_t HoldFullScreen;
    std::int32_t HoldDoNotDisturb;
    std::int32_t HoldInhibited;
    std::int32_t HoldLimit;

    bool operator==(const SettingsRecord&) const = default;
};

} // namespace tarvo

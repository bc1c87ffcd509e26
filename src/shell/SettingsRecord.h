#pragma once

#include <QString>

#include <array>
#include <cstdint>

namespace tarvo {

// Every option of the program, read once at start-up and changed only by Apply (and, for the three
// sound paths, by the sound choice). Fields are in the order start-up fills them; the initial values
// are the defaults a fresh profile gets.
struct SettingsRecord {
    QString Scheme = QStringLiteral("*Medium break");
    std::int32_t EveryM = 50;
    std::int32_t AudibleX = 1;
    QString WarningSoundX;
    std::int32_t BlankX = 1;
    std::int32_t ViewAm = 0;
    std::int32_t xStart = 0; // 0: the first exercise break starts at the beginning; else at random
    std::int32_t NumAtaTime = 6;
    std::int32_t InterruptFor = 15;  // seconds
    std::int32_t InterruptEvery = 4; // minutes
    std::int32_t IntelliReset = 1;
    std::int32_t Audible = 1;
    QString WarningSound;
    std::int32_t AudiblePre = 1;
    QString WarningSoundPre;
    std::int32_t DisableEsc = 0; // the stored "DisableEsc" or-ed with "DisableEsc2"
    std::int32_t Blank = 1;
    QString Warning = QStringLiteral("Hands off Keyboard && Mouse, look away, relax.");
    std::array<std::int32_t, 2> Monitor{1, 1}; // 0: keyboard use, 1: mouse movement

    bool operator==(const SettingsRecord&) const = default;
};

} // namespace tarvo

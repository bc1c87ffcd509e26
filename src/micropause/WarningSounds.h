#pragma once

#include "engine/Warnings.h"

#include <QString>

namespace tarvo {

class SoundPlayer;
struct SettingsRecord;

// The warnings as the user chose them: the sound file of the warning's path, or, when the path is
// empty, a fixed pattern of beeps. The on/off options are the callers' business; a warning that is
// called sounds.
//
// The micropause warnings hold the user-interface thread until their file has played, as the beep
// patterns do with their pauses; the exercise warning starts its file and lets the program go on.
class WarningSounds : public Warnings {
public:
    // The pauses of the beep patterns, in milliseconds. The short one is half of 333, rounded to even.
    static constexpr int kPrePauseMs = 250;
    static constexpr int kShortPauseMs = 166;
    static constexpr int kLongPauseMs = 999;

    // programFolder: where a bare file name (one without any "/") is looked up.
    WarningSounds(const SettingsRecord& settings, SoundPlayer& player, QString programFolder);

    // Without a file: 4 × (beep, 250 ms).
    void AudibleWarningPre() override;
    // Without a file: beep, 166 ms, 3 × (beep, 999 ms), 999 ms.
    void AudibleWarning() override;
    // Without a file: 3 × (beep, 166 ms), 4 × (beep, 999 ms), 999 ms.
    void AudibleWarningX() override;
    // Always one beep.
    void AudibleNotification() override;

    // The file a stored sound path names.
    QString soundFile(const QString& stored) const;

private:
    void beeps(int count, int pauseMs);

    const SettingsRecord& settings_;
    SoundPlayer& player_;
    QString programFolder_;
};

} // namespace tarvo

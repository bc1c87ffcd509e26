#include "micropause/WarningSounds.h"

#include "core/SoundPlayer.h"
#include "settings/SettingsRecord.h"

namespace tarvo {

WarningSounds::WarningSounds(const SettingsRecord& settings, SoundPlayer& player, QString programFolder)
    : settings_(settings)
    , player_(player)
    , programFolder_(std::move(programFolder)) {}

void WarningSounds::AudibleWarningPre() {
    if (!settings_.WarningSoundPre.isEmpty()) {
        player_.playSync(soundFile(settings_.WarningSoundPre));
        return;
    }
    beeps(4, kPrePauseMs);
}

void WarningSounds::AudibleWarning() {
    if (!settings_.WarningSound.isEmpty()) {
        player_.playSync(soundFile(settings_.WarningSound));
        return;
    }
    beeps(1, kShortPauseMs);
    beeps(3, kLongPauseMs);
    player_.sleep(kLongPauseMs);
}

void WarningSounds::AudibleWarningX() {
    if (!settings_.WarningSoundX.isEmpty()) {
        player_.playAsync(soundFile(settings_.WarningSoundX));
        return;
    }
    beeps(3, kShortPauseMs);
    beeps(4, kLongPauseMs);
    player_.sleep(kLongPauseMs);
}

void WarningSounds::AudibleNotification() {
    player_.beep();
}

QString WarningSounds::soundFile(const QString& stored) const {
    // Settings brought from Windows write folders with "\" and may start with a drive: "\" is a folder
    // separator here as well, and a drive letter stands for the root of the one file system.
    QString path = stored;
    path.replace(u'\\', u'/');
    if (path.size() >= 3 && path[0].isLetter() && path[1] == u':' && path[2] == u'/')
        path.remove(0, 2);
    // Anything with a folder in it, absolute or not, is taken as it stands. A name stored without
    // one came with the program (or was put beside it), so it is looked for there and not in
    // whatever folder the program happened to be started from. A file that is not there is silence.
    if (path.contains(u'/'))
        return path;
    return programFolder_ + u'/' + path;
}

void WarningSounds::beeps(int count, int pauseMs) {
    for (int i = 0; i < count; ++i) {
        player_.beep();
        player_.sleep(pauseMs);
    }
}

} // namespace tarvo

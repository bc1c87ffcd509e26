#pragma once

#include <QString>

// Section and key names of the store. The first-run file data/tarvo32.reg writes the same keys.
namespace tarvo::keys {

inline const QString Options = QStringLiteral("Options");
inline const QString Micropause = QStringLiteral("Micropause");
inline const QString Exercise = QStringLiteral("Exercise");

// "Options": housekeeping, read and written directly rather than through the record.
inline const QString Tray = QStringLiteral("tray");
inline const QString Initialised = QStringLiteral("Initialised");
inline const QString AppPath = QStringLiteral("AppPath");

// "Micropause"
inline const QString InterruptFor = QStringLiteral("InterruptFor");
inline const QString InterruptEvery = QStringLiteral("InterruptEvery");
inline const QString IntelliReset = QStringLiteral("IntelliReset");
inline const QString Audible = QStringLiteral("Audible");
inline const QString WarningSound = QStringLiteral("WarningSound");
inline const QString AudiblePre = QStringLiteral("AudiblePre");
inline const QString WarningSoundPre = QStringLiteral("WarningSoundPre");
inline const QString DisableEsc = QStringLiteral("DisableEsc");
inline const QString DisableEsc2 = QStringLiteral("DisableEsc2"); // set only from outside the program
inline const QString Blank = QStringLiteral("Blank");
inline const QString Warning = QStringLiteral("Warning");
inline QString monitor(int source) {
    return QStringLiteral("Monitor") + QString::number(source);
}

// "Exercise"
inline const QString Scheme = QStringLiteral("Scheme");
inline const QString EveryM = QStringLiteral("EveryM");
inline const QString AudibleX = QStringLiteral("AudibleX");
inline const QString WarningSoundX = QStringLiteral("WarningSoundX");
inline const QString BlankX = QStringLiteral("BlankX");
inline const QString ViewAm = QStringLiteral("ViewAm");
inline const QString xStart = QStringLiteral("xStart");
inline const QString NumAtaTime = QStringLiteral("NumAtaTime");
inline const QString ProcrastinateM = QStringLiteral("ProcrastinateM");

} // namespace tarvo::keys

#pragma once

#include "engine/ExerciseTable.h"
#include "engine/SchedulerState.h"
#include "settings/SettingsRecord.h"
#include "settings/SettingsStore.h"

#include <QString>

namespace tarvo {

class ActivityMonitor;
class Clock;
class FileDialog;
class MediaCommands;
class MessageBox;
class PresenceMonitor;
class RandomSource;
class RegistryStore;
class SoundPlayer;
class TimerFactory;
class WindowSession;

// The operating-system seams that the engine and the forms use. (Those that only start-up and the tray
// use stay with the shell.)
struct Seams {
    RegistryStore& store;
    const Clock& clock;
    TimerFactory& timers;
    ActivityMonitor& monitor;
    SoundPlayer& sound;
    MessageBox& messages;
    FileDialog& files;
    MediaCommands& media;
    RandomSource& random;
    WindowSession& windowSession;
    PresenceMonitor& presence;
};

// What the running program shares: the seams, where the program's files are, and the process-wide
// state (options, schedule, exercise table). Start-up creates one and hands it by reference to whoever
// needs it; a test builds its own with fakes.
struct AppContext : Seams {
    AppContext(const Seams& seams, QString programFolder_)
        : Seams(seams)
        , programFolder(std::move(programFolder_))
        , settings(store) {}

    const QString programFolder; // where the programs, tarvo32.reg and the media lie

    SettingsStore settings;
    SettingsRecord record;
    SchedulerState schedule;
    ExerciseTable exercises;
};

} // namespace tarvo

#pragma once

#include "engine/ExerciseTable.h"
#include "engine/SchedulerState.h"
#include "settings/SettingsRecord.h"
#include "settings/SettingsStore.h"

#include <QString>

namespace tarvo {

class ActivityMonitor;
class Clock;
class MessageBox;
class RegistryStore;
class SoundPlayer;
class TimerFactory;

// What the running program shares: the operating-system seams that the engine and the forms use, and
// the process-wide state (options, schedule, exercise table). Start-up creates one and hands it by
// reference to whoever needs it; a test builds its own with fakes. (The seams that only start-up and
// the tray use stay with the shell.)
struct AppContext {
    AppContext(RegistryStore& store_, const Clock& clock_, TimerFactory& timers_, ActivityMonitor& monitor_,
               SoundPlayer& sound_, MessageBox& messages_, QString programFolder_)
        : store(store_)
        , clock(clock_)
        , timers(timers_)
        , monitor(monitor_)
        , sound(sound_)
        , messages(messages_)
        , programFolder(std::move(programFolder_))
        , settings(store_) {}

    RegistryStore& store;
    const Clock& clock;
    TimerFactory& timers;
    ActivityMonitor& monitor;
    SoundPlayer& sound;
    MessageBox& messages;
    const QString programFolder; // where the programs, tarvo32.reg and the media lie

    SettingsStore settings;
    SettingsRecord record;
    SchedulerState schedule;
    ExerciseTable exercises;
};

} // namespace tarvo

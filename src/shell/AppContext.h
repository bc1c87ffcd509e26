#pragma once

#include "exercise/ExerciseTable.h"
#include "micropause/SchedulerState.h"
#include "settings/SettingsRecord.h"
#include "settings/SettingsStore.h"

#include <QString>

namespace tarvo {

class ActivityMonitor;
class Clock;
class MessageBox;
class ProcessRunner;
class RegistryStore;
class SingleInstance;
class SoundPlayer;
class TimerFactory;
class TrayIcon;

// Everything the running program shares: the operating-system seams it was started with, and the
// process-wide state (options, schedule, exercise table). Start-up creates one and hands it by
// reference to whoever needs it; a test builds its own with fakes.
struct AppContext {
    AppContext(RegistryStore& store_, const Clock& clock_, TimerFactory& timers_, ActivityMonitor& monitor_,
               SoundPlayer& sound_, ProcessRunner& processes_, SingleInstance& instance_, TrayIcon& tray_,
               MessageBox& messages_)
        : store(store_)
        , clock(clock_)
        , timers(timers_)
        , monitor(monitor_)
        , sound(sound_)
        , processes(processes_)
        , instance(instance_)
        , tray(tray_)
        , messages(messages_)
        , settings(store_) {}

    RegistryStore& store;
    const Clock& clock;
    TimerFactory& timers;
    ActivityMonitor& monitor;
    SoundPlayer& sound;
    ProcessRunner& processes;
    SingleInstance& instance;
    TrayIcon& tray;
    MessageBox& messages;

    QString programFolder; // where the programs, tarvo32.reg and the media lie
    QString commandLine;   // the arguments joined by single blanks
    QString windir;        // the "windir" environment variable (normally unset here)

    SettingsStore settings;
    SettingsRecord record;
    SchedulerState schedule;
    ExerciseTable exercises;
};

} // namespace tarvo

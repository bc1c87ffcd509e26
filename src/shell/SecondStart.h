#pragma once

#include <QString>

namespace tarvo {

class SettingsStore;
class SingleInstance;

// What a start finds out about an instance of the program that runs already.
enum class RunningInstance {
    None,        // none runs: this start holds the instance lock now
    Signalled,   // one runs and has handled the key code sent to it (its menu, or shut-down)
    Starting,    // one runs, but the settings name none yet ("tray" is 0): it is still starting, or
                 // it runs with settings of its own (another HOME or XDG_CONFIG_HOME)
    Unreachable, // one runs, but the key code did not reach it, or it did not answer in time
};

struct SecondStart {
    RunningInstance found = RunningInstance::None;
    // Starting and Unreachable: what this start could not do and why, for standard error. For a plain
    // start that finds the instance still starting, it is the "already running" message itself.
    QString problem;
};

// Whether the command line asks the running instance to shut down.
bool isShutdownRequest(const QString& commandLine);

// Looks for a running instance and, when one runs and the settings name it, sends it the key code of
// this start: shut-down for a shut-down request, otherwise the code that pops up its tray menu. Needs
// neither a display nor an event loop, so that a second start works from a text console or a script,
// and ends within the send's time limit whatever the running instance does. A handle in the settings
// that is not the lock holder's (settings of another profile, or of an instance that is gone) is not
// sent to.
SecondStart signalRunningInstance(SingleInstance& instance, SettingsStore& settings, bool shutdown);

} // namespace tarvo

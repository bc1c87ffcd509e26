#pragma once

#include <QString>

namespace tarvo {

class SettingsStore;
class SingleInstance;

// What a start finds out about an instance of the program that runs already.
enum class RunningInstance {
    None,      // none runs: this start holds the instance lock now
    Signalled, // one runs and has handled the key code sent to it (its menu, or shut-down)
    Starting,  // one runs but has not yet said where it listens ("tray" is still 0)
};

// Whether the command line asks the running instance to shut down.
bool isShutdownRequest(const QString& commandLine);

// Looks for a running instance and, when one runs and listens, sends it the key code of this start:
// shut-down for a shut-down request, otherwise the code that pops up its tray menu. Needs neither a
// display nor an event loop, so that a shut-down works from a text console or a script.
RunningInstance signalRunningInstance(SingleInstance& instance, SettingsStore& settings, bool shutdown);

} // namespace tarvo

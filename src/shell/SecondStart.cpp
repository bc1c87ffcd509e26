#include "shell/SecondStart.h"

#include "core/SingleInstance.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"

namespace tarvo {

bool isShutdownRequest(const QString& commandLine) {
    return commandLine.toLower() == QLatin1String("shutdown");
}

RunningInstance signalRunningInstance(SingleInstance& instance, SettingsStore& settings, bool shutdown) {
    // The window searches of the classic program never found anything; the instance lock is what
    // tells that another instance runs.
    if (!instance.previousInstance())
        return RunningInstance::None;
    const std::int32_t tray = settings.readNumber(option("tray"));
    if (tray == 0)
        return RunningInstance::Starting;
    instance.sendKeyDown(tray, shutdown ? SingleInstance::kShutdownKey : 0);
    return RunningInstance::Signalled;
}

} // namespace tarvo

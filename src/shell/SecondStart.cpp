#include "shell/SecondStart.h"

#include "core/ProgramInfo.h"
#include "core/SingleInstance.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"

namespace tarvo {

namespace {

QString cannot(bool shutdown, std::int32_t process, const QString& why) {
    const QString instance = process != 0 ? QStringLiteral("the running instance (process %1)").arg(process)
                                          : QStringLiteral("the running instance");
    return QStringLiteral("%1: cannot %2 %3: %4")
        .arg(QLatin1String(kProgramTitle), shutdown ? QStringLiteral("shut down") : QStringLiteral("reach"),
             instance, why);
}

} // namespace

bool isShutdownRequest(const QString& commandLine) {
    return commandLine.toLower() == QLatin1String("shutdown");
}

SecondStart signalRunningInstance(SingleInstance& instance, SettingsStore& settings, bool shutdown) {
    // The window searches of the classic program never found anything; the instance lock is what
    // tells that another instance runs.
    if (!instance.previousInstance())
        return {};
    const std::int32_t tray = settings.readNumber(option("tray"));
    const std::int32_t holder = instance.runningHandle();
    if (tray == 0) {
        if (!shutdown)
            return {RunningInstance::Starting,
                    QStringLiteral("Tarvo Micropause is already running in the System Tray")};
        return {RunningInstance::Starting,
                cannot(true, holder,
                       QStringLiteral("the settings name no running instance (\"tray\" is 0): it is still "
                                      "starting, or it runs with other settings"))};
    }
    if (holder != 0 && holder != tray)
        return {RunningInstance::Unreachable,
                cannot(shutdown, holder,
                       QStringLiteral("the settings name process %1, which is not it (it runs with other "
                                      "settings, or the one named has ended)")
                           .arg(tray))};
    switch (instance.sendKeyDown(tray, shutdown ? SingleInstance::kShutdownKey : 0)) {
    case SingleInstance::Delivery::Handled:
        return {RunningInstance::Signalled, {}};
    case SingleInstance::Delivery::NotListening:
        return {RunningInstance::Unreachable,
                cannot(shutdown, tray, QStringLiteral("it does not listen for other starts"))};
    case SingleInstance::Delivery::NoAnswer:
        break;
    }
    return {RunningInstance::Unreachable,
            cannot(shutdown, tray, QStringLiteral("it did not answer in time (it may be busy, or hung)"))};
}

} // namespace tarvo

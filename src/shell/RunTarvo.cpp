#include "shell/RunTarvo.h"

#include "core/MessageBox.h"
#include "core/ProgramInfo.h"
#include "core/RegistryStore.h"
#include "core/SingleInstance.h"
#include "engine/AppContext.h"
#include "history/HistoryExport.h"
#include "platform/linux/LinuxPlatform.h"
#include "settings/SettingsStore.h"
#include "shell/DesktopRequired.h"
#include "shell/FatalError.h"
#include "shell/ProgramIcon.h"
#include "shell/SecondStart.h"
#include "shell/TarvoApplication.h"
#include "shell/TarvoProgram.h"

#include <QApplication>
#include <QTextStream>

#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

namespace tarvo {

namespace {

const char* const kHelp = "Usage: tarvo [shutdown | history --csv [FILE]]\n"
                          "A break reminder in the notification area: short micropauses every few minutes\n"
                          "and exercise breaks, with a natural pause of your own counted as a micropause.\n"
                          "  shutdown    end the running Tarvo Micropause\n"
                          "  history --csv [FILE]\n"
                          "              write the break history as comma-separated values to FILE\n"
                          "              (or to standard output)\n"
                          "  --help      show this text\n"
                          "  --version   show the version\n";

// The one word the program understands is compared against everything after the program name.
QString wholeArgumentText(int argc, char** argv) {
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words << QString::fromLocal8Bit(argv[i]);
    return words.join(QLatin1Char(' '));
}

// Settles the single-instance question before the application object exists: a second start only
// signals the running instance and needs no display for it.
SecondStart settleSecondStart(SingleInstance& instance, bool shutdown) {
    const std::unique_ptr<RegistryStore> store = openUserStore();
    SettingsStore settings(*store);
    try {
        return signalRunningInstance(instance, settings, shutdown);
    } catch (const std::exception& e) {
        endWithFatalError(e, nullptr);
    }
}

// Whether a message box could reach somebody: a display to show it on, and a platform with a user.
bool desktopAtHand() {
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (platform.startsWith(QLatin1String("offscreen")) || platform.startsWith(QLatin1String("minimal")))
        return false;
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// The "already running" box of a plain second start, for a start from the desktop's menu, which has
// nobody reading standard error.
void showAlreadyRunning(int& argc, char** argv, const QString& text) {
    if (!desktopAtHand())
        return;
    std::optional<DesktopRequired> desktopRequired(std::in_place);
    TarvoApplication app(argc, argv);
    desktopRequired.reset();
    createMessageBox()->show(text, QStringLiteral("Tarvo"), MessageBox::Buttons::Ok);
}

} // namespace

int runTarvo(int& argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            QTextStream(stdout) << kHelp;
            return 0;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            QTextStream(stdout) << kProgramTitle << ' ' << kVersionText << '\n';
            return 0;
        }
    }
    // The history's export needs neither a display nor the running program's leave.
    if (argc >= 2 && std::strcmp(argv[1], "history") == 0) {
        QCoreApplication app(argc, argv); // Qt SQL loads its driver through the application
        return runHistoryCommand(QCoreApplication::arguments().mid(2), historyFilePath(), programFolder(),
                                 systemClock());
    }
    // The program draws nothing with OpenGL; Qt's GL integration would cost memory for nothing.
    if (qEnvironmentVariableIsEmpty("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");

    const QString commandLine = wholeArgumentText(argc, argv);
    const bool shutdown = isShutdownRequest(commandLine);
    const std::unique_ptr<SingleInstance> instance = createSingleInstance();
    const SecondStart second = settleSecondStart(*instance, shutdown);
    switch (second.found) {
    case RunningInstance::None:
        if (shutdown)
            return 0; // nothing runs that could be shut down, and nothing is written
        break;
    case RunningInstance::Signalled:
        return 0;
    case RunningInstance::Starting:
    case RunningInstance::Unreachable:
        std::fprintf(stderr, "%s\n", qPrintable(second.problem));
        std::fflush(stderr);
        if (second.found == RunningInstance::Starting && !shutdown)
            showAlreadyRunning(argc, argv, second.problem);
        return 1;
    }

    chooseQtPlatformForSession();
    std::optional<DesktopRequired> desktopRequired(std::in_place);
    TarvoApplication app(argc, argv);
    desktopRequired.reset();
    LinuxPlatform platform;
    app.setMessageBox(&platform.messages());
    try {
        AppContext ctx({platform.store(), platform.clock(), platform.timers(), platform.monitor(),
                        platform.sound(), platform.messages(), platform.files(), platform.media(),
                        platform.random(), platform.windowSession(), platform.presence()},
                       platform.programFolder());
        const QIcon icon = programIcon();
        QApplication::setWindowIcon(icon); // every window of the program carries it
        TarvoProgram program(ctx,
                             {*instance, platform.tray(), platform.processes(),
                              qEnvironmentVariable("windir"), releaseFreedMemory, historyFilePath()},
                             icon);
        program.Form_Load();
        // A session that ends the program still takes the icon away and clears "tray".
        QObject::connect(&app, &QCoreApplication::aboutToQuit, &app, [&] { program.Form_Unload(); });
        return app.exec();
    } catch (const std::exception& e) {
        endWithFatalError(e, &platform.messages());
    }
}

} // namespace tarvo

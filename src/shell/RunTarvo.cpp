#include "shell/RunTarvo.h"

#include "core/ProgramInfo.h"
#include "core/RegistryStore.h"
#include "core/SingleInstance.h"
#include "engine/AppContext.h"
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

#include <cstring>
#include <memory>
#include <optional>

namespace tarvo {

namespace {

const char* const kHelp = "Usage: tarvo [shutdown]\n"
                          "A break reminder in the notification area: short micropauses every few minutes\n"
                          "and exercise breaks, with a natural pause of your own counted as a micropause.\n"
                          "  shutdown    end the running Tarvo Micropause\n"
                          "  --help      show this text\n"
                          "  --version   show the version\n";

// The one word the program understands is compared against everything after the program name.
QString wholeArgumentText(int argc, char** argv) {
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words << QString::fromLocal8Bit(argv[i]);
    return words.join(QLatin1Char(' '));
}

// A shut-down needs no display: it only signals the running instance, if any. Returns false when the
// start must go on with the desktop after all: an instance runs but cannot be reached yet, which the
// user is told in a message box.
bool shutDownRunningInstance() {
    const std::unique_ptr<SingleInstance> instance = createSingleInstance();
    const std::unique_ptr<RegistryStore> store = openUserStore();
    SettingsStore settings(*store);
    try {
        return signalRunningInstance(*instance, settings, true) != RunningInstance::Starting;
    } catch (const std::exception& e) {
        endWithFatalError(e, nullptr);
    }
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
    const QString commandLine = wholeArgumentText(argc, argv);
    if (isShutdownRequest(commandLine) && shutDownRunningInstance())
        return 0;

    // The program draws nothing with OpenGL; Qt's GL integration would cost memory for nothing.
    if (qEnvironmentVariableIsEmpty("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");

    std::optional<DesktopRequired> desktopRequired(std::in_place);
    TarvoApplication app(argc, argv);
    desktopRequired.reset();
    LinuxPlatform platform;
    app.setMessageBox(&platform.messages());
    try {
        AppContext ctx({platform.store(), platform.clock(), platform.timers(), platform.monitor(),
                        platform.sound(), platform.messages(), platform.files(), platform.media(),
                        platform.random()},
                       platform.programFolder());
        const QIcon icon = programIcon();
        QApplication::setWindowIcon(icon); // every window of the program carries it
        TarvoProgram program(ctx,
                             {platform.instance(), platform.tray(), platform.processes(), commandLine,
                              qEnvironmentVariable("windir"), releaseFreedMemory},
                             icon);
        if (!program.Form_Load())
            return 0;
        // A session that ends the program still takes the icon away and clears "tray".
        QObject::connect(&app, &QCoreApplication::aboutToQuit, &app, [&] { program.Form_Unload(); });
        return app.exec();
    } catch (const std::exception& e) {
        endWithFatalError(e, &platform.messages());
    }
}

} // namespace tarvo

#include "shell/RunTarvo.h"

#include "about/frmAboutKelmar.h"
#include "core/ProgramInfo.h"
#include "engine/AppContext.h"
#include "engine/BreakEngine.h"
#include "exercise/SchemeStore.h"
#include "micropause/frmTarvo.h"
#include "platform/linux/ActivityMonitorFactory.h"
#include "platform/linux/CanberraSoundPlayer.h"
#include "platform/linux/FileRegistryStore.h"
#include "platform/linux/LocalSingleInstance.h"
#include "platform/linux/ProgramFolder.h"
#include "platform/linux/QProcessRunner.h"
#include "platform/linux/QtMessageBox.h"
#include "platform/linux/QtTimer.h"
#include "platform/linux/QtTrayIcon.h"
#include "platform/linux/SystemClock.h"
#include "shell/FatalError.h"
#include "shell/ProgramIcon.h"
#include "shell/TarvoApplication.h"
#include "shell/TarvoProgram.h"
#include "shell/TrayHook.h"
#include "shell/TrayMenu.h"

#include <QApplication>
#include <QTextStream>

#include <cstring>

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
    // The program draws nothing with OpenGL; Qt's GL integration would cost memory for nothing.
    if (qEnvironmentVariableIsEmpty("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");

    TarvoApplication app(argc, argv);
    QtMessageBox messageBox;
    app.setMessageBox(&messageBox);
    try {
        FileRegistryStore store(FileRegistryStore::defaultPath());
        SystemClock clock;
        QtTimerFactory timers;
        const std::unique_ptr<ActivityMonitor> monitor = createActivityMonitor();
        const QString folder = programFolder();
        CanberraSoundPlayer sound(folder + QStringLiteral("/beep.wav"));
        QProcessRunner processes;
        LocalSingleInstance instance;
        QtTrayIcon tray;
        AppContext ctx(store, clock, timers, *monitor, sound, messageBox, folder);

        const QIcon icon = programIcon();
        QApplication::setWindowIcon(icon); // the status window and the About box carry it too
        TarvoProgram program(
            ctx, {instance, tray, processes, wholeArgumentText(argc, argv), qEnvironmentVariable("windir")},
            icon);
        bool unloaded = false;
        const auto shutdown = [&] {
            if (!std::exchange(unloaded, true))
                program.Form_Unload();
            QCoreApplication::quit();
        };
        std::unique_ptr<frmAboutKelmar> about;

        TrayMenuActions actions;
        actions.status = [&] {
            program.form().setWindowState(Qt::WindowNoState);
            program.form().show();
        };
        actions.about = [&] {
            if (!about)
                about = std::make_unique<frmAboutKelmar>();
            about->show();
            about->raise();
        };
        actions.micropauseNow = [&] { program.engine().micropause().TarvoMicropause(); };
        actions.scheme = [&](int, const QString& name) { program.useScheme(name); };
        actions.shutdown = shutdown;
        TrayMenu menu([&] { return readSchemeList(ctx.settings); }, actions);

        TrayHookActions hookActions;
        hookActions.shutdown = shutdown;
        const double twips = TrayHook::screenTwipsPerPixelX();
        TrayHook hook(tray, menu, twips, hookActions);
        program.onTrayMessage = [&](int message) { hook.pichook_MouseMove(0, 0, message * twips, 0); };
        program.onKeyDown = [&](int keyCode) { hook.pichook_KeyDown(keyCode, 0); };

        if (!program.Form_Load())
            return 0;
        // A session that ends the program still takes the icon away and clears "tray".
        QObject::connect(&app, &QCoreApplication::aboutToQuit, &app, [&] {
            if (!std::exchange(unloaded, true))
                program.Form_Unload();
        });
        return app.exec();
    } catch (const std::exception& e) {
        endWithFatalError(e, &messageBox);
    }
}

} // namespace tarvo

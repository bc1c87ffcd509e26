#include "shell/RunTarvo.h"

#include "core/ProgramInfo.h"
#include "engine/AppContext.h"
#include "platform/linux/LinuxPlatform.h"
#include "shell/FatalError.h"
#include "shell/ProgramIcon.h"
#include "shell/TarvoApplication.h"
#include "shell/TarvoProgram.h"

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
                             {platform.instance(), platform.tray(), platform.processes(),
                              wholeArgumentText(argc, argv), qEnvironmentVariable("windir"),
                              releaseFreedMemory},
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

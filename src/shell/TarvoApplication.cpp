#include "shell/TarvoApplication.h"

#include "core/ProgramInfo.h"
#include "shell/FatalError.h"

namespace tarvo {

TarvoApplication::TarvoApplication(int& argc, char** argv)
    : QApplication(argc, argv) {
    setApplicationName(QLatin1String(kProgramTitle));
    setQuitOnLastWindowClosed(false); // the program lives in the tray, not in a window
}

bool TarvoApplication::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& e) {
        endWithFatalError(e, box_);
    }
}

} // namespace tarvo

#include "shell/DesktopRequired.h"

#include "core/ProgramInfo.h"

#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace tarvo {

namespace {

struct HeldMessage {
    QtMsgType type;
    const char* file; // the context's texts are literals: they outlive the guard
    int line;
    const char* function;
    const char* category;
    QString text;
};

QtMessageHandler previousHandler = nullptr;
std::vector<HeldMessage> held;

QString whyNoDesktop(const QString& fatalText) {
    for (const HeldMessage& message : held) {
        if (!message.text.contains(QLatin1String("could not connect to display")))
            continue;
        const QString display = qEnvironmentVariable("DISPLAY");
        if (display.isEmpty())
            return QStringLiteral("no display is set (DISPLAY is empty), and no other could be used");
        return QStringLiteral("cannot connect to the X display \"%1\"").arg(display);
    }
    // Qt's own first sentence names what failed.
    const qsizetype end = fatalText.indexOf(QLatin1Char('.'));
    return end > 0 ? fatalText.left(end) : fatalText.trimmed();
}

void holdOrEnd(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type != QtFatalMsg) {
        held.push_back({type, context.file, context.line, context.function, context.category, text});
        return;
    }
    const QByteArray line = QStringLiteral("%1 needs a graphical desktop: %2\n")
                                .arg(QLatin1String(kProgramTitle), whyNoDesktop(text))
                                .toLocal8Bit();
    std::fputs(line.constData(), stderr);
    std::fflush(stderr);
    std::_Exit(1);
}

} // namespace

DesktopRequired::DesktopRequired() {
    held.clear();
    previousHandler = qInstallMessageHandler(holdOrEnd);
}

DesktopRequired::~DesktopRequired() {
    qInstallMessageHandler(previousHandler);
    for (const HeldMessage& message : std::exchange(held, {})) {
        const QMessageLogContext context(message.file, message.line, message.function, message.category);
        qt_message_output(message.type, context, message.text);
    }
}

} // namespace tarvo

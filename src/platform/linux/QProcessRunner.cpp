#include "platform/linux/QProcessRunner.h"

#include <QFileInfo>
#include <QProcess>

namespace tarvo {

QStringList QProcessRunner::resolve(const QString& commandLine) {
    QStringList words = QProcess::splitCommand(commandLine);
    for (qsizetype joined = 1; joined < words.size(); ++joined) {
        const QFileInfo candidate(words.mid(0, joined).join(QLatin1Char(' ')));
        if (candidate.isFile() && candidate.isExecutable())
            break;
        const QFileInfo longer(words.mid(0, joined + 1).join(QLatin1Char(' ')));
        if (longer.isFile() && longer.isExecutable()) {
            words.replace(0, longer.filePath());
            words.remove(1, joined);
            break;
        }
    }
    return words;
}

void QProcessRunner::runAndWait(const QString& commandLine) {
    QStringList words = resolve(commandLine);
    if (words.isEmpty())
        return;
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setInputChannelMode(QProcess::ForwardedInputChannel);
    process.start(words.takeFirst(), words);
    if (process.waitForStarted(-1))
        process.waitForFinished(-1);
}

} // namespace tarvo

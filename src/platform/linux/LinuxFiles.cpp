#include "platform/linux/LinuxFiles.h"

#include "platform/linux/FileRegistryStore.h"
#include "platform/linux/SystemClock.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tarvo {

QString programFolder() {
    // The kernel's link to the running image names the file itself, links already resolved, however
    // the program was started (a link, a relative path, a search of PATH).
    const QString image = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    if (!image.isEmpty())
        return QFileInfo(image).absolutePath();
    return QCoreApplication::applicationDirPath(); // without /proc: Qt's own guess from argv[0]
}

const Clock& systemClock() {
    static const SystemClock clock;
    return clock;
}

QString historyFilePath() {
    QString base = qEnvironmentVariable("XDG_DATA_HOME");
    if (base.isEmpty() || !QDir::isAbsolutePath(base)) // XDG ignores a relative data home
        base = QDir::homePath() + QStringLiteral("/.local/share");
    return base + QStringLiteral("/tarvo/history.sqlite");
}

std::unique_ptr<RegistryStore> openUserStore() {
    return std::make_unique<FileRegistryStore>(FileRegistryStore::defaultPath());
}

} // namespace tarvo

#include "platform/linux/LinuxFiles.h"

#include "platform/linux/FileRegistryStore.h"

#include <QCoreApplication>
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

std::unique_ptr<RegistryStore> openUserStore() {
    return std::make_unique<FileRegistryStore>(FileRegistryStore::defaultPath());
}

} // namespace tarvo

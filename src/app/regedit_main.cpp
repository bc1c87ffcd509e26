// regedit: imports and exports the Tarvo Micropause settings (see settings/Regedit.h).
#include "core/RegistryStore.h"
#include "platform/linux/LinuxFiles.h"
#include "settings/Regedit.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    const std::unique_ptr<tarvo::RegistryStore> store = tarvo::openUserStore();
    return tarvo::runRegedit(app.arguments().mid(1), *store, out, err);
}

// regedit: imports and exports the Tarvo Micropause settings (see Regedit.h).
#include "platform/linux/FileRegistryStore.h"
#include "settings/Regedit.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    tarvo::FileRegistryStore store(tarvo::FileRegistryStore::defaultPath());
    return tarvo::runRegedit(app.arguments().mid(1), store, out, err);
}

// tarvo: the break reminder.
#include "FatalError.h"
#include "FileRegistryStore.h"
#include "QtMessageBox.h"
#include "SettingsLoader.h"
#include "TarvoApplication.h"
#include "Version.h"

#include <QTextStream>

#include <cstring>

namespace {

const char* const kHelp = "Usage: tarvo [shutdown]\n"
                          "A break reminder: short micropauses every few minutes and exercise breaks.\n"
                          "  shutdown    end the running Tarvo Micropause\n"
                          "  --help      show this text\n"
                          "  --version   show the version\n";

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            QTextStream(stdout) << kHelp;
            return 0;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            QTextStream(stdout) << "Tarvo Micropause " << tarvo::kVersionText << '\n';
            return 0;
        }
    }

    tarvo::TarvoApplication app(argc, argv);
    tarvo::QtMessageBox messageBox;
    app.setMessageBox(&messageBox);
    try {
        tarvo::FileRegistryStore store(tarvo::FileRegistryStore::defaultPath());
        tarvo::SettingsStore settings(store);
        tarvo::SettingsRecord record;
        tarvo::loadAllSettings(settings, record);
        QTextStream(stdout) << "Tarvo Micropause " << tarvo::kVersionText << ": settings read from "
                            << store.location() << "\n  a " << record.InterruptFor
                            << "-second micropause every " << record.InterruptEvery
                            << " minutes; an exercise break of " << record.NumAtaTime << " exercises from \""
                            << record.Scheme << "\" every " << record.EveryM << " minutes\n";
        return 0;
    } catch (const std::exception& e) {
        tarvo::endWithFatalError(e, &messageBox);
    }
}

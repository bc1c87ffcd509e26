// The other instance for the single-instance tests:
//   instance_peer [application name]   becomes the running instance and prints "running <handle>", then
//                                      "key <code>" for each key code it handles; 99 ends it,
//                                      5 keeps it busy for a second (as an open menu does)
// Each line it prints is flushed at once.
#include "platform/linux/LocalSingleInstance.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>

using namespace tarvo;

namespace {

void say(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

// Prints each key code it handles; 99 ends the instance as shut-down does.
struct Holder : SingleInstance::Listener {
    LocalSingleInstance instance;
    void keyDown(int keyCode) override {
        say(QStringLiteral("key %1").arg(keyCode));
        if (keyCode == SingleInstance::kShutdownKey) {
            instance.release();
            QCoreApplication::quit();
        } else if (keyCode == 5) {
            QEventLoop menu;
            QTimer::singleShot(1000, &menu, &QEventLoop::quit);
            menu.exec();
        }
    }
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    // The program names itself differently from its executable; its lock must still count.
    if (argc > 1)
        QCoreApplication::setApplicationName(QString::fromLocal8Bit(argv[1]));
    Holder holder;
    if (holder.instance.previousInstance())
        return 3;
    holder.instance.listen(holder);
    say(QStringLiteral("running %1").arg(holder.instance.handle()));
    return app.exec();
}

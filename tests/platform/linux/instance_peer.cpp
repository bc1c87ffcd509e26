// The other instance for the single-instance tests. Each line it prints is flushed at once.
//   instance_peer hold [application name]   becomes the running instance: prints "running <handle>",
//                                           then "key <code>" for each key code it handles; 99 ends it
//   instance_peer probe                     prints "previous" or "none"
//   instance_peer send <handle> <code>      prints "sent 1" or "sent 0" once the send returned
#include "platform/linux/LocalSingleInstance.h"

#include <QCoreApplication>

#include <cstdio>

using namespace tarvo;

namespace {

void say(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

// Prints each key code it handles; 99 ends the instance as shut-down does.
struct Holder : SingleInstance::Listener {
    LocalSingleInstance& instance;
    explicit Holder(LocalSingleInstance& i)
        : instance(i) {}
    void keyDown(int keyCode) override {
        say(QStringLiteral("key %1").arg(keyCode));
        if (keyCode == SingleInstance::kShutdownKey) {
            instance.release();
            QCoreApplication::quit();
        }
    }
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const QString mode = args.value(1);
    LocalSingleInstance instance;
    if (mode == QLatin1String("hold")) {
        // The program names itself differently from its executable; its lock must still count.
        if (args.size() > 2)
            QCoreApplication::setApplicationName(args[2]);
        if (instance.previousInstance()) {
            say(QStringLiteral("previous"));
            return 3;
        }
        Holder holder(instance);
        instance.listen(holder);
        say(QStringLiteral("running %1").arg(instance.handle()));
        return app.exec();
    }
    if (mode == QLatin1String("probe")) {
        say(QLatin1String(instance.previousInstance() ? "previous" : "none"));
        return 0;
    }
    if (mode == QLatin1String("send") && args.size() == 4) {
        const bool reached = instance.sendKeyDown(args[2].toInt(), args[3].toInt());
        say(QStringLiteral("sent %1").arg(reached ? 1 : 0));
        return 0;
    }
    return 2;
}

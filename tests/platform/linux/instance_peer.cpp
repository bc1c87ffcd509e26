// The other instance for the single-instance tests. Each line it prints is flushed at once.
//   instance_peer hold [application name]   becomes the running instance: prints "running <handle>",
//                                           then "key <code>" for each key code it handles; 99 ends it
//   instance_peer send <handle> <code>      prints what became of the key code once the send returned
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
    LocalSingleInstance instance;
    if (args.value(1) == QLatin1String("hold")) {
        // The program names itself differently from its executable; its lock must still count.
        if (args.size() > 2)
            QCoreApplication::setApplicationName(args[2]);
        if (instance.previousInstance())
            return 3;
        Holder holder(instance);
        instance.listen(holder);
        say(QStringLiteral("running %1").arg(instance.handle()));
        return app.exec();
    }
    if (args.value(1) == QLatin1String("send") && args.size() == 4) {
        const auto delivery = instance.sendKeyDown(args[2].toInt(), args[3].toInt());
        say(QLatin1String(delivery == SingleInstance::Delivery::Handled ? "handled" : "not handled"));
        return 0;
    }
    return 2;
}

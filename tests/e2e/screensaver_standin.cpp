// A screen saver on the session bus for the end-to-end tests: owns org.freedesktop.ScreenSaver, prints
// "ready", then sends ActiveChanged(true) for each line "lock" and ActiveChanged(false) for "unlock"
// on its standard input; it ends with its input.
#include "../platform/linux/BusStandIn.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    BusStandIn saver(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), "org.freedesktop.ScreenSaver",
                     "/ScreenSaver");
    saver.answers["GetActive"] = false;
    std::printf("ready\n");
    std::fflush(stdout);
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &app, [&] {
        std::string line;
        if (!std::getline(std::cin, line))
            return QCoreApplication::quit();
        saver.emitSignal("org.freedesktop.ScreenSaver", "ActiveChanged", {line == "lock"});
    });
    return app.exec();
}

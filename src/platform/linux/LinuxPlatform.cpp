#include "platform/linux/LinuxPlatform.h"

#include "platform/linux/ActivityMonitorFactory.h"
#include "platform/linux/CanberraSoundPlayer.h"
#include "platform/linux/DesktopPresence.h"
#include "platform/linux/FileRegistryStore.h"
#include "platform/linux/LocalSingleInstance.h"
#include "platform/linux/MciMediaCommands.h"
#include "platform/linux/QProcessRunner.h"
#include "platform/linux/QtFileDialog.h"
#include "platform/linux/QtMessageBox.h"
#include "platform/linux/QtTimer.h"
#include "platform/linux/QtTrayIcon.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/SystemRandom.h"
#include "platform/linux/X11WindowSession.h"
#include "platform/linux/XkbStateFollower.h"

#include <QDBusConnection>
#include <QFileInfo>

#include <cstdio>
#include <malloc.h>

namespace tarvo {

namespace {

// logind is reached over the system bus. Where the machine runs none (a container, a minimal
// installation), asking Qt for it still sets up a connection that fails and leaves its memory behind
// for the program's life; the missing socket says as much without asking. (The address a user sets
// is always tried.)
QDBusConnection systemBusIfRunning() {
    if (qEnvironmentVariableIsSet("DBUS_SYSTEM_BUS_ADDRESS") ||
        QFileInfo::exists(QStringLiteral("/var/run/dbus/system_bus_socket")))
        return QDBusConnection::systemBus();
    return QDBusConnection(QStringLiteral("tarvo-no-system-bus")); // not connected
}

} // namespace

std::unique_ptr<SingleInstance> createSingleInstance() {
    return std::make_unique<LocalSingleInstance>();
}

std::unique_ptr<MessageBox> createMessageBox() {
    return std::make_unique<QtMessageBox>();
}

void releaseFreedMemory() {
    malloc_trim(0);
}

struct LinuxPlatform::Seams {
    QString folder = tarvo::programFolder();
    FileRegistryStore store{FileRegistryStore::defaultPath()};
    SystemClock clock;
    QtTimerFactory timers;
    std::unique_ptr<ActivityMonitor> monitor = createActivityMonitor(clock);
    CanberraSoundPlayer sound{folder + QStringLiteral("/beep.wav")};
    QProcessRunner processes;
    QtTrayIcon tray;
    QtMessageBox messages;
    QtFileDialog files;
    MciMediaCommands media{folder + QStringLiteral("/tarvovideo")};
    SystemRandom random;
    X11WindowSession windowSession;
    std::unique_ptr<XkbStateFollower> keyboardState = XkbStateFollower::attach();
    DesktopPresence presence{QDBusConnection::sessionBus(), systemBusIfRunning(), true};
};

LinuxPlatform::LinuxPlatform()
    : seams_(std::make_unique<Seams>()) {
    std::fprintf(stderr, "%s\n", qPrintable(seams_->presence.report()));
}

LinuxPlatform::~LinuxPlatform() = default;

const QString& LinuxPlatform::programFolder() const {
    return seams_->folder;
}
RegistryStore& LinuxPlatform::store() {
    return seams_->store;
}
const Clock& LinuxPlatform::clock() const {
    return seams_->clock;
}
TimerFactory& LinuxPlatform::timers() {
    return seams_->timers;
}
ActivityMonitor& LinuxPlatform::monitor() {
    return *seams_->monitor;
}
SoundPlayer& LinuxPlatform::sound() {
    return seams_->sound;
}
ProcessRunner& LinuxPlatform::processes() {
    return seams_->processes;
}
TrayIcon& LinuxPlatform::tray() {
    return seams_->tray;
}
MessageBox& LinuxPlatform::messages() {
    return seams_->messages;
}
FileDialog& LinuxPlatform::files() {
    return seams_->files;
}
MediaCommands& LinuxPlatform::media() {
    return seams_->media;
}
RandomSource& LinuxPlatform::random() {
    return seams_->random;
}
WindowSession& LinuxPlatform::windowSession() {
    return seams_->windowSession;
}
PresenceMonitor& LinuxPlatform::presence() {
    return seams_->presence;
}

} // namespace tarvo

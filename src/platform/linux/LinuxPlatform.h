#pragma once

#include "platform/linux/LinuxFiles.h"      // programFolder() and openUserStore() serve the whole program too
#include "platform/linux/SessionPlatform.h" // the Qt platform, chosen before the application exists

#include <QString>

#include <memory>

namespace tarvo {

class ActivityMonitor;
class Clock;
class FileDialog;
class MediaCommands;
class MessageBox;
class PresenceMonitor;
class ProcessRunner;
class RandomSource;
class WindowSession;
class RegistryStore;
class SingleInstance;
class SoundPlayer;
class TimerFactory;
class TrayIcon;

// The single-instance seam alone: a start that only signals the running instance needs nothing else,
// and no display. The one that becomes the running instance keeps it for its whole run.
std::unique_ptr<SingleInstance> createSingleInstance();

// A message box alone, for a start that ends before the platform is built. Needs the application
// object.
std::unique_ptr<MessageBox> createMessageBox();

// Hands the memory that the allocator holds free back to the system: after a break, once its screen is
// gone, whose windows and pictures leave the heap with free pages that it would otherwise keep for the
// whole run.
void releaseFreedMemory();

// Every seam of the running program on a Linux desktop. This header is the folder's face (beside
// LinuxFiles.h, its display-free part): the implementations behind it (X11, Wayland, D-Bus, libcanberra,
// a Unix socket, Qt widgets) stay private to it.
//
// Needs the application object: the activity monitor, the tray icon and the message box talk to the
// display the program runs on.
class LinuxPlatform {
public:
    LinuxPlatform();
    ~LinuxPlatform();
    LinuxPlatform(const LinuxPlatform&) = delete;
    LinuxPlatform& operator=(const LinuxPlatform&) = delete;

    const QString& programFolder() const;
    RegistryStore& store();
    const Clock& clock() const;
    TimerFactory& timers();
    ActivityMonitor& monitor();
    SoundPlayer& sound();
    ProcessRunner& processes();
    TrayIcon& tray();
    MessageBox& messages();
    FileDialog& files();
    MediaCommands& media();
    RandomSource& random();
    WindowSession& windowSession();
    PresenceMonitor& presence();

private:
    struct Seams;
    std::unique_ptr<Seams> seams_;
};

} // namespace tarvo

#pragma once

#include <QString>

#include <memory>

namespace tarvo {

class ActivityMonitor;
class Clock;
class FileDialog;
class MediaCommands;
class MessageBox;
class ProcessRunner;
class RandomSource;
class RegistryStore;
class SingleInstance;
class SoundPlayer;
class TimerFactory;
class TrayIcon;

// The program folder: the folder of the running executable, with every link on the way resolved, so
// that a link to the program elsewhere (in ~/bin, say) still finds the files that lie beside it. It
// holds the programs, "tarvo32.reg", the built-in media and the fallback beep; a stored file name
// without a folder names a file there.
QString programFolder();

// The user's settings store at its place ($XDG_CONFIG_HOME/tarvo/registry.reg).
std::unique_ptr<RegistryStore> openUserStore();

// The single-instance seam alone: a start that only signals the running instance (shut-down) needs
// nothing else, and no display.
std::unique_ptr<SingleInstance> createSingleInstance();

// Hands the memory that the allocator holds free back to the system: after a break, once its screen is
// gone, whose windows and pictures leave the heap with free pages that it would otherwise keep for the
// whole run.
void releaseFreedMemory();

// The whole of the video helper program, tarvovideo, that plays the exercise videos for MediaCommands.
int runVideoHelper(int& argc, char** argv);

// Every seam of the running program on a Linux desktop. This header is the folder's only face: the
// implementations behind it (X11, Wayland, D-Bus, libcanberra, local sockets, Qt widgets) stay private to it.
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
    SingleInstance& instance();
    TrayIcon& tray();
    MessageBox& messages();
    FileDialog& files();
    MediaCommands& media();
    RandomSource& random();

private:
    struct Seams;
    std::unique_ptr<Seams> seams_;
};

} // namespace tarvo

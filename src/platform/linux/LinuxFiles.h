#pragma once

#include <QString>

#include <memory>

namespace tarvo {

class Clock;
class RegistryStore;

// The program's files on a Linux desktop: its folder and the user's settings store. Display-free (Qt
// Core alone), so that the programs that need nothing else, regedit and tarvomultimedia, link neither
// X11, Wayland, D-Bus nor Qt Widgets; the whole platform (LinuxPlatform.h) builds on the same two.

// The program folder: the folder of the running executable, with every link on the way resolved, so
// that a link to the program elsewhere (in ~/bin, say) still finds the files that lie beside it. It
// holds the programs, "tarvo32.reg", the built-in media and the fallback beep; a stored file name
// without a folder names a file there.
QString programFolder();

// The user's settings store at its place ($XDG_CONFIG_HOME/tarvo/registry.reg).
std::unique_ptr<RegistryStore> openUserStore();

// Where the break history is kept: $XDG_DATA_HOME/tarvo/history.sqlite (~/.local/share by default).
QString historyFilePath();

// The system's clock, for what runs without the rest of the platform (the history's export).
const Clock& systemClock();

} // namespace tarvo

#pragma once

#include <QStringList>
#include <QTextStream>

namespace tarvo {

class RegistryStore;

// The program's registry editor, used by first-run initialisation to import the shipped defaults and
// by users to back up and restore their settings:
//   regedit [/s] file.reg [more.reg ...]   import (silently with /s: no report, no messages)
//   regedit /e out.reg [key]                export the settings (or one key and the keys below it)
// Only keys below the Tarvo Micropause root are imported; others are skipped and reported. A file
// that cannot be read or parsed imports nothing. Returns the exit status: 0 done, 1 a file could not
// be read, parsed or written, 2 the command line was wrong.
int runRegedit(const QStringList& arguments, RegistryStore& store, QTextStream& out, QTextStream& err);

} // namespace tarvo

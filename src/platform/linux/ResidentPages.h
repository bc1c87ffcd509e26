#pragma once

#include <cstddef>

namespace tarvo {

// Lets go of the pages of program and library files that the process has only read: the relocation and
// symbol tables the dynamic loader went through at start-up, and the code of start-up, of a break
// screen or of a dialog that is closed now. They stay resident after their use and count towards the
// process's memory for the whole run, though an idle reminder touches only a small part of them again
// (its timer ticks). Whatever is needed later comes back from the page cache at its first touch.
//
// Only mappings of files that are neither writable nor changed in memory are let go: for those the
// kernel's copy is the file's, and asking for it again gives the same bytes. A private mapping with a
// page written (relocated data, say) keeps all its pages, since letting go would undo the writes.
// Returns the kilobytes let go (as the kernel counts resident pages).
std::size_t releaseReadOnlyFilePages();

} // namespace tarvo

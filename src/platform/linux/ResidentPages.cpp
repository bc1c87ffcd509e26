#include "platform/linux/ResidentPages.h"

#include <cstdio>
#include <cstring>
#include <sys/mman.h>

namespace tarvo {

namespace {

struct Mapping {
    unsigned long start = 0, end = 0;
    bool candidate = false; // a file, not writable
    std::size_t rssKb = 0;
    // A page of it written in memory: dirty, or an anonymous copy, resident or swapped out.
    bool written = false;
};

std::size_t release(const Mapping& m) {
    if (!m.candidate || m.rssKb == 0 || m.written)
        return 0;
    if (madvise(reinterpret_cast<void*>(m.start), m.end - m.start, MADV_DONTNEED) != 0)
        return 0;
    return m.rssKb;
}

} // namespace

std::size_t releaseReadOnlyFilePages() {
    // Read with stdio into a fixed line buffer: the file is long, and this runs rarely.
    std::FILE* smaps = std::fopen("/proc/self/smaps", "re");
    if (smaps == nullptr)
        return 0;
    std::size_t released = 0;
    Mapping current;
    char line[512];
    while (std::fgets(line, sizeof line, smaps) != nullptr) {
        unsigned long start = 0, end = 0;
        char perms[5] = {};
        int pathAt = 0;
        // A mapping's heading line: "start-end perms offset device inode path"; its fields follow.
        if (std::sscanf(line, "%lx-%lx %4s %*s %*s %*s %n", &start, &end, perms, &pathAt) == 3) {
            released += release(current);
            current = {};
            current.start = start;
            current.end = end;
            // The file's path begins with a slash; [vdso], [stack] and anonymous memory do not.
            current.candidate = perms[1] == '-' && perms[3] == 'p' && line[pathAt] == '/';
            continue;
        }
        // The fields: "Name:   value kB".
        char name[32] = {};
        std::size_t kb = 0;
        if (std::sscanf(line, "%31[^:]: %zu kB", name, &kb) != 2)
            continue;
        if (std::strcmp(name, "Rss") == 0)
            current.rssKb = kb;
        else if (kb != 0 &&
                 (std::strcmp(name, "Private_Dirty") == 0 || std::strcmp(name, "Shared_Dirty") == 0 ||
                  std::strcmp(name, "Anonymous") == 0 || std::strcmp(name, "Swap") == 0))
            current.written = true;
    }
    released += release(current);
    std::fclose(smaps);
    return released;
}

} // namespace tarvo

#include "platform/linux/ResidentPages.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

namespace tarvo {

namespace {

struct Mapping {
    unsigned long start = 0, end = 0;
    bool candidate = false; // a file, not writable
    std::size_t rssKb = 0, dirtyKb = 0, anonymousKb = 0, swapKb = 0;
};

std::size_t release(const Mapping& m) {
    // Anonymous pages in a file's mapping are its copies written in memory, resident or swapped out.
    if (!m.candidate || m.rssKb == 0 || m.dirtyKb != 0 || m.anonymousKb != 0 || m.swapKb != 0)
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
        std::size_t kb = 0;
        if (std::sscanf(line, "Rss: %zu kB", &kb) == 1)
            current.rssKb = kb;
        else if (std::sscanf(line, "Private_Dirty: %zu kB", &kb) == 1 ||
                 std::sscanf(line, "Shared_Dirty: %zu kB", &kb) == 1)
            current.dirtyKb += kb;
        else if (std::sscanf(line, "Anonymous: %zu kB", &kb) == 1)
            current.anonymousKb = kb;
        else if (std::sscanf(line, "Swap: %zu kB", &kb) == 1)
            current.swapKb = kb;
    }
    released += release(current);
    std::fclose(smaps);
    return released;
}

} // namespace tarvo

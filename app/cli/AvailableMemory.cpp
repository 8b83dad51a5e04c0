#include "app/cli/AvailableMemory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

namespace {

// Of the control group that the process sees as its own; a group without a limit says "max", or a
// number beyond all memory.
std::uint64_t LimitOfGroup(const char* file) {
    std::uint64_t limit = 0;
    std::ifstream in(file);
    return in >> limit ? limit : UINT64_MAX;
}

}  // namespace

std::uint64_t AvailableMemory() {
    const long pages = sysconf(_SC_PHYS_PAGES), page = sysconf(_SC_PAGESIZE);
    std::uint64_t memory =
        pages > 0 && page > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(page)
                              : UINT64_MAX;
    for (const char* file :
         {"/sys/fs/cgroup/memory.max", "/sys/fs/cgroup/memory/memory.limit_in_bytes"}) {
        memory = std::min(memory, LimitOfGroup(file));
    }
    rlimit space = {};
    if (getrlimit(RLIMIT_AS, &space) == 0 && space.rlim_cur != RLIM_INFINITY) {
        memory = std::min<std::uint64_t>(memory, space.rlim_cur);
    }
    return memory;
}

#include "memory.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

// A "Name: value kB" line of /proc/meminfo, in bytes; false when missing.
bool MeminfoField(const char *name, uint64_t *bytes)
{
    FILE *f = std::fopen("/proc/meminfo", "r");
    if (f == nullptr)
        return false;
    char line[256];
    bool found = false;
    const size_t n = std::strlen(name);
    while (!found && std::fgets(line, sizeof line, f)) {
        unsigned long long kb = 0;
        if (std::strncmp(line, name, n) == 0 && line[n] == ':' && std::sscanf(line + n + 1, "%llu", &kb) == 1) {
            *bytes = kb * 1024;
            found = true;
        }
    }
    std::fclose(f);
    return found;
}

// A one-number file such as memory.max; false when missing or "max".
bool NumberFile(const char *path, uint64_t *value)
{
    FILE *f = std::fopen(path, "r");
    if (f == nullptr)
        return false;
    unsigned long long v = 0;
    const bool ok = std::fscanf(f, "%llu", &v) == 1;
    std::fclose(f);
    *value = v;
    return ok;
}

// Room left under this process's control group limit, from
// /proc/self/cgroup: version 2 (memory.max, memory.current) or version 1
// (memory.limit_in_bytes, memory.usage_in_bytes). False when there is no
// limit to be read.
bool CgroupRoom(uint64_t *room)
{
    FILE *f = std::fopen("/proc/self/cgroup", "r");
    if (f == nullptr)
        return false;
    char line[4096];
    bool found = false;
    while (!found && std::fgets(line, sizeof line, f)) {
        line[std::strcspn(line, "\n")] = '\0';
        const char *path = nullptr;
        const char *limitfile = nullptr, *usagefile = nullptr, *mount = nullptr;
        if (std::strncmp(line, "0::", 3) == 0) {
            path = line + 3;
            mount = "/sys/fs/cgroup";
            limitfile = "memory.max";
            usagefile = "memory.current";
        } else if (const char *m = std::strstr(line, ":memory:")) {
            path = m + 8;
            mount = "/sys/fs/cgroup/memory";
            limitfile = "memory.limit_in_bytes";
            usagefile = "memory.usage_in_bytes";
        }
        if (path == nullptr)
            continue;
        char limitpath[8192], usagepath[8192];
        std::snprintf(limitpath, sizeof limitpath, "%s%s/%s", mount, path, limitfile);
        std::snprintf(usagepath, sizeof usagepath, "%s%s/%s", mount, path, usagefile);
        uint64_t limit = 0, used = 0;
        if (NumberFile(limitpath, &limit) && NumberFile(usagepath, &used)) {
            *room = used < limit ? limit - used : 0;
            found = true;
        }
    }
    std::fclose(f);
    return found;
}

} // namespace

bool MemoryWithinReach(size_t bytes)
{
    uint64_t available = 0, swap = 0;
    if (MeminfoField("MemAvailable", &available)) {
        MeminfoField("SwapFree", &swap);
        if (bytes > available + swap)
            return false;
    }
    // Containers and batch schedulers limit memory by control group.
    uint64_t room = 0;
    return !CgroupRoom(&room) || bytes <= room;
}

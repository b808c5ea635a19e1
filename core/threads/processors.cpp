// SPDX-License-Identifier: MIT
#include "threads/processors.h"

#include <fcntl.h>
#include <limits.h>
#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace ork::threads {
namespace {

// The beginning of a file as text; false when it can't be read.
bool read_text(const char* path, char* text, size_t size)
{
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    size_t length = 0;
    ssize_t more;
    while (length + 1 < size && (more = read(file, text + length, size - 1 - length)) > 0) length += more;
    close(file);
    text[length] = 0;
    return length > 0;
}

// Second version: cpu.max holds "<quota> <period>" or "max <period>". First: two files, quota -1 for none.
double quota_of(const char* folder)
{
    char path[PATH_MAX + 32], text[64];
    double quota = 0, period = 0;
    std::snprintf(path, sizeof path, "%s/cpu.max", folder);
    if (read_text(path, text, sizeof text))
        return std::sscanf(text, "%lf %lf", &quota, &period) == 2 ? quota / period : 0;

    std::snprintf(path, sizeof path, "%s/cpu.cfs_quota_us", folder);
    if (!read_text(path, text, sizeof text)) return 0;
    quota = std::atof(text);
    std::snprintf(path, sizeof path, "%s/cpu.cfs_period_us", folder);
    if (!read_text(path, text, sizeof text)) return 0;
    period = std::atof(text);
    return quota > 0 && period > 0 ? quota / period : 0;
}

// The least quota from the group up to the root: each of them holds. In a container the group's path may be the host's,
// which does not exist here; then the first folder that does is the container's own.
double least_quota(const char* mount, const char* group)
{
    char folder[PATH_MAX];
    if (std::snprintf(folder, sizeof folder, "%s%s", mount, group) >= PATH_MAX) return 0;
    double least = 0;
    while (std::strlen(folder) >= std::strlen(mount)) {
        const double quota = quota_of(folder);
        if (quota > 0 && (least == 0 || quota < least)) least = quota;
        char* last = std::strrchr(folder, '/');
        if (last == nullptr) break;
        *last = 0;
    }
    return least;
}

bool lists_cpu(const char* controllers, const char* end)
{
    while (controllers < end) {
        const char* comma = static_cast<const char*>(std::memchr(controllers, ',', end - controllers));
        const char* stop = comma ? comma : end;
        if (stop - controllers == 3 && std::memcmp(controllers, "cpu", 3) == 0) return true;
        controllers = stop + 1;
    }
    return false;
}

int affinity_count()
{
    constexpr int most = 8192; // what a kernel can be built for
    cpu_set_t mask[most / CPU_SETSIZE];
    if (sched_getaffinity(0, sizeof mask, mask) == 0) return CPU_COUNT_S(sizeof mask, mask);
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    return online > 0 ? static_cast<int>(online) : 1;
}

} // namespace

double group_quota(const char* membership, const char* root)
{
    double least = 0;
    const auto consider = [&](const char* mount, const char* group) {
        char path[PATH_MAX];
        std::snprintf(path, sizeof path, "%s%s", root, mount);
        const double quota = least_quota(path, group);
        if (quota > 0 && (least == 0 || quota < least)) least = quota;
    };
    // A line is <number>:<controllers>:<path>; no controllers stand for the second version.
    for (const char* line = membership; *line;) {
        const char* end = line + std::strcspn(line, "\n");
        const char* controllers = static_cast<const char*>(std::memchr(line, ':', end - line));
        const char* path =
            controllers ? static_cast<const char*>(std::memchr(controllers + 1, ':', end - controllers - 1)) : nullptr;
        if (path != nullptr) {
            char group[PATH_MAX];
            std::snprintf(group, sizeof group, "%.*s", static_cast<int>(end - path - 1), path + 1);
            if (std::strcmp(group, "/") == 0) group[0] = 0;
            if (path == controllers + 1) consider("", group);
            if (lists_cpu(controllers + 1, path)) {
                consider("/cpu", group);
                consider("/cpu,cpuacct", group);
            }
        }
        line = *end ? end + 1 : end;
    }
    return least;
}

int available_processors()
{
    int count = affinity_count();
    char membership[8192];
    if (read_text("/proc/self/cgroup", membership, sizeof membership)) {
        const double quota = group_quota(membership, "/sys/fs/cgroup");
        if (quota > 0 && quota < count) count = static_cast<int>(quota);
    }
    return count < 1 ? 1 : count;
}

} // namespace ork::threads

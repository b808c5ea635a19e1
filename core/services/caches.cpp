// SPDX-License-Identifier: MIT
// Sizes of the data caches, from cpuid and, where that is silent, from the C library.
#include <cpuid.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>

#include "export.h"
#include "ork/abi/services.h"

namespace {

// One row per cache: type, level, line and number of bytes. Intel numbers the rows from leaf 4, AMD from 0x8000001d;
// both use one layout and end the list with type 0.
bool from_cpuid(unsigned leaf, ork_cache_info& info)
{
    enum { no_more = 0, instructions = 2 };
    unsigned a, b, c, d;
    for (unsigned row = 0; row < 16 && __get_cpuid_count(leaf, row, &a, &b, &c, &d); ++row) {
        const unsigned type = a & 31, level = a >> 5 & 7;
        if (type == no_more) break;
        if (type == instructions) continue;
        const int64_t line = (b & 4095) + 1, partitions = (b >> 12 & 1023) + 1, ways = (b >> 22) + 1, sets = c + 1ll;
        const int64_t bytes = line * partitions * ways * sets;
        if (level == 1) info.line = line, info.l1_data = bytes;
        if (level == 2) info.l2 = bytes;
        if (level == 3) info.l3 = bytes;
    }
    return info.l1_data > 0;
}

bool amd_topology()
{
    unsigned a, b, c, d;
    return __get_cpuid(0x80000001, &a, &b, &c, &d) && (c >> 22 & 1);
}

int64_t system(int name)
{
    const long value = sysconf(name);
    return value > 0 ? value : 0;
}

void from_system(ork_cache_info& info)
{
    info.line = system(_SC_LEVEL1_DCACHE_LINESIZE);
    info.l1_data = system(_SC_LEVEL1_DCACHE_SIZE);
    info.l2 = system(_SC_LEVEL2_CACHE_SIZE);
    info.l3 = system(_SC_LEVEL3_CACHE_SIZE);
}

ork_cache_info query()
{
    ork_cache_info info{};
    if (!(amd_topology() && from_cpuid(0x8000001d, info)) && !from_cpuid(4, info)) from_system(info);
    if (info.line == 0) info.line = 64;
    info.levels = info.l3 ? 3 : info.l2 ? 2 : info.l1_data ? 1 : 0;
    info.cache_size = info.l3 ? info.l3 : info.l2 ? info.l2 : info.l1_data;
    return info;
}

// Asked once: cpuid traps in virtual machines. Threads that come at the same time ask twice and store the same.
struct Known {
    std::atomic<int64_t> line, l1_data, l2, l3, levels, cache_size;
    std::atomic<bool> ready;
};
constinit Known known{};

} // namespace

ORK_EXPORT int64_t ork_serv_cache_info(ork_cache_info* info)
{
    constexpr auto relaxed = std::memory_order_relaxed;
    if (!known.ready.load(std::memory_order_acquire)) {
        const ork_cache_info found = query();
        known.line.store(found.line, relaxed);
        known.l1_data.store(found.l1_data, relaxed);
        known.l2.store(found.l2, relaxed);
        known.l3.store(found.l3, relaxed);
        known.levels.store(found.levels, relaxed);
        known.cache_size.store(found.cache_size, relaxed);
        known.ready.store(true, std::memory_order_release);
    }
    *info = {.levels = known.levels.load(relaxed),
             .line = known.line.load(relaxed),
             .l1_data = known.l1_data.load(relaxed),
             .cache_size = known.cache_size.load(relaxed),
             .l2 = known.l2.load(relaxed),
             .l3 = known.l3.load(relaxed)};
    return 0;
}

ORK_EXPORT int64_t ork_serv_get_cache_size(int level)
{
    ork_cache_info info;
    ork_serv_cache_info(&info);
    return level == 1 ? info.l1_data : level == 2 ? info.l2 : level == 3 ? info.l3 : 0;
}

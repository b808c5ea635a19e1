// SPDX-License-Identifier: MIT
#include "support/fake_core.h"

#include <cstdlib>

#include "ork/abi/services.h"

namespace ork::test {

FakeCore& fake_core()
{
    static FakeCore core;
    return core;
}

} // namespace ork::test

using ork::test::fake_core;

extern "C" {

void* ork_serv_allocate(size_t size, size_t alignment)
{
    if (fake_core().fail_allocation_at > 0 && --fake_core().fail_allocation_at == 0) return nullptr;
    ++fake_core().live_allocations;
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void ork_serv_deallocate(void* ptr)
{
    if (ptr == nullptr) return;
    --fake_core().live_allocations;
    std::free(ptr);
}

int64_t ork_serv_get_microarchitecture() { return fake_core().microarchitecture; }

int64_t ork_serv_cache_info(ork_cache_info* info)
{
    *info = {};
    info->levels = fake_core().cache_levels;
    info->cache_size = fake_core().cache_size;
    return 0;
}
}

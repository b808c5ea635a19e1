// SPDX-License-Identifier: MIT
#include "conv/memory.h"

#include <cstdlib>

#include "ork/abi/services.h"

namespace ork::test {

Memory& memory()
{
    static Memory m;
    return m;
}

} // namespace ork::test

void* ork_serv_malloc(size_t size, size_t alignment)
{
    auto& m = ork::test::memory();
    int left = m.fail_at.load();
    while (left > 0)
        if (m.fail_at.compare_exchange_weak(left, left - 1)) {
            if (left == 1) return nullptr;
            break;
        }
    if (size > PTRDIFF_MAX - alignment) return nullptr;
    void* const pointer = std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    m.live += pointer != nullptr;
    return pointer;
}

void ork_serv_free(void* pointer)
{
    ork::test::memory().live -= pointer != nullptr;
    std::free(pointer);
}

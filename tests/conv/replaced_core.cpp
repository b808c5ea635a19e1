// SPDX-License-Identifier: MIT
#include "conv/replaced_core.h"

#include <dlfcn.h>

#include "ork/abi/core_conv.h"
#include "ork/abi/services.h"

namespace ork::test {

ReplacedCore& replaced_core()
{
    static ReplacedCore core;
    return core;
}

namespace {

template <class Function>
Function* own(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Whether an allocation is to be given, counted.
bool gives()
{
    ReplacedCore& core = replaced_core();
    ++core.allocations;
    if (core.allocations_left < 0) return true;
    if (core.allocations_left == 0) return false;
    --core.allocations_left;
    return true;
}

} // namespace
} // namespace ork::test

using namespace ork::test;
#define CORES(name) own(&name, #name)

extern "C" {

void* ork_serv_malloc(size_t size, size_t alignment)
{
    void* block = gives() ? CORES(ork_serv_malloc)(size, alignment) : nullptr;
    replaced_core().blocks += block != nullptr;
    return block;
}
void ork_serv_free(void* block)
{
    replaced_core().blocks -= block != nullptr;
    CORES(ork_serv_free)(block);
}

void ork_conv_do_parallel(int64_t parts, void (*part)(void* context, int64_t k), void* context)
{
    ++replaced_core().parallel_runs;
    CORES(ork_conv_do_parallel)(parts, part, context);
}
}

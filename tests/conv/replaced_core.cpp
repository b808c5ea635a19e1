// SPDX-License-Identifier: MIT
#include "conv/replaced_core.h"

#include <cstdarg>

#include "ork/abi/core_conv.h"
#include "ork/abi/services.h"
#include "ork/dft.h"
#include "support/next_routine.h"

namespace ork::test {

ReplacedCore& replaced_core()
{
    static ReplacedCore core;
    return core;
}

namespace {

// Whether one more call is to succeed, counted.
bool one_of(std::atomic<int>& left, std::atomic<int>& calls)
{
    ++calls;
    if (left < 0) return true;
    if (left == 0) return false;
    --left;
    return true;
}
bool gives() { return one_of(replaced_core().allocations_left, replaced_core().allocations); }
bool transforms() { return one_of(replaced_core().transforms_left, replaced_core().transform_calls); }

} // namespace
} // namespace ork::test

using namespace ork::test;
#define CORES(name) next_routine<decltype(name)>(#name)

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
void* ork_serv_allocate(size_t size, size_t alignment)
{
    void* block = gives() ? CORES(ork_serv_allocate)(size, alignment) : nullptr;
    replaced_core().blocks += block != nullptr;
    return block;
}
void ork_serv_deallocate(void* block)
{
    replaced_core().blocks -= block != nullptr;
    CORES(ork_serv_deallocate)(block);
}

#define CREATE(p)                                                                                                      \
    int64_t ork_dft_dfticreatedescriptor_##p##_1d(ork_dft_descriptor** handle, int64_t domain, int64_t length)         \
    {                                                                                                                  \
        if (!transforms()) return ORK_DFT_MEMORY_ERROR;                                                                \
        const int64_t status = CORES(ork_dft_dfticreatedescriptor_##p##_1d)(handle, domain, length);                   \
        replaced_core().descriptors += status == 0;                                                                    \
        return status;                                                                                                 \
    }
CREATE(s)
CREATE(d)

int64_t ork_dft_dftisetvalue(ork_dft_descriptor* handle, int64_t parameter, ...)
{
    if (!transforms()) return ORK_DFT_INVALID_CONFIGURATION;
    std::va_list values;
    va_start(values, parameter);
    const int64_t status = parameter == ORK_DFT_INPUT_STRIDES
                               ? ork_dft_set_integers(handle, parameter, va_arg(values, const int64_t*))
                               : ork_dft_set_integer(handle, parameter, va_arg(values, int64_t));
    va_end(values);
    return status;
}
int64_t ork_dft_dfticommitdescriptor(ork_dft_descriptor* handle)
{
    return transforms() ? CORES(ork_dft_dfticommitdescriptor)(handle) : int64_t{ORK_DFT_INTERNAL_ERROR};
}
int64_t ork_dft_dfticomputeforward(const ork_dft_descriptor* handle, void* inout, ...)
{
    return transforms() ? CORES(ork_dft_dfticomputeforward)(handle, inout) : int64_t{ORK_DFT_MEMORY_ERROR};
}
int64_t ork_dft_dfticomputebackward(const ork_dft_descriptor* handle, void* inout, ...)
{
    return transforms() ? CORES(ork_dft_dfticomputebackward)(handle, inout) : int64_t{ORK_DFT_MULTITHREADED_ERROR};
}
int64_t ork_dft_dftifreedescriptor(ork_dft_descriptor** handle)
{
    --replaced_core().descriptors;
    return CORES(ork_dft_dftifreedescriptor)(handle);
}

void ork_conv_do_parallel(int64_t parts, void (*part)(void* context, int64_t k), void* context)
{
    ++replaced_core().parallel_runs;
    CORES(ork_conv_do_parallel)(parts, part, context);
}
}

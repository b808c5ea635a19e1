// SPDX-License-Identifier: MIT
// Plain memory for kernels: scratch arrays and objects. Work buffers that are kept between calls are in buffers.cpp.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "export.h"
#include "ork/abi/services.h"

ORK_EXPORT void* ork_serv_malloc(size_t size, size_t alignment)
{
    if ((alignment & (alignment - 1)) != 0 || size > PTRDIFF_MAX) return nullptr;
    if (alignment < alignof(max_align_t)) alignment = alignof(max_align_t);
    void* ptr;
    return posix_memalign(&ptr, alignment, size ? size : 1) == 0 ? ptr : nullptr;
}

ORK_EXPORT void* ork_serv_calloc(size_t count, size_t size, size_t alignment, int64_t)
{
    size_t bytes;
    if (__builtin_mul_overflow(count, size, &bytes)) return nullptr;
    if (alignment <= alignof(max_align_t)) return std::calloc(1, bytes ? bytes : 1);
    void* ptr = ork_serv_malloc(bytes, alignment);
    return ptr ? std::memset(ptr, 0, bytes) : nullptr;
}

ORK_EXPORT void ork_serv_free(void* ptr) { std::free(ptr); }

ORK_EXPORT int ork_serv_check_ptr_and_warn(const void* ptr, const char* name)
{
    if (ptr != nullptr) return 0;
    std::fprintf(stderr, "ork: %s: out of memory\n", name);
    return 1;
}

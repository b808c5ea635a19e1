// SPDX-License-Identifier: MIT
// Work memory of transform kernels: of short ones from the heap, of long ones from the buffers that are kept between
// calls, whose pages need not be faulted in anew. The 64 bytes before the caller's say which.
#include "export.h"
#include "ork/abi/dft.h"
#include "ork/abi/services.h"

namespace {

constexpr int64_t header = 64, long_from = 32 << 10;

}

ORK_EXPORT void* ork_dft_ufxMalloc(int64_t bytes)
{
    int64_t all;
    if (bytes < 0 || __builtin_add_overflow(bytes, header, &all)) return nullptr;
    const bool kept = bytes >= long_from;
    const auto size = static_cast<size_t>(all);
    char* memory = static_cast<char*>(kept ? ork_serv_allocate(size, header) : ork_serv_malloc(size, header));
    if (memory == nullptr) return nullptr;
    *reinterpret_cast<bool*>(memory) = kept;
    return memory + header;
}

ORK_EXPORT void ork_dft_ufxFree(void* memory)
{
    if (memory == nullptr) return;
    char* whole = static_cast<char*>(memory) - header;
    *reinterpret_cast<bool*>(whole) ? ork_serv_deallocate(whole) : ork_serv_free(whole);
}

// SPDX-License-Identifier: MIT
#include "services/xerbla.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "export.h"
#include "ork/abi/services.h"
#include "ork/ork.h"
#include "services/setting.h"

namespace {
constinit std::atomic<ork_argument_handler> handler = nullptr;
}

// The text is the reference's; unlike the reference it does not stop the program, which a library may not, unless
// ORK_XERBLA=abort asks for it. The drop-in libraries have an xerbla_ of their own that jumps here.
ORK_EXPORT void ork_blas_lp64_xerbla(const char* routine, const int* info, size_t length)
{
    while (length > 0 && routine[length - 1] == ' ') --length;
    const int shown = length < 64 ? static_cast<int>(length) : 64;
    if (const ork_argument_handler replaced = handler.load(std::memory_order_acquire)) {
        char name[65];
        std::memcpy(name, routine, shown);
        name[shown] = 0;
        return replaced(name, *info);
    }
    std::fprintf(stderr, " ** On entry to %-6.*s parameter number %2d had an illegal value\n", shown, routine, *info);
    const char* action = ork::services::environment("ORK_XERBLA");
    if (action != nullptr && std::strcmp(action, "abort") == 0) std::abort();
}

// Called through the symbol table, so that a definition in the executable takes its place.
ORK_EXPORT decltype(ork_blas_lp64_xerbla) xerbla_ __attribute__((alias("ork_blas_lp64_xerbla")));

// The position is stored in 64 bits: a replacement built for 64-bit integers reads as many.
void ork::services::report_argument(const char* routine, std::int64_t position)
{
    xerbla_(routine, reinterpret_cast<const int*>(&position), std::strlen(routine));
}

ORK_EXPORT void ork_serv_xerbla(const char* routine, const int64_t* info, int64_t routine_length)
{
    xerbla_(routine, reinterpret_cast<const int*>(info), routine_length < 0 ? 0 : static_cast<size_t>(routine_length));
}

ORK_EXPORT ork_argument_handler ork_set_xerbla(ork_argument_handler replacement)
{
    return handler.exchange(replacement, std::memory_order_acq_rel);
}

ORK_EXPORT int64_t ork_serv_lsame(const char* a, const char* b)
{
    const auto upper = [](char letter) { return letter >= 'a' && letter <= 'z' ? letter - 'a' + 'A' : letter; };
    return upper(*a) == upper(*b);
}

// SPDX-License-Identifier: MIT
#include <dlfcn.h>

#include <string_view>

#include "frame/core/echo.h"

namespace ork::test {

namespace {

struct Routine {
    const char *name, *entry;
};

constexpr Routine routines[] = {
#define ROUTINE(name, entry) {#name, #entry},
#include "frame/core/routines.inc"
#undef ROUTINE
};

template <class Function>
Function* find(void* library, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(library, name));
}

// The number of the first wrong entry among those whose names do or don't agree on both sides.
int first_wrong(void* library, bool same_named)
{
    int number = 0;
    for (const auto& [name, entry] : routines) {
        ++number;
        if ((std::string_view(name) == entry) != same_named) continue;
        auto* call = find<Echo>(library, entry);
        if (call == nullptr) return number;
        const double want = mixture(name, 1, -2, 3, -4, 5, -6, 7, -8, .5, -.25, 3, 4, -5, 6, 7.5, -8, 9);
        for (int i = 0; i < 2; ++i)
            if (!(call(1, -2, 3, -4, 5, -6, 7, -8, .5, -.25, 3, 4, -5, 6, 7.5, -8, 9) == want)) return number;
    }
    return 0;
}

} // namespace

int wrong_same_named_entry(void* library)
{
    if (const int number = first_wrong(library, true)) return number;
    const float xf = 1.5f;
    const double xd = 2.5;
    const Int n = 7;
    for (int i = 0; i < 2; ++i) {
        if (find<EchoFloat>(library, "ork_blas_lp64_cdotu")(&xf, &n, 2) != std::complex<float>(3.5f, 7)) return 100;
        if (find<EchoDouble>(library, "ork_blas_lp64_zdotu")(&xd, &n, 2) != std::complex<double>(4.5, 7)) return 101;
    }
    return 0;
}

int wrong_renamed_entry(void* library)
{
    if (const int number = first_wrong(library, false)) return number;
    for (int i = 0; i < 2; ++i)
        if (find<EchoMany>(library, "ork_conv_nx2_NewTask")(9, 1., 2., 3., 4., 5., 6., 7., 8., 9.) != 45) return 102;
    return 0;
}

} // namespace ork::test

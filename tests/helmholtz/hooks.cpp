// SPDX-License-Identifier: MIT
#include "hooks.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

#include "ork/abi/core_pde.h"
#include "ork/abi/services.h"

namespace ork::test {

Hooks& hooks()
{
    static Hooks h;
    return h;
}

namespace {

template <class R>
void run_stage(const char* symbol, pde::Work<R>* work)
{
    const std::string name = std::string(symbol).substr(12);
    hooks().stages.push_back(name);
    hooks().singular = work->singular;
    if (name == hooks().failing_stage) {
        work->status = hooks().failure;
        return;
    }
    reinterpret_cast<pde::Stage<R>*>(dlsym(RTLD_NEXT, symbol))(work);
}

} // namespace
} // namespace ork::test

using ork::test::hooks;

#define STAGE(R, name)                                                                                                 \
    void name(ork::pde::Work<R>* work) { ork::test::run_stage(#name, work); }
#define PAIRS(R, stage)                                                                                                \
    STAGE(R, stage##_dd) STAGE(R, stage##_dn) STAGE(R, stage##_nd) STAGE(R, stage##_nn) STAGE(R, stage##_pp)
#define STAGES(p, R)                                                                                                   \
    PAIRS(R, ork_pdepl_##p##_ft_2d)                                                                                    \
    PAIRS(R, ork_pdepl_##p##_lu_2d)                                                                                    \
    PAIRS(R, ork_pdepl_##p##_inv_ft_2d)                                                                                \
    PAIRS(R, ork_pdepl_##p##_ft_3d_x)                                                                                  \
    PAIRS(R, ork_pdepl_##p##_ft_3d_y)                                                                                  \
    PAIRS(R, ork_pdepl_##p##_ft_3d_z)                                                                                  \
    PAIRS(R, ork_pdepl_##p##_inv_ft_3d_z)                                                                              \
    PAIRS(R, ork_pdepl_##p##_inv_ft_3d_y)                                                                              \
    PAIRS(R, ork_pdepl_##p##_inv_ft_3d_x)

extern "C" {

STAGES(s, float)
STAGES(d, double)

void* ork_serv_allocate(size_t size, size_t alignment)
{
    hooks().alignment = alignment;
    if (hooks().fail_allocation_at > 0 && --hooks().fail_allocation_at == 0) return nullptr;
    ++hooks().live_allocations;
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void ork_serv_deallocate(void* memory)
{
    hooks().live_allocations -= memory != nullptr;
    std::free(memory);
}

// <number(first, second)>, with the arguments that aren't empty.
int64_t ork_serv_get_msg(char* buffer, size_t size, int64_t number, int64_t arguments, ...)
{
    std::string text = "<" + std::to_string(number);
    va_list values;
    va_start(values, arguments);
    for (int64_t i = 0; i < arguments; ++i)
        if (const char* value = va_arg(values, const char*); *value != 0) text += std::string(" ") + value;
    va_end(values);
    return std::snprintf(buffer, size, "%s>", text.c_str());
}

int ork_serv_format_print(int64_t, const char* format, ...)
{
    char text[8192];
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    hooks().printed += text;
    hooks().print_format = format;
    return length;
}

int64_t ork_dft_dfticommitdescriptor(ork_dft_descriptor* handle)
{
    if (hooks().fail_commit_at > 0 && --hooks().fail_commit_at == 0) return 1;
    return reinterpret_cast<decltype(&ork_dft_dfticommitdescriptor)>(dlsym(RTLD_NEXT, "ork_dft_dfticommitdescriptor"))(
        handle);
}
}

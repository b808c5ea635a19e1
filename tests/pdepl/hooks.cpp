// SPDX-License-Identifier: MIT
#include "hooks.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "ork/abi/core_pde.h"
#include "ork/abi/services.h"
#include "support/next_routine.h"

namespace ork::test {

std::atomic<int> live_allocations = 0;
std::atomic<std::size_t> latest_alignment = 0;

namespace {
std::atomic<int> until_failure = 0; // 0: none fails

bool allocation_fails() { return until_failure > 0 && --until_failure == 0; }

// The hooks' own texts don't count.
class Uncounted {
public:
    ~Uncounted() { until_failure = kept_; }

private:
    int kept_ = until_failure.exchange(0);
};
} // namespace

FailingAllocation::FailingAllocation(int number) { until_failure = number; }
FailingAllocation::~FailingAllocation() { until_failure = 0; }
bool FailingAllocation::reached() const { return until_failure == 0; }

Hooks& hooks()
{
    static Hooks h;
    return h;
}

namespace {

template <class R>
void run_stage(const char* symbol, pde::Work<R>* work)
{
    pde::Stage<R>* stage;
    {
        const Uncounted uncounted;
        const std::string name = std::string(symbol).substr(12);
        hooks().stages.push_back(name);
        hooks().singular = work->singular;
        if (name == hooks().failing_stage) {
            work->status = hooks().failure;
            return;
        }
        stage = next_routine<pde::Stage<R>>(symbol);
    }
    stage(work);
}

} // namespace
} // namespace ork::test

using namespace ork::test;

#define STAGE(R, name)                                                                                                 \
    void name(ork::pde::Work<R>* work) { run_stage(#name, work); }
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
    latest_alignment = alignment;
    if (allocation_fails()) return nullptr;
    const Uncounted uncounted;
    ++live_allocations;
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void ork_serv_deallocate(void* memory)
{
    live_allocations -= memory != nullptr;
    std::free(memory);
}

void* ork_serv_malloc(size_t size, size_t alignment)
{
    if (allocation_fails()) return nullptr;
    const Uncounted uncounted;
    alignment = std::max(alignment, alignof(std::max_align_t));
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void* ork_serv_calloc(size_t count, size_t size, size_t alignment, int64_t)
{
    void* const memory = ork_serv_malloc(count * size, alignment);
    return memory == nullptr ? nullptr : std::memset(memory, 0, count * size);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// What the core takes from the C library.
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_memalign(size_t, size_t);

void* malloc(size_t size) { return allocation_fails() ? nullptr : __libc_malloc(size); }
void* calloc(size_t count, size_t size) { return allocation_fails() ? nullptr : __libc_calloc(count, size); }
int posix_memalign(void** memory, size_t alignment, size_t size)
{
    if (allocation_fails()) return ENOMEM;
    *memory = __libc_memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}
#endif

// <number(first, second)>, with the arguments that aren't empty.
int64_t ork_serv_get_msg(char* buffer, size_t size, int64_t number, int64_t arguments, ...)
{
    const Uncounted uncounted;
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
    const Uncounted uncounted;
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
    return ork::test::next_routine<decltype(ork_dft_dfticommitdescriptor)>("ork_dft_dfticommitdescriptor")(handle);
}
}

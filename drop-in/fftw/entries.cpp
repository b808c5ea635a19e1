// SPDX-License-Identifier: MIT
// The routines that use plans, and those around them. There is no wisdom to keep: what is exported is a mark by which
// it is known again.
#include <cstdlib>
#include <cstring>

#include "ork/ork.h"
#include "plan.h"

using namespace ork::fftw;

extern "C" {
#define TEXT(name, text) __attribute__((visibility("default"))) extern const char FFTW(name)[] = text;
TEXT(version, FFTW_TEXT "-3.3 (ork " ORK_VERSION ")")
TEXT(cc, "")
TEXT(codelet_optim, "")
}

ENTRY void FFTW(execute)(const Plan* plan) { execute(*plan, plan->problem.arrays); }
ENTRY void FFTW(execute_dft)(const Plan* plan, Complex* in, Complex* out)
{
    execute(*plan, {{reinterpret_cast<Number*>(in)}, {reinterpret_cast<Number*>(out)}});
}
ENTRY void FFTW(execute_dft_r2c)(const Plan* plan, Number* in, Complex* out)
{
    execute(*plan, {{in}, {reinterpret_cast<Number*>(out)}});
}
ENTRY void FFTW(execute_dft_c2r)(const Plan* plan, Complex* in, Number* out)
{
    execute(*plan, {{reinterpret_cast<Number*>(in)}, {out}});
}
ENTRY void FFTW(execute_split_dft)(const Plan* plan, Number* ri, Number* ii, Number* ro, Number* io)
{
    execute(*plan, {{ri, ii}, {ro, io}});
}
ENTRY void FFTW(execute_split_dft_r2c)(const Plan* plan, Number* in, Number* ro, Number* io)
{
    execute(*plan, {{in}, {ro, io}});
}
ENTRY void FFTW(execute_split_dft_c2r)(const Plan* plan, Number* ri, Number* ii, Number* out)
{
    execute(*plan, {{ri, ii}, {out}});
}
ENTRY void FFTW(execute_r2r)(const Plan* plan, Number* in, Number* out) { execute(*plan, {{in}, {out}}); }

ENTRY void FFTW(destroy_plan)(Plan* plan) { free_plan(plan); }
ENTRY void FFTW(cleanup)() { ork_free_buffers(); }
ENTRY void FFTW(forget_wisdom)() {}
ENTRY void FFTW(set_timelimit)(double) {}

ENTRY int FFTW(init_threads)() { return 1; }
ENTRY void FFTW(plan_with_nthreads)(int threads) { set_planner_threads(threads); }
ENTRY int FFTW(planner_nthreads)() { return planner_threads() > 0 ? planner_threads() : ork_get_max_threads(); }
ENTRY void FFTW(cleanup_threads)() { set_planner_threads(0), ork_free_buffers(); }
ENTRY void FFTW(make_planner_thread_safe)() {} // it is
ENTRY void FFTW(threads_set_callback)(void (*)(void* (*)(char*), char*, std::size_t, int, void*), void*) {}

ENTRY void* FFTW(malloc)(std::size_t bytes)
{
    void* memory;
    return posix_memalign(&memory, 64, bytes ? bytes : 1) == 0 ? memory : nullptr;
}
ENTRY Number* FFTW(alloc_real)(std::size_t n)
{
    std::size_t bytes;
    return __builtin_mul_overflow(n, sizeof(Number), &bytes) ? nullptr : static_cast<Number*>(FFTW(malloc)(bytes));
}
ENTRY Complex* FFTW(alloc_complex)(std::size_t n)
{
    std::size_t bytes;
    return __builtin_mul_overflow(n, sizeof(Complex), &bytes) ? nullptr : static_cast<Complex*>(FFTW(malloc)(bytes));
}
ENTRY void FFTW(free)(void* memory) { std::free(memory); }
ENTRY int FFTW(alignment_of)(Number* x) { return static_cast<int>(reinterpret_cast<std::uintptr_t>(x) % 16); }

// Estimates: five operations for each number and factor of two, two of them multiplications.
ENTRY void FFTW(flops)(const Plan* plan, double* add, double* multiply, double* fused)
{
    *add = 0.6 * plan->operations;
    *multiply = 0.4 * plan->operations;
    *fused = 0;
}
ENTRY double FFTW(estimate_cost)(const Plan* plan) { return plan->operations; }
ENTRY double FFTW(cost)(const Plan* plan) { return plan->operations; }

ENTRY char* FFTW(sprint_plan)(const Plan* plan)
{
    constexpr const char* kinds[] = {"c2c", "r2c", "c2r", "r2r"};
    const Problem& p = plan->problem;
    char text[400];
    int length = std::snprintf(text, sizeof text, "(ork-%s-%s", kinds[static_cast<int>(p.kind)],
                               p.backward ? "backward" : "forward");
    for (int d = p.rank - 1; d >= 0; --d)
        length += std::snprintf(text + length, sizeof text - length, d == p.rank - 1 ? " %lld" : "x%lld",
                                static_cast<long long>(p.dimension[d].n));
    std::snprintf(text + length, sizeof text - length, ")");
    return strdup(text);
}
ENTRY void FFTW(fprint_plan)(const Plan* plan, std::FILE* file)
{
    char* text = FFTW(sprint_plan)(plan);
    if (text != nullptr) std::fputs(text, file);
    std::free(text);
}
ENTRY void FFTW(print_plan)(const Plan* plan) { FFTW(fprint_plan)(plan, stdout); }

namespace {
constexpr char wisdom[] = "(ork " FFTW_TEXT "_wisdom)\n";
constexpr std::size_t wisdom_length = sizeof wisdom - 1;
} // namespace

ENTRY void FFTW(export_wisdom)(void (*write)(char, void*), void* data)
{
    for (std::size_t i = 0; i < wisdom_length; ++i) write(wisdom[i], data);
}
ENTRY char* FFTW(export_wisdom_to_string)() { return strdup(wisdom); }
ENTRY void FFTW(export_wisdom_to_file)(std::FILE* file) { std::fputs(wisdom, file); }
ENTRY int FFTW(export_wisdom_to_filename)(const char* name)
{
    std::FILE* file = std::fopen(name, "w");
    if (file == nullptr) return 0;
    const bool written = std::fputs(wisdom, file) >= 0;
    return std::fclose(file) == 0 && written;
}
ENTRY int FFTW(import_wisdom)(int (*read)(void*), void* data)
{
    for (std::size_t i = 0; i < wisdom_length; ++i)
        if (read(data) != wisdom[i]) return 0;
    return 1;
}
ENTRY int FFTW(import_wisdom_from_string)(const char* text) { return std::strncmp(text, wisdom, wisdom_length) == 0; }
ENTRY int FFTW(import_wisdom_from_file)(std::FILE* file)
{
    return FFTW(import_wisdom)([](void* data) { return std::fgetc(static_cast<std::FILE*>(data)); }, file);
}
ENTRY int FFTW(import_wisdom_from_filename)(const char* name)
{
    std::FILE* file = std::fopen(name, "r");
    if (file == nullptr) return 0;
    const int known = FFTW(import_wisdom_from_file)(file);
    std::fclose(file);
    return known;
}
ENTRY int FFTW(import_system_wisdom)() { return 0; }

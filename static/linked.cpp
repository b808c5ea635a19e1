// SPDX-License-Identifier: MIT
// The loader of libork.a: the kernels are part of the program, so there is nothing to find and to open. Takes the place
// of core/loader/library.cpp.
#include "loader/library.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "export.h"
#include "loader/kernel.h"
#include "loader/table.h"
#include "ork/ork.h"
#include "services/at_fork.h"
#include "threads/pool.h"

namespace ork::loader {

// kernels.S: every routine of the kernel library, names ascending.
struct LinkedKernel {
    const char* name;
    void* address;
};
extern "C" const LinkedKernel ork_linked_kernels[], ork_linked_kernels_end[];

namespace {

constexpr char missing_processor[] = "this processor lacks SSE4.2, which every kernel needs";

const KernelLibrary* library()
{
    static constinit std::atomic<const KernelLibrary*> known = nullptr;
    if (const KernelLibrary* found = known.load(std::memory_order_acquire)) return found;
    const KernelLibrary* found = choose(services::detect_processor());
    known.store(found, std::memory_order_release);
    return found;
}

[[noreturn]] void give_up(const char* what, const char* name)
{
    std::fprintf(stderr, "ork: %s%s\n", what, name);
    threads::leave_process(EXIT_FAILURE);
}

template <class Routine>
void* address_of(Routine* routine)
{
    return reinterpret_cast<void*>(routine);
}

} // namespace

int initialize()
{
    services::register_fork_handlers();
    return library() != nullptr ? ORK_OK : ORK_NO_PROCESSOR;
}

void* find_kernel(const char* domain, const char* routine)
{
    if (initialize() != ORK_OK) give_up(missing_processor, "");
    char name[128];
    if (!compose_name(name, sizeof name, domain, library()->tag, routine))
        give_up("no routine has a name as long as ", routine);
    const LinkedKernel *first = ork_linked_kernels, *end = ork_linked_kernels_end;
    while (first < end) {
        const LinkedKernel* middle = first + (end - first) / 2;
        const int order = std::strcmp(middle->name, name);
        if (order == 0) return middle->address;
        if (order < 0)
            first = middle + 1;
        else
            end = middle;
    }
    give_up("this library has no ", name);
}

void* find_in_libm(const char* routine)
{
    const LinkedKernel routines[] = {
        {"sin", address_of<double(double)>(std::sin)},
        {"cos", address_of<double(double)>(std::cos)},
        {"sinf", address_of<float(float)>(::sinf)},
        {"cosf", address_of<float(float)>(::cosf)},
        {"sincosl", address_of<void(long double, long double*, long double*)>(::sincosl)},
    };
    for (const LinkedKernel& known : routines)
        if (std::strcmp(known.name, routine) == 0) return known.address;
    give_up("this library knows no mathematical routine ", routine);
}

void before_fork() {}
void after_fork_in_parent() {}
void after_fork_in_child() {}

} // namespace ork::loader

using namespace ork;

ORK_EXPORT int ork_initialize() { return loader::initialize(); }
ORK_EXPORT const char* ork_error_text() { return loader::library() != nullptr ? "" : loader::missing_processor; }
ORK_EXPORT const char* ork_kernel_library() { return ""; }
ORK_EXPORT int ork_code_path() { return loader::library() != nullptr ? loader::library()->code_path : 0; }

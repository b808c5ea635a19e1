// SPDX-License-Identifier: MIT
// The kernel library in processes of every kind: without a core, with one that came before it or after it, hidden or
// not. This program has no routine of a core; each case has a process of its own.
#include <dlfcn.h>

#include <complex>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/core/echo.h"
#include "support/environment.h"
#include "support/process.h"

namespace ork::test {
namespace {

constexpr const char* kernel_library = ORK_LIB_DIR "/libork_nx2.so";

void* open(const char* path, int flags)
{
    void* handle = dlopen(path, flags);
    if (handle == nullptr) std::fprintf(stderr, "%s\n", dlerror());
    return handle;
}

template <class Function>
Function* find(void* library, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(library, name));
}

TEST(LoadedWithoutACore, AnswersItsVersionAndComputes)
{
    for (int flags : {RTLD_LAZY, RTLD_LAZY | RTLD_GLOBAL}) {
        const auto child = run_child([flags] {
            void* library = open(kernel_library, flags);
            if (library == nullptr) return 1;
            auto* version = find<std::int32_t()>(library, "dll_cpu_version");
            if (version == nullptr || version() != 3) return 2;
            using Dot = double(const Int*, const double*, const Int*, const double*, const Int*);
            auto* dot = find<Dot>(library, "ork_blas_nx2_xddot");
            if (dot == nullptr) return 3;
            const double x[] = {1, 2, 3}, y[] = {4, -5, 6};
            const Int n = 3, one = 1;
            if (!(dot(&n, x, &one, y, &one) == 12)) return 4;
            if (version() != 3) return 5;
            if (dlclose(library) != 0) return 6;
            return dlopen(kernel_library, RTLD_LAZY | RTLD_NOLOAD) == nullptr ? 0 : 7; // nothing holds it
        });
        EXPECT_TRUE(child.ok()) << child.describe();
        EXPECT_EQ(child.out + child.err, "");
    }
}

TEST(LoadedWithoutACore, ForwardingEntriesSayWhatIsMissing)
{
    for (const char* entry : {"ork_blas_lp64_daxpy", "ork_conv_nx2_ExecX"})
        for (int flags : {RTLD_LAZY, RTLD_LAZY | RTLD_GLOBAL}) {
            const auto child = run_child(
                [&] {
                    void* library = open(kernel_library, flags);
                    if (library == nullptr) return 1;
                    find<void()>(library, entry)();
                    return 0;
                },
                5);
            EXPECT_EQ(child.exit_code, 127) << child.describe();
            const bool same_named = std::string_view(entry).starts_with("ork_blas");
            EXPECT_THAT(child.err,
                        testing::HasSubstr(same_named ? "ork_blas_lp64_daxpy needs the core library (libork_core.so.0)"
                                                      : "ork_conv_execx"));
            EXPECT_EQ(std::count(child.err.begin(), child.err.end(), '\n'), 1) << child.err;
        }
}

struct Order {
    int core_flags, kernel_flags;
    bool core_first;
};

// One process: both libraries in that order, then every entry. 0 when all arguments and results came through.
int calls_through(const Order& order)
{
    void* library = nullptr;
    if (order.core_first && open(ORK_TEST_CORE, order.core_flags) == nullptr) return 103;
    if ((library = open(kernel_library, order.kernel_flags)) == nullptr) return 104;
    if (!order.core_first && open(ORK_TEST_CORE, order.core_flags) == nullptr) return 105;
    if (const int wrong = wrong_same_named_entry(library)) return wrong;
    // Renamed entries are ordinary imports, which the run-time looks for in the global scope alone.
    return (order.core_flags & RTLD_GLOBAL) != 0 ? wrong_renamed_entry(library) : 0;
}

TEST(ForwardingEntries, ReachTheCoreInEveryOrderOfLoading)
{
    for (int core_scope : {RTLD_LOCAL, RTLD_GLOBAL})
        for (int kernel_scope : {RTLD_LOCAL, RTLD_GLOBAL})
            for (bool core_first : {true, false}) {
                SCOPED_TRACE(testing::Message()
                             << "core " << (core_scope == RTLD_GLOBAL ? "global" : "local") << ", kernel library "
                             << (kernel_scope == RTLD_GLOBAL ? "global" : "local") << ", core first: " << core_first);
                const Order order{RTLD_LAZY | core_scope, RTLD_LAZY | kernel_scope, core_first};
                const auto child = run_child([&] { return calls_through(order); }, 5);
                EXPECT_TRUE(child.ok()) << child.describe();
            }
}

TEST(ForwardingEntries, BindFromManyThreadsAtOnceAndOnASmallStack)
{
    const auto threads = run_child(
        [] {
            if (open(ORK_TEST_CORE, RTLD_LAZY | RTLD_LOCAL) == nullptr) return 1;
            void* library = open(kernel_library, RTLD_LAZY);
            if (library == nullptr) return 2;
            std::vector<std::thread> callers;
            std::atomic<int> wrong = 0, waiting = 8;
            for (int i = 0; i < 8; ++i)
                callers.emplace_back([&] {
                    for (--waiting; waiting > 0;) {
                    }
                    if (wrong_same_named_entry(library) != 0) wrong = 3;
                });
            for (auto& caller : callers) caller.join();
            return wrong.load();
        },
        30);
    EXPECT_TRUE(threads.ok()) << threads.describe();

    const auto small = run_child(
        [] {
            int wrong = calls_through({RTLD_LAZY | RTLD_GLOBAL, RTLD_LAZY, true});
            void* library = open(kernel_library, RTLD_LAZY);
            if (wrong == 0 && library != nullptr)
                run_on_small_stack(small_stack, [&] { wrong = wrong_same_named_entry(library); });
            return wrong;
        },
        5);
    EXPECT_TRUE(small.ok()) << small.describe();
}

} // namespace
} // namespace ork::test

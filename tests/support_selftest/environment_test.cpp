// SPDX-License-Identifier: MIT
#include "support/environment.h"

#include <signal.h>
#include <xmmintrin.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "ork/abi/services.h"
#include "support/fake_core.h"
#include "support/process.h"

namespace ork::test {
namespace {

TEST(FpEnvironment, ChangedControlWordsAndRaisedFlagsAreSeen)
{
    volatile double one = 1, zero = 0, three = 3, result;
    EXPECT_TRUE(keeps_fp_environment([&] { result = one / three; }));
    EXPECT_FALSE(keeps_fp_environment([&] { result = one / three; }, 0));
    EXPECT_FALSE(keeps_fp_environment([&] { result = one / zero; }));
    EXPECT_FALSE(keeps_fp_environment([&] { result = zero / zero; }));
    EXPECT_TRUE(keeps_fp_environment([&] { result = one / zero; }, fp_divide));
    EXPECT_FALSE(keeps_fp_environment([] { _mm_setcsr(_mm_getcsr() | 0x8000); }));   // flush-to-zero
    EXPECT_FALSE(keeps_fp_environment([] { _mm_setcsr(_mm_getcsr() & ~0x8000u); })); // someone else's, switched off
    EXPECT_FALSE(keeps_fp_environment([] {
        unsigned short word;
        asm volatile("fnstcw %0" : "=m"(word));
        word ^= 0x0300; // double precision instead of extended
        asm volatile("fldcw %0" : : "m"(word));
    }));
    asm volatile("fninit");
    EXPECT_EQ(_mm_getcsr() & ~0x3fu, 0x1f80u);
    EXPECT_EQ(fp_flags_of([&] { result = one / zero; }), fp_divide);
}

[[gnu::noinline]] int use_stack(std::size_t bytes)
{
    volatile char* room = static_cast<volatile char*>(__builtin_alloca(bytes));
    for (std::size_t i = 0; i < bytes; i += 256) room[i] = 1;
    return room[0];
}

TEST(SmallStackDeathTest, AFrameThatFitsPassesAndALargerOneEndsTheProcess)
{
    int ran = 0;
    run_on_small_stack(small_stack, [&] { ran = use_stack(40 << 10); });
    EXPECT_EQ(ran, 1);
    // The overflow leaves no stack for a signal handler of the sanitizers either: any end will do.
    const auto child = run_child([] {
        run_on_small_stack(small_stack, [] { use_stack(sanitized ? 1 << 20 : 80 << 10); });
        return 0;
    });
    EXPECT_FALSE(child.ok()) << child.describe();
}

TEST(Process, ExitStatusSignalAndOutputAreReported)
{
    const auto child = run_child([] {
        std::printf("to out\n");
        std::fprintf(stderr, "to err\n");
        return 3;
    });
    EXPECT_EQ(child.exit_code, 3);
    EXPECT_EQ(child.out, "to out\n");
    EXPECT_EQ(child.err, "to err\n");

    EXPECT_EQ(run_child([] { return raise(SIGKILL); }).signal, SIGKILL);
    const auto hung = run_child(
        [] {
            for (;;) asm volatile("pause");
            return 0;
        },
        1);
    EXPECT_TRUE(hung.timed_out());

    const auto program =
        run_program({"sh", "-c", "echo $ORK_TEST_VALUE$HOME; exit 5"}, {"ORK_TEST_VALUE=there", "HOME"});
    EXPECT_EQ(program.exit_code, 5);
    EXPECT_EQ(program.out, "there\n");
    EXPECT_EQ(run_program({"ork-no-such-program"}).exit_code, 127);
}

TEST(Process, LimitsHoldForTheirScope)
{
    rlimit before{}, after{};
    getrlimit(RLIMIT_NOFILE, &before);
    {
        ScopedLimit limit(RLIMIT_NOFILE, 3);
        EXPECT_EQ(std::fopen("/dev/null", "r"), nullptr);
    }
    getrlimit(RLIMIT_NOFILE, &after);
    EXPECT_EQ(before.rlim_cur, after.rlim_cur);
}

TEST(FakeCore, FailsTheChosenAllocationAndCounts)
{
    FreshCore core;
    core->fail_allocation_at = 2;
    void* first = ork_serv_allocate(100, 4096);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 4096, 0u);
    EXPECT_EQ(ork_serv_allocate(100, 64), nullptr);
    void* third = ork_serv_allocate(7, 64);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(core->allocations, 3);
    EXPECT_EQ(core->live_allocations, 2);
    EXPECT_EQ(core->last_size, 7);
    ork_serv_deallocate(first);
    ork_serv_deallocate(third);
    ork_serv_deallocate(nullptr);
    EXPECT_EQ(core->live_allocations, 0);
    EXPECT_EQ(core->deallocations, 3);
    {
        FreshCore another;
        EXPECT_EQ(another->allocations, 0);
    }
}

} // namespace
} // namespace ork::test

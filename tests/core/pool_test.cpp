// SPDX-License-Identifier: MIT
#include <sched.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "ork/ork.h"
#include "pool_support.h"
#include "support/environment.h"
#include "support/process.h"

namespace ork::test {
std::atomic<int> threads_to_refuse = 0;
}

// Takes the place of the C library's: threads can be made to fail, which limits don't do to a superuser.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument)
{
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    if (ork::test::threads_to_refuse.load() > 0 && ork::test::threads_to_refuse.fetch_sub(1) > 0) return EAGAIN;
    return create(thread, attributes, start, argument);
}

namespace ork::test {
namespace {

using namespace std::chrono_literals;

int thread_count()
{
    int count = 0;
    for ([[maybe_unused]] auto& task : std::filesystem::directory_iterator("/proc/self/task")) ++count;
    return count;
}

// Threads that meet in parts, each of which waits (within reason) until `wanted` of them are there.
int threads_that_meet(int wanted, std::chrono::milliseconds patience)
{
    std::atomic<int> here = 0;
    std::set<std::thread::id> seen;
    std::mutex lock;
    parallel(wanted, [&](int) {
        {
            std::lock_guard guard(lock);
            seen.insert(std::this_thread::get_id());
        }
        ++here;
        const auto end = std::chrono::steady_clock::now() + patience;
        while (here < wanted && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    });
    return static_cast<int>(seen.size());
}

class Pool : public testing::Test {
protected:
    ~Pool() override
    {
        ork_set_num_threads(0);
        ork_set_num_threads_local(0);
        ork_set_parallel_backend(nullptr, nullptr);
    }
};

TEST_F(Pool, EveryPartRunsOnce)
{
    for (int threads : {1, 2, 3, 8})
        for (int parts : {0, 1, 2, 3, 8, 1000}) {
            ork_set_num_threads(threads);
            for (int round = 0; round < 20; ++round) EXPECT_TRUE(every_part_runs_once(parts));
        }
}

TEST_F(Pool, ThisThreadsLimitComesBeforeTheProcesss)
{
    ork_set_num_threads(5);
    EXPECT_EQ(ork_get_max_threads(), 5);
    EXPECT_EQ(ork_set_num_threads_local(3), 0);
    EXPECT_EQ(ork_get_max_threads(), 3);
    std::thread([] { EXPECT_EQ(ork_get_max_threads(), 5); }).join();
    EXPECT_EQ(ork_set_num_threads_local(0), 3);
    EXPECT_EQ(ork_get_max_threads(), 5);
    ork_set_num_threads(1'000'000);
    EXPECT_EQ(ork_get_max_threads(), 256);
}

// As many as the limit says when they are to be had, and never more, whatever other callers do.
TEST_F(Pool, LimitsAreObservedExactly)
{
    ork_set_num_threads(6);
    for (int limit : {1, 2, 3, 4}) {
        ork_set_num_threads_local(limit);
        EXPECT_EQ(threads_that_meet(limit, 20s), limit);
        EXPECT_EQ(threads_that_meet(limit + 3, 5ms), limit);
    }
    ork_set_num_threads_local(0);

    std::vector<std::thread> callers;
    std::atomic<int> most[5] = {};
    for (int limit : {1, 2, 3, 4})
        callers.emplace_back([&, limit] {
            ork_set_num_threads_local(limit);
            for (int round = 0; round < 200; ++round) {
                std::atomic<int> at_once = 0;
                parallel(12, [&](int) {
                    const int now = ++at_once;
                    for (int known = most[limit]; known < now && !most[limit].compare_exchange_weak(known, now);) {
                    }
                    std::this_thread::sleep_for(50us);
                    --at_once;
                });
            }
        });
    for (auto& caller : callers) caller.join();
    for (int limit : {1, 2, 3, 4}) EXPECT_LE(most[limit], limit);
}

TEST_F(Pool, CallsFromPartsRunSerial)
{
    ork_set_num_threads(4);
    std::atomic<int> wrong = 0, by_caller = 0, by_workers = 0;
    parallel(100, [&](int) {
        const auto self = std::this_thread::get_id();
        ++(self == main_thread ? by_caller : by_workers);
        wrong += ork_get_max_threads() != 1;
        parallel(5, [&](int) { wrong += std::this_thread::get_id() != self; });
        std::this_thread::sleep_for(200us);
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(by_caller, 0);
    EXPECT_GT(by_workers, 0);
    EXPECT_EQ(ork_get_max_threads(), 4);
}

// Eight callers don't bring eight sets of workers.
TEST_F(Pool, CallersShareTheWorkers)
{
    if (thread_sanitized) GTEST_SKIP() << "its run-time gives up after such a fork";
    const ChildResult child = run_child([] {
        ork_set_num_threads(3);
        std::vector<std::thread> callers;
        std::atomic<bool> right = true;
        for (int i = 0; i < 8; ++i)
            callers.emplace_back([&] {
                for (int round = 0; round < 200; ++round)
                    if (!every_part_runs_once(7)) right = false;
            });
        for (auto& caller : callers) caller.join();
        return right && thread_count() <= 3 ? 0 : 1;
    });
    EXPECT_TRUE(child.ok()) << child.describe();
}

TEST_F(Pool, FiveHundredCallers)
{
    ork_set_num_threads(2);
    std::atomic<int> right = 0;
    std::vector<std::thread> callers;
    for (int i = 0; i < 500; ++i)
        callers.emplace_back([&] {
            for (int round = 0; round < 5; ++round) right += every_part_runs_once(3);
        });
    for (auto& caller : callers) caller.join();
    EXPECT_EQ(right, 2500);
}

TEST_F(Pool, PartsHaveTheCallersRoundingModeAndItGetsTheirFlags)
{
    constexpr unsigned towards_zero = 0x6000, flush_to_zero = 0x8000, flags = 0x3f;
    ork_set_num_threads(2);
    const unsigned before = _mm_getcsr();
    _mm_setcsr((before | towards_zero | flush_to_zero) & ~flags);
    std::atomic<int> wrong = 0, here = 0;
    parallel(2, [&](int) {
        wrong += (_mm_getcsr() & ~flags) != ((before | towards_zero | flush_to_zero) & ~flags);
        ++here; // both threads are at it, so one is a worker
        for (int i = 0; i < 100'000'000 && here < 2; ++i) _mm_pause();
        if (std::this_thread::get_id() != main_thread) _mm_setcsr(_mm_getcsr() | fp_divide);
    });
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(here, 2);
    EXPECT_EQ(after & ~flags, (before | towards_zero | flush_to_zero) & ~flags);
    EXPECT_EQ(after & flags, unsigned{fp_divide});
    EXPECT_TRUE(keeps_fp_environment([] { every_part_runs_once(9); }, 0));
}

TEST_F(Pool, WorkersLeaveSignalsToTheApplication)
{
    ork_set_num_threads(2);
    std::atomic<int> here = 0, blocked = 0;
    parallel(2, [&](int) {
        ++here;
        for (int i = 0; i < 100'000'000 && here < 2; ++i) _mm_pause();
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        blocked += sigismember(&mask, SIGINT) && sigismember(&mask, SIGALRM);
    });
    EXPECT_EQ(here, 2);
    EXPECT_EQ(blocked, 1);
}

TEST_F(Pool, AThreadThatCannotStartIsDoneWithout)
{
    if (thread_sanitized) GTEST_SKIP() << "its run-time gives up after such a fork";
    for (int refused : {1, 1'000'000}) {
        const ChildResult child = run_child([&] {
            ork_set_num_threads(4);
            threads_to_refuse = refused;
            for (int round = 0; round < 100; ++round)
                if (!every_part_runs_once(9)) return 1;
            if (thread_count() != 1) return 2; // it isn't tried at every call
            threads_to_refuse = 0;
            for (int round = 0; round < 2000 && thread_count() < 4; ++round)
                if (!every_part_runs_once(9)) return 1;
            return thread_count() == 4 ? 0 : 3; // but again some time
        });
        EXPECT_TRUE(child.ok()) << child.describe();
    }
}

TEST_F(Pool, WorksWithoutAddressSpaceForThreads)
{
    if (sanitized) GTEST_SKIP() << "sanitizers need the address space";
    const ChildResult child = run_child([] {
        ork_set_num_threads(64);
        ScopedLimit limit(RLIMIT_AS, 1); // nothing can be mapped any more
        for (int round = 0; round < 100; ++round)
            if (!every_part_runs_once(70)) return 1;
        return 0;
    });
    EXPECT_TRUE(child.ok()) << child.describe();
}

// The way of programs that fork after they have computed: parent and child compute on, and so does the child's child.
int generations(int left)
{
    for (int round = 0; round < 10; ++round)
        if (!every_part_runs_once(16)) return 1;
    for (int round = 0; round < 2; ++round) { // a new worker looks for work by itself, one that sleeps must be woken
        if (threads_that_meet(2, 10s) != 2) return 2;
        std::this_thread::sleep_for(2ms);
    }
    if (left == 0) return 0;
    every_part_runs_once(16);
    const pid_t child = fork();
    if (child == 0) _exit(generations(left - 1));
    for (int round = 0; round < 10; ++round)
        if (!every_part_runs_once(16)) return 3;
    int status;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 4;
}

TEST_F(Pool, ForksAndBothSidesComputeOn)
{
    if (thread_sanitized) GTEST_SKIP() << "its run-time gives up after such a fork";
    for (int threads : {2, 8}) {
        ork_set_num_threads(threads);
        const ChildResult child = run_child([] { return generations(5); });
        EXPECT_TRUE(child.ok()) << threads << " threads: " << child.describe();
    }
}

TEST_F(Pool, ForksWhileOtherThreadsCall)
{
    if (thread_sanitized) GTEST_SKIP() << "its run-time gives up after such a fork";
    ork_set_num_threads(3);
    std::atomic<bool> stop = false, right = true;
    std::vector<std::thread> callers;
    for (int i = 0; i < 3; ++i)
        callers.emplace_back([&] {
            while (!stop)
                if (!every_part_runs_once(5)) right = false;
        });
    for (int i = 0; i < 40; ++i) {
        const ChildResult child = run_child([] { return every_part_runs_once(16) ? 0 : 1; }, 20);
        EXPECT_TRUE(child.ok()) << child.describe();
    }
    stop = true;
    for (auto& caller : callers) caller.join();
    EXPECT_TRUE(right);
}

TEST_F(Pool, ExitWithCallsInFlightOrFromAPart)
{
    if (thread_sanitized) GTEST_SKIP() << "its run-time gives up after such a fork";
    for (int round = 0; round < 20; ++round) {
        const ChildResult child = run_child(
            [&]() -> int {
                ork_set_num_threads(3);
                for (int i = 0; i < 3; ++i)
                    std::thread([] {
                        for (;;) every_part_runs_once(5);
                    }).detach();
                std::this_thread::sleep_for(1ms * round);
                if (round % 2) exit(7);
                std::atomic<int> here = 0;
                parallel(3, [&](int part) {
                    ++here;
                    if (part == 1) exit(7);
                });
                return 1;
            },
            20);
        EXPECT_EQ(child.exit_code, 7) << child.describe();
    }
}

// A backend of the application's: runs the parts the other way round, on a thread each.
void on_own_threads(void* calls, int parts, ork_part work, void* context)
{
    ++*static_cast<std::atomic<int>*>(calls);
    std::vector<std::thread> threads;
    for (int part = parts - 1; part >= 0; --part) threads.emplace_back(work, context, part);
    for (auto& thread : threads) thread.join();
}

TEST_F(Pool, TheApplicationsThreadsCanDoTheWork)
{
    ork_set_num_threads(3);
    std::atomic<int> calls = 0, at_once = 0, most = 0, nested = 0;
    ork_set_parallel_backend(on_own_threads, &calls);
    EXPECT_TRUE(every_part_runs_once(100));
    EXPECT_EQ(calls, 1);
    parallel(30, [&](int) {
        const int now = ++at_once;
        if (now > most) most = now;
        nested += ork_get_max_threads() != 1;
        std::this_thread::sleep_for(100us);
        --at_once;
    });
    EXPECT_LE(most, 3);
    EXPECT_EQ(nested, 0);
    EXPECT_EQ(ork_get_max_threads(), 3);

    ork_set_parallel_backend([](void*, int, ork_part, void*) {}, nullptr); // does nothing: the caller does it all
    EXPECT_TRUE(every_part_runs_once(100));
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
#include <cstdint>
#include <cstring>
#include <fstream>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "ork/abi/services.h"
#include "ork/ork.h"
#include "support/process.h"

namespace ork::test {
namespace {

bool aligned(const void* ptr, size_t alignment) { return reinterpret_cast<std::uintptr_t>(ptr) % alignment == 0; }

long resident_kib()
{
    long size, resident;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

TEST(Memory, IsAlignedUsableAndCleared)
{
    for (size_t alignment : {1, 8, 16, 64, 128, 4096, 65536})
        for (size_t size : {0, 1, 63, 4096, 100'000}) {
            void* plain = ork_serv_malloc(size, alignment);
            ASSERT_TRUE(plain != nullptr && aligned(plain, alignment)) << size << " " << alignment;
            std::memset(plain, 255, size);
            ork_serv_free(plain);
            auto* cleared = static_cast<unsigned char*>(ork_serv_calloc(3, size, alignment, 0));
            ASSERT_TRUE(cleared != nullptr && aligned(cleared, alignment));
            for (size_t i = 0; i < 3 * size; ++i) ASSERT_EQ(cleared[i], 0);
            std::memset(cleared, 255, 3 * size);
            ork_serv_free(cleared);
        }
    ork_serv_free(nullptr);
}

TEST(Memory, FailsWithNull)
{
    volatile size_t huge = SIZE_MAX;
    EXPECT_EQ(ork_serv_malloc(huge, 64), nullptr);
    EXPECT_EQ(ork_serv_malloc(100, 48), nullptr);
    EXPECT_EQ(ork_serv_calloc(huge / 2, 3, 64, 0), nullptr);
    EXPECT_EQ(ork_serv_allocate(huge, 64), nullptr);
    EXPECT_EQ(ork_serv_allocate(huge / 4, 4096), nullptr);
    EXPECT_EQ(ork_serv_allocate(100, 48), nullptr);
    EXPECT_EQ(ork_serv_check_ptr_and_warn("usable", "some routine"), 0);
    const ChildResult child = run_child([] { return ork_serv_check_ptr_and_warn(nullptr, "some routine") - 1; });
    EXPECT_TRUE(child.ok());
    EXPECT_EQ(child.err, "ork: some routine: out of memory\n");
}

TEST(Buffers, AreAlignedWholeAndKeptForTheNextCall)
{
    ork_free_buffers();
    for (size_t alignment : {1, 64, 512, 4096, 65536, 4 << 20})
        for (size_t size :
             {size_t{0}, size_t{100}, size_t{65536 - 64}, size_t{65536}, size_t{1'300'512}, size_t{10'240'512}}) {
            auto* first = static_cast<char*>(ork_serv_allocate(size, alignment));
            ASSERT_TRUE(first != nullptr && aligned(first, alignment)) << size << " " << alignment;
            std::memset(first, 1, size);
            ork_serv_deallocate(first);
            auto* again = static_cast<char*>(ork_serv_allocate(size, alignment));
            EXPECT_EQ(again, first) << size << " " << alignment;
            if (size > 0) {
                EXPECT_EQ(again[size - 1], 1) << "fresh memory";
            }
            ork_serv_deallocate(again);
        }
    ork_serv_deallocate(nullptr);
}

TEST(Buffers, KeepNoMoreThanTheyMay)
{
    if (sanitized) GTEST_SKIP() << "their own memory comes and goes";
    ork_free_buffers();
    const long before = resident_kib();
    std::vector<void*> buffers;
    for (int i = 0; i < 40; ++i) {
        buffers.push_back(ork_serv_allocate(5 << 20, 64));
        std::memset(buffers.back(), 1, 5 << 20);
    }
    for (void* buffer : buffers) ork_serv_deallocate(buffer);
    EXPECT_LT(resident_kib() - before, 70 << 10);
    // The cache is full of one size: others find room in it still, and one that is too large to be kept drives none
    // out.
    const auto mark = [](size_t size) {
        auto* buffer = static_cast<char*>(ork_serv_allocate(size, 64));
        buffer[size / 2] = 77;
        ork_serv_deallocate(buffer);
    };
    const auto marked = [](size_t size) {
        auto* buffer = static_cast<char*>(ork_serv_allocate(size, 64));
        const bool kept = buffer[size / 2] == 77;
        ork_serv_deallocate(buffer);
        return kept;
    };
    for (size_t size : {100'000, 3'000'000, 30'000'000}) {
        mark(size);
        EXPECT_TRUE(marked(size)) << size;
    }
    mark(100 << 20);
    EXPECT_TRUE(marked(30'000'000));

    ork_free_buffers();
    EXPECT_LT(resident_kib() - before, 2 << 10);
}

TEST(Buffers, FailWithNullAndGiveUpWhatIsKeptBefore)
{
    if (sanitized) GTEST_SKIP() << "sanitizers need the address space";
    const ChildResult child = run_child([] {
        std::vector<void*> live;
        for (int i = 0; i < 12; ++i) live.push_back(ork_serv_allocate(4 << 20, 64));
        long pages;
        std::ifstream("/proc/self/statm") >> pages;
        ScopedLimit limit(RLIMIT_AS, static_cast<rlim_t>(pages) * 4096 + (1 << 20));
        if (ork_serv_allocate(8 << 20, 64) != nullptr) return 1;
        for (void* buffer : live) ork_serv_deallocate(buffer);
        return ork_serv_allocate(40 << 20, 64) != nullptr ? 0 : 2; // there is room once the kept ones are unmapped
    });
    EXPECT_TRUE(child.ok()) << child.describe();
}

// Nobody else writes into a live buffer, whoever gave it back before.
TEST(Buffers, BelongToOneThreadAtATime)
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            std::minstd_rand random(t + 1);
            for (int round = 0; round < 20'000; ++round) {
                const size_t count = 1 + random() % 2000; // all of one size, so all want the same ones
                auto* buffer = static_cast<unsigned*>(ork_serv_allocate(count * 4, 64));
                for (size_t i = 0; i < count; i += 500) buffer[i] = t << 20 | round;
                buffer[count - 1] = t << 20 | round;
                std::this_thread::yield();
                for (size_t i = 0; i < count; i += 500) wrong += buffer[i] != static_cast<unsigned>(t << 20 | round);
                wrong += buffer[count - 1] != static_cast<unsigned>(t << 20 | round);
                ork_serv_deallocate(buffer);
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// Solvers and threads: those of the library, and several of the application.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "box.h"
#include "ork/ork.h"

namespace ork::test {
namespace {

template <class R>
class Threads : public testing::Test {
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Threads, Precisions);

TYPED_TEST(Threads, DontChangeBits)
{
    using R = TypeParam;
    for (const std::string sides : {"DDDD", "NDPP", "PPNN", "DDNNPP"}) {
        std::vector<int64_t> n = {201, 180};
        if (sides.size() == 6) n = {60, 50, 40};
        std::vector<R> first;
        for (int threads = 1; threads <= 3; ++threads) {
            ork_set_num_threads(threads);
            Box<R> box(n, sides, 1);
            box.randomize(11);
            ASSERT_EQ(box.commit(), 0);
            EXPECT_EQ(box.ipar[ORK_PDE_THREADS], threads);
            ASSERT_EQ(box.solve(), 0);
            if (threads == 1) first = box.f;
            EXPECT_EQ(0, std::memcmp(first.data(), box.f.data(), first.size() * sizeof(R))) << sides << threads;
        }
        ork_set_num_threads(0);
    }
}

// One commit, several threads of the application, each with its own arrays.
TEST(CallersThreads, SolveWithOneCommit)
{
    Box<double> box({64, 50}, "PPND", 1);
    box.randomize(2);
    const auto g = box.f;
    ASSERT_EQ(box.commit(), 0);
    constexpr int callers = 4;
    std::vector<double> solutions[callers];
    std::vector<std::thread> threads;
    for (auto& u : solutions)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                u = g;
                std::vector<int64_t> ipar(box.ipar, box.ipar + ORK_PDE_INTEGERS);
                auto rpar = box.rpar;
                if (box.solve(u.data(), ipar.data(), rpar.data()) != 0) u.clear();
            }
        });
    for (auto& thread : threads) thread.join();
    ASSERT_EQ(box.solve(), 0);
    for (auto& u : solutions) EXPECT_EQ(u, box.f);
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// ork/conv.h as applications use it: results, a fixed x, the method left open, copies, threads, texts.
#include <atomic>
#include <climits>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ork/abi/conv.h"
#include "ork/ork.h"
#include "support/compare.h"
#include "support/process.h"
#include "task.h"

namespace ork::test {
namespace {

TEST(ConvProgram, ExamplesOfTheHeader)
{
    const ChildResult result = run_program({ORK_CONV_PROGRAM});
    EXPECT_TRUE(result.ok()) << result.describe();
}

template <class T>
class ConvInterface : public testing::Test {
};
using Elements = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(ConvInterface, Elements);

TYPED_TEST(ConvInterface, EveryJobAndMode)
{
    using T = TypeParam;
    for (const auto& [x, y] : std::vector<std::pair<Ints, Ints>>{{{40}, {7}}, {{5}, {300}}, {{9, 4}, {6, 5}}})
        for (const std::int32_t job : {ORK_CONV_CONVOLUTION, ORK_CONV_CORRELATION})
            for (const std::int32_t mode : {ORK_CONV_AUTO, ORK_CONV_DIRECT, ORK_CONV_FFT}) {
                SCOPED_TRACE(testing::Message() << job << ' ' << mode << ' ' << x.size());
                Task<T> task(job, mode, x, y);
                std::vector<T> z(task.outputs()), again(z), of_copy(z);
                ASSERT_EQ(task.exec(z.data()), 0);
                expect_near<T>(z, task.expected(), 100);
                ASSERT_EQ(ork_conv_execx(task.p, task.y.data(), nullptr, again.data(), nullptr), 0);
                ork_conv_task* copy = nullptr;
                ASSERT_EQ(ork_conv_copytask(&copy, task.p), 0);
                ASSERT_EQ(ork_conv_execx(copy, task.y.data(), nullptr, of_copy.data(), nullptr), 0);
                EXPECT_EQ(ork_conv_deletetask(&copy), 0);
                EXPECT_EQ(again, z);
                EXPECT_EQ(of_copy, z);
            }
}

// What is kept of a fixed x is made at the first run and anew after an edit.
TEST(ConvInterfaceTask, AFixedXIsReadAtTheFirstRun)
{
    Task<double> task(ORK_CONV_CONVOLUTION, ORK_CONV_FFT, {300}, {200});
    std::vector<double> z(task.outputs()), first(z);
    const auto run = [&](std::vector<double>& to) {
        return ork_conv_execx(task.p, task.y.data(), nullptr, to.data(), nullptr);
    };
    ASSERT_EQ(run(first), 0);
    task.x.assign(300, 0);
    task.x[0] = 1;
    const std::int32_t four = 4;
    ASSERT_EQ(ork_conv_edittask(task.p, ORK_CONV_PARAMETER_4, &four), 0);
    ASSERT_EQ(run(z), 0);
    expect_near<double>(z, task.expected(), 100);
    EXPECT_NE(z, first);
}

TEST(ConvInterfaceTask, TheMethodIsChosenWhereItIsLeftOpen)
{
    Task<double> small(ORK_CONV_CONVOLUTION, ORK_CONV_AUTO, {30}, {3}),
        large(ORK_CONV_CORRELATION, ORK_CONV_AUTO, {20000}, {20000});
    const auto mode_after_run = [](Task<double>& task) {
        std::vector<double> z(task.outputs());
        EXPECT_EQ(task.exec(z.data()), 0);
        return task.p->mode;
    };
    EXPECT_EQ(mode_after_run(small), ORK_CONV_DIRECT);
    EXPECT_EQ(mode_after_run(large), ORK_CONV_FFT);
    const std::int32_t fft = ORK_CONV_FFT, automatic = ORK_CONV_AUTO;
    ASSERT_EQ(ork_conv_edittask(small.p, ORK_CONV_MODE, &fft), 0);
    EXPECT_EQ(mode_after_run(small), ORK_CONV_FFT);
    ASSERT_EQ(ork_conv_edittask(small.p, ORK_CONV_MODE, &automatic), 0);
    EXPECT_EQ(mode_after_run(small), ORK_CONV_DIRECT);
}

// Also with the threads of the library itself, and the same bits for every number of them.
TEST(ConvInterfaceTask, ManyThreadsRunOneTask)
{
    for (const Ints& shape : {Ints{3000}, Ints{60, 50}})
        for (const std::int32_t mode : {ORK_CONV_DIRECT, ORK_CONV_FFT}) {
            Task<double> task(ORK_CONV_CORRELATION, mode, shape, shape);
            constexpr int callers = 16;
            const std::size_t count = task.outputs();
            std::vector<std::vector<double>> ys(callers), want(callers, std::vector<double>(count)), got(want);
            const int before = ork_set_num_threads_local(1);
            for (int t = 0; t < callers; ++t) {
                ys[t] = uniform_values<double>(static_cast<std::int64_t>(task.y.size()), 10 + t);
                ASSERT_EQ(ork_conv_execx(task.p, ys[t].data(), nullptr, want[t].data(), nullptr), 0);
            }
            ork_set_num_threads_local(before);
            Task<double> shared(ORK_CONV_CORRELATION, mode, shape, shape);
            std::atomic<int> failures = 0;
            ASSERT_EQ(shared.exec(got[0].data()), 0); // the first run
            std::vector<std::thread> threads;
            for (int t = 0; t < callers; ++t)
                threads.emplace_back([&, t] {
                    ork_set_num_threads_local(1 + t % 4);
                    const double* const y = ys[t].data();
                    double* const z = got[t].data();
                    failures += t % 2 == 0
                                    ? ork_conv_execx(shared.p, y, nullptr, z, nullptr) != 0
                                    : ork_conv_exec(shared.p, shared.x.data(), nullptr, y, nullptr, z, nullptr) != 0;
                });
            for (std::thread& thread : threads) thread.join();
            EXPECT_EQ(failures, 0);
            for (int t = 0; t < callers; ++t) EXPECT_EQ(got[t], want[t]) << t;
        }
}

TEST(ConvInterfaceTask, EveryStatusHasAText)
{
    std::set<std::string> texts;
    for (const std::int32_t status :
         {0, -4, -5, -2000, -2001, -2211, -2212, -2302, -2303, -2311, -2312, -2313, -2323, -2331, -2332, -2333, 1})
        texts.insert(ork_conv_status_text(status));
    EXPECT_EQ(texts.size(), 17u);
    EXPECT_STREQ(ork_conv_status_text(INT_MIN), ork_conv_status_text(1));
}

TEST(ConvInterfaceTask, NullsAndBadEdits)
{
    const std::int32_t n = 3;
    ork_conv_task* task = nullptr;
    EXPECT_EQ(ork_conv_newtask(nullptr, 1, 0, 0, 1, 2, 1, &n, &n, &n), ORK_CONV_NULL);
    EXPECT_EQ(ork_conv_newtaskx(&task, 1, 0, 0, 1, 2, 1, &n, &n, nullptr, &n, nullptr), ORK_CONV_NULL);
    EXPECT_EQ(ork_conv_edittask(nullptr, ORK_CONV_MODE, &n), ORK_CONV_NULL);
    EXPECT_EQ(ork_conv_exec(nullptr, &n, nullptr, &n, nullptr, &task, nullptr), ORK_CONV_NULL);
    EXPECT_EQ(ork_conv_execx(nullptr, &n, nullptr, &task, nullptr), ORK_CONV_NULL);
    EXPECT_EQ(ork_conv_copytask(&task, nullptr), ORK_CONV_NULL);
    EXPECT_EQ(ork_conv_deletetask(&task), ORK_CONV_NULL);
    ASSERT_EQ(ork_conv_newtask(&task, 1, 0, 0, 1, 2, 1, &n, &n, &n), 0);
    double a[3] = {1, 2, 3}, z[3];
    EXPECT_EQ(ork_conv_edittask(task, ORK_CONV_MODE, nullptr), ORK_CONV_BAD_EDIT);
    EXPECT_EQ(ork_conv_exec(task, a, nullptr, a, nullptr, z, nullptr), ORK_CONV_BAD_EDIT);
    EXPECT_EQ(ork_conv_deletetask(&task), 0);
    EXPECT_EQ(task, nullptr);
    ASSERT_EQ(ork_conv_newtask(&task, 1, 0, 0, 1, 2, 1, &n, &n, &n), 0);
    EXPECT_EQ(ork_conv_execx(task, a, nullptr, z, nullptr), ORK_CONV_NULL_X) << "no fixed x";
    EXPECT_EQ(ork_conv_exec(task, a, nullptr, a, nullptr, z, nullptr), 0);
    EXPECT_EQ(ork_conv_deletetask(&task), 0);
}

} // namespace
} // namespace ork::test

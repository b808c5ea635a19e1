// SPDX-License-Identifier: MIT
// When memory runs out, at any point: a status, nothing lost, and a task that works afterwards. This program's
// allocation routines stand before the C library's and fail when told.
#include <climits>

#include <gtest/gtest.h>

#include "ork/ork.h"
#include "support/compare.h"
#include "support/failing_memory.h"
#include "support/process.h"
#include "task.h"

namespace ork::test {
namespace {

// Runs the call with memory for 0, 1, ... allocations until it succeeds without a failed one.
template <class Call>
int times_failed(Call call)
{
    for (int n = 1; n < 1000; ++n) {
        allocations = 0, fail_at = n, counting = true;
        const std::int32_t status = call();
        counting = false;
        if (allocations < n) {
            EXPECT_EQ(status, 0);
            return n - 1;
        }
        EXPECT_TRUE(status == ORK_CONV_NO_WORK_MEMORY || status == ORK_CONV_NO_TASK_MEMORY || status == 0) << status;
    }
    ADD_FAILURE() << "it never succeeds";
    return 0;
}

TEST(ConvMemory, MayRunOutAtAnyPoint)
{
    if (sanitized) GTEST_SKIP() << "the sanitizer's allocation routines can't be stood before";
    const int before = ork_set_num_threads_local(1); // what other threads allocate is not counted
    ork_conv_task* task = nullptr;
    EXPECT_GT(times_failed([&] {
                  const std::int32_t n = 1;
                  task = nullptr;
                  const auto status = ork_conv_newtask(&task, 1, 0, 0, 1, 2, 1, &n, &n, &n);
                  EXPECT_EQ(task == nullptr, status != 0);
                  return status;
              }),
              0);
    ork_conv_task* copy = nullptr;
    EXPECT_GT(times_failed([&] { return ork_conv_copytask(&copy, task); }), 0);
    ork_conv_deletetask(&copy);
    ork_conv_deletetask(&task);

    for (const std::int32_t mode : {ORK_CONV_DIRECT, ORK_CONV_FFT})
        for (const auto& [nx, ny] :
             std::vector<std::pair<Ints, Ints>>{{{500}, {400}}, {{20}, {3000}}, {{9, 40}, {30, 5}}, {{40000}, {11}}})
            for (const bool fixed_x : {false, true}) {
                SCOPED_TRACE(testing::Message() << mode << ' ' << nx.size() << ' ' << nx[0] << ' ' << fixed_x);
                Task<float> t(ORK_CONV_CORRELATION, mode, nx, ny);
                std::vector<float> z(t.outputs());
                const int failures = times_failed([&] {
                    ork_free_buffers();
                    return fixed_x ? ork_conv_execx(t.p, t.y.data(), nullptr, z.data(), nullptr) : t.exec(z.data());
                });
                if (mode == ORK_CONV_FFT) {
                    EXPECT_GT(failures, 0);
                }
                expect_near<float>(z, t.expected(), 100);
            }
    ork_set_num_threads_local(before);
}

// One element in memory, by strides of 0, and extents beyond all memory: refused, unless the one sum is seen.
TEST(ConvMemory, ExtentsBeyondAllMemory)
{
    const Ints huge(7, INT_MAX), one(7, 1), zero(7, 0);
    for (const std::int32_t job : {ORK_CONV_CONVOLUTION, ORK_CONV_CORRELATION})
        for (const std::int32_t dims : {2, 7}) {
            ork_conv_task* task = nullptr;
            ASSERT_EQ(ork_conv_newtask(&task, job, 0, ORK_CONV_FFT, 1, 2, dims, huge.data(), huge.data(), one.data()),
                      0);
            const double x = 1, y = 1;
            double z = 7;
            const std::int32_t status = ork_conv_exec(task, &x, zero.data(), &y, zero.data(), &z, nullptr);
            EXPECT_TRUE(status == 0 ? z == 1 : status == ORK_CONV_NO_WORK_MEMORY && z == 7) << status << ' ' << z;
            EXPECT_EQ(ork_conv_deletetask(&task), 0);
        }
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// When memory runs out, at any point: statuses, and descriptors that work afterwards. This program's allocation
// routines stand before the C library's and fail when told.
#include <gtest/gtest.h>

#include "model.h"
#include "ork/ork.h"
#include "support/failing_memory.h"
#include "support/process.h"

namespace ork::test {

namespace {

// Runs the call with no memory from its 1st, 2nd, ... allocation on until one run has no more; checks each status.
template <class Call, class After>
int fail_each(Call call, After after)
{
    for (int n = 1;; ++n) {
        allocations = 0;
        fail_at = n;
        counting = true;
        const std::int64_t status = call();
        counting = false;
        const bool failed = allocations >= n;
        if (failed) {
            EXPECT_TRUE(status == ORK_DFT_MEMORY_ERROR || status == ORK_DFT_NO_ERROR) << status << " at " << n;
        } else {
            EXPECT_EQ(status, 0);
        }
        after(status);
        if (!failed || n > 1000) return n - 1;
    }
}

class DftMemory : public testing::Test {
protected:
    void SetUp() override
    {
        if (sanitized) GTEST_SKIP() << "the sanitizer's allocation routines can't be stood before";
    }
};

TEST_F(DftMemory, CreationThatFailsLeavesANullHandle)
{
    ork_dft_descriptor* d = nullptr;
    const std::int64_t n[] = {3, 4, 5};
    const int points =
        fail_each([&] { return ork_dft_create_descriptor(&d, ORK_DFT_DOUBLE, ORK_DFT_REAL, 3, n); },
                  [&](std::int64_t status) {
                      if (status != 0) {
                          EXPECT_EQ(d, nullptr);
                          EXPECT_STREQ(ork_dft_descriptor_message(nullptr), "no memory for a descriptor");
                      } else {
                          EXPECT_EQ(ork_dft_free_descriptor(&d), 0);
                      }
                  });
    EXPECT_GT(points, 0);
}

TEST_F(DftMemory, ACommitThatFailedCanBeRepeated)
{
    for (const int domain : {ORK_DFT_COMPLEX, ORK_DFT_REAL})
        for (const Integers& n : {Integers{48}, {100}, {1 << 14}, {101}, {30, 70}}) {
            SCOPED_TRACE(testing::Message() << n[0] << (domain == ORK_DFT_REAL ? " real" : ""));
            Descriptor d(ORK_DFT_DOUBLE, domain, n);
            std::vector<double> x(std::size_t(2 * product(n) + 2 * n.back()), 1.0);
            const int points = fail_each([&] { return ork_dft_commit_descriptor(d); },
                                         [&](std::int64_t status) {
                                             if (status == 0) {
                                                 d.set(ORK_DFT_WORKSPACE, ORK_DFT_ALLOW); // to commit anew
                                                 return;
                                             }
                                             EXPECT_STREQ(ork_dft_descriptor_message(d), "no memory, at the commit");
                                             EXPECT_EQ(ork_dft_forward(d, x.data()), ORK_DFT_BAD_DESCRIPTOR);
                                         });
            EXPECT_GT(points, 0);
            d.commit();
            EXPECT_EQ(ork_dft_forward(d, x.data()), 0);
            EXPECT_NEAR(x[0], double(product(n)), 1e-9);
        }
}

TEST_F(DftMemory, AComputationThatFailsSaysSo)
{
    for (const int workspace : {ORK_DFT_ALLOW, ORK_DFT_AVOID}) {
        Descriptor d(ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, {1 << 15});
        d.set(ORK_DFT_WORKSPACE, workspace).commit();
        std::vector<double> x(2 << 15);
        for (const int threads : {1, 2}) {
            const int before = ork_set_num_threads_local(threads);
            const int points = fail_each(
                [&] {
                    std::fill(x.begin(), x.end(), 1.0);
                    ork_free_buffers();
                    return ork_dft_forward(d, x.data());
                },
                [&](std::int64_t status) {
                    if (status == 0) {
                        EXPECT_NEAR(x[0], 1 << 15, 1e-6);
                    }
                });
            EXPECT_GT(points, 0) << workspace << ", threads " << threads;
            ork_set_num_threads_local(before);
        }
    }
}

} // namespace

} // namespace ork::test

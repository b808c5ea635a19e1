// SPDX-License-Identifier: MIT
// Many threads at once: each makes and ends handles of its own while all apply one that they share, and a handle that
// one thread destroyed is refused in all, whoever has its place by then.
#include <atomic>
#include <thread>

#include "ork/ork.h"
#include "stored.h"

namespace ork::test {
namespace {

using Int = std::int64_t;
using T = double;

TEST(SparseThreads, ShareHandlesAndMakeTheirOwn)
{
    constexpr int threads = 8, rounds = 400;
    Random random(3);
    const Stored<Int, T> stored({Format::csr, 300, 300}, random);
    const Handle shared(stored);
    ASSERT_EQ(ork_sparse_set_mv_hint(shared, ORK_SPBLAS_NO_TRANS, general_kind, 10000), 0);
    ASSERT_EQ(ork_sparse_optimize(shared), 0);
    const std::vector<T> x = small_integers<T>(random, 300);
    const auto multiply = [&](ork_sparse_matrix_t a) {
        std::vector<T> y(300, -1);
        const auto status = ork_sparse_d_mm(ORK_SPBLAS_NO_TRANS, 1.0, a, general_kind, ORK_SPBLAS_COL_MAJOR, x.data(),
                                            1, 300, 0.0, y.data(), 300);
        const auto same = ork_sparse_d_mv(ORK_SPBLAS_NO_TRANS, -1.0, a, general_kind, x.data(), 1.0, y.data());
        return status == 0 && same == 0 && y == std::vector<T>(300, 0);
    };
    ASSERT_TRUE(multiply(shared));
    std::atomic<ork_sparse_matrix_t> last_dead = nullptr;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> all;
    for (int t = 0; t < threads; ++t)
        all.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                ork_sparse_matrix_t own = nullptr, copy = nullptr;
                if (stored.create(&own) != 0 || ork_sparse_copy(own, &copy) != 0) ++wrong;
                if (!multiply(shared) || !multiply(copy)) ++wrong;
                if (ork_sparse_destroy(own) != 0) ++wrong;
                const ork_sparse_matrix_t dead = last_dead.exchange(own);
                for (const ork_sparse_matrix_t handle : {own, dead})
                    if (handle != nullptr && ork_sparse_optimize(handle) != ORK_SPARSE_NOT_A_HANDLE) ++wrong;
                if (ork_sparse_destroy(copy) != 0) ++wrong;
            }
        });
    for (std::thread& thread : all) thread.join();
    EXPECT_EQ(wrong, 0);
}

// One of many threads that destroy the same handle succeeds.
TEST(SparseThreads, DestroyOnce)
{
    Random random(4);
    const Stored<Int, T> stored({Format::csr, 5, 5}, random);
    for (int round = 0; round < 200; ++round) {
        ork_sparse_matrix_t a = nullptr;
        ASSERT_EQ(stored.create(&a), 0);
        std::atomic<int> destroyed = 0;
        std::vector<std::thread> all;
        for (int t = 0; t < 4; ++t)
            all.emplace_back([&] {
                if (ork_sparse_destroy(a) == 0) ++destroyed;
            });
        for (std::thread& thread : all) thread.join();
        ASSERT_EQ(destroyed, 1);
    }
}

// More handles than the table begins with room for.
TEST(SparseThreads, KeepManyHandles)
{
    Random random(5);
    const Stored<Int, T> stored({Format::coo, 2, 2}, random);
    std::vector<ork_sparse_matrix_t> handles(5000);
    for (auto& a : handles) ASSERT_EQ(stored.create(&a), 0);
    std::sort(handles.begin(), handles.end());
    EXPECT_EQ(std::unique(handles.begin(), handles.end()), handles.end());
    for (const auto a : handles) ASSERT_EQ(ork_sparse_destroy(a), 0);
    for (const auto a : handles) ASSERT_EQ(ork_sparse_destroy(a), ORK_SPARSE_NOT_A_HANDLE);
}

} // namespace
} // namespace ork::test

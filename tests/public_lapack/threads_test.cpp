// SPDX-License-Identifier: MIT
// Results don't depend on the number of threads, nor on who else is calling.
#include <thread>

#include "lapack.h"
#include "ork/ork.h"

namespace ork::test {

namespace {

void run_parts(void*, int count, ork_part work, void* context)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back([=] { work(context, i); });
    for (auto& t : threads) t.join();
}

// The bits of everything there is, of one size.
template <class T>
std::vector<T> everything(std::int64_t n)
{
    std::vector<T> bits;
    const auto keep = [&](const Dense<T>& m) { bits.insert(bits.end(), m.values.begin(), m.values.end()); };
    const auto a = random_matrix<T>(n, n + 20), b = random_matrix<T>(n, 90), p = positive_matrix<T>(n);
    std::vector<std::int64_t> ipiv(n);
    std::vector<T> tau(n), work(n + 20);

    Dense<T> f = a, x = b;
    lapack<T>("getrf", n, n + 20, f.data(), f.lead, ipiv.data());
    keep(f);
    lapack<T>("getrs", 'N', n, 90, f.data(), f.lead, ipiv.data(), x.data(), x.lead);
    lapack<T>("getrs", 'C', n, 90, f.data(), f.lead, ipiv.data(), x.data(), x.lead);
    keep(x);
    lapack<T>("getri", n, f.data(), f.lead, ipiv.data(), work.data(), n);
    keep(f);
    f = a;
    lapack<T>("geqrf", n, n + 20, f.data(), f.lead, tau.data(), work.data(), n + 20);
    keep(f);
    for (const char side : {'L', 'R'}) {
        Dense<T> c = random_matrix<T>(n, n);
        lapack<T>(orthogonal<T>("mqr"), side, adjoint<T>, n, n, n, f.data(), f.lead, tau.data(), c.data(), c.lead,
                  work.data(), n);
        keep(c);
    }
    lapack<T>(orthogonal<T>("gqr"), n, n, n, f.data(), f.lead, tau.data(), work.data(), n);
    keep(f);
    for (const char uplo : {'U', 'L'}) {
        f = p;
        x = b;
        lapack<T>("posv", uplo, n, 90, f.data(), f.lead, x.data(), x.lead);
        keep(f);
        keep(x);
        lapack<T>("potri", uplo, n, f.data(), f.lead);
        keep(f);
    }
    return bits;
}

template <class T>
class LapackThreads : public testing::Test {
protected:
    ~LapackThreads() override
    {
        ork_set_parallel_backend(nullptr, nullptr);
        ork_set_num_threads_local(0);
        ork_set_num_threads(0);
    }
};
TYPED_TEST_SUITE(LapackThreads, Precisions, PrecisionNames);

TYPED_TEST(LapackThreads, NumberChangesNoBit)
{
    for (const std::int64_t n : {150, 433}) {
        ork_set_num_threads_local(1);
        const auto want = everything<TypeParam>(n);
        ork_set_parallel_backend(run_parts, nullptr);
        for (const int threads : {2, 3, 5}) {
            ork_set_num_threads_local(threads);
            EXPECT_TRUE(same_bits(everything<TypeParam>(n), want)) << n << " with " << threads;
        }
        ork_set_parallel_backend(nullptr, nullptr);
    }
}

TYPED_TEST(LapackThreads, ConcurrentCallersGetTheirOwnResults)
{
    const std::int64_t n = 120;
    ork_set_num_threads_local(1);
    const auto want = everything<TypeParam>(n);
    ork_set_num_threads_local(0);
    ork_set_num_threads(2);
    std::vector<char> same(8);
    std::vector<std::thread> callers;
    for (char& s : same) callers.emplace_back([&] { s = same_bits(everything<TypeParam>(n), want); });
    for (auto& caller : callers) caller.join();
    EXPECT_EQ(same, std::vector<char>(8, 1));
}

} // namespace

} // namespace ork::test

// SPDX-License-Identifier: MIT
// dgemm as applications call it: quick returns, and threads that change no bit.

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "ork/blas.h"
#include "ork/ork.h"
#include "support/compare.h"
#include "support/process.h"
#include "support/random.h"

namespace ork::test {

namespace {

using Values = std::vector<double>;

struct Shape {
    std::int64_t m, n, k;
};

std::ostream& operator<<(std::ostream& out, const Shape& s) { return out << s.m << " x " << s.n << " x " << s.k; }

// C of one multiply by columns, with padded leading dimensions.
struct Problem {
    char ta, tb;
    Shape s;
    double alpha = 0.75, beta = -0.5;
    std::int64_t lda, ldb, ldc;
    Values a, b, c;

    Problem(char ta, char tb, Shape s, std::uint64_t seed = 1) : ta(ta), tb(tb), s(s)
    {
        lda = (ta == 'N' ? s.m : s.k) + 3, ldb = (tb == 'N' ? s.k : s.n) + 2, ldc = s.m + 1;
        a = uniform_values<double>(lda * (ta == 'N' ? s.k : s.m) + 1, seed);
        b = uniform_values<double>(ldb * (tb == 'N' ? s.n : s.k) + 1, seed + 1);
        c = uniform_values<double>(ldc * s.n + 1, seed + 2);
    }

    Values run() const
    {
        Values result = c;
        dgemm_64_(&ta, &tb, &s.m, &s.n, &s.k, &alpha, a.data(), &lda, b.data(), &ldb, &beta, result.data(), &ldc);
        return result;
    }
};

class ThreadCount {
public:
    explicit ThreadCount(int threads) : before_(ork_set_num_threads_local(threads)) {}
    ~ThreadCount() { ork_set_num_threads_local(before_); }

private:
    int before_;
};

Values serial(const Problem& p)
{
    const ThreadCount one(1);
    return p.run();
}

// What the quick returns leave alone holds NaN or is no memory at all.
TEST(Dgemm, ReadsNothingThatDoesNotCount)
{
    const double nan = NAN, one = 1, zero = 0, two = 2;
    const std::int64_t none = 0, n = 3;
    double c[9];
    const auto fill = [&](double value) { std::fill(c, c + 9, value); };
    const auto all = [&](double value) { return std::all_of(c, c + 9, [=](double x) { return same_bits(x, value); }); };
    const double poison[9] = {nan, nan, nan, nan, nan, nan, nan, nan, nan};

    fill(5);
    dgemm_64_("N", "N", &n, &n, &n, &zero, poison, &n, poison, &n, &one, c, &n);
    EXPECT_TRUE(all(5)) << "alpha 0, beta 1";
    dgemm_64_("N", "N", &n, &n, &none, &one, poison, &n, poison, &n, &one, c, &n);
    EXPECT_TRUE(all(5)) << "k 0, beta 1";
    dgemm_64_("N", "N", &n, &n, &none, &one, nullptr, &n, nullptr, &n, &two, c, &n);
    EXPECT_TRUE(all(10)) << "k 0, beta 2";
    dgemm_64_("N", "N", &none, &n, &n, &one, nullptr, &n, nullptr, &n, &zero, nullptr, &n);
    dgemm_64_("N", "N", &n, &none, &n, &one, nullptr, &n, nullptr, &n, &zero, nullptr, &n);
    fill(nan);
    dgemm_64_("N", "N", &n, &n, &n, &zero, poison, &n, poison, &n, &zero, c, &n);
    EXPECT_TRUE(all(0)) << "alpha 0, beta 0";
    fill(nan);
    const double ones[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
    dgemm_64_("N", "T", &n, &n, &n, &two, ones, &n, ones, &n, &zero, c, &n);
    EXPECT_TRUE(all(6)) << "beta 0";
}

// Odd sizes, thin ones in all three directions, and a depth of several blocks.
constexpr Shape threaded_shapes[] = {{200, 200, 200}, {513, 129, 65}, {129, 513, 64},  {1, 3000, 700}, {3000, 1, 700},
                                     {2, 5000, 100},  {64, 64, 4001}, {1000, 1000, 4}, {97, 101, 600}, {7, 9, 30000}};

TEST(Dgemm, ThreadsChangeNoBit)
{
    for (const Shape s : threaded_shapes)
        for (const auto& [ta, tb] : {std::pair{'N', 'N'}, {'T', 'N'}, {'N', 'T'}, {'T', 'T'}}) {
            const Problem p(ta, tb, s);
            const Values want = serial(p);
            for (const int threads : {2, 3, 4}) {
                SCOPED_TRACE(testing::Message() << s << " " << ta << tb << " on " << threads);
                const ThreadCount some(threads);
                expect_same_bits<double>(p.run(), want, static_cast<std::int64_t>(want.size()));
            }
        }
}

TEST(Dgemm, UsesThreadsForLargeProblemsOnly)
{
    static std::atomic<int> parts;
    ork_set_parallel_backend(
        [](void*, int count, ork_part work, void* context) {
            parts = count;
            for (int i = 0; i < count; ++i) work(context, i);
        },
        nullptr);
    for (const int threads : {2, 3, 4, 6, 7}) {
        const ThreadCount some(threads);
        parts = 0;
        const Problem large('N', 'T', {600, 500, 40});
        (void)large.run();
        EXPECT_GE(parts, 2) << threads;
        EXPECT_LE(parts, threads);
        parts = 0;
        const Problem small('N', 'N', {20, 20, 20});
        (void)small.run();
        EXPECT_EQ(parts, 0);
    }
    ork_set_parallel_backend(nullptr, nullptr);
}

TEST(Dgemm, ConcurrentCallersGetTheSerialBits)
{
    constexpr int callers = 8;
    std::vector<Problem> problems;
    std::vector<Values> wanted;
    for (int i = 0; i < callers; ++i) {
        problems.emplace_back(
            "NT"[i % 2], "NT" [i / 2 % 2], Shape { 60 + 31 * i, 150 - 11 * i, 90 + 40 * i }, i);
        wanted.push_back(serial(problems.back()));
    }
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int caller = 0; caller < callers; ++caller)
        threads.emplace_back([&, caller] {
            for (int round = 0; round < 20; ++round) {
                const int i = (caller + round) % callers;
                const Values got = problems[i].run();
                wrong += std::memcmp(got.data(), wanted[i].data(), got.size() * sizeof got[0]) != 0;
            }
        });
    for (auto& t : threads) t.join();
    EXPECT_EQ(wrong, 0);
}

TEST(Dgemm, WorksOnBothSidesOfAFork)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer lets no child of a threaded process start threads";
#endif
    const Problem p('N', 'N', {150, 160, 170});
    const Values want = serial(p);
    const ThreadCount two(2);
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(p.run(), want);
        const ChildResult child = run_child([&] { return p.run() == want && p.run() == want ? 0 : 1; });
        EXPECT_TRUE(child.ok()) << child.describe();
        ASSERT_EQ(p.run(), want);
    }
}

} // namespace

} // namespace ork::test

// SPDX-License-Identifier: MIT
// ger, syr, syr2, her, her2: every bit of every element, what stays untouched, and the shares of threads.
#include "blas/level2_by_type.h"

namespace ork::test {
namespace {

constexpr int64_t edge_sizes[] = {63, 64, 65, 128, 129};
constexpr int64_t edge_increments[] = {1, 1, 2, -1, -3};

template <class T>
class Update : public testing::Test {
public:
    template <class Run>
    static void sizes(Run&& run)
    {
        Random random(4);
        const auto inc = [&] { return edge_increments[random.integer(0, 4)]; };
        const auto offset = [&] { return sizeof(Real<T>) * static_cast<std::size_t>(random.integer(0, 3)); };
        for (int64_t n = 0; n <= 41; ++n)
            for (const Guard side : both_guards)
                run(n, random.integer(0, 3), inc(), inc(), side, offset(), random.bits());
        for (const int64_t n : edge_sizes) run(n, n % 2, inc(), inc(), Guard::end, offset(), random.bits());
        run(1001, 0, -1, 2, Guard::end, 0, random.bits());
    }
};
TYPED_TEST_SUITE(Update, Precisions);

template <class T>
Vector<T> input(int64_t n, int64_t inc, Guard side, std::size_t offset, std::uint64_t seed)
{
    Vector<T> v(spread_values<T>(n, seed), inc, side, offset);
    v.read_only();
    return v;
}

TYPED_TEST(Update, GerAddsOneProductToEveryElement)
{
    using T = TypeParam;
    const T alpha = scalar<T>(0.7, -1.3);
    for (const bool conjugate : {false, true})
        this->sizes([&](int64_t m, int64_t pad, int64_t incx, int64_t incy, Guard side, std::size_t offset,
                        std::uint64_t seed) {
            const int64_t n = m > 100 ? 5 : static_cast<int64_t>(seed % 12);
            SCOPED_TRACE(testing::Message() << m << " x " << n << " pad " << pad << " increments " << incx << ' '
                                            << incy << " offset " << offset);
            const Vector<T> x = input<T>(m, incx, side, offset, seed), y = input<T>(n, incy, side, offset, seed + 1);
            Matrix<T> a(m, n, m + pad, side, offset);
            Random random(seed);
            a.fill([&] { return random.spread<T>(); });
            std::vector<T> want;
            for (int64_t j = 0; j < n; ++j)
                for (int64_t i = 0; i < m; ++i)
                    want.push_back(a(i, j) + times(x[i], times(alpha, conjugate ? conjugated(y[j]) : y[j])));
            (conjugate ? gerc<T> : ger<T>)(&m, &n, &alpha, x.data(), &incx, y.data(), &incy, a.data(), &a.ld());
            expect_same_bits<T>(a.values(), want, m * n);
            EXPECT_TRUE(a.padding_intact());
        });
}

// One of the two rank updates on a triangle; Hermitian for complex elements.
template <class T>
struct RankUpdate {
    bool two;
    char uplo;
    int64_t n;
    Vector<T> x, y;
    Triangular<T> a;
    T alpha = scalar<T>(0.7, -1.3);
    Real<T> real_alpha = Real<T>(-0.6);

    RankUpdate(bool rank2, char triangle, int64_t size, int64_t pad, int64_t incx, int64_t incy, Guard side,
               std::size_t offset, std::uint64_t seed)
        : two(rank2), uplo(triangle), n(size), x(input<T>(n, incx, side, offset, seed)),
          y(input<T>(n, incy, side, offset, seed + 1)), a(uplo, n, pad, side, offset, seed + 2)
    {
        if (is_complex<T>) a.hermitian_diagonal();
    }

    T wanted(int64_t i, int64_t j) const
    {
        T sum = a.a(i, j);
        if (!two) {
            sum = sum + times(x[i], times(real_alpha, conjugated(x[j])));
        } else {
            sum = sum + times(x[i], times(alpha, conjugated(y[j])));
            sum = sum + times(y[i], conjugated(times(alpha, x[j])));
        }
        return i == j ? scalar<T>(std::real(sum), 0) : sum;
    }
    std::vector<T> wanted() const
    {
        std::vector<T> all;
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < n; ++i) all.push_back(a.referenced(i, j) ? wanted(i, j) : a.a(i, j));
        return all;
    }

    void run()
    {
        if (two)
            syr2<T>(&uplo, &n, &alpha, x.data(), &x.inc(), y.data(), &y.inc(), a.a.data(), &a.a.ld());
        else
            syr<T>(&uplo, &n, &real_alpha, x.data(), &x.inc(), a.a.data(), &a.a.ld());
    }
    void run_share(int64_t first, int64_t last)
    {
        if constexpr (!is_complex<T>) {
            if (two)
                syr2_in_thread<T>(&first, &last, &uplo, &n, &alpha, x.data(), &x.inc(), y.data(), &y.inc(), a.a.data(),
                                  &a.a.ld());
            else
                syr_in_thread<T>(&first, &last, &uplo, &n, &real_alpha, x.data(), &x.inc(), a.a.data(), &a.a.ld());
        }
    }
};

TYPED_TEST(Update, RankUpdatesOfOneTriangle)
{
    using T = TypeParam;
    FreshCore core;
    for (const bool two : {false, true})
        for (const char uplo : {'U', 'L'})
            this->sizes([&](int64_t n, int64_t pad, int64_t incx, int64_t incy, Guard side, std::size_t offset,
                            std::uint64_t seed) {
                SCOPED_TRACE(testing::Message() << (two ? "rank 2 " : "rank 1 ") << uplo << " n " << n << " pad " << pad
                                                << " increments " << incx << ' ' << incy << " offset " << offset);
                RankUpdate<T> p(two, uplo, n, pad, incx, incy, side, offset, seed);
                const auto want = p.wanted();
                p.run();
                expect_same_bits<T>(p.a.a.values(), want, n * n);
                EXPECT_TRUE(p.a.a.padding_intact());
            });
}

TYPED_TEST(Update, SharesOfColumnsMakeTheWhole)
{
    using T = TypeParam;
    if (is_complex<T>) return;
    FreshCore core;
    for (const bool two : {false, true})
        for (const char uplo : {'U', 'L'})
            for (const int64_t inc : {1, -2})
                for (const int64_t n : {9, 40}) {
                    RankUpdate<T> whole(two, uplo, n, 1, inc, inc, Guard::end, 0, 3);
                    RankUpdate<T> shares(two, uplo, n, 1, inc, inc, Guard::end, 0, 3);
                    whole.run();
                    const int64_t cuts[] = {0, 1, 1, 4, n / 2 + 1, n};
                    for (int k = 5; k > 0; --k) shares.run_share(cuts[k - 1] + 1, cuts[k]);
                    expect_same_bits<T>(shares.a.a.values(), whole.a.a.values(), n * n);
                }
}

// Zeros are multiplied like everything else; alpha = 0 leaves all as it is and looks at nothing.
TYPED_TEST(Update, NanFollowsTheFormula)
{
    using T = TypeParam;
    FreshCore core;
    const T bad(quiet_nan<Real<T>>);
    for (const int64_t n : {3, 9, 24}) {
        std::vector<T> zeros(static_cast<std::size_t>(n)), values = zeros;
        values[static_cast<std::size_t>(n) / 2] = bad;
        const int64_t one = 1;
        Matrix<T> a(n, n, n);
        a.fill([] { return T{}; });
        const T alpha(1), none{};
        ger<T>(&n, &n, &none, values.data(), &one, values.data(), &one, a.data(), &n);
        EXPECT_TRUE(a.unchanged());
        ger<T>(&n, &n, &alpha, values.data(), &one, zeros.data(), &one, a.data(), &n);
        ger<T>(&n, &n, &alpha, zeros.data(), &one, values.data(), &one, a.data(), &n);
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < n; ++i) EXPECT_EQ(a(i, j) != a(i, j), i == n / 2 || j == n / 2) << i << ' ' << j;
        for (const bool two : {false, true})
            for (const char uplo : {'U', 'L'}) {
                RankUpdate<T> p(two, uplo, n, 0, 1, 1, Guard::end, 0, 3);
                p.alpha = none, p.real_alpha = 0;
                p.a.a.read_only();
                p.run();
                p.a.a.writable();
                p.alpha = T(1), p.real_alpha = 1;
                p.a.fill([] { return T{}; });
                p.x.writable(), p.y.writable();
                p.x.assign(values), p.y.assign(zeros);
                p.run();
                for (int64_t j = 0; j < n; ++j)
                    for (int64_t i = 0; i < n; ++i)
                        if (p.a.referenced(i, j)) {
                            EXPECT_EQ(std::isnan(std::real(p.a.a(i, j))), i == n / 2 || j == n / 2) << i << ' ' << j;
                        }
            }
    }
}

TYPED_TEST(Update, LeavesTheEnvironmentAloneOnASmallStack)
{
    using T = TypeParam;
    FreshCore core;
    for (const int64_t inc : {1, -2})
        for (const bool two : {false, true}) {
            RankUpdate<T> p(two, 'L', 37, 0, inc, inc, Guard::end, 0, 3);
            p.a.fill([] { return T(1); });
            core->reproducibility_queries = 0;
            EXPECT_TRUE(keeps_fp_environment([&] { p.run(); }, fp_inexact | fp_underflow | fp_denormal));
            run_on_small_stack(small_stack, [&] { p.run(); });
            EXPECT_EQ(core->reproducibility_queries > 0, two && !is_complex<T>);
            const int64_t n = 13;
            run_on_small_stack(small_stack, [&] {
                ger<T>(&p.n, &n, &p.alpha, p.x.data(), &p.x.inc(), p.y.data(), &p.y.inc(), p.a.a.data(), &p.a.a.ld());
            });
        }
    EXPECT_EQ(core->allocations, 0);
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// symv and hemv: accuracy against the reference, and bits that depend on the triangle, n and the values alone.
#include "blas/level2_by_type.h"

namespace ork::test {
namespace {

template <class T>
struct Symmetric {
    char uplo;
    int64_t n;
    Triangular<T> a;
    Vector<T> x, y;
    T alpha = scalar<T>(0.75, -0.5), beta = T(1);

    Symmetric(char triangle, int64_t size, int64_t pad = 0, int64_t incx = 1, int64_t incy = 1, Guard side = Guard::end,
              std::size_t offset = 0)
        : uplo(triangle), n(size), a(uplo, n, pad, side, offset, 5), x(spread_values<T>(n, 6), incx, side, offset),
          y(spread_values<T>(n, 7), incy, side, offset)
    {
        if (is_complex<T>) a.hermitian_diagonal();
        a.a.read_only(), x.read_only();
    }
    void run() { symv<T>(&uplo, &n, &alpha, a.a.data(), &a.a.ld(), x.data(), &x.inc(), &beta, y.data(), &y.inc()); }
    std::vector<Expected<quad>> expected() const
    {
        std::vector<Expected<quad>> want(static_cast<std::size_t>(n));
        for (int64_t i = 0; i < n; ++i) {
            auto& sum = want[static_cast<std::size_t>(i)];
            if (beta != T{}) sum.add(multiply<T>(Wide<quad>(beta), Wide<quad>(y[i])));
            for (int64_t j = 0; j < n; ++j)
                sum.add(multiply<T>(multiply<T>(Wide<quad>(alpha), Wide<quad>(x[j])),
                                    Wide<quad>(symmetric_element(a.a, uplo, i, j))));
        }
        return want;
    }
};

template <class T>
class Symv : public testing::Test {
};
TYPED_TEST_SUITE(Symv, Precisions);

TYPED_TEST(Symv, MatchesTheReferenceWithTheSameBitsForEveryLayout)
{
    using T = TypeParam;
    FreshCore core;
    std::vector<int64_t> sizes{63, 64, 65, 127, 128, 129, 131, 260};
    for (int64_t n = 0; n <= 41; ++n) sizes.push_back(n);
    for (const char uplo : {'U', 'L'})
        for (const int64_t n : sizes) {
            SCOPED_TRACE(testing::Message() << uplo << " n " << n);
            Symmetric<T> plain(uplo, n);
            const auto want = plain.expected();
            plain.run();
            expect_near<T>(plain.y, want, static_cast<double>(n + 8));
            struct Layout {
                int64_t pad, incx, incy;
                Guard side;
                std::size_t offset;
            };
            for (const Layout& l : {Layout{1, 1, 1, Guard::begin, sizeof(Real<T>)}, Layout{2, -1, 1, Guard::end, 0},
                                    Layout{3, 2, -3, Guard::end, 3 * sizeof(Real<T>)}}) {
                Symmetric<T> p(uplo, n, l.pad, l.incx, l.incy, l.side, l.offset);
                p.run();
                expect_same_bits<T>(p.y, plain.y, n);
                EXPECT_TRUE(p.y.padding_intact());
            }
        }
}

// More rows beside a block of columns than a chunk has, and increments 1 and others alike.
TYPED_TEST(Symv, ManyRows)
{
    using T = TypeParam;
    FreshCore core;
    for (const char uplo : {'U', 'L'}) {
        Symmetric<T> plain(uplo, 1201), strided(uplo, 1201, 1, -2, 2);
        const auto want = plain.expected();
        plain.run(), strided.run();
        expect_near<T>(plain.y, want, 100);
        expect_same_bits<T>(strided.y, plain.y, plain.n);
    }
}

TYPED_TEST(Symv, ScalarsNanAndInfinity)
{
    using T = TypeParam;
    FreshCore core;
    Random random(9);
    const T none{}, one(1);
    const int64_t inc = 1;
    for (const char uplo : {'U', 'L'})
        for (const int64_t n : {1, 5, 8, 19, 40}) {
            Symmetric<T> idle(uplo, n), cleared(uplo, n), scaled(uplo, n), unusual_values(uplo, n);
            const std::vector<T> bad(static_cast<std::size_t>(n), T(quiet_nan<Real<T>>));
            idle.y.read_only();
            symv<T>(&uplo, &n, &none, bad.data(), &n, bad.data(), &inc, &one, idle.y.data(), &inc);
            cleared.y.assign(bad);
            symv<T>(&uplo, &n, &none, bad.data(), &n, bad.data(), &inc, &none, cleared.y.data(), &inc);
            expect_same_bits<T>(cleared.y, std::vector<T>(static_cast<std::size_t>(n)), n);
            scaled.beta = none;
            const auto want = scaled.expected();
            scaled.y.assign(bad);
            scaled.run();
            expect_near<T>(scaled.y, want, static_cast<double>(n + 8));

            Symmetric<T>& p = unusual_values;
            p.a.a.writable(), p.x.writable();
            p.a.fill([&] { return unusual<T>(random); });
            p.alpha = one;
            if (is_complex<T>) p.a.hermitian_diagonal();
            for (int64_t i = 0; i < n; ++i) p.x[i] = unusual<T>(random);
            const auto pattern = p.expected();
            p.run();
            if (!is_complex<T>)
                expect_pattern<T>(p.y, pattern); // where alpha meets the sum makes a difference to others
        }
}

TYPED_TEST(Symv, KernelSwitchAndEnvironment)
{
    using T = TypeParam;
    FreshCore core;
    for (const char uplo : {'U', 'L'}) {
        std::vector<T> seen[2];
        for (const int branch : {0, 1}) {
            core->reproducibility = branch;
            core->reproducibility_queries = 0;
            Symmetric<T> p(uplo, 90, 2);
            p.run();
            EXPECT_EQ(core->reproducibility_queries, (std::is_same_v<T, float> ? 1 : 0));
            seen[branch] = p.y.values();
        }
        expect_same_bits<T>(seen[0], seen[1], 90);
        if constexpr (!is_complex<T>) {
            Symmetric<T> p(uplo, 90, 2);
            symv_kernel<T>(&uplo, &p.n, &p.alpha, p.a.a.data(), &p.a.a.ld(), p.x.data(), p.y.data());
            expect_same_bits<T>(p.y, seen[0], 90);
        }
        for (const int64_t inc : {1, -2}) {
            Symmetric<T> p(uplo, 33, 0, inc, inc);
            EXPECT_TRUE(keeps_fp_environment([&] { p.run(); }, fp_inexact | fp_underflow | fp_denormal));
            run_on_small_stack(small_stack, [&] { p.run(); });
        }
    }
    EXPECT_EQ(core->allocations, 0);
}

} // namespace
} // namespace ork::test

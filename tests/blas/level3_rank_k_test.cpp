// SPDX-License-Identifier: MIT
// gemmt, syrk, syr2k, herk and her2k: every element of the wanted triangle has the bits of the whole product, which
// gemm gives, and nothing else changes.
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "blas/level3_by_type.h"
#include "support/compare.h"
#include "support/fake_core.h"
#include "support/random.h"
#include "support/strided.h"

using namespace ork::test;

namespace {

using Int = std::int64_t;

template <class T>
class RankK : public testing::Test {
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(RankK, Precisions);

enum Update { gemmt_update, syrk_update, syr2k_update, herk_update, her2k_update };
const char* const update_names[] = {"gemmt", "syrk", "syr2k", "herk", "her2k"};
template <class T>
constexpr int updates = is_complex<T> ? 5 : 3;

// C gets NaN where it must not be read: beside its triangle, on a Hermitian diagonal's imaginary parts, and all over
// for beta = 0.
template <class T>
struct Problem {
    Update update;
    char uplo, transa, transb; // transb of gemmt alone
    Int n, k;
    T alpha, beta; // their real parts, where the routine has real ones
    Matrix<T> a, b, c;

    bool hermitian() const { return update >= herk_update; }
    bool two_products() const { return update == syr2k_update || update == her2k_update; }

    Problem(Update update, char uplo, char transa, char transb, Int n, Int k, double alpha, double beta, Random random)
        : update(update), uplo(uplo), transa(transa), transb(update == gemmt_update ? transb : transa), n(n), k(k),
          alpha(scalar<T>(alpha)), beta(scalar<T>(beta)), a(operand(transa == 'N', random)),
          b(operand((this->transb == 'N') != (update == gemmt_update), random)), c(any_matrix<T>(n, n, random))
    {
        for (auto* x : {&a, &b}) {
            x->fill([&] { return random.spread<T>(); });
            x->read_only();
        }
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i)
                if (in_triangle(uplo, i, j) && beta != 0) {
                    c(i, j) = random.spread<T>();
                    if constexpr (is_complex<T>)
                        if (hermitian() && i == j) c(i, j).imag(std::numeric_limits<Real<T>>::quiet_NaN());
                }
        c.remember();
    }

    Matrix<T> operand(bool n_rows, Random& random) const
    {
        return any_matrix<T>(n_rows ? n : k, n_rows ? k : n, random);
    }

    // gemm on all of C. Real factors of complex numbers are applied beforehand.
    std::vector<T> expected() const
    {
        std::vector<T> want(static_cast<std::size_t>(n * n));
        const bool adds = alpha != T(0) && k > 0;
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i) {
                T& x = want[static_cast<std::size_t>(i + j * n)];
                if (!in_triangle(uplo, i, j)) continue;
                x = c(i, j);
                if constexpr (is_complex<T>)
                    if (hermitian() && (adds || beta != T(1))) {
                        if (i == j) x.imag(0);
                        if (beta != T(1)) x *= beta.real();
                    }
            }
        char left = transa, right = transb;
        if (update != gemmt_update) {
            const char other = hermitian() ? 'C' : 'T';
            left = transa == 'N' ? 'N' : other;
            right = transa == 'N' ? other : 'N';
        }
        const auto add = [&](const Matrix<T>& x, const Matrix<T>& y, T factor, T scale) {
            std::vector<T> first(x.data(), x.data() + (k > 0 && n > 0 ? (x.columns() - 1) * x.ld() + x.rows() : 0));
            if constexpr (is_complex<T>)
                if (update == herk_update && factor != T(0)) {
                    for (T& z : first) z *= factor.real();
                    factor = T(1);
                }
            gemm<T>(&left, &right, &n, &n, &k, &factor, first.data(), &x.ld(), y.data(), &y.ld(), &scale, want.data(),
                    &n);
        };
        const T scale = hermitian() && beta != T(0) ? T(1) : beta;
        add(a, two_products() || update == gemmt_update ? b : a, alpha, scale);
        if (two_products()) add(b, a, hermitian() ? conjugate(alpha) : alpha, T(1));
        if constexpr (is_complex<T>)
            if (hermitian() && (adds || beta != T(1)))
                for (Int i = 0; i < n; ++i) want[static_cast<std::size_t>(i + i * n)].imag(0);
        return want;
    }

    void run()
    {
        const bool reads = alpha != T(0) && k > 0;
        const T *x = reads ? a.data() : nullptr, *y = reads ? b.data() : nullptr;
        if (update == gemmt_update)
            gemmt<T>(&uplo, &transa, &transb, &n, &k, &alpha, x, &a.ld(), y, &b.ld(), &beta, c.data(), &c.ld());
        else if (update == syrk_update)
            syrk<T>(&uplo, &transa, &n, &k, &alpha, x, &a.ld(), &beta, c.data(), &c.ld());
        else if (update == syr2k_update)
            syr2k<T>(&uplo, &transa, &n, &k, &alpha, x, &a.ld(), y, &b.ld(), &beta, c.data(), &c.ld());
        if constexpr (is_complex<T>) {
            const Real<T> real_alpha = alpha.real(), real_beta = beta.real();
            if (update == herk_update)
                herk<T>(&uplo, &transa, &n, &k, &real_alpha, x, &a.ld(), &real_beta, c.data(), &c.ld());
            else if (update == her2k_update)
                her2k<T>(&uplo, &transa, &n, &k, &alpha, x, &a.ld(), y, &b.ld(), &real_beta, c.data(), &c.ld());
        }
    }

    // Without the memory of allocation `failing`, counted from 1.
    void check(int failing = 0)
    {
        const auto want = expected();
        fake_core().fail_allocation_at = failing;
        run();
        SCOPED_TRACE(testing::Message() << update_names[update] << ' ' << uplo << transa << transb << ' ' << n << " x "
                                        << k << ", alpha " << show(alpha) << ", beta " << show(beta));
        EXPECT_TRUE(c.unchanged_except([&](Int i, Int j) { return in_triangle(uplo, i, j); }));
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i)
                if (const T& x = want[static_cast<std::size_t>(i + j * n)];
                    in_triangle(uplo, i, j) && !same_value(c(i, j), x))
                    FAIL() << '(' << i << ", " << j << ") is " << show(c(i, j)) << ", want " << show(x);
    }
};

// All routines on both triangles and with every letter, the other arguments at random.
template <class T, class Use>
void for_each_problem(Int n, const std::vector<Int>& depths, Random& random, Use&& use)
{
    const double scalars[] = {1, 1, -0.75, -0.75, 0};
    for (int update = 0; update < updates<T>; ++update)
        for (const char uplo : {'L', 'U'})
            for (const char transa : {'N', 'T', 'C'}) {
                if (is_complex<T> && update != gemmt_update && transa == (update >= herk_update ? 'T' : 'C')) continue;
                Problem<T> p(Update(update), uplo, transa, "NTC"[random.integer(0, 2)], n,
                             depths[random.bits() % depths.size()], scalars[random.integer(0, 4)],
                             scalars[random.integer(0, 4)], Random(random.bits()));
                use(p);
                if (testing::Test::HasFailure()) return;
            }
}

} // namespace

// n around tiles, panels, the way that packs and its blocks.
TYPED_TEST(RankK, EveryElementOfTheTriangleHasTheBitsOfTheWholeProduct)
{
    using T = TypeParam;
    FreshCore core;
    Random random(3);
    const auto check = [](Problem<T>& p) { p.check(); };
    for (Int n = 0; n <= 41; n += n == 20 ? 4 : 1) for_each_problem<T>(n, {0, 1, 4, 17}, random, check);
    for (const Int n : {1, 5, 8, 13, 27, 40, 65}) for_each_problem<T>(n, {255, 257, 513}, random, check);
    for (const Int n : {65, 255, 256, 257, 300}) for_each_problem<T>(n, {4, 17}, random, check);
    for (const Int cache : {32 << 20, 1 << 20}) { // blocks of 640 rows, then of 384
        core->cache_size = cache;
        for (const char uplo : {'L', 'U'}) {
            Problem<T>(gemmt_update, uplo, 'N', 'T', 645, 9, 1, 1, Random(5)).check();
            Problem<T>(Update(updates<T> - 1), uplo, 'N', 'N', 645, 4, -0.75, 0, Random(5)).check();
        }
    }
    EXPECT_EQ(core->live_allocations, 0);
}

// Products of a real alpha with an infinite complex number included.
TYPED_TEST(RankK, NanAndInfinityAppearWhereTheWholeProductHasThem)
{
    using T = TypeParam;
    FreshCore core;
    Random random(4);
    const T nan(std::numeric_limits<Real<T>>::quiet_NaN()), inf(std::numeric_limits<Real<T>>::infinity());
    for (const Int n : {5, 12, 30, 45})
        for_each_problem<T>(n, {6, 20}, random, [&](Problem<T>& p) {
            p.a.writable();
            p.b.writable();
            p.a(p.a.rows() - 1, 2) = inf;
            p.a(1, p.a.columns() - 1) = nan;
            p.b(0, 3) = inf;
            if (p.beta != T(0)) p.c(2, 2) = nan, p.c(p.uplo == 'L' ? n - 1 : 1, p.uplo == 'L' ? 1 : n - 1) = inf;
            p.check();
        });
}

TYPED_TEST(RankK, WithoutMemoryTheBitsAreTheSame)
{
    FreshCore core;
    for (int update = 0; update < updates<TypeParam>; ++update)
        for (const char uplo : {'L', 'U'})
            for (const int failing : {1, 2}) {
                Problem<TypeParam> p(Update(update), uplo, 'N', 'T', 70, 300, -0.75, 1, Random(9));
                if (failing == 2 && !p.two_products()) continue;
                p.check(failing);
                EXPECT_EQ(core->fail_allocation_at, 0) << "too few allocations: the test misses its way";
            }
    EXPECT_EQ(core->live_allocations, 0);
}

// SPDX-License-Identifier: MIT
// symm and hemm have the bits that gemm gives with the whole matrix, and read one triangle of it.
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

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
class Symm : public testing::Test {
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(Symm, Precisions);

// A holds NaN beside its triangle and on a Hermitian diagonal's imaginary parts, C where beta is 0.
template <class T>
struct Problem {
    bool hermitian;
    char side, uplo;
    Int m, n, order;
    T alpha, beta;
    Matrix<T> a, b, c;

    Problem(bool hermitian, char side, char uplo, Int order, Int other, double alpha, double beta, Random random)
        : hermitian(hermitian), side(side), uplo(uplo), m(side == 'L' ? order : other), n(side == 'L' ? other : order),
          order(order), alpha(scalar<T>(alpha)), beta(scalar<T>(beta)), a(any_matrix<T>(order, order, random)),
          b(any_matrix<T>(m, n, random)), c(any_matrix<T>(m, n, random))
    {
        for (Int j = 0; j < order; ++j)
            for (Int i = 0; i < order; ++i)
                if (in_triangle(uplo, i, j)) {
                    a(i, j) = random.spread<T>();
                    if constexpr (is_complex<T>)
                        if (hermitian && i == j) a(i, j).imag(std::numeric_limits<Real<T>>::quiet_NaN());
                }
        b.fill([&] { return random.spread<T>(); });
        if (beta != 0) c.fill([&] { return random.spread<T>(); });
        a.read_only();
        b.read_only();
    }

    std::vector<T> expected() const
    {
        std::vector<T> whole, want = c.values();
        for (Int j = 0; j < order; ++j)
            for (Int i = 0; i < order; ++i) {
                whole.push_back(in_triangle(uplo, i, j) ? a(i, j) : hermitian ? conjugate(a(j, i)) : a(j, i));
                if constexpr (is_complex<T>)
                    if (hermitian && i == j) whole.back().imag(0);
            }
        std::pair<const T*, const Int*> left{whole.data(), &order}, right{b.data(), &b.ld()};
        if (side == 'R') std::swap(left, right);
        gemm<T>("N", "N", &m, &n, &order, &alpha, left.first, left.second, right.first, right.second, &beta,
                want.data(), &m);
        return want;
    }

    void run()
    {
        const auto call = [&](auto routine) {
            const T *x = alpha == T(0) ? nullptr : a.data(), *y = alpha == T(0) ? nullptr : b.data();
            routine(&side, &uplo, &m, &n, &alpha, x, &a.ld(), y, &b.ld(), &beta, c.data(), &c.ld());
        };
        if (!hermitian) return call(symm<T>);
        if constexpr (is_complex<T>) call(hemm<T>);
    }

    // Without the memory of allocation `failing`, counted from 1.
    void check(int failing = 0)
    {
        SCOPED_TRACE(testing::Message() << (hermitian ? "hemm " : "symm ") << side << uplo << ' ' << m << " x " << n
                                        << ", alpha " << show(alpha) << ", beta " << show(beta));
        const auto want = expected();
        fake_core().fail_allocation_at = failing;
        run();
        expect_same_bits<T>(c.values(), want, m * n);
        EXPECT_TRUE(c.padding_intact());
    }
};

template <class T, class Use>
void for_each_member(Use&& use)
{
    for (const bool hermitian : {false, true})
        for (const char side : {'L', 'R'})
            for (const char uplo : {'L', 'U'})
                if ((is_complex<T> || !hermitian) && !testing::Test::HasFailure()) use(hermitian, side, uplo);
}

} // namespace

// Orders around tiles, the square that is completed on the stack, and blocks of depth.
TYPED_TEST(Symm, TheBitsAreThoseOfTheWholeMatrix)
{
    using T = TypeParam;
    FreshCore core;
    Random random(3);
    const Int others[] = {0, 1, 2, 3, 5, 8, 9, 13, 16, 17, 24, 33, 40, 41};
    const double scalars[] = {1, 1, -0.75, -0.75, 0};
    for (const Int order : {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11,  12,  13,  14,  15,  16,  17,
                            18, 19, 20, 31, 32, 33, 40, 41, 65, 77, 97, 129, 255, 256, 257, 300, 513, 770})
        for_each_member<T>([&](bool hermitian, char side, char uplo) {
            for (int repeat = 0; repeat < (order < 200 ? 3 : 1); ++repeat)
                Problem<T>(hermitian, side, uplo, order, others[random.integer(0, 13)], scalars[random.integer(0, 4)],
                           scalars[random.integer(0, 4)], Random(random.bits()))
                    .check();
        });
    EXPECT_EQ(core->live_allocations, 0);
}

TYPED_TEST(Symm, WithoutMemoryTheBitsAreTheSame)
{
    using T = TypeParam;
    FreshCore core;
    for_each_member<T>([&](bool hermitian, char side, char uplo) {
        for (const Int order : {40, 300, 513})
            for (const int failing : {1, 2, 3}) { // the square, then the products' buffers
                Problem<T> p(hermitian, side, uplo, order, 41, -0.75, 1, Random(5));
                p.check(failing);
                EXPECT_TRUE(core->fail_allocation_at == 0 || order == 40) << "the test misses its way";
            }
    });
    EXPECT_EQ(core->live_allocations, 0);
}

// One element of A reaches the row and the column that it stands for, zeros of B included.
TYPED_TEST(Symm, NanReachesItsRowAndItsColumn)
{
    using T = TypeParam;
    FreshCore core;
    for_each_member<T>([&](bool hermitian, char side, char uplo) {
        for (const Int order : {7, 20, 45}) {
            Problem<T> p(hermitian, side, uplo, order, 9, 1, 0, Random(6));
            const Int row = uplo == 'L' ? order - 2 : 1, column = uplo == 'L' ? 1 : order - 2;
            p.a.writable();
            p.a(row, column) = T(std::numeric_limits<Real<T>>::quiet_NaN());
            p.b.writable();
            p.b.fill([] { return T(0); });
            p.run();
            for (Int j = 0; j < p.n; ++j)
                for (Int i = 0; i < p.m; ++i) {
                    const Int slice = side == 'L' ? i : j;
                    ASSERT_EQ(has_nan(p.c(i, j)), slice == row || slice == column) << i << ' ' << j;
                }
        }
    });
}

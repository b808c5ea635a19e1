// SPDX-License-Identifier: MIT
// Every element has the bits of the recipe, whatever the size, the storage, the increments.
#include "xblas/problem.h"

namespace ork::test {
namespace {

template <class T>
class Bits : public testing::Test {
};
TYPED_TEST_SUITE(Bits, Precisions, PrecisionNames);

// Around one, two and four registers and around blocks of 4, 8 and 16 sums.
constexpr Int sizes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 15, 16, 17, 19, 20, 33};

// In turn: strides, padding, scalars, the side of the protected page, one vector and two.
template <class T>
void vary(Problem<T>& p, Random& random)
{
    const T scalars[] = {T(0), T(1), T(-1), some<T>(0, 1), random.spread<T>(), random.spread<T>(), random.spread<T>()};
    constexpr Int increments[] = {1, 1, 1, 2, 3, -1, -2, -3};
    p.incx = increments[random.integer(0, 7)];
    p.incy = increments[random.integer(0, 7)];
    p.pad = random.integer(-2, 3) < 0 ? 0 : random.integer(0, 3);
    p.alpha = scalars[random.integer(0, 6)];
    p.beta = scalars[random.integer(0, 6)];
    p.side = both_guards[random.integer(0, 1)];
    p.two = random.integer(0, 2) == 0;
    p.seed = random.bits() >> 8;
}

TYPED_TEST(Bits, General)
{
    Random random(1);
    Problem<TypeParam> p;
    for (p.order = by_rows; p.order <= by_columns; ++p.order)
        for (const Int trans : all_trans)
            for (const Int prec : all_precisions)
                for (const Int m : sizes)
                    for (const Int n : {Int{1}, sizes[random.integer(1, 15)], sizes[random.integer(1, 15)]}) {
                        p.trans = trans, p.prec = prec, p.m = random.integer(0, 20) == 0 ? 0 : m, p.n = n;
                        vary(p, random);
                        ASSERT_NO_FATAL_FAILURE(p.check());
                    }
}

// Bands as wide as a diagonal, wider than the matrix, matrices that go on after the band has left them.
TYPED_TEST(Bits, Band)
{
    constexpr Int widths[] = {0, 0, 1, 2, 3, 5, 9, 40};
    Random random(2);
    Problem<TypeParam> p;
    p.kind = Kind::band;
    for (p.order = by_rows; p.order <= by_columns; ++p.order)
        for (const Int trans : all_trans)
            for (const Int prec : all_precisions)
                for (const Int m : sizes)
                    for (const Int n : {m, sizes[random.integer(0, 15)], sizes[random.integer(0, 15)]}) {
                        p.trans = trans, p.prec = prec, p.m = random.integer(0, 20) == 0 ? 0 : m, p.n = n;
                        p.kl = widths[random.integer(0, 7)], p.ku = widths[random.integer(0, 7)];
                        vary(p, random);
                        ASSERT_NO_FATAL_FAILURE(p.check());
                    }
}

TYPED_TEST(Bits, SymmetricAndHermitian)
{
    Random random(3);
    Problem<TypeParam> p;
    for (const Kind kind : {Kind::symmetric, Kind::hermitian}) {
        if (kind == Kind::hermitian && !is_complex<TypeParam>) break;
        p.kind = kind;
        for (p.order = by_rows; p.order <= by_columns; ++p.order)
            for (const Int uplo : all_uplo)
                for (const Int prec : all_precisions)
                    for (const Int n : sizes)
                        for (int repeat = 0; repeat < 3; ++repeat) {
                            p.uplo = uplo, p.prec = prec, p.m = p.n = n;
                            vary(p, random);
                            ASSERT_NO_FATAL_FAILURE(p.check());
                        }
    }
}

} // namespace
} // namespace ork::test

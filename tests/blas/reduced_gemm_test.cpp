// SPDX-License-Identifier: MIT
// Products of integers, exact modulo 2^32, and of narrow floating-point numbers, which have the bits of xsgemm on the
// widened operands.
#include <cmath>
#include <cstdint>
#include <limits>
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

template <class A, class B, class C, class Scalar>
using Routine = void(const char*, const char*, const Int*, const Int*, const Int*, const Scalar*, const A*, const Int*,
                     const B*, const Int*, const Scalar*, C*, const Int*);

struct Shape {
    Int m, n, k;
    char transa = 'N', transb = 'N';
};

// op(X) is outer x depth for the first operand, depth x outer for the second.
template <class E>
Matrix<E> operand(bool upright, Int outer, Int depth, Random& random)
{
    return any_matrix<E>(upright ? outer : depth, upright ? depth : outer, random);
}
template <class E>
E at(const Matrix<E>& x, char trans, Int i, Int j)
{
    return trans == 'N' ? x(i, j) : x(j, i);
}

// Extreme: nothing but the numbers whose products saturate narrow sums.
template <class A, class B>
void check_integers(Routine<A, B, std::int32_t, std::int32_t>* routine, const Shape& s, bool extreme, Random& random)
{
    auto a = operand<A>(s.transa == 'N', s.m, s.k, random);
    auto b = operand<B>(s.transb != 'N', s.n, s.k, random);
    Matrix<std::int32_t> c(s.m, s.n, s.m + random.integer(0, 3));
    a.fill([&] { return extreme ? std::numeric_limits<A>::min() : static_cast<A>(random.bits()); });
    b.fill([&] {
        return extreme ? std::is_signed_v<B> ? std::numeric_limits<B>::min() : std::numeric_limits<B>::max()
                       : static_cast<B>(random.bits());
    });
    c.fill([&] { return static_cast<std::int32_t>(random.bits()); });
    a.read_only();
    b.read_only();
    const std::int32_t scalars[] = {1, 0, -3, std::numeric_limits<std::int32_t>::min() + 7};
    const std::int32_t alpha = scalars[random.integer(0, 3)], beta = scalars[random.integer(0, 3)];
    std::vector<std::int32_t> want;
    for (Int j = 0; j < s.n; ++j)
        for (Int i = 0; i < s.m; ++i) {
            std::uint64_t sum = 0;
            for (Int l = 0; l < s.k; ++l)
                sum += static_cast<std::uint64_t>(Int(at(a, s.transa, i, l)) * Int(at(b, s.transb, l, j)));
            sum = sum * static_cast<std::uint64_t>(alpha) +
                  static_cast<std::uint64_t>(beta) * static_cast<std::uint64_t>(c(i, j));
            want.push_back(static_cast<std::int32_t>(sum));
        }
    routine(&s.transa, &s.transb, &s.m, &s.n, &s.k, &alpha, a.data(), &a.ld(), b.data(), &b.ld(), &beta, c.data(),
            &c.ld());
    EXPECT_TRUE(c.padding_intact());
    ASSERT_EQ(c.values(), want) << s.m << " x " << s.n << " x " << s.k << s.transa << s.transb << ", alpha " << alpha
                                << ", beta " << beta;
}

// Widening by the value of the fields. `finite_top`: the largest exponent has ordinary numbers, its last fraction NaN.
struct Format {
    int exponent, fraction;
    bool finite_top = false;

    float widen(unsigned code) const
    {
        const unsigned last = (1U << exponent) - 1, e = code >> fraction & last, f = code & ((1U << fraction) - 1);
        const bool negative = (code >> (exponent + fraction) & 1) != 0;
        const int bias = static_cast<int>(last >> 1);
        float value;
        if (e == last && (finite_top ? f == (1U << fraction) - 1 : f != 0))
            value = std::numeric_limits<float>::quiet_NaN();
        else if (e == last && !finite_top)
            value = std::numeric_limits<float>::infinity();
        else
            value = std::ldexp(static_cast<float>(e == 0 ? f : f + (1U << fraction)),
                               (e == 0 ? 1 : static_cast<int>(e)) - bias - fraction);
        return negative ? -value : value;
    }
};

template <class E>
struct Narrow {
    Routine<E, E, float, float>* routine;
    Format format;
    E one; // the code of 1

    void check_codes() const
    {
        const Int size = 1;
        for (unsigned code = 0; code <= std::numeric_limits<E>::max(); ++code) {
            const E x = static_cast<E>(code);
            const float want = 0.0f + format.widen(code), alpha = 1, beta = 0;
            float left = 3, right = 3;
            routine("N", "T", &size, &size, &size, &alpha, &x, &size, &one, &size, &beta, &left, &size);
            routine("N", "N", &size, &size, &size, &alpha, &one, &size, &x, &size, &beta, &right, &size);
            ASSERT_TRUE(same_value(left, want) && same_value(right, want))
                << std::hex << code << ' ' << show(left) << ' ' << show(right) << " want " << show(want);
        }
    }

    void check(const Shape& s, Random& random) const
    {
        auto a = operand<E>(s.transa == 'N', s.m, s.k, random), b = operand<E>(s.transb != 'N', s.n, s.k, random);
        Matrix<float> wide_a(a.rows(), a.columns(), a.ld()), wide_b(b.rows(), b.columns(), b.ld());
        const auto fill = [&](Matrix<E>& x, Matrix<float>& wide) {
            for (Int j = 0; j < x.columns(); ++j)
                for (Int i = 0; i < x.rows(); ++i) do
                        wide(i, j) = format.widen(x(i, j) = static_cast<E>(random.bits()));
                    while (!(std::abs(wide(i, j)) < 0x1p40F));
            x.read_only();
        };
        fill(a, wide_a);
        fill(b, wide_b);
        const float scalars[] = {1, 0, -0.75F}, alpha = scalars[random.integer(0, 1) * 2],
                    beta = scalars[random.integer(0, 2)];
        Matrix<float> c(s.m, s.n, s.m + 1), want(s.m, s.n, s.m + 1);
        if (beta != 0) c.fill(random); // else it holds NaN, which must not be read
        for (Int j = 0; j < s.n; ++j)
            for (Int i = 0; i < s.m; ++i) want(i, j) = c(i, j);
        gemm<float>(&s.transa, &s.transb, &s.m, &s.n, &s.k, &alpha, wide_a.data(), &a.ld(), wide_b.data(), &b.ld(),
                    &beta, want.data(), &want.ld());
        routine(&s.transa, &s.transb, &s.m, &s.n, &s.k, &alpha, a.data(), &a.ld(), b.data(), &b.ld(), &beta, c.data(),
                &c.ld());
        SCOPED_TRACE(testing::Message() << format.exponent << '.' << format.fraction << ": " << s.m << " x " << s.n
                                        << " x " << s.k << s.transa << s.transb << ", beta " << beta);
        expect_same_bits<float>(c.values(), want.values(), s.m * s.n);
        EXPECT_TRUE(c.padding_intact());
    }
};

constexpr Narrow<std::uint16_t> bfloat16{ork_blas_nx2_xgemm_bf16bf16f32, {8, 7}, 0x3f80};
constexpr Narrow<std::uint16_t> binary16{ork_blas_nx2_xgemm_f16f16f32, {5, 10}, 0x3c00};
constexpr Narrow<std::uint8_t> e4m3{ork_blas_nx2_xgemm_e4m3e4m3f32, {4, 3, true}, 0x38};
constexpr Narrow<std::uint8_t> e5m2{ork_blas_nx2_xgemm_e5m2e5m2f32, {5, 2}, 0x3c};

// Shapes around panels and blocks, and some that are larger than a block in one direction.
template <class Check>
void for_each_shape(Random& random, Check&& check)
{
    const Int sizes[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 12, 13, 16, 17, 31, 33, 40};
    const Int depths[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33, 255, 257, 511, 513, 1027};
    const auto letter = [&] { return "NTC"[random.integer(0, 2)]; };
    for (int i = 0; i < 400 && !testing::Test::HasFailure(); ++i)
        check(Shape{sizes[random.integer(0, 15)], sizes[random.integer(0, 15)], depths[random.integer(0, 17)], letter(),
                    letter()});
    for (const auto& s :
         {Shape{645, 9, 33}, Shape{1290, 3, 7, 'T', 'T'}, Shape{9, 1033, 21}, Shape{5, 2057, 9, 'T', 'T'}})
        check(s);
}

} // namespace

TEST(ReducedGemm, IntegersAreExactModuloTwoToTheThirtySecond)
{
    FreshCore core;
    Random random(3);
    for (const bool memory : {true, false})
        for_each_shape(random, [&](const Shape& s) {
            core->fail_allocation_at = memory ? 0 : 1;
            const bool extreme = random.bits() % 4 == 0;
            check_integers(ork_blas_nx2_xgemm_s8u8s32, s, extreme, random);
            core->fail_allocation_at = memory ? 0 : 1;
            check_integers(ork_blas_nx2_xgemm_s16s16s32, s, extreme, random);
        });
    EXPECT_EQ(core->live_allocations, 0);
}

TEST(ReducedGemm, EveryCodeOfANarrowTypeIsWidenedExactly)
{
    FreshCore core;
    bfloat16.check_codes();
    binary16.check_codes();
    e4m3.check_codes();
    e5m2.check_codes();
}

TEST(ReducedGemm, NarrowProductsHaveTheBitsOfTheWidenedOperands)
{
    FreshCore core;
    Random random(4);
    for (const bool memory : {true, false})
        for_each_shape(random, [&](const Shape& s) {
            const int which = static_cast<int>(random.integer(0, 3));
            core->fail_allocation_at = memory ? 0 : 2; // the first is the reference's, or the product's own
            if (which == 0) bfloat16.check(s, random);
            if (which == 1) binary16.check(s, random);
            if (which == 2) e4m3.check(s, random);
            if (which == 3) e5m2.check(s, random);
        });
    EXPECT_EQ(core->live_allocations, 0);
}

// SPDX-License-Identifier: MIT
// trmm and trsm: products against wider precision, solutions by what they leave of the equation, element by element.
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "blas/level3_by_type.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/fake_core.h"
#include "support/random.h"
#include "support/strided.h"

using namespace ork::test;

namespace {

using Int = std::int64_t;

template <class T>
class Triangular : public testing::Test {
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(Triangular, Precisions);

struct Member {
    bool solves;
    char side, uplo, trans, diag;
};

template <class Use>
void for_each_member(Use&& use)
{
    for (const bool solves : {false, true})
        for (const char side : {'L', 'R'})
            for (const char uplo : {'L', 'U'})
                for (const char trans : {'N', 'T', 'C'})
                    for (const char diag : {'N', 'U'})
                        if (!testing::Test::HasFailure()) use(Member{solves, side, uplo, trans, diag});
}

// The triangle is well conditioned; what is not to be read of A is NaN.
template <class T>
struct Problem {
    Member member;
    Int order, other, m, n;
    Matrix<T> a, b;
    T alpha = T(1);

    Problem(Member member, Int order, Int other, Int ldb, Random random)
        : member(member), order(order), other(other), m(member.side == 'L' ? order : other),
          n(member.side == 'L' ? other : order),
          a(order, order, order + random.integer(0, 3), both_guards[random.integer(0, 1)]),
          b(m, n, ldb == 0 ? m + random.integer(0, 3) : ldb, both_guards[random.integer(0, 1)],
            sizeof(Real<T>) * (random.bits() % 4))
    {
        for (Int j = 0; j < order; ++j)
            for (Int i = 0; i < order; ++i)
                if (stored(i, j))
                    a(i, j) =
                        i == j ? T(5) / T(2) + random.uniform<T>() / T(2) : random.uniform<T>() / T(Real<T>(order));
        a.read_only();
        b.fill(random);
    }

    bool stored(Int i, Int j) const { return in_triangle(member.uplo, i, j) && (i != j || member.diag == 'N'); }
    // Whether element (i, l) of op(A) is in its triangle.
    bool present(Int i, Int l) const
    {
        return member.trans == 'N' ? in_triangle(member.uplo, i, l) : in_triangle(member.uplo, l, i);
    }
    // Element e of slice i of B: columns are the slices' elements on the left, rows on the right.
    T& element(Int i, Int e) const { return member.side == 'L' ? b(i, e) : b(e, i); }
    // Slice i of the result comes from slice l of B: op(A)(i, l) on the left, op(A)(l, i) on the right.
    bool needs(Int i, Int l) const { return member.side == 'L' ? present(i, l) : present(l, i); }

    void run(T* x, Int rows, Int columns) const
    {
        (member.solves ? trsm<T> : trmm<T>)(&member.side, &member.uplo, &member.trans, &member.diag, &rows, &columns,
                                            &alpha, alpha == T(0) ? nullptr : a.data(), &a.ld(), x, &b.ld());
    }
    void run() const { run(b.data(), m, n); }

    // op(A) X or X op(A), less alpha B for a solve; 64 bits are plenty for these orders.
    void check()
    {
        using R = long double;
        using W = Wide<R>;
        const auto before = b.values();
        run();
        const auto after = b.values();
        const auto at = [&](Int i, Int j) { return static_cast<std::size_t>(i + j * m); };
        const auto scaled = [&](Int i, Int j) { return multiply<T>(W(alpha), W(before[at(i, j)])); };
        const auto coefficient = [&](Int i, Int l) {
            return member.diag == 'U' && i == l ? W(R(1)) : op_element<T, R>(member.trans, a.data(), a.ld(), i, l);
        };
        std::vector<Expected<R>> want(before.size());
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < m; ++i) {
                auto& sum = want[at(i, j)];
                const bool left = member.side == 'L';
                for (Int l = 0; l < order; ++l) {
                    if (!(left ? present(i, l) : present(l, j))) continue;
                    const Int row = left ? l : i, column = left ? j : l;
                    const W x = member.solves ? W(after[at(row, column)]) : scaled(row, column);
                    sum.add(multiply<T>(left ? coefficient(i, l) : coefficient(l, j), x));
                }
                if (member.solves) sum.add(W() - scaled(i, j));
            }
        SCOPED_TRACE(description());
        expect_near<T>(member.solves ? std::vector<T>(want.size()) : after, want, static_cast<double>(order + 4));
        EXPECT_TRUE(b.padding_intact());
    }

    std::string description() const
    {
        return std::string(member.solves ? "trsm " : "trmm ") + member.side + member.uplo + member.trans + member.diag +
               ' ' + std::to_string(order) + ", " + std::to_string(other) + ", ldb " + std::to_string(b.ld());
    }
};

} // namespace

// Orders around the leaf and the halves of the recursion, slices around every width of a strip.
TYPED_TEST(Triangular, ProductsAndSolutionsAreExactWithinRounding)
{
    using T = TypeParam;
    FreshCore core;
    Random random(3);
    const std::vector<Int> orders{0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13,  14, 15,
                                  16, 17, 18, 19, 20, 31, 32, 33, 47, 48, 49, 64, 65, 100, 130};
    std::vector<Int> others{0, 33, 40};
    for (Int other = 1; other <= 20; ++other) others.push_back(other);
    const auto pick = [&](const std::vector<Int>& from) { return from[random.bits() % from.size()]; };
    const auto check = [&](const Member& member, Int order, Int other, Int ldb) {
        Problem<T> p(member, order, other, ldb, Random(random.bits()));
        if (random.bits() % 2 == 0) p.alpha = scalar<T>(-0.75);
        p.check();
    };
    for_each_member([&](const Member& member) {
        for (const Int order : orders) check(member, order, pick(others), 0);
        for (const Int other : others) check(member, pick(orders), other, 0);
        for (const Int order : {7, 16, 33}) // columns a multiple of 4096 bytes apart go through a copy
            check(member, order, 40, 4096 / static_cast<Int>(sizeof(Real<T>)));
    });
    EXPECT_EQ(core->live_allocations, 0);
}

TYPED_TEST(Triangular, AColumnOrRowAloneHasTheBitsItHasInCompanyAndWithoutMemory)
{
    using T = TypeParam;
    FreshCore core;
    for_each_member([&](const Member& member) {
        for (const Int order : {5, 16, 33, 100}) {
            Problem<T> p(member, order, 37, 0, Random(5)), alone(member, order, 37, 0, Random(5));
            core->fail_allocation_at = order == 100;
            p.run();
            EXPECT_EQ(core->fail_allocation_at, 0) << "nothing was allocated: the test misses its way";
            for (Int s = 0; s < 37; s += 4) {
                alone.run(&alone.element(0, s), member.side == 'L' ? order : 1, member.side == 'L' ? 1 : order);
                for (Int i = 0; i < order; ++i) expect_same_bits(alone.element(i, s), p.element(i, s));
            }
            if (this->HasFailure()) FAIL() << p.description();
        }
    });
}

TYPED_TEST(Triangular, AlphaZeroClearsAndReadsNothing)
{
    using T = TypeParam;
    FreshCore core;
    for_each_member([&](const Member& member) {
        Problem<T> p(member, 9, 7, 0, Random(6));
        p.alpha = T(0);
        p.b.fill([] { return T(std::numeric_limits<Real<T>>::quiet_NaN()); });
        p.run();
        expect_same_bits<T>(p.b.values(), std::vector<T>(63), 63);
    });
}

// Zeros are factors like any other: NaN and infinity in B, with zeros in A, reach all slices whose formula has them and
// no other element; NaN in A reaches slices of zeros.
TYPED_TEST(Triangular, NanFollowsTheFormula)
{
    using T = TypeParam;
    FreshCore core;
    constexpr Real<T> nan = std::numeric_limits<Real<T>>::quiet_NaN(), inf = std::numeric_limits<Real<T>>::infinity();
    for_each_member([&](const Member& member) {
        for (const Int order : {6, 21, 40})
            for (const Int other : {3, 35}) {
                const Int at = order / 2, element = other - 2;
                Problem<T> whole(member, order, other, 0, Random(7)), p(member, order, other, 0, Random(7));
                for (auto* x : {&whole, &p}) {
                    x->a.writable();
                    for (Int j = 0; j < order; ++j)
                        for (Int i = 0; i < order; ++i)
                            if (i != j && x->stored(i, j)) x->a(i, j) = T(0);
                }
                whole.run();
                p.element(at, element) = T(order == 21 ? inf : nan);
                p.run();
                for (Int i = 0; i < order; ++i)
                    for (Int e = 0; e < other; ++e) {
                        const T x = p.element(i, e);
                        if (e != element || !p.needs(i, at))
                            expect_same_bits(x, whole.element(i, e));
                        else // infinity over or times the diagonal stays what it is
                            EXPECT_TRUE(has_nan(x) || (i == at && order == 21)) << i;
                    }

                Problem<T> zeros(member, order, other, 0, Random(8));
                const Int row = member.uplo == 'L' ? at : 1, column = member.uplo == 'L' ? 1 : at;
                const Int i = (member.trans == 'N') == (member.side == 'L') ? row : column;
                zeros.a.writable();
                zeros.a(row, column) = T(nan);
                zeros.b.fill([] { return T(0); });
                zeros.run();
                for (Int s = 0; s < order; ++s)
                    for (Int e = 0; e < other; ++e)
                        EXPECT_EQ(has_nan(zeros.element(s, e)), s == i || (member.solves && zeros.needs(s, i)))
                            << s << ' ' << e;
                if (this->HasFailure()) FAIL() << p.description();
            }
    });
}

// A diagonal element whose inverse overflows or is denormal divides all the same, its neighbours in the leaf are solved
// as ever, and no flag is raised that a quotient does not raise.
TYPED_TEST(Triangular, QuotientsByTheSmallestAndTheLargestNumbers)
{
    using T = TypeParam;
    using R = Real<T>;
    FreshCore core;
    constexpr int most = std::numeric_limits<R>::max_exponent - 1, least = sizeof(R) == 8 ? -1060 : -140;
    T d(1), q(R(0.5));
    if constexpr (is_complex<T>) d.imag(R(0.25)), q.imag(R(-0.25));
    for_each_member([&](const Member& member) {
        if (!member.solves || member.diag == 'U') return;
        for (const int exponent : {least, most})
            for (const Int order : {1, 5, 16, 37})
                for (const Int other : {3, 40}) {
                    const Int at = order - 1 - order / 3;
                    const R size = std::ldexp(R(1), exponent);
                    Problem<T> p(member, order, other, 0, Random(9)), checked(member, order, other, 0, Random(9));
                    for (auto* x : {&p, &checked}) {
                        x->a.writable();
                        for (Int i = 0; i < order; ++i) {
                            if (x->stored(at, i)) x->a(at, i) = T(0);
                            if (x->stored(i, at)) x->a(i, at) = T(0);
                        }
                        x->a(at, at) = d * size;
                        for (Int e = 0; e < other; ++e)
                            x->element(at, e) = q * (member.trans == 'C' ? conjugate(d) : d) * size;
                    }
                    const unsigned flags = fp_flags_of([&] { p.run(); });
                    EXPECT_EQ(flags & ~unsigned{fp_inexact | fp_denormal}, 0u) << p.description();
                    for (Int e = 0; e < other; ++e) ASSERT_EQ(p.element(at, e), q) << p.description() << exponent;
                    checked.check();
                }
    });
}

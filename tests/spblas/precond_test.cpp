// SPDX-License-Identifier: MIT
// What preconditioners are made of: sweeps, inverted diagonals, sorted rows, split matrices.
#include <algorithm>
#include <array>
#include <numeric>

#include "spblas/kernel.h"
#include "support/compare.h"

namespace ork::test {
namespace {

template <class C>
class Preconditioner : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;
    using Call = spblas::Calls<Format::csr, Int, T>;

    // Compressed rows with gaps, in random order, positions counting from 5, columns from `base`.
    struct Matrix {
        std::vector<T> val;
        std::vector<Int> indx, pntrb, pntre;
        Int base;

        Matrix(const std::vector<std::vector<std::pair<Int, T>>>& rows, Int base) : base(base)
        {
            for (const auto& row : rows) {
                pntrb.push_back(static_cast<Int>(5 + val.size()));
                for (const auto& [column, value] : row) indx.push_back(column + base), val.push_back(value);
                pntre.push_back(static_cast<Int>(5 + val.size()));
                indx.push_back(-7), val.push_back(not_a_number<T>());
            }
        }
    };

    // Diagonally dominant, unsorted, with places that are stored twice.
    Matrix random_matrix(Int n, Int base)
    {
        std::vector<std::vector<std::pair<Int, T>>> rows(static_cast<std::size_t>(n));
        for (Int i = 0; i < n; ++i) {
            auto& row = rows[static_cast<std::size_t>(i)];
            for (const std::int64_t diagonal : {1, 2})
                row.push_back({i, scalar<T>(3.0 * static_cast<double>(diagonal), random.integer(-2, 2))});
            for (std::int64_t k = random.integer(0, 6); k-- > 0;)
                row.push_back({static_cast<Int>(random.integer(0, n - 1)), random.template uniform<T>()});
            for (auto& entry : row)
                std::swap(entry, row[static_cast<std::size_t>(random.integer(0, std::ssize(row) - 1))]);
        }
        return {rows, base};
    }

    template <class Signature>
    Signature* routine(const std::string& name, Int base)
    {
        return member<Signature, Int, T>("csr" + std::to_string(base) + name);
    }

    Random random{11};
};
TYPED_TEST_SUITE(Preconditioner, Cases, CaseNames);

// Row by row against the formula in wider numbers, from the x that the kernel itself had there.
TYPED_TEST(Preconditioner, SweepsUpdateInPlace)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using W = Wide<long double>;
    const Int n = 40, skipped = 17;
    for (const Int base : {0, 1})
        for (const Int backward : {0, 1})
            for (const T omega : {T(1), scalar<T>(1.25, 0.5)}) {
                auto* gauss = this->template routine<typename TestFixture::Call::GaussSeq>("gauss_seq", base);
                ASSERT_NE(gauss, nullptr);
                auto a = this->random_matrix(n, base);
                for (Int k = a.pntrb[skipped] - 5; k < a.pntre[skipped] - 5; ++k)
                    if (a.indx[static_cast<std::size_t>(k)] == skipped + base)
                        a.val[static_cast<std::size_t>(k)] = T(0);
                const auto b = uniform_values<T>(n, 3), start = uniform_values<T>(n, 4);
                const Guarded<T> x(start);
                gauss(&n, &backward, &omega, a.val.data(), a.indx.data(), a.pntrb.data(), a.pntre.data(), b.data(),
                      x.data());
                for (Int i = 0; i < n; ++i) {
                    // omega (b_i - sum) = a_ii (x_i - old x_i), in which every x_j is the old or the new one.
                    Expected<long double> rest;
                    W diagonal;
                    rest.add(W(b[static_cast<std::size_t>(i)]));
                    for (Int k = a.pntrb[static_cast<std::size_t>(i)] - 5; k < a.pntre[static_cast<std::size_t>(i)] - 5;
                         ++k) {
                        const Int j = a.indx[static_cast<std::size_t>(k)] - base;
                        const bool updated = backward != 0 ? j > i : j < i;
                        const W value(a.val[static_cast<std::size_t>(k)]);
                        if (j == i) diagonal += value;
                        rest.add(multiply<T>(W() - value, W(updated ? x[j] : start[static_cast<std::size_t>(j)])));
                    }
                    if (i == skipped) {
                        expect_same_bits(x[i], start[static_cast<std::size_t>(i)]);
                        continue;
                    }
                    const W step = W(x[i]) - W(start[static_cast<std::size_t>(i)]);
                    const W wrong = multiply<T>(W(omega), rest.value) - multiply<T>(diagonal, step);
                    const auto scale = 4 * rest.scale + 4 * magnitude(diagonal);
                    EXPECT_TRUE(magnitude(wrong) <= 16 * std::numeric_limits<Real<T>>::epsilon() * scale)
                        << "row " << i;
                }
            }
}

TYPED_TEST(Preconditioner, DiagonalsAreInvertedAndTheFirstMissingIsNamed)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    for (const Int base : {0, 1}) {
        auto* invdiag = this->template routine<typename TestFixture::Call::InvdiagPar>("invdiag_par", base);
        ASSERT_NE(invdiag, nullptr);
        const T large = scalar<T>(std::numeric_limits<Real<T>>::max(), std::numeric_limits<Real<T>>::max());
        const typename TestFixture::Matrix a(
            {{{0, T(4)}, {1, T(9)}}, {{2, T(1)}, {1, T(3)}, {1, T(5)}}, {{0, T(1)}}, {}, {{4, T(0)}}, {{5, large}}},
            base);
        const std::vector<T> want = {T(0.25), T(0.125), T(1), T(1), T(1), T(1) / (large / T(4)) / T(4)};
        for (const auto& [first, last, missing] :
             {std::array<Int, 3>{1, 6, 3}, {1, 2, 0}, {4, 5, 4}, {6, 6, 0}, {4, 3, 0}}) {
            const Guarded<T> d(6);
            Int named = -1;
            invdiag(&first, &last, a.val.data(), a.indx.data(), a.pntrb.data(), a.pntre.data(), d.data(), &named);
            EXPECT_EQ(named, missing);
            EXPECT_TRUE(d.unchanged_except([&, f = first, l = last](std::int64_t i) { return f <= i + 1 && i < l; }));
            for (Int i = first - 1; i < last; ++i)
                EXPECT_TRUE(is_near(d[i], expected(Wide<quad>(want[static_cast<std::size_t>(i)])), 4)) << "row " << i;
        }
    }
}

// Lengths around the runs that are sorted by insertion; few columns, so that many are equal.
TYPED_TEST(Preconditioner, RowsAreSortedAndEqualColumnsKeepTheirOrder)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    auto* sortrow = this->template routine<typename TestFixture::Call::SortrowPar>("sortrow_par", 1);
    ASSERT_NE(sortrow, nullptr);
    for (const Int length : {0, 1, 2, 3, 15, 16, 17, 32, 33, 100, 1000, 4097})
        for (const std::int64_t columns : {2, 40, 1000000})
            for (const int direction : {0, 1, -1}) { // as they come, sorted, sorted the other way round
                std::vector<std::pair<Int, T>> row;
                for (Int k = 0; k < length; ++k)
                    row.push_back({static_cast<Int>(this->random.integer(0, columns - 1)), T{}});
                if (direction != 0)
                    std::ranges::sort(row, [&](auto& a, auto& b) { return direction * a.first < direction * b.first; });
                for (Int k = 0; k < length; ++k) row[static_cast<std::size_t>(k)].second = T(static_cast<float>(k));
                const typename TestFixture::Matrix a({{{3, T(1)}, {2, T(2)}}, row, {{9, T(1)}, {8, T(2)}}}, 1);
                const Guarded<T> val(a.val);
                const Guarded<Int> indx(a.indx);
                const Int second = 2;
                sortrow(&second, &second, val.data(), indx.data(), a.pntrb.data(), a.pntre.data());
                const auto ours = [&](std::int64_t i) { return 3 <= i && i < 3 + length; };
                EXPECT_TRUE(val.unchanged_except(ours) && indx.unchanged_except(ours));
                std::ranges::stable_sort(row, {}, &std::pair<Int, T>::first);
                bool equal = true;
                for (Int k = 0; k < length; ++k)
                    equal &= indx[3 + k] == row[static_cast<std::size_t>(k)].first + 1 &&
                             val[3 + k] == row[static_cast<std::size_t>(k)].second;
                EXPECT_TRUE(equal) << length << " entries in " << columns << " columns";
            }
}

// Counted, then filled slice by slice: every entry is where it belongs, in the order in which it was stored.
TYPED_TEST(Preconditioner, SplitPartsHaveAllEntries)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    const Int n = 23;
    for (const Int base : {0, 1}) {
        auto* split = this->template routine<typename TestFixture::Call::SplitPar>("split_par", base);
        ASSERT_NE(split, nullptr);
        const auto a = this->random_matrix(n, base);
        const Guarded<Int> lpntr(n + 1), upntr(n + 1);
        lpntr[0] = base, upntr[0] = 100;
        const std::pair<Int, Int> slices[] = {{9, n}, {1, 8}, {9, 8}};
        for (const auto& [first, last] : slices)
            split(&first, &last, a.val.data(), a.indx.data(), a.pntrb.data(), a.pntre.data(), nullptr, nullptr,
                  lpntr.data(), nullptr, nullptr, upntr.data(), nullptr);
        for (auto* pntr : {&lpntr, &upntr}) std::partial_sum(pntr->data(), pntr->data() + n + 1, pntr->data());
        const Guarded<T> lval(lpntr[n] - lpntr[0]), uval(upntr[n] - upntr[0]), d(n);
        const Guarded<Int> lindx(lval.size()), uindx(uval.size());
        for (const auto& [first, last] : slices)
            split(&first, &last, a.val.data(), a.indx.data(), a.pntrb.data(), a.pntre.data(), lval.data(), lindx.data(),
                  lpntr.data(), uval.data(), uindx.data(), upntr.data(), d.data());
        std::vector<T> below, above;
        std::vector<Int> below_columns, above_columns;
        for (Int i = 0; i < n; ++i) {
            T diagonal{};
            for (Int k = a.pntrb[static_cast<std::size_t>(i)] - 5; k < a.pntre[static_cast<std::size_t>(i)] - 5; ++k) {
                const auto at = static_cast<std::size_t>(k);
                if (a.indx[at] - base < i) below.push_back(a.val[at]), below_columns.push_back(a.indx[at]);
                if (a.indx[at] - base > i) above.push_back(a.val[at]), above_columns.push_back(a.indx[at]);
                if (a.indx[at] - base == i) diagonal += a.val[at];
            }
            EXPECT_EQ(d[i], diagonal);
            EXPECT_EQ(lpntr[i + 1] - lpntr[0], std::ssize(below));
            EXPECT_EQ(upntr[i + 1] - upntr[0], std::ssize(above));
        }
        EXPECT_EQ(lval.values(), below);
        EXPECT_EQ(uval.values(), above);
        EXPECT_EQ(lindx.values(), below_columns);
        EXPECT_EQ(uindx.values(), above_columns);
    }
}

} // namespace
} // namespace ork::test

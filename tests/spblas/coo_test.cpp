// SPDX-License-Identifier: MIT
// Single entries: in any order, places that are stored many times, slices, rows without entries.
#include "spblas/kernel.h"
#include "spblas/whole.h"

namespace ork::test {
namespace {

template <class C>
class Coo : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;

    static auto make(Routine routine, Shape s, const Sparse<T>& a)
    {
        return kernel<Int>(Format::coo, routine, s, a, {s, 0, false, 0, Guard::begin});
    }
    Random random{3};
};
TYPED_TEST_SUITE(Coo, Cases, CaseNames);

// y = op(A) x + beta y where the additions are exact.
template <class T>
std::vector<T> exact(const Sparse<T>& a, bool transpose, std::int64_t rows, const std::vector<T>& x)
{
    std::vector<T> y(static_cast<std::size_t>(rows));
    for (const auto& e : a.blocks)
        y[static_cast<std::size_t>(transpose ? e.column : e.row)] +=
            e.value[0] * x[static_cast<std::size_t>(transpose ? e.row : e.column)];
    return y;
}

// Runs of one row of every length, the row coming back later; the sum of slices that each have a y of their own.
TYPED_TEST(Coo, RunsOfARowAndSlices)
{
    using T = typename TypeParam::T;
    const std::int64_t m = 9, n = 12;
    Sparse<T> a{m, n, 1, {}};
    for (std::int64_t length = 0; length <= 18; ++length)
        for (std::int64_t k = 0; k < length; ++k)
            a.blocks.push_back({length * 5 % m, k < 2 ? k : this->random.integer(0, n - 1), {whole<T>(this->random)}});
    const auto count = static_cast<std::int64_t>(a.blocks.size());
    for (const char op : {'n', 't'}) {
        const std::int64_t rows = op == 'n' ? m : n, columns = op == 'n' ? n : m;
        const auto member = this->make(Routine::mvout, {'1', op, 'g', '_', '_', 'f'}, a);
        if (!member->found()) return;
        const auto x = whole_values<T>(columns, this->random);
        const auto want = exact(a, op == 't', rows, x);
        for (const std::int64_t step : {count, std::int64_t{1}, std::int64_t{7}}) {
            std::vector<T> sum(static_cast<std::size_t>(rows));
            for (std::int64_t first = 1; first <= count; first += step) {
                std::vector<T> y(sum.size(), not_a_number<T>());
                member->mvout(first, std::min(count, first + step - 1), rows, columns, T(1), x.data(), y.data(), T(0));
                for (std::size_t i = 0; i < y.size(); ++i) sum[i] += y[i];
            }
            EXPECT_EQ(sum, want) << op << " in slices of " << step;
        }
    }
}

// The ones of a unit diagonal enter once, however the entries are cut, and also where there are none.
TYPED_TEST(Coo, UnitDiagonalOnce)
{
    using T = typename TypeParam::T;
    const auto x = whole_values<T>(5, this->random);
    for (const char* letters : {"0nsluc", "0ntuuc"}) {
        const Shape s{letters[0], letters[1], letters[2], letters[3], letters[4], letters[5]};
        Sparse<T> a{5, 5, 1, {}};
        for (const std::int64_t entries : {0, 1, 3}) {
            while (static_cast<std::int64_t>(a.blocks.size()) < entries)
                a.blocks.push_back({2, 2, {not_a_number<T>()}});
            const auto member = this->make(Routine::mvout, s, a);
            if (!member->found()) return;
            std::vector<T> sum(5);
            // An empty slice before the first entry is not the one that holds it.
            for (std::int64_t next = 0; next <= entries; ++next) {
                std::vector<T> y(5, not_a_number<T>());
                member->mvout(std::max<std::int64_t>(next, 1), next, 5, 5, T(2), x.data(), y.data(), T(0));
                for (std::size_t i = 0; i < 5; ++i) sum[i] += y[i];
            }
            for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(sum[i], T(2) * x[i]) << letters << ", entries " << entries;
        }
    }
}

// Solves of rows that have nothing but the diagonal, or nothing at all; pivots whose inverse is out of range.
TYPED_TEST(Coo, SolvesOfSparseRows)
{
    using T = typename TypeParam::T;
    const T tiny(std::numeric_limits<Real<T>>::denorm_min() * 8);
    for (const char op : {'n', 't'})
        for (const char uplo : {'l', 'u'}) {
            Sparse<T> a{6, 6, 1, {}};
            for (std::int64_t i = 0; i < 6; ++i) a.blocks.push_back({i, i, {tiny}});
            std::vector<T> y(6, tiny), z = whole_values<T>(6, this->random);
            const auto before = z;
            const auto stored = this->make(Routine::svout, {'0', op, 't', uplo, 'n', 'c'}, a);
            a.blocks.clear();
            const auto unit = this->make(Routine::svout, {'0', op, 't', uplo, 'u', 'c'}, a);
            if (!stored->found() || !unit->found()) return;
            stored->svout(6, y.data());
            unit->svout(6, z.data());
            EXPECT_EQ(y, std::vector<T>(6, T(1)));
            EXPECT_EQ(z, before);
        }
}

// A matrix that is fetched ahead, beyond its last page too.
TYPED_TEST(Coo, FarEntries)
{
    using T = typename TypeParam::T;
    const std::int64_t rows = 400000;
    Sparse<T> a{rows, rows, 1, {}};
    for (std::int64_t i = 0; i < rows; ++i)
        for (const std::int64_t j : {i, (i * 7919 + 1) % rows}) a.blocks.push_back({i, j, {whole<T>(this->random)}});
    const auto member = this->make(Routine::mvout, {'0', 'n', 'g', '_', '_', 'c'}, a);
    if (!member->found()) return;
    const auto x = whole_values<T>(rows, this->random);
    std::vector<T> y(x.size());
    member->mvout(1, 2 * rows, rows, rows, T(1), x.data(), y.data(), T(0));
    EXPECT_TRUE(y == exact(a, false, rows, x));
}

} // namespace
} // namespace ork::test

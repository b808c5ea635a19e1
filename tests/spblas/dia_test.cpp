// SPDX-License-Identifier: MIT
// Diagonals: rectangular matrices, diagonals outside them or stored twice, many near ones in a solve.
#include "spblas/member.h"
#include "spblas/whole.h"
#include "support/guarded.h"

namespace ork::test {
namespace {

template <class C>
class Diagonals : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;
    using Call = spblas::Calls<Format::dia, Int, T>;

    // Whole numbers inside the m x n matrix, NaN outside.
    std::vector<T> diagonals(std::int64_t m, std::int64_t n, const std::vector<Int>& idiag)
    {
        std::vector<T> val;
        for (const Int d : idiag)
            for (std::int64_t i = 0; i < m; ++i) {
                const bool inside = d > -m && d < n && i + d >= 0 && i + d < n;
                val.push_back(inside ? whole<T>(random) : not_a_number<T>());
            }
        return val;
    }
    Random random{5};
};
TYPED_TEST_SUITE(Diagonals, Cases, CaseNames);

// Blocks of rows, groups of diagonals and their ends meet in every way; the arrays end where they must.
TYPED_TEST(Diagonals, RectangularWithDiagonalsOutsideAndTwice)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using Call = typename TestFixture::Call;
    constexpr Int most = std::numeric_limits<Int>::max();
    const std::pair<Int, Int> sizes[] = {{1, 1}, {5, 9}, {9, 5}, {40, 1}, {1, 40}, {600, 520}, {511, 1100}};
    for (const auto& [m, n] : sizes)
        for (const char* name : {"dia0ng__c__mvout_par", "dia1tg__f__mvout_par"}) {
            const bool transpose = name[4] == 't';
            const Int rows = transpose ? n : m, columns = transpose ? m : n;
            std::vector<Int> list = {most, -most, n, static_cast<Int>(-m), static_cast<Int>(n + 7)};
            for (const Int d : std::initializer_list<Int>{0, 1, -1, 3, 0, -4, 17, n - 1, 1 - m, 500, -500, 3})
                list.push_back(d);
            const auto values = this->diagonals(m, n, list);
            const Guarded<T> val(values), y(rows);
            const Guarded<T> x(whole_values<T>(columns, this->random), Guard::begin);
            auto* const kernel = member<typename Call::MvoutPar, Int, T>(name);
            if (kernel == nullptr) return;
            const Int one = 1, ndiag = static_cast<Int>(list.size());
            const T alpha(2), zero(0);
            kernel(&one, &m, nullptr, &m, &n, &alpha, val.data(), &m, list.data(), &ndiag, x.data(), y.data(), &zero);
            std::vector<T> want(static_cast<std::size_t>(rows));
            for (std::size_t k = 0; k < list.size(); ++k)
                for (std::int64_t i = 0; i < m; ++i) {
                    if (list[k] >= n || list[k] <= -m || i + list[k] < 0 || i + list[k] >= n) continue;
                    const std::int64_t j = i + list[k];
                    want[static_cast<std::size_t>(transpose ? j : i)] +=
                        alpha * values[k * static_cast<std::size_t>(m) + static_cast<std::size_t>(i)] *
                        x[transpose ? i : j];
                }
            EXPECT_EQ(y.values(), want) << name << ' ' << m << " x " << n;
        }
}

// Unknowns are whole numbers and pivots are ones, so the solution is exact, whatever is done by blocks and what by
// rows: `near` adjacent diagonals, the nearest of them stored `times` over, and two distant ones.
TYPED_TEST(Diagonals, SolvesWithManyNearDiagonals)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using Call = typename TestFixture::Call;
    const Int m = 700;
    for (const std::pair<Int, Int>& counts : {std::pair<Int, Int>{0, 0}, {1, 1}, {3, 1}, {15, 1}, {40, 1}, {2, 18}})
        for (const char* name : {"dia0ntlnc__svout_seq", "dia1ttlnf__svout_seq", "dia0ntunc__svout_seq"}) {
            const Int toward = name[6] == 'l' ? -1 : 1;
            std::vector<Int> list = {static_cast<Int>(310 * toward), 0, static_cast<Int>(-toward)};
            for (Int d = 1; d <= counts.first; ++d)
                for (Int t = 0; t < (d == 1 ? counts.second : 1); ++t) list.push_back(d * toward);
            list.push_back(90 * toward);
            auto val = this->diagonals(m, m, list);
            std::fill_n(val.begin() + m, m, T(1));
            std::fill_n(val.begin() + 2 * m, m, not_a_number<T>()); // the other triangle
            const auto solution = whole_values<T>(m, this->random);
            std::vector<T> y(solution);
            for (std::size_t k = 0; k < list.size(); ++k)
                for (std::int64_t i = 0; i < m; ++i) {
                    const std::int64_t j = i + list[k];
                    if (k == 1 || k == 2 || j < 0 || j >= m) continue;
                    const T value = val[k * static_cast<std::size_t>(m) + static_cast<std::size_t>(i)];
                    const auto row = static_cast<std::size_t>(i), column = static_cast<std::size_t>(j);
                    name[4] == 't' ? y[column] += value * solution[row] : y[row] += value * solution[column];
                }
            auto* const kernel = member<typename Call::SvoutSeq, Int, T>(name);
            if (kernel == nullptr) return;
            const Int ndiag = static_cast<Int>(list.size());
            kernel(&m, nullptr, val.data(), &m, list.data(), &ndiag, y.data());
            EXPECT_EQ(y, solution) << name << ", near " << counts.first << ", times " << counts.second;
        }
}

// 1 / d is out of range where x / d is not.
TYPED_TEST(Diagonals, DenormalPivots)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    const T tiny(std::numeric_limits<Real<T>>::denorm_min() * 8);
    const Int m = 7, one = 1, main = 0;
    const std::vector<T> val(7, tiny);
    for (const char* name : {"dia0ntlnc__svout_seq", "dia0nd_nc__svout_seq"}) {
        std::vector<T> y(val);
        auto* const kernel = member<typename TestFixture::Call::SvoutSeq, Int, T>(name);
        if (kernel == nullptr) return;
        kernel(&m, nullptr, val.data(), &m, &main, &one, y.data());
        EXPECT_EQ(y, std::vector<T>(7, T(1))) << name;
    }
}

} // namespace
} // namespace ork::test

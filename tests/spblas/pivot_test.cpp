// SPDX-License-Identifier: MIT
// Solves divide: diagonals whose inverses overflow or lose digits give quotients all the same, and no flag but those of
// the quotients.
#include "spblas/kernel.h"
#include "support/compare.h"
#include "support/environment.h"

namespace ork::test {
namespace {

template <class C>
class Pivots : public testing::Test {
};
TYPED_TEST_SUITE(Pivots, Cases, CaseNames);

TYPED_TEST(Pivots, OfAnyMagnitude)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using Limits = std::numeric_limits<Real<T>>;
    const Real<T> sizes[] = {Limits::denorm_min() * 16, Limits::min(), Limits::max() / 8, Limits::max() / 2};
    const std::int64_t count = std::ssize(sizes), rhs = 5;
    for (const Format format : all_formats)
        for (const std::int64_t lb : {1, 2, 3, 4, 5}) {
            if (lb > 1 && format != Format::bsr && format != Format::bsc) continue;
            for (const char* letters : {"ntln", "ttun", "nd_n"})
                for (const Routine routine : {Routine::svout, Routine::smout})
                    for (const char layout : {'c', 'f'}) {
                        const Shape s{
                            layout == 'c' ? '0' : '1', letters[0], letters[1], letters[2], letters[3], layout};
                        SCOPED_TRACE(name_of(format, routine, s) + ", blocks of " + std::to_string(lb));
                        Sparse<T> a{count, count, lb, {}};
                        for (std::int64_t i = 0; i < count; ++i) {
                            a.blocks.push_back({i, i, std::vector<T>(static_cast<std::size_t>(lb * lb))});
                            for (std::int64_t r = 0; r < lb; ++r)
                                a.blocks.back().value[static_cast<std::size_t>(r * (lb + 1))] = T(sizes[i]);
                        }
                        const auto member = kernel<Int>(format, routine, s, a, Arrangement{s});
                        if (!member->found()) return;
                        const std::int64_t rows = count * lb, sides = routine == Routine::svout ? 1 : rhs;
                        const auto at = [&](std::int64_t r, std::int64_t j) {
                            return static_cast<std::size_t>(layout == 'c' ? r * sides + j : j * rows + r);
                        };
                        std::vector<T> b(static_cast<std::size_t>(rows * sides)), got;
                        for (std::int64_t r = 0; r < rows; ++r)
                            for (std::int64_t j = 0; j < sides; ++j) b[at(r, j)] = T(sizes[r / lb]) * Real<T>(1.5);
                        const auto solve = [&] {
                            got = b;
                            if (routine == Routine::svout)
                                member->svout(count, got.data());
                            else
                                member->smout(1, sides, count, got.data(), layout == 'c' ? sides : rows);
                        };
                        EXPECT_TRUE(keeps_fp_environment(solve, fp_inexact | fp_denormal, true));
                        for (const T& x : got)
                            EXPECT_TRUE(is_near(x, expected(Wide<quad>(T(Real<T>(1.5)))), 4)) << show(x);
                        if (this->HasFailure()) return;
                    }
        }
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// What kernels leave behind besides their results: floating-point control and flags, and no more than a small stack.
#include "support/environment.h"
#include "trans/matrices.h"

namespace ork::test {
namespace {

template <class T>
class Environment : public testing::Test {
};
TYPED_TEST_SUITE(Environment, Precisions, PrecisionNames);

TYPED_TEST(Environment, IsKeptAndTheStackSmall)
{
    using T = TypeParam;
    const auto copy = KERNEL(omatcopy2_seq);
    const auto in_place = KERNEL(imatcopy);
    const auto add = KERNEL(omatadd);
    ASSERT_TRUE(copy && in_place && add);
    drivers() = {Drivers::Square::declines, {}};
    for (const auto& [m, n] : {std::pair<Int, Int>{1, 7}, {5, 5}, {33, 18}, {64, 64}, {70, 257}, {257, 257}}) {
        SCOPED_TRACE(testing::Message() << m << " x " << n);
        const auto size = static_cast<std::size_t>((m + 1) * (n + 1));
        std::vector<T> a(random_values<T>()), b(size), c(size);
        a.resize(size, T(3));
        for (const char trans : {'N', 'T', 'R', 'C'})
            for (const T alpha : {T(1), some<T>(0.5f, -1)}) {
                const Int ldb = transposes(trans) ? n : m;
                const std::pair<const char*, std::function<void()>> calls[] = {
                    {"omatcopy", [&] { copy('C', trans, m, n, alpha, a.data(), m, 1, b.data(), ldb, 1); }},
                    {"imatcopy",
                     [&] {
                         std::copy(a.begin(), a.end(), b.begin());
                         in_place('C', trans, m, n, alpha, b.data(), m, ldb);
                     }},
                    {"imatcopy with gaps",
                     [&] {
                         std::copy(a.begin(), a.end(), b.begin());
                         in_place('C', trans, m, n, alpha, b.data(), m, ldb + 1);
                     }},
                    {"omatadd",
                     [&] {
                         add('C', 'N', trans, ldb, m + n - ldb, alpha, a.data(), ldb, T(2), a.data(), m, c.data(), ldb);
                     }},
                    {"omatadd in place",
                     [&] {
                         std::copy(a.begin(), a.end(), c.begin());
                         add('C', 'N', trans, ldb, m + n - ldb, alpha, a.data(), ldb, T(2), c.data(), m, c.data(), ldb);
                     }},
                };
                for (const auto& [name, call] : calls) {
                    EXPECT_TRUE(keeps_fp_environment(call)) << name << ' ' << trans;
                    run_on_small_stack(small_stack, call);
                }
            }
    }
}

// Elements that only change places are never looked at as numbers.
TYPED_TEST(Environment, MovesRaiseNothingAndKeepDenormalNumbers)
{
    using T = TypeParam;
    for (const auto& [m, n] : {std::pair<Int, Int>{9, 9}, {40, 40}, {13, 30}, {70, 69}})
        for (const char trans : {'N', 'T', 'R', 'C'})
            for (const Int stride : {1, 2}) {
                const Layout from{'C', m, n, m * stride, stride}, in_place{'C', m, n, m};
                const Layout to = layout('C', transposes(trans), m, n, 0);
                Guarded<T> a(from.extent()), b(to.extent()), ab(to.extent()), before(to.extent());
                fill(a, from, special_values<T>());
                fill(before, in_place, special_values<T>());
                EXPECT_TRUE(keeps_fp_environment(
                    [&] {
                        std::memcpy(ab.data(), before.data(), static_cast<std::size_t>(ab.size()) * sizeof(T));
                        KERNEL(omatcopy2)('C', trans, m, n, T(1), a.data(), from.ld, stride, b.data(), to.ld, 1);
                        KERNEL(imatcopy)('C', trans, m, n, T(1), ab.data(), m, to.ld);
                    },
                    0));
                expect_matrix(b.data(), to, true, [&](Int i, Int j) { return element(a.data(), from, trans, i, j); });
                expect_matrix(ab.data(), to, true,
                              [&](Int i, Int j) { return element(before.data(), in_place, trans, i, j); });
            }
}

} // namespace
} // namespace ork::test

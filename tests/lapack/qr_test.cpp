// SPDX-License-Identifier: MIT
#include "lapack/plain_factors.h"

namespace ork::test {
namespace {

template <class T>
class Qr : public testing::Test {
};
TYPED_TEST_SUITE(Qr, Precisions, PrecisionNames);

using Long = std::complex<long double>;

// Columns of a matrix of m rows.
using Columns = std::vector<std::vector<Long>>;

// H1 H2 ... applied to columns of m rows, in the order of Q = H1 H2 ... from the right.
template <class T>
void apply_q(const Stored<T>& a, const std::vector<T>& tau, Columns& x)
{
    for (Int k = std::min(a.m, a.n) - 1; k >= 0; --k)
        for (auto& column : x) {
            const auto v = [&](Int i) { return i == k ? Long(1) : Long(a(i, k)); };
            Long sum = 0;
            for (Int i = k; i < a.m; ++i) sum += std::conj(v(i)) * column[static_cast<std::size_t>(i)];
            for (Int i = k; i < a.m; ++i)
                column[static_cast<std::size_t>(i)] -= Long(tau[static_cast<std::size_t>(k)]) * sum * v(i);
        }
}

TYPED_TEST(Qr, QTimesRIsTheMatrixAndQIsUnitary)
{
    using T = TypeParam;
    using R = Real<T>;
    const auto kernel = KERNEL(geqrf_small);
    ASSERT_TRUE(kernel);
    Random random(6);
    std::vector<std::pair<Int, Int>> shapes = {{0, 3}, {3, 0},   {8, 3},   {3, 8}, {1, 5},
                                               {5, 1}, {33, 17}, {17, 33}, {70, 4}};
    for (Int n = 1; n <= 12; ++n) shapes.push_back({n, n});
    for (const Int n : {16, 24, 31, 32, 64}) shapes.push_back({n, n});
    const R scales[] = {R(1), std::numeric_limits<R>::max() / 256, std::numeric_limits<R>::min() * 16};
    for (const auto& [m, n] : shapes)
        for (const R scale : scales)
            for (const bool has_zeros : {false, true}) {
                SCOPED_TRACE(testing::Message()
                             << m << " x " << n << ", scale " << scale << (has_zeros ? ", zeros" : ""));
                const Int lda = m + (m + n) % 3, steps = std::min(m, n);
                Stored<T> a(m, n, lda, Guard::end, [&](Int i, Int j) {
                    return has_zeros && (j == 1 || i > j) ? T(0) : scale * random.uniform<T>();
                });
                const auto before = a.elements();
                std::vector<T> tau(static_cast<std::size_t>(steps), T(-77));
                Guarded<T> work(std::max<Int>(n, 1));
                Int info = -99, lwork = -1;
                kernel(&m, &n, a.a.data(), &lda, tau.data(), work.data(), &lwork, &info);
                ASSERT_EQ(std::real(work[0]), static_cast<R>(std::max<Int>(n, 1)));
                ASSERT_TRUE(a.a.unchanged());
                lwork = n;
                kernel(&m, &n, a.a.data(), &lda, tau.data(), work.data(), &lwork, &info);
                ASSERT_EQ(info, 0);
                ASSERT_TRUE(a.padding_intact());

                const long double tolerance =
                    20 * static_cast<long double>(std::max<Int>(m, 1)) * std::numeric_limits<R>::epsilon();
                Columns r(static_cast<std::size_t>(n)), q(static_cast<std::size_t>(m));
                for (Int j = 0; j < n; ++j)
                    for (Int i = 0; i < m; ++i)
                        r[static_cast<std::size_t>(j)].push_back(i <= j ? Long(a(i, j)) : Long(0));
                for (Int j = 0; j < m; ++j)
                    for (Int i = 0; i < m; ++i) q[static_cast<std::size_t>(j)].push_back(i == j ? 1 : 0);
                apply_q(a, tau, r);
                apply_q(a, tau, q);
                for (Int j = 0; j < n; ++j)
                    for (Int i = 0; i < m; ++i)
                        ASSERT_TRUE(std::abs(r[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)] -
                                             Long(before[static_cast<std::size_t>(i + j * m)])) <=
                                    tolerance * scale + std::numeric_limits<R>::denorm_min() * m)
                            << i << ", " << j;
                for (std::size_t j = 0; j < q.size(); ++j)
                    for (std::size_t i = 0; i < q.size(); ++i) {
                        Long sum = i == j ? -1 : 0;
                        for (std::size_t k = 0; k < q.size(); ++k) sum += std::conj(q[i][k]) * q[j][k];
                        ASSERT_TRUE(std::abs(sum) <= tolerance) << i << ", " << j;
                    }
                for (Int k = 0; k < steps; ++k) {
                    ASSERT_EQ(std::imag(a(k, k)), R(0)) << "the diagonal of R is real";
                    if (has_zeros && k == 1) {
                        ASSERT_EQ(tau[1], T(0)) << "nothing to annihilate";
                    }
                }
            }
}

} // namespace
} // namespace ork::test

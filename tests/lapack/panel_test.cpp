// SPDX-License-Identifier: MIT
// The Hermitian product and updates of blocked reductions: one triangle of A, the other one left alone.
#include "lapack/kernel.h"
#include "lapack/values.h"
#include "support/fake_core.h"

namespace ork::test {
namespace {

template <class T>
class Panels : public testing::Test {
protected:
    FreshCore core;
};
TYPED_TEST_SUITE(Panels, Precisions, PrecisionNames);

using W = Wide<quad>;

// A(i, j) of a Hermitian matrix of which one triangle is stored; its diagonal is real whatever stands there.
template <class T>
W element(const Matrix<T>& a, bool upper, Int i, Int j)
{
    if (i == j) return W(W(a(i, i)).re);
    return (i < j) == upper ? W(a(i, j)) : conj(W(a(j, i)));
}

TYPED_TEST(Panels, ProductsAndUpdates)
{
    using T = TypeParam;
    using R = Real<T>;
    Random random;
    const T alpha = some<T>(0.7f, -0.4f), beta = some<T>(-1.1f, 0.2f);
    const R real_beta = R(0.6);
    const Int k = 3, incx = 2, incy = -1;
    for (const char uplo : {'U', 'L'})
        for (const Int n : {0, 1, 2, 7, 20}) {
            SCOPED_TRACE(std::string(1, uplo) + ' ' + std::to_string(n));
            const bool upper = uplo == 'U';
            const auto stored = [&](Int i, Int j) { return i == j || (i < j) == upper; };
            Matrix<T> a(n, n, n + 1), before(n, n, n + 1), x2(n, k, n), y2(n, k, n + 2);
            a.fill(random), x2.fill(random), y2.fill(random);
            Vector<T> x(uniform_values<T>(n, 2), incx), y(uniform_values<T>(n, 3), incy), z(y.values(), incy);
            for (Int i = 0; i < n; ++i)
                for (Int j = 0; j < n; ++j) before(i, j) = a(i, j);

            KERNEL(hemv_nb)(&uplo, &n, &alpha, a.data(), &a.ld(), x.data(), &incx, &beta, y.data(), &incy);
            for (Int i = 0; i < n; ++i) {
                Expected<quad> want;
                want.add(multiply<T>(W(beta), W(z[i])));
                for (Int j = 0; j < n; ++j)
                    want.add(multiply<T>(W(alpha), multiply<T>(element(a, upper, i, j), W(x[j]))));
                expect_near(y[i], want, static_cast<double>(n) + 4);
            }
            EXPECT_TRUE(a.unchanged());
            if constexpr (!is_complex<T>) {
                KERNEL(symv_nb)(&uplo, &n, &alpha, a.data(), &a.ld(), x.data(), &incx, &beta, z.data(), &incy);
                expect_equal(z.values(), y.values());
            }

            const auto rank_2 = [&](Expected<quad>& want, W u, W v, W p, W q) { // alpha u q' + alpha' v p'
                want.add(multiply<T>(multiply<T>(W(alpha), u), conj(q)));
                want.add(multiply<T>(multiply<T>(conj(W(alpha)), v), conj(p)));
            };
            const auto check = [&](auto&& expected) {
                EXPECT_TRUE(a.unchanged_except(stored));
                for (Int j = 0; j < n; ++j)
                    for (Int i = 0; i < n; ++i)
                        if (stored(i, j)) {
                            Expected<quad> want = expected(i, j);
                            if (i == j) want.value.im = 0;
                            expect_near(a(i, j), want, 8);
                        }
                for (Int i = 0; i < n; ++i)
                    for (Int j = 0; j < n; ++j) a(i, j) = before(i, j);
            };
            KERNEL(her2_nb)(&uplo, &n, &alpha, x.data(), &incx, y.data(), &incy, a.data(), &a.ld());
            check([&](Int i, Int j) {
                Expected<quad> want;
                want.add(element(before, upper, i, j));
                rank_2(want, W(x[i]), W(y[i]), W(x[j]), W(y[j]));
                return want;
            });
            KERNEL(her2k_nb)
            (&uplo, "N", &n, &k, &alpha, x2.data(), &x2.ld(), y2.data(), &y2.ld(), &real_beta, a.data(), &a.ld());
            check([&](Int i, Int j) {
                Expected<quad> want;
                want.add(multiply<T>(W(real_beta), element(before, upper, i, j)));
                for (Int l = 0; l < k; ++l) rank_2(want, W(x2(i, l)), W(y2(i, l)), W(x2(j, l)), W(y2(j, l)));
                return want;
            });
            if (testing::Test::HasFailure()) return;
        }
}

} // namespace
} // namespace ork::test

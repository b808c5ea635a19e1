// SPDX-License-Identifier: MIT
// Sparse-vector kernels against a loop over the entries in order, bit for bit, with positions that repeat.
#include <limits>

#include "blas/level1_kernels_by_type.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/strided.h"

namespace ork::test {
namespace {

template <class T>
T scalar(double re, double im)
{
    if constexpr (is_complex<T>)
        return {static_cast<Real<T>>(re), static_cast<Real<T>>(im)};
    else
        return static_cast<T>(re);
}

// nz entries at positions of a dense vector that has three untouched elements for every touched one, all guarded.
template <class T>
struct Sparse {
    Sparse(int64_t nz, bool repeated, Guard side)
        : nz(nz), x(spread_values<T>(nz, 1), side, sizeof(Real<T>)), indx(nz, side),
          y(spread_values<T>(4 * nz + 1, 2), side)
    {
        Random random(static_cast<std::uint64_t>(nz));
        for (int64_t i = 0; i < nz; ++i) indx[i] = repeated ? random.integer(1, nz / 2 + 1) : 4 * ((i + 3) % nz) + 1;
        indx.read_only();
    }
    int64_t nz;
    Guarded<T> x;
    Guarded<int64_t> indx;
    Guarded<T> y;
};

template <class T>
class Level1Sparse : public testing::Test {
public:
    // Runs the kernel, and one(x[i], y[indx[i] - 1]) over copies; both must then be the same.
    template <class Kernel, class One>
    static void check(Kernel&& kernel, One&& one, bool writes_x, bool writes_y)
    {
        for (int64_t nz = 0; nz <= 35; ++nz)
            for (const bool repeated : {false, true})
                for (const Guard side : both_guards) {
                    SCOPED_TRACE(testing::Message() << "nz " << nz << (repeated ? " repeated" : ""));
                    Sparse<T> s(nz, repeated, side);
                    std::vector<T> x = s.x.values(), y = s.y.values();
                    for (int64_t i = 0; i < nz; ++i)
                        one(x[static_cast<std::size_t>(i)], y[static_cast<std::size_t>(s.indx[i] - 1)]);
                    if (!writes_x) s.x.read_only();
                    if (!writes_y) s.y.read_only();
                    kernel(s);
                    expect_same_bits<T>(s.x, x, nz);
                    expect_same_bits<T>(s.y, y, static_cast<int64_t>(y.size()));
                    EXPECT_TRUE(s.x.unchanged_outside() && s.y.unchanged_outside());
                }
    }
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(Level1Sparse, Precisions);

TYPED_TEST(Level1Sparse, AxpyiAddsEveryEntry)
{
    using T = TypeParam;
    const T alpha = scalar<T>(0.7, -1.3);
    this->check([&](Sparse<T>& s) { axpyi<T>(&s.nz, &alpha, s.x.data(), s.indx.data(), s.y.data()); },
                [&](T& x, T& y) { y = y + times(alpha, x); }, false, true);
}

TYPED_TEST(Level1Sparse, AxpyiWithAlphaZeroTouchesNothing)
{
    using T = TypeParam;
    const T zero{};
    Sparse<T> s(9, false, Guard::end);
    for (int64_t i = 0; i < 9; ++i) s.x[i] = T(std::numeric_limits<Real<T>>::quiet_NaN());
    s.y.read_only();
    axpyi<T>(&s.nz, &zero, s.x.data(), s.indx.data(), s.y.data());
    EXPECT_TRUE(s.y.unchanged());
}

TYPED_TEST(Level1Sparse, GthrGathers)
{
    using T = TypeParam;
    this->check([](Sparse<T>& s) { gthr<T>(&s.nz, s.y.data(), s.x.data(), s.indx.data()); }, [](T& x, T& y) { x = y; },
                true, false);
}

TYPED_TEST(Level1Sparse, GthrzLeavesZerosAndFindsThemAtARepeatedPosition)
{
    using T = TypeParam;
    this->check([](Sparse<T>& s) { gthrz<T>(&s.nz, s.y.data(), s.x.data(), s.indx.data()); },
                [](T& x, T& y) { x = y, y = T{}; }, true, true);
}

TYPED_TEST(Level1Sparse, SctrScattersAndTheLaterEntryWins)
{
    using T = TypeParam;
    this->check([](Sparse<T>& s) { sctr<T>(&s.nz, s.x.data(), s.indx.data(), s.y.data()); }, [](T& x, T& y) { y = x; },
                false, true);
}

TYPED_TEST(Level1Sparse, RotiRotates)
{
    using T = TypeParam;
    if constexpr (!is_complex<T>) {
        const T c = T(0.6), s = T(-0.7), one = 1, zero = 0;
        this->check([&](Sparse<T>& v) { roti<T>(&v.nz, v.x.data(), v.indx.data(), v.y.data(), &c, &s); },
                    [&](T& x, T& y) {
                        const T a = x, b = y;
                        x = c * a + s * b, y = c * b - s * a;
                    },
                    true, true);
        this->check([&](Sparse<T>& v) { roti<T>(&v.nz, v.x.data(), v.indx.data(), v.y.data(), &one, &zero); },
                    [](T&, T&) {}, false, false);
    }
}

TYPED_TEST(Level1Sparse, DotiAddsInItsOrder)
{
    using T = TypeParam;
    for (int64_t nz = 0; nz <= 67; ++nz)
        for (const bool repeated : {false, true})
            for (const Guard side : both_guards) {
                SCOPED_TRACE(nz);
                Sparse<T> s(nz, repeated, side);
                s.x.read_only(), s.y.read_only();
                T want{}, want_c{};
                const auto term = [&](int64_t i) { return times(s.x[i], s.y[s.indx[i] - 1]); };
                if constexpr (is_complex<T>) {
                    for (int64_t i = 0; i < nz; ++i) {
                        want = want + term(i);
                        want_c = want_c + times(std::conj(s.x[i]), s.y[s.indx[i] - 1]);
                    }
                } else {
                    T a[4][2] = {}; // products 0 1, 2 3, 4 5, 6 7 of every eight
                    for (int64_t i = 0; i < nz / 8 * 8; ++i) a[i % 8 / 2][i % 2] += term(i);
                    T lane[2];
                    for (int l = 0; l < 2; ++l) lane[l] = (a[0][l] + a[1][l]) + (a[2][l] + a[3][l]);
                    want = lane[0] + lane[1];
                    for (int64_t i = nz / 8 * 8; i < nz; ++i) want += term(i);
                    want_c = want;
                }
                expect_same_bits<T>(doti<T>(&s.nz, s.x.data(), s.indx.data(), s.y.data()), want);
                expect_same_bits<T>(dotci<T>(&s.nz, s.x.data(), s.indx.data(), s.y.data()), want_c);
            }
}

TYPED_TEST(Level1Sparse, RaiseNoFlagOfTheirOwn)
{
    using T = TypeParam;
    for (int64_t nz = 0; nz <= 17; ++nz) {
        Sparse<T> s(nz, false, Guard::end);
        const T alpha = scalar<T>(0.7, -1.3);
        EXPECT_TRUE(keeps_fp_environment([&] {
            axpyi<T>(&nz, &alpha, s.x.data(), s.indx.data(), s.y.data());
            doti<T>(&nz, s.x.data(), s.indx.data(), s.y.data());
            gthrz<T>(&nz, s.y.data(), s.x.data(), s.indx.data());
            sctr<T>(&nz, s.x.data(), s.indx.data(), s.y.data());
        }));
    }
}

} // namespace
} // namespace ork::test

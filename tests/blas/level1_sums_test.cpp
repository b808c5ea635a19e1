// SPDX-License-Identifier: MIT
// dot, asum, nrm2: the order of additions bit for bit, accuracy, and what the sequential meaning asks of increments.
#include <cmath>
#include <limits>

#include "blas/level1_kernels_by_type.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/strided.h"

namespace ork::test {
namespace {

template <class R>
constexpr R nan = std::numeric_limits<R>::quiet_NaN();
template <class R>
constexpr R infinity = std::numeric_limits<R>::infinity();

// Terms in registers of `lanes` numbers: register r goes to accumulator owner(r), number i of it to lane i; a half
// register as the lower lanes of one more.
template <class R>
class Accumulators {
public:
    static constexpr int lanes = 16 / sizeof(R);
    explicit Accumulators(int count) : sum_(static_cast<std::size_t>(count)) {}

    void add(int owner, int lane, R term)
    {
        R& sum = sum_[static_cast<std::size_t>(owner)].lane[lane];
        sum = sum + term;
    }
    // Lane by lane.
    struct Register {
        R lane[lanes] = {};
        friend Register operator+(Register a, const Register& b)
        {
            for (int i = 0; i < lanes; ++i) a.lane[i] = a.lane[i] + b.lane[i];
            return a;
        }
        R folded() const
        {
            if constexpr (lanes == 2)
                return lane[0] + lane[1];
            else
                return (lane[0] + lane[2]) + (lane[1] + lane[3]);
        }
        // Of pairs (re, im): the sums of each.
        std::complex<R> folded_pairs() const
        {
            if constexpr (lanes == 2)
                return {lane[0], lane[1]};
            else
                return {lane[0] + lane[2], lane[1] + lane[3]};
        }
    };
    const Register& operator[](int i) const { return sum_[static_cast<std::size_t>(i)]; }

private:
    std::vector<Register> sum_;
};

// Blocks of 16 registers rotate through four accumulators, everything after them goes to the first.
template <class R>
typename Accumulators<R>::Register four_sums(int64_t count, const std::vector<R>& terms)
{
    constexpr int lanes = Accumulators<R>::lanes;
    Accumulators<R> a(4);
    const int64_t in_blocks = count / (16 * lanes) * (16 * lanes);
    for (int64_t i = 0; i < count; ++i)
        a.add(i < in_blocks ? static_cast<int>(i / lanes % 4) : 0, static_cast<int>(i % lanes),
              terms[static_cast<std::size_t>(i)]);
    return (a[2] + a[3]) + (a[1] + a[0]);
}

template <class R>
R dot_in_order(const std::vector<R>& x, const std::vector<R>& y)
{
    std::vector<R> terms(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) terms[i] = x[i] * y[i];
    const auto n = static_cast<int64_t>(x.size());
    R sum = four_sums(n - n % 2, terms).folded();
    if (n % 2 != 0) sum = sum + terms.back();
    return sum;
}

template <class R>
std::complex<R> dot_in_order(const std::vector<std::complex<R>>& x, const std::vector<std::complex<R>>& y,
                             bool conjugate)
{
    std::vector<R> straight, crossed;
    for (std::size_t i = 0; i < x.size(); ++i) {
        straight.push_back(x[i].real() * y[i].real()), straight.push_back(x[i].imag() * y[i].imag());
        crossed.push_back(x[i].real() * y[i].imag()), crossed.push_back(x[i].imag() * y[i].real());
    }
    const auto n = static_cast<int64_t>(straight.size());
    const std::complex<R> s = four_sums(n, straight).folded_pairs(), c = four_sums(n, crossed).folded_pairs();
    if (conjugate) return {s.real() + s.imag(), c.real() - c.imag()};
    return {s.real() - s.imag(), c.real() + c.imag()};
}

template <class R>
R asum_in_order(const std::vector<R>& x)
{
    constexpr int lanes = Accumulators<R>::lanes;
    Accumulators<R> a(8);
    const auto n = static_cast<int64_t>(x.size());
    const int64_t in_blocks = n / (8 * lanes) * (8 * lanes);
    const int left = static_cast<int>((n - in_blocks) / lanes); // registers
    for (int64_t i = 0; i + n % 2 < n; ++i) {
        int owner = static_cast<int>(i / lanes % 8);
        if (i >= in_blocks) {
            const int r = owner, four = left & 4, two = left & 2;
            owner = r < four ? r : r < four + two ? 4 + (r - four) : r < left ? 6 : 7;
        }
        a.add(owner, static_cast<int>(i % lanes), std::abs(x[static_cast<std::size_t>(i)]));
    }
    R sum = (((a[0] + a[1]) + (a[2] + a[3])) + ((a[4] + a[5]) + (a[6] + a[7]))).folded();
    if (n % 2 != 0) sum = sum + std::abs(x.back());
    return sum;
}

double scaled_norm(const std::vector<double>& x)
{
    double scale = 0, ssq = 1;
    for (const double value : x) {
        if (value == 0) continue;
        const double a = std::abs(value);
        if (a > scale)
            ssq = 1 + ssq * ((scale / a) * (scale / a)), scale = a;
        else
            ssq = ssq + (a / scale) * (a / scale);
    }
    return scale * std::sqrt(ssq);
}

template <class T>
std::vector<Real<T>> parts(const std::vector<T>& x)
{
    const auto* p = reinterpret_cast<const Real<T>*>(x.data());
    return {p, p + x.size() * sizeof(T) / sizeof(Real<T>)};
}

constexpr int64_t unit = 1;

template <class T>
class Level1Sums : public testing::Test {
public:
    static constexpr int64_t longest = 4 * stretch<T> + 3;
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(Level1Sums, Precisions);

TYPED_TEST(Level1Sums, DotAddsInItsOrder)
{
    using T = TypeParam;
    for (int64_t n = 0; n <= this->longest; ++n) {
        SCOPED_TRACE(n);
        for (const Guard side : both_guards) {
            const std::vector<T> u = spread_values<T>(n, 1), v = spread_values<T>(n, 2);
            Vector<T> x(u, 1, side, sizeof(Real<T>) * static_cast<std::size_t>(n % 3)), y(v, 1, side);
            x.read_only(), y.read_only();
            if constexpr (is_complex<T>) {
                expect_same_bits<T>(dot<T>(&n, x.data(), &unit, y.data(), &unit), dot_in_order(u, v, false));
                expect_same_bits<T>(dotc<T>(&n, x.data(), &unit, y.data(), &unit), dot_in_order(u, v, true));
            } else {
                expect_same_bits<T>(dot<T>(&n, x.data(), &unit, y.data(), &unit), dot_in_order(u, v));
            }
        }
    }
}

TYPED_TEST(Level1Sums, DotWithOtherIncrementsAddsOneByOne)
{
    using T = TypeParam;
    for (const int64_t n : {1, 2, 3, 7, 8, 9, 16, 17, 40})
        for (int64_t incx = -3; incx <= 3; ++incx)
            for (int64_t incy = -3; incy <= 3; ++incy) {
                if (incx == 1 && incy == 1) continue;
                SCOPED_TRACE(testing::Message() << n << " incx " << incx << " incy " << incy);
                Vector<T> x(spread_values<T>(n, 1), incx, Guard::begin), y(spread_values<T>(n, 2), incy, Guard::end);
                x.read_only(), y.read_only();
                T want{}, want_c{};
                for (int64_t i = 0; i < n; ++i) {
                    want = want + times(x[i], y[i]);
                    want_c = want_c + times(conjugated(x[i]), y[i]);
                }
                expect_same_bits<T>(dot<T>(&n, x.data(), &incx, y.data(), &incy), want);
                expect_same_bits<T>(dotc<T>(&n, x.data(), &incx, y.data(), &incy), want_c);
            }
}

TYPED_TEST(Level1Sums, DotIsAccurate)
{
    using T = TypeParam;
    for (const int64_t n : {1, 10, 100, 1000}) {
        const std::vector<T> x = uniform_values<T>(n, 1), y = uniform_values<T>(n, 2);
        const auto size = static_cast<double>(n);
        expect_near(dot<T>(&n, x.data(), &unit, y.data(), &unit), reference_dot<T>(n, x, y), size);
        expect_near(dotc<T>(&n, x.data(), &unit, y.data(), &unit), reference_dot<T>(n, x, y, true), size);
    }
}

TYPED_TEST(Level1Sums, AsumAddsInItsOrder)
{
    using T = TypeParam;
    for (int64_t n = 0; n <= this->longest; ++n)
        for (const Guard side : both_guards) {
            const std::vector<T> u = spread_values<T>(n, 1);
            Vector<T> x(u, 1, side);
            x.read_only();
            expect_same_bits(asum<T>(&n, x.data(), &unit), asum_in_order(parts(u)));
        }
}

TYPED_TEST(Level1Sums, AsumWithOtherIncrementsAddsOneByOne)
{
    using T = TypeParam;
    for (const int64_t n : {1, 2, 7, 8, 9, 31})
        for (const int64_t inc : {-3, -2, -1, 0, 2, 3}) {
            Vector<T> x(spread_values<T>(n, 1), inc, inc < 0 ? Guard::begin : Guard::end);
            x.read_only();
            Real<T> want = 0;
            for (int64_t i = 0; i < n; ++i) want = want + magnitude1(x[i]);
            expect_same_bits(asum<T>(&n, x.data(), &inc), want);
        }
}

TYPED_TEST(Level1Sums, Nrm2KeepsToItsMethod)
{
    using T = TypeParam;
    using R = Real<T>;
    for (int64_t n = 0; n <= this->longest; ++n)
        for (const int64_t inc : {1, -1, 2, -3}) {
            SCOPED_TRACE(testing::Message() << n << " inc " << inc);
            std::vector<T> u = spread_values<T>(n, static_cast<std::uint64_t>(n) + 1);
            for (std::size_t i = 0; i < u.size(); i += 5) u[i] = T{};
            Vector<T> x(u, std::abs(inc), n % 2 != 0 ? Guard::begin : Guard::end); // counted from x whatever the sign
            x.read_only();
            const R got = nrm2<T>(&n, x.data(), &inc);
            if constexpr (std::is_same_v<R, double>) {
                expect_same_bits(got, scaled_norm(parts(u)));
            } else {
                quad squares = 0;
                for (const R part : parts(u)) squares += static_cast<quad>(part) * part;
                const auto want = static_cast<float>(std::sqrt(static_cast<double>(squares)));
                EXPECT_LE(ulp_distance(got, want), 1u);
            }
        }
}

// The order in which the largest elements come decides how often the scale changes.
TEST(Dnrm2, FollowsTheRecurrenceWhateverComesWhere)
{
    for (int64_t n = 1; n <= 40; ++n)
        for (int64_t largest = 0; largest < n; ++largest)
            for (const double big : {2.0, infinity<double>, nan<double>, 1e308, 4.9e-324}) {
                std::vector<double> x = spread_values<double>(n, 7), rising = x;
                for (int64_t i = 0; i < largest / 2; ++i) x[static_cast<std::size_t>(i)] = 0;
                x[static_cast<std::size_t>(largest)] = big;
                for (std::size_t i = 0; i < rising.size(); ++i) rising[i] = std::ldexp(rising[i], static_cast<int>(i));
                const double got = nrm2<double>(&n, x.data(), &unit);
                const double want = n == 1 ? std::abs(x[0]) : scaled_norm(x);
                if (std::isnan(want))
                    EXPECT_TRUE(std::isnan(got)) << n << ' ' << largest;
                else
                    expect_same_bits(got, want);
                if (n > 1) expect_same_bits(nrm2<double>(&n, rising.data(), &unit), scaled_norm(rising));
            }
}

TYPED_TEST(Level1Sums, NormsOfExtremesNeitherOverflowNorVanish)
{
    using T = TypeParam;
    using R = Real<T>;
    for (const R size : {std::numeric_limits<R>::max() / 16, std::numeric_limits<R>::denorm_min() * 1024}) {
        const int64_t n = 64;
        const std::vector<T> x(64, T(size));
        EXPECT_EQ(nrm2<T>(&n, x.data(), &unit), 8 * size);
        EXPECT_EQ(fp_flags_of([&] { nrm2<T>(&n, x.data(), &unit); }) & (fp_overflow | fp_invalid), 0u);
    }
    const int64_t one = 1;
    const R tiny = std::numeric_limits<R>::denorm_min();
    const std::vector<T> x(1, T(-tiny));
    EXPECT_EQ(nrm2<T>(&one, x.data(), &unit), tiny);
}

TYPED_TEST(Level1Sums, NaNIsNeverLost)
{
    using T = TypeParam;
    using R = Real<T>;
    for (const int64_t n : {1, 2, 3, 5, 8, 15, 16, 17, 33, 70, 131})
        for (int64_t where = 0; where < n; ++where)
            for (const int64_t inc : {1, 2}) {
                Vector<T> x(uniform_values<T>(n, 1), inc), y(uniform_values<T>(n, 2), inc);
                x[where] = T(nan<R>);
                SCOPED_TRACE(testing::Message() << where << " of " << n);
                EXPECT_TRUE(std::isnan(nrm2<T>(&n, x.data(), &inc)));
                EXPECT_TRUE(std::isnan(asum<T>(&n, x.data(), &inc)));
                EXPECT_TRUE(std::isnan(magnitude1(dot<T>(&n, x.data(), &inc, y.data(), &inc))));
                EXPECT_TRUE(std::isnan(magnitude1(dotc<T>(&n, y.data(), &inc, x.data(), &inc))));
            }
}

TYPED_TEST(Level1Sums, SameBitsAtEveryAlignment)
{
    using T = TypeParam;
    for (const int64_t n : {1, 2, 3, 5, 7, 15, 33, 71, 150, 1000}) {
        const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(T);
        const std::vector<T> x = spread_values<T>(n, 3), y = spread_values<T>(n, 4);
        const T want = dot<T>(&n, x.data(), &unit, y.data(), &unit);
        const T want_c = dotc<T>(&n, x.data(), &unit, y.data(), &unit);
        const Real<T> sum = asum<T>(&n, x.data(), &unit), norm = nrm2<T>(&n, x.data(), &unit);
        alignas(64) static std::byte memory[2][1000 * 16 + 64];
        for (const std::size_t offset_x : {0, 1, 4, 8, 12})
            for (const std::size_t offset_y : {0, 1, 4, 8, 12}) {
                const T* u = reinterpret_cast<T*>(memory[0] + offset_x);
                const T* v = reinterpret_cast<T*>(memory[1] + offset_y);
                std::memcpy(memory[0] + offset_x, x.data(), bytes);
                std::memcpy(memory[1] + offset_y, y.data(), bytes);
                expect_same_bits<T>(dot<T>(&n, u, &unit, v, &unit), want);
                expect_same_bits<T>(dotc<T>(&n, u, &unit, v, &unit), want_c);
                expect_same_bits(asum<T>(&n, u, &unit), sum);
                expect_same_bits(nrm2<T>(&n, u, &unit), norm);
            }
    }
}

TYPED_TEST(Level1Sums, KeepTheFloatingPointEnvironment)
{
    using T = TypeParam;
    for (int64_t n = 0; n <= stretch<T> + 3; ++n) {
        const std::vector<T> x = uniform_values<T>(n, 5), y = uniform_values<T>(n, 6);
        EXPECT_TRUE(keeps_fp_environment([&] {
            dot<T>(&n, x.data(), &unit, y.data(), &unit);
            asum<T>(&n, x.data(), &unit);
            nrm2<T>(&n, x.data(), &unit);
        })) << n;
    }
}

TYPED_TEST(Level1Sums, AreZeroForNoElements)
{
    using T = TypeParam;
    for (const int64_t n : {0, -1}) {
        EXPECT_EQ(dot<T>(&n, nullptr, &unit, nullptr, &unit), T{});
        EXPECT_EQ(dotc<T>(&n, nullptr, &unit, nullptr, &unit), T{});
        EXPECT_EQ(asum<T>(&n, nullptr, &unit), Real<T>{});
        EXPECT_EQ(nrm2<T>(&n, nullptr, &unit), Real<T>{});
    }
}

TEST(Dsdot, AddsAsDdotDoesAndSdsdotRoundsOnce)
{
    for (int64_t n = 0; n <= 131; ++n)
        for (const int64_t inc : {1, -1, 2}) {
            Vector<float> x(spread_values<float>(n, 1), inc, Guard::begin), y(spread_values<float>(n, 2), inc);
            x.read_only(), y.read_only();
            std::vector<double> u, v;
            for (int64_t i = 0; i < n; ++i) u.push_back(x[i]), v.push_back(y[i]);
            double want = inc == 1 ? dot_in_order(u, v) : 0;
            if (inc != 1)
                for (std::size_t i = 0; i < u.size(); ++i) want += u[i] * v[i];
            const float sb = 0.3f;
            expect_same_bits(ork_blas_nx2_xdsdot(&n, x.data(), &inc, y.data(), &inc), want);
            expect_same_bits(ork_blas_nx2_xsdsdot(&n, &sb, x.data(), &inc, y.data(), &inc),
                             n == 0 ? 0 : static_cast<float>(sb + want));
        }
}

TEST(Cabs1, AddsTheMagnitudesOfBothParts)
{
    const cfloat c(-3, 4);
    const cdouble z(3, -4);
    EXPECT_EQ(cabs1<cfloat>(&c), 7);
    EXPECT_EQ(cabs1<cdouble>(&z), 7);
}

} // namespace
} // namespace ork::test

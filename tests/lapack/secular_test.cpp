// SPDX-License-Identifier: MIT
#include "lapack/spectral.h"

namespace ork::test {
namespace {

quad root_of(quad x)
{
    if (x == 0) return 0;
    quad r = std::sqrt(static_cast<long double>(x)); // has the exponents of quad
    for (int i = 0; i < 2; ++i) r = (r + x / r) / 2;
    return r;
}
quad size_of(quad x) { return x < 0 ? -x : x; }

struct Secular {
    std::vector<quad> d, z;
    quad rho;

    Int n() const { return static_cast<Int>(d.size()); }
    // At sigma = d(K) + eta; the sizes of the terms and of their derivatives besides.
    quad value(Int K, quad eta, quad* sizes = nullptr, quad* slope = nullptr) const
    {
        quad sum = 1, all = 1, derivative = 0;
        for (Int j = 0; j < n(); ++j) {
            const quad p = (d[j] - d[K]) - eta, q = (d[j] + d[K]) + eta, term = rho * z[j] * z[j] / (p * q);
            sum += term, all += size_of(term), derivative += size_of(term) * size_of(1 / p - 1 / q);
        }
        if (sizes) *sizes = all, *slope = derivative;
        return sum;
    }
    // sigma(i) - d(K) by bisection of the exponent, then of the number. K: the nearer pole.
    quad distance(Int i, Int& K) const
    {
        K = i;
        quad far;
        if (i + 1 < n()) {
            far = (d[i + 1] - d[i]) / 2;
            if (value(i, far) < 0) K = i + 1;
        } else {
            quad sum = 0;
            for (const quad x : z) sum += x * x;
            far = root_of(rho * sum) * (1 + quad(1e-20));
        }
        const quad sign = K == i ? 1 : -1;
        quad near = far;
        while (sign * value(K, sign * near) > 0) near *= quad(0x1p-60);
        for (int step = 0; step < 300; ++step) {
            const quad middle = far > 4 * near ? root_of(near) * root_of(far) : near + (far - near) / 2;
            if (!(middle > near && middle < far)) break;
            (sign * value(K, sign * middle) < 0 ? near : far) = middle;
        }
        return sign * far;
    }
};

template <class T>
class SecularEquation : public testing::Test {
public:
    using R = Real<T>;

    static void check(const char* name, const std::vector<R>& d, const std::vector<R>& z, R rho)
    {
        const auto kernel = KERNEL(lasd4);
        ASSERT_NE(kernel, nullptr);
        const Int n = static_cast<Int>(d.size());
        const Secular problem{{d.begin(), d.end()}, {z.begin(), z.end()}, rho};
        for (Int i = 0; i < n; ++i) {
            SCOPED_TRACE(testing::Message() << name << ", root " << i << " of " << n);
            std::vector<R> delta(n + 1, 7), work(n + 1, 7);
            R sigma = 0;
            Int info = -99, number = i + 1;
            kernel(&n, &number, d.data(), z.data(), delta.data(), &rho, &sigma, work.data(), &info);
            ASSERT_EQ(info, 0);
            EXPECT_TRUE(delta[n] == 7 && work[n] == 7);
            Int K;
            const quad eta = problem.distance(i, K);
            quad sizes, slope;
            problem.value(K, eta, &sizes, &slope);
            // As far as f can be told from zero when its terms are rounded.
            const quad attainable = sizes / slope;
            EXPECT_TRUE(size_of(sigma - (problem.d[K] + eta)) <= 2 * eps<T> * (problem.d[K] + eta + attainable));
            EXPECT_TRUE(delta[i] < 0 && (i + 1 == n || delta[i + 1] > 0));
            for (Int j = 0; j < n; ++j) {
                const quad p = (problem.d[j] - problem.d[K]) - eta, q = (problem.d[j] + problem.d[K]) + eta;
                const quad unit = eps<T> * 3;
                ASSERT_TRUE(size_of(delta[j] - p) <= unit * (size_of(p) + attainable))
                    << "delta " << j << " off by " << static_cast<double>(size_of(delta[j] - p) / size_of(p)) / eps<T>;
                ASSERT_TRUE(size_of(work[j] - q) <= unit * (q + attainable)) << "work " << j;
            }
        }
    }
    static std::vector<R> increasing(Int n)
    {
        Random random(static_cast<std::uint64_t>(n));
        std::vector<R> d(n, 0);
        for (Int j = 1; j < n; ++j) d[j] = d[j - 1] + R(1.1) + random.uniform<R>();
        return d;
    }
    static std::vector<R> unit(Int n)
    {
        auto z = uniform_values<R>(n, static_cast<std::uint64_t>(n) + 5);
        R sum = 0;
        for (const R x : z) sum += x * x;
        for (R& x : z) x /= std::sqrt(sum);
        return z;
    }
};
TYPED_TEST_SUITE(SecularEquation, Precisions, PrecisionNames);

TYPED_TEST(SecularEquation, RootsAndDistancesAreAsAccurateAsTheyCanBe)
{
    using T = TypeParam;
    using R = Real<T>;
    constexpr bool wide_range = sizeof(R) == 8;
    const R tiny = wide_range ? R(1e-100) : R(1e-12), far = wide_range ? R(1e200) : R(1e20);
    for (const Int n : {2, 3, 4, 5, 8, 17, 40}) {
        const auto d = this->increasing(n), z = this->unit(n);
        const auto changed = [=](std::vector<R> x, auto&& change) {
            for (Int j = 0; j < n; ++j) x[j] = change(j, x[j]);
            return x;
        };
        const auto scaled = [&](R factor) { return changed(d, [=](Int, R x) { return x * factor; }); };
        this->check("moderate", d, z, 1);
        this->check("first pole above zero", changed(d, [](Int, R x) { return x + 1; }), z, R(0.5));
        this->check("clustered poles",
                    changed(d, [](Int j, R) { return j == 0 ? 0 : 1 + static_cast<R>(j) * 8 * eps<T>; }), z, 1);
        this->check("every other z tiny", d, changed(z, [=](Int j, R x) { return j % 2 ? x : x * tiny; }), 1);
        this->check("one z large", d, changed(z, [=](Int j, R x) { return j == n / 2 ? x : x * eps<T>; }), 1);
        this->check("z huge", d, changed(z, [=](Int, R x) { return x * 1000; }), 1);
        this->check("rho tiny", d, z, tiny);
        this->check("rho huge", d, z, 1 / tiny);
        this->check(
            "graded poles",
            changed(d, [=](Int j,
                           R) { return j == 0 ? 0 : std::pow(tiny, static_cast<R>(n - 1 - j) / static_cast<R>(n)); }),
            z, 1);
        this->check("all tiny", scaled(1 / far), z, wide_range ? R(1e-300) : R(1e-30));
        this->check("all huge", scaled(far), z, wide_range ? R(1e300) : R(1e30));
    }
}

TYPED_TEST(SecularEquation, OrderOneAndWhatIsNotFinite)
{
    using R = Real<TypeParam>;
    using T = TypeParam;
    const auto kernel = KERNEL(lasd4);
    Int n = 1, i = 1, info = -99;
    std::vector<R> d = {3, 4, 5}, z = {R(0.5), R(0.5), R(0.5)}, delta(3), work(3);
    R rho = 64, sigma = 0;
    kernel(&n, &i, d.data(), z.data(), delta.data(), &rho, &sigma, work.data(), &info);
    EXPECT_TRUE(info == 0 && sigma == 5 && delta[0] == 1 && work[0] == 1);
    n = 3;
    const R nan = std::numeric_limits<R>::quiet_NaN();
    for (i = 1; i <= n; ++i)
        for (R* const bad : {&d[1], &z[0], &z[2], &rho}) {
            const R old = *bad;
            *bad = nan;
            kernel(&n, &i, d.data(), z.data(), delta.data(), &rho, &sigma, work.data(), &info);
            EXPECT_TRUE(info == 1 || std::isnan(sigma)) << i;
            *bad = old;
        }
}

// U2 Q and Q VT2 with the blocks of zeros that the step takes for granted: in the order of the columns of u2, the first
// vector, `upper`, `lower` and `both` others.
template <class T>
void check_step(Int upper, Int lower, Int both, Int sqre)
{
    using R = Real<T>;
    const Int k = 1 + upper + lower + both, nl = upper + both + 2, nr = lower + both + 1, n = nl + nr + 1, m = n + sqre;
    SCOPED_TRACE(testing::Message() << upper << " + " << lower << " + " << both << ", sqre " << sqre);
    Random random(static_cast<std::uint64_t>(k));
    // Orthonormal columns by Gram and Schmidt, zero where their group says; those with the most zeros come first, so
    // that no projection spoils them.
    const auto vectors = [&](Int size, Int coupling, bool right) {
        Padded<R> v(size, k);
        std::vector<Int> done;
        for (Int step = 1; step <= k; ++step) {
            const Int j = step <= upper + lower ? step : step == upper + lower + 1 ? 0 : step - 1;
            const bool in_upper = j <= upper || j > upper + lower, in_lower = j == 0 || j > upper;
            for (Int i = 0; i < size; ++i) {
                const bool inside = right           ? (i <= coupling ? in_upper : in_lower)
                                    : j == 0        ? i == coupling
                                    : i == coupling ? false
                                    : i < coupling  ? in_upper
                                                    : in_lower;
                v(i, j) = !inside ? 0 : right || j > 0 ? random.uniform<R>() : 1;
            }
            for (int pass = 0; pass < 2; ++pass)
                for (const Int p : done) {
                    long double dot = 0;
                    for (Int i = 0; i < size; ++i) dot += static_cast<long double>(v(i, p)) * v(i, j);
                    for (Int i = 0; i < size; ++i) v(i, j) -= static_cast<R>(dot * v(i, p));
                }
            long double norm = 0;
            for (Int i = 0; i < size; ++i) norm += static_cast<long double>(v(i, j)) * v(i, j);
            for (Int i = 0; i < size; ++i) v(i, j) = static_cast<R>(v(i, j) / std::sqrt(norm));
            done.push_back(j);
        }
        return v;
    };
    const Padded<R> left = vectors(n, nl, false), rights = vectors(m, nl, true);
    const Padded<R> right(k, m, [&](Int i, Int j) { return rights(j, i); });

    std::vector<R> dsigma(k, 0), z(k), d(k, -1);
    for (Int j = 0; j < k; ++j) {
        z[j] = random.uniform<R>();
        if (j > 0) dsigma[j] = dsigma[j - 1] + R(1.01) + random.uniform<R>();
    }
    const auto old_z = z;
    // A permutation that leaves the first alone.
    std::vector<Int> idxc(n, 1);
    for (Int j = 1; j < k; ++j) idxc[j] = k % 2 == 0 ? 2 + 2 * j % (k - 1) : k + 1 - j;
    const Int ctot[4] = {upper, lower, both, 0};
    Padded<R> q(k, k), u(n, n), vt(m, m);
    Int info = -99;
    const auto kernel = KERNEL(lasd3);
    kernel(&nl, &nr, &sqre, &k, d.data(), q.data.data(), &q.ld, dsigma.data(), u.data.data(), &u.ld, left.data.data(),
           &left.ld, vt.data.data(), &vt.ld, right.data.data(), &right.ld, idxc.data(), ctot, z.data(), &info);
    ASSERT_EQ(info, 0);
    EXPECT_TRUE(u.unchanged_except([=](Int, Int j) { return j < k; }));
    EXPECT_TRUE(vt.unchanged_except([=](Int i, Int) { return i < k; }));
    EXPECT_TRUE(q.padding_intact());
    const long double tolerance = 10 * static_cast<long double>(k) * eps<T>;
    for (Int j = 0; j + 1 < k; ++j) EXPECT_TRUE(dsigma[j] < d[j] && d[j] < dsigma[j + 1]);
    for (Int j = 0; j < k; ++j) EXPECT_TRUE(std::abs(z[j] - old_z[j]) <= tolerance * 2) << "z " << j;

    // U diag(d) V^T is U2 (z in the first row, diag(dsigma) below) VT2, in the order of the roots.
    for (Int j = 0; j < m; ++j)
        for (Int i = 0; i < n; ++i) {
            long double sum = 0;
            for (Int r = 0; r < k; ++r) sum += static_cast<long double>(u(i, r)) * d[r] * vt(r, j);
            for (Int r = 0; r < k; ++r) {
                const Int of_r = idxc[r] - 1;
                sum -= static_cast<long double>(left(i, 0)) * old_z[of_r] * right(r, j);
                if (of_r > 0) sum -= static_cast<long double>(left(i, r)) * dsigma[of_r] * right(r, j);
            }
            ASSERT_TRUE(std::abs(sum) <= tolerance * d[k - 1]) << i << ", " << j << ": " << sum;
        }
    for (Int a = 0; a < k; ++a)
        for (Int b = 0; b < k; ++b) {
            long double of_u = a == b ? -1 : 0, of_v = of_u;
            for (Int i = 0; i < n; ++i) of_u += static_cast<long double>(u(i, a)) * u(i, b);
            for (Int j = 0; j < m; ++j) of_v += static_cast<long double>(vt(a, j)) * vt(b, j);
            ASSERT_TRUE(std::abs(of_u) <= tolerance && std::abs(of_v) <= tolerance) << a << ", " << b;
        }
}

TYPED_TEST(SecularEquation, TheStepGivesSingularVectors)
{
    for (const Int sqre : {0, 1})
        for (const auto& [upper, lower, both] : {std::tuple<Int, Int, Int>{0, 1, 0},
                                                 {1, 0, 0},
                                                 {0, 0, 1},
                                                 {1, 1, 0},
                                                 {2, 0, 0},
                                                 {0, 3, 0},
                                                 {3, 4, 0},
                                                 {2, 3, 2},
                                                 {20, 17, 6}})
            check_step<TypeParam>(upper, lower, both, sqre);
}

TYPED_TEST(SecularEquation, AStepOfOneColumnCopies)
{
    using T = TypeParam;
    using R = Real<T>;
    const Int nl = 1, nr = 2, sqre = 1, k = 1, ctot[4] = {0, 0, 0, 0}, idxc[4] = {1, 2, 3, 4};
    for (const R sign : {1, -1}) {
        R z = sign * 2, d = 0, dsigma = 0;
        Padded<R> q(1, 1), u(4, 4), vt(5, 5);
        const Padded<R> u2(4, 1, [](Int i, Int) { return R(i + 1); }), vt2(1, 5, [](Int, Int j) { return R(j + 1); });
        Int info = -99;
        const auto kernel = KERNEL(lasd3);
        kernel(&nl, &nr, &sqre, &k, &d, q.data.data(), &q.ld, &dsigma, u.data.data(), &u.ld, u2.data.data(), &u2.ld,
               vt.data.data(), &vt.ld, vt2.data.data(), &vt2.ld, idxc, ctot, &z, &info);
        EXPECT_TRUE(info == 0 && d == 2);
        for (Int i = 0; i < 4; ++i) EXPECT_TRUE(u(i, 0) == sign * R(i + 1) && vt(0, i) == R(i + 1));
        EXPECT_EQ(vt(0, 4), 5);
    }
}

} // namespace
} // namespace ork::test

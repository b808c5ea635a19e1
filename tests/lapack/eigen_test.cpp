// SPDX-License-Identifier: MIT
#include "lapack/spectral.h"

namespace ork::test {
namespace {

template <class T>
class Eigen : public testing::Test {
public:
    struct Result {
        Padded<T> a, vl, vr;
        std::vector<T> wr, wi, work;
        Int info = -99;

        Long value(Int j) const { return {wr[j], wi[j]}; }
        // Component i of vector j.
        static Long component(const Padded<T>& v, const std::vector<T>& wi, Int i, Int j)
        {
            if (wi[j] == 0) return v(i, j);
            return wi[j] > 0 ? Long(v(i, j), v(i, j + 1)) : Long(v(i, j - 1), -v(i, j));
        }
    };
    static Result decompose(Int n, const std::function<T(Int, Int)>& element, char jobvl, char jobvr)
    {
        const auto kernel = KERNEL(geev_small);
        Result r{{n, n, element}, {n, n}, {n, n}, std::vector<T>(n), std::vector<T>(n), {}};
        const auto call = [&](Int size, Int lwork) {
            r.work.assign(size, std::numeric_limits<T>::quiet_NaN());
            kernel(&jobvl, &jobvr, &n, r.a.data.data(), &r.a.ld, r.wr.data(), r.wi.data(), r.vl.data.data(), &r.vl.ld,
                   r.vr.data.data(), &r.vr.ld, r.work.data(), &lwork, &r.info);
        };
        if (kernel == nullptr) return r;
        call(1, -1);
        const Int size = static_cast<Int>(r.work[0]);
        const auto wanted = [](char job) { return job == 'V' || job == 'v'; };
        EXPECT_EQ(size, (wanted(jobvl) || wanted(jobvr) ? 4 : 3) * n);
        EXPECT_TRUE(r.a.unchanged_except([](Int, Int) { return false; })) << "the query has touched a";
        call(size, size);
        EXPECT_TRUE(r.a.padding_intact() && r.vl.padding_intact() && r.vr.padding_intact());
        return r;
    }
};
TYPED_TEST_SUITE(Eigen, RealPrecisions, PrecisionNames);

// The norm of A v - lambda v, or of A^T conj(u) - lambda conj(u), beside that of A.
template <class T, class Result>
long double residual(const Padded<T>& a, const Result& r, Int j, bool left)
{
    const Int n = a.rows;
    const auto x = [&](Int i) {
        return left ? std::conj(Result::component(r.vl, r.wi, i, j)) : Result::component(r.vr, r.wi, i, j);
    };
    const long double size = largest(a);
    if (size == 0) return std::abs(r.value(j));
    long double norm = 0, of_a = 0;
    for (Int i = 0; i < n; ++i) {
        Long sum = -r.value(j) / size * x(i);
        for (Int k = 0; k < n; ++k) {
            const long double element = (left ? a(k, i) : a(i, k)) / size;
            sum += element * x(k), of_a += element * element;
        }
        norm += std::norm(sum);
    }
    return std::sqrt(norm / of_a);
}

TYPED_TEST(Eigen, VectorsSolveTheirEquations)
{
    using T = TypeParam;
    for (const Int n : orders)
        for (const auto& kind : kinds<T>(n, 5)) {
            // Residuals are small beside the balanced matrix, which this one is far from.
            if (std::strcmp(kind.name, "graded rows") == 0) continue;
            SCOPED_TRACE(testing::Message() << kind.name << ", order " << n);
            const auto r = this->decompose(n, kind.element, 'V', 'v');
            ASSERT_EQ(r.info, 0);
            const Padded<T> a(n, n, kind.element);
            const long double tolerance = 4 * static_cast<long double>(n + 4) * eps<T>;
            for (Int j = 0; j < n; ++j) {
                const Int partner = r.wi[j] > 0 ? j + 1 : r.wi[j] < 0 ? j - 1 : j;
                EXPECT_TRUE(r.wi[partner] == -r.wi[j] && r.wr[partner] == r.wr[j]) << "value " << j;
                for (const bool left : {false, true}) {
                    EXPECT_TRUE(residual(a, r, j, left) <= tolerance)
                        << (left ? "left " : "right ") << j << ": " << residual(a, r, j, left) / eps<T> << " eps";
                    const auto& v = left ? r.vl : r.vr;
                    long double norm = 0, most = 0;
                    for (Int i = 0; i < n; ++i) {
                        const long double size = std::norm(r.component(v, r.wi, i, j));
                        norm += size, most = std::max(most, size);
                    }
                    EXPECT_TRUE(std::abs(std::sqrt(norm) - 1) <= 8 * eps<T>) << "vector " << j;
                    // Of several largest components any may be the real one.
                    bool real = false;
                    for (Int i = 0; i < n; ++i) {
                        const Long x = r.component(v, r.wi, i, j);
                        real = real || (std::norm(x) >= most * (1 - 16 * eps<T>)&&x.imag() == 0);
                    }
                    EXPECT_TRUE(real) << "vector " << j;
                }
            }
        }
}

// The values are those wanted, in any order.
template <class T, class Result>
void expect_values(const Result& r, std::vector<Long> want, long double tolerance)
{
    for (Int j = 0; j < static_cast<Int>(r.wr.size()); ++j) {
        const auto nearest = std::min_element(want.begin(), want.end(), [&](Long x, Long y) {
            return std::abs(x - r.value(j)) < std::abs(y - r.value(j));
        });
        EXPECT_TRUE(std::abs(*nearest - r.value(j)) <= tolerance)
            << "value " << j << " = " << r.value(j) << ", off by " << std::abs(*nearest - r.value(j));
        want.erase(nearest);
    }
}

TYPED_TEST(Eigen, KnownSpectra)
{
    using T = TypeParam;
    const T roots[] = {1, -2, 3, -4, 5};
    std::vector<T> polynomial = {1}; // ascending powers of prod (x - root)
    for (const T root : roots) {
        polynomial.push_back(0);
        for (std::size_t k = polynomial.size(); k-- > 0;)
            polynomial[k] = (k > 0 ? polynomial[k - 1] : 0) - root * polynomial[k];
    }
    for (const char job : {'N', 'V'}) {
        SCOPED_TRACE(job);
        const auto companion = this->decompose(
            5, [&](Int i, Int j) { return j == 4 ? -polynomial[i] : T(i == j + 1); }, job, job);
        expect_values<T>(companion, {1, -2, 3, -4, 5}, 2000 * eps<T>);

        for (const Int n : {2, 3, 8, 24}) {
            std::vector<Long> unity, ones(n, 1);
            for (Int k = 0; k < n; ++k) unity.push_back(std::polar(1.0L, 2 * 3.14159265358979323846264338328L * k / n));
            const auto cyclic = this->decompose(
                n, [=](Int i, Int j) { return T(i == (j + 1) % n); }, job, job);
            expect_values<T>(cyclic, unity, 10 * static_cast<T>(n) * eps<T>);

            // A defective value is known to the n-th root of eps: perturb the block so that it is not a triangle.
            const auto defective = this->decompose(
                n, [=](Int i, Int j) { return T(i == j || i + 1 == j) + (i == n - 1 && j == 0 ? eps<T> : 0); }, job,
                job);
            expect_values<T>(defective, ones, 2 * std::pow(static_cast<T>(n) * eps<T>, T(1) / static_cast<T>(n)));

            const auto triangle = this->decompose(
                n, [](Int i, Int j) { return i > j    ? T(0)
                                             : i == j ? T(i + 1)
                                                      : T(i - 2 * j); }, job, job);
            std::vector<Long> diagonal;
            for (Int i = 0; i < n; ++i) diagonal.push_back(i + 1);
            expect_values<T>(triangle, diagonal, 0);
        }
    }
}

// Powers of two from 1 to 2^+-60 between rows and columns don't matter.
TYPED_TEST(Eigen, BalancingUndoesBadScaling)
{
    using T = TypeParam;
    const Int n = 8;
    const auto plain = kinds<T>(n, 11)[0].element;
    const auto scaled = [&](Int i, Int j) {
        return std::ldexp(plain(i, j), static_cast<int>((i * 5 % n - j * 5 % n) * (sizeof(T) == 8 ? 60 : 7)));
    };
    const auto want = this->decompose(n, plain, 'N', 'N'), got = this->decompose(n, scaled, 'V', 'V');
    std::vector<Long> values;
    for (Int j = 0; j < n; ++j) values.push_back(want.value(j));
    expect_values<T>(got, values, 1000 * eps<T>);
}

// Exponents all over the range: what underflows on the way must neither stop the iteration nor leave empty vectors.
TYPED_TEST(Eigen, WildMatricesConvergeAndHaveVectors)
{
    using T = TypeParam;
    Random random(17);
    for (int trial = 0; trial < 3000; ++trial) {
        const Int n = random.integer(2, 9);
        std::vector<T> values(n * n);
        const int range = sizeof(T) == 8 ? 300 : 38;
        for (T& x : values) x = std::ldexp(random.uniform<T>(), static_cast<int>(random.integer(-range, range)));
        const auto r = this->decompose(
            n, [&](Int i, Int j) { return values[j * n + i]; }, 'V', 'V');
        ASSERT_EQ(r.info, 0) << trial;
        for (const auto* v : {&r.vl, &r.vr})
            for (Int j = 0; j < n; ++j) {
                long double norm = 0;
                for (Int i = 0; i < n; ++i) norm += std::norm(r.component(*v, r.wi, i, j));
                ASSERT_TRUE(std::abs(norm - 1) <= 16 * eps<T>) << trial << ", vector " << j;
            }
    }
}

TYPED_TEST(Eigen, OnlyWhatIsAskedForIsWritten)
{
    using T = TypeParam;
    const Int n = 7;
    const auto element = kinds<T>(n, 3)[0].element;
    const auto nothing = [](Int, Int) { return false; };
    const auto both = this->decompose(n, element, 'V', 'V'), left = this->decompose(n, element, 'V', 'N'),
               right = this->decompose(n, element, 'N', 'V'), none = this->decompose(n, element, 'n', 'N');
    EXPECT_TRUE(left.vr.unchanged_except(nothing) && right.vl.unchanged_except(nothing));
    EXPECT_TRUE(none.vl.unchanged_except(nothing) && none.vr.unchanged_except(nothing));
    for (Int j = 0; j < n; ++j)
        for (Int i = 0; i < n; ++i) {
            EXPECT_EQ(left.vl(i, j), both.vl(i, j));
            EXPECT_EQ(right.vr(i, j), both.vr(i, j));
        }
}

TYPED_TEST(Eigen, WhatIsNotFiniteIsNotTried)
{
    using T = TypeParam;
    for (const T bad : {std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::infinity()})
        for (const Int n : {1, 2, 9}) {
            const auto r = this->decompose(
                n, [&](Int i, Int j) { return i == n - 1 && j == n / 2 ? bad : T(1); }, 'N', 'V');
            EXPECT_EQ(r.info, n);
            for (Int i = 0; i < n; ++i)
                EXPECT_TRUE(std::isnan(r.wr[i]) && std::isnan(r.wi[i]) && std::isnan(r.vr(0, i)));
        }
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
#include "lapack/spectral.h"

namespace ork::test {
namespace {

template <class T>
Real<T> magnitude_of(T x)
{
    return std::abs(std::real(x)) + std::abs(std::imag(x));
}

// The rules of the factorisation on a whole symmetric matrix, eliminated from index 0 up (lower) or n - 1 down.
template <class T>
struct Reference {
    bool lower;
    Int n;
    std::vector<T> a;
    std::vector<Int> ipiv;
    Int info = 0;

    T& at(Int i, Int j) { return a[j * n + i]; }
    bool follows(Int i, Int k) const { return lower ? i > k : i < k; }
    void interchange(Int i, Int j)
    {
        if (i == j) return;
        for (Int k = 0; k < n; ++k) std::swap(at(i, k), at(j, k));
        for (Int k = 0; k < n; ++k) std::swap(at(k, i), at(k, j));
    }

    Reference(bool lower, const Padded<T>& given) : lower(lower), n(given.rows), a(n * n), ipiv(n)
    {
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i) at(i, j) = given(i, j);
        const Int step = lower ? 1 : -1;
        for (Int k = lower ? 0 : n - 1; k >= 0 && k < n;) k += step * eliminate(k, k + step);
    }
    Int eliminate(Int k, Int next)
    {
        const Real<T> alpha = (1 + std::sqrt(Real<T>(17))) / 8, own = magnitude_of(at(k, k));
        Real<T> column = 0, row = 0;
        Int p = k;
        for (Int i = 0; i < n; ++i)
            if (follows(i, k) && magnitude_of(at(i, k)) > column) column = magnitude_of(at(i, k)), p = i;
        ipiv[k] = k + 1;
        if (std::isnan(own) || std::max(own, column) == 0) {
            if (info == 0) info = k + 1;
            return 1;
        }
        for (Int i = 0; i < n; ++i)
            if ((i == k || follows(i, k)) && i != p) row = std::max(row, magnitude_of(at(p, i)));
        if (own >= alpha * column || own >= alpha * column * (column / row)) p = k;
        const bool two = p != k && !(magnitude_of(at(p, p)) >= alpha * row);
        if (!two) {
            // Earlier columns of multipliers stay as they are: only what follows takes part.
            interchange(k, p);
            ipiv[k] = p + 1;
            for (Int j = 0; j < n; ++j)
                for (Int i = 0; i < n; ++i)
                    if (follows(i, k) && follows(j, k)) at(i, j) -= at(i, k) / at(k, k) * at(k, j);
            clear(k);
            return 1;
        }
        interchange(next, p);
        ipiv[k] = ipiv[next] = -(p + 1);
        const T x = at(k, k), y = at(next, k), z = at(next, next), determinant = x / y * z - y;
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i)
                if (follows(i, next) && follows(j, next)) {
                    const T first = (z / y * at(i, k) - at(i, next)) / determinant;
                    const T second = (x / y * at(i, next) - at(i, k)) / determinant;
                    at(i, j) -= first * at(k, j) + second * at(next, j);
                }
        clear(k), clear(next);
        return 2;
    }
    // A column that is done must not be seen again by interchanges.
    void clear(Int k)
    {
        for (Int i = 0; i < n; ++i) at(i, k) = at(k, i) = 0;
    }
};

// P1 L1 P2 L2 ... D ... from the stored factors.
template <class T>
std::vector<Long> reproduce(bool lower, const Padded<T>& f, const std::vector<Int>& ipiv)
{
    const Int n = f.rows, step = lower ? 1 : -1;
    std::vector<Long> m(n * n, 0);
    const auto at = [&](Int i, Int j) -> Long& { return m[j * n + i]; };
    std::vector<Int> starts;
    for (Int k = lower ? 0 : n - 1; k >= 0 && k<n; k += ipiv[k]> 0 ? step : 2 * step) {
        starts.push_back(k);
        at(k, k) = f(k, k);
        if (ipiv[k] < 0)
            at(k + step, k + step) = f(k + step, k + step), at(k, k + step) = at(k + step, k) = f(k + step, k);
    }
    for (auto s = starts.rbegin(); s != starts.rend(); ++s) {
        const bool two = ipiv[*s] < 0;
        const Int last = two ? *s + step : *s, p = std::abs(ipiv[*s]) - 1;
        const auto behind = [&](Int i) { return lower ? i > last : i < last; };
        // Rows, then columns.
        for (int pass = 0; pass < 2; ++pass)
            for (Int j = 0; j < n; ++j)
                for (Int i = 0; i < n; ++i)
                    if (behind(i))
                        for (Int k = *s;; k += step) {
                            (pass ? at(j, i) : at(i, j)) += wide(f(i, k)) * (pass ? at(j, k) : at(k, j));
                            if (k == last) break;
                        }
        for (Int j = 0; j < n; ++j) std::swap(at(last, j), at(p, j));
        for (Int j = 0; j < n; ++j) std::swap(at(j, last), at(j, p));
    }
    return m;
}

template <class T>
class SymmetricIndefinite : public testing::Test {
public:
    static void check(const char* name, Int n, const std::function<T(Int, Int)>& element, bool finite = true,
                      bool compare_pivots = true)
    {
        for (const bool lower : {true, false}) {
            SCOPED_TRACE(testing::Message() << name << (lower ? ", lower" : ", upper") << ", order " << n);
            const auto kernel = lower ? KERNEL(sytrf_l_small) : KERNEL(sytrf_u_small);
            ASSERT_NE(kernel, nullptr);
            Padded<T> a(n, n, [&](Int i, Int j) { return i < j ? element(j, i) : element(i, j); });
            const Padded<T> given = a;
            std::vector<Int> ipiv(n, -77);
            Int info = -99, lwork = -1;
            T work = T(-5);
            kernel(&n, a.data.data(), &a.ld, ipiv.data(), &work, &lwork, &info);
            EXPECT_TRUE(info == 0 && work == T(1) && a.unchanged_except([](Int, Int) { return false; }));
            lwork = 1;
            kernel(&n, a.data.data(), &a.ld, ipiv.data(), nullptr, &lwork, &info);
            EXPECT_TRUE(a.unchanged_except([=](Int i, Int j) { return lower ? i >= j : i <= j; }));
            const Reference<T> want(lower, given);
            if (compare_pivots) {
                EXPECT_EQ(info, want.info);
            }
            if (!finite) continue;
            if (compare_pivots) {
                EXPECT_EQ(ipiv, want.ipiv);
            }
            const auto m = reproduce(lower, a, ipiv);
            const long double tolerance = 8 * static_cast<long double>(n) * eps<T> * largest(given);
            for (Int j = 0; j < n; ++j)
                for (Int i = 0; i < n; ++i)
                    ASSERT_TRUE(std::abs(m[j * n + i] - wide(given(i, j))) <= tolerance)
                        << i << ", " << j << ": " << std::abs(m[j * n + i] - wide(given(i, j))) / tolerance;
        }
    }
};
TYPED_TEST_SUITE(SymmetricIndefinite, Precisions, PrecisionNames);

TYPED_TEST(SymmetricIndefinite, PivotsFollowTheRulesAndFactorsReproduceTheMatrix)
{
    using T = TypeParam;
    for (const Int n : orders)
        for (const std::uint64_t seed : {1, 2, 3}) {
            for (const auto& kind : kinds<T>(n, seed)) {
                // What is left of these after some steps is rounding, on which pivots depend.
                const std::string name = kind.name;
                const bool cancels = name == "rank one" || name == "Hilbert" || name.starts_with("graded");
                this->check(kind.name, n, kind.element, true, !cancels);
            }
            const auto values = uniform_values<T>(n * n, seed);
            // Zeros on the diagonal ask for blocks of two; small integers give ties.
            this->check("no diagonal", n, [&](Int i, Int j) { return i == j ? T(0) : values[j * n + i]; });
            Random random(seed);
            std::vector<int> small(n * n);
            for (int& x : small) x = static_cast<int>(random.integer(-1, 1));
            if (n <= 4)
                this->check("ties", n, [&](Int i, Int j) { return some<T>(static_cast<float>(small[j * n + i]), 0); });
        }
}

TYPED_TEST(SymmetricIndefinite, InfoIsTheFirstUnusableDiagonal)
{
    using T = TypeParam;
    const T nan = std::numeric_limits<Real<T>>::quiet_NaN();
    for (const Int n : {1, 3, 6})
        for (Int bad = 0; bad < n; ++bad) {
            this->check("diagonal with a zero", n, [=](Int i, Int j) { return i == j && i != bad ? T(2) : T(0); });
            this->check(
                "NaN", n, [=](Int i, Int j) { return i == j ? (i == bad ? nan : T(2)) : T(0); }, false);
        }
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// Matrices in packs: each gets what a plain loop in the stated order gives it, whatever its format, layout and
// neighbours, and nothing else is touched.
#include <bit>

#include "lapack/kernel.h"
#include "support/compare.h"
#include "support/fake_core.h"
#include "support/packs.h"
#include "support/random.h"

namespace ork::test {
namespace {

template <class T>
class Compact : public testing::Test {
protected:
    FreshCore core;
};
TYPED_TEST_SUITE(Compact, Precisions, PrecisionNames);

template <class T>
struct Plain { // by columns
    Int m, n;
    std::vector<T> x;
    Plain(Int m, Int n) : m(m), n(n), x(static_cast<std::size_t>(m * n)) {}
    T& operator()(Int i, Int j) { return x[static_cast<std::size_t>(i + j * m)]; }
    T operator()(Int i, Int j) const { return x[static_cast<std::size_t>(i + j * m)]; }
};

template <class T>
Plain<T> random_matrix(Random& random, Int m, Int n, double diagonal = 0)
{
    Plain<T> a(m, n);
    for (T& x : a.x) x = random.uniform<T>();
    for (Int i = 0; i < std::min(m, n); ++i) a(i, i) += static_cast<Real<T>>(diagonal);
    return a;
}

// A call's layout, format and count, and how far lines are apart beyond their length.
struct Form {
    Int layout, format, pad, count;
    Guard guard;
};
template <class T>
std::vector<Form> forms()
{
    std::vector<Form> all;
    for (Int layout : {101, 102})
        for (Int format : {181, 182, 183})
            for (Int pad : {0, 2})
                all.push_back({layout, format, pad, 5 * Packs<T>::width_of(format) + (pad == 0 ? 1 : 0),
                               pad == 0 ? Guard::end : Guard::begin});
    return all;
}
template <class T>
Packs<T> packed(const Form& form, Int m, Int n, const std::vector<Plain<T>>& matrices)
{
    const bool rows = form.layout == 101;
    Packs<T> p(m, n, rows, (rows ? n : m) + form.pad, Packs<T>::width_of(form.format), form.count, form.guard);
    for (Int q = 0; q < form.count; ++q)
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < m; ++i) p.set(q, i, j, matrices[static_cast<std::size_t>(q)](i, j));
    p.memory.remember();
    return p;
}

template <class T>
bool same_bits(T a, T b)
{
    if constexpr (is_complex<T>)
        return same_bits(a.real(), b.real()) && same_bits(a.imag(), b.imag());
    else
        return ulp_distance(a, b) == 0;
}

template <class R>
R reciprocal(R a)
{
    return 1 / a;
}
template <class R>
std::complex<R> reciprocal(std::complex<R> a)
{
    const R x = a.real(), y = a.imag();
    if (std::abs(x) >= std::abs(y)) {
        const R r = y / x, q = 1 / (x + y * r);
        return {q, -(r * q)};
    }
    const R r = x / y, q = 1 / (y + x * r);
    return {r * q, -q};
}

template <class T>
void plain_lu(Plain<T>& a)
{
    for (Int j = 0; j < std::min(a.m, a.n); ++j) {
        const T q = reciprocal(a(j, j));
        for (Int i = j + 1; i < a.m; ++i) a(i, j) = plain_product(a(i, j), q);
        for (Int k = j + 1; k < a.n; ++k)
            for (Int i = j + 1; i < a.m; ++i) a(i, k) -= plain_product(a(i, j), a(j, k));
    }
}
// Of a(i, j) = a(j, i) conjugated, the lower triangle.
template <class T>
void plain_cholesky(Plain<T>& a)
{
    for (Int j = 0; j < a.n; ++j) {
        for (Int i = j; i < a.n; ++i)
            for (Int k = 0; k < j; ++k) a(i, j) -= plain_product(a(i, k), conjugated(a(j, k)));
        const Real<T> d = std::sqrt(std::real(a(j, j)));
        a(j, j) = d;
        for (Int i = j + 1; i < a.n; ++i) a(i, j) /= d;
    }
}

// Where `got` differs from the references in whole packs, or anything else has changed.
template <class T, class MayChange>
void expect_bits(const Packs<T>& got, const std::vector<Plain<T>>& want, MayChange&& written)
{
    for (Int q = 0; q < got.whole(); ++q)
        for (Int j = 0; j < got.columns; ++j)
            for (Int i = 0; i < got.rows; ++i)
                if (written(i, j)) {
                    const T a = got.get(q, i, j), b = want[static_cast<std::size_t>(q)](i, j);
                    ASSERT_TRUE(same_bits(a, b))
                        << "matrix " << q << " (" << i << ", " << j << ") " << show(a) << " not " << show(b);
                }
    EXPECT_TRUE(got.only_changed(written));
}
constexpr auto everywhere = [](Int, Int) { return true; };

TYPED_TEST(Compact, LuFollowsTheStatedOrder)
{
    using T = TypeParam;
    Random random(1);
    const Int pairs[][2] = {{1, 1},   {2, 2},   {3, 3}, {4, 4}, {5, 5}, {6, 6}, {7, 7}, {8, 8}, {11, 11},
                            {13, 13}, {40, 40}, {1, 5}, {5, 1}, {3, 8}, {9, 4}, {4, 6}, {10, 7}};
    for (const auto& [m, n] : pairs)
        for (const Form& form : forms<T>()) {
            SCOPED_TRACE(testing::Message() << m << " by " << n << " layout " << form.layout << " format "
                                            << form.format << " pad " << form.pad);
            this->core->processor = random.integer(-1, 4);
            std::vector<Plain<T>> a;
            for (Int q = 0; q < form.count; ++q) a.push_back(random_matrix<T>(random, m, n, 2));
            auto p = packed(form, m, n, a);
            for (auto& x : a) plain_lu(x);
            Int info = 7;
            KERNEL(getrfnp_compact_ps)
            (&form.layout, &m, &n, p.memory.data(), &p.ld, &info, &form.format, &form.count);
            EXPECT_EQ(info, 0);
            expect_bits(p, a, everywhere);
        }
}

TYPED_TEST(Compact, CholeskyFollowsTheStatedOrderInItsTriangle)
{
    using T = TypeParam;
    Random random(2);
    for (const Int n : {1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 37})
        for (const Form& form : forms<T>())
            for (const char uplo : {'U', 'u', 'L', 'x'}) {
                SCOPED_TRACE(testing::Message() << n << uplo << " layout " << form.layout << " format " << form.format);
                this->core->processor = random.integer(-1, 4);
                const bool upper = uplo == 'U' || uplo == 'u';
                std::vector<Plain<T>> a, want;
                for (Int q = 0; q < form.count; ++q) {
                    a.push_back(random_matrix<T>(random, n, n, static_cast<double>(2 * n)));
                    want.push_back(a.back());
                    if (upper) // the transpose has its conjugate's factor
                        for (Int j = 0; j < n; ++j)
                            for (Int i = 0; i < n; ++i) want.back()(i, j) = a.back()(j, i);
                    plain_cholesky(want.back());
                    if (upper)
                        for (Int j = 0; j < n; ++j)
                            for (Int i = 0; i < j; ++i) want.back()(i, j) = want.back()(j, i);
                }
                auto p = packed(form, n, n, a);
                Int info = 7;
                KERNEL(potrf_compact_ps)
                (&form.layout, &uplo, &n, p.memory.data(), &p.ld, &info, &form.format, &form.count);
                EXPECT_EQ(info, 0);
                expect_bits(p, want, [&](Int i, Int j) { return upper ? i <= j : i >= j; });
            }
}

TYPED_TEST(Compact, AnUnusablePivotStaysInItsOwnMatrix)
{
    using T = TypeParam;
    using R = Real<T>;
    const Int layout = 102;
    for (const Int format : {181, 182, 183})
        for (const Int n : {3, 7}) {
            const Int count = 2 * Packs<T>::width_of(format), bad = count / 2 + 1;
            Random random(3);
            std::vector<Plain<T>> a;
            for (Int q = 0; q < count; ++q) a.push_back(random_matrix<T>(random, n, n, static_cast<double>(2 * n)));
            a[static_cast<std::size_t>(bad)](1, 0) = a[static_cast<std::size_t>(bad)](0, 1) = 0;
            a[static_cast<std::size_t>(bad)](1, 1) = 0;
            for (const bool lu : {true, false}) {
                auto p = packed({layout, format, 0, count, Guard::end}, n, n, a);
                Int info;
                if (lu)
                    KERNEL(getrfnp_compact_ps)(&layout, &n, &n, p.memory.data(), &n, &info, &format, &count);
                else
                    KERNEL(potrf_compact_ps)(&layout, "L", &n, p.memory.data(), &n, &info, &format, &count);
                for (Int q = 0; q < count; ++q) {
                    const R last = std::real(p.get(q, n - 1, n - 1));
                    if (q == bad) {
                        EXPECT_FALSE(std::isfinite(last));
                        continue;
                    }
                    auto want = a[static_cast<std::size_t>(q)];
                    lu ? plain_lu(want) : plain_cholesky(want);
                    EXPECT_TRUE(same_bits(p.get(q, n - 1, n - 1), want(n - 1, n - 1)));
                }
            }
        }
}

// op(A) as the letter says, in the precision of references.
template <class T>
Wide<quad> element(const Plain<T>& a, char op, Int i, Int j)
{
    const Wide<quad> x(op == 'N' ? a(i, j) : a(j, i));
    return op == 'C' && is_complex<T> ? conj(x) : x;
}
// Sum over k of a(i, k) b(k, j) - c within tolerance * eps * (sum of magnitudes + |c|).
template <class T, class A, class B>
bool product_is(Int depth, A&& a, B&& b, Wide<quad> c, double tolerance)
{
    Wide<quad> sum;
    quad scale = magnitude(c);
    for (Int k = 0; k < depth; ++k) {
        const Wide<quad> term = multiply<T>(a(k), b(k));
        sum += term, scale += magnitude(term);
    }
    return magnitude(sum - c) <=
           static_cast<quad>(tolerance * static_cast<double>(std::numeric_limits<Real<T>>::epsilon())) * scale;
}

TYPED_TEST(Compact, InverseOfTheFactorsTimesTheMatrixIsOne)
{
    using T = TypeParam;
    using R = Real<T>;
    Random random(4);
    for (const Int n : {1, 2, 3, 4, 5, 7, 8, 12, 23}) {
        std::vector<Plain<T>> a, first;
        for (Int q = 0; q < 100; ++q) a.push_back(random_matrix<T>(random, n, n, static_cast<double>(n)));
        for (const Form& form : forms<T>()) {
            SCOPED_TRACE(testing::Message() << n << " layout " << form.layout << " format " << form.format);
            auto p = packed(form, n, n, a);
            R answer[1];
            Int info = 7, query = -1;
            KERNEL(getrfnp_compact_ps)
            (&form.layout, &n, &n, p.memory.data(), &p.ld, &info, &form.format, &form.count);
            KERNEL(getrinp_compact_ps)
            (&form.layout, &n, p.memory.data(), &p.ld, answer, &query, &info, &form.format, &form.count);
            const Int lwork = static_cast<Int>(answer[0]);
            Guarded<R> work(lwork);
            KERNEL(getrinp_compact_ps)
            (&form.layout, &n, p.memory.data(), &p.ld, work.data(), &lwork, &info, &form.format, &form.count);
            EXPECT_EQ(info, 0);
            EXPECT_TRUE(work.unchanged_outside());
            std::vector<Plain<T>> got;
            for (Int q = 0; q < p.whole(); ++q) {
                got.emplace_back(n, n);
                for (Int j = 0; j < n; ++j)
                    for (Int i = 0; i < n; ++i) got.back()(i, j) = p.get(q, i, j);
                const auto& x = got.back();
                const auto& y = a[static_cast<std::size_t>(q)];
                for (Int j = 0; j < n && static_cast<std::size_t>(q) >= first.size(); ++j)
                    for (Int i = 0; i < n; ++i)
                        ASSERT_TRUE(product_is<T>(
                            n, [&](Int k) { return element(x, 'N', i, k); },
                            [&](Int k) { return element(y, 'N', k, j); }, Wide<quad>(quad(i == j)),
                            static_cast<double>(20 * n)))
                            << "matrix " << q << " (" << i << ", " << j << ")";
            }
            EXPECT_TRUE(p.only_changed(everywhere));
            if (first.size() < got.size()) std::swap(first, got);
            for (std::size_t q = 0; q < got.size(); ++q) // the same bits in every form
                for (std::size_t k = 0; k < got[q].x.size(); ++k) ASSERT_TRUE(same_bits(got[q].x[k], first[q].x[k]));
        }
    }
}

TYPED_TEST(Compact, TriangularSystemsReadTheirTriangleAlone)
{
    using T = TypeParam;
    using R = Real<T>;
    Random random(5);
    const T poison(std::numeric_limits<R>::quiet_NaN());
    int round = 0;
    for (const char side : {'L', 'R'})
        for (const char uplo : {'U', 'L'})
            for (const char op : {'N', 'T', 'C'})
                for (const char diag : {'U', 'N'})
                    for (const Form& form : forms<T>()) {
                        const Int m = random.integer(1, 9), n = random.integer(1, 9);
                        const Int order = side == 'L' ? m : n;
                        const T alpha = round % 3 == 0 ? T(1) : round % 7 == 0 ? T(0) : random.uniform<T>();
                        ++round;
                        SCOPED_TRACE(testing::Message() << side << uplo << op << diag << ' ' << m << ' ' << n
                                                        << " layout " << form.layout << " format " << form.format);
                        std::vector<Plain<T>> a, b, triangle;
                        for (Int q = 0; q < form.count; ++q) {
                            triangle.push_back(random_matrix<T>(random, order, order, 3));
                            b.push_back(random_matrix<T>(random, m, n));
                            auto& x = triangle.back();
                            a.push_back(x);
                            for (Int j = 0; j < order; ++j)
                                for (Int i = 0; i < order; ++i) {
                                    const bool inside = uplo == 'U' ? i <= j : i >= j;
                                    if (!inside) x(i, j) = 0;
                                    if (i == j && diag == 'U') x(i, j) = 1;
                                    if (!inside || (i == j && diag == 'U') || alpha == T(0)) a.back()(i, j) = poison;
                                }
                            if (alpha == T(0)) b.back() = Plain<T>(m, n), b.back().x.assign(b.back().x.size(), poison);
                        }
                        auto pa = packed(form, order, order, a);
                        auto pb = packed(form, m, n, b);
                        pa.memory.read_only();
                        KERNEL(trsm_compact_ps)
                        (&form.layout, &side, &uplo, &op, &diag, &m, &n, reinterpret_cast<const T*>(&alpha),
                         pa.memory.data(), &pa.ld, pb.memory.data(), &pb.ld, &form.format, &form.count);
                        for (Int q = 0; q < pb.whole(); ++q)
                            for (Int j = 0; j < n; ++j)
                                for (Int i = 0; i < m; ++i) {
                                    const auto& t = triangle[static_cast<std::size_t>(q)];
                                    if (alpha == T(0)) {
                                        ASSERT_EQ(pb.get(q, i, j), T(0));
                                        continue;
                                    }
                                    const T want = plain_product(alpha, b[static_cast<std::size_t>(q)](i, j));
                                    const auto x = [&](Int r, Int c) { return Wide<quad>(pb.get(q, r, c)); };
                                    const bool left = side == 'L';
                                    ASSERT_TRUE(product_is<T>(
                                        order, [&](Int k) { return left ? element(t, op, i, k) : x(i, k); },
                                        [&](Int k) { return left ? x(k, j) : element(t, op, k, j); }, Wide<quad>(want),
                                        static_cast<double>(4 * order)))
                                        << "matrix " << q << " (" << i << ", " << j << ")";
                                }
                        EXPECT_TRUE(pb.only_changed(everywhere));
                    }
}

// H(1) .. H(k) times a column, last first: Q x.
template <class T>
void apply_q(const Packs<T>& p, const Packs<T>& tau, Int q, std::vector<Wide<quad>>& x)
{
    for (Int j = std::min(p.rows, p.columns) - 1; j >= 0; --j) {
        const auto v = [&](Int i) { return i == j ? Wide<quad>(quad(1)) : Wide<quad>(p.get(q, i, j)); };
        Wide<quad> w;
        for (Int i = j; i < p.rows; ++i) w += multiply<std::complex<quad>>(conj(v(i)), x[static_cast<std::size_t>(i)]);
        w = multiply<std::complex<quad>>(Wide<quad>(tau.get(q, j, 0)), w);
        for (Int i = j; i < p.rows; ++i) {
            Wide<quad>& y = x[static_cast<std::size_t>(i)];
            y = y - multiply<std::complex<quad>>(v(i), w);
        }
    }
}

TYPED_TEST(Compact, ReflectorsTimesRAreTheMatrixAtAnyScale)
{
    using T = TypeParam;
    using R = Real<T>;
    Random random(6);
    constexpr int most = std::numeric_limits<R>::max_exponent - 8, least = std::numeric_limits<R>::min_exponent + 30;
    const Int pairs[][2] = {{1, 1}, {2, 2}, {3, 3}, {5, 5}, {8, 8}, {13, 13}, {9, 4}, {4, 9}, {1, 3}, {6, 1}};
    for (const auto& [m, n] : pairs) {
        const Int k = std::min(m, n);
        std::vector<Plain<T>> a;
        std::vector<T> alone; // every element of the first form that had its matrix
        for (Int q = 0; q < 100; ++q) {
            a.push_back(random_matrix<T>(random, m, n));
            const int exponent = q % 5 == 1 ? most : q % 5 == 2 ? least : 0;
            for (T& x : a.back().x) x *= std::ldexp(R(1), exponent);
            if (q % 5 == 3) // nothing below the diagonal of the first column, tiny numbers below that of the second
                for (Int i = 0; i < m; ++i)
                    for (Int j = 0; j < std::min({i, n, Int{2}}); ++j)
                        a.back()(i, j) *= j == 0 ? 0 : std::ldexp(R(1), std::numeric_limits<R>::min_exponent);
            if (q % 5 == 3 && is_complex<T>) a.back()(0, 0) = std::real(a.back()(0, 0));
            if (q % 10 == 4) a.back().x.assign(a.back().x.size(), 0);
        }
        for (const Form& form : forms<T>()) {
            SCOPED_TRACE(testing::Message()
                         << m << " by " << n << " layout " << form.layout << " format " << form.format);
            auto p = packed(form, m, n, a);
            Packs<T> tau(k, 1, false, k, p.width, form.count, form.guard);
            tau.memory.remember();
            Int info = 7, lwork = 1;
            R work[1] = {-1};
            KERNEL(geqrf_compact_ps)
            (&form.layout, &m, &n, p.memory.data(), &p.ld, tau.memory.data(), work, &lwork, &info, &form.format,
             &form.count);
            EXPECT_EQ(info, 0);
            EXPECT_TRUE(p.only_changed(everywhere) && tau.only_changed(everywhere));
            for (std::size_t place = 0; place < alone.size(); ++place) { // the same bits in every form
                const Int q = static_cast<Int>(place) / (m * n), element = static_cast<Int>(place) % (m * n);
                if (q < p.whole()) {
                    ASSERT_TRUE(same_bits(p.get(q, element % m, element / m), alone[place]));
                }
            }
            for (Int q = static_cast<Int>(alone.size()) / (m * n); q < p.whole(); ++q) {
                const auto& x = a[static_cast<std::size_t>(q)];
                for (Int j = 0; j < k; ++j) {
                    ASSERT_EQ(std::imag(p.get(q, j, j)), 0);
                    const quad t2 = 2 * quad(std::real(tau.get(q, j, 0)));
                    quad v2 = 1;
                    for (Int i = j + 1; i < m; ++i) {
                        const Wide<quad> v(p.get(q, i, j));
                        v2 += v.re * v.re + v.im * v.im;
                    }
                    const Wide<quad> t(tau.get(q, j, 0)); // H is unitary: 2 re(tau) = |tau|^2 |v|^2
                    const quad off = t2 - (t.re * t.re + t.im * t.im) * v2;
                    ASSERT_LE(static_cast<double>(off < 0 ? -off : off),
                              static_cast<double>(m + 8) * static_cast<double>(std::numeric_limits<R>::epsilon()));
                }
                if (q % 10 == 4 || q % 5 == 3) {
                    ASSERT_EQ(tau.get(q, 0, 0), T(0)) << "matrix " << q;
                }
                for (Int j = 0; j < n; ++j) {
                    std::vector<Wide<quad>> column(static_cast<std::size_t>(m));
                    for (Int i = 0; i <= std::min(j, m - 1); ++i)
                        column[static_cast<std::size_t>(i)] = Wide<quad>(p.get(q, i, j));
                    apply_q(p, tau, q, column);
                    quad scale = 0, error = 0;
                    for (Int i = 0; i < m; ++i) {
                        scale += magnitude(Wide<quad>(x(i, j)));
                        error += magnitude(column[static_cast<std::size_t>(i)] - Wide<quad>(x(i, j)));
                    }
                    ASSERT_TRUE(error <= scale * static_cast<quad>(10 * (m + n) * std::numeric_limits<R>::epsilon()))
                        << "matrix " << q << " column " << j;
                    for (Int i = 0; i < m; ++i) alone.push_back(p.get(q, i, j));
                }
            }
        }
    }
}

TYPED_TEST(Compact, PackingFillsTheLastPackWithTheIdentityAndUnpackingGivesTheMatricesBack)
{
    using T = TypeParam;
    Random random(7);
    for (const auto& [m, n] : {std::pair<Int, Int>{1, 1}, {2, 3}, {4, 4}, {5, 5}, {7, 3}, {9, 9}})
        for (const Form& form : forms<T>()) {
            const bool rows = form.layout == 101;
            const Int width = Packs<T>::width_of(form.format), lines = rows ? m : n, length = rows ? n : m;
            const Int lda = length + 1, count = form.count - form.pad, up = (count + width - 1) / width * width;
            Packs<T> p(m, n, rows, length + form.pad, width, up, form.guard);
            p.memory.remember();
            std::vector<Guarded<T>> from, to;
            std::vector<const T*> sources;
            std::vector<T*> targets;
            for (Int q = 0; q < count; ++q) {
                from.emplace_back(lda * (lines - 1) + length), to.emplace_back(lda * (lines - 1) + length);
                for (Int line = 0; line < lines; ++line)
                    for (Int k = 0; k < length; ++k) from.back()[line * lda + k] = random.uniform<T>();
                from.back().read_only();
                sources.push_back(from.back().data()), targets.push_back(to.back().data());
            }
            KERNEL(pack_compact_ps)
            (&form.layout, &m, &n, sources.data(), &lda, p.memory.data(), &p.ld, &form.format, &count);
            EXPECT_TRUE(p.only_changed(everywhere));
            for (Int q = 0; q < up; ++q)
                for (Int j = 0; j < n; ++j)
                    for (Int i = 0; i < m; ++i)
                        ASSERT_EQ(p.get(q, i, j),
                                  q >= count ? T(i == j ? 1 : 0)
                                             : sources[static_cast<std::size_t>(q)][rows ? i * lda + j : i + j * lda]);
            p.memory.read_only();
            KERNEL(unpack_compact_ps)
            (&form.layout, &m, &n, targets.data(), &lda, p.memory.data(), &p.ld, &form.format, &count);
            for (Int q = 0; q < count; ++q) {
                const auto& target = to[static_cast<std::size_t>(q)];
                EXPECT_TRUE(target.unchanged_except([&](Int i) { return i % lda < length; }));
                for (Int i = 0; i < target.size(); ++i)
                    if (i % lda < length) {
                        ASSERT_EQ(target[i], from[static_cast<std::size_t>(q)][i]);
                    }
            }
        }
}

TYPED_TEST(Compact, NothingIsDoneForAnUnknownFormatOrLayoutOrNoWholePack)
{
    using T = TypeParam;
    using R = Real<T>;
    const Int width = 16 / static_cast<Int>(sizeof(R)), three = 3, none = 0, one = 1;
    for (const auto& [layout, format, count, n] : {std::array<Int, 4>{102, 180, 16, 3},
                                                   {102, 184, 16, 3},
                                                   {100, 181, 16, 3},
                                                   {102, 181, width - 1, 3},
                                                   {101, 181, -5, 3},
                                                   {102, 181, 16, 0}}) {
        Guarded<R> a(3 * 3 * 16 * 2), tau(3 * 16 * 2), work(1);
        Int info[4] = {7, 7, 7, 7};
        KERNEL(getrfnp_compact_ps)(&layout, &n, &three, a.data(), &three, &info[0], &format, &count);
        KERNEL(getrinp_compact_ps)
        (&layout, &n, a.data(), &three, work.data(), &none, &info[1], &format, &count);
        KERNEL(potrf_compact_ps)(&layout, "L", &n, a.data(), &three, &info[2], &format, &count);
        KERNEL(geqrf_compact_ps)
        (&layout, &n, &three, a.data(), &three, tau.data(), work.data(), &one, &info[3], &format, &count);
        for (const Int i : info) EXPECT_EQ(i, 0);
        EXPECT_TRUE(a.unchanged() && tau.unchanged() && work.unchanged());
    }
}

TYPED_TEST(Compact, TheFormatIsTheProcessors)
{
    using T = TypeParam;
    const Int answers[][2] = {{-1, 181}, {0, 182}, {1, 182}, {2, 183}, {3, 183}, {4, 181}, {99, 181}};
    for (const auto& [level, want] : answers) {
        this->core->processor = level;
        Int format = 0;
        KERNEL(compact_format_ps)(&format);
        EXPECT_EQ(format, want);
    }
}

} // namespace
} // namespace ork::test

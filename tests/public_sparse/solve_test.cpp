// SPDX-License-Identifier: MIT
// Solves and smoothers through handles, analysed and not, against dense arithmetic.
#include <numeric>

#include "ork/ork.h"
#include "stored.h"
#include "support/kernel_case.h"

namespace ork::test {
namespace {

using W = std::complex<long double>;
template <class T>
W wide(T x)
{
    return {static_cast<long double>(std::real(x)), static_cast<long double>(std::imag(x))};
}
template <class T>
T narrow(W x)
{
    if constexpr (is_complex<T>)
        return {static_cast<Real<T>>(x.real()), static_cast<Real<T>>(x.imag())};
    else
        return static_cast<T>(x.real());
}
template <class T>
std::vector<T> random_vector(Index n, Random& random)
{
    std::vector<T> v(static_cast<std::size_t>(n));
    for (T& x : v) x = random.uniform<T>();
    return v;
}

// Square; a few entries a row, small ones beside the diagonal, which is there once.
template <class Int, class T>
Stored<Int, T> solvable(Form form, Random& random)
{
    Stored<Int, T> s;
    s.form = form;
    const Index n = form.rows, b = form.block;
    for (Index i = 0; i < n; ++i) {
        std::vector<Index> places = {i};
        for (Index k = random.integer(0, 5); k > 0; --k) {
            const Index j = random.integer(0, n - 1);
            if (std::find(places.begin(), places.end(), j) == places.end()) places.push_back(j);
        }
        form.sorted ? std::sort(places.begin(), places.end())
                    : std::swap(places[0], places[static_cast<std::size_t>(random.integer(0, std::ssize(places) - 1))]);
        if (form.format != Format::coo)
            s.first.push_back(static_cast<Int>(s.index.size()) + static_cast<Int>(form.base));
        for (const Index j : places) {
            if (form.format == Format::coo) s.first.push_back(static_cast<Int>(i + form.base));
            s.index.push_back(static_cast<Int>(j + form.base));
            for (Index r = 0; r < b; ++r)
                for (Index c = 0; c < b; ++c)
                    s.values.push_back(i == j && r == c ? narrow<T>({static_cast<long double>(random.integer(1, 3)),
                                                                     static_cast<long double>(random.integer(-2, 2))})
                                                        : random.uniform<T>() / T(static_cast<Real<T>>(4 * b)));
        }
        s.entries += std::ssize(places);
        if (form.format != Format::coo)
            s.last.push_back(static_cast<Int>(s.index.size()) + static_cast<Int>(form.base));
    }
    return s;
}

template <class T>
void expect_near(const std::vector<T>& got, const std::vector<W>& want)
{
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i)
        ASSERT_TRUE(std::abs(wide(got[i]) - want[i]) <=
                    500 * std::numeric_limits<Real<T>>::epsilon() * (1 + std::abs(want[i])))
            << "at " << i << ": " << got[i] << " instead of " << want[i];
}

template <class T>
std::vector<W> widened(const std::vector<T>& x)
{
    std::vector<W> w;
    for (const T& e : x) w.push_back(wide(e));
    return w;
}
template <class T>
std::vector<W> times(const Dense<T>& a, const std::vector<W>& x)
{
    std::vector<W> y(x.size());
    for (Index j = 0; j < a.cols; ++j)
        for (Index i = 0; i < a.rows; ++i)
            y[static_cast<std::size_t>(i)] += wide(a.at(i, j)) * x[static_cast<std::size_t>(j)];
    return y;
}
template <class T>
std::vector<W> solved(const Dense<T>& a, W alpha, const std::vector<W>& b)
{
    const bool upper = [&] {
        for (Index j = 0; j < a.cols; ++j)
            for (Index i = 0; i < j; ++i)
                if (a.at(i, j) != T(0)) return true;
        return false;
    }();
    std::vector<W> y(b.size());
    for (Index s = 0; s < a.rows; ++s) {
        const Index i = upper ? a.rows - 1 - s : s;
        W sum = alpha * b[static_cast<std::size_t>(i)];
        for (Index j = 0; j < a.rows; ++j)
            if (j != i) sum -= wide(a.at(i, j)) * y[static_cast<std::size_t>(j)];
        y[static_cast<std::size_t>(i)] = sum / wide(a.at(i, i));
    }
    return y;
}
template <class T>
std::vector<W> swept(const Dense<T>& a, W omega, W alpha, const std::vector<T>& b, std::vector<W> x, bool backward)
{
    for (Index s = 0; s < a.rows; ++s) {
        const Index i = backward ? a.rows - 1 - s : s;
        W sum = alpha * wide(b[static_cast<std::size_t>(i)]);
        for (Index j = 0; j < a.rows; ++j)
            if (j != i) sum -= wide(a.at(i, j)) * x[static_cast<std::size_t>(j)];
        x[static_cast<std::size_t>(i)] += omega * (sum / wide(a.at(i, i)) - x[static_cast<std::size_t>(i)]);
    }
    return x;
}

template <class C>
class Solves : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;
    Random random{7};
    const T alpha = narrow<T>({1.5L, -0.5L});

    // body(stored matrix, handle, was it optimised) for every format, with `hint` given to half of them.
    template <class Hint, class Body>
    void each_form(Hint hint, Body body)
    {
        for (const Format format : all_formats)
            for (const bool optimised : {false, true})
                for (const bool sorted : {true, false}) {
                    Form form{format, format == Format::bsr ? 14 : 41, 0};
                    form.cols = form.rows;
                    form.base = sorted;
                    form.block = format == Format::bsr ? 3 : 1;
                    form.layout = sorted ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR;
                    form.sorted = sorted;
                    const auto stored = solvable<Int, T>(form, random);
                    const Handle a(stored);
                    if (optimised) {
                        hint(a);
                        ASSERT_EQ(ork_sparse_optimize(a), ORK_SPARSE_SUCCESS);
                    }
                    SCOPED_TRACE(testing::Message() << "format " << static_cast<int>(format) << " optimised "
                                                    << optimised << " sorted " << sorted);
                    body(stored, a);
                }
    }
};
TYPED_TEST_SUITE(Solves, Cases, CaseNames);

#define TYPES                                                                                                          \
    using T [[maybe_unused]] = typename TypeParam::T;                                                                  \
    using Int [[maybe_unused]] = typename TypeParam::Int

std::vector<ork_sparse_kind> triangular_kinds()
{
    std::vector<ork_sparse_kind> kinds;
    for (const auto uplo : {ORK_SPBLAS_UPPER, ORK_SPBLAS_LOWER})
        for (const auto diag : {ORK_SPBLAS_UNIT, ORK_SPBLAS_NON_UNIT})
            kinds.push_back({ORK_SPBLAS_TRIANGULAR, uplo, diag});
    return kinds;
}
ork_spblas_operation operation(int op) { return static_cast<ork_spblas_operation>(op); }

TYPED_TEST(Solves, TrianglesOfEveryFormat)
{
    TYPES;
    const auto hint = [](ork_sparse_matrix_t a) {
        for (const auto& kind : triangular_kinds())
            for (const int op : operations) ork_sparse_set_sv_hint(a, operation(op), kind, 100);
    };
    this->each_form(hint, [&](const Stored<Int, T>& stored, ork_sparse_matrix_t a) {
        const Dense<T> dense = stored.dense();
        for (const auto& kind : triangular_kinds())
            for (const int op : operations) {
                const auto b = random_vector<T>(dense.rows, this->random);
                auto y = b;
                ASSERT_EQ(
                    call<T>("sv", op, scalar_argument(this->alpha), a, kind, static_cast<const T*>(y.data()), y.data()),
                    ORK_SPARSE_SUCCESS)
                    << ork_sparse_last_error()->text;
                const auto want = solved(dense.of_kind(kind).operated(op), wide(this->alpha), widened(b));
                expect_near(y, want);
                auto c = b;
                ASSERT_EQ(call<T>("sm", op, scalar_argument(this->alpha), a, kind, int{ORK_SPBLAS_COL_MAJOR},
                                  static_cast<const T*>(b.data()), Index{1}, dense.rows, c.data(), dense.rows),
                          ORK_SPARSE_SUCCESS)
                    << ork_sparse_last_error()->text;
                expect_near(c, want);
            }
    });
}

TYPED_TEST(Solves, SymmetricGaussSeidelOfEveryFormatAndKind)
{
    TYPES;
    std::vector<ork_sparse_kind> kinds = {general_kind};
    for (const auto uplo : {ORK_SPBLAS_UPPER, ORK_SPBLAS_LOWER}) {
        kinds.push_back({ORK_SPBLAS_SYMMETRIC, uplo, ORK_SPBLAS_NON_UNIT});
        if (is_complex<T>) kinds.push_back({ORK_SPBLAS_HERMITIAN, uplo, ORK_SPBLAS_NON_UNIT});
    }
    const auto hint = [&](ork_sparse_matrix_t a) {
        for (const auto& kind : kinds)
            for (const int op : operations) ork_sparse_set_symgs_hint(a, operation(op), kind, 100);
    };
    this->each_form(hint, [&](const Stored<Int, T>& stored, ork_sparse_matrix_t a) {
        const Dense<T> dense = stored.dense();
        for (const auto& kind : kinds)
            for (const int op : operations)
                for (const bool from_zero : {false, true}) {
                    const auto m = dense.of_kind(kind).operated(op);
                    const auto b = random_vector<T>(m.rows, this->random);
                    auto x = from_zero ? std::vector<T>(b.size()) : random_vector<T>(m.rows, this->random);
                    auto want = widened(x);
                    for (const bool backward : {false, true}) want = swept(m, 1, wide(this->alpha), b, want, backward);
                    auto other = x;
                    std::vector<T> y(b.size(), narrow<T>({NAN, NAN}));
                    ASSERT_EQ(call<T>("symgs", op, a, kind, scalar_argument(this->alpha), b.data(), x.data()),
                              ORK_SPARSE_SUCCESS)
                        << ork_sparse_last_error()->text;
                    ASSERT_EQ(call<T>("symgs_mv", op, a, kind, scalar_argument(this->alpha), b.data(), other.data(),
                                      y.data()),
                              ORK_SPARSE_SUCCESS);
                    expect_near(x, want);
                    EXPECT_EQ(other, x);
                    expect_near(y, times(m, want));
                }
    });
}

TYPED_TEST(Solves, RelaxationAndStepsWithFactors)
{
    TYPES;
    const T omega = narrow<T>({1.25L, 0.25L});
    const auto hint = [](ork_sparse_matrix_t a) {
        ork_sparse_set_lu_smoother_hint(a, ORK_SPBLAS_NO_TRANS, general_kind, 100);
    };
    this->each_form(hint, [&](const Stored<Int, T>& stored, ork_sparse_matrix_t a) {
        const Dense<T> dense = stored.dense();
        const auto b = random_vector<T>(dense.rows, this->random), start = random_vector<T>(dense.rows, this->random);
        for (const auto& kind :
             {general_kind, ork_sparse_kind{ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_UPPER, ORK_SPBLAS_NON_UNIT}})
            for (const int sweep : {ORK_SPARSE_FORWARD, ORK_SPARSE_BACKWARD, ORK_SPARSE_SYMMETRIC}) {
                auto x = start;
                auto want = widened(x);
                for (W& e : want) e *= wide(this->alpha);
                for (const int s : {ORK_SPARSE_FORWARD, ORK_SPARSE_BACKWARD})
                    if ((sweep & s) != 0)
                        want = swept(dense.of_kind(kind), wide(omega), 1, b, want, s == ORK_SPARSE_BACKWARD);
                ASSERT_EQ(call<T>("sorv", sweep, kind, a, scalar_argument(omega), scalar_argument(this->alpha),
                                  x.data(), b.data()),
                          ORK_SPARSE_SUCCESS);
                expect_near(x, want);
            }

        // E = 2, as blocks where there are some.
        const Index block = stored.form.block;
        std::vector<T> e(static_cast<std::size_t>(dense.rows * block)), inverse = e;
        for (Index i = 0; i < dense.rows; ++i) {
            const auto at = static_cast<std::size_t>(i / block * block * block + i % block * (block + 1));
            e[at] = T(2), inverse[at] = T(Real<T>(0.5));
        }
        Dense<T> lower(dense.rows, dense.rows), upper = lower;
        for (Index i = 0; i < dense.rows; ++i)
            for (Index j = 0; j < dense.rows; ++j) {
                if (j / block < i / block) lower.at(i, j) = dense.at(i, j);
                if (j / block > i / block) upper.at(i, j) = dense.at(i, j);
                if (i == j) lower.at(i, j) = upper.at(i, j) = T(2);
            }
        auto rest = times(dense, widened(start));
        for (std::size_t i = 0; i < rest.size(); ++i) rest[i] = wide(b[i]) - rest[i];
        auto want = solved(upper, 2, solved(lower, 1, rest));
        for (std::size_t i = 0; i < want.size(); ++i) want[i] += wide(start[i]);
        auto x = start;
        ASSERT_EQ(call<T>("lu_smoother", int{ORK_SPBLAS_NO_TRANS}, a, general_kind, static_cast<const T*>(e.data()),
                          static_cast<const T*>(inverse.data()), x.data(), b.data()),
                  ORK_SPARSE_SUCCESS)
            << ork_sparse_last_error()->text;
        expect_near(x, want);
    });
}

// A five-point Laplacian on side * side points whose values differ.
template <class Int, class T>
Stored<Int, T> laplacian(Index side)
{
    Stored<Int, T> s;
    s.form = {Format::csr, side * side, side * side};
    for (Index i = 0; i < side * side; ++i) {
        s.first.push_back(static_cast<Int>(s.index.size()));
        const auto put = [&](Index j, bool there) {
            if (!there) return;
            s.index.push_back(static_cast<Int>(j));
            s.values.push_back(i == j ? T(4) : T(static_cast<Real<T>>((i * 7 + j) % 11 - 30) / 100));
        };
        put(i - side, i >= side), put(i - 1, i % side != 0), put(i, true);
        put(i + 1, i % side != side - 1), put(i + side, i < side * (side - 1));
        s.last.push_back(static_cast<Int>(s.index.size()));
    }
    s.entries = std::ssize(s.index);
    return s;
}

TYPED_TEST(Solves, TheSmallest)
{
    TYPES;
    for (Index n = 0; n <= 9; ++n) {
        const auto stored = solvable<Int, T>({Format::csr, n, n, 1}, this->random);
        const auto dense = stored.dense();
        const Handle a(stored);
        const auto kinds = triangular_kinds();
        for (const auto& kind : kinds) ork_sparse_set_sv_hint(a, ORK_SPBLAS_NO_TRANS, kind, 100);
        ork_sparse_set_symgs_hint(a, ORK_SPBLAS_NO_TRANS, general_kind, 100);
        ASSERT_EQ(ork_sparse_optimize(a), ORK_SPARSE_SUCCESS);
        const auto b = random_vector<T>(n, this->random);
        auto x = random_vector<T>(n, this->random);
        for (const auto& kind : kinds) {
            auto y = b;
            EXPECT_EQ(call<T>("sv", int{ORK_SPBLAS_NO_TRANS}, scalar_argument(this->alpha),
                              static_cast<ork_sparse_matrix_t>(a), kind, b.data(), y.data()),
                      ORK_SPARSE_SUCCESS);
            expect_near(y, solved(dense.of_kind(kind), wide(this->alpha), widened(b)));
        }
        const auto half = swept(dense, 1, wide(this->alpha), b, widened(x), false);
        EXPECT_EQ(call<T>("symgs", int{ORK_SPBLAS_NO_TRANS}, static_cast<ork_sparse_matrix_t>(a), general_kind,
                          scalar_argument(this->alpha), b.data(), x.data()),
                  ORK_SPARSE_SUCCESS);
        expect_near(x, swept(dense, 1, wide(this->alpha), b, half, true));
    }
}

// Schedules for any number of threads, run by any number of them, and no schedule at all but for what it divides by.
TYPED_TEST(Solves, ThreadsGiveTheSameBits)
{
    TYPES;
    const auto stored = laplacian<Int, T>(242);
    const auto n = stored.form.rows;
    const auto b = random_vector<T>(n, this->random), start = random_vector<T>(n, this->random);
    const std::vector<T> e(static_cast<std::size_t>(n), T(4)), inverse(static_cast<std::size_t>(n), T(Real<T>(0.25)));
    std::vector<std::vector<T>> first;
    for (const int scheduled : {1, 2, 3})
        for (const int threads : {3, 1, 2}) {
            const Handle a(stored);
            ork_set_num_threads(scheduled);
            for (const auto& kind : triangular_kinds()) ork_sparse_set_sv_hint(a, ORK_SPBLAS_NO_TRANS, kind, 100);
            ork_sparse_set_symgs_hint(a, ORK_SPBLAS_NO_TRANS, general_kind, 100);
            ASSERT_EQ(ork_sparse_optimize(a), ORK_SPARSE_SUCCESS);
            ork_set_num_threads(threads);
            std::vector<std::vector<T>> results;
            for (const auto& kind : triangular_kinds()) {
                results.push_back(b);
                call<T>("sv", int{ORK_SPBLAS_NO_TRANS}, scalar_argument(this->alpha),
                        static_cast<ork_sparse_matrix_t>(a), kind, b.data(), results.back().data());
            }
            auto x = start, y = b, z = start;
            call<T>("symgs_mv", int{ORK_SPBLAS_NO_TRANS}, static_cast<ork_sparse_matrix_t>(a), general_kind,
                    scalar_argument(this->alpha), b.data(), x.data(), y.data());
            call<T>("lu_smoother", int{ORK_SPBLAS_NO_TRANS}, static_cast<ork_sparse_matrix_t>(a), general_kind,
                    e.data(), inverse.data(), z.data(), b.data());
            for (auto& v : {x, y, z}) results.push_back(v);
            if (first.empty()) first = results;
            EXPECT_TRUE(results == first) << scheduled << " scheduled, run by " << threads;
        }
    ork_set_num_threads(0);
    // What all of them agree on solves the system.
    const auto kinds = triangular_kinds();
    for (std::size_t k = 0; k < kinds.size(); ++k) {
        auto rest = b;
        const Handle a(stored);
        call<T>("mv", int{ORK_SPBLAS_NO_TRANS}, scalar_argument(T(-1)), static_cast<ork_sparse_matrix_t>(a), kinds[k],
                static_cast<const T*>(first[k].data()), scalar_argument(this->alpha), rest.data());
        Real<T> largest = 0, size = 0;
        for (const T& r : rest) largest = std::max(largest, std::abs(r));
        for (const T& s : first[k]) size = std::max(size, std::abs(s));
        EXPECT_TRUE(largest <= 20 * std::numeric_limits<Real<T>>::epsilon() * size);
    }
}

TYPED_TEST(Solves, NewValuesAreUsed)
{
    TYPES;
    auto stored = laplacian<Int, T>(9);
    const Handle a(stored);
    const ork_sparse_kind lower = triangular_kinds().back();
    ork_sparse_set_sv_hint(a, ORK_SPBLAS_NO_TRANS, lower, 100);
    ork_sparse_set_symgs_hint(a, ORK_SPBLAS_NO_TRANS, general_kind, 100);
    ASSERT_EQ(ork_sparse_optimize(a), ORK_SPARSE_SUCCESS);
    ASSERT_EQ(call<T>("set_value", static_cast<ork_sparse_matrix_t>(a), Index{20}, Index{19},
                      scalar_argument(T(Real<T>(0.5)))),
              ORK_SPARSE_SUCCESS);
    ASSERT_EQ(call<T>("set_value", static_cast<ork_sparse_matrix_t>(a), Index{20}, Index{20}, scalar_argument(T(3))),
              ORK_SPARSE_SUCCESS);
    const Dense<T> dense = stored.dense(); // the arrays are the handle's
    ASSERT_EQ(dense.at(20, 20), T(3));
    const auto b = random_vector<T>(81, this->random);
    std::vector<T> y(81), x(81);
    call<T>("sv", int{ORK_SPBLAS_NO_TRANS}, scalar_argument(this->alpha), static_cast<ork_sparse_matrix_t>(a), lower,
            b.data(), y.data());
    expect_near(y, solved(dense.of_kind(lower), wide(this->alpha), widened(b)));
    call<T>("symgs", int{ORK_SPBLAS_NO_TRANS}, static_cast<ork_sparse_matrix_t>(a), general_kind,
            scalar_argument(this->alpha), b.data(), x.data());
    const auto half = swept(dense, 1, wide(this->alpha), b, std::vector<W>(81), false);
    expect_near(x, swept(dense, 1, wide(this->alpha), b, half, true));
}

TYPED_TEST(Solves, WrongDiagonalsAreToldWithTheirRow)
{
    TYPES;
    enum Fault { missing, zero, repeated };
    for (const Fault fault : {missing, zero, repeated})
        for (const Format format : {Format::csr, Format::csc, Format::coo})
            for (const bool optimised : {false, true}) {
                Stored<Int, T> s;
                s.form = {format, 6, 6, 1};
                for (Int i = 1; i <= 6; ++i) {
                    const bool wrong = i == 4;
                    if (format != Format::coo) s.first.push_back(static_cast<Int>(s.index.size()) + 1);
                    for (int copy = wrong && fault == missing ? 1 : 0; copy < (wrong && fault == repeated ? 2 : 1);
                         ++copy) {
                        if (format == Format::coo) s.first.push_back(i);
                        s.index.push_back(i), s.values.push_back(wrong && fault == zero ? T(0) : T(2)), ++s.entries;
                    }
                    if (format != Format::coo) s.last.push_back(static_cast<Int>(s.index.size()) + 1);
                }
                const Handle a(s);
                const ork_sparse_kind lower = triangular_kinds().back(),
                                      unit = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_LOWER, ORK_SPBLAS_UNIT};
                if (optimised) {
                    for (const auto& kind : {lower, unit}) ork_sparse_set_sv_hint(a, ORK_SPBLAS_NO_TRANS, kind, 100);
                    ork_sparse_set_symgs_hint(a, ORK_SPBLAS_NO_TRANS, general_kind, 100);
                    ASSERT_EQ(ork_sparse_optimize(a), ORK_SPARSE_SUCCESS);
                }
                const std::vector<T> b(6, T(1));
                std::vector<T> y(6, T(7));
                const auto told = [&](std::int64_t status) {
                    EXPECT_EQ(status, ORK_SPARSE_INVALID_STRUCTURE);
                    EXPECT_EQ(ork_sparse_last_error()->row, 4) << ork_sparse_last_error()->text;
                    EXPECT_EQ(y, std::vector<T>(6, T(7)));
                };
                const ork_sparse_matrix_t h = a;
                const int none = ORK_SPBLAS_NO_TRANS;
                told(call<T>("sv", none, scalar_argument(T(1)), h, lower, b.data(), y.data()));
                told(call<T>("symgs", none, h, general_kind, scalar_argument(T(1)), b.data(), y.data()));
                told(call<T>("sorv", int{ORK_SPARSE_FORWARD}, general_kind, h, scalar_argument(T(1)),
                             scalar_argument(T(1)), y.data(), b.data()));
                if (fault != repeated) {
                    EXPECT_EQ(call<T>("sv", none, scalar_argument(T(1)), h, unit, b.data(), y.data()),
                              ORK_SPARSE_SUCCESS);
                    EXPECT_EQ(y, b);
                }
            }
}

TYPED_TEST(Solves, ArgumentsAreChecked)
{
    TYPES;
    Random random(2);
    const Handle square(solvable<Int, T>({Format::csr, 5, 5}, random));
    const Stored<Int, T> stored({Format::csr, 4, 5}, random);
    const Handle rectangle(stored);
    const ork_sparse_kind lower = triangular_kinds().back();
    const std::vector<T> b(5);
    std::vector<T> y(5, T(7));
    T* const nowhere = nullptr;
    const int none = ORK_SPBLAS_NO_TRANS;
    const ork_sparse_matrix_t a = square, wide_one = rectangle;
    const T unit = T(1);
    const auto one = scalar_argument(unit);
    const auto at = [](std::int64_t argument) { return ork_sparse_last_error()->argument == argument; };
    EXPECT_EQ(call<T>("sv", 5, one, a, lower, b.data(), y.data()), ORK_SPARSE_INVALID_ARGUMENT);
    EXPECT_TRUE(at(1));
    EXPECT_EQ(call<T>("sv", none, one, a, general_kind, b.data(), y.data()), ORK_SPARSE_INVALID_ARGUMENT);
    EXPECT_TRUE(at(4));
    EXPECT_EQ(call<T>("sv", none, one, a, lower, b.data(), nowhere), ORK_SPARSE_INVALID_ARGUMENT);
    EXPECT_TRUE(at(6));
    EXPECT_EQ(call<T>("sv", none, one, wide_one, lower, b.data(), y.data()), ORK_SPARSE_MISMATCH);
    EXPECT_EQ(call<T>("symgs", none, wide_one, general_kind, one, b.data(), y.data()), ORK_SPARSE_MISMATCH);
    EXPECT_EQ(call<T>("symgs_mv", none, a, general_kind, one, b.data(), y.data(), nowhere),
              ORK_SPARSE_INVALID_ARGUMENT);
    EXPECT_TRUE(at(7));
    EXPECT_EQ(call<T>("sorv", 4, general_kind, a, one, one, y.data(), b.data()), ORK_SPARSE_INVALID_ARGUMENT);
    EXPECT_TRUE(at(1));
    EXPECT_EQ(call<T>("lu_smoother", none, a, general_kind, nowhere, b.data(), y.data(), b.data()),
              ORK_SPARSE_INVALID_ARGUMENT);
    EXPECT_TRUE(at(4));
    EXPECT_EQ(y, std::vector<T>(5, T(7)));
}

} // namespace
} // namespace ork::test

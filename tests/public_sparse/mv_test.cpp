// SPDX-License-Identifier: MIT
// Products after optimize: the layouts that matrices of a certain shape get, and the same results from all of them, for
// every operation and kind and number of threads. Numbers are small integers, so every order of addition is exact.
#include "ork/ork.h"
#include "stored.h"

namespace ork::test {
namespace {

class Threads {
public:
    explicit Threads(int count) : before_(ork_get_max_threads()) { ork_set_num_threads(count); }
    ~Threads() { ork_set_num_threads(before_); }

private:
    int before_;
};

// Rows by a function that appends their columns, ascending.
template <class Int, class T, class Columns>
Stored<Int, T> rows_of(Index rows, Index cols, int base, Random& random, Columns columns)
{
    Stored<Int, T> s;
    s.form = {Format::csr, rows, cols, base};
    for (Index i = 0; i < rows; ++i) {
        s.first.push_back(static_cast<Int>(s.index.size()) + static_cast<Int>(base));
        std::vector<Index> places;
        columns(i, places);
        std::sort(places.begin(), places.end());
        places.erase(std::unique(places.begin(), places.end()), places.end());
        for (const Index j : places) s.index.push_back(static_cast<Int>(j + base));
    }
    s.entries = static_cast<Index>(s.index.size());
    s.first.push_back(static_cast<Int>(s.entries) + static_cast<Int>(base)); // one array of pointers
    s.values = small_integers<T>(random, s.entries);
    // A Hermitian matrix's diagonal is real; what an imaginary part would do is nobody's promise here.
    for (Index i = 0; i < rows; ++i)
        for (Index k = s.first[i] - base; k < s.first[i + 1] - base; ++k)
            if (s.index[k] - base == i) s.values[k] = std::real(s.values[k]);
    return s;
}
template <class Int, class T>
ork_sparse_matrix_t create(const Stored<Int, T>& s)
{
    ork_sparse_matrix_t a = nullptr;
    const auto m = static_cast<Int>(s.form.rows), n = static_cast<Int>(s.form.cols);
    const Int *first = s.first.data(), *last = first + 1, *index = s.index.data();
    const T* values = s.values.data();
    EXPECT_EQ((call_sized<Int, T>("create_csr", &a, static_cast<ork_spblas_base>(s.form.base), m, n, first, last, index,
                                  values)),
              0)
        << ork_sparse_last_error()->text;
    return a;
}

// Points of a grid of side n; diagonals at distances 1 and n.
template <class Int, class T>
Stored<Int, T> grid(Index n, int base, Random& random)
{
    return rows_of<Int, T>(n * n, n * n, base, random, [&](Index i, std::vector<Index>& places) {
        for (const Index j : {i - n, i - 1, i, i + 1, i + n})
            if (j >= 0 && j < n * n) places.push_back(j);
    });
}
// Six entries a row, anywhere.
template <class Int, class T>
Stored<Int, T> even(Index rows, Index cols, int base, Random& random)
{
    return rows_of<Int, T>(rows, cols, base, random, [&](Index, std::vector<Index>& places) {
        while (places.size() < 6) {
            const Index j = random.integer(0, cols - 1);
            if (std::find(places.begin(), places.end(), j) == places.end()) places.push_back(j);
        }
    });
}
// Rows of very different lengths.
template <class Int, class T>
Stored<Int, T> uneven(Index rows, int base, Random& random)
{
    return rows_of<Int, T>(rows, rows, base, random, [&](Index, std::vector<Index>& places) {
        for (Index k = random.integer(0, 9) == 0 ? 100 : random.integer(0, 2); k > 0; --k)
            places.push_back(random.integer(0, rows - 1));
    });
}

template <class Int, class T>
Dense<T> dense_of(const Stored<Int, T>& s)
{
    Dense<T> a(s.form.rows, s.form.cols);
    for (Index i = 0; i < a.rows; ++i)
        for (Index k = s.first[i] - s.form.base; k < s.first[i + 1] - s.form.base; ++k)
            a.at(i, s.index[k] - s.form.base) += s.values[k];
    return a;
}

template <class T>
std::vector<T> dense_product(int op, const ork_sparse_kind& kind, T alpha, const Dense<T>& a, const std::vector<T>& x,
                             T beta, const std::vector<T>& y)
{
    const Dense<T> used = a.of_kind(kind).operated(op);
    std::vector<T> result;
    for (Index i = 0; i < used.rows; ++i) {
        T sum = 0;
        for (Index j = 0; j < used.cols; ++j) sum += used.at(i, j) * x[static_cast<std::size_t>(j)];
        result.push_back(alpha * sum + beta * y[static_cast<std::size_t>(i)]);
    }
    return result;
}

// y, and the dot product behind it.
template <class T>
std::vector<T> multiplied(const char* routine, int op, const ork_sparse_kind& kind, T alpha, ork_sparse_matrix_t a,
                          const std::vector<T>& x, T beta, std::vector<T> y)
{
    const auto scaled = scalar_argument(alpha), kept = scalar_argument(beta);
    const T* const from = x.data();
    T* const to = y.data();
    T dot = 0;
    const bool dots = std::string(routine) == "dotmv";
    const std::int64_t status =
        dots ? call<T>(routine, static_cast<ork_spblas_operation>(op), scaled, a, kind, from, kept, to, &dot)
             : call<T>(routine, static_cast<ork_spblas_operation>(op), scaled, a, kind, from, kept, to);
    EXPECT_EQ(status, 0) << ork_sparse_last_error()->text;
    if (dots) y.push_back(dot);
    return y;
}

ork_sparse_description optimised(ork_sparse_matrix_t a, int op, const ork_sparse_kind& kind)
{
    ork_sparse_description d{};
    EXPECT_EQ(ork_sparse_set_mv_hint(a, static_cast<ork_spblas_operation>(op), kind, 100000), 0);
    EXPECT_EQ(ork_sparse_optimize(a), 0) << ork_sparse_last_error()->text;
    EXPECT_EQ(ork_sparse_describe(a, &d), 0);
    return d;
}

// Complex double diagonals are bound by their arithmetic, and slices win.
template <class T>
std::string layout_of_grids()
{
    return std::is_same_v<T, cdouble> ? "slices" : "diagonals";
}

template <class T>
class SparseProducts : public testing::Test {
};
using Elements = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(SparseProducts, Elements);

template <class Int, class T>
void check_every_operation(const Stored<Int, T>& s, const std::string& layout)
{
    Random random(7);
    const Dense<T> dense = dense_of(s);
    const bool square = s.form.rows == s.form.cols;
    for (const int op : operations)
        for (const int type : {0, 1, 2, 3, 4, 5})
            for (const int uplo : {ORK_SPBLAS_UPPER, ORK_SPBLAS_LOWER})
                for (const int diag : {ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_UNIT}) {
                    const ork_sparse_kind kind = {static_cast<ork_spblas_type>(type),
                                                  static_cast<ork_spblas_uplo>(uplo),
                                                  static_cast<ork_spblas_diag>(diag)};
                    if (type == ORK_SPBLAS_HERMITIAN && !is_complex<T>) continue;
                    if (type != ORK_SPBLAS_GENERAL && !square) continue;
                    if (type == ORK_SPBLAS_GENERAL && (uplo != ORK_SPBLAS_UPPER || diag != ORK_SPBLAS_NON_UNIT))
                        continue;
                    SCOPED_TRACE(layout + ", op " + std::to_string(op) + ", type " + std::to_string(type) + ", uplo " +
                                 std::to_string(uplo) + ", diag " + std::to_string(diag));
                    ork_sparse_matrix_t a = create(s);
                    const auto description = optimised(a, op, kind);
                    if (type == ORK_SPBLAS_GENERAL && op == ORK_SPBLAS_NO_TRANS) {
                        EXPECT_EQ(description.layout, layout) << description.text;
                    }
                    const Index n = is_transposed(op) ? s.form.rows : s.form.cols;
                    const Index m = is_transposed(op) ? s.form.cols : s.form.rows;
                    const auto x = small_integers<T>(random, n), y = small_integers<T>(random, m);
                    for (const T beta : {T(0), T(-2)}) {
                        auto want = dense_product(op, kind, T(3), dense, x, beta, y);
                        const std::vector<T> old = beta == T(0) ? std::vector<T>(y.size(), T(NAN)) : y;
                        EXPECT_EQ(multiplied("mv", op, kind, T(3), a, x, beta, old), want);
                        if (!square) continue;
                        T dot = 0;
                        for (std::size_t i = 0; i < want.size(); ++i) dot += conjugate_if(true, x[i]) * want[i];
                        want.push_back(dot);
                        EXPECT_EQ(multiplied("dotmv", op, kind, T(3), a, x, beta, old), want);
                    }
                    EXPECT_EQ(ork_sparse_destroy(a), 0);
                }
}

TYPED_TEST(SparseProducts, OfEveryLayoutOperationAndKind)
{
    using T = TypeParam;
    Random random(1);
    check_every_operation(grid<std::int32_t, T>(20, 0, random), layout_of_grids<T>());
    check_every_operation(grid<std::int64_t, T>(17, 1, random), layout_of_grids<T>());
    check_every_operation(even<std::int32_t, T>(61, 61, 1, random), "slices");
    check_every_operation(even<std::int64_t, T>(61, 40, 0, random), "slices");
    check_every_operation(uneven<std::int32_t, T>(70, 0, random), "csr");
}

// Large enough to be divided: the products of one thread.
TYPED_TEST(SparseProducts, OnThreads)
{
    using T = TypeParam;
    using Int = std::int32_t;
    Random random(2);
    for (const auto& [layout, s] :
         {std::pair<std::string, Stored<Int, T>>{layout_of_grids<T>(), grid<Int, T>(250, 1, random)},
          {"slices", even<Int, T>(40001, 40001, 0, random)},
          {"csr", uneven<Int, T>(30000, 1, random)}}) {
        SCOPED_TRACE(layout);
        ork_sparse_matrix_t a = create(s);
        const auto x = small_integers<T>(random, s.form.cols), y = small_integers<T>(random, s.form.rows);
        const Threads one(1);
        const auto want = multiplied("dotmv", ORK_SPBLAS_NO_TRANS, general_kind, T(2), a, x, T(1), y);
        EXPECT_EQ(optimised(a, ORK_SPBLAS_NO_TRANS, general_kind).layout, layout);
        for (const int threads : {1, 2, 3, 7}) {
            const Threads some(threads);
            EXPECT_EQ(multiplied("dotmv", ORK_SPBLAS_NO_TRANS, general_kind, T(2), a, x, T(1), y), want) << threads;
            EXPECT_EQ(optimised(a, ORK_SPBLAS_NO_TRANS, general_kind).layout, layout); // filled by as many
        }
        EXPECT_EQ(ork_sparse_destroy(a), 0);
    }
}

TEST(SparseLayouts, FollowNewValues)
{
    using Int = std::int32_t;
    Random random(3);
    for (auto s : {grid<Int, double>(20, 0, random), even<Int, double>(100, 100, 0, random)}) {
        ork_sparse_matrix_t a = create(s);
        const auto x = small_integers<double>(random, s.form.cols);
        optimised(a, ORK_SPBLAS_NO_TRANS, general_kind);
        const auto all = small_integers<double>(random, s.entries);
        EXPECT_EQ(ork_sparse_d_update_values_i4(a, static_cast<Int>(s.entries), nullptr, nullptr, all.data()), 0)
            << ork_sparse_last_error()->text;
        EXPECT_EQ(ork_sparse_d_set_value(a, 3, s.index[s.first[3]], 17), 0);
        Stored<Int, double> now = s;
        now.values = all;
        now.values[s.first[3]] = 17;
        const std::vector<double> zeros(x.size());
        EXPECT_EQ(multiplied("mv", ORK_SPBLAS_NO_TRANS, general_kind, 1.0, a, x, 0.0, zeros),
                  dense_product(ORK_SPBLAS_NO_TRANS, general_kind, 1.0, dense_of(now), x, 0.0, zeros));
        EXPECT_EQ(ork_sparse_destroy(a), 0);
    }
}

// What was promised to take no memory does not; with alpha = 0 neither A nor x is looked at.
TEST(SparseLayouts, KeepPromises)
{
    Random random(4);
    const auto s = grid<std::int32_t, double>(20, 0, random);
    ork_sparse_matrix_t a = create(s);
    EXPECT_EQ(ork_sparse_set_memory_hint(a, ORK_SPARSE_MEMORY_NONE), 0);
    const auto d = optimised(a, ORK_SPBLAS_NO_TRANS, general_kind);
    EXPECT_STREQ(d.layout, "csr");
    EXPECT_EQ(d.bytes, 0);
    EXPECT_EQ(ork_sparse_set_memory_hint(a, ORK_SPARSE_MEMORY_FREE), 0);
    EXPECT_STREQ(optimised(a, ORK_SPBLAS_NO_TRANS, general_kind).layout, "diagonals");
    std::vector<double> x(400, NAN), y(400, 2);
    EXPECT_EQ(multiplied("mv", ORK_SPBLAS_NO_TRANS, general_kind, 0.0, a, x, 3.0, y), std::vector<double>(400, 6));
    EXPECT_EQ(ork_sparse_destroy(a), 0);
}

} // namespace
} // namespace ork::test

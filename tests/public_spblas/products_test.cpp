// SPDX-License-Identifier: MIT
// Every operation, kind, format and layout against the dense model.
#include "call.h"
#include "support/compare.h"

namespace ork::test {
namespace {

template <class C>
class PublicSpblas : public testing::Test {
};
TYPED_TEST_SUITE(PublicSpblas, Cases, CaseNames);

constexpr int layouts[] = {ORK_SPBLAS_ROW_MAJOR, ORK_SPBLAS_COL_MAJOR};

// Calls body(format, op, kind) for all that the interface accepts.
template <class T, class Body>
void for_all_kinds(bool solve, Body body)
{
    for (const Format format : all_formats)
        for (int op = ORK_SPBLAS_NO_TRANS; op <= ORK_SPBLAS_CONJ; ++op)
            for (int type = ORK_SPBLAS_GENERAL; type <= ORK_SPBLAS_DIAGONAL; ++type)
                for (int letters = 0; letters < 8; ++letters) {
                    const ork_spblas_kind kind = {
                        ork_spblas_type(type), ork_spblas_uplo(ORK_SPBLAS_UPPER + letters % 2),
                        ork_spblas_diag(ORK_SPBLAS_NON_UNIT + letters / 2 % 2), ork_spblas_base(letters / 4)};
                    if (type == ORK_SPBLAS_HERMITIAN && !is_complex<T>) continue;
                    if (type == ORK_SPBLAS_GENERAL && format == Format::sky) continue;
                    if (solve && type != ORK_SPBLAS_TRIANGULAR && type != ORK_SPBLAS_DIAGONAL) continue;
                    body(format, op, kind);
                }
}

template <class T>
Sparse<T> matrix_for(Format format, Shape s, std::int64_t rows, std::int64_t columns, bool solve, Random& random)
{
    const std::int64_t lb = format == Format::bsr || format == Format::bsc ? 3 : 1;
    // Kernels of this kind take the dot product of whole rows.
    const bool finite = format == Format::csr && s.diag == 'u' && (s.type == 's' || s.type == 'h');
    Structure structure{s, rows, s.type == 'g' ? columns : rows, lb, solve, format == Format::sky, finite};
    if (structure.profile && s.uplo == '_') structure.shape.uplo = 'u'; // a diagonal one has a profile all the same
    Sparse<T> a = random_sparse<T>(structure, random);
    if (solve && format == Format::coo) // may come in any order and in pieces
        for (std::size_t k = a.blocks.size(); k > 1; --k) {
            std::swap(a.blocks[k - 1], a.blocks[static_cast<std::size_t>(random.integer(0, std::int64_t(k) - 1))]);
            if (k % 3 == 0) {
                a.blocks.push_back(a.blocks[k - 1]);
                a.blocks[k - 1].value[0] *= Real<T>(0.5);
                a.blocks.back().value[0] *= Real<T>(0.5);
            }
        }
    return a;
}

// Row r of right-hand side j.
template <class T>
T& at(std::vector<T>& c, int layout, std::int64_t ld, std::int64_t r, std::int64_t j)
{
    return c[static_cast<std::size_t>(layout == ORK_SPBLAS_ROW_MAJOR ? r * ld + j : j * ld + r)];
}

TYPED_TEST(PublicSpblas, ProductsAreThoseOfTheDenseMatrix)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    const T alpha = scalar<T>(0.75, -1.25), beta = scalar<T>(-0.5, 1.5);
    Random random(3);
    for_all_kinds<T>(false, [&](Format format, int op, ork_spblas_kind kind) {
        for (const int layout : {0, layouts[0], layouts[1]}) {
            const bool vectors = layout == 0;
            const Shape s = letters_of(op, kind, (vectors ? kind.base == 0 : layout == layouts[0]) ? 'c' : 'f');
            SCOPED_TRACE(name_of(format) + " " + std::string(&s.base, 6));
            const Sparse<T> a = matrix_for<T>(format, s, 11, 7, false, random);
            const Model model(a, s);
            const Matrix<Int, T> matrix(format, a, {s, format == Format::coo ? 0 : 5, format == Format::csr, 2});
            const std::int64_t nrhs = vectors ? 1 : 5, ld = std::max(model.rows(), model.columns()) + 2;
            std::vector<T> b = uniform_values<T>(ld * ld, random.bits()), c = uniform_values<T>(ld * ld, random.bits());
            const std::vector<T> before = c;
            const std::int64_t status =
                vectors ? matrix.mv(op, kind, alpha, b.data(), beta, c.data())
                        : matrix.mm(op, kind, layout, Int(nrhs), alpha, b.data(), Int(ld), beta, c.data(), Int(ld));
            ASSERT_EQ(status, ORK_SPBLAS_SUCCESS) << ork_spblas_last_error()->text;
            std::vector<T> rest = before;
            for (std::int64_t j = 0; j < nrhs; ++j) {
                std::vector<Expected<Model::R>> want;
                std::vector<T> got;
                for (std::int64_t i = 0; i < model.rows(); ++i) {
                    T& old = at(rest, layout, ld, i, j);
                    want.push_back(model.product(
                        i, alpha, [&](std::int64_t k) { return at(b, layout, ld, k, j); }, beta, old));
                    got.push_back(at(c, layout, ld, i, j));
                    old = got.back();
                }
                expect_near<T>(got, want, static_cast<double>(model.columns()) + 8);
            }
            expect_same_bits<T>(c, rest, std::int64_t(c.size())); // nothing else was written
        }
    });
}

TYPED_TEST(PublicSpblas, SolutionsMultipliedAgainAreTheRightHandSides)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    const T alpha = scalar<T>(0.75, -1.25);
    Random random(4);
    for_all_kinds<T>(true, [&](Format format, int op, ork_spblas_kind kind) {
        for (const int layout : {0, layouts[0], layouts[1]})
            for (const bool in_place : {false, true}) {
                const bool vectors = layout == 0;
                const Shape s = letters_of(op, kind, (vectors ? kind.base == 0 : layout == layouts[0]) ? 'c' : 'f');
                SCOPED_TRACE(name_of(format) + " " + std::string(&s.base, 6) + (in_place ? " in place" : ""));
                const Sparse<T> a = matrix_for<T>(format, s, 9, 9, true, random);
                const Model model(a, s);
                const Matrix<Int, T> matrix(format, a, {s, format == Format::coo ? 0 : 5});
                const std::int64_t nrhs = vectors ? 1 : 5, ldb = model.rows() + 3, ldc = ldb + (in_place ? 0 : 1);
                std::vector<T> b = uniform_values<T>(ldb * ldb, random.bits()),
                               c = in_place ? b : uniform_values<T>(ldc * ldc, random.bits()), rest = c;
                const T* from = in_place ? c.data() : b.data();
                const std::int64_t status =
                    vectors ? matrix.sv(op, kind, alpha, from, c.data())
                            : matrix.sm(op, kind, layout, Int(nrhs), alpha, from, Int(ldb), c.data(), Int(ldc));
                ASSERT_EQ(status, ORK_SPBLAS_SUCCESS) << ork_spblas_last_error()->text;
                for (std::int64_t j = 0; j < nrhs; ++j)
                    for (std::int64_t i = 0; i < model.rows(); ++i) {
                        at(rest, layout, ldc, i, j) = at(c, layout, ldc, i, j);
                        auto sum = model.product(
                            i, T(1), [&](std::int64_t k) { return at(c, layout, ldc, k, j); }, T(0), T(0));
                        sum.value += Wide<Model::R>() -
                                     multiply<T>(Wide<Model::R>(alpha), Wide<Model::R>(at(b, layout, ldb, i, j)));
                        const auto bound = std::numeric_limits<Real<T>>::epsilon() * (sum.scale + 4) *
                                           static_cast<Model::R>(model.rows() + 8);
                        EXPECT_TRUE(magnitude(sum.value) <= bound)
                            << "row " << i << " of " << j << " by " << static_cast<double>(magnitude(sum.value));
                    }
                expect_same_bits<T>(c, rest, std::int64_t(c.size()));
            }
    });
}

// With beta = 0 the output is not read, with alpha = 0 neither A nor x, and a product with an empty matrix is zero.
TYPED_TEST(PublicSpblas, ZeroFactorsReadNothing)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    const T nan = not_a_number<T>(), beta = scalar<T>(-0.5, 1.5);
    Random random(5);
    const ork_spblas_kind kind = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_1};
    for (const Format format : all_formats) {
        SCOPED_TRACE(name_of(format));
        const Shape s = letters_of(ORK_SPBLAS_NO_TRANS, kind, 'f');
        const Sparse<T> a = matrix_for<T>(format, s, 6, 6, true, random);
        Matrix<Int, T> matrix(format, a, {s});
        const auto rows = static_cast<Int>(6 * a.lb);
        const auto count = static_cast<std::size_t>(rows);
        const std::vector<T> x = uniform_values<T>(rows), nans(count, nan), zeros(count);
        std::vector<T> y = nans;
        EXPECT_EQ(matrix.mv(ORK_SPBLAS_NO_TRANS, kind, T(1), x.data(), T(0), y.data()), 0);
        for (const T& value : y) EXPECT_TRUE(value == value);
        y = nans;
        EXPECT_EQ(matrix.sv(ORK_SPBLAS_NO_TRANS, kind, T(0), nullptr, y.data()), 0);
        expect_same_bits<T>(y, zeros, rows);

        std::fill(matrix.val.begin(), matrix.val.end(), nan);
        y = x;
        EXPECT_EQ(matrix.mv(ORK_SPBLAS_NO_TRANS, kind, T(0), nans.data(), T(1), y.data()), 0);
        expect_same_bits<T>(y, x, rows);
        EXPECT_EQ(
            matrix.mm(ORK_SPBLAS_NO_TRANS, kind, ORK_SPBLAS_COL_MAJOR, 1, T(0), nullptr, rows, beta, y.data(), rows),
            0);
        for (std::size_t i = 0; i < count; ++i) {
            const Wide<Model::R> want = multiply<T>(Wide<Model::R>(beta), Wide<Model::R>(x[i]));
            expect_near<T>(y[i], Expected<Model::R>{want, 4}, 2);
        }
        matrix.m = matrix.n = 0;
        EXPECT_EQ(matrix.mv(ORK_SPBLAS_NO_TRANS, kind, T(1), nullptr, T(0), nullptr), 0);
        EXPECT_EQ(matrix.sv(ORK_SPBLAS_NO_TRANS, kind, T(1), nullptr, nullptr), 0);
    }
    // No columns: y = beta y. No entries: nor are there arrays.
    const ork_spblas_kind general = {ORK_SPBLAS_GENERAL, {}, {}, ORK_SPBLAS_BASE_0};
    const std::vector<Int> pointers(4, 7);
    std::vector<T> y(3, nan);
    for (const Int n : {0, 2}) {
        EXPECT_EQ((call_public<Int, T>("csrmv", int(ORK_SPBLAS_NO_TRANS), general, Int(3), n, scalar_argument(beta),
                                       static_cast<const T*>(nullptr), static_cast<const Int*>(nullptr),
                                       pointers.data(), pointers.data() + 1, static_cast<const T*>(y.data()),
                                       scalar_argument(T(0)), y.data())),
                  0);
        for (const T& value : y) EXPECT_EQ(value, T(0));
    }
}

} // namespace
} // namespace ork::test

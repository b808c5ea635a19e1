// SPDX-License-Identifier: MIT
// Long random lives of handles beside dense matrices: any format, hints, optimize, new values, conversions, products
// and solves in any order, and every result compared. The seed of a failure is printed; ORK_TEST_SEED starts there.
#include <cstdlib>
#include <memory>

#include "ork/ork.h"
#include "stored.h"

namespace ork::test {
namespace {

template <class Int, class T>
class Life {
public:
    explicit Life(std::uint64_t seed) : random_(seed)
    {
        stored_.push_back(
            std::make_unique<Stored<Int, T>>(random_form(random_, 40 / random_.integer(1, 8), true), random_));
        form_ = stored_.back()->form;
        EXPECT_EQ(stored_.back()->create(handle_.result()), 0) << ork_sparse_last_error()->text;
        dense_ = stored_.back()->dense();
    }

    void live()
    {
        for (int day = 0; day < 25 && !testing::Test::HasFailure(); ++day) {
            const auto choice = random_.integer(0, 11);
            SCOPED_TRACE("step " + std::to_string(day) + ", choice " + std::to_string(choice));
            switch (choice) {
            case 0:
                hint();
                break;
            case 1:
                ok(ork_sparse_optimize(handle_));
                break;
            case 2:
                change_values();
                break;
            case 3:
                convert();
                break;
            case 4:
                ok(ork_sparse_order(handle_));
                break;
            case 5:
            case 6:
            case 7:
                multiply_matrix();
                break;
            case 8:
                solve();
                break;
            default:
                multiply_vector();
            }
        }
    }

private:
    void ok(std::int64_t status) { EXPECT_EQ(status, ORK_SPARSE_SUCCESS) << ork_sparse_last_error()->text; }
    int operation() { return operations[random_.integer(0, 3)]; }

    ork_sparse_kind kind(bool solves = false)
    {
        auto type = solves ? (random_.integer(0, 1) ? ORK_SPBLAS_TRIANGULAR : ORK_SPBLAS_DIAGONAL)
                           : static_cast<ork_spblas_type>(random_.integer(0, 2) == 0 ? random_.integer(0, 5) : 0);
        if (type == ORK_SPBLAS_HERMITIAN && !is_complex<T>) type = ORK_SPBLAS_SYMMETRIC;
        if (dense_.rows != dense_.cols && !solves) type = ORK_SPBLAS_GENERAL;
        // The diagonal of a Hermitian matrix is real, and that of these is not.
        const bool unit = solves || type == ORK_SPBLAS_HERMITIAN;
        return {type, static_cast<ork_spblas_uplo>(random_.integer(121, 122)),
                static_cast<ork_spblas_diag>(unit ? 132 : random_.integer(131, 132))};
    }
    int layout() { return static_cast<int>(random_.integer(ORK_SPBLAS_ROW_MAJOR, ORK_SPBLAS_COL_MAJOR)); }

    void hint()
    {
        const auto op = static_cast<ork_spblas_operation>(operation());
        const auto calls = random_.integer(0, 2) * random_.integer(0, 1000);
        const bool square = dense_.rows == dense_.cols;
        switch (random_.integer(0, 5)) {
        case 0:
            return ok(ork_sparse_set_memory_hint(handle_, static_cast<ork_sparse_memory>(random_.integer(0, 1))));
        case 1:
            return ok(ork_sparse_set_mm_hint(handle_, op, kind(), static_cast<ork_spblas_layout>(layout()),
                                             random_.integer(0, 20), calls));
        case 2:
            if (square) ok(ork_sparse_set_sv_hint(handle_, op, kind(true), calls));
            return;
        case 3:
            return ok(ork_sparse_set_dotmv_hint(handle_, op, kind(), calls));
        default:
            return ok(ork_sparse_set_mv_hint(handle_, op, kind(), calls));
        }
    }

    void change_values()
    {
        auto now = exported<Int, T>(handle_, form_.format);
        std::vector<T> values = small_integers<T>(random_, now.entries * form_.block * form_.block);
        ok(call_sized<Int, T>("update_values", ork_sparse_matrix_t(handle_), static_cast<Int>(values.size()),
                              static_cast<const Int*>(nullptr), static_cast<const Int*>(nullptr), values.data()));
        dense_ = exported<Int, T>(handle_, form_.format).dense();
    }

    // The life goes on with the result.
    void convert()
    {
        const int op = operation();
        const auto operation = static_cast<ork_spblas_operation>(op);
        ork_sparse_matrix_t next = nullptr;
        Form form = {};
        switch (random_.integer(0, 3)) {
        case 0:
            form.format = Format::csr;
            ok(ork_sparse_convert_csr(handle_, operation, &next));
            break;
        case 1:
            form.format = Format::csc;
            ok(ork_sparse_convert_csc(handle_, operation, &next));
            break;
        case 2: {
            // Of a divisor, so that no rows are added to a matrix that is to stay square and small.
            form.format = Format::bsr;
            form.block = dense_.rows % 3 == 0 && dense_.cols % 3 == 0 ? 3 : 1;
            ok(ork_sparse_convert_bsr(handle_, form.block, static_cast<ork_spblas_layout>(layout()), operation, &next));
            break;
        }
        default:
            form = form_;
            ok(ork_sparse_copy(handle_, &next));
        }
        if (next == nullptr) return;
        const bool copied = form.format == form_.format && form.rows == form_.rows && form.rows > 0;
        ok(ork_sparse_destroy(handle_.release()));
        *handle_.result() = next;
        const auto now = exported<Int, T>(handle_, form.format);
        EXPECT_EQ(now.dense(), copied ? dense_ : dense_.operated(copied ? ORK_SPBLAS_NO_TRANS : op));
        form_ = now.form;
        dense_ = now.dense();
    }

    // alpha op(A) b + beta c, exactly.
    Dense<T> expected(int op, const ork_sparse_kind& k, T alpha, const Dense<T>& b, T beta, const Dense<T>& c)
    {
        const Dense<T> a = dense_.of_kind(k).operated(op);
        Dense<T> result(a.rows, b.cols);
        for (Index j = 0; j < b.cols; ++j)
            for (Index i = 0; i < a.rows; ++i) {
                T sum = 0;
                for (Index l = 0; l < a.cols; ++l) sum += a.at(i, l) * b.at(l, j);
                result.at(i, j) = alpha * sum + (beta == T(0) ? T(0) : beta * c.at(i, j));
            }
        return result;
    }
    Dense<T> random_dense(Index rows, Index cols)
    {
        Dense<T> d(rows, cols);
        d.values = small_integers<T>(random_, rows * cols);
        return d;
    }
    Index rows_of(int op) { return is_transposed(op) ? dense_.cols : dense_.rows; }
    Index cols_of(int op) { return is_transposed(op) ? dense_.rows : dense_.cols; }

    void multiply_vector()
    {
        const int op = operation();
        const ork_sparse_kind k = kind();
        const T alpha = small_integer<T>(random_), beta = random_.integer(0, 1) ? small_integer<T>(random_) : T(0);
        const Dense<T> x = random_dense(cols_of(op), 1);
        Dense<T> y = random_dense(rows_of(op), 1);
        const Dense<T> want = expected(op, k, alpha, x, beta, y);
        ok(call<T>("mv", op, scalar_argument(alpha), ork_sparse_matrix_t(handle_), k, x.values.data(),
                   scalar_argument(beta), y.values.data()));
        EXPECT_EQ(y, want) << describe(op, k);
    }

    void multiply_matrix()
    {
        const int op = operation();
        const ork_sparse_kind k = kind();
        const T alpha = small_integer<T>(random_), beta = random_.integer(0, 1) ? small_integer<T>(random_) : T(0);
        const Index columns = random_.integer(0, 9);
        const Dense<T> b = random_dense(cols_of(op), columns);
        Dense<T> c = random_dense(rows_of(op), columns);
        const Dense<T> want = expected(op, k, alpha, b, beta, c);
        const int lay = layout();
        // Row-major is column-major of the transpose.
        const bool by_rows = lay == ORK_SPBLAS_ROW_MAJOR;
        const Dense<T> from = by_rows ? b.operated(ORK_SPBLAS_TRANS) : b;
        Dense<T> to = by_rows ? c.operated(ORK_SPBLAS_TRANS) : c;
        ok(call<T>("mm", op, scalar_argument(alpha), ork_sparse_matrix_t(handle_), k, lay, from.values.data(), columns,
                   std::max<Index>(from.rows, 1), scalar_argument(beta), to.values.data(),
                   std::max<Index>(to.rows, 1)));
        EXPECT_EQ(by_rows ? to.operated(ORK_SPBLAS_TRANS) : to, want) << describe(op, k);
    }

    // With ones for the diagonal nothing is divided, so that the solution of op(A) y = op(A) x is x, exactly, as long
    // as numbers fit: x is large where few rows follow, so a mistake is not lost.
    void solve()
    {
        if (dense_.rows != dense_.cols) return;
        ok(ork_sparse_order(handle_)); // solves want sorted rows, and diagonal blocks once
        const auto now = exported<Int, T>(handle_, form_.format);
        for (std::size_t i = 0; form_.block > 1 && i < now.last.size(); ++i)
            if (std::count(now.index.begin() + (now.first[i] - form_.base),
                           now.index.begin() + (now.last[i] - form_.base), static_cast<Int>(i) + form_.base) > 1)
                return;
        const int op = operation();
        const ork_sparse_kind k = kind(true);
        const Dense<T> x = random_dense(dense_.rows, 1);
        const Dense<T> b = expected(op, k, T(1), x, T(0), x);
        Dense<T> y(dense_.rows, 1);
        ok(call<T>("sv", op, scalar_argument(T(1)), ork_sparse_matrix_t(handle_), k, b.values.data(), y.values.data()));
        EXPECT_EQ(y, x) << describe(op, k);
    }

    std::string describe(int op, const ork_sparse_kind& k)
    {
        return "op " + std::to_string(op) + " type " + std::to_string(k.type) + " uplo " + std::to_string(k.uplo) +
               " diag " + std::to_string(k.diag) + " format " + std::to_string(static_cast<int>(form_.format)) +
               " base " + std::to_string(form_.base) + " block " + std::to_string(form_.block) + " layout " +
               std::to_string(form_.layout) + " rows " + std::to_string(form_.rows);
    }

    Random random_;
    std::vector<std::unique_ptr<Stored<Int, T>>> stored_; // arrays that the handle may borrow
    Handle handle_;
    Form form_;
    Dense<T> dense_{0, 0};
};

TEST(SparseFuzz, LivesOfHandles)
{
    const char* const start = std::getenv("ORK_TEST_SEED");
    const std::uint64_t first = start != nullptr ? std::strtoull(start, nullptr, 10) : 1;
    for (std::uint64_t seed = first; seed < first + 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        ork_set_num_threads(static_cast<int>(seed % 3 + 1));
        Life<std::int32_t, double>(seed).live();
        Life<std::int64_t, cfloat>(seed).live();
        Life<std::int64_t, float>(seed).live();
        Life<std::int32_t, cdouble>(seed).live();
        if (testing::Test::HasFailure()) break;
    }
    ork_set_num_threads(0);
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// Products of sparse matrices: checks, and the threads that the kernels' shares run on.
#include "sparse/products.h"

#include <cstring>
#include <utility>

#include "export.h"
#include "ork/abi/services.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "threads/pool.h"

namespace ork::sparse {

Team team()
{
    void (*const run)(int, void (*)(void*, int), void*) = threads::run;
    return {threads::limit(), run};
}

void check_factors(Checks& check, const Matrix* a, const char* argument, const Matrix* b)
{
    if (check.failed()) return;
    check.same_numbers(a, argument, b);
    if (a->format == Format::bsr || b->format == Format::bsr) check.same_format(a, argument, b);
}

std::int64_t status_of(const Routine& r, const Matrix& a, std::int64_t status)
{
    if (status == product_done) return ORK_SPARSE_SUCCESS;
    if (status == product_no_memory) return no_memory(r);
    return not_supported(r, "c", status, "the result has more entries than %d-byte integers count", a.index_bytes);
}

namespace {

using Untyped = ProductHandleCalls<std::int64_t>;
constinit Kernels<2> kernel_sp2m("sp2m"), kernel_syrk("syrk"), kernel_sypr("sypr");
constinit Kernels<8> kernel_spmmd("spmmd");

std::int64_t rows_of_op(const Matrix& a, int op) { return transposes(op) ? cols_of(a) : rows_of(a); }
std::int64_t cols_of_op(const Matrix& a, int op) { return transposes(op) ? rows_of(a) : cols_of(a); }
int number_of(int op) { return op - ORK_SPBLAS_NO_TRANS; }

std::int64_t lines_of(const Matrix& a) { return a.format == Format::csc ? a.cols : a.rows; }
bool finishes(int stage) { return stage == ORK_SPARSE_FINALIZE || stage == ORK_SPARSE_FINALIZE_NO_VALUES; }

void check_stage(Checks& check, int stage)
{
    if (!check.failed() && (stage < ORK_SPARSE_FULL || stage > ORK_SPARSE_FINALIZE_NO_VALUES))
        check.fail(wrong_argument(check.routine(), "stage", stage, "stages are 1 to 5"));
}

void check_inner(Checks& check, const char* argument, std::int64_t cols, std::int64_t rows)
{
    if (!check.failed() && cols != rows)
        check.fail(mismatch(check.routine(), argument, rows, "the first factor has %lld columns, this one %lld rows",
                            static_cast<long long>(cols), static_cast<long long>(rows)));
}

// Arrays of a matrix that has nothing but row pointers as yet: all entries are zeros of the first column, so that it is
// a matrix to everybody.
bool fill_up(Matrix& c)
{
    const std::int64_t lines = lines_of(c), width = c.index_bytes;
    std::int64_t last = 0;
    std::memcpy(&last, static_cast<char*>(c.first) + lines * width, static_cast<std::size_t>(width));
    const std::int64_t entries = last - c.base;
    const auto zeros = [&](std::int64_t bytes) {
        return ork_serv_calloc(static_cast<std::size_t>(entries), static_cast<std::size_t>(bytes), 16, 0);
    };
    c.index = zeros(width), c.values = zeros(element_size(c.precision) * c.block * c.block);
    if (c.index == nullptr || c.values == nullptr) return false;
    if (c.base != 0)
        for (std::int64_t k = 0; k < entries; ++k) static_cast<char*>(c.index)[k * width] = 1;
    c.entries = entries;
    c.distinct = 0;
    return true;
}

// What a product into a handle does at a stage. multiply(steps, &record) is the kernel.
template <class Multiply>
std::int64_t in_stage(const Routine& r, const Matrix& a, const Matrix& b, int stage, ork_sparse_matrix_t* result,
                      std::int64_t rows, std::int64_t cols, Multiply multiply)
{
    Checks check(r);
    if (!finishes(stage)) {
        const int steps = stage == ORK_SPARSE_COUNT            ? product_counts
                          : stage == ORK_SPARSE_FULL_NO_VALUES ? product_counts | product_pattern
                                                               : product_counts | product_pattern | product_values;
        Matrix* c = nullptr;
        if (const auto status = multiply(steps, &c)) return status_of(r, a, status);
        if (stage == ORK_SPARSE_COUNT && !fill_up(*c)) {
            destroy(c);
            return no_memory(r);
        }
        return publish(r, c, result);
    }
    Matrix* c = check.handle("c", *result);
    if (check.failed()) return check.status();
    check.same_numbers(&a, "c", c);
    if (!check.failed() && (c == &a || c == &b || !c->owns_arrays || c->sorted == 0 || !c->one_pointer_array() ||
                            rows_of(*c) != rows || cols_of(*c) != cols || c->block != a.block))
        check.fail(mismatch(r, "c", c->entries, "the handle is no result of such a product"));
    if (check.failed()) return check.status();
    if (c->distinct) { // finished
        if (stage == ORK_SPARSE_FINALIZE_NO_VALUES) return ORK_SPARSE_SUCCESS;
        drop_analysis(*c);
        return status_of(r, a, multiply(product_values, &c));
    }
    // Counted: all is made anew, which costs the counting but neither trusts that these are the factors of then nor
    // leaves a half when there is no memory. The row pointers stay where the caller has seen them.
    Matrix* made = nullptr;
    const int values = stage == ORK_SPARSE_FINALIZE ? product_values : 0;
    if (const auto status = multiply(product_counts | product_pattern | values, &made)) return status_of(r, a, status);
    if (lines_of(*made) != lines_of(*c)) {
        destroy(made);
        return mismatch(r, "c", c->entries, "the handle is no result of such a product");
    }
    drop_analysis(*c);
    std::memcpy(c->first, made->first, static_cast<std::size_t>((lines_of(*c) + 1) * c->index_bytes));
    std::swap(c->index, made->index);
    std::swap(c->values, made->values);
    c->entries = made->entries, c->base = made->base, c->layout = made->layout, c->distinct = 1;
    destroy(made);
    return ORK_SPARSE_SUCCESS;
}

std::int64_t multiply(const Routine& r, int op_a, ork_sparse_matrix_t handle_a, const ork_sparse_kind* kind_a, int op_b,
                      ork_sparse_matrix_t handle_b, const ork_sparse_kind* kind_b, int stage,
                      ork_sparse_matrix_t* result)
{
    Checks check(r);
    check.operation(kind_a ? "op_a" : "op", op_a);
    const Matrix* const a = check.handle("a", handle_a);
    if (kind_b != nullptr) check.operation("op_b", op_b);
    const Matrix* const b = check.handle("b", handle_b);
    if (kind_a != nullptr && !check.failed() && kind_a->type != ORK_SPBLAS_GENERAL)
        check.fail(not_supported(r, "kind_a", kind_a->type, "factors are general here"));
    if (kind_b != nullptr && !check.failed() && kind_b->type != ORK_SPBLAS_GENERAL)
        check.fail(not_supported(r, "kind_b", kind_b->type, "factors are general here"));
    check_stage(check, stage);
    check.given("c", result);
    check_factors(check, a, "b", b);
    if (!check.failed()) check_inner(check, "b", cols_of_op(*a, op_a), rows_of_op(*b, op_b));
    if (check.failed()) return check.status();
    const Team threads = team();
    return in_stage(r, *a, *b, stage, result, rows_of_op(*a, op_a), cols_of_op(*b, op_b), [&](int steps, Matrix** c) {
        return kernel_sp2m.get<Untyped::sp2m>(*a)(&threads, number_of(op_a), a, number_of(op_b), b, steps, c);
    });
}

std::int64_t square(int op, ork_sparse_matrix_t handle, ork_sparse_matrix_t* result)
{
    const Routine r = {"syrk", "op a c"};
    Checks check(r);
    check.operation("op", op);
    const Matrix* const a = check.handle("a", handle);
    check.given("c", result);
    if (!check.failed() && op == ORK_SPBLAS_CONJ)
        check.fail(not_supported(r, "op", op, "a product with A or with its transpose first"));
    if (check.failed()) return check.status();
    const Team threads = team();
    Matrix* c = nullptr;
    if (const auto status = kernel_syrk.get<Untyped::syrk>(*a)(&threads, number_of(op), a, &c))
        return status_of(r, *a, status);
    return publish(r, c, result);
}

std::int64_t triple(int op, ork_sparse_matrix_t handle_a, ork_sparse_matrix_t handle_b, const ork_sparse_kind& kind,
                    int stage, ork_sparse_matrix_t* result)
{
    const Routine r = {"sypr", "op a b kind_b stage c"};
    Checks check(r);
    check.operation("op", op);
    const Matrix* const a = check.handle("a", handle_a);
    const Matrix* const b = check.handle("b", handle_b);
    if (b != nullptr) check.kind("kind_b", kind, b);
    if (!check.failed() && op == ORK_SPBLAS_CONJ)
        check.fail(not_supported(r, "op", op, "a product with A or with its transpose first"));
    const bool symmetric = kind.type == ORK_SPBLAS_SYMMETRIC;
    if (!check.failed() && !symmetric && kind.type != ORK_SPBLAS_HERMITIAN)
        check.fail(not_supported(r, "kind_b", kind.type, "B is symmetric or Hermitian here"));
    if (!check.failed() && kind.diag == ORK_SPBLAS_UNIT)
        check.fail(not_supported(r, "kind_b", kind.diag, "the diagonal of B is stored here"));
    check_stage(check, stage);
    check.given("c", result);
    check_factors(check, a, "b", b);
    if (!check.failed() && b->format == Format::coo)
        check.fail(not_supported(r, "b", static_cast<int>(b->format), "B has compressed rows, columns or blocks here"));
    if (!check.failed()) check_inner(check, "b", cols_of_op(*a, op), rows_of(*b));
    if (check.failed()) return check.status();
    const Team threads = team();
    const std::int64_t order = rows_of_op(*a, op);
    return in_stage(r, *a, *b, stage, result, order, order, [&](int steps, Matrix** c) {
        return kernel_sypr.get<Untyped::sypr>(*a)(&threads, number_of(op), a, b, kind.uplo == ORK_SPBLAS_UPPER,
                                                  symmetric && is_complex(a->precision), steps, c);
    });
}

// A leading dimension that the kernels of the handle's width can count with.
void check_leading(Checks& check, const char* argument, std::int64_t ld, const Matrix* a)
{
    if (!check.failed() && a->index_bytes == 4 && ld > INT32_MAX)
        check.fail(not_supported(check.routine(), argument, ld, "more than 4-byte integers count, as the handle does"));
}

struct DenseResult {
    const void *alpha, *beta;
    int layout;
    void* c;
    std::int64_t ldc;
};

std::int64_t run_dense(const Routine& r, const Factors& f, const DenseResult& d)
{
    using Kernel =
        std::int64_t(const Team*, const Factors*, const void*, const void*, std::int32_t, void*, std::int64_t);
    const Team threads = team();
    return status_of(
        r, *f.a,
        kernel_spmmd.get<Kernel>(*f.a)(&threads, &f, d.alpha, d.beta, d.layout == ORK_SPBLAS_COL_MAJOR, d.c, d.ldc));
}

void check_dense(Checks& check, const DenseResult& d, const char* layout, const Matrix* a, std::int64_t rows,
                 std::int64_t cols)
{
    check.given("alpha", d.alpha);
    check.given("beta", d.beta);
    check.layout(layout, d.layout);
    check.dense("c", d.c, "ldc", d.ldc, d.layout, rows, cols);
    check_leading(check, "ldc", d.ldc, a);
}

std::int64_t multiply_dense(const Routine& r, int op_a, ork_sparse_matrix_t handle_a, int op_b,
                            ork_sparse_matrix_t handle_b, const DenseResult& d)
{
    Checks check(r);
    check.operation("op_a", op_a);
    const Matrix* const a = check.handle("a", handle_a);
    check.operation("op_b", op_b);
    const Matrix* const b = check.handle("b", handle_b);
    check_factors(check, a, "b", b);
    if (check.failed()) return check.status();
    check_inner(check, "b", cols_of_op(*a, op_a), rows_of_op(*b, op_b));
    const std::int64_t rows = rows_of_op(*a, op_a), cols = cols_of_op(*b, op_b);
    check_dense(check, d, "layout", a, rows, cols);
    if (check.failed()) return check.status();
    if (rows == 0 || cols == 0) return ORK_SPARSE_SUCCESS;
    Factors f;
    f.op_a = number_of(op_a), f.op_b = number_of(op_b), f.a = a, f.b = b;
    return run_dense(r, f, d);
}

std::int64_t square_dense(const Routine& r, int op, ork_sparse_matrix_t handle, const DenseResult& d)
{
    Checks check(r);
    check.operation("op", op);
    const Matrix* const a = check.handle("a", handle);
    if (!check.failed() && op == ORK_SPBLAS_CONJ)
        check.fail(not_supported(r, "op", op, "a product with A or with its transpose first"));
    if (check.failed()) return check.status();
    const std::int64_t order = rows_of_op(*a, op);
    check_dense(check, d, "layout", a, order, order);
    if (check.failed()) return check.status();
    if (order == 0) return ORK_SPARSE_SUCCESS;
    Factors f;
    f.form = ProductForm::square, f.op_a = number_of(op), f.a = a;
    return run_dense(r, f, d);
}

std::int64_t triple_dense(const Routine& r, int op, ork_sparse_matrix_t handle, const void* b, int layout_b,
                          std::int64_t ldb, const DenseResult& d)
{
    Checks check(r);
    check.operation("op", op);
    const Matrix* const a = check.handle("a", handle);
    if (!check.failed() && op == ORK_SPBLAS_CONJ)
        check.fail(not_supported(r, "op", op, "a product with A or with its transpose first"));
    check.layout("layout_b", layout_b);
    if (check.failed()) return check.status();
    const std::int64_t order = rows_of_op(*a, op), inner = cols_of_op(*a, op);
    check.dense("b", b, "ldb", ldb, layout_b, inner, inner);
    check_leading(check, "ldb", ldb, a);
    check_dense(check, d, "layout_c", a, order, order);
    if (check.failed()) return check.status();
    if (order == 0) return ORK_SPARSE_SUCCESS;
    const bool by_rows = layout_b == ORK_SPBLAS_ROW_MAJOR;
    Factors f;
    f.form = ProductForm::triple, f.op_a = number_of(op), f.a = a;
    f.dense_b = b, f.row_b = by_rows ? ldb : 1, f.column_b = by_rows ? 1 : ldb;
    return run_dense(r, f, d);
}

} // namespace
} // namespace ork::sparse

using namespace ork::sparse;

ORK_EXPORT int64_t ork_sparse_spmm(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_matrix_t b,
                                   ork_sparse_matrix_t* c)
{
    return multiply({"spmm", "op a b c"}, op, a, nullptr, ORK_SPBLAS_NO_TRANS, b, nullptr, ORK_SPARSE_FULL, c);
}

ORK_EXPORT int64_t ork_sparse_sp2m(ork_spblas_operation op_a, ork_sparse_kind kind_a, ork_sparse_matrix_t a,
                                   ork_spblas_operation op_b, ork_sparse_kind kind_b, ork_sparse_matrix_t b,
                                   ork_sparse_stage stage, ork_sparse_matrix_t* c)
{
    return multiply({"sp2m", "op_a kind_a a op_b kind_b b stage c"}, op_a, a, &kind_a, op_b, b, &kind_b, stage, c);
}

ORK_EXPORT int64_t ork_sparse_syrk(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_matrix_t* c)
{
    return square(op, a, c);
}

ORK_EXPORT int64_t ork_sparse_sypr(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_matrix_t b,
                                   ork_sparse_kind kind_b, ork_sparse_stage stage, ork_sparse_matrix_t* c)
{
    return triple(op, a, b, kind_b, stage, c);
}

#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_EXPORT int64_t ork_sparse_##letter##_spmmd(ork_spblas_operation op_a, ork_sparse_matrix_t a,                   \
                                                   ork_spblas_operation op_b, ork_sparse_matrix_t b, Scalar alpha,     \
                                                   Scalar beta, ork_spblas_layout layout, Element* c, int64_t ldc)     \
    {                                                                                                                  \
        return multiply_dense({"spmmd", "op_a a op_b b alpha beta layout c ldc", #letter[0]}, op_a, a, op_b, b,        \
                              {address(alpha), address(beta), layout, c, ldc});                                        \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_syrkd(ork_spblas_operation op, ork_sparse_matrix_t a, Scalar alpha,       \
                                                   Scalar beta, ork_spblas_layout layout, Element* c, int64_t ldc)     \
    {                                                                                                                  \
        return square_dense({"syrkd", "op a alpha beta layout c ldc", #letter[0]}, op, a,                              \
                            {address(alpha), address(beta), layout, c, ldc});                                          \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_syprd(ork_spblas_operation op, ork_sparse_matrix_t a, const Element* b,   \
                                                   ork_spblas_layout layout_b, int64_t ldb, Scalar alpha, Scalar beta, \
                                                   Element* c, ork_spblas_layout layout_c, int64_t ldc)                \
    {                                                                                                                  \
        return triple_dense({"syprd", "op a b layout_b ldb alpha beta c layout_c ldc", #letter[0]}, op, a, b,          \
                            layout_b, ldb, {address(alpha), address(beta), layout_c, c, ldc});                         \
    }
ORK_SPARSE_PRECISIONS(MEMBER)

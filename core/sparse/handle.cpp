// SPDX-License-Identifier: MIT
#include "sparse/handle.h"

#include "ork/abi/services.h"
#include "sparse/analysis.h"
#include "sparse/kernels.h"
#include "sparse/registry.h"

namespace ork::sparse {
namespace {

constexpr const char* formats[] = {"csr", "csc", "coo", "bsr"};

bool between(int value, int least, int most) { return least <= value && value <= most; }

const char* letter_text(char precision)
{
    return precision == 's' ? "s" : precision == 'd' ? "d" : precision == 'c' ? "c" : "z";
}

constinit Kernels<2> kernel_destroy("destroy");

} // namespace

void drop_analysis(Matrix& a)
{
    a.divides = 0;
    if (Analysis* const analysis = analysis_of(a)) {
        analysis->~Analysis();
        ork_serv_free(analysis);
        a.analysis = nullptr;
    }
}

void destroy(Matrix* matrix)
{
    if (matrix == nullptr) return;
    drop_analysis(*matrix);
    kernel_destroy.get<HandleCalls<std::int64_t>::destroy>(0, matrix->index_bytes)(matrix);
}

std::int64_t publish(const Routine& routine, Matrix* matrix, ork_sparse_matrix_t* result)
{
    ork_sparse_matrix_t const handle = matrix != nullptr ? enter(matrix) : nullptr;
    if (handle == nullptr) {
        destroy(matrix);
        return no_memory(routine);
    }
    *result = handle;
    return ORK_SPARSE_SUCCESS;
}

Matrix* Checks::handle(const char* argument, ork_sparse_matrix_t handle)
{
    if (failed()) return nullptr;
    Matrix* const a = handle != nullptr ? matrix_of(handle) : nullptr;
    if (a == nullptr)
        fail(not_a_handle(routine_, argument,
                          handle == nullptr ? "is a null handle" : "is no handle, or one that was destroyed"));
    else if (routine_.precision != 0 && a->precision != routine_.precision)
        fail(mismatch(routine_, argument, a->precision, "the handle has the precision %s, not %s",
                      letter_text(a->precision), letter_text(routine_.precision)));
    else if (routine_.index_bytes != 0 && a->index_bytes != routine_.index_bytes)
        fail(mismatch(routine_, argument, a->index_bytes, "the handle has indices of %d bytes, not %d", a->index_bytes,
                      routine_.index_bytes));
    return failed() ? nullptr : a;
}

void Checks::same_numbers(const Matrix* a, const char* argument, const Matrix* b)
{
    if (failed()) return;
    if (a->precision != b->precision)
        fail(mismatch(routine_, argument, b->precision, "the handles have the precisions %s and %s",
                      letter_text(a->precision), letter_text(b->precision)));
    else if (a->index_bytes != b->index_bytes)
        fail(mismatch(routine_, argument, b->index_bytes, "the handles have indices of %d and %d bytes", a->index_bytes,
                      b->index_bytes));
}

void Checks::same_format(const Matrix* a, const char* argument, const Matrix* b)
{
    if (failed()) return;
    const auto number = static_cast<std::int64_t>(b->format);
    if (a->format != b->format)
        fail(mismatch(routine_, argument, number, "the handles have the formats %s and %s",
                      formats[static_cast<int>(a->format)], formats[number]));
    else if (a->block != b->block)
        fail(mismatch(routine_, argument, b->block, "the handles have blocks of order %lld and %lld",
                      static_cast<long long>(a->block), static_cast<long long>(b->block)));
}

void Checks::operation(const char* argument, int op)
{
    if (!failed() && !between(op, ORK_SPBLAS_NO_TRANS, ORK_SPBLAS_CONJ))
        fail(wrong_argument(routine_, argument, op, "operations are 111 to 114"));
}

void Checks::layout(const char* argument, int layout)
{
    if (!failed() && !between(layout, ORK_SPBLAS_ROW_MAJOR, ORK_SPBLAS_COL_MAJOR))
        fail(wrong_argument(routine_, argument, layout, "101 is row-major, 102 column-major"));
}

void Checks::kind(const char* argument, const ork_sparse_kind& k, const Matrix* a, bool solves)
{
    if (failed()) return;
    const bool general = k.type == ORK_SPBLAS_GENERAL;
    const bool triangle = !general && k.type != ORK_SPBLAS_DIAGONAL;
    const bool diagonal = !general && k.type != ORK_SPBLAS_SKEW;
    if (!between(k.type, ORK_SPBLAS_GENERAL, ORK_SPBLAS_DIAGONAL))
        fail(wrong_argument(routine_, argument, k.type, "types are 0 to 5"));
    else if (k.type == ORK_SPBLAS_HERMITIAN && !is_complex(a->precision))
        fail(wrong_argument(routine_, argument, k.type, "a real matrix is symmetric, not Hermitian"));
    else if (solves && k.type != ORK_SPBLAS_TRIANGULAR && k.type != ORK_SPBLAS_DIAGONAL)
        fail(wrong_argument(routine_, argument, k.type, "solves are for triangular and diagonal matrices"));
    else if (triangle && !between(k.uplo, ORK_SPBLAS_UPPER, ORK_SPBLAS_LOWER))
        fail(wrong_argument(routine_, argument, k.uplo, "in uplo 121 is upper, 122 lower"));
    else if (diagonal && !between(k.diag, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_UNIT))
        fail(wrong_argument(routine_, argument, k.diag, "in diag 131 is non-unit, 132 unit"));
    else if (!general && a->rows != a->cols)
        fail(mismatch(routine_, argument, k.type, "all but general matrices are square, and this one is %lld by %lld",
                      static_cast<long long>(rows_of(*a)), static_cast<long long>(cols_of(*a))));
}

void Checks::at_least(const char* argument, std::int64_t value, std::int64_t least)
{
    if (!failed() && value < least)
        fail(wrong_argument(routine_, argument, value, "less than %lld", static_cast<long long>(least)));
}

void Checks::given(const char* argument, const void* pointer, bool needed)
{
    if (!failed() && needed && pointer == nullptr) fail(null_argument(routine_, argument));
}

void Checks::dense(const char* argument, const void* array, const char* leading, std::int64_t ld, int layout,
                   std::int64_t rows, std::int64_t columns)
{
    given(argument, array, rows > 0 && columns > 0);
    const bool by_rows = layout == ORK_SPBLAS_ROW_MAJOR;
    if (!failed() && (ld < 1 || ld < (by_rows ? columns : rows)))
        fail(wrong_argument(routine_, leading, ld, "less than the number of %s, %lld", by_rows ? "columns" : "rows",
                            static_cast<long long>(by_rows ? columns : rows)));
}

void Checks::square(const char* argument, const Matrix* a)
{
    if (!failed() && a->rows != a->cols)
        fail(mismatch(routine_, argument, rows_of(*a), "the matrix must be square, and it is %lld by %lld",
                      static_cast<long long>(rows_of(*a)), static_cast<long long>(cols_of(*a))));
}

} // namespace ork::sparse

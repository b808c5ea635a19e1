// SPDX-License-Identifier: MIT
#include "spblas/checks.h"

#include "spblas/error.h"
#include "spblas/vectors.h"

namespace ork::spblas {
namespace {

constexpr std::int64_t fine = ORK_SPBLAS_SUCCESS;

[[gnu::cold, gnu::noinline]] std::int64_t wrong(const Call& call, const char* argument, std::int64_t value,
                                                const char* rule)
{
    return wrong_argument(name_of(call), arguments_of(call), argument, value, rule);
}

[[gnu::cold, gnu::noinline]] std::int64_t null(const Call& call, const char* argument)
{
    return null_argument(name_of(call), arguments_of(call), argument);
}

bool between(int value, int least, int most) { return least <= value && value <= most; }

std::int64_t check_kind(const Call& call)
{
    const ork_spblas_kind& k = call.kind;
    if (!between(call.op, ORK_SPBLAS_NO_TRANS, ORK_SPBLAS_CONJ))
        return wrong(call, "op", call.op, "operations are 111 to 114");
    if (!between(k.type, ORK_SPBLAS_GENERAL, ORK_SPBLAS_DIAGONAL))
        return wrong(call, "kind.type", k.type, "types are 0 to 5");
    if (k.type == ORK_SPBLAS_HERMITIAN && !is_complex(call.precision))
        return wrong(call, "kind.type", k.type, "a real matrix is symmetric, not Hermitian");
    if (k.type == ORK_SPBLAS_GENERAL && call.a->format == Format::sky)
        return wrong(call, "kind.type", k.type, "a skyline holds one triangle, so it can't be general");
    if (call.solves() && k.type != ORK_SPBLAS_TRIANGULAR && k.type != ORK_SPBLAS_DIAGONAL)
        return wrong(call, "kind.type", k.type, "solves are for triangular and diagonal matrices");
    const bool triangle = k.type != ORK_SPBLAS_GENERAL && k.type != ORK_SPBLAS_DIAGONAL;
    if (triangle && !between(k.uplo, ORK_SPBLAS_UPPER, ORK_SPBLAS_LOWER))
        return wrong(call, "kind.uplo", k.uplo, "121 is upper, 122 lower");
    const bool diagonal = k.type != ORK_SPBLAS_GENERAL && k.type != ORK_SPBLAS_SKEW;
    if (diagonal && !between(k.diag, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_UNIT))
        return wrong(call, "kind.diag", k.diag, "131 is non-unit, 132 unit");
    if (!between(k.base, ORK_SPBLAS_BASE_0, ORK_SPBLAS_BASE_1))
        return wrong(call, "kind.base", k.base, "bases are 0 and 1");
    if (!call.vectors() && !between(call.layout, ORK_SPBLAS_ROW_MAJOR, ORK_SPBLAS_COL_MAJOR))
        return wrong(call, "layout", call.layout, "101 is row-major, 102 column-major");
    return fine;
}

std::int64_t check_sizes(const Call& call)
{
    if (call.m < 0) return wrong(call, "m", call.m, "negative");
    if (call.n < 0) return wrong(call, "n", call.n, "negative");
    if (call.n != call.m && call.kind.type != ORK_SPBLAS_GENERAL)
        return wrong(call, "n", call.n, "all but general matrices are square");
    if (call.nrhs < 0) return wrong(call, "nrhs", call.nrhs, "negative");
    return fine;
}

bool any_entry(const Call& call)
{
    const Integers begin = call.integers(2), end = call.integers(3);
    for (std::int64_t i = 0; i < slices(call); ++i)
        if (begin[i] != end[i]) return true;
    return false;
}

// Four arrays; values and indices are needed only if there are entries.
std::int64_t check_compressed(const Call& call, bool reads)
{
    const void* const* array = call.a->array;
    if (call.a->blocked()) {
        const std::int64_t lb = call.a->block(), larger = call.m < call.n ? call.n : call.m;
        if (lb < 1) return wrong(call, "lb", lb, "the order of a block is at least 1");
        std::int64_t rows;
        if (__builtin_mul_overflow(larger, lb, &rows) || rows > (call.wide ? INT64_MAX : INT32_MAX))
            return wrong(call, "lb", lb, "the matrix has more rows or columns than integers of this width count");
    }
    if (!reads) return fine;
    const bool pointers = array[2] != nullptr && array[3] != nullptr;
    const bool entries = (array[0] != nullptr && array[1] != nullptr) || (pointers && any_entry(call));
    const Names* names = call.names;
    if (array[0] == nullptr && entries) return null(call, names ? names->val : "val");
    if (array[1] == nullptr && entries) return null(call, names ? names->indx : "indx");
    if (array[2] == nullptr) return null(call, names && names->pntr ? names->pntr : "pntrb");
    if (array[3] == nullptr) return null(call, "pntre");
    return fine;
}

std::int64_t check_coo(const Call& call, bool reads)
{
    const bool needed = reads && call.a->number[0] > 0;
    static constexpr const char* names[] = {"val", "rowind", "colind"};
    for (int i = 0; needed && i < 3; ++i)
        if (call.a->array[i] == nullptr) return null(call, names[i]);
    return call.a->number[0] < 0 ? wrong(call, "nnz", call.a->number[0], "negative") : fine;
}

std::int64_t check_dia(const Call& call, bool reads)
{
    const bool needed = reads && call.a->number[1] > 0;
    if (needed && call.a->array[0] == nullptr) return null(call, "val");
    if (call.a->number[0] < call.m) return wrong(call, "lval", call.a->number[0], "a diagonal has room for m numbers");
    if (needed && call.a->array[1] == nullptr) return null(call, "idiag");
    return call.a->number[1] < 0 ? wrong(call, "ndiag", call.a->number[1], "negative") : fine;
}

std::int64_t check_sky(const Call& call, bool reads)
{
    if (!reads) return fine;
    const Integers pntr = call.integers(1);
    if (call.a->array[0] == nullptr && (!pntr || pntr[call.m] != pntr[0])) return null(call, pntr ? "val" : "pntr");
    return pntr ? fine : null(call, "pntr");
}

std::int64_t check_matrix(const Call& call, bool reads)
{
    switch (call.a->format) {
    case Format::coo:
        return check_coo(call, reads);
    case Format::dia:
        return check_dia(call, reads);
    case Format::sky:
        return check_sky(call, reads);
    default:
        return check_compressed(call, reads);
    }
}

std::int64_t check_dense(const Call& call, const char* name, const char* leading, const void* array, std::int64_t rows,
                         std::int64_t ld, bool used)
{
    if (array == nullptr && used && rows > 0 && call.nrhs > 0) return null(call, name);
    if (call.vectors()) return fine;
    if (ld < 1 || ld < (call.row_major() ? call.nrhs : rows))
        return wrong(call, leading, ld, call.row_major() ? "less than nrhs" : "less than the number of rows");
    return fine;
}

std::int64_t check_b(const Call& call, bool reads)
{
    return check_dense(call, call.vectors() ? "x" : "b", "ldb", call.b, call.rows_of_b(), call.ldb, reads);
}

std::int64_t check_c(const Call& call)
{
    return check_dense(call, call.vectors() ? "y" : "c", "ldc", call.c, call.rows_of_c(), call.ldc, true);
}

} // namespace

std::int64_t check_rows(const Call& call, int base)
{
    if (!between(base, ORK_SPBLAS_BASE_0, ORK_SPBLAS_BASE_1)) return wrong(call, "base", base, "bases are 0 and 1");
    if (const auto status = check_sizes(call)) return status;
    if (const auto status = check_compressed(call, call.m > 0)) return status;
    return check_structure(call);
}

std::int64_t check_array(const Call& call, const char* name, const void* array)
{
    return array == nullptr && call.m > 0 ? null(call, name) : fine;
}

Check check_arguments(const Call& call)
{
    if (const auto status = check_kind(call)) return {status, false};
    if (const auto status = check_sizes(call)) return {status, false};
    if (call.alpha == nullptr) return {null(call, "alpha"), false};
    const bool reads = call.m > 0 && call.n > 0 && call.nrhs > 0 && !is_zero(call.precision, call.alpha);
    if (const auto status = check_matrix(call, reads)) return {status, false};
    if (const auto status = check_b(call, reads)) return {status, false};
    if (!call.solves() && call.beta == nullptr) return {null(call, "beta"), false};
    return {check_c(call), reads};
}

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// Checking mode: what the arrays of a matrix hold.
#include "export.h"
#include "services/setting.h"
#include "spblas/checks.h"
#include "spblas/error.h"
#include "spblas/vectors.h"

namespace ork::spblas {
namespace {

constinit services::Setting mode("ORK_SPARSE_CHECK", 0);

constexpr std::int64_t fine = ORK_SPBLAS_SUCCESS;
using Number = long long; // as printf has it

template <class... Numbers>
[[gnu::cold]] std::int64_t wrong(const Call& call, const Place& place, const char* rule, Numbers... numbers)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
    return wrong_structure(name_of(call), arguments_of(call), place, rule, static_cast<Number>(numbers)...);
#pragma GCC diagnostic pop
}

bool divides(const Call& call) { return call.solves() && call.kind.diag == ORK_SPBLAS_NON_UNIT; }

bool zero_at(const Call& call, std::int64_t position)
{
    return is_zero(call.precision, static_cast<const char*>(call.a->array[0]) + position * call.element());
}

std::int64_t check_compressed(const Call& call)
{
    const bool by_columns = call.a->format == Format::bsc;
    const char* const line = by_columns ? "column" : "row";
    const bool three = call.names && call.names->pntr;
    const char *const indices = call.names ? call.names->indx : "indx",
                      *const begins = three ? call.names->pntr : "pntrb", *const ends = three ? begins : "pntre";
    const Integers indx = call.integers(1), pntrb = call.integers(2), pntre = call.integers(3);
    const std::int64_t base = call.kind.base, others = by_columns ? call.m : call.n, lb = call.a->block();
    for (std::int64_t i = 0; i < slices(call); ++i) {
        const std::int64_t begin = pntrb[i] - pntrb[0], end = pntre[i] - pntrb[0];
        if (begin < 0) return wrong(call, {begins, i, pntrb[i], line, i + base}, "less than the first, %lld", pntrb[0]);
        if (end < begin)
            return wrong(call, {ends, three ? i + 1 : i, pntre[i], line, i + base}, "less than its begin, %lld",
                         pntrb[i]);
        std::int64_t last = -1, diagonal = -1;
        for (std::int64_t k = begin; k < end; ++k) {
            const std::int64_t j = indx[k] - base;
            const Place place = {indices, k, indx[k], line, i + base};
            if (j < 0 || j >= others)
                return wrong(call, place, by_columns ? "rows run from %lld to %lld" : "columns run from %lld to %lld",
                             base, others - 1 + base);
            if (call.solves() && j < last) return wrong(call, place, "not sorted, %lld stands before it", indx[k - 1]);
            if (divides(call) && j == i) {
                if (diagonal >= 0) return wrong(call, place, "the diagonal again, after position %lld", diagonal);
                diagonal = k;
            }
            last = j;
        }
        if (!divides(call)) continue;
        if (diagonal < 0) return wrong(call, {"indx", -1, 0, line, i + base}, "the diagonal entry is missing");
        for (std::int64_t d = 0; d < lb; ++d) {
            const std::int64_t position = (diagonal * lb + d) * lb + d;
            if (zero_at(call, position))
                return wrong(call, {"val", position, 0, line, i + base}, "a zero on the diagonal");
        }
    }
    return fine;
}

std::int64_t check_coo(const Call& call)
{
    const Integers rowind = call.integers(1), colind = call.integers(2);
    const std::int64_t base = call.kind.base;
    for (std::int64_t k = 0; k < call.a->number[0]; ++k) {
        if (rowind[k] < base || rowind[k] - base >= call.m)
            return wrong(call, {"rowind", k, rowind[k], "", -1}, "rows run from %lld to %lld", base, call.m - 1 + base);
        if (colind[k] < base || colind[k] - base >= call.n)
            return wrong(call, {"colind", k, colind[k], "row", rowind[k]}, "columns run from %lld to %lld", base,
                         call.n - 1 + base);
    }
    return fine;
}

std::int64_t check_dia(const Call& call)
{
    const Integers idiag = call.integers(1);
    const std::int64_t lval = call.a->number[0], ndiag = call.a->number[1];
    std::int64_t diagonal = -1;
    for (std::int64_t k = 0; k < ndiag; ++k) {
        const Place place = {"idiag", k, idiag[k], "", -1};
        if (idiag[k] <= -call.m || idiag[k] >= call.n)
            return wrong(call, place, "diagonals run from %lld to %lld", 1 - call.m, call.n - 1);
        if (idiag[k] == 0) {
            if (divides(call) && diagonal >= 0)
                return wrong(call, place, "the main diagonal again, after idiag[%lld]", diagonal);
            diagonal = k;
        }
    }
    if (!divides(call)) return fine;
    if (diagonal < 0) return wrong(call, {"idiag", -1, 0, "", -1}, "the main diagonal is missing");
    for (std::int64_t i = 0; i < call.m; ++i)
        if (zero_at(call, diagonal * lval + i))
            return wrong(call, {"val", diagonal * lval + i, 0, "row", i + call.kind.base}, "a zero on the diagonal");
    return fine;
}

std::int64_t check_sky(const Call& call)
{
    const Integers pntr = call.integers(1);
    const char* const line = call.kind.uplo == ORK_SPBLAS_UPPER ? "column" : "row";
    const std::int64_t base = call.kind.base;
    for (std::int64_t i = 0; i < call.m; ++i) {
        const std::int64_t length = pntr[i + 1] - pntr[i];
        const Place place = {"pntr", i + 1, pntr[i + 1], line, i + base};
        if (length < 0) return wrong(call, place, "less than pntr[%lld] = %lld", i, pntr[i]);
        if (length > i + 1)
            return wrong(call, place, "more than %lld numbers behind pntr[%lld] = %lld", i + 1, i, pntr[i]);
        if (!divides(call)) continue;
        if (length == 0) return wrong(call, {"pntr", -1, 0, line, i + base}, "the diagonal entry is missing");
        const std::int64_t position = pntr[i + 1] - pntr[0] - 1;
        if (zero_at(call, position)) return wrong(call, {"val", position, 0, line, i + base}, "a zero on the diagonal");
    }
    return fine;
}

} // namespace

std::int64_t check_structure(const Call& call)
{
    if (mode.get() == 0) [[likely]]
        return fine;
    switch (call.a->format) {
    case Format::coo:
        return check_coo(call);
    case Format::dia:
        return check_dia(call);
    case Format::sky:
        return check_sky(call);
    default:
        return check_compressed(call);
    }
}

std::int64_t check_sorted_diagonal(const Call& call, bool callers_arrays)
{
    if (mode.get() == 0 || !divides(call)) return fine;
    const Integers rowind = call.integers(1), colind = call.integers(2);
    const std::int64_t base = call.kind.base, nnz = call.a->number[0];
    std::int64_t next = base; // row whose diagonal entry comes next
    for (std::int64_t k = 0; k < nnz && rowind[k] <= next; ++k) {
        if (rowind[k] != next || colind[k] != next) continue;
        if (zero_at(call, k))
            return wrong(call, {"val", callers_arrays ? k : -1, 0, "row", next}, "a zero on the diagonal");
        ++next;
    }
    if (next - base == call.m) return fine;
    return wrong(call, {"rowind", -1, 0, "row", next}, "the diagonal entry is missing");
}

} // namespace ork::spblas

ORK_EXPORT int ork_spblas_set_checking(int mode) { return ork::spblas::mode.set(mode); }

// SPDX-License-Identifier: MIT
#include "sparse/solve_rows.h"

#include "ork/abi/services.h"
#include "sparse/expand.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "spblas/vectors.h"

namespace ork::sparse {
namespace {

constinit Kernels<2> convert_csr("convert_csr"), sort_rows("optimize");

using Kind = DiagonalFault::Kind;

DiagonalFault fault_of_entries(const Matrix& a)
{
    const spblas::Integers row_of(a.first, a.index_bytes == 8), column_of(a.index, a.index_bytes == 8);
    const std::int64_t size = element_size(a.precision);
    char* const seen = static_cast<char*>(ork_serv_calloc(static_cast<std::size_t>(a.rows) + 1, 1, 16, 0));
    if (seen == nullptr) return {Kind::no_memory, 0};
    DiagonalFault fault = {Kind::none, 0};
    for (std::int64_t k = 0; k < a.entries; ++k) {
        const std::int64_t row = row_of[k] - a.base;
        if (row != column_of[k] - a.base) continue;
        if (spblas::is_zero(precision_of(a.precision), static_cast<const char*>(a.values) + k * size))
            fault = {Kind::zero, row + a.base};
        if (seen[row]++ != 0) fault = {Kind::repeated, row + a.base}, seen[row] = 1;
    }
    for (std::int64_t row = a.rows; row-- > 0;)
        if (seen[row] == 0) fault = {Kind::missing, row + a.base};
    ork_serv_free(seen);
    return fault;
}

template <class Int>
DiagonalFault fault_of_lines(const Matrix& a)
{
    const Int *index = static_cast<const Int*>(a.index), *first = static_cast<const Int*>(a.first),
              *last = static_cast<const Int*>(a.last);
    const std::int64_t size = element_size(a.precision), block = a.block, base = a.base;
    for (std::int64_t i = 0; i < a.rows; ++i) {
        std::int64_t own = -1;
        for (std::int64_t k = first[i] - base, end = last[i] - base; k < end; ++k) {
            if (index[k] - base != i) continue;
            if (own >= 0) return {Kind::repeated, i * block + base};
            own = k;
            if (a.distinct) break;
        }
        if (own < 0) return {Kind::missing, i * block + base};
        for (std::int64_t r = 0; r < block; ++r)
            if (spblas::is_zero(precision_of(a.precision),
                                static_cast<const char*>(a.values) + (own * block * block + r * (block + 1)) * size))
                return {Kind::zero, i * block + r + base};
    }
    return {Kind::none, 0};
}

} // namespace

bool InRows::stands(const Matrix& a, int op, const ork_sparse_kind& kind, bool whole)
{
    const bool same = op == ORK_SPBLAS_NO_TRANS || (op == ORK_SPBLAS_CONJ && !is_complex(a.precision));
    return same && a.format == Format::csr && (!whole || kind.type == ORK_SPBLAS_GENERAL);
}

InRows::InRows(const Matrix& a, int op, const ork_sparse_kind& kind, bool whole, bool sorted)
    : upper_((kind.uplo == ORK_SPBLAS_UPPER) != transposes(op))
{
    using Handles = HandleCalls<std::int64_t>;
    if (stands(a, op, kind, whole) && (a.sorted || !sorted)) {
        rows_ = &a;
        return;
    }
    const int status = whole && kind.type != ORK_SPBLAS_GENERAL
                           ? expand(a, kind, op, &copy_)
                           : convert_csr.get<Handles::convert_csr>(a)(&a, op - ORK_SPBLAS_NO_TRANS, 0, &copy_);
    if (status == 0 && (!sorted || sort_rows.get<Handles::optimize>(a)(copy_, 0) == 0)) rows_ = copy_;
}

InRows::~InRows() { destroy(copy_); }

DiagonalFault diagonal_fault(const Matrix& a)
{
    if (a.format == Format::coo) return fault_of_entries(a);
    return a.index_bytes == 4 ? fault_of_lines<std::int32_t>(a) : fault_of_lines<std::int64_t>(a);
}

} // namespace ork::sparse

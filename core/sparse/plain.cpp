// SPDX-License-Identifier: MIT
#include "sparse/plain.h"

#include <cstring>

#include "ork/abi/services.h"
#include "sparse/handle.h"

namespace ork::sparse {
namespace {

int transposed(int op)
{
    switch (op) {
    case ORK_SPBLAS_NO_TRANS:
        return ORK_SPBLAS_TRANS;
    case ORK_SPBLAS_TRANS:
        return ORK_SPBLAS_NO_TRANS;
    case ORK_SPBLAS_CONJ_TRANS:
        return ORK_SPBLAS_CONJ;
    default:
        return ORK_SPBLAS_CONJ_TRANS;
    }
}

void transpose_block(const char* from, char* to, std::int64_t order, std::int64_t size)
{
    for (std::int64_t r = 0; r < order; ++r)
        for (std::int64_t c = 0; c < order; ++c)
            std::memcpy(to + (c * order + r) * size, from + (r * order + c) * size, static_cast<std::size_t>(size));
}

} // namespace

PlainCall::PlainCall(const Matrix& a, spblas::Routine routine, int op, const ork_sparse_kind& kind, int layout)
    : call{}, matrix_{}
{
    const bool wide = a.index_bytes == 8, csc = a.format == Format::csc;
    call.routine = routine;
    call.precision = precision_of(a.precision);
    call.wide = wide;
    call.op = op, call.layout = layout;
    call.kind = {kind.type, kind.uplo, kind.diag, static_cast<ork_spblas_base>(a.base)};
    call.m = a.rows, call.n = a.cols, call.nrhs = 1;
    call.a = &matrix_;
    if (a.format == Format::coo) {
        matrix_ = spblas::coo(a.values, a.first, a.index, a.entries);
        return;
    }
    if (csc) {
        call.op = transposed(op);
        call.m = a.cols, call.n = a.rows;
        if (kind.type != ORK_SPBLAS_GENERAL && kind.type != ORK_SPBLAS_DIAGONAL)
            call.kind.uplo = kind.uplo == ORK_SPBLAS_UPPER ? ORK_SPBLAS_LOWER : ORK_SPBLAS_UPPER;
    }
    // There the first entry of the arrays is that of the first row.
    const std::int64_t before = call.m > 0 ? spblas::Integers(a.first, wide)[0] - a.base : 0;
    const void* values = static_cast<const char*>(a.values) + before * a.block * a.block * element_size(a.precision);
    const void* const index = static_cast<const char*>(a.index) + before * a.index_bytes;
    if (a.format == Format::bsr) {
        const bool row_major = call.vectors() ? a.base == 0 : layout == ORK_SPBLAS_ROW_MAJOR;
        if (a.block > 1 && row_major != (a.layout == 0) && a.rows > 0) values = in_other_layout(a, values);
        matrix_ = spblas::blocks(spblas::Format::bsr, a.block, values, index, a.first, a.last);
    } else {
        matrix_ = spblas::csr(values, index, a.first, a.last);
    }
}

// All values between the first row's and the last one's, gaps too.
const void* PlainCall::in_other_layout(const Matrix& a, const void* values)
{
    const spblas::Integers first(a.first, a.index_bytes == 8), last(a.last, a.index_bytes == 8);
    const std::int64_t count = last[a.rows - 1] - first[0], size = element_size(a.precision);
    const std::int64_t bytes = a.block * a.block * size;
    copy_ = ork_serv_malloc(static_cast<std::size_t>(count * bytes), 64);
    memory_ = copy_ != nullptr;
    for (std::int64_t k = 0; memory_ && k < count; ++k)
        transpose_block(static_cast<const char*>(values) + k * bytes, static_cast<char*>(copy_) + k * bytes, a.block,
                        size);
    return copy_;
}

PlainCall::~PlainCall() { ork_serv_free(copy_); }

std::int64_t told_as(const Routine& routine, std::int64_t status)
{
    if (status == ORK_SPBLAS_SUCCESS) return ORK_SPARSE_SUCCESS;
    if (status == ORK_SPBLAS_NO_MEMORY) return no_memory(routine);
    const ork_spblas_error& e = *ork_spblas_last_error();
    return wrong_structure(routine, {"a", -1, e.value, "row", -1}, "%s", e.text);
}

} // namespace ork::sparse

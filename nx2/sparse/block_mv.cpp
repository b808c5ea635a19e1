// SPDX-License-Identifier: MIT
// Products of square blocks and of dense matrices, and those of matrices as they were handed over. What the kernels of
// a caller's own arrays do is theirs: the bodies are the same.
#include "sparse/block_mv.h"
#include "sparse/members.h"
#include "spblas/bsr_calls.h"
#include "spblas/csr_mm.h"
#include "spblas/csr_mv.h"

namespace ork::sparse {
namespace {

using Blocks = spblas::BsrCalls<Int, T>;
constexpr Int one = 1;

const Int* pointers(const U* rows_ptr) { return reinterpret_cast<const Int*>(rows_ptr); }

spblas::BlockRule general_rule(Int base, Int layout)
{
    spblas::BlockRule rule{};
    rule.direct = rule.whole = 1;
    rule.base = base != 0;
    rule.blocks_by_rows = rule.dense_by_rows = layout == 0;
    return rule;
}

void block_product(Int row_first, Int row_last, Int base, Int block, Int layout, T alpha, T* y, const T* x,
                   const T* vals, const U* rows_ptr, const Int* cols, T beta)
{
    const Int rows = row_last - row_first;
    if (rows <= 0) return;
    Blocks::mvout_par(&one, &rows, general_rule(base, layout), &rows, &alpha, &block, vals, cols, pointers(rows_ptr),
                      pointers(rows_ptr) + 1, x, y, &beta);
}

void partial_product(Int row_first, Int row_last, Int base, Int block, Int layout, BlockPart part, bool unit, T alpha,
                     T* y, const T* x, const T* vals, const U* rows_ptr, const Int* cols, T beta)
{
    partial_rows<Int, T>({vals, cols, rows_ptr, Index{row_last} - row_first}, row_first, base, {block, layout}, part,
                         unit, {alpha, beta}, x, y);
}

// A general matrix in four arrays as compressed rows, op meant for those.
template <bool conjugate>
void handed_over(Int rows, Int cols, Int base, bool transpose, T alpha, const T* vals, const Int* index,
                 const Int* first, const Int* last, const T* x, T beta, T* y)
{
    using namespace spblas;
    const Index skipped = rows > 0 ? Index{first[0]} - base : 0; // those kernels count from the first pointer
    const auto call = [&](auto* body, Int size) {
        const Form form{static_cast<std::int8_t>(base), 'g', false, false, false, false, false, false};
        body(&one, &rows, form, &size, &alpha, vals + skipped, index + skipped, first, last, x, y, &beta);
    };
    constexpr Rule direct{0, 'g', false, false, false, conjugate, false, false};
    constexpr Rule transposed{0, 'g', false, false, true, conjugate, false, false};
    if (transpose) {
        call(general_transposed<transposed, Int, T>, cols);
    } else {
        x = counted_from(base, x);
        call(general_product<direct, Int, T>, rows);
    }
}

} // namespace

ORK_SPARSE_EXPORT(void, csr_mv_def_ker)
(Int rows, Int cols, Int base, Int op, T alpha, const T* vals, const Int* index, const Int* first, const Int* last,
 const T* x, T beta, T* y)
{
    (is_complex<T> && op == op_conjugate_transpose
         ? handed_over<is_complex<T>>
         : handed_over<false>)(rows, cols, base, op != op_none, alpha, vals, index, first, last, x, beta, y);
}

ORK_SPARSE_EXPORT(void, csc_mv_def_ker)
(Int rows, Int cols, Int base, Int op, T alpha, const T* vals, const Int* index, const Int* first, const Int* last,
 const T* x, T beta, T* y)
{
    (is_complex<T> && op == op_conjugate_transpose
         ? handed_over<is_complex<T>>
         : handed_over<false>)(cols, rows, base, op == op_none, alpha, vals, index, first, last, x, beta, y);
}

ORK_SPARSE_EXPORT(void, bsr_mv_def_ker)
(Int rows, Int cols, Int base, Int op, Int block, Int layout, T alpha, const T* vals, const Int* index,
 const Int* first, const Int* last, const T* x, T beta, T* y)
{
    spblas::BlockRule rule = general_rule(base, layout);
    rule.direct = op == op_none, rule.mirrored = op != op_none;
    rule.conjugate_mirrored = is_complex<T> && op == op_conjugate_transpose;
    const Int size = op == op_none ? rows : cols;
    const Index skipped = rows > 0 ? Index{first[0]} - base : 0;
    Blocks::mvout_par(&one, &rows, rule, &size, &alpha, &block, vals + skipped * block * block, index + skipped, first,
                      last, x, y, &beta);
}

ORK_SPARSE_EXPORT(void, block_diag_mv_ker)
(Int block_first, Int block_last, Int block, Int layout, const T* vals, const T* x, T* y, T alpha, T beta)
{
    diagonal_blocks<T>(block_first, block_last, {block, layout}, vals, {alpha, beta}, x, y);
}

#define GENERAL(stem, base)                                                                                            \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int row_first, Int row_last, Int block, Int layout, T alpha, T * y, const T* x, const T* vals, const U* rows_ptr, \
     const Int* cols, T beta)                                                                                          \
    {                                                                                                                  \
        block_product(row_first, row_last, base, block, layout, alpha, y, x, vals, rows_ptr, cols, beta);              \
    }
GENERAL(bsr0ng_n_mv_ker, 0)
GENERAL(bsr1ng_n_mv_ker, 1)
GENERAL(bsr_ng_avx512_sp_mv, 0)
#undef GENERAL

#define LOWER_BLOCKS(stem, base)                                                                                       \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int row_first, Int row_last, Int block, Int layout, T alpha, T * y, const T* x, const T* vals, const U* rows_ptr, \
     const Int* cols, T beta)                                                                                          \
    {                                                                                                                  \
        partial_product(row_first, row_last, base, block, layout, BlockPart::lower_blocks, false, alpha, y, x, vals,   \
                        rows_ptr, cols, beta);                                                                         \
    }
LOWER_BLOCKS(bsr0nblt_n_mv_ker, 0)
LOWER_BLOCKS(bsr1nblt_n_mv_ker, 1)
#undef LOWER_BLOCKS

#define TRIANGLE(stem, base)                                                                                           \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int row_first, Int row_last, Int block, Int layout, T alpha, T * y, const T* x, const T* vals, const U* rows_ptr, \
     const Int* cols, T beta, Int upper, Int unit)                                                                     \
    {                                                                                                                  \
        partial_product(row_first, row_last, base, block, layout, upper != 0 ? BlockPart::upper : BlockPart::lower,    \
                        unit != 0, alpha, y, x, vals, rows_ptr, cols, beta);                                           \
    }
TRIANGLE(bsr0nt_n_mv_ker, 0)
TRIANGLE(bsr1nt_n_mv_ker, 1)
#undef TRIANGLE

#define DENSE(stem, row_major)                                                                                         \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int row_first, Int row_last, Int base, Int columns, T alpha, const T* vals, const U* rows_ptr, const Int* cols,   \
     const T* b, Int ldb, T beta, T* c, Int ldc)                                                                       \
    {                                                                                                                  \
        const Int rows = row_last - row_first;                                                                         \
        const spblas::Form form{static_cast<std::int8_t>(base), 'g', false, false, false, false, false, row_major};    \
        spblas::csr_mmout_par(&one, &columns, &rows, &rows, form, &alpha, vals, cols, pointers(rows_ptr),              \
                              pointers(rows_ptr) + 1, b, &ldb, c, &ldc, &beta);                                        \
    }
DENSE(csr_ng_n_mm_c_ker, true)
DENSE(csr_ng_n_mm_f_ker, false)
#undef DENSE

ORK_SPARSE_EXPORT(void, bsr_ng_n_mm_rows)
(Int row_first, Int row_last, Int base, Int block, Int layout, Int columns, T alpha, const T* vals, const U* rows_ptr,
 const Int* cols, const T* b, Int ldb, T beta, T* c, Int ldc)
{
    const Int rows = row_last - row_first;
    if (rows <= 0) return;
    Blocks::mmout_par(&one, &columns, &rows, &rows, general_rule(base, layout), &alpha, &block, vals, cols,
                      pointers(rows_ptr), pointers(rows_ptr) + 1, b, &ldb, c, &ldc, &beta);
}

} // namespace ork::sparse

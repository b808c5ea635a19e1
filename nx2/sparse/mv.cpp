// SPDX-License-Identifier: MIT
// Products with vectors: compressed rows, slices, diagonals, and folding what threads scattered.
#include "sparse/csr_mv.h"
#include "sparse/dia_mv.h"
#include "sparse/esb.h"
#include "sparse/members.h"

namespace ork::sparse {

ORK_SPARSE_EXPORT(void, csr_ng_n_mv_ker)
(Int row_first, Int row_last, const void*, const void*, T alpha, T* y, const T* x, const T* vals, const U* rows_ptr,
 const Int* cols)
{
    row_product<Int, T>({vals, cols, rows_ptr, Index{row_last} - row_first}, alpha, T{}, x, y);
}

ORK_SPARSE_EXPORT(void, csr_ng_n_mv_ker_beta)
(Int row_first, Int row_last, const void*, const void*, T alpha, T* y, const T* x, const T* vals, const U* rows_ptr,
 const Int* cols, T beta)
{
    row_product<Int, T>({vals, cols, rows_ptr, Index{row_last} - row_first}, alpha, beta, x, y);
}

ORK_SPARSE_EXPORT(void, csr_ng_n_mv_ker_b)
(Int row_first, Int row_last, const void*, Int base, T alpha, T* y, const T* x, const T* vals, const U* rows_ptr,
 const Int* cols, T beta)
{
    row_product<Int, T>({vals, cols, rows_ptr, Index{row_last} - row_first}, alpha, beta, spblas::counted_from(base, x),
                        y);
}

ORK_SPARSE_EXPORT(void, csr_ng_n_dotmv_ker)
(Int row_first, Int row_last, const void*, const void*, T alpha, T* y, const T* x, const T* vals, const U* rows_ptr,
 const Int* cols, T* dot)
{
    row_dot_product<Int, T>({vals, cols, rows_ptr, Index{row_last} - row_first}, row_first, alpha, T{}, x, y, dot);
}

ORK_SPARSE_EXPORT(void, csr_ng_n_dotmv_ker_beta)
(Int row_first, Int row_last, const void*, const void*, T alpha, T* y, const T* x, const T* vals, const U* rows_ptr,
 const Int* cols, T* dot, T beta)
{
    row_dot_product<Int, T>({vals, cols, rows_ptr, Index{row_last} - row_first}, row_first, alpha, beta, x, y, dot);
}

ORK_SPARSE_EXPORT(void, csr_ng_t_mv_ker)
(Int rows, Int n, Int base, T beta, T alpha, T* out, const T* x, const T* vals, const U* rows_ptr, const Int* cols)
{
    transposed_product<Int, T>({vals, cols, rows_ptr, rows}, n, base, alpha, beta, x, out);
}

ORK_SPARSE_EXPORT(void, csr_mv_merge)
(Int first, Int last, Int stride, Int parts, T alpha, T beta, const T* partials, T* y)
{
    if (last <= first) return;
    (beta == T{} ? fold_one<true, T> : fold_one<false, T>)(first, last, alpha, partials, beta, y);
    for (Int p = 1; p < parts; ++p) add_one(first, last, alpha, partials + Index{p} * stride, y);
}

ORK_SPARSE_EXPORT(void, csr_mv_merge1)(Int first, Int last, Int stride, Int parts, const T* partials, T* y)
{
    for (Int p = 0; p < parts; ++p) add_one(first, last, partials + Index{p} * stride, y);
}

ORK_SPARSE_EXPORT(void, xESB_SpMV_8)
(Int slice_first, Int slice_last, Int tail, const void*, const T* vals, const Int* cols, const U* slice_begin,
 const U* slice_end, const T* x, T* y, const void*, T alpha, T beta)
{
    slice_product<8, Int, T>({vals, cols, slice_begin, slice_end, slice_first, slice_last, tail}, alpha, beta, x, y);
}

ORK_SPARSE_EXPORT(void, xESB_SpMV_4)
(Int slice_first, Int slice_last, Int tail, const void*, const T* vals, const Int* cols, const U* slice_begin,
 const U* slice_end, const T* x, T* y, const void*, T alpha, T beta)
{
    slice_product<4, Int, T>({vals, cols, slice_begin, slice_end, slice_first, slice_last, tail}, alpha, beta, x, y);
}

ORK_SPARSE_EXPORT(void, xESB_SpMV)
(Int slice_first, Int slice_last, Int tail, Int height, const T* vals, const Int* cols, const U* slice_begin,
 const U* slice_end, const T* x, T* y, const void*, T alpha, T beta)
{
    const Slices<Int, T> slices{vals, cols, slice_begin, slice_end, slice_first, slice_last, tail};
    (height == 4 ? slice_product<4, Int, T> : slice_product<8, Int, T>)(slices, alpha, beta, x, y);
}

ORK_SPARSE_EXPORT(void, ESB_SpDOTMV_8)
(Int slice_first, Int slice_last, Int tail, const void*, const T* vals, const Int* cols, const U* slice_begin,
 const U* slice_end, const T* x, T* y, T* dot, const void*, T alpha, T beta)
{
    slice_dot_product<8, Int, T>({vals, cols, slice_begin, slice_end, slice_first, slice_last, tail}, alpha, beta, x, y,
                                 dot);
}

ORK_SPARSE_EXPORT(void, ESB_SpDOTMV_4)
(Int slice_first, Int slice_last, Int tail, const void*, const T* vals, const Int* cols, const U* slice_begin,
 const U* slice_end, const T* x, T* y, T* dot, const void*, T alpha, T beta)
{
    slice_dot_product<4, Int, T>({vals, cols, slice_begin, slice_end, slice_first, slice_last, tail}, alpha, beta, x, y,
                                 dot);
}

ORK_SPARSE_EXPORT(void, ESB_SpDOTMV)
(Int slice_first, Int slice_last, Int tail, Int height, const T* vals, const Int* cols, const U* slice_begin,
 const U* slice_end, const T* x, T* y, T* dot, const void*, T alpha, T beta)
{
    const Slices<Int, T> slices{vals, cols, slice_begin, slice_end, slice_first, slice_last, tail};
    (height == 4 ? slice_dot_product<4, Int, T> : slice_dot_product<8, Int, T>)(slices, alpha, beta, x, y, dot);
}

ORK_SPARSE_EXPORT(void, dia_mv_ker)
(Int row_first, Int row_last, Int cols, Int diagonals, Int height, const Int* distance, const T* vals, const T* x, T* y,
 T alpha, T beta)
{
    const Diagonals<Int, T> a{vals, distance, diagonals, height, cols};
    const bool far = (Index{row_last} - row_first) * diagonals * Index(sizeof(T)) > far_bytes;
    (far ? diagonal_products<true, Int, T> : diagonal_products<false, Int, T>)(a, row_first, row_last, {alpha, beta}, x,
                                                                               y);
}

} // namespace ork::sparse

// SPDX-License-Identifier: MIT
// The exports of smoothers, and of products with packed matrices.
#include "sparse/smooth.h"

#include "sparse/block_solve.h"
#include "sparse/members.h"

namespace ork::sparse {

#define PRODUCT(stem, lower, upper)                                                                                    \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int slice_first, Int slice_last, const Packed<Int, T>* a, T alpha, const T* x, T beta, T* y)                      \
    {                                                                                                                  \
        packed_product<Int, T>(slice_first, slice_last, lower, upper, a, alpha, x, beta, y, nullptr);                  \
    }
PRODUCT(mv_fwd_ker, true, false)
PRODUCT(mv_bwd_ker, false, true)
PRODUCT(mv_all_ker, true, true)
#undef PRODUCT

ORK_SPARSE_EXPORT(void, dotmv_all_ker)
(Int slice_first, Int slice_last, const Packed<Int, T>* a, T alpha, const T* x, T beta, T* y, T* dot)
{
    packed_product(slice_first, slice_last, true, true, a, alpha, x, beta, y, dot);
}

ORK_SPARSE_EXPORT(void, mv_symgs_ker)
(Int phase, Int slice_first, Int slice_last, const Packed<Int, T>* a, T alpha, const T* b, T* x, T* rest, T* y)
{
    symgs_phase<Int, T>(static_cast<int>(phase), slice_first, slice_last, a, alpha, b, x, rest, y, nullptr);
}
ORK_SPARSE_EXPORT(void, dotmv_symgs_ker)
(Int phase, Int slice_first, Int slice_last, const Packed<Int, T>* a, T alpha, const T* b, T* x, T* rest, T* y, T* dot)
{
    symgs_phase(static_cast<int>(phase), slice_first, slice_last, a, alpha, b, x, rest, y, dot);
}
ORK_SPARSE_EXPORT(void, mv_symgs_ker_1thr)
(Int from_zero, const Packed<Int, T>* a, T alpha, const T* b, T* x, T* rest, T* y)
{
    symgs<Int, T>(from_zero != 0, a, alpha, b, x, rest, y, nullptr);
}
ORK_SPARSE_EXPORT(void, dotmv_symgs_ker_1thr)
(Int from_zero, const Packed<Int, T>* a, T alpha, const T* b, T* x, T* rest, T* y, T* dot)
{
    symgs(from_zero != 0, a, alpha, b, x, rest, y, dot);
}

ORK_SPARSE_EXPORT(void, csr__g_n_symgs_def)
(Int rows, Int base, Int from_zero, T alpha, const T* vals, const Int* index, const Int* first, const Int* last,
 const T* b, T* x)
{
    const FourArrays<Int, T> a{base, vals, index, first, last};
    sweep(rows, false, from_zero != 0, T(1), alpha, a, b, x);
    sweep(rows, true, false, T(1), alpha, a, b, x);
}
ORK_SPARSE_EXPORT(void, csr__g_n_symgs_mv_def)
(Int rows, Int base, Int from_zero, T alpha, const T* vals, const Int* index, const Int* first, const Int* last,
 const T* b, T* x, T* y)
{
    const FourArrays<Int, T> a{base, vals, index, first, last};
    sweep(rows, false, from_zero != 0, T(1), alpha, a, b, x);
    sweep(rows, true, false, T(1), alpha, a, b, x);
    product_of_rows(rows, a, x, y);
}

ORK_SPARSE_EXPORT(void, csr_lu_smoother_opt_ker)
(Int phase, Int slice_first, Int slice_last, const Packed<Int, T>* a, const T* e, const T* inverse, const T* b, T* x,
 T* z)
{
    lu_phase(static_cast<int>(phase), slice_first, slice_last, a, e, inverse, b, x, z);
}
ORK_SPARSE_EXPORT(void, csr_lu_smoother_def_ker)
(Int rows, Int base, const T* vals, const Int* index, const Int* first, const Int* last, const T* e, const T* inverse,
 const T* b, T* x, T* z)
{
    lu_step(rows, FourArrays<Int, T>{base, vals, index, first, last}, e, inverse, b, x, z);
}

ORK_SPARSE_EXPORT(void, bsr_ng_lu_smoother_lower_solve_def)
(Int row_first, Int row_last, const BlockRows<Int, T>* a, const T* e, const T* inverse, T* z, T* work)
{
    lu_block_rows(row_first, row_last, a, false, e, inverse, z, work);
}
ORK_SPARSE_EXPORT(void, bsr_ng_lu_smoother_upper_solve_def)
(Int row_first, Int row_last, const BlockRows<Int, T>* a, const T* e, const T* inverse, T* z, T* work)
{
    lu_block_rows(row_first, row_last, a, true, e, inverse, z, work);
}
ORK_SPARSE_EXPORT(void, bsr_ng_fused_lower_solve)
(Int row_first, Int row_last, const BlockRows<Int, T>* a, const T* inverse, T alpha, const T* b, T* x, T* work)
{
    sweep_block_rows(row_first, row_last, a, false, inverse, alpha, b, x, work);
}
ORK_SPARSE_EXPORT(void, bsr_ng_fused_upper_solve)
(Int row_first, Int row_last, const BlockRows<Int, T>* a, const T* inverse, T alpha, const T* b, T* x, T* work)
{
    sweep_block_rows(row_first, row_last, a, true, inverse, alpha, b, x, work);
}

ORK_SPARSE_EXPORT(void, csr_seq_fw_sor_def)
(Int rows, Int base, Int backward, T omega, const T* vals, const Int* index, const Int* first, const Int* last,
 const T* b, T* x)
{
    sweep(rows, backward != 0, false, omega, T(1), FourArrays<Int, T>{base, vals, index, first, last}, b, x);
}
ORK_SPARSE_EXPORT(void, csr_seq_sym_u_full_fw_sor)
(Int rows, Int base, T omega, const T* vals, const Int* index, const Int* first, const Int* last, const T* b, T* x,
 T* work)
{
    symmetric_sweep(rows, omega, FourArrays<Int, T>{base, vals, index, first, last}, b, x, work);
}
ORK_SPARSE_EXPORT(void, csr_seq_nt_sym_full_u_mv)
(Int rows, Int base, T alpha, const T* vals, const Int* index, const Int* first, const Int* last, const T* x, T beta,
 T* y)
{
    symmetric_product(rows, alpha, FourArrays<Int, T>{base, vals, index, first, last}, x, beta, y);
}

} // namespace ork::sparse

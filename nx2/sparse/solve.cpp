// SPDX-License-Identifier: MIT
// The exports of triangular solves.
#include "sparse/block_solve.h"
#include "sparse/members.h"
#include "sparse/packed.h"

namespace ork::sparse {

// In four arrays: what a name says of the base, the side and the diagonal.
#define ORDERED(stem, use_base, side, unit)                                                                            \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int first, Int last, [[maybe_unused]] Int base, const Int* order, T alpha, const T* vals, const Int* index,       \
     const Int* row_first, const Int* row_last, const T* b, T* y)                                                      \
    {                                                                                                                  \
        solve_rows(first, last, side, unit, order, alpha,                                                              \
                   FourArrays<Int, T>{use_base, vals, index, row_first, row_last}, b, y);                              \
    }
ORDERED(sv_fwd_ker_n, base, Side::lower, false)
ORDERED(sv_fwd_ker_u, base, Side::lower, true)
ORDERED(sv_fwd_ker0, 0, Side::lower, false)
ORDERED(sv_fwd_ker1, 1, Side::lower, false)
ORDERED(sv_bwd_ker0, 0, Side::upper, false)
ORDERED(sv_bwd_ker0_u, 0, Side::upper, true)
ORDERED(sv_bwd_ker1, 1, Side::upper, false)
#undef ORDERED

#define IN_TURN(stem, side)                                                                                            \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int row_first, Int row_last, Int base, Int unit, T alpha, const T* vals, const Int* index, const Int* first,      \
     const Int* last, const T* b, T* y)                                                                                \
    {                                                                                                                  \
        solve_rows<Int>(row_first, row_last, side, unit != 0, nullptr, alpha,                                          \
                        FourArrays<Int, T>{base, vals, index, first, last}, b, y);                                     \
    }
IN_TURN(csr_ntl_sv_ker, Side::lower)
IN_TURN(csr_ntu_sv_ker, Side::upper)
IN_TURN(csr_ntd_sv_ker, Side::diagonal)
IN_TURN(csr_ctd_sv_ker, Side::conjugated_diagonal)
#undef IN_TURN

#define PACKED(stem, upper, use_base)                                                                                  \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int slice_first, Int slice_last, [[maybe_unused]] Int base, const Packed<Int, T>* a, T alpha, const T* b, T* y)   \
    {                                                                                                                  \
        packed_solve(slice_first, slice_last, upper, use_base, a, alpha, b, y);                                        \
    }
PACKED(sv_fwd_ker_n_high_opt, false, base)
PACKED(sv_fwd_ker0_high_opt, false, 0)
PACKED(sv_fwd_ker1_high_opt, false, 1)
PACKED(sv_bwd_ker0_high_opt, true, 0)
PACKED(sv_bwd_ker1_high_opt, true, 1)
#undef PACKED

ORK_SPARSE_EXPORT(void, sv_esb_fwd_ker_n_1thr)(Int base, const Packed<Int, T>* a, T alpha, const T* b, T* y)
{
    packed_solve(0, a->slices, false, base, a, alpha, b, y);
}
ORK_SPARSE_EXPORT(void, sv_esb_bwd_ker0_1thr)(Int, const Packed<Int, T>* a, T alpha, const T* b, T* y)
{
    packed_solve(0, a->slices, true, 0, a, alpha, b, y);
}

#define BLOCKS(stem, side)                                                                                             \
    ORK_SPARSE_EXPORT(void, stem)                                                                                      \
    (Int first, Int last, const BlockRows<Int, T>* a, Int unit, const Int* order, T alpha, const T* b, T* y)           \
    {                                                                                                                  \
        solve_block_rows(first, last, a, side, unit != 0, order, alpha, b, y);                                         \
    }
BLOCKS(bsr_ntl_sv_ker, Side::lower)
BLOCKS(bsr_ntu_sv_ker, Side::upper)
BLOCKS(bsr_ntd_sv_ker, Side::diagonal)
#undef BLOCKS

ORK_SPARSE_EXPORT(void, bsr_nt_sv_noopt)
(Int rows, const BlockRows<Int, T>* a, Int upper, Int unit, T alpha, const T* b, T* y)
{
    solve_block_rows<Int>(0, rows, a, upper != 0 ? Side::upper : Side::lower, unit != 0, nullptr, alpha, b, y);
}

ORK_SPARSE_EXPORT(void, bsr_ntd_sm_ker)
(Int row_first, Int row_last, const BlockRows<Int, T>* a, Int unit, T alpha, Int columns, Int dense_layout, const T* b,
 Int ldb, T* c, Int ldc)
{
    divide_block_rows(row_first, row_last, a, unit != 0, alpha, columns, dense_layout == 0, b, ldb, c, ldc);
}

ORK_SPARSE_EXPORT(void, dense_l_sv8x8)(Int layout, Int unit, const T* a, T* y)
{
    dense_solve(8, true, layout, unit != 0, a, y);
}
ORK_SPARSE_EXPORT(void, dense_u_sv8x8)(Int layout, Int unit, const T* a, T* y)
{
    dense_solve(8, false, layout, unit != 0, a, y);
}
ORK_SPARSE_EXPORT(void, dense_l_sv64x64)(Int layout, Int unit, const T* a, T* y)
{
    dense_solve(64, true, layout, unit != 0, a, y);
}
ORK_SPARSE_EXPORT(void, dense_u_sv64x64)(Int layout, Int unit, const T* a, T* y)
{
    dense_solve(64, false, layout, unit != 0, a, y);
}

} // namespace ork::sparse

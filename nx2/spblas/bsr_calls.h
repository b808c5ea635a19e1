// SPDX-License-Identifier: MIT
// The bodies behind the exports of bsr and bsc: an export hands its arguments on where they are and puts its rule in
// the place of the argument that no kernel reads.
#pragma once

#include "spblas/bsr_rule.h"

namespace ork::spblas {

template <class Int, class T>
struct BsrCalls {
    static void mvout_par(const Int* first, const Int* last, BlockRule rule, const Int* size, const T* alpha,
                          const Int* lb, const T* val, const Int* indx, const Int* pntrb, const Int* pntre, const T* x,
                          T* y, const T* beta);
    static void mvout_seq(const Int* size, BlockRule rule, const T* alpha, const Int* lb, const T* val, const Int* indx,
                          const Int* pntrb, const Int* pntre, const T* x, T* y, const T* beta);
    static void mmout_par(const Int* first, const Int* last, const Int* m, const Int* n, BlockRule rule, const T* alpha,
                          const Int* lb, const T* val, const Int* indx, const Int* pntrb, const Int* pntre, const T* b,
                          const Int* ldb, T* c, const Int* ldc, const T* beta);
    static void mmout_seq(const Int* m, const Int* nrhs, BlockRule rule, const T* alpha, const Int* lb, const T* val,
                          const Int* indx, const Int* pntrb, const Int* pntre, const T* b, const Int* ldb, T* c,
                          const Int* ldc, const T* beta);
    static void svout_seq(const Int* m, BlockRule rule, const Int* lb, const T* val, const Int* indx, const Int* pntrb,
                          const Int* pntre, T* y);
    static void smout_par(const Int* first, const Int* last, const Int* m, BlockRule rule, const Int* lb, const T* val,
                          const Int* indx, const Int* pntrb, const Int* pntre, T* c, const Int* ldc);
};

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// The members of csr with many right-hand sides.
#include "spblas/csr_mm.h"
#include "spblas/members.h"

namespace ork::spblas {

using Call = Calls<Format::csr, Int, T>;

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const Int* n, const void*, const T* alpha, \
                           const T* val, const Int* indx, const Int* pntrb, const Int* pntre, const T* b,              \
                           const Int* ldb, T* c, const Int* ldc, const T* beta)                                        \
    {                                                                                                                  \
        constexpr Form letters = form<T>(name);                                                                        \
        csr_mmout_par(first, last, m, n, letters, alpha, val, indx, pntrb, pntre, b, ldb, c, ldc, beta);               \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutPar>);
#include "spblas/members/csr_mmout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const Int* nrhs, const void*, const T* alpha, const T* val, const Int* indx,  \
                           const Int* pntrb, const Int* pntre, const T* b, const Int* ldb, T* c, const Int* ldc,       \
                           const T* beta)                                                                              \
    {                                                                                                                  \
        constexpr Form letters = form<T>(name);                                                                        \
        csr_mmout_seq(m, nrhs, letters, alpha, val, indx, pntrb, pntre, b, ldb, c, ldc, beta);                         \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutSeq>);
#include "spblas/members/csr_mmout_seq.inc"
#undef MEMBER

} // namespace ork::spblas

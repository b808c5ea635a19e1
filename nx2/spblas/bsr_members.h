// SPDX-License-Identifier: MIT
// The exports of bsr or bsc: included with ORK_SPBLAS_LIST(routine) naming the list of a routine.
#include "spblas/bsr_calls.h"
#include "spblas/members.h"

namespace ork::spblas {

using Body = BsrCalls<Int, T>;
using Call = Calls<Format::bsr, Int, T>; // those of bsc are the same

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const void*, const Int* size, const T* alpha,            \
                           const Int* lb, const T* val, const Int* indx, const Int* pntrb, const Int* pntre,           \
                           const T* x, T* y, const T* beta)                                                            \
    {                                                                                                                  \
        Body::mvout_par(first, last, block_rule<T>(name), size, alpha, lb, val, indx, pntrb, pntre, x, y, beta);       \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutPar>);
#include ORK_SPBLAS_LIST(mvout_par)
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* size, const void*, const T* alpha, const Int* lb, const T* val, const Int* indx, \
                           const Int* pntrb, const Int* pntre, const T* x, T* y, const T* beta)                        \
    {                                                                                                                  \
        Body::mvout_seq(size, block_rule<T>(name), alpha, lb, val, indx, pntrb, pntre, x, y, beta);                    \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutSeq>);
#include ORK_SPBLAS_LIST(mvout_seq)
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const Int* n, const void*, const T* alpha, \
                           const Int* lb, const T* val, const Int* indx, const Int* pntrb, const Int* pntre,           \
                           const T* b, const Int* ldb, T* c, const Int* ldc, const T* beta)                            \
    {                                                                                                                  \
        Body::mmout_par(first, last, m, n, block_rule<T>(name), alpha, lb, val, indx, pntrb, pntre, b, ldb, c, ldc,    \
                        beta);                                                                                         \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutPar>);
#include ORK_SPBLAS_LIST(mmout_par)
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const Int* nrhs, const void*, const T* alpha, const Int* lb, const T* val,    \
                           const Int* indx, const Int* pntrb, const Int* pntre, const T* b, const Int* ldb, T* c,      \
                           const Int* ldc, const T* beta)                                                              \
    {                                                                                                                  \
        Body::mmout_seq(m, nrhs, block_rule<T>(name), alpha, lb, val, indx, pntrb, pntre, b, ldb, c, ldc, beta);       \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutSeq>);
#include ORK_SPBLAS_LIST(mmout_seq)
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const void*, const Int* lb, const T* val, const Int* indx, const Int* pntrb,  \
                           const Int* pntre, T* y)                                                                     \
    {                                                                                                                  \
        Body::svout_seq(m, block_rule<T>(name), lb, val, indx, pntrb, pntre, y);                                       \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SvoutSeq>);
#include ORK_SPBLAS_LIST(svout_seq)
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const void*, const Int* lb, const T* val,  \
                           const Int* indx, const Int* pntrb, const Int* pntre, T* c, const Int* ldc)                  \
    {                                                                                                                  \
        Body::smout_par(first, last, m, block_rule<T>(name), lb, val, indx, pntrb, pntre, c, ldc);                     \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SmoutPar>);
#include ORK_SPBLAS_LIST(smout_par)
#undef MEMBER

} // namespace ork::spblas

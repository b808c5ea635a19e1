// SPDX-License-Identifier: MIT
// The members of csr with vectors: mvout, gemvout, svout.
#include "spblas/csr_mv.h"
#include "spblas/members.h"

namespace ork::spblas {

using Call = Calls<Format::csr, Int, T>;

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const void*, const Int* m, const T* alpha, const T* val, \
                           const Int* indx, const Int* pntrb, const Int* pntre, const T* x, T* y, const T* beta)       \
    {                                                                                                                  \
        csr_mvout<rule<T>(letters(name))>(Rows<Int>{*first - 1, *last}, *m, *alpha, {val, indx, pntrb, pntre}, x, y,   \
                                          *beta);                                                                      \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutPar>);
#include "spblas/members/csr_mvout_par.inc"
#undef MEMBER

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// The members of csr that solve for many right-hand sides.
#include "spblas/csr_sm.h"
#include "spblas/members.h"

namespace ork::spblas {

using Call = Calls<Format::csr, Int, T>;

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const void*, const T* val,                 \
                           const Int* indx, const Int* pntrb, const Int* pntre, T* c, const Int* ldc)                  \
    {                                                                                                                  \
        constexpr Form letters = form<T>(name);                                                                        \
        csr_smout_par(first, last, m, letters, val, indx, pntrb, pntre, c, ldc);                                       \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SmoutPar>);
#include "spblas/members/csr_smout_par.inc"
#undef MEMBER

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// What preconditioners are made of.
#include "spblas/csr_gauss.h"
#include "spblas/csr_sortrow.h"
#include "spblas/csr_split.h"
#include "spblas/members.h"

namespace ork::spblas {

using Call = Calls<Format::csr, Int, T>;

constexpr int base_of(const char* name) { return name[3] - '0'; }

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const Int* backward, const T* omega, const T* val, const Int* indx,           \
                           const Int* pntrb, const Int* pntre, const T* b, T* x)                                       \
    {                                                                                                                  \
        gauss<Int, T>(*m, *backward != 0, *omega, {val, indx, pntrb, pntre}, base_of(name), b, x);                     \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::GaussSeq>);
SDCZ(csr0gauss_seq)
SDCZ(csr1gauss_seq)
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const T* val, const Int* indx, const Int* pntrb,         \
                           const Int* pntre, T* d, Int* missing)                                                       \
    {                                                                                                                  \
        *missing = static_cast<Int>(                                                                                   \
            invert_diagonal<Int, T>({*first - 1, *last}, {val, indx, pntrb, pntre}, base_of(name), d));                \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::InvdiagPar>);
SDCZ(csr0invdiag_par)
SDCZ(csr1invdiag_par)
#undef MEMBER

// The order of columns is that of their numbers, whatever they count from.
#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, T* val, Int* indx, const Int* pntrb, const Int* pntre)   \
    {                                                                                                                  \
        const Csr<Int, T> a{val, indx, pntrb, pntre};                                                                  \
        for (std::int64_t i = *first - 1; i < *last; ++i)                                                              \
            SortRow<Int, T>{indx + a.first(i), val + a.first(i)}.sort(a.last(i) - a.first(i));                         \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SortrowPar>);
SDCZ(csr0sortrow_par)
SDCZ(csr1sortrow_par)
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const T* val, const Int* indx, const Int* pntrb,         \
                           const Int* pntre, T* lval, Int* lindx, Int* lpntr, T* uval, Int* uindx, Int* upntr, T* d)   \
    {                                                                                                                  \
        const Rows rows{*first - 1, *last};                                                                            \
        const Csr<Int, T> a{val, indx, pntrb, pntre};                                                                  \
        if (d == nullptr)                                                                                              \
            count_parts(rows, a, base_of(name), lpntr, upntr);                                                         \
        else                                                                                                           \
            split<Int, T>(rows, a, base_of(name), {lval, lindx, lpntr}, {uval, uindx, upntr}, d);                      \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SplitPar>);
SDCZ(csr0split_par)
SDCZ(csr1split_par)
#undef MEMBER

} // namespace ork::spblas

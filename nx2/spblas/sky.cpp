// SPDX-License-Identifier: MIT
// The members of sky.
#include "spblas/sky.h"
#include "spblas/members.h"
#include "spblas/sky_solve.h"

namespace ork::spblas {

using Call = Calls<Format::sky, Int, T>;

// What the members of a routine share. Their letters take the place of the argument that is not read: an export is a
// jump.
[[gnu::noipa]] static void sky_mvout_par(const Int* first, const Int* last, const void* letters, const Int* size,
                                         const T* alpha, const T* val, const Int* pntr, const T* x, T* y, const T* beta)
{
    sky_product<Int, T>(Terms(letters).of_vectors(), Index{*first} - 1, *last, *size, *alpha, {val, pntr}, {x, y},
                        *beta);
}

[[gnu::noipa]] static void sky_mvout_seq(const Int* size, const void* letters, const T* alpha, const T* val,
                                         const Int* pntr, const T* x, T* y, const T* beta)
{
    sky_product<Int, T>(Terms(letters).of_vectors(), 0, *size, *size, *alpha, {val, pntr}, {x, y}, *beta);
}

[[gnu::noipa]] static void sky_mmout_par(const Int* first, const Int* last, const Int* m, const Int*,
                                         const void* letters, const T* alpha, const T* val, const Int* pntr, const T* b,
                                         const Int* ldb, T* c, const Int* ldc, const T* beta)
{
    const Terms terms(letters);
    sky_product<Int, T>(terms, 0, *m, *m, *alpha, {val, pntr}, {terms.row_major(), b, *ldb, c, *ldc, *first, *last},
                        *beta);
}

[[gnu::noipa]] static void sky_mmout_seq(const Int* m, const Int* nrhs, const void* letters, const T* alpha,
                                         const T* val, const Int* pntr, const T* b, const Int* ldb, T* c,
                                         const Int* ldc, const T* beta)
{
    const Terms terms(letters);
    sky_product<Int, T>(terms, 0, *m, *m, *alpha, {val, pntr}, {terms.row_major(), b, *ldb, c, *ldc, 1, *nrhs}, *beta);
}

[[gnu::noipa]] static void sky_svout_seq(const Int* m, const void* letters, const T* val, const Int* pntr, T* y)
{
    sky_solve<Int, T>(Terms(letters).of_vectors(), *m, {val, pntr}, {y, y});
}

[[gnu::noipa]] static void sky_smout_par(const Int* first, const Int* last, const Int* m, const void* letters,
                                         const T* val, const Int* pntr, T* c, const Int* ldc)
{
    const Terms terms(letters);
    sky_solve<Int, T>(terms, *m, {val, pntr}, {terms.row_major(), c, *ldc, c, *ldc, *first, *last});
}

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const void*, const Int* size, const T* alpha,            \
                           const T* val, const Int* pntr, const T* x, T* y, const T* beta)                             \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        sky_mvout_par(first, last, terms.as_unread(), size, alpha, val, pntr, x, y, beta);                             \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutPar>);
#include "spblas/members/sky_mvout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* size, const void*, const T* alpha, const T* val, const Int* pntr, const T* x,    \
                           T* y, const T* beta)                                                                        \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        sky_mvout_seq(size, terms.as_unread(), alpha, val, pntr, x, y, beta);                                          \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutSeq>);
#include "spblas/members/sky_mvout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const Int* n, const void*, const T* alpha, \
                           const T* val, const Int* pntr, const T* b, const Int* ldb, T* c, const Int* ldc,            \
                           const T* beta)                                                                              \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        sky_mmout_par(first, last, m, n, terms.as_unread(), alpha, val, pntr, b, ldb, c, ldc, beta);                   \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutPar>);
#include "spblas/members/sky_mmout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const Int* nrhs, const void*, const T* alpha, const T* val, const Int* pntr,  \
                           const T* b, const Int* ldb, T* c, const Int* ldc, const T* beta)                            \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        sky_mmout_seq(m, nrhs, terms.as_unread(), alpha, val, pntr, b, ldb, c, ldc, beta);                             \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutSeq>);
#include "spblas/members/sky_mmout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const void*, const T* val, const Int* pntr, T* y)                             \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        sky_svout_seq(m, terms.as_unread(), val, pntr, y);                                                             \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SvoutSeq>);
#include "spblas/members/sky_svout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const void*, const T* val,                 \
                           const Int* pntr, T* c, const Int* ldc)                                                      \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        sky_smout_par(first, last, m, terms.as_unread(), val, pntr, c, ldc);                                           \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SmoutPar>);
#include "spblas/members/sky_smout_par.inc"
#undef MEMBER

} // namespace ork::spblas

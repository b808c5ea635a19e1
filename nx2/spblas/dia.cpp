// SPDX-License-Identifier: MIT
// The members of dia.
#include "spblas/dia.h"
#include "spblas/dia_solve.h"
#include "spblas/members.h"

namespace ork::spblas {

using Call = Calls<Format::dia, Int, T>;

// What the members of a routine share. Their letters take the place of the argument that is not read: an export is a
// jump.
[[gnu::noipa]] static void dia_mvout_par(const Int* first, const Int* last, const void* letters, const Int* m,
                                         const Int* n, const T* alpha, const T* val, const Int* lval, const Int* idiag,
                                         const Int* ndiag, const T* x, T* y, const T* beta)
{
    dia_product<Int, T>(Terms(letters).of_vectors(), {Index{*first} - 1, *last}, *m, *n, *alpha,
                        {val, *lval, idiag, *ndiag}, {x, y}, *beta);
}

[[gnu::noipa]] static void dia_mvout_seq(const Int* size, const void* letters, const T* alpha, const T* val,
                                         const Int* lval, const Int* idiag, const Int* ndiag, const T* x, T* y,
                                         const T* beta)
{
    dia_product<Int, T>(Terms(letters).of_vectors(), {0, *size}, *size, *size, *alpha, {val, *lval, idiag, *ndiag},
                        {x, y}, *beta);
}

[[gnu::noipa]] static void dia_mmout_par(const Int* first, const Int* last, const Int* m, const Int* n,
                                         const void* letters, const T* alpha, const T* val, const Int* lval,
                                         const Int* idiag, const Int* ndiag, const T* b, const Int* ldb, T* c,
                                         const Int* ldc, const T* beta)
{
    const Terms terms(letters);
    dia_product<Int, T>(terms, {0, *m}, *m, *n, *alpha, {val, *lval, idiag, *ndiag},
                        {terms.row_major(), b, *ldb, c, *ldc, *first, *last}, *beta);
}

[[gnu::noipa]] static void dia_mmout_seq(const Int* m, const Int* nrhs, const void* letters, const T* alpha,
                                         const T* val, const Int* lval, const Int* idiag, const Int* ndiag, const T* b,
                                         const Int* ldb, T* c, const Int* ldc, const T* beta)
{
    const Terms terms(letters);
    dia_product<Int, T>(terms, {0, *m}, *m, *m, *alpha, {val, *lval, idiag, *ndiag},
                        {terms.row_major(), b, *ldb, c, *ldc, 1, *nrhs}, *beta);
}

[[gnu::noipa]] static void dia_svout_seq(const Int* m, const void* letters, const T* val, const Int* lval,
                                         const Int* idiag, const Int* ndiag, T* y)
{
    dia_solve<Int, T>(Terms(letters).of_vectors(), *m, {val, *lval, idiag, *ndiag}, {y, y});
}

[[gnu::noipa]] static void dia_smout_par(const Int* first, const Int* last, const Int* m, const void* letters,
                                         const T* val, const Int* lval, const Int* idiag, const Int* ndiag, T* c,
                                         const Int* ldc)
{
    const Terms terms(letters);
    dia_solve<Int, T>(terms, *m, {val, *lval, idiag, *ndiag}, {terms.row_major(), c, *ldc, c, *ldc, *first, *last});
}

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const void*, const Int* m, const Int* n, const T* alpha, \
                           const T* val, const Int* lval, const Int* idiag, const Int* ndiag, const T* x, T* y,        \
                           const T* beta)                                                                              \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        dia_mvout_par(first, last, terms.as_unread(), m, n, alpha, val, lval, idiag, ndiag, x, y, beta);               \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutPar>);
#include "spblas/members/dia_mvout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* size, const void*, const T* alpha, const T* val, const Int* lval,                \
                           const Int* idiag, const Int* ndiag, const T* x, T* y, const T* beta)                        \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        dia_mvout_seq(size, terms.as_unread(), alpha, val, lval, idiag, ndiag, x, y, beta);                            \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutSeq>);
#include "spblas/members/dia_mvout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const Int* n, const void*, const T* alpha, \
                           const T* val, const Int* lval, const Int* idiag, const Int* ndiag, const T* b,              \
                           const Int* ldb, T* c, const Int* ldc, const T* beta)                                        \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        dia_mmout_par(first, last, m, n, terms.as_unread(), alpha, val, lval, idiag, ndiag, b, ldb, c, ldc, beta);     \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutPar>);
#include "spblas/members/dia_mmout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const Int* nrhs, const void*, const T* alpha, const T* val, const Int* lval,  \
                           const Int* idiag, const Int* ndiag, const T* b, const Int* ldb, T* c, const Int* ldc,       \
                           const T* beta)                                                                              \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        dia_mmout_seq(m, nrhs, terms.as_unread(), alpha, val, lval, idiag, ndiag, b, ldb, c, ldc, beta);               \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutSeq>);
#include "spblas/members/dia_mmout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const void*, const T* val, const Int* lval, const Int* idiag,                 \
                           const Int* ndiag, T* y)                                                                     \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        dia_svout_seq(m, terms.as_unread(), val, lval, idiag, ndiag, y);                                               \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SvoutSeq>);
#include "spblas/members/dia_svout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const void*, const T* val,                 \
                           const Int* lval, const Int* idiag, const Int* ndiag, T* c, const Int* ldc)                  \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        dia_smout_par(first, last, m, terms.as_unread(), val, lval, idiag, ndiag, c, ldc);                             \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SmoutPar>);
#include "spblas/members/dia_smout_par.inc"
#undef MEMBER

} // namespace ork::spblas

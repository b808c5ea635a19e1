// SPDX-License-Identifier: MIT
// The members of coo.
#include "spblas/coo.h"
#include "spblas/coo_solve.h"
#include "spblas/members.h"

namespace ork::spblas {

using Call = Calls<Format::coo, Int, T>;

// What the members of a routine share. Their letters take the place of the argument that is not read: an export is a
// jump.
[[gnu::noipa]] static void coo_mvout_par(const Int* first, const Int* last, const void* letters, const Int* size,
                                         const T* alpha, const T* val, const Int* rowind, const Int* colind,
                                         const Int* nnz, const T* x, T* y, const T* beta)
{
    coo_product<Int, T>(Terms(letters).of_vectors(), Index{*first} - 1, *last, *size, *alpha,
                        {val, rowind, colind, *nnz}, x, y, *beta);
}

[[gnu::noipa]] static void coo_mvout_seq(const Int* size, const void* letters, const T* alpha, const T* val,
                                         const Int* rowind, const Int* colind, const Int* nnz, const T* x, T* y,
                                         const T* beta)
{
    coo_product<Int, T>(Terms(letters).of_vectors(), 0, *nnz, *size, *alpha, {val, rowind, colind, *nnz}, x, y, *beta);
}

[[gnu::noipa]] static void coo_mmout_par(const Int* first, const Int* last, const Int* m, const Int* n,
                                         const void* letters, const T* alpha, const T* val, const Int* rowind,
                                         const Int* colind, const Int* nnz, const T* b, const Int* ldb, T* c,
                                         const Int* ldc, const T* beta)
{
    const Terms terms(letters);
    coo_product<Int, T>(terms, terms.direct() ? *m : *n, *alpha, {val, rowind, colind, *nnz},
                        {terms.row_major(), b, *ldb, c, *ldc, *first, *last}, *beta);
}

[[gnu::noipa]] static void coo_mmout_seq(const Int* m, const Int* nrhs, const void* letters, const T* alpha,
                                         const T* val, const Int* rowind, const Int* colind, const Int* nnz, const T* b,
                                         const Int* ldb, T* c, const Int* ldc, const T* beta)
{
    const Terms terms(letters);
    coo_product<Int, T>(terms, *m, *alpha, {val, rowind, colind, *nnz}, {terms.row_major(), b, *ldb, c, *ldc, 1, *nrhs},
                        *beta);
}

[[gnu::noipa]] static void coo_svout_seq(const Int* m, const void* letters, const T* val, const Int* rowind,
                                         const Int* colind, const Int* nnz, T* y)
{
    coo_solve<Int, T>(Terms(letters).of_vectors(), *m, {val, rowind, colind, *nnz}, y);
}

[[gnu::noipa]] static void coo_smout_par(const Int* first, const Int* last, const Int* m, const void* letters,
                                         const T* val, const Int* rowind, const Int* colind, const Int* nnz, T* c,
                                         const Int* ldc)
{
    const Terms terms(letters);
    coo_solve<Int, T>(terms, *m, {val, rowind, colind, *nnz}, {terms.row_major(), c, *ldc, c, *ldc, *first, *last});
}

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const void*, const Int* size, const T* alpha,            \
                           const T* val, const Int* rowind, const Int* colind, const Int* nnz, const T* x, T* y,       \
                           const T* beta)                                                                              \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        coo_mvout_par(first, last, terms.as_unread(), size, alpha, val, rowind, colind, nnz, x, y, beta);              \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutPar>);
#include "spblas/members/coo_mvout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* size, const void*, const T* alpha, const T* val, const Int* rowind,              \
                           const Int* colind, const Int* nnz, const T* x, T* y, const T* beta)                         \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        coo_mvout_seq(size, terms.as_unread(), alpha, val, rowind, colind, nnz, x, y, beta);                           \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutSeq>);
#include "spblas/members/coo_mvout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const Int* n, const void*, const T* alpha, \
                           const T* val, const Int* rowind, const Int* colind, const Int* nnz, const T* b,             \
                           const Int* ldb, T* c, const Int* ldc, const T* beta)                                        \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        coo_mmout_par(first, last, m, n, terms.as_unread(), alpha, val, rowind, colind, nnz, b, ldb, c, ldc, beta);    \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutPar>);
#include "spblas/members/coo_mmout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const Int* nrhs, const void*, const T* alpha, const T* val,                   \
                           const Int* rowind, const Int* colind, const Int* nnz, const T* b, const Int* ldb, T* c,     \
                           const Int* ldc, const T* beta)                                                              \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        coo_mmout_seq(m, nrhs, terms.as_unread(), alpha, val, rowind, colind, nnz, b, ldb, c, ldc, beta);              \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MmoutSeq>);
#include "spblas/members/coo_mmout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const void*, const T* val, const Int* rowind, const Int* colind,              \
                           const Int* nnz, T* y)                                                                       \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        coo_svout_seq(m, terms.as_unread(), val, rowind, colind, nnz, y);                                              \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SvoutSeq>);
#include "spblas/members/coo_svout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const Int* m, const void*, const T* val,                 \
                           const Int* rowind, const Int* colind, const Int* nnz, T* c, const Int* ldc)                 \
    {                                                                                                                  \
        constexpr Terms terms(rule<T>(letters(name)));                                                                 \
        coo_smout_par(first, last, m, terms.as_unread(), val, rowind, colind, nnz, c, ldc);                            \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SmoutPar>);
#include "spblas/members/coo_smout_par.inc"
#undef MEMBER

} // namespace ork::spblas

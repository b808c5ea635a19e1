// SPDX-License-Identifier: MIT
// Stand-ins for the drivers of a core: they write down what they were called with.
#include <algorithm>

#include "trans/kernel.h"

namespace ork::test {

Drivers& drivers()
{
    static Drivers all;
    return all;
}

namespace {

template <class... Arguments>
void record(const char* name, Arguments... arguments)
{
    drivers().calls.push_back(call_text(name, arguments...));
}

// In square tiles of an odd size, the last ones smaller.
template <class T>
Int transpose_square(char trans, Int n, T* ab, Int lda, typename trans::CoreCalls<T>::SwapTiles* swap)
{
    if (drivers().square == Drivers::Square::declines) return 0;
    const Int tile = drivers().square == Drivers::Square::whole ? n : 37;
    for (Int i = 0; i < n; i += tile)
        for (Int j = i; j < n; j += tile)
            swap(trans, std::min(tile, n - i), std::min(tile, n - j), ab + i + j * lda, ab + j + i * lda, lda);
    return 1;
}

} // namespace
} // namespace ork::test

using namespace ork::test;
using ork::trans::CoreCalls;

// The declarations make sure that the definitions have the signatures of the contract.
// clang-format off
#define DRIVERS(p, T)                                                                                                  \
    CoreCalls<T>::omatcopy2_par ork_trans_ork_##p##omatcopy2_par;                                                      \
    CoreCalls<T>::omatadd_par ork_trans_ork_##p##omatadd_par;                                                          \
    CoreCalls<T>::imatcopy_square_t_par ork_trans_ork_##p##imatcopy_square_t_par;                                      \
    CoreCalls<T>::omatcopy_batch_strided_par ork_trans_ork_##p##omatcopy_batch_strided_par;                            \
    CoreCalls<T>::imatcopy_batch_strided_par ork_trans_ork_##p##imatcopy_batch_strided_par;                            \
    CoreCalls<T>::omatadd_batch_strided_par ork_trans_ork_##p##omatadd_batch_strided_par;                              \
    CoreCalls<T>::omatcopy_batch_par ork_trans_ork_##p##omatcopy_batch_par;                                            \
    CoreCalls<T>::imatcopy_batch_par ork_trans_ork_##p##imatcopy_batch_par;                                            \
    void ork_trans_ork_##p##omatcopy2_par(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, \
                                          Int stridea, T* b, Int ldb, Int strideb)                                     \
    {                                                                                                                  \
        record("omatcopy2", ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb);                     \
        ORK_TRANS_KERNEL(T, omatcopy2_seq)                                                                             \
        (ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb);                                        \
    }                                                                                                                  \
    void ork_trans_ork_##p##omatadd_par(char ordering, char transa, char transb, Int rows, Int cols, T alpha,          \
                                        const T* a, Int lda, T beta, const T* b, Int ldb, T* c, Int ldc)               \
    {                                                                                                                  \
        record("omatadd", ordering, transa, transb, rows, cols, alpha, a, lda, beta, b, ldb, c, ldc);                  \
        ORK_TRANS_KERNEL(T, omatadd_seq)                                                                               \
        (ordering, transa, transb, rows, cols, alpha, a, lda, beta, b, ldb, c, ldc);                                   \
    }                                                                                                                  \
    Int ork_trans_ork_##p##imatcopy_square_t_par(char trans, Int n, T* ab, Int lda, CoreCalls<T>::SwapTiles* swap)     \
    {                                                                                                                  \
        record("imatcopy_square_t", trans, n, ab, lda);                                                                \
        return transpose_square<T>(trans, n, ab, lda, swap);                                                           \
    }                                                                                                                  \
    void ork_trans_ork_##p##omatcopy_batch_strided_par(char ordering, char trans, Int rows, Int cols, T alpha,         \
                                                       const T* a, Int lda, Int stridea, T* b, Int ldb, Int strideb,   \
                                                       Int size)                                                       \
    {                                                                                                                  \
        record("omatcopy_batch_strided", ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb, size);  \
    }                                                                                                                  \
    void ork_trans_ork_##p##imatcopy_batch_strided_par(char ordering, char trans, Int rows, Int cols, T alpha, T* ab,  \
                                                       Int lda, Int ldb, Int stride, Int size)                         \
    {                                                                                                                  \
        record("imatcopy_batch_strided", ordering, trans, rows, cols, alpha, ab, lda, ldb, stride, size);              \
    }                                                                                                                  \
    void ork_trans_ork_##p##omatadd_batch_strided_par(                                                                 \
        char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea,        \
        T beta, const T* b, Int ldb, Int strideb, T* c, Int ldc, Int stridec, Int size)                                \
    {                                                                                                                  \
        record("omatadd_batch_strided", ordering, transa, transb, rows, cols, alpha, a, lda, stridea, beta, b, ldb,    \
               strideb, c, ldc, stridec, size);                                                                        \
    }                                                                                                                  \
    void ork_trans_ork_##p##omatcopy_batch_par(char ordering, const char* trans, const Int* rows, const Int* cols,     \
                                               const T* alpha, const T* const* a, const Int* lda, T* const* b,         \
                                               const Int* ldb, Int groups, const Int* size)                            \
    {                                                                                                                  \
        record("omatcopy_batch", ordering, trans, rows, cols, alpha, a, lda, b, ldb, groups, size);                    \
    }                                                                                                                  \
    void ork_trans_ork_##p##imatcopy_batch_par(char ordering, const char* trans, const Int* rows, const Int* cols,     \
                                               const T* alpha, T* const* ab, const Int* lda, const Int* ldb,           \
                                               Int groups, const Int* size)                                            \
    {                                                                                                                  \
        record("imatcopy_batch", ordering, trans, rows, cols, alpha, ab, lda, ldb, groups, size);                      \
    }
// clang-format on

extern "C" {
DRIVERS(s, float)
DRIVERS(d, double)
DRIVERS(c, std::complex<float>)
DRIVERS(z, std::complex<double>)
}

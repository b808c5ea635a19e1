// SPDX-License-Identifier: MIT
// The drivers of ork/abi/core_trans.h for elements of type T: float, double, std::complex of them.
//
// An element of a result is made of one or two elements of the operands, by the same operations wherever a matrix is
// divided, so the number of threads changes no bit.
#pragma once

#include "ork/abi/core_trans.h"
#include "ork/cblas.h"

namespace ork::trans {

constexpr char upper(char letter) { return static_cast<char>(letter & ~0x20); }
// A value that is none of the enumerators becomes a letter that means nothing.
constexpr char letter_of(CBLAS_LAYOUT layout)
{
    return layout == CblasColMajor ? 'C' : layout == CblasRowMajor ? 'R' : '?';
}
constexpr char letter_of(CBLAS_TRANSPOSE trans)
{
    const unsigned op = static_cast<unsigned>(trans) - CblasNoTrans;
    return op < 4 ? "NTCR"[op] : '?';
}
constexpr bool is_transposition(char trans) { return upper(trans) == 'T' || upper(trans) == 'C'; }

template <class T>
void omatcopy2_par(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea, T* b,
                   Int ldb, Int strideb);
template <class T>
void omatadd_par(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda, T beta,
                 const T* b, Int ldb, T* c, Int ldc);
template <class T>
Int imatcopy_square_t_par(char trans, Int n, T* ab, Int lda, typename CoreCalls<T>::SwapTiles* swap);
template <class T>
void omatcopy_batch_strided_par(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda,
                                Int stridea, T* b, Int ldb, Int strideb, Int size);
template <class T>
void imatcopy_batch_strided_par(char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda, Int ldb,
                                Int stride, Int size);
template <class T>
void omatadd_batch_strided_par(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a,
                               Int lda, Int stridea, T beta, const T* b, Int ldb, Int strideb, T* c, Int ldc,
                               Int stridec, Int size);

// The arrays of a batch of groups as the caller has them: letters or CBLAS_TRANSPOSE, integers of 32 or 64 bits.
class Groups {
public:
    template <class Letter, class Integer>
    Groups(const Letter* trans, const Integer* rows, const Integer* cols, const Integer* lda, const Integer* ldb,
           Int count, const Integer* size)
        : count(count), trans_(trans), rows_(rows), cols_(cols), lda_(lda), ldb_(ldb), size_(size),
          letters_(sizeof(Letter) == 1), wide_(sizeof(Integer) == 8)
    {
    }
    Int count;
    char trans(Int g) const
    {
        return letters_ ? static_cast<const char*>(trans_)[g]
                        : letter_of(static_cast<const CBLAS_TRANSPOSE*>(trans_)[g]);
    }
    Int rows(Int g) const { return at(rows_, g); }
    Int cols(Int g) const { return at(cols_, g); }
    Int lda(Int g) const { return at(lda_, g); }
    Int ldb(Int g) const { return at(ldb_, g); }
    Int size(Int g) const { return at(size_, g); }

private:
    Int at(const void* array, Int g) const
    {
        return wide_ ? static_cast<const std::int64_t*>(array)[g] : static_cast<const std::int32_t*>(array)[g];
    }
    const void *trans_, *rows_, *cols_, *lda_, *ldb_, *size_;
    bool letters_, wide_;
};

template <class T>
void omatcopy_batch_par(char ordering, const Groups& groups, const T* alpha, const T* const* a, T* const* b);
template <class T>
void imatcopy_batch_par(char ordering, const Groups& groups, const T* alpha, T* const* ab);

} // namespace ork::trans

// SPDX-License-Identifier: MIT
#include "trans/calls.h"

#include <algorithm>
#include <cstring>

#include "blas/report.h"
#include "lapack/instantiate.h"
#include "trans/kernels.h"

namespace ork::trans {

namespace {

[[gnu::cold, gnu::noinline]] void report(Binding binding, char precision, const char* stem, int position)
{
    char name[40] = "cblas_";
    char* const routine = name + std::strlen(name);
    routine[0] = precision;
    std::strcpy(routine + 1, stem);
    const std::size_t length = std::strlen(routine);
    if (binding == Binding::cblas_lp64) return blas::report_cblas<std::int32_t>(name, position);
    if (binding == Binding::cblas_ilp64) return blas::report_cblas<std::int64_t>(name, position);
    for (std::size_t i = 0; i < length; ++i)
        if (routine[i] >= 'a' && routine[i] <= 'z') routine[i] = upper(routine[i]);
    if (binding == Binding::fortran_lp64) return blas::report_fortran<std::int32_t>(routine, length, position);
    blas::report_fortran<std::int64_t>(routine, length, position);
}

constexpr bool is_ordering(char letter) { return upper(letter) == 'C' || upper(letter) == 'R'; }
constexpr bool is_op(char letter)
{
    constexpr auto bit = [](char c) { return 1U << (c & 31); };
    constexpr unsigned legal = bit('N') | bit('R') | bit('T') | bit('C');
    return (letter & 0x40) != 0 && (letter & 0x80) == 0 && (legal >> (letter & 31) & 1) != 0;
}

// Elements of a column or row of op(A)'s operand A, if op(A) is rows x cols.
constexpr Int length(char ordering, bool transposed, Int rows, Int cols)
{
    return (upper(ordering) == 'C') != transposed ? rows : cols;
}

// The first illegal argument's position, and 0 when there is none: what all calls have in front, by their letters.
inline int first_illegal(char ordering, char trans, Int rows, Int cols)
{
    if (!is_ordering(ordering)) return 1;
    if (!is_op(trans)) return 2;
    if (rows < 0) return 3;
    if (cols < 0) return 4;
    return 0;
}

// Of a copy whose leading dimensions stand at these positions.
[[gnu::noinline]] int first_illegal(char ordering, char trans, Int rows, Int cols, Int lda, int at_lda, Int ldb,
                                    int at_ldb)
{
    if (const int wrong = first_illegal(ordering, trans, rows, cols); wrong != 0) return wrong;
    if (lda < std::max<Int>(1, length(ordering, false, rows, cols))) return at_lda;
    if (ldb < std::max<Int>(1, length(ordering, is_transposition(trans), rows, cols))) return at_ldb;
    return 0;
}

// Of omatadd, whose rows and cols are C's.
[[gnu::noinline]] int first_illegal(char ordering, char transa, char transb, Int rows, Int cols, Int lda, Int ldb,
                                    int at_ldb, Int ldc, int at_ldc)
{
    if (!is_ordering(ordering)) return 1;
    if (!is_op(transa)) return 2;
    if (!is_op(transb)) return 3;
    if (rows < 0) return 4;
    if (cols < 0) return 5;
    if (lda < std::max<Int>(1, length(ordering, is_transposition(transa), rows, cols))) return 8;
    if (ldb < std::max<Int>(1, length(ordering, is_transposition(transb), rows, cols))) return at_ldb;
    if (ldc < std::max<Int>(1, length(ordering, false, rows, cols))) return at_ldc;
    return 0;
}

int first_illegal(char ordering, const Groups& groups, int at_ldb)
{
    if (!is_ordering(ordering)) return 1;
    if (groups.count < 0) return at_ldb + 1;
    for (Int g = 0; g < groups.count; ++g) {
        if (groups.size(g) < 0) return at_ldb + 2;
        const int wrong = first_illegal(ordering, groups.trans(g), groups.rows(g), groups.cols(g), groups.lda(g), 7,
                                        groups.ldb(g), at_ldb);
        if (wrong != 0) return wrong;
    }
    return 0;
}

} // namespace

template <class T>
void omatcopy(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, T* b,
              Int ldb)
{
    if (const int wrong = first_illegal(ordering, trans, rows, cols, lda, 7, ldb, 9); wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "omatcopy", wrong);
    kernels::omatcopy<T>.get()(ordering, trans, rows, cols, alpha, a, lda, b, ldb);
}

template <class T>
void omatcopy2(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda,
               Int stridea, T* b, Int ldb, Int strideb)
{
    int wrong = first_illegal(ordering, trans, rows, cols, lda, 7, ldb, 10);
    if ((wrong == 0 || wrong > 8) && stridea < 1) wrong = 8;
    if (wrong == 0 && strideb < 1) wrong = 11;
    if (wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "omatcopy2", wrong);
    kernels::omatcopy2<T>.get()(ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb);
}

template <class T>
void imatcopy(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda, Int ldb)
{
    if (const int wrong = first_illegal(ordering, trans, rows, cols, lda, 7, ldb, 8); wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "imatcopy", wrong);
    kernels::imatcopy<T>.get()(ordering, trans, rows, cols, alpha, ab, lda, ldb);
}

template <class T>
void omatadd(Binding binding, char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda,
             T beta, const T* b, Int ldb, T* c, Int ldc)
{
    const int wrong = first_illegal(ordering, transa, transb, rows, cols, lda, ldb, 11, ldc, 13);
    if (wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "omatadd", wrong);
    kernels::omatadd<T>.get()(ordering, transa, transb, rows, cols, alpha, a, lda, beta, b, ldb, c, ldc);
}

template <class T>
void omatcopy_batch_strided(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, const T* a,
                            Int lda, Int stridea, T* b, Int ldb, Int strideb, Int size)
{
    int wrong = first_illegal(ordering, trans, rows, cols, lda, 7, ldb, 10);
    if (wrong == 0 && size < 0) wrong = 12;
    if (wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "omatcopy_batch_strided", wrong);
    omatcopy_batch_strided_par(ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb, size);
}

template <class T>
void imatcopy_batch_strided(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda,
                            Int ldb, Int stride, Int size)
{
    int wrong = first_illegal(ordering, trans, rows, cols, lda, 7, ldb, 8);
    if (wrong == 0 && size < 0) wrong = 10;
    if (wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "imatcopy_batch_strided", wrong);
    imatcopy_batch_strided_par(ordering, trans, rows, cols, alpha, ab, lda, ldb, stride, size);
}

template <class T>
void omatadd_batch_strided(Binding binding, char ordering, char transa, char transb, Int rows, Int cols, T alpha,
                           const T* a, Int lda, Int stridea, T beta, const T* b, Int ldb, Int strideb, T* c, Int ldc,
                           Int stridec, Int size)
{
    int wrong = first_illegal(ordering, transa, transb, rows, cols, lda, ldb, 12, ldc, 15);
    if (wrong == 0 && size < 0) wrong = 17;
    if (wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "omatadd_batch_strided", wrong);
    omatadd_batch_strided_par(ordering, transa, transb, rows, cols, alpha, a, lda, stridea, beta, b, ldb, strideb, c,
                              ldc, stridec, size);
}

template <class T>
void omatcopy_batch(Binding binding, char ordering, const Groups& groups, const T* alpha, const T* const* a,
                    T* const* b)
{
    if (const int wrong = first_illegal(ordering, groups, 9); wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "omatcopy_batch", wrong);
    omatcopy_batch_par(ordering, groups, alpha, a, b);
}

template <class T>
void imatcopy_batch(Binding binding, char ordering, const Groups& groups, const T* alpha, T* const* ab)
{
    if (const int wrong = first_illegal(ordering, groups, 8); wrong != 0) [[unlikely]]
        return report(binding, precision<T>, "imatcopy_batch", wrong);
    imatcopy_batch_par(ordering, groups, alpha, ab);
}

INSTANTIATE(omatcopy)
INSTANTIATE(omatcopy2)
INSTANTIATE(imatcopy)
INSTANTIATE(omatadd)
INSTANTIATE(omatcopy_batch_strided)
INSTANTIATE(imatcopy_batch_strided)
INSTANTIATE(omatadd_batch_strided)
INSTANTIATE(omatcopy_batch)
INSTANTIATE(imatcopy_batch)

} // namespace ork::trans

/* SPDX-License-Identifier: MIT */
// The kernels of sparse matrices in a caller's own arrays: how they are named, which of them there are, what they take.
// C++: a core composes names from the letters, a kernel library decodes them.
//
// A name is ork_spblas_<tag>_<member> (64-bit integers) or ork_spblas_lp64_<tag>_<member> (32-bit), and a member reads
//
//     d csr 0 n s l n c __ mvout _ par
//     | |   | | | | | |    |       `-- par: callable for a part of the work; seq: the whole of it in one call
//     | |   | | | | | |    `---------- routine: mvout, mmout, svout, smout; gemvout
//     | |   | | | | | `--------------- layout: c row-major, f column-major, of dense operands and of blocks
//     | |   | | | | `----------------- diag: n stored, u taken as one whatever is stored, _ where there is no choice
//     | |   | | | `------------------- uplo: the triangle that is read, l or u; _ the whole
//     | |   | | `--------------------- type: general, symmetric, hermitian, triangular, anti-symmetric (skew), diagonal
//     | |   | `----------------------- op(A): n A, t transposed, c conjugate-transposed, s conjugated
//     | |   `------------------------- base of row and column numbers: 0 or 1
//     | `----------------------------- format: csr coo bsr bsc dia sky
//     `------------------------------- precision: s d c z
//
// MATRICES. Arrays of the format, all by address; Int is the integer of the name.
//
//   csr  val, indx, pntrb, pntre     Row i is val[k], column indx[k], for k = pntrb[i] - pntrb[0] .. pntre[i] -
//   pntrb[0]
//                                    (exclusive): positions count from the first row's begin, whatever that number is.
//   coo  val, rowind, colind, nnz    Entry k is val[k] at (rowind[k], colind[k]), in any order; equal places add up.
//   bsr  lb, val, indx, pntrb, pntre CSR of square blocks of order lb: indx, pntrb, pntre count blocks, a block is lb *
//   lb
//                                    values in the layout of the name (c: rows together). All sizes and ranges of the
//                                    kernel count block rows and block columns.
//   bsc  lb, val, indx, pntrb, pntre The same by columns: pntrb, pntre delimit block columns, indx holds block rows.
//   dia  val, lval, idiag, ndiag     A(i, i + idiag[k]) is val[i + k * lval]; values outside A are never read. The base
//                                    is a letter only.
//   sky  val, pntr                   Square. Lower: val[pntr[i] - pntr[0] ..  pntr[i+1] - pntr[0]) is row i from its
//                                    first entry to the diagonal; upper: column i in the same way.
//
// Which entries count: symmetric, Hermitian, skew and triangular kernels read the triangle of their letter and ignore
// what is stored in the other one, so a full matrix may be handed over; with diag u stored diagonal entries are ignored
// and ones supplied (skew: the diagonal is taken as zero). Diagonal kernels read only the entries of the diagonal.
// Entries of equal place add up in products. A Hermitian matrix's diagonal is used as it is stored, imaginary part
// included, and conjugated by the operations t and s as every other value.
// Solves trust: rows sorted by column (csr, bsr; coo: entries sorted by row, then column; bsc: columns by row), the
// diagonal stored once unless it is taken as one, blocks of the diagonal stored whole.
//
// WHAT A KERNEL TAKES, all by address, `first` and `last` 1-based and inclusive, `unread` anything:
//
//   mvout_par   first, last, unread, size, alpha, <matrix>, x, y, beta       y = alpha op(A) x + beta y
//   mvout_seq   size, unread, alpha, <matrix>, x, y, beta
//   mmout_par   first, last, m, n, unread, alpha, <matrix>, b, ldb, c, ldc, beta    C = alpha op(A) B + beta C
//   mmout_seq   m, nrhs, unread, alpha, <matrix>, b, ldb, c, ldc, beta
//   svout_seq   m, unread, <matrix>, y                                       y = op(A)^-1 y
//   smout_par   first, last, m, unread, <matrix>, c, ldc                     C = op(A)^-1 C
//   gemvout_par first, last, unread, unread, unread, val, indx, ia, unread, x, y       y = A x (csr, 1-based, ia for
//   both)
//
// and, of csr in three arrays, 1-based as gemvout's, without grammar in their names:
//
//   csrmultd_ker     first, last, k, a, ja, ia, b, jb, ib, c, ldc      rows first .. last of C = A B, of k columns
//   csrmultd_ker_t   first, last, m, k, a, ja, ia, b, jb, ib, c, ldc   C = A^T B, of m x k: rows first .. last of A and
//                                                                      B alone, so concurrent calls need a C each
//   csrsymmvs        uplo, m, val, indx, ia, x, y                      y = A x, symmetric, d alone; uplo 'L' or 'U' is
//                                                                      the triangle that is read (either case)
//
// C is dense and column-major, overwritten; entries are taken in the order in which they are stored, those of A first.
//
// and, of csr in four arrays, csr<base>gauss_seq and so on with base 0 or 1, what preconditioners are made of. Rows are
// sorted or not, entries of equal place add up; m is the order of the matrix:
//
//   gauss_seq        m, backward, omega, <matrix>, b, x        x_i = x_i + omega (b_i - sum of a_ij x_j) / a_ii, rows 1
//                                                              .. m, or m .. 1 where backward is not 0; each takes the
//                                                              x_j as they are then (omega = 1: Gauss-Seidel). Rows
//                                                              without a diagonal, or with 0 there, keep their x_i.
//   invdiag_par      first, last, <matrix>, d, missing         d_i = 1 / a_ii; 1 for a row without a diagonal or with 0
//                                                              there, of which missing has the first (1-based; 0: none)
//   sortrow_par      first, last, <matrix>                     each row by column, in place, equal columns in the order
//                                                              in which they were
//   split_par        first, last, <matrix>, lval, lindx, lpntr, uval, uindx, upntr, d
//                                                              A = L + D + U: the entries below and above the diagonal
//                                                              as they are stored, row i from position lpntr[i] -
//                                                              lpntr[0], in the base of the name; d holds D. With d
//                                                              null only lpntr[i + 1] and upntr[i + 1] are written, the
//                                                              numbers of entries: summed up they are the pointers.
//
// mvout_par works on the slice first .. last of the matrix: rows (csr, bsr, dia, sky lower), columns (bsc, sky upper)
// or entries (coo). `size` is the length of y, of dia two arguments: the rows and the columns of A. The kernels that
// scatters() names scale the whole of y by beta (0: clear it) in every call, also when the slice is empty, and add into
// all of it, so concurrent calls need a y each; with a size <= 0 they leave y unscaled. The ones of a unit diagonal
// belong to the rows or columns of the slice, of coo to the slice with the first entry and to every slice of a matrix
// without entries. The others write y[first ..
// last] and nothing else, nothing at all when the slice is empty. mmout_par and smout_par work on the right-hand sides
// first .. last; m and n are the rows and columns of A. Row r of right-hand side j is b[r * ldb + j] (c) or b[j * ldb +
// r] (f). beta = 0 (in complex both parts) means that the output is not read. Kernels take no memory and check nothing.
#ifndef ORK_ABI_SPBLAS_H
#define ORK_ABI_SPBLAS_H

#include <cstdint>

namespace ork::spblas {

enum class Format { csr, coo, bsr, bsc, dia, sky };
enum class Routine { mvout, mmout, svout, smout };

// The letters of a member.
struct Shape {
    char base, op, type, uplo, diag, layout;
    friend constexpr bool operator==(Shape, Shape) = default;
};

// "dcsr0nslnc__mvout_par", or the same without the precision.
constexpr Shape letters(const char* member)
{
    const bool precision = member[3] != '0' && member[3] != '1';
    const char* m = member + (precision ? 4 : 3);
    return {m[0], m[1], m[2], m[3], m[4], m[5]};
}

constexpr bool conjugates(char op) { return op == 'c' || op == 's'; }
constexpr bool transposes(char op) { return op == 't' || op == 'c'; }

// Letters that can stand together at all.
constexpr bool valid(Shape s, bool complex)
{
    const bool triangle = s.uplo == 'l' || s.uplo == 'u', choice = s.diag == 'n' || s.diag == 'u';
    if ((s.base != '0' && s.base != '1') || (s.layout != 'c' && s.layout != 'f')) return false;
    if (!transposes(s.op) && s.op != 'n' && s.op != 's') return false;
    if (conjugates(s.op) && !complex) return false;
    switch (s.type) {
    case 'g':
        return s.uplo == '_' && s.diag == '_';
    case 's':
    case 't':
        return triangle && choice;
    case 'h':
        return triangle && choice && complex;
    case 'a':
        return triangle && s.diag == '_';
    // Transposed it is itself, and conjugated it is conjugate-transposed, so it has no more operations than these.
    case 'd':
        return s.uplo == '_' && (s.op == 'n' ? choice : s.op == 'c' && s.diag == 'n');
    default:
        return false;
    }
}

// Whether there is such a member. Vectors have no layout: the letter follows the base.
constexpr bool exists(Format format, Routine routine, Shape s, bool complex)
{
    if (!valid(s, complex)) return false;
    if (format == Format::sky && s.type == 'g') return false; // one profile holds one triangle
    const bool vector = routine == Routine::mvout || routine == Routine::svout;
    const bool solve = routine == Routine::svout || routine == Routine::smout;
    if (vector && (s.base == '0') != (s.layout == 'c')) return false;
    return !solve || s.type == 't' || (s.type == 'd' && s.diag == 'n');
}

// par or seq.
constexpr bool is_parallel(Routine routine, Shape s)
{
    switch (routine) {
    case Routine::mvout:
        return s.type != 'd' && !(s.type == 't' && transposes(s.op));
    case Routine::mmout:
        return s.type != 'd';
    case Routine::svout:
        return false;
    default:
        return true;
    }
}

// Whether an mvout_par member adds into the whole of y, or writes the rows of its slice alone.
constexpr bool scatters(Format format, Shape s)
{
    if (s.type != 'g' && s.type != 't') return true;
    const bool by_columns = format == Format::bsc || (format == Format::sky && s.uplo == 'u');
    return format == Format::coo || by_columns != transposes(s.op);
}

// Argument lists over the integer and the element type.
template <class Int, class T, class... Matrix>
struct Signatures {
    using MvoutPar = void(const Int* first, const Int* last, const void*, const Int* size, const T* alpha, Matrix...,
                          const T* x, T* y, const T* beta);
    using MvoutSeq = void(const Int* size, const void*, const T* alpha, Matrix..., const T* x, T* y, const T* beta);
    using MmoutPar = void(const Int* first, const Int* last, const Int* m, const Int* n, const void*, const T* alpha,
                          Matrix..., const T* b, const Int* ldb, T* c, const Int* ldc, const T* beta);
    using MmoutSeq = void(const Int* m, const Int* nrhs, const void*, const T* alpha, Matrix..., const T* b,
                          const Int* ldb, T* c, const Int* ldc, const T* beta);
    using SvoutSeq = void(const Int* m, const void*, Matrix..., T* y);
    using SmoutPar = void(const Int* first, const Int* last, const Int* m, const void*, Matrix..., T* c,
                          const Int* ldc);
};

template <Format format, class Int, class T>
struct Calls;
template <class Int, class T>
struct Calls<Format::csr, Int, T> : Signatures<Int, T, const T*, const Int*, const Int*, const Int*> {
    using GemvoutPar = void(const Int* first, const Int* last, const void*, const void*, const void*, const T* val,
                            const Int* indx, const Int* ia, const void*, const T* x, T* y);
    using Multd = void(const Int* first, const Int* last, const Int* k, const T* a, const Int* ja, const Int* ia,
                       const T* b, const Int* jb, const Int* ib, T* c, const Int* ldc);
    using MultdTransposed = void(const Int* first, const Int* last, const Int* m, const Int* k, const T* a,
                                 const Int* ja, const Int* ia, const T* b, const Int* jb, const Int* ib, T* c,
                                 const Int* ldc);
    using Symmvs = void(const char* uplo, const Int* m, const T* val, const Int* indx, const Int* ia, const T* x, T* y);
    using GaussSeq = void(const Int* m, const Int* backward, const T* omega, const T* val, const Int* indx,
                          const Int* pntrb, const Int* pntre, const T* b, T* x);
    using InvdiagPar = void(const Int* first, const Int* last, const T* val, const Int* indx, const Int* pntrb,
                            const Int* pntre, T* d, Int* missing);
    using SortrowPar = void(const Int* first, const Int* last, T* val, Int* indx, const Int* pntrb, const Int* pntre);
    using SplitPar = void(const Int* first, const Int* last, const T* val, const Int* indx, const Int* pntrb,
                          const Int* pntre, T* lval, Int* lindx, Int* lpntr, T* uval, Int* uindx, Int* upntr, T* d);
};
template <class Int, class T>
struct Calls<Format::coo, Int, T> : Signatures<Int, T, const T*, const Int*, const Int*, const Int*> {
};
template <class Int, class T>
struct Calls<Format::bsr, Int, T> : Signatures<Int, T, const Int*, const T*, const Int*, const Int*, const Int*> {
};
template <class Int, class T>
struct Calls<Format::bsc, Int, T> : Signatures<Int, T, const Int*, const T*, const Int*, const Int*, const Int*> {
};
template <class Int, class T>
struct Calls<Format::dia, Int, T> : Signatures<Int, T, const T*, const Int*, const Int*, const Int*> {
    using MvoutPar = void(const Int* first, const Int* last, const void*, const Int* m, const Int* n, const T* alpha,
                          const T* val, const Int* lval, const Int* idiag, const Int* ndiag, const T* x, T* y,
                          const T* beta);
};
template <class Int, class T>
struct Calls<Format::sky, Int, T> : Signatures<Int, T, const T*, const Int*> {
};

} // namespace ork::spblas

#endif

/* SPDX-License-Identifier: MIT */
/* Many small matrices of one size at once: factorised, inverted, multiplied and solved with side by side, each register
   of the processor holding the same element of several matrices.

       int64_t format = ork_compact_format(), n = 6, count = 100000;
       double* a = aligned_alloc(64, ork_compact_dsize(n, n, format, count));   // matrices
       double* b = aligned_alloc(64, ork_compact_dsize(n, 1, format, count));   // right-hand sides
       ork_compact_dpack_strided(ORK_COMPACT_COLUMNS, n, n, matrices, n, n * n, a, n, format, count);
       ork_compact_dpack_strided(ORK_COMPACT_COLUMNS, n, 1, vectors, n, n, b, n, format, count);
       int64_t failed = ork_compact_dgesvnp(ORK_COMPACT_COLUMNS, n, 1, a, n, b, n, format, count);
       ork_compact_dunpack_strided(ORK_COMPACT_COLUMNS, n, 1, vectors, n, n, b, n, format, count);

   NAMES. ork_compact_<p><routine>, p: s float, d double, c ork_complex_float, z ork_complex_double. Integers and
   letters are values, and so are real scalars; complex ones are addresses.

   PACKS. A pack holds w matrices: 16, 32 or 64 bytes of real numbers by its format, 181, 182 or 183, so w is 2, 4, 8 in
   d and z, 4, 8, 16 in s and c. Element (i, j) of its matrices stands in w adjacent places, of a complex one w real
   parts before w imaginary ones. Elements follow by columns or by rows, lines (columns or rows) ld elements apart. The
   last pack need not be full: packing fills it with identity matrices, whose places are computed with and ignored.
   Packs may also be filled by the caller; then the places beyond the last matrix must hold numbers. Arrays of packs may
   stand anywhere; on a multiple of 64 they are fastest.

   RESULTS. 0: done. -i: argument i is illegal; that is reported once through xerbla_ (ork/blas.h), and nothing is
   touched. ORK_COMPACT_NO_MEMORY: nothing is touched. Factorisations do not stop at a pivot that can't be used (zero,
   or for potrf not positive), nor do they look for rows to exchange: getrfnp, potrf, gesvnp and posv give the number,
   from 1, of the first matrix that has none in its last place, where infinities and NaN end up. The others are
   factorised, whatever stands beside them, and the pivots on the diagonal tell which failed: the last is zero, infinite
   or NaN.

   BITS. A matrix gives the same bits in every format, place and number of threads. */
#ifndef ORK_LAPACK_COMPACT_H
#define ORK_LAPACK_COMPACT_H

#include <stdint.h>

#include "ork/types.h"

#define ORK_COMPACT_ROWS 101
#define ORK_COMPACT_COLUMNS 102
#define ORK_COMPACT_NO_MEMORY (-1010)

ORK_BEGIN_DECLS

/* The format that suits this processor. */
int64_t ork_compact_format(void);

#define ORK_COMPACT(routine) ork_compact_s##routine
#define ORK_ELEMENT float
#define ORK_REAL float
#define ORK_SCALAR float
#include "ork/lapack_compact_routines.h"

#define ORK_COMPACT(routine) ork_compact_d##routine
#define ORK_ELEMENT double
#define ORK_REAL double
#define ORK_SCALAR double
#include "ork/lapack_compact_routines.h"

#define ORK_COMPACT(routine) ork_compact_c##routine
#define ORK_ELEMENT ork_complex_float
#define ORK_REAL float
#define ORK_SCALAR const ork_complex_float*
#include "ork/lapack_compact_routines.h"

#define ORK_COMPACT(routine) ork_compact_z##routine
#define ORK_ELEMENT ork_complex_double
#define ORK_REAL double
#define ORK_SCALAR const ork_complex_double*
#include "ork/lapack_compact_routines.h"

ORK_END_DECLS

#endif

/* SPDX-License-Identifier: MIT */
/* Sparse matrices behind handles: analysed once, applied many times.

       const int32_t ia[] = {0, 2, 3, 5}, ja[] = {0, 2, 1, 0, 2}; //  [ 4 . 1 ]
       const double val[] = {4, 1, 2, 1, 3};                      //  [ . 2 . ]
       const ork_sparse_kind general = {ORK_SPBLAS_GENERAL};      //  [ 1 . 3 ]
       ork_sparse_matrix_t a;
       if (ork_sparse_d_create_csr_i4(&a, ORK_SPBLAS_BASE_0, 3, 3, ia, ia + 1, ja, val) != 0)
           puts(ork_sparse_last_error()->text);
       ork_sparse_set_mv_hint(a, ORK_SPBLAS_NO_TRANS, general, 1000);
       ork_sparse_optimize(a);
       ork_sparse_d_mv(ORK_SPBLAS_NO_TRANS, 1.0, a, general, x, 0.0, y); // as often as wanted
       ork_sparse_destroy(a);

   NAMES. ork_sparse_<letter>_<routine>, and with an end of _i4 or _i8 where arrays of indices are handed over, which
   have 32 or 64 bits then:

       letter    s float, d double, c ork_complex_float, z ork_complex_double

   What knows no numbers, ork_sparse_destroy say, has no letter. Real scalars are values, complex ones addresses. The
   letter must be that of the handle.

   MATRICES. Created from csr, csc, coo or square blocks (bsr). The arrays stay the caller's, are not copied and must
   live as long as the handle; results of conversions, sums and products own theirs. Row and column numbers count from
   the base, 0 or 1. Rows of csr and bsr may have any order of columns, and empty rows and repeated places, which add
   up in products; solves and smoothers want what they say.

       csr  rows_start, rows_end, columns, values     Row i holds values[k] in column columns[k] for
                                                      rows_start[i] - base <= k < rows_end[i] - base. Rows stand in
                                                      their order and may have gaps between them:
                                                      base <= rows_start[0] <= rows_end[0] <= rows_start[1] ...
                                                      Of the form with one pointer array pass ia and ia + 1.
       csc  columns_start, columns_end, rows, values  The same by columns.
       coo  count, row_index, column_index, values    values[k] in row row_index[k] and column column_index[k].
       bsr  layout, block, ...                        csr of square blocks of order `block`: rows, columns and pointers
                                                      count blocks, and a block is block * block adjacent numbers,
                                                      row-major or column-major. Rows and columns of elements are
                                                      named in solves, set_value and update_values.

   All of it is looked at when the handle is made: an index out of range or a pointer that runs backwards is refused
   with its row and position.

   KINDS. What the matrix stands for, as in ork/spblas.h: in each call, so one handle may serve as several. Entries
   outside of the triangle that the kind names are ignored.

   HANDLES. A handle is not a pointer that may be followed. One that was destroyed, and what never was one, are refused;
   only one that another thread destroys while it is in use is not. Any number of threads may apply a handle at once;
   hints, optimize, values and destroy want it for themselves. An optimised handle may hold copies of the values, and
   one that has solved does not look for zeros on the diagonal again: change values by update_values or set_value, or
   call optimize after changing your arrays.

   ERRORS. Every function returns an ork_sparse_status; on failure outputs are as they were and the handle is usable.
   Nothing is printed.

   THREADS. The same calls with the same number of threads give the same bits. */
#ifndef ORK_SPARSE_H
#define ORK_SPARSE_H

#include "ork/spblas.h"

ORK_BEGIN_DECLS

typedef struct ork_sparse_handle* ork_sparse_matrix_t;

/* What a matrix stands for. What is left out is 0, which is a general one. */
typedef struct ork_sparse_kind {
    ork_spblas_type type;
    ork_spblas_uplo uplo; /* ignored for general and diagonal */
    ork_spblas_diag diag; /* ignored for general and skew */
} ork_sparse_kind;

enum ork_sparse_status {
    ORK_SPARSE_SUCCESS = 0,
    ORK_SPARSE_INVALID_ARGUMENT = 1,
    ORK_SPARSE_INVALID_STRUCTURE = 2,
    ORK_SPARSE_NO_MEMORY = 3,
    ORK_SPARSE_NOT_A_HANDLE = 4, /* never was one, or is destroyed */
    ORK_SPARSE_MISMATCH = 5,     /* precision, width or size of a handle does not fit the call or the other handle */
    ORK_SPARSE_NOT_SUPPORTED = 6 /* this format, kind or operation has no such routine */
};

/* As in ork/spblas.h; the texts begin with names of this interface. */
typedef ork_spblas_error ork_sparse_error;

/* The last failure of the calling thread here, until its next one. Never null. */
const ork_sparse_error* ork_sparse_last_error(void);

/* In C++ the underlying type is fixed, so that a wrong value is an illegal argument and not undefined behaviour. */
#ifdef __cplusplus
#define ORK_ENUM : int
#else
#define ORK_ENUM
#endif
typedef enum ork_sparse_memory ORK_ENUM {
    ORK_SPARSE_MEMORY_NONE = 0, /* optimize keeps no copy of the matrix */
    ORK_SPARSE_MEMORY_FREE = 1  /* the default: it takes what it needs */
} ork_sparse_memory;
typedef enum ork_sparse_sweep ORK_ENUM {
    ORK_SPARSE_FORWARD = 1,
    ORK_SPARSE_BACKWARD = 2,
    ORK_SPARSE_SYMMETRIC = 3 /* forward, then backward */
} ork_sparse_sweep;
/* Of a product that is computed in steps: its structure may be kept while values change. */
typedef enum ork_sparse_stage ORK_ENUM {
    ORK_SPARSE_FULL = 1,              /* a new handle, structure and values */
    ORK_SPARSE_FULL_NO_VALUES = 2,    /* a new handle, structure, values 0 */
    ORK_SPARSE_COUNT = 3,             /* a new handle with row pointers alone; nothing but FINALIZE may follow */
    ORK_SPARSE_FINALIZE = 4,          /* of COUNT: columns and values; of a finished handle: its values anew */
    ORK_SPARSE_FINALIZE_NO_VALUES = 5 /* of COUNT: columns, values 0 */
} ork_sparse_stage;
#undef ORK_ENUM

/* New handles from handles. *result is written on success alone. */
int64_t ork_sparse_copy(ork_sparse_matrix_t a, ork_sparse_matrix_t* result); /* hints too, but no analysis */
/* op(A) in another format. Repeated places stay repeated (bsr: add up); csr and csc come out sorted within rows and
   columns unless A was of the same format and op is none. */
int64_t ork_sparse_convert_csr(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_matrix_t* result);
int64_t ork_sparse_convert_csc(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_matrix_t* result);
/* Rows and columns of A are filled up to a multiple of the block with zeros. */
int64_t ork_sparse_convert_bsr(ork_sparse_matrix_t a, int64_t block, ork_spblas_layout layout, ork_spblas_operation op,
                               ork_sparse_matrix_t* result);

/* Sorts the columns within each row (csc: rows within columns; coo: by rows, then columns) in the handle's arrays, the
   caller's too: they are written then. */
int64_t ork_sparse_order(ork_sparse_matrix_t a);
/* The handle, its analysis and the arrays that it owns. */
int64_t ork_sparse_destroy(ork_sparse_matrix_t a);

/* What will be called often, and how often: optimize weighs by it. A new number of calls replaces one of the same
   routine, op and kind; 0 takes it back. */
int64_t ork_sparse_set_mv_hint(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_kind kind, int64_t calls);
int64_t ork_sparse_set_dotmv_hint(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_kind kind, int64_t calls);
int64_t ork_sparse_set_mm_hint(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_kind kind,
                               ork_spblas_layout layout, int64_t columns, int64_t calls);
int64_t ork_sparse_set_sv_hint(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_kind kind, int64_t calls);
int64_t ork_sparse_set_sm_hint(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_kind kind,
                               ork_spblas_layout layout, int64_t columns, int64_t calls);
int64_t ork_sparse_set_symgs_hint(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_kind kind, int64_t calls);
int64_t ork_sparse_set_lu_smoother_hint(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_kind kind,
                                        int64_t calls);
int64_t ork_sparse_set_sorv_hint(ork_sparse_matrix_t a, ork_sparse_sweep sweep, ork_sparse_kind kind, int64_t calls);
int64_t ork_sparse_set_memory_hint(ork_sparse_matrix_t a, ork_sparse_memory policy);
/* Analyses the matrix for what the hints say; without hints for products with vectors. May be called again. */
int64_t ork_sparse_optimize(ork_sparse_matrix_t a);

/* What optimize chose, and why. */
enum { ORK_SPARSE_DESCRIPTION_SIZE = 400 };
typedef struct ork_sparse_description {
    char layout[24];                        /* of products with vectors: "csr", "slices", "diagonals", ... */
    int64_t slice_height;                   /* rows of a slice; 0: no slices */
    double padding;                         /* stored numbers for each entry; 1: no padding */
    double seconds;                         /* spent in optimize */
    int64_t bytes;                          /* kept by the analysis */
    char text[ORK_SPARSE_DESCRIPTION_SIZE]; /* for people: one line for each routine that was analysed */
} ork_sparse_description;
int64_t ork_sparse_describe(ork_sparse_matrix_t a, ork_sparse_description* description);

/* 1: optimize prints its description to the standard output; 0, the default: nothing. ORK_VERBOSE of the environment
   counts as well. For all threads; returns the former mode. */
int ork_sparse_set_verbose_mode(int mode);

/* Products of sparse matrices, of the precision and width that both have; blocks only with blocks of the same order.
   A result has the format of A, or csr for coo (syrk, sypr: for csc too), and rows whose columns ascend. */
/* C = op(A) B. */
int64_t ork_sparse_spmm(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_matrix_t b, ork_sparse_matrix_t* c);
/* C = opA(A) opB(B) in stages; *c is read by those that finish it. */
int64_t ork_sparse_sp2m(ork_spblas_operation op_a, ork_sparse_kind kind_a, ork_sparse_matrix_t a,
                        ork_spblas_operation op_b, ork_sparse_kind kind_b, ork_sparse_matrix_t b,
                        ork_sparse_stage stage, ork_sparse_matrix_t* c);
/* The upper triangle of C = A A^H (no transposition) or A^H A. */
int64_t ork_sparse_syrk(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_matrix_t* c);
/* The upper triangle of C = A B A^H (no transposition) or A^H B A, B symmetric or Hermitian. */
int64_t ork_sparse_sypr(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_matrix_t b, ork_sparse_kind kind_b,
                        ork_sparse_stage stage, ork_sparse_matrix_t* c);

/* The functions of each precision, and of each precision and width. */
#define ORK_NAME(routine) ork_sparse_s_##routine
#define ORK_ELEMENT float
#define ORK_SCALAR float
#include "ork/sparse_routines.h"

#define ORK_NAME(routine) ork_sparse_d_##routine
#define ORK_ELEMENT double
#define ORK_SCALAR double
#include "ork/sparse_routines.h"

#define ORK_NAME(routine) ork_sparse_c_##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#include "ork/sparse_routines.h"

#define ORK_NAME(routine) ork_sparse_z_##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#include "ork/sparse_routines.h"

ORK_END_DECLS

#endif

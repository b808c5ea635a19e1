// SPDX-License-Identifier: MIT
// The symbols of a system's BLAS, each a jump to the core's routine of the width that ORK_FORTRAN_PREFIX and
// ORK_CBLAS_PREFIX name. The slots are bound when the library is loaded.

#define CONCAT_(a, b) a##b
#define CONCAT(a, b) CONCAT_(a, b)

#define JUMP(symbol, target) \
    .globl symbol; .type symbol, @function; .balign 16; symbol: endbr64; jmp *target@GOTPCREL(%rip); .size symbol, . - symbol;
#define FORTRAN(routine) JUMP(routine##_, CONCAT(ORK_FORTRAN_PREFIX, routine))
#define CBLAS(routine) JUMP(cblas_##routine, CONCAT(ORK_CBLAS_PREFIX, routine))

    .text
#define ROUTINE(n, routine, ...) FORTRAN(routine) CBLAS(routine)
#define ORDERED_ROUTINE(n, routine, ...) FORTRAN(routine) CBLAS(routine)
#define FORTRAN_ROUTINE(n, routine, ...) FORTRAN(routine)
#define OWN_ROUTINE(...)
#define BATCH_ROUTINE(routine, ...) FORTRAN(routine) CBLAS(routine)
#define FUNCTION(n, routine, ...) FORTRAN(routine) FORTRAN(routine##sub) CBLAS(routine)
#define EXTENSION_FUNCTION(n, routine, ...) FORTRAN(routine) CBLAS(routine)
#define COMPLEX_FUNCTION(n, routine, ...) FORTRAN(routine) FORTRAN(routine##sub) CBLAS(routine##_sub)
#define EXTENSION_COMPLEX_FUNCTION(n, routine, ...) FORTRAN(routine) CBLAS(routine##_sub)
#include "blas/routines.inc"
#define ROUTINE(routine) FORTRAN(routine) CBLAS(routine)
#include "trans/routines.inc"
#define FORTRAN_HELPER(routine) FORTRAN(routine)
#define CBLAS_HELPER(routine) CBLAS(routine)
#include "blas/helpers.inc"

// Words that testers written for the reference look at; nobody sets them.
    .bss
    .balign 4
    .globl RowMajorStrg
    .type RowMajorStrg, @object
    .size RowMajorStrg, 4
RowMajorStrg:
    .zero 4
    .globl CBLAS_CallFromC
    .type CBLAS_CallFromC, @object
    .size CBLAS_CallFromC, 4
CBLAS_CallFromC:
    .zero 4

    .section .note.GNU-stack, "", @progbits

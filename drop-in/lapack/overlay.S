// SPDX-License-Identifier: MIT
// LAPACK's symbols for 32-bit integers, each a jump to the core's routine. The slots are bound when the library is
// loaded.

    .text
#define JUMP(symbol, target) \
    .globl symbol; .type symbol, @function; .balign 16; symbol: endbr64; jmp *target@GOTPCREL(%rip); .size symbol, . - symbol;
#define ROUTINE(n, routine, ...) JUMP(routine##_, ork_lapack_lp64_##routine)
#define OWN_ROUTINE(...)
#include "lapack/routines.inc"

    .section .note.GNU-stack, "", @progbits

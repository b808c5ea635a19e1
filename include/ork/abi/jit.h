/* SPDX-License-Identifier: MIT */
/* Recorded multiplies: an object that holds every argument of a gemm but the matrices, and the routine that runs it. */
#ifndef ORK_ABI_JIT_H
#define ORK_ABI_JIT_H

/* Status of the create calls. Nothing is generated: the object's routine is a general one. */
enum {
    ORK_JIT_STANDARD = 1, /* the object is ready */
    ORK_JIT_NO_MEMORY = 2 /* and its pointer null */
};

#endif

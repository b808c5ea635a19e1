/* SPDX-License-Identifier: MIT */
/* The GEMM kernel descriptor: what a kernel library tells a core about its blocked multiply. C <- alpha op(A) op(B) +
   beta C, all matrices column-major; A is packed into panels of `m_unit` rows already multiplied by alpha, B into
   panels of `n_unit` columns. Every size counts elements, every buffer size bytes. */
#ifndef ORK_ABI_GEMM_H
#define ORK_ABI_GEMM_H

#include <stdint.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

typedef struct ork_gemm_desc ork_gemm_desc;

/* The routines behind a row of the kernel table. Packing and kernel routines are typed by the precision they serve, so
   they stand here as plain code addresses; nx2/blas/gemm/routines.h has the typed view. */
typedef struct ork_gemm_routines {
    int64_t (*get_blks_size)(const int64_t* m, const int64_t* n, const int64_t* k, ork_gemm_desc* desc);
    int64_t (*get_bufs_size)(const int64_t* which, const int64_t* clip, const int64_t* m, const int64_t* n,
                             const int64_t* k, ork_gemm_desc* desc);
    int64_t (*get_bufs)(ork_gemm_desc* desc, void** base, void** a, void** b, void** c);
    void (*copyan)(void), (*copyat)(void), (*copyac)(void);
    void (*copybn)(void), (*copybt)(void), (*copybc)(void);
    void (*kernel)(void);
    void (*kernel_accumulate)(void), (*kernel_overwrite)(void);
} ork_gemm_routines;

typedef struct ork_gemm_buffer {
    int64_t bytes;
    int64_t panel_stride; /* elements from one packed panel to the next */
    int64_t alignment;    /* log2 of the alignment that the buffer wants, 12 */
} ork_gemm_buffer;

struct ork_gemm_desc {
    uint32_t index; /* row of the kernel table */
    uint64_t flags;
    int64_t mb, nb, kb; /* block sizes; 0 until fixed */
    int64_t m_unit, n_unit, k_unit;
    int64_t parameters[3];
    int64_t c_factor;
    ork_gemm_routines routines;
    ork_gemm_buffer a, b;
    int64_t c_bytes, c_alignment;
};

/* A row of the kernel table: constant, in the order in which the fields are read. */
typedef struct ork_gemm_row {
    int64_t m_unit, n_unit, k_unit, c_factor;
    int64_t parameters[3];
    uint64_t flags;
    ork_gemm_routines routines;
} ork_gemm_row;

/* Selectors of get_bufs_size. */
enum {
    ORK_GEMM_BUFS_ALL = 100,
    ORK_GEMM_BUFS_A = 101,
    ORK_GEMM_BUFS_B = 102,
    ORK_GEMM_BUFS_AB = 103,
    ORK_GEMM_BUFS_BC = 104,
    ORK_GEMM_BUFS_AC = 105,
    ORK_GEMM_BUFS_C = 106,
    ORK_GEMM_CLIP_TO_PROBLEM = 107,
    ORK_GEMM_CLIP_NONE = 108
};

ORK_END_DECLS

#endif

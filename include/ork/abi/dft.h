/* SPDX-License-Identifier: MIT */
/* The transform node and the kernel entries of Fourier transforms: what a core and a kernel library share.

   A descriptor is a list of nodes, one a dimension; the head carries what concerns the whole descriptor. The core fills
   in what its user set and calls the commit of the kernel library, which plans every dimension, divides the work into
   stages and stores the entries that compute. A stage is a number of independent units, so a core may run the units of
   one stage on several threads; the bits of a result don't depend on how units were divided.

   Lengths, strides and distances are counted in elements of their array: complex numbers for interleaved complex data,
   real numbers for real and split data. "Input" and "output" are those of the forward transform, also where a field
   serves the backward one, which reads the output layout and writes the input layout. */
#ifndef ORK_ABI_DFT_H
#define ORK_ABI_DFT_H

#include <stdint.h>

#include "ork/dft.h"
#include "ork/types.h"

ORK_BEGIN_DECLS

/* The values of a node's fields are those of the public descriptor interface. */

/* Status of creation, commit and compute: error classes of the public interface. */
enum {
    ORK_DFT_OK = 0,
    ORK_DFT_NO_MEMORY = 1,
    ORK_DFT_INCONSISTENT = 3,  /* the node's precision or domain is not the entry's */
    ORK_DFT_NOT_PLANNED = 5,   /* compute without a plan */
    ORK_DFT_UNSUPPORTED = 6,   /* a packed format that the transform has not; a direction that the node can't take */
    ORK_DFT_NOT_APPLICABLE = 7 /* the batched plan does not apply; never leaves a commit */
};

/* Status of the signal primitives. */
enum { ORK_DFT_PRIMITIVE_LENGTH = -6, ORK_DFT_PRIMITIVE_NULL = -8 };

enum { ORK_DFT_FORWARD = 0, ORK_DFT_BACKWARD = 1 };

/* Most dimensions of a descriptor. */
enum { ORK_DFT_MOST_DIMENSIONS = 7 };

typedef struct ork_dft_node ork_dft_node;

/* What a dimension's kernel is told beside its plan. */
typedef struct ork_dft_argument {
    double scale; /* multiplies every result unless exactly 1; a float's value for single precision */
    void* work;   /* the plan's work memory, 64-byte aligned, or null: then the kernel takes its own */
} ork_dft_argument;

typedef struct ork_dft_split {
    void *re, *im;
} ork_dft_split;

/* Transforms one vector of unit stride; interleaved numbers, or for the split pair ork_dft_split on both sides. In
   place when in and out are equal. `argument` is an ork_dft_argument, or null for scale 1; kernels of lengths 2 to 64
   ignore plan and argument and don't scale. Returns a status. */
typedef int32_t ork_dft_kernel(const void* in, void* out, const void* plan, void* argument);

/* The arrays of one call, as many as the node's input or output step says: {data}; {read, written}; split {re, im}, or
   {re read, im read, re written, im written}. A transform in place of real data has one array. */
typedef int32_t ork_dft_compute(ork_dft_node* node, void* const* arrays);
typedef int32_t ork_dft_compute_2d(ork_dft_node* node, void* const* arrays, int32_t direction);

/* Of one half spectrum of a real transform of length n. */
typedef void ork_dft_process(int64_t n, const void* in, void* out);

typedef struct ork_dft_call {
    void* const* arrays;
    void* shared;      /* shared_bytes of the node, 64-byte aligned: what one stage leaves to the next */
    int32_t direction; /* ORK_DFT_FORWARD or ORK_DFT_BACKWARD */
} ork_dft_call;

/* Runs units from <= unit < to of a stage on the calling thread. */
typedef struct ork_dft_stage {
    int64_t units;
    int32_t (*run)(const ork_dft_node* node, const ork_dft_call* call, const struct ork_dft_stage* stage, int64_t from,
                   int64_t to);
    int64_t argument[6]; /* the stage's own */
} ork_dft_stage;

/* Of one dimension; the head's `dimensions` points to `rank` of them. */
typedef struct ork_dft_dimension {
    int64_t length, input_stride, output_stride;
    int64_t reserved[2];
} ork_dft_dimension;

typedef struct ork_dft_scale_record {
    int64_t count; /* 1 */
    unsigned char value[32];
} ork_dft_scale_record;

typedef struct ork_dft_storage { /* copied as one block */
    int32_t complex_storage, conjugate_even_storage;
    int32_t real_storage, reserved;
} ork_dft_storage;

typedef struct ork_dft_domain { /* copied as one word */
    int32_t domain, precision;
} ork_dft_domain;

typedef struct ork_dft_scales { /* the commit derives the single ones, which single precision uses */
    double forward, backward;
    float forward_single, backward_single;
    int64_t reserved;
} ork_dft_scales;

/* Of the core. Word 6 equal to 1 asks for the alternative planner, which divides every long transform into stages;
   word 0 equal to 1 lets creation reuse a node handed in. */
typedef struct ork_dft_settings {
    int32_t word[16];
} ork_dft_settings;

/* The small-length batched plan of one dimension: entry i serves up to 2^i transforms at once. */
enum { ORK_DFT_BATCH_SIZES = 13 };
typedef struct ork_dft_batched {
    int64_t batch; /* transforms that are best done at once */
    int64_t work_bytes;
    int32_t sizes; /* entries in use */
    int32_t status;
    const void* forward[ORK_DFT_BATCH_SIZES];
    const void* backward[ORK_DFT_BATCH_SIZES];
} ork_dft_batched;

/* A vector of n = n1 * n2 numbers as a matrix of n1 rows and n2 columns:

       X[k1 + n1 k2] = sum over j2 of w_n2^(j2 k2) (w_n^(j2 k1) sum over j1 of w_n1^(j1 k1) x[j1 n2 + j2])

   Step 1-2 transforms columns and multiplies by w_n^(j2 k1); step 3 transforms rows of length n2. */
typedef struct ork_dft_four_step {
    int64_t n, n1, n2;
    int64_t columns, row_length;                      /* columns of step 1-2, numbers of a row of step 3: both n2 */
    const void *column_plan, *row_plan;               /* of lengths n1 and n2 */
    ork_dft_kernel *column_kernel[2], *row_kernel[2]; /* by direction; run in place, unscaled */
    const void* twiddles;
    int32_t mode; /* 0 in place, transposed at the end; 1 not in place; 2 in place through the call's shared memory */
    int32_t placement, precision, reserved;
} ork_dft_four_step;

struct ork_dft_node {
    /* Set last by the commit. */
    ork_dft_compute *forward, *backward;
    int64_t input_step, output_step;
    int32_t status;
    uint8_t flags; /* ORK_DFT_FLAG_... */
    uint8_t padding[3];

    /* Set by creation and by the core. */
    ork_dft_domain domain;
    int32_t rank;
    int32_t placement;
    ork_dft_storage storage;
    int32_t packed_format;
    int32_t workspace;
    int64_t option;
    int64_t transforms;
    int64_t input_distance, output_distance;
    int64_t input_offset, output_offset; /* elements from the array's begin to the first number */
    ork_dft_scales scales;
    ork_dft_dimension* dimensions;
    ork_dft_scale_record* scale_records;
    const void* backends; /* the list that the creation wrapper stored */

    /* This dimension. */
    int64_t index;
    int64_t length;
    int64_t stride[2]; /* input, output; in place the first counts */
    int64_t size;      /* numbers of a whole transform */
    ork_dft_node* next;

    /* The plan of this dimension. */
    int32_t general; /* 1 when the general planner made it */
    int32_t engine;  /* ORK_DFT_ENGINE_... */
    ork_dft_kernel *forward_kernel, *backward_kernel;
    void* plan;
    ork_dft_batched* batched;
    const void* batched_engine;
    ork_dft_four_step* four_step;
    int64_t workspace_bytes; /* of the head: the most of all dimensions */

    /* Entries for two dimensions and for real data. */
    ork_dft_compute_2d* two_d;                         /* complex */
    ork_dft_compute *two_d_forward, *two_d_backward;   /* real */
    ork_dft_process *preprocess, *postprocess;         /* between the node's layout of a spectrum and the complex one */
    ork_dft_process *repack_forward, *repack_backward; /* the same of the complex layout itself */

    /* How a core runs it on several threads: stages in order, for each direction. */
    int32_t stages[2];
    ork_dft_stage* stage[2];
    int64_t shared_bytes;

    int32_t thread_limit, threads; /* the user's limit; the current count */
    int64_t dispatch;              /* handed to the set-up check */
    ork_dft_settings* settings;
    int32_t (*free)(ork_dft_node* node); /* releases the plans of all dimensions and the status; the node stays */
};

enum {
    ORK_DFT_FLAG_FOUR_STEP = 4, /* one transform, by the four-step kernels */
    ORK_DFT_FLAG_SINGLE = 8,    /* one transform of unit stride by the head's kernel pair: no stage is needed */
    ORK_DFT_FLAG_PLANNED = 16,  /* plans and stages are there */
    ORK_DFT_FLAG_UNSCALED = 32, /* the kernel pair ignores plan, argument and scale */
    ORK_DFT_FLAG_BORROWED = 64, /* the plan is that of an earlier dimension of the same length */
    ORK_DFT_FLAG_PLAIN = 128    /* single, of adjacent parts from the begin of the arrays, both scales 1 */
};

/* What a commit decided for a dimension; for information. */
enum {
    ORK_DFT_ENGINE_NONE,
    ORK_DFT_ENGINE_LENGTH, /* a kernel of the very length */
    ORK_DFT_ENGINE_POWER_OF_TWO,
    ORK_DFT_ENGINE_MIXED, /* mixed radix, Rader or Bluestein */
    ORK_DFT_ENGINE_BATCHED,
    ORK_DFT_ENGINE_SPLIT,
    ORK_DFT_ENGINE_FOUR_STEP,
    ORK_DFT_ENGINE_ALTERNATIVE,
    ORK_DFT_ENGINE_REAL,
    ORK_DFT_ENGINE_SMALL_REAL
};

/* Kernel entries, ork_dft_nx2_<name>; R is float for s and c, double for d and z.

   Creation: 0, or ORK_DFT_NO_MEMORY with *node as it was. The node has every default set: dense strides, scales 1, in
   place, interleaved, one transform, one thread. */
typedef int64_t ork_dft_create_1d(ork_dft_node** node, int64_t length, ork_dft_settings* settings);
typedef int64_t ork_dft_create_md(ork_dft_node** node, int64_t rank, const int64_t* lengths,
                                  ork_dft_settings* settings);
typedef int64_t ork_dft_set_backends(ork_dft_node* node);
int64_t ork_dft_nx2_dfti_create_node(ork_dft_node** node, int32_t precision, int32_t domain, int64_t rank,
                                     const int64_t* lengths, ork_dft_settings* settings);
ork_dft_create_1d ork_dft_nx2_dfti_create_sc1d, ork_dft_nx2_dfti_create_sr1d, ork_dft_nx2_dfti_create_dc1d,
    ork_dft_nx2_dfti_create_dr1d;
ork_dft_create_md ork_dft_nx2_dfti_create_scmd, ork_dft_nx2_dfti_create_srmd, ork_dft_nx2_dfti_create_dcmd,
    ork_dft_nx2_dfti_create_drmd;
ork_dft_set_backends ork_dft_nx2_dfti_set_bkdlist_sc1d, ork_dft_nx2_dfti_set_bkdlist_sr1d,
    ork_dft_nx2_dfti_set_bkdlist_dc1d, ork_dft_nx2_dfti_set_bkdlist_dr1d, ork_dft_nx2_dfti_set_bkdlist_scmd,
    ork_dft_nx2_dfti_set_bkdlist_srmd, ork_dft_nx2_dfti_set_bkdlist_dcmd, ork_dft_nx2_dfti_set_bkdlist_drmd;
/* Releases plans and node, and clears *node; a null node is fine. */
int64_t ork_dft_nx2_dfti_free_node(ork_dft_node** node);

/* Commit: plans every dimension and returns a status. On success the head's status is ORK_DFT_COMMITTED. On failure it
   is not, nothing of a plan is left, and thread_limit and threads are what they were. An older plan is released first.
   A single transform of one dimension with threads other than 1 is planned by the core's ..._omp commit below, which
   may set `threads` and calls ork_dft_nx2_plan_node; without a plan the node computes nothing but the status
   ORK_DFT_NOT_PLANNED. With word 6 of the settings, forward, backward and the steps are left null and 0: the core runs
   the stages. */
typedef int32_t ork_dft_commit(ork_dft_node* node);
ork_dft_commit ork_dft_nx2_commit_descriptor_core_s_c2c_1d, ork_dft_nx2_commit_descriptor_core_s_c2c_md,
    ork_dft_nx2_commit_descriptor_core_s_r2c_1d, ork_dft_nx2_commit_descriptor_core_s_r2c_md,
    ork_dft_nx2_commit_descriptor_core_d_c2c_1d, ork_dft_nx2_commit_descriptor_core_d_c2c_md,
    ork_dft_nx2_commit_descriptor_core_d_r2c_1d, ork_dft_nx2_commit_descriptor_core_d_r2c_md;

ork_dft_commit ork_dft_nx2_plan_node;

/* What a commit would choose for a dimension of complex data, and from what. */
typedef struct ork_dft_facts {
    int64_t index, length, stride[2]; /* of the dimension: input, output */
    int64_t head_stride[2], size;     /* of the head */
    int64_t transforms;
    int32_t rank, placement, complex_storage, workspace;
    int32_t alternative;       /* word 6 of the settings is 1 */
    int32_t four_step_refused; /* has been tried in vain */
    int32_t batched_refused;
    int32_t reserved;
} ork_dft_facts;
int32_t ork_dft_nx2_choose_engine(const ork_dft_facts* facts); /* ORK_DFT_ENGINE_... */
/* 1 when length, stride, place and storage admit the small-length batched plan; powers of two never come to it. */
int32_t ork_dft_nx2_batched_applies(const ork_dft_facts* facts);
/* Transforms that are best done at once, for the relevant stride. */
int64_t ork_dft_nx2_batch_of_length(int64_t length, int64_t stride);
/* n = n1 * n2 with n1 <= n2 as the four-step engine splits it: 0, or ORK_DFT_NOT_APPLICABLE for a factor too large. */
int32_t ork_dft_nx2_four_step_factors(int32_t precision, int64_t n, int64_t* n1, int64_t* n2);

/* Whole descriptors on the calling thread: forward and backward, in place and not; z double, c single precision. Of
   complex and real data alike: all run the node's stages, but for a single transform of unit stride. */
ork_dft_compute ork_dft_nx2_xzforward, ork_dft_nx2_xzbackward, ork_dft_nx2_xzforward_out, ork_dft_nx2_xzbackward_out,
    ork_dft_nx2_xcforward, ork_dft_nx2_xcbackward, ork_dft_nx2_xcforward_out, ork_dft_nx2_xcbackward_out;
/* Two dimensions, complex; and real: packed storage (dz, zd; sc, cs) or complex (dzz, zzd; scc, ccs). */
ork_dft_compute_2d ork_dft_nx2_xzdft2d, ork_dft_nx2_xzdft2d_out, ork_dft_nx2_xcdft2d, ork_dft_nx2_xcdft2d_out;
ork_dft_compute ork_dft_nx2_xdzdft2d, ork_dft_nx2_xzddft2d, ork_dft_nx2_xdzzdft2d, ork_dft_nx2_xzzddft2d,
    ork_dft_nx2_xscdft2d, ork_dft_nx2_xcsdft2d, ork_dft_nx2_xsccdft2d, ork_dft_nx2_xccsdft2d;
/* All stages of a planned node in order on the calling thread; shared memory comes from ork_dft_ufxMalloc. */
int32_t ork_dft_nx2_run_stages(const ork_dft_node* node, void* const* arrays, int32_t direction);

/* The four-step engine. init plans the head's one dimension: 0 and node->four_step, ORK_DFT_NO_MEMORY, or
   ORK_DFT_NOT_APPLICABLE. Steps: columns or rows first <= i < first + count, first a multiple of 8, in groups of 8
   through a buffer; what stands between them is stated with `mode`. Step 1-2 of mode 0 writes where it reads, otherwise
   column j2 becomes the contiguous row j2 of `out`; it goes on after a kernel's failure and returns the OR of all
   statuses. Step 3 returns the first that is not 0. `in` and `out` are interleaved vectors of n numbers. */
typedef int32_t ork_dft_step_1_2(const ork_dft_four_step* plan, int32_t direction, const void* in, void* out,
                                 int64_t first, int64_t count);
typedef int32_t ork_dft_step_3(const ork_dft_four_step* plan, int32_t direction, double scale, const void* in,
                               void* out, int64_t first, int64_t count);
ork_dft_commit ork_dft_nx2_xz_init_data_1d_via_2d, ork_dft_nx2_xc_init_data_1d_via_2d;
ork_dft_step_1_2 ork_dft_nx2_xz_4step_1_2, ork_dft_nx2_xc_4step_1_2;
ork_dft_step_3 ork_dft_nx2_xz_4step_3, ork_dft_nx2_xc_4step_3;

/* Copies with increments, and real multiples of complex vectors; a negative increment begins at the far end. */
void ork_dft_nx2_dft_scopy(int64_t n, const float* x, int64_t incx, float* y, int64_t incy);
void ork_dft_nx2_dft_dcopy(int64_t n, const double* x, int64_t incx, double* y, int64_t incy);
void ork_dft_nx2_dft_ccopy(int64_t n, const ork_complex_float* x, int64_t incx, ork_complex_float* y, int64_t incy);
void ork_dft_nx2_dft_zcopy(int64_t n, const ork_complex_double* x, int64_t incx, ork_complex_double* y, int64_t incy);
void ork_dft_nx2_dft_csscal(int64_t n, float alpha, ork_complex_float* x, int64_t incx);
void ork_dft_nx2_dft_zdscal(int64_t n, double alpha, ork_complex_double* x, int64_t incx);

/* cos(pi x) and sin(pi x): the core's functions of the product in double precision. */
float ork_dft_nx2_dft_scospi(float x);
float ork_dft_nx2_dft_ssinpi(float x);
double ork_dft_nx2_dft_dcospi(double x);
double ork_dft_nx2_dft_dsinpi(double x);

/* What a core does to commit a descriptor whose threads it chooses itself: calls ork_dft_nx2_plan_node. */
ork_dft_commit ork_dft_commit_node_s_c2c_1d_omp, ork_dft_commit_node_s_c2c_md_omp, ork_dft_commit_node_s_r2c_1d_omp,
    ork_dft_commit_node_s_r2c_md_omp, ork_dft_commit_node_d_c2c_1d_omp, ork_dft_commit_node_d_c2c_md_omp,
    ork_dft_commit_node_d_r2c_1d_omp, ork_dft_commit_node_d_r2c_md_omp;
/* The stages of a planned node on up to node->threads threads of the core. */
ork_dft_compute ork_dft_compute_forward_par, ork_dft_compute_backward_par;
/* Work memory of kernels, 64-byte aligned; null when there is none. */
void* ork_dft_ufxMalloc(int64_t bytes);
void ork_dft_ufxFree(void* memory);

ORK_END_DECLS

#endif

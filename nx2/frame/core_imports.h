// SPDX-License-Identifier: MIT
// Every routine that this library takes from the core, and nothing else: a test compares the library's undefined
// symbols with the IMPORT lines below. Each is bound on its first call through a jump slot of its own, so the library
// loads and computes without a core. Never take an import's address (in a table, say): that would be resolved at load
// time.
#pragma once

#include "ork/abi/core_blas.h"
#include "ork/abi/core_lapack.h"
#include "ork/abi/core_trans.h"
#include "ork/abi/dft.h"
#include "ork/abi/services.h"

// The name of one import; the declarations themselves are in ork/abi/.
#define IMPORT(name)

// Memory and processor, for the blocked multiply
IMPORT(ork_serv_allocate)
IMPORT(ork_serv_deallocate)
IMPORT(ork_serv_get_microarchitecture)
IMPORT(ork_serv_cache_info)

// Memory for objects that callers keep (blas/gemm/recorded.h)
IMPORT(ork_serv_malloc)
IMPORT(ork_serv_free)
IMPORT(ork_serv_check_ptr_and_warn)

// Transforms: nodes and plans, work memory, the cache in which passes stay, sines and cosines, and the commit of
// descriptors whose threads the core chooses
IMPORT(ork_serv_calloc)
IMPORT(ork_serv_get_cache_size)
IMPORT(ork_serv_libm_cos)
IMPORT(ork_serv_libm_cosf)
IMPORT(ork_serv_libm_sin)
IMPORT(ork_serv_libm_sinf)
IMPORT(ork_dft_ufxMalloc)
IMPORT(ork_dft_ufxFree)
IMPORT(ork_dft_commit_node_s_c2c_1d_omp)
IMPORT(ork_dft_commit_node_s_c2c_md_omp)
IMPORT(ork_dft_commit_node_s_r2c_1d_omp)
IMPORT(ork_dft_commit_node_s_r2c_md_omp)
IMPORT(ork_dft_commit_node_d_c2c_1d_omp)
IMPORT(ork_dft_commit_node_d_c2c_md_omp)
IMPORT(ork_dft_commit_node_d_r2c_1d_omp)
IMPORT(ork_dft_commit_node_d_r2c_md_omp)

// The reproducibility switch, which chooses between loops in level 2
IMPORT(ork_serv_cbwr_get)

// Triangular solves take what is beside a block from it by the core's gemv, which may use threads
IMPORT(ork_blas_sgemv)
IMPORT(ork_blas_dgemv)
IMPORT(ork_blas_cgemv)
IMPORT(ork_blas_zgemv)

// The safe minimum, which decides whether a pivot's reciprocal may be used; what the processor has, which decides
// whether compact matrices are in its own format
IMPORT(ork_lapack_slamch)
IMPORT(ork_lapack_dlamch)
IMPORT(ork_serv_cpu_detect)

// Targets of forwarding entries (frame/forward.cpp)
IMPORT(ork_conv_copytask)
IMPORT(ork_conv_deletetask)
IMPORT(ork_conv_edittask)
IMPORT(ork_conv_exec)
IMPORT(ork_conv_execx)
IMPORT(ork_conv_newtask)
IMPORT(ork_conv_newtaskx)

// Drivers of matrix copy, transposition and addition, which call back (ork/abi/core_trans.h)
IMPORT(ork_trans_ork_cimatcopy_batch_par)
IMPORT(ork_trans_ork_cimatcopy_batch_strided_par)
IMPORT(ork_trans_ork_cimatcopy_square_t_par)
IMPORT(ork_trans_ork_comatadd_batch_strided_par)
IMPORT(ork_trans_ork_comatadd_par)
IMPORT(ork_trans_ork_comatcopy2_par)
IMPORT(ork_trans_ork_comatcopy_batch_par)
IMPORT(ork_trans_ork_comatcopy_batch_strided_par)
IMPORT(ork_trans_ork_dimatcopy_batch_par)
IMPORT(ork_trans_ork_dimatcopy_batch_strided_par)
IMPORT(ork_trans_ork_dimatcopy_square_t_par)
IMPORT(ork_trans_ork_domatadd_batch_strided_par)
IMPORT(ork_trans_ork_domatadd_par)
IMPORT(ork_trans_ork_domatcopy2_par)
IMPORT(ork_trans_ork_domatcopy_batch_par)
IMPORT(ork_trans_ork_domatcopy_batch_strided_par)
IMPORT(ork_trans_ork_simatcopy_batch_par)
IMPORT(ork_trans_ork_simatcopy_batch_strided_par)
IMPORT(ork_trans_ork_simatcopy_square_t_par)
IMPORT(ork_trans_ork_somatadd_batch_strided_par)
IMPORT(ork_trans_ork_somatadd_par)
IMPORT(ork_trans_ork_somatcopy2_par)
IMPORT(ork_trans_ork_somatcopy_batch_par)
IMPORT(ork_trans_ork_somatcopy_batch_strided_par)
IMPORT(ork_trans_ork_zimatcopy_batch_par)
IMPORT(ork_trans_ork_zimatcopy_batch_strided_par)
IMPORT(ork_trans_ork_zimatcopy_square_t_par)
IMPORT(ork_trans_ork_zomatadd_batch_strided_par)
IMPORT(ork_trans_ork_zomatadd_par)
IMPORT(ork_trans_ork_zomatcopy2_par)
IMPORT(ork_trans_ork_zomatcopy_batch_par)
IMPORT(ork_trans_ork_zomatcopy_batch_strided_par)

#undef IMPORT

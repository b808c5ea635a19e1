// SPDX-License-Identifier: MIT
// SuiteSparse:GraphBLAS, opened at run time. Its objects are pointers; its types, semirings and descriptors are
// variables of the library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "peers/libraries.h"

namespace ork::peers {

// Of GraphBLAS.h, version 7.
struct GraphBlas {
    using Object = void*;
    enum { compressed_rows = 0, blocking = 1, materialize = 1, threads_option = 5 };

    std::string file;
    Object fp32 = nullptr, fp64 = nullptr, plus_times_fp32 = nullptr, plus_times_fp64 = nullptr, plus_fp32 = nullptr,
           plus_fp64 = nullptr, transpose_first = nullptr;
    int (*matrix_import_fp32)(Object* a, Object type, uint64_t rows, uint64_t columns, const uint64_t* ptr,
                              const uint64_t* col, const float* val, uint64_t ptr_length, uint64_t col_length,
                              uint64_t val_length, int format) = nullptr;
    int (*matrix_import_fp64)(Object* a, Object type, uint64_t rows, uint64_t columns, const uint64_t* ptr,
                              const uint64_t* col, const double* val, uint64_t ptr_length, uint64_t col_length,
                              uint64_t val_length, int format) = nullptr;
    int (*matrix_new)(Object* a, Object type, uint64_t rows, uint64_t columns) = nullptr;
    int (*matrix_wait)(Object a, int mode) = nullptr;
    int (*matrix_free)(Object* a) = nullptr;
    int (*vector_new)(Object* v, Object type, uint64_t n) = nullptr;
    int (*vector_free)(Object* v) = nullptr;
    int (*vector_build_fp32)(Object v, const uint64_t* index, const float* value, uint64_t n, Object plus) = nullptr;
    int (*vector_build_fp64)(Object v, const uint64_t* index, const double* value, uint64_t n, Object plus) = nullptr;
    int (*vector_extract_fp32)(uint64_t* index, float* value, uint64_t* n, Object v) = nullptr;
    int (*vector_extract_fp64)(uint64_t* index, double* value, uint64_t* n, Object v) = nullptr;
    int (*mxv)(Object w, Object mask, Object accumulator, Object semiring, Object a, Object u,
               Object descriptor) = nullptr;
    int (*mxm)(Object c, Object mask, Object accumulator, Object semiring, Object a, Object b,
               Object descriptor) = nullptr;

    // A of compressed rows, complete. Null when the library refuses.
    Object matrix(bool single, int rows, int columns, const int* ptr, const int* col, const void* val) const;
};

// Started and held to one thread; null when there is none, and `notes` says so. One for the process.
const GraphBlas* open_graphblas(std::vector<std::string>& notes);

// y = A x and y = A' x in objects of its own.
std::unique_ptr<SparseOperation> graphblas_sparse(const GraphBlas& api, const SparseOperands& o);

} // namespace ork::peers

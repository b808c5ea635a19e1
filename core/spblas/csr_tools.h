// SPDX-License-Identifier: MIT
// What is there for compressed rows alone: the kernels without a grammar in their names. Each returns an
// ork_spblas_status; ork/spblas_routines.h says what they do.
#pragma once

#include "spblas/call.h"

namespace ork::spblas {

std::int64_t product_in_three_arrays(Variant v, std::int64_t m, std::int64_t n, const Matrix& a, const void* x,
                                     void* y);
std::int64_t symmetric_in_three_arrays(Variant v, int uplo, std::int64_t m, const Matrix& a, const void* x, void* y);
std::int64_t dense_product(Variant v, int op, int base, std::int64_t m, std::int64_t n, std::int64_t k, const Matrix& a,
                           const Matrix& b, void* c, std::int64_t ldc);

// Writes into the arrays of the matrix.
std::int64_t sort_rows(Variant v, int base, std::int64_t m, std::int64_t n, const Matrix& a);
std::int64_t invert_diagonal(Variant v, int base, std::int64_t m, const Matrix& a, void* d, std::int64_t* missing);
std::int64_t gauss_sweep(Variant v, int base, std::int64_t m, std::int64_t backward, const void* omega, const Matrix& a,
                         const void* b, void* x);

template <class Int>
struct Triangles {
    void* lval;
    Int *lindx, *lpntr;
    void* uval;
    Int *uindx, *upntr;
    void* d;
};
template <class Int>
std::int64_t split_matrix(Variant v, int base, std::int64_t m, const Matrix& a, const Triangles<Int>& parts);

} // namespace ork::spblas

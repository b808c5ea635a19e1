// SPDX-License-Identifier: MIT
// Eigen behind Fortran BLAS signatures, so that it is called and checked as every other peer; and its transforms.
#pragma once

#include "peers/fft.h"

namespace ork::peers {

const char* eigen_version();                   // null when ork was built without Eigen
void* eigen_symbol(const char* symbol);        // address for a Fortran BLAS name, null when there is none
void* eigen_matrix_symbol(const char* symbol); // those of levels 2 and 3 but gemm; a part of eigen_symbol

// Null for several dimensions and in place, which Eigen's module has not.
std::unique_ptr<Transform> eigen_transform(const FftCase& c, void* in, void* out);

} // namespace ork::peers

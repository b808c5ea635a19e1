// SPDX-License-Identifier: MIT
// Eigen behind Fortran BLAS signatures, so that it is called and checked as every other peer.
#pragma once

namespace ork::peers {

const char* eigen_version();                   // null when ork was built without Eigen
void* eigen_symbol(const char* symbol);        // address for a Fortran BLAS name, null when there is none
void* eigen_matrix_symbol(const char* symbol); // those of levels 2 and 3 but gemm; a part of eigen_symbol

} // namespace ork::peers

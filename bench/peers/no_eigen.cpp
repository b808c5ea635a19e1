// SPDX-License-Identifier: MIT
#include "peers/eigen.h"
#include "peers/lapack.h"
#include "peers/sparse.h"
#include "peers/spgemm.h"
#include "peers/trans.h"

namespace ork::peers {

const char* eigen_version() { return nullptr; }
void* eigen_symbol(const char*) { return nullptr; }
void* eigen_lapack_symbol(const std::string&, int) { return nullptr; }
void* eigen_trans_symbol(const std::string&) { return nullptr; }
std::unique_ptr<Transform> eigen_transform(const FftCase&, void*, void*) { return nullptr; }
std::unique_ptr<SparseOperation> eigen_sparse(const SparseOperands&) { return nullptr; }
std::unique_ptr<Spgemm> eigen_spgemm(const CsrMatrix&) { return nullptr; }

} // namespace ork::peers

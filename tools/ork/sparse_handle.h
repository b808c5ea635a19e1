// SPDX-License-Identifier: MIT
// A sparse matrix behind a handle of ork/sparse.h for as long as the object lives; the arrays stay where they are.
#pragma once

#include <stdexcept>
#include <utility>

#include "ork/sparse.h"
#include "peers/sparse.h"

namespace ork::tool {

inline void require_sparse(int64_t status)
{
    if (status != ORK_SPARSE_SUCCESS) throw std::runtime_error(ork_sparse_last_error()->text);
}

class SparseHandle {
public:
    explicit SparseHandle(const peers::CsrMatrix& a)
    {
        require_sparse(ork_sparse_d_create_csr_i4(&handle_, ORK_SPBLAS_BASE_0, a.rows, a.columns, a.ptr.data(),
                                                  a.ptr.data() + 1, a.col.data(), a.val.data()));
    }
    explicit SparseHandle(ork_sparse_matrix_t handle) : handle_(handle) {}
    ~SparseHandle() { ork_sparse_destroy(handle_); }
    SparseHandle(const SparseHandle&) = delete;
    SparseHandle& operator=(const SparseHandle&) = delete;

    ork_sparse_matrix_t get() const { return handle_; }
    ork_sparse_description describe() const
    {
        ork_sparse_description d{};
        require_sparse(ork_sparse_describe(handle_, &d));
        return d;
    }

private:
    ork_sparse_matrix_t handle_ = nullptr;
};

} // namespace ork::tool

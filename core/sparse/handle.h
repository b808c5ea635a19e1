// SPDX-License-Identifier: MIT
// From handles to matrices, and the checks that every function begins with.
//
// HOW A DRIVER IS WRITTEN. A public function is a macro's member for each precision that hands addresses to one
// function with a Routine; that one checks in the order of the arguments, each failure being recorded where it is
// found, and calls kernels (kernels.h):
//
//     std::int64_t multiply(const Routine& r, int op, const void* alpha, ork_sparse_matrix_t handle,
//                           const ork_sparse_kind& kind, const void* x, const void* beta, void* y)
//     {
//         Checks check(r);
//         check.operation("op", op);
//         check.given("alpha", alpha);
//         const Matrix* const a = check.handle("a", handle); // null once a check has failed
//         check.kind("kind", kind, a);
//         ... if (check.failed()) return check.status();
//         return with_type(r.precision, [&](auto t) { using T = decltype(t); ... });
//     }
//     MEMBER(letter, Element, Scalar), which ORK_SPARSE_PRECISIONS repeats for s d c z, is
//         ORK_EXPORT int64_t ork_sparse_##letter##_mv(ork_spblas_operation op, Scalar alpha, ...)
//         { return multiply({"mv", "op alpha a kind x beta y", #letter[0]}, op, address(alpha), a, ...); }
//
// Results that are new handles: make the Matrix (kernels do), then publish() it.
#pragma once

#include <cstdint>

#include "ork/abi/sparse.h"
#include "ork/sparse.h"
#include "sparse/error.h"
#include "sparse/precision.h"

#define ORK_SPARSE_PRECISIONS(MEMBER)                                                                                  \
    MEMBER(s, float, float)                                                                                            \
    MEMBER(d, double, double)                                                                                          \
    MEMBER(c, void, const void*)                                                                                       \
    MEMBER(z, void, const void*)

namespace ork::sparse {

inline const void* address(const float& scalar) { return &scalar; }
inline const void* address(const double& scalar) { return &scalar; }
inline const void* address(const void* scalar) { return scalar; }

// The matrix behind a handle; null for what is none or is destroyed.
Matrix* matrix_of(ork_sparse_matrix_t handle);

// A handle for a new matrix; on failure the matrix is destroyed and *result is left alone.
std::int64_t publish(const Routine& routine, Matrix* matrix, ork_sparse_matrix_t* result);

// The matrix and all that hangs on it; null is allowed. Of a matrix that has no handle.
void destroy(Matrix* matrix);

// As if optimize had never been called.
void drop_analysis(Matrix& a);

// Rows and columns of numbers, not of blocks.
inline std::int64_t rows_of(const Matrix& a) { return a.rows * a.block; }
inline std::int64_t cols_of(const Matrix& a) { return a.cols * a.block; }
inline bool transposes(int op) { return op == ORK_SPBLAS_TRANS || op == ORK_SPBLAS_CONJ_TRANS; }

// The checks of one call. After the first failure, which is recorded, the others do nothing, so a driver asks once.
class Checks {
public:
    explicit Checks(const Routine& routine) : routine_(routine) {}

    bool failed() const { return status_ != ORK_SPARSE_SUCCESS; }
    std::int64_t status() const { return status_; }
    const Routine& routine() const { return routine_; }
    void fail(std::int64_t status) // of one of error.h, called by the driver if !failed()
    {
        if (status_ == ORK_SPARSE_SUCCESS) status_ = status;
    }

    // A handle of the routine's precision and width. Null if this or an earlier check failed.
    Matrix* handle(const char* argument, ork_sparse_matrix_t handle);
    // `b`, an argument, must have the precision and width of a, and the format and block.
    void same_numbers(const Matrix* a, const char* argument, const Matrix* b);
    void same_format(const Matrix* a, const char* argument, const Matrix* b);

    void operation(const char* argument, int op);
    void layout(const char* argument, int layout);
    // Types 0 to 5, and what they want of the matrix (square, complex). solves: triangular and diagonal alone.
    void kind(const char* argument, const ork_sparse_kind& kind, const Matrix* a, bool solves = false);
    void at_least(const char* argument, std::int64_t value, std::int64_t least);
    // Not null, if needed.
    void given(const char* argument, const void* pointer, bool needed = true);
    // A dense matrix and its leading dimension; no null check when it is empty.
    void dense(const char* argument, const void* array, const char* leading, std::int64_t ld, int layout,
               std::int64_t rows, std::int64_t columns);
    void square(const char* argument, const Matrix* a);

private:
    const Routine& routine_;
    std::int64_t status_ = ORK_SPARSE_SUCCESS;
};

} // namespace ork::sparse

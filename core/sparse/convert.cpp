// SPDX-License-Identifier: MIT
// Handles from handles, their end, and the order of their entries.
#include "export.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "sparse/registry.h"

namespace ork::sparse {
namespace {

using Handles = HandleCalls<std::int64_t>;
constinit Kernels<2> kernel_copy("copy"), convert_csr("convert_csr"), convert_bsr("convert_bsr"), optimize("optimize");

// A handle for what a kernel made.
std::int64_t finish(const Routine& r, const Matrix& a, int status, Matrix* made, ork_sparse_matrix_t* result)
{
    if (status == 2)
        return not_supported(r, "a", a.entries,
                             "the result has more rows, columns or entries than %d-byte integers count", a.index_bytes);
    return publish(r, made, result);
}

std::int64_t copy(ork_sparse_matrix_t handle, ork_sparse_matrix_t* result)
{
    const Routine r = {"copy", "a result"};
    Checks check(r);
    const Matrix* const a = check.handle("a", handle);
    check.given("result", result);
    if (check.failed()) return check.status();
    Matrix* made = nullptr;
    const int status = kernel_copy.get<Handles::copy>(*a)(a, &made);
    return finish(r, *a, status, made, result);
}

std::int64_t to_lines(const Routine& r, ork_sparse_matrix_t handle, int op, bool by_columns,
                      ork_sparse_matrix_t* result)
{
    Checks check(r);
    const Matrix* const a = check.handle("a", handle);
    check.operation("op", op);
    check.given("result", result);
    if (check.failed()) return check.status();
    Matrix* made = nullptr;
    const int status = convert_csr.get<Handles::convert_csr>(*a)(a, op - ORK_SPBLAS_NO_TRANS, by_columns, &made);
    return finish(r, *a, status, made, result);
}

std::int64_t to_blocks(ork_sparse_matrix_t handle, std::int64_t block, int layout, int op, ork_sparse_matrix_t* result)
{
    const Routine r = {"convert_bsr", "a block layout op result"};
    Checks check(r);
    const Matrix* const a = check.handle("a", handle);
    check.at_least("block", block, 1);
    check.layout("layout", layout);
    check.operation("op", op);
    check.given("result", result);
    if (!check.failed() && a->index_bytes == 4 && block > INT32_MAX)
        check.fail(wrong_argument(r, "block", block, "more than 4-byte integers count"));
    if (check.failed()) return check.status();
    Matrix* made = nullptr;
    const int status = convert_bsr.get<Handles::convert_bsr>(*a)(a, op - ORK_SPBLAS_NO_TRANS, block,
                                                                 layout == ORK_SPBLAS_COL_MAJOR, &made);
    return finish(r, *a, status, made, result);
}

std::int64_t order(ork_sparse_matrix_t handle)
{
    const Routine r = {"order", "a"};
    Checks check(r);
    Matrix* const a = check.handle("a", handle);
    if (check.failed()) return check.status();
    if (a->sorted) return ORK_SPARSE_SUCCESS;
    if (optimize.get<Handles::optimize>(*a)(a, 1) != 0) return no_memory(r);
    drop_analysis(*a); // the entries stand in other places now
    return ORK_SPARSE_SUCCESS;
}

std::int64_t destroy_handle(ork_sparse_matrix_t handle)
{
    const Routine r = {"destroy", "a"};
    Checks check(r);
    check.handle("a", handle);
    if (check.failed()) return check.status();
    Matrix* const a = withdraw(handle);
    if (a == nullptr) return not_a_handle(r, "a", "was destroyed by another thread at the same time");
    destroy(a);
    return ORK_SPARSE_SUCCESS;
}

} // namespace
} // namespace ork::sparse

using namespace ork::sparse;

ORK_EXPORT int64_t ork_sparse_copy(ork_sparse_matrix_t a, ork_sparse_matrix_t* result) { return copy(a, result); }

ORK_EXPORT int64_t ork_sparse_convert_csr(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_matrix_t* result)
{
    return to_lines({"convert_csr", "a op result"}, a, op, false, result);
}

ORK_EXPORT int64_t ork_sparse_convert_csc(ork_sparse_matrix_t a, ork_spblas_operation op, ork_sparse_matrix_t* result)
{
    return to_lines({"convert_csc", "a op result"}, a, op, true, result);
}

ORK_EXPORT int64_t ork_sparse_convert_bsr(ork_sparse_matrix_t a, int64_t block, ork_spblas_layout layout,
                                          ork_spblas_operation op, ork_sparse_matrix_t* result)
{
    return to_blocks(a, block, layout, op, result);
}

ORK_EXPORT int64_t ork_sparse_order(ork_sparse_matrix_t a) { return order(a); }
ORK_EXPORT int64_t ork_sparse_destroy(ork_sparse_matrix_t a) { return destroy_handle(a); }

// SPDX-License-Identifier: MIT
// What will be called often.
#include "export.h"
#include "sparse/analysis.h"
#include "sparse/environment.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"

namespace ork::sparse {
namespace {

using Handles = HandleCalls<std::int64_t>;

// Of symgs and the other smoothers general matrices are usual too.
bool solves(Task task) { return task == Task::sv || task == Task::sm; }

// Kinds are kept without what the type has no use for, so that the same hint is the same.
ork_sparse_kind canonical(ork_sparse_kind k)
{
    const bool general = k.type == ORK_SPBLAS_GENERAL;
    if (general || k.type == ORK_SPBLAS_DIAGONAL) k.uplo = {};
    if (general || k.type == ORK_SPBLAS_SKEW) k.diag = {};
    return k;
}

std::int64_t set(const Routine& r, Task task, Kernels<2>& kernel, ork_sparse_matrix_t handle, int op,
                 const ork_sparse_kind& kind, std::int64_t calls)
{
    Checks check(r);
    Matrix* const a = check.handle("a", handle);
    if (task != Task::sorv) check.operation("op", op);
    if (!check.failed() && task == Task::sorv && (op < ORK_SPARSE_FORWARD || op > ORK_SPARSE_SYMMETRIC))
        check.fail(wrong_argument(r, "sweep", op, "sweeps are 1 to 3"));
    check.kind("kind", kind, a, solves(task));
    check.at_least("calls", calls, 0);
    if (check.failed()) return check.status();
    const ork_sparse_kind k = canonical(kind);
    if (kernel.get<Handles::set_mv_hint>(*a)(a, op, k.type, k.uplo, k.diag, calls) != 0) return no_memory(r);
    return ORK_SPARSE_SUCCESS;
}

std::int64_t set(const Routine& r, Task task, Kernels<2>& kernel, ork_sparse_matrix_t handle, int op,
                 const ork_sparse_kind& kind, int layout, std::int64_t columns, std::int64_t calls)
{
    Checks check(r);
    Matrix* const a = check.handle("a", handle);
    check.operation("op", op);
    check.kind("kind", kind, a, solves(task));
    check.layout("layout", layout);
    check.at_least("columns", columns, 0);
    check.at_least("calls", calls, 0);
    if (check.failed()) return check.status();
    const ork_sparse_kind k = canonical(kind);
    if (kernel.get<Handles::set_mm_hint>(*a)(a, op, k.type, k.uplo, k.diag, layout, columns, calls) != 0)
        return no_memory(r);
    return ORK_SPARSE_SUCCESS;
}

constinit Kernels<2> kernel_memory("set_memory_hint");

} // namespace

std::int64_t calls_expected(const Matrix& a, Task task)
{
    if (a.hint_count == 0) return task == Task::mv ? environment().calls : 0;
    std::int64_t calls = 0;
    for (const Hint* hint = a.hints; hint != a.hints + a.hint_count; ++hint)
        if (hint->task == task && __builtin_add_overflow(calls, hint->calls, &calls)) return INT64_MAX;
    return calls;
}

} // namespace ork::sparse

using namespace ork::sparse;

#define ORK_SPARSE_VECTOR_HINT(name, Op, op)                                                                           \
    ORK_EXPORT int64_t ork_sparse_set_##name##_hint(ork_sparse_matrix_t a, Op op, ork_sparse_kind kind, int64_t calls) \
    {                                                                                                                  \
        static constinit Kernels<2> kernel("set_" #name "_hint");                                                      \
        return set({"set_" #name "_hint", "a " #op " kind calls"}, Task::name, kernel, a, op, kind, calls);            \
    }
#define ORK_SPARSE_MATRIX_HINT(name)                                                                                   \
    ORK_EXPORT int64_t ork_sparse_set_##name##_hint(ork_sparse_matrix_t a, ork_spblas_operation op,                    \
                                                    ork_sparse_kind kind, ork_spblas_layout layout, int64_t columns,   \
                                                    int64_t calls)                                                     \
    {                                                                                                                  \
        static constinit Kernels<2> kernel("set_" #name "_hint");                                                      \
        return set({"set_" #name "_hint", "a op kind layout columns calls"}, Task::name, kernel, a, op, kind, layout,  \
                   columns, calls);                                                                                    \
    }
ORK_SPARSE_VECTOR_HINT(mv, ork_spblas_operation, op)
ORK_SPARSE_VECTOR_HINT(dotmv, ork_spblas_operation, op)
ORK_SPARSE_VECTOR_HINT(sv, ork_spblas_operation, op)
ORK_SPARSE_VECTOR_HINT(symgs, ork_spblas_operation, op)
ORK_SPARSE_VECTOR_HINT(lu_smoother, ork_spblas_operation, op)
ORK_SPARSE_VECTOR_HINT(sorv, ork_sparse_sweep, sweep)
ORK_SPARSE_MATRIX_HINT(mm)
ORK_SPARSE_MATRIX_HINT(sm)

ORK_EXPORT int64_t ork_sparse_set_memory_hint(ork_sparse_matrix_t handle, ork_sparse_memory policy)
{
    const Routine r = {"set_memory_hint", "a policy"};
    Checks check(r);
    Matrix* const a = check.handle("a", handle);
    if (!check.failed() && policy != ORK_SPARSE_MEMORY_NONE && policy != ORK_SPARSE_MEMORY_FREE)
        check.fail(wrong_argument(r, "policy", policy, "policies are 0 and 1"));
    if (check.failed()) return check.status();
    kernel_memory.get<Handles::set_memory_hint> (*a)(a, policy);
    return ORK_SPARSE_SUCCESS;
}

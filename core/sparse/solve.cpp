// SPDX-License-Identifier: MIT
// y = alpha op(A)^-1 x and C = alpha op(A)^-1 B.
#include "export.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "sparse/plain.h"
#include "sparse/solve_checks.h"
#include "sparse/solve_plan.h"
#include "spblas/drivers.h"
#include "spblas/vectors.h"

namespace ork::sparse {
namespace {

using Handles = HandleCalls<std::int64_t>;
constinit Kernels<2> copy("copy"), sort_rows("optimize");
constinit Kernels<8> forward("sv_fwd_ker0_high_opt"), backward("sv_bwd_ker0_high_opt");

struct Solve {
    int op;
    ork_sparse_kind kind;
    int layout; // 0: one vector
    std::int64_t columns;
    const void *alpha, *b;
    std::int64_t ldb;
    void* c;
    std::int64_t ldc;
};

void run(const Matrix& a, const SolvePlan& plan, const Solve& s)
{
    with_type(a.precision, [&](auto t) {
        using T = decltype(t);
        using Call = SolveCalls<std::int64_t, T>;
        auto* const kernel = (plan.upper ? backward : forward).get<typename Call::sv_fwd_ker0_high_opt>(a);
        const auto* const packed = plan.as<std::int64_t, T>();
        run_shares(plan, plan.upper ? Direction::descending : Direction::ascending,
                   [&](std::int64_t first, std::int64_t last, int) {
                       kernel(first, last, 0, packed, *static_cast<const T*>(s.alpha), static_cast<const T*>(s.b),
                              static_cast<T*>(s.c));
                   });
    });
}

// The routines on callers' arrays look for the diagonal where it is in rows that ascend.
std::int64_t run_sorted(const Routine& r, const Matrix& a, const Solve& s)
{
    PlainCall plain(a, s.layout != 0 ? spblas::Routine::smout : spblas::Routine::svout, s.op, s.kind, s.layout);
    if (!plain.has_memory()) return no_memory(r);
    spblas::Call& call = plain.call;
    if (s.layout != 0) call.nrhs = s.columns;
    call.alpha = s.alpha;
    call.b = s.b, call.ldb = s.ldb;
    call.c = s.c, call.ldc = s.ldc;
    return told_as(r, spblas::solve(call));
}

std::int64_t run_plain(const Routine& r, const Matrix& a, const Solve& s)
{
    if (a.sorted || a.format == Format::coo) return run_sorted(r, a, s);
    Matrix* sorted = nullptr;
    const bool done =
        copy.get<Handles::copy>(a)(&a, &sorted) == 0 && sort_rows.get<Handles::optimize>(a)(sorted, 0) == 0;
    const std::int64_t status = done ? run_sorted(r, *sorted, s) : no_memory(r);
    destroy(sorted);
    return status;
}

[[gnu::noinline]] std::int64_t solve(const Routine& r, ork_sparse_matrix_t handle, Solve s)
{
    Checks check(r);
    check.operation("op", s.op);
    check.given("alpha", s.alpha);
    const Matrix* const a = check.handle("a", handle);
    check.kind("kind", s.kind, a, true);
    if (check.failed()) return check.status();
    const std::int64_t n = rows_of(*a);
    if (s.layout == 0) {
        check.given("x", s.b, n > 0);
        check.given("y", s.c, n > 0);
        if (check.failed()) return check.status();
        s.ldb = s.ldc = n;
    } else {
        check.layout("layout", s.layout);
        check.given("b", s.b, n > 0 && s.columns > 0);
        check.at_least("columns", s.columns, 0);
        check.dense("b", s.b, "ldb", s.ldb, s.layout, n, s.columns);
        check.dense("c", s.c, "ldc", s.ldc, s.layout, n, s.columns);
        if (check.failed()) return check.status();
    }
    const SolveKey key = solve_key(*a, s.op, s.kind, false);
    const bool zero =
        with_type(a->precision, [&](auto t) { return *static_cast<decltype(t)*>(const_cast<void*>(s.alpha)) == t; });
    const SolvePlan* const plan = s.layout == 0 && !zero ? find_plan(*a, key) : nullptr;
    if (plan != nullptr) {
        run(*a, *plan, s);
        return ORK_SPARSE_SUCCESS;
    }
    if (!zero && s.kind.diag != ORK_SPBLAS_UNIT)
        if (const auto status = check_diagonal(r, *a)) return status;
    return run_plain(r, *a, s);
}

} // namespace
} // namespace ork::sparse

using namespace ork::sparse;

#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_EXPORT int64_t ork_sparse_##letter##_sv(ork_spblas_operation op, Scalar alpha, ork_sparse_matrix_t a,          \
                                                ork_sparse_kind kind, const Element* x, Element* y)                    \
    {                                                                                                                  \
        return solve({"sv", "op alpha a kind x y", #letter[0]}, a, {op, kind, 0, 1, address(alpha), x, 0, y, 0});      \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_sm(ork_spblas_operation op, Scalar alpha, ork_sparse_matrix_t a,          \
                                                ork_sparse_kind kind, ork_spblas_layout layout, const Element* b,      \
                                                int64_t columns, int64_t ldb, Element* c, int64_t ldc)                 \
    {                                                                                                                  \
        return solve({"sm", "op alpha a kind layout b columns ldb c ldc", #letter[0]}, a,                              \
                     {op, kind, layout, columns, address(alpha), b, ldb, c, ldc});                                     \
    }
ORK_SPARSE_PRECISIONS(MEMBER)

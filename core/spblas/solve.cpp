// SPDX-License-Identifier: MIT
// y = alpha op(A)^-1 x and C = alpha op(A)^-1 B: the right-hand sides are copied to where the solutions will be, and
// the kernel solves there. Threads take right-hand sides.
#include "spblas/checks.h"
#include "spblas/coo_order.h"
#include "spblas/drivers.h"
#include "spblas/error.h"
#include "spblas/members.h"
#include "spblas/split.h"
#include "spblas/vectors.h"
#include "threads/pool.h"

namespace ork::spblas {
namespace {

void copy_right_hand_sides(const Call& call, Range columns)
{
    scaled_copy(call, call.alpha, call.b, call.ldb, columns.first, columns.count);
}

void solve_one(const Call& call, void* kernel)
{
    copy_right_hand_sides(call, {0, 1});
    with_matrix(*call.a, [&](auto... a) { invoke(kernel, &call.m, nullptr, a..., call.c); });
}

void solve_many(const Call& call, void* kernel)
{
    const double work = stored_entries(call) * static_cast<double>(call.nrhs);
    const std::int64_t unit = columns_together(call);
    const int parts = call.nrhs <= unit ? 1 : threads_for(work);
    const auto body = [&](int part) {
        const Range columns = strip(call.nrhs, unit, parts, part);
        if (columns.count == 0) return;
        const std::int64_t first = columns.first + 1, last = columns.end();
        copy_right_hand_sides(call, columns);
        with_matrix(*call.a,
                    [&](auto... a) { invoke(kernel, &first, &last, &call.m, nullptr, a..., call.c, &call.ldc); });
    };
    if (parts == 1)
        body(0);
    else
        threads::run(parts, [&](int part) { body(part); });
}

std::int64_t solve_in_order(const Call& call)
{
    void* const kernel = kernel_for(call, shape_of(call));
    call.vectors() ? solve_one(call, kernel) : solve_many(call, kernel);
    return ORK_SPBLAS_SUCCESS;
}

std::int64_t solve_coo(const Call& call)
{
    if (in_order(call)) {
        if (const auto status = check_sorted_diagonal(call, true)) return status;
        return solve_in_order(call);
    }
    const OrderedCopy copy(call);
    if (!copy.has_memory()) return no_memory(name_of(call));
    Call ordered = call;
    ordered.a = &copy.matrix();
    if (const auto status = check_sorted_diagonal(ordered, false)) return status;
    return solve_in_order(ordered);
}

} // namespace

std::int64_t solve(const Call& call)
{
    const auto [wrong, reads] = check_arguments(call);
    if (wrong) return wrong;
    const bool identity = call.kind.type == ORK_SPBLAS_DIAGONAL && call.kind.diag == ORK_SPBLAS_UNIT;
    if (!reads || identity) {
        copy_right_hand_sides(call, {0, call.nrhs});
        return ORK_SPBLAS_SUCCESS;
    }
    if (const auto status = check_structure(call)) return status;
    return call.a->format == Format::coo ? solve_coo(call) : solve_in_order(call);
}

} // namespace ork::spblas

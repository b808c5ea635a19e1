// SPDX-License-Identifier: MIT
// C = alpha op(A) B + beta C. Rows of a general matrix in csr or bsr, and columns of one in bsc that is transposed, are
// matrices of their own with rows of C of their own, so threads take slices of A and read it once altogether. Otherwise
// they take right-hand sides.
#include "spblas/drivers.h"
#include "spblas/product.h"
#include "spblas/split.h"
#include "threads/pool.h"

namespace ork::spblas {
namespace {

void run_columns(const Call& call, void* kernel, Range columns)
{
    const std::int64_t first = columns.first + 1, last = columns.end();
    with_matrix(*call.a, [&](auto... a) {
        invoke(kernel, &first, &last, &call.m, &call.n, nullptr, call.alpha, a..., call.b, &call.ldb, call.c, &call.ldc,
               call.beta);
    });
}

bool divides_by_rows(const Call& call, Shape shape)
{
    if (shape.type != 'g') return false;
    switch (call.a->format) {
    case Format::csr:
    case Format::bsr:
        return !transposes(shape.op);
    case Format::bsc:
        return transposes(shape.op);
    default:
        return false;
    }
}

// The same for a slice of A alone.
void run_slice(const Call& call, void* kernel, Range range)
{
    const Integers indx = call.integers(1), pntrb = call.integers(2), pntre = call.integers(3);
    const std::int64_t before = pntrb[range.first] - pntrb[0], lb = call.a->block(), size = call.element();
    Matrix a = *call.a;
    a.array[0] = static_cast<const char*>(a.array[0]) + before * lb * lb * size;
    a.array[1] = indx.from(before);
    a.array[2] = pntrb.from(range.first);
    a.array[3] = pntre.from(range.first);
    Call part = call;
    part.a = &a;
    (a.format == Format::bsc ? part.n : part.m) = range.count;
    part.c = static_cast<char*>(call.c) + range.first * lb * (call.row_major() ? call.ldc : 1) * size;
    run_columns(part, kernel, {0, call.nrhs});
}

void run(const Call& call, void* kernel, Shape shape)
{
    if (!is_parallel(Routine::mmout, shape)) {
        with_matrix(*call.a, [&](auto... a) {
            invoke(kernel, &call.m, &call.nrhs, nullptr, call.alpha, a..., call.b, &call.ldb, call.c, &call.ldc,
                   call.beta);
        });
        return;
    }
    const int parts = threads_for(stored_entries(call) * static_cast<double>(call.nrhs));
    if (parts == 1)
        run_columns(call, kernel, {0, call.nrhs});
    else if (divides_by_rows(call, shape))
        threads::run(parts, [&](int part) {
            const Range range = slice(call, parts, part);
            if (range.count > 0) run_slice(call, kernel, range);
        });
    else
        threads::run(parts, [&](int part) {
            const Range columns = strip(call.nrhs, columns_together(call), parts, part);
            if (columns.count > 0) run_columns(call, kernel, columns);
        });
}

} // namespace

std::int64_t mm(const Call& call)
{
    return checked_product(call, [&](void* kernel, Shape shape) { run(call, kernel, shape); });
}

} // namespace ork::spblas

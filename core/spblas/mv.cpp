// SPDX-License-Identifier: MIT
// y = alpha op(A) x + beta y. A kernel that writes the rows of its slice alone has y from all threads at once. One that
// adds into all of y has the caller's y on one thread and a copy on each other; the copies are then added in the order
// of the slices, so the same number of threads gives the same bits.
#include <algorithm>

#include "ork/abi/services.h"
#include "spblas/drivers.h"
#include "spblas/product.h"
#include "spblas/split.h"
#include "spblas/vectors.h"
#include "threads/pool.h"

namespace ork::spblas {
namespace {

// Products that each thread must have for an element of its copy. To clear and to add an element takes as long as half
// a product: two threads without a second processor take 10 % longer than one for five entries an element (transposed
// five-point Laplacian, double, AMD family 26) and 13 % for three (its lower triangle).
constexpr double products_per_copied_element = 1;

struct Product {
    const Call& call;
    void* kernel;

    // Slice of A, counted from 0.
    void run(Range range, void* y, const void* beta) const
    {
        const std::int64_t first = range.first + 1, last = range.end();
        const std::int64_t size = call.transposes() ? call.n : call.m;
        with_matrix(*call.a, [&](auto... a) {
            if (call.a->format == Format::dia)
                invoke(kernel, &first, &last, nullptr, &call.m, &call.n, call.alpha, a..., call.b, y, beta);
            else
                invoke(kernel, &first, &last, nullptr, &size, call.alpha, a..., call.b, y, beta);
        });
    }
};

void in_slices(const Product& product, int parts)
{
    const Call& call = product.call;
    threads::run(parts, [&](int part) {
        const Range range = slice(call, parts, part);
        if (range.count > 0) product.run(range, call.c, call.beta);
    });
}

// False when there is no memory for the copies.
bool in_copies(const Product& product, int parts)
{
    const Call& call = product.call;
    constexpr std::int64_t page = 4096;
    const std::int64_t rows = call.rows_of_c(), size = call.element();
    const std::int64_t stride = (rows * size + page - 1) / page * page;
    char* const copies = static_cast<char*>(ork_serv_allocate(static_cast<std::size_t>(stride) * (parts - 1), page));
    if (copies == nullptr) return false;
    static constexpr double zero[2] = {};
    threads::run(parts, [&](int part) {
        const Range range = slice(call, parts, part);
        if (part == 0)
            product.run(range, call.c, call.beta);
        else
            product.run(range, copies + (part - 1) * stride, zero);
    });
    threads::run(parts, [&](int part) {
        const Range range = strip(rows, page / size, parts, part);
        for (int copy = 0; copy < parts - 1; ++copy)
            add(call.precision, range.count, copies + copy * stride + range.first * size,
                static_cast<char*>(call.c) + range.first * size);
    });
    ork_serv_deallocate(copies);
    return true;
}

void run(const Call& call, void* kernel, Shape shape)
{
    const Product product = {call, kernel};
    if (!is_parallel(Routine::mvout, shape)) {
        with_matrix(*call.a,
                    [&](auto... a) { invoke(kernel, &call.m, nullptr, call.alpha, a..., call.b, call.c, call.beta); });
        return;
    }
    const bool copies = scatters(call.a->format, shape);
    const double products = stored_entries(call);
    int parts = threads_for(products);
    if (parts > 1 && copies) {
        const double rows = static_cast<double>(call.rows_of_c());
        parts = static_cast<int>(std::clamp(products / (rows * products_per_copied_element), 1.0, double(parts)));
    }
    if (parts > 1 && !copies)
        in_slices(product, parts);
    else if (parts == 1 || !in_copies(product, parts))
        product.run({0, slices(call)}, call.c, call.beta);
}

} // namespace

std::int64_t mv(const Call& call)
{
    return checked_product(call, [&](void* kernel, Shape shape) { run(call, kernel, shape); });
}

} // namespace ork::spblas

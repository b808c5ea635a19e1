// SPDX-License-Identifier: MIT
#include "spblas/vectors.h"

#include <cstring>

namespace ork::spblas {
namespace {

template <class T>
void scaled_copy(std::int64_t n, const void* alpha, const void* x, void* y)
{
    const T factor = *static_cast<const T*>(alpha);
    const T* from = static_cast<const T*>(x);
    T* to = static_cast<T*>(y);
    for (std::int64_t i = 0; i < n; ++i) to[i] = factor * from[i];
}

template <class T>
void scaled_copy_complex(std::int64_t n, const void* alpha, const void* x, void* y)
{
    const T re = static_cast<const T*>(alpha)[0], im = static_cast<const T*>(alpha)[1];
    const T* from = static_cast<const T*>(x);
    T* to = static_cast<T*>(y);
    for (std::int64_t i = 0; i < 2 * n; i += 2) {
        const T a = from[i], b = from[i + 1];
        to[i] = re * a - im * b;
        to[i + 1] = re * b + im * a;
    }
}

template <class T>
void add(std::int64_t n, const void* x, void* y)
{
    const T* from = static_cast<const T*>(x);
    T* to = static_cast<T*>(y);
    for (std::int64_t i = 0; i < n; ++i) to[i] += from[i];
}

} // namespace

void scaled_copy(Precision precision, std::int64_t n, const void* alpha, const void* x, void* y)
{
    if (n <= 0) return;
    const std::size_t bytes = static_cast<std::size_t>(n * element_size(precision));
    if (is_zero(precision, alpha)) {
        std::memset(y, 0, bytes);
    } else if (is_one(precision, alpha)) {
        if (x != y) std::memmove(y, x, bytes);
    } else if (precision == Precision::s) {
        scaled_copy<float>(n, alpha, x, y);
    } else if (precision == Precision::d) {
        scaled_copy<double>(n, alpha, x, y);
    } else if (precision == Precision::c) {
        scaled_copy_complex<float>(n, alpha, x, y);
    } else {
        scaled_copy_complex<double>(n, alpha, x, y);
    }
}

void add(Precision precision, std::int64_t n, const void* x, void* y)
{
    if (is_complex(precision)) n *= 2;
    if (precision == Precision::s || precision == Precision::c)
        add<float>(n, x, y);
    else
        add<double>(n, x, y);
}

void scaled_copy(const Call& call, const void* alpha, const void* b, std::int64_t ldb, std::int64_t first,
                 std::int64_t count)
{
    const bool by_rows = call.row_major();
    const std::int64_t rows = call.rows_of_c(), size = call.element();
    const std::int64_t from = by_rows ? 0 : first, lines = by_rows ? rows : first + count;
    const std::int64_t offset = by_rows ? first : 0, length = by_rows ? count : rows;
    for (std::int64_t i = from; i < lines; ++i)
        scaled_copy(call.precision, length, alpha, static_cast<const char*>(b) + (i * ldb + offset) * size,
                    static_cast<char*>(call.c) + (i * call.ldc + offset) * size);
}

void scale_result(const Call& call) { scaled_copy(call, call.beta, call.c, call.ldc, 0, call.nrhs); }

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// The loops that a textbook has, left to the compiler (-O3 -msse4.2), and many tridiagonal systems interleaved by hand.
#include <cstdint>
#include <emmintrin.h>

#include "peers/blocks.h"

namespace ork::peers {
namespace {

using Ptr = const int64_t*;

// Rotation by rotation, as LAPACK's dlasr has it.
void lasr_by_rotations(Ptr m, Ptr n, const double* c, const double* s, double* a, Ptr lda)
{
    for (int64_t k = 0; k < *m - 1; ++k)
        for (int64_t j = 0; j < *n; ++j) {
            double* x = a + k + j * *lda;
            const double t = x[1];
            x[1] = c[k] * t - s[k] * x[0];
            x[0] = s[k] * t + c[k] * x[0];
        }
}
void lasr_by_columns(Ptr m, Ptr n, const double* c, const double* s, double* a, Ptr lda)
{
    for (int64_t j = 0; j < *n; ++j)
        for (int64_t k = 0; k < *m - 1; ++k) {
            double* x = a + k + j * *lda;
            const double t = x[1];
            x[1] = c[k] * t - s[k] * x[0];
            x[0] = s[k] * t + c[k] * x[0];
        }
}

// Increments, tau and h in variables of their own: read through pointers they would be read again after every store.
void lartv(Ptr n, double* x, Ptr incx, double* y, Ptr incy, const double* c, const double* s, Ptr incc)
{
    const int64_t count = *n, dx = *incx, dy = *incy, dc = *incc;
    for (int64_t i = 0; i < count; ++i) {
        const double u = x[i * dx], v = y[i * dy];
        x[i * dx] = c[i * dc] * u + s[i * dc] * v;
        y[i * dy] = c[i * dc] * v - s[i * dc] * u;
    }
}
void rot2(Ptr n, double* x, Ptr incx, double* y, Ptr incy, const double* tau, const double* h2)
{
    const int64_t count = *n, dx = *incx, dy = *incy;
    const double t = *tau, h = *h2;
    for (int64_t i = 0; i < count; ++i) {
        const double sum = (x[i * dx] + h * y[i * dy]) * t;
        x[i * dx] -= sum;
        y[i * dy] -= sum * h;
    }
}
void rot3(Ptr n, double* x, Ptr incx, double* y, Ptr incy, double* z, Ptr incz, const double* tau, const double* h2,
          const double* h3)
{
    const int64_t count = *n, dx = *incx, dy = *incy, dz = *incz;
    const double t = *tau, h = *h2, g = *h3;
    for (int64_t i = 0; i < count; ++i) {
        const double sum = (x[i * dx] + h * y[i * dy] + g * z[i * dz]) * t;
        x[i * dx] -= sum;
        y[i * dy] -= h * sum;
        z[i * dz] -= g * sum;
    }
}

// From the left.
void larfx(const char*, Ptr m, Ptr n, const double* v, const double* tau, double* c, Ptr ldc, double*)
{
    for (int64_t j = 0; j < *n; ++j) {
        double* column = c + j * *ldc;
        double sum = 0;
        for (int64_t i = 0; i < *m; ++i) sum += v[i] * column[i];
        sum *= *tau;
        for (int64_t i = 0; i < *m; ++i) column[i] -= sum * v[i];
    }
}

// One system, no interchanges (Thomas's algorithm); work has n elements.
void thomas(int64_t n, const double* dl, const double* d, const double* du, double* b, double* work)
{
    double inverse = 1 / d[0];
    work[0] = du[0] * inverse;
    b[0] *= inverse;
    for (int64_t i = 1; i < n; ++i) {
        inverse = 1 / (d[i] - dl[i] * work[i - 1]);
        work[i] = du[i] * inverse;
        b[i] = (b[i] - dl[i] * b[i - 1]) * inverse;
    }
    for (int64_t i = n - 2; i >= 0; --i) b[i] -= work[i] * b[i + 1];
}
void many_one_by_one(const char*, Ptr n, Ptr systems, const double* dl, const double* d, const double* du, double* b,
                     Ptr ld, double* work, int64_t* info)
{
    for (int64_t s = 0; s < *systems; ++s) thomas(*n, dl + s * *ld, d + s * *ld, du + s * *ld, b + s * *ld, work);
    *info = 0;
}

// Four registers of two systems each, one system after the other in memory; those that fill no register one by one.
void many_interleaved(const char* layout, Ptr n_ptr, Ptr systems, const double* dl, const double* d, const double* du,
                      double* b, Ptr ld_ptr, double* work, int64_t* info)
{
    constexpr int registers = 4;
    const int64_t n = *n_ptr, ld = *ld_ptr;
    const __m128d one = _mm_set1_pd(1);
    int64_t s = 0;
    for (; s + 2 * registers <= *systems; s += 2 * registers) {
        __m128d above[registers] = {}, x[registers] = {};
        const auto pair = [&](const double* p, int r, int64_t i) {
            return _mm_set_pd(p[(s + 2 * r + 1) * ld + i], p[(s + 2 * r) * ld + i]);
        };
        for (int64_t i = 0; i < n; ++i)
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) {
                const __m128d l = i > 0 ? pair(dl, r, i) : _mm_setzero_pd();
                const __m128d inverse = _mm_div_pd(one, _mm_sub_pd(pair(d, r, i), _mm_mul_pd(l, above[r])));
                above[r] = _mm_mul_pd(pair(du, r, i), inverse);
                x[r] = _mm_mul_pd(_mm_sub_pd(pair(b, r, i), _mm_mul_pd(l, x[r])), inverse);
                _mm_storeu_pd(work + (i * registers + r) * 4, above[r]);
                _mm_storeu_pd(work + (i * registers + r) * 4 + 2, x[r]);
            }
        for (int r = 0; r < registers; ++r) x[r] = _mm_setzero_pd();
        for (int64_t i = n - 1; i >= 0; --i)
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) {
                const double* from = work + (i * registers + r) * 4;
                x[r] = _mm_sub_pd(_mm_loadu_pd(from + 2), _mm_mul_pd(_mm_loadu_pd(from), x[r]));
                _mm_storel_pd(b + (s + 2 * r) * ld + i, x[r]);
                _mm_storeh_pd(b + (s + 2 * r + 1) * ld + i, x[r]);
            }
    }
    const int64_t left = *systems - s;
    many_one_by_one(layout, n_ptr, &left, dl + s * ld, d + s * ld, du + s * ld, b + s * ld, ld_ptr, work, info);
}

} // namespace

void* plain_blocks_symbol(const std::string& symbol, int which)
{
    const auto choose = [which](auto* first, auto* second) {
        return which == 0 ? reinterpret_cast<void*>(first) : which == 1 ? reinterpret_cast<void*>(second) : nullptr;
    };
    void (*const nothing)() = nullptr;
    if (symbol == "dlasr_lvf") return choose(lasr_by_rotations, lasr_by_columns);
    if (symbol == "dlartv_") return choose(lartv, nothing);
    if (symbol == "drot2") return choose(rot2, nothing);
    if (symbol == "drot3") return choose(rot3, nothing);
    if (symbol == "dlarfx_") return choose(larfx, nothing);
    if (symbol == "dgtsvnp_many") return choose(many_one_by_one, many_interleaved);
    return nullptr;
}

} // namespace ork::peers

// SPDX-License-Identifier: MIT
// y <- alpha op(A) x + beta y where A and x, y are of different types: a real A between complex vectors (an element of
// A multiplies the parts of a complex one, and no more), bfloat16 with binary32 sums, signed by unsigned bytes with
// sums modulo 2^32.
//
// Not transposed, every element of y gets the columns' products one after the other. Transposed, a column's products go
// to two registers by turns, first those of whole registers of y's numbers and then, zeros beside them, what is left;
// the registers and then their lanes are added. Increments change none of this: what has one passes through a buffer,
// stretch by stretch.
#include "blas/level2/options.h"
#include "blas/level2/scale.h"
#include "blas/level2_kernels.h"

namespace ork::level2 {
namespace {

// What a mixed product is made of: A and X are stored, Y is what sums are kept in, a register of `lanes` of which
// Sum holds.

template <class R>
struct RealByComplex {
    using A = R;
    using X = Complex<R>;
    using Y = Complex<R>;
    using Wide = Complex<R>; // an element of x, ready to be multiplied
    static constexpr int lanes = Vec<Y>::lanes;

    struct Sum {
        Vec<R> v{};
        friend Sum operator+(Sum a, Sum b) { return {a.v + b.v}; }
    };
    static Wide widen(X x) { return x; }
    // Every element of A twice.
    static Vec<double> twice(const double* a) { return load<1>(a); }
    static Vec<float> twice(const float* a)
    {
        const Vec<float> pair = load_low(a);
        return {_mm_unpacklo_ps(pair.v, pair.v)};
    }
    static Vec<R> product(const A* a, Wide t)
    {
        if constexpr (sizeof(R) == 8)
            return twice(a) * Vec<R>{_mm_set_pd(t.im, t.re)};
        else
            return twice(a) * Vec<R>{_mm_set_ps(t.im, t.re, t.im, t.re)};
    }
    static void add(Y* y, const A* a, Wide t) { store<lanes>(y, Vec<Y>{load<lanes>(y).v + product(a, t)}); }
    static void add_one(Y* y, const A* a, Wide t) { put(y, get(y) + get(a) * t); }
    static void accumulate(Sum& s, const A* a, const X* x) { s.v = s.v + load<lanes>(x).v * twice(a); }
    static Y total(Sum s)
    {
        if constexpr (sizeof(R) == 8)
            return {lane(s.v, 0), lane(s.v, 1)};
        else
            return {lane(s.v, 0) + lane(s.v, 2), lane(s.v, 1) + lane(s.v, 3)};
    }
};

struct Bfloat16 {
    using A = std::uint16_t;
    using X = std::uint16_t;
    using Y = float;
    using Wide = float;
    static constexpr int lanes = 4;

    struct Sum {
        Vec<float> v{};
        friend Sum operator+(Sum a, Sum b) { return {a.v + b.v}; }
    };
    static Wide widen(X x)
    {
        const std::uint32_t bits = std::uint32_t{x} << 16;
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    static Vec<float> widened(const std::uint16_t* p)
    {
        const __m128i halves = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        return {_mm_castsi128_ps(_mm_unpacklo_epi16(_mm_setzero_si128(), halves))};
    }
    static void add(Y* y, const A* a, Wide t) { store(y, load(y) + widened(a) * broadcast(t)); }
    static void add_one(Y* y, const A* a, Wide t) { put(y, get(y) + widen(get(a)) * t); }
    static void accumulate(Sum& s, const A* a, const X* x) { s.v = s.v + widened(a) * widened(x); }
    static Y total(Sum s) { return fold(s.v); }
};

struct Bytes {
    using A = std::int8_t;
    using X = std::uint8_t;
    using Y = std::uint32_t; // signed ones in two's complement: their products and sums are the same modulo 2^32
    using Wide = std::uint32_t;
    static constexpr int lanes = 8;

    struct Sum {
        __m128i v = _mm_setzero_si128();
        friend Sum operator+(Sum a, Sum b) { return {_mm_add_epi32(a.v, b.v)}; }
    };
    static Wide widen(X x) { return x; }
    static void add(Y* y, const A* a, Wide t)
    {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(a));
        const __m128i factor = _mm_set1_epi32(static_cast<int>(t));
        auto* const first = reinterpret_cast<__m128i*>(y);
        auto* const second = first + 1;
        _mm_storeu_si128(first,
                         _mm_add_epi32(_mm_loadu_si128(first), _mm_mullo_epi32(_mm_cvtepi8_epi32(bytes), factor)));
        _mm_storeu_si128(second, _mm_add_epi32(_mm_loadu_si128(second),
                                               _mm_mullo_epi32(_mm_cvtepi8_epi32(_mm_srli_si128(bytes, 4)), factor)));
    }
    static void add_one(Y* y, const A* a, Wide t) { put(y, get(y) + static_cast<std::uint32_t>(*a) * t); }
    // Two products of nine-bit by eight-bit numbers fit in the 32 bits of pmaddwd.
    static void accumulate(Sum& s, const A* a, const X* x)
    {
        const __m128i u = _mm_cvtepi8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(a)));
        const __m128i v = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(x)));
        s.v = _mm_add_epi32(s.v, _mm_madd_epi16(u, v));
    }
    static Y total(Sum s)
    {
        const __m128i pairs = _mm_add_epi32(s.v, _mm_shuffle_epi32(s.v, 0x4e));
        return static_cast<Y>(_mm_cvtsi128_si32(_mm_add_epi32(pairs, _mm_shuffle_epi32(pairs, 0xb1))));
    }
};

constexpr Int stretch = 512; // rows in a buffer, an even number of registers

// y(0 .. m) contiguous.
template <class M>
void add_columns(Int m, Int n, typename M::Y alpha, const typename M::A* a, Int lda, Strided<const typename M::X> x,
                 typename M::Y* y)
{
    for (Int j = 0; j < n; ++j, a += lda) {
        const auto t = alpha * M::widen(get(x.at(j)));
        Int i = 0;
#pragma GCC unroll 4
        for (; i + M::lanes <= m; i += M::lanes) M::add(y + i, a + i, t);
        for (; i < m; ++i) M::add_one(y + i, a + i, t);
    }
}

// s += a(i) x(i), contiguous.
template <class M>
void sum_column(Int m, const typename M::A* a, const typename M::X* x, typename M::Sum (&s)[2])
{
    Int i = 0;
    for (; i + 2 * M::lanes <= m; i += 2 * M::lanes) {
        M::accumulate(s[0], a + i, x + i);
        M::accumulate(s[1], a + i + M::lanes, x + i + M::lanes);
    }
    if (i + M::lanes <= m) {
        M::accumulate(s[0], a + i, x + i);
        i += M::lanes;
    }
    if (i < m) {
        typename M::A last_a[M::lanes] = {};
        typename M::X last_x[M::lanes] = {};
        for (Int k = 0; i + k < m; ++k) last_a[k] = get(a + i + k), last_x[k] = get(x + i + k);
        M::accumulate(s[1], last_a, last_x);
    }
}

template <class M>
void product(Op op, Int m, Int n, typename M::Y alpha, const typename M::A* a, Int lda, Strided<const typename M::X> x,
             Strided<typename M::Y> y)
{
    using X = typename M::X;
    using Y = typename M::Y;
    if (!op.transposed) {
        if (y.contiguous()) return add_columns<M>(m, n, alpha, a, lda, x, y.first);
        for (Int i = 0; i < m; i += stretch) {
            const Int rows = m - i < stretch ? m - i : stretch;
            Y buffer[stretch];
            for (Int k = 0; k < rows; ++k) buffer[k] = get(y.at(i + k));
            add_columns<M>(rows, n, alpha, a + i, lda, x, buffer);
            for (Int k = 0; k < rows; ++k) put(y.at(i + k), buffer[k]);
        }
        return;
    }
    for (Int j = 0; j < n; ++j, a += lda) {
        typename M::Sum s[2];
        if (x.contiguous()) {
            sum_column<M>(m, a, x.first, s);
        } else {
            for (Int i = 0; i < m; i += stretch) {
                const Int rows = m - i < stretch ? m - i : stretch;
                X buffer[stretch];
                for (Int k = 0; k < rows; ++k) buffer[k] = get(x.at(i + k));
                sum_column<M>(rows, a + i, buffer, s);
            }
        }
        put(y.at(j), get(y.at(j)) + alpha * M::total(s[0] + s[1]));
    }
}

inline void scale(Int n, std::uint32_t beta, Strided<std::uint32_t> y)
{
    for (Int i = 0; i < n && beta != 1; ++i) put(y.at(i), beta == 0 ? 0 : beta * get(y.at(i)));
}

template <class M>
void gemv(const char* trans, Int m, Int n, typename M::Y alpha, const typename M::A* a, Int lda, const typename M::X* x,
          Int incx, typename M::Y beta, typename M::Y* y, Int incy)
{
    using Y = typename M::Y;
    if (m == 0 || n == 0 || (alpha == Y{} && beta == Y{1})) return;
    const Op op(*trans);
    const Int lenx = op.transposed ? m : n, leny = op.transposed ? n : m;
    const Strided<Y> all_y(y, leny, incy);
    scale(leny, beta, all_y);
    if (!(alpha == Y{})) product<M>(op, m, n, alpha, a, lda, {x, lenx, incx}, all_y);
}

} // namespace
} // namespace ork::level2

using namespace ork;

void ork_blas_nx2_scgemv(const char* trans, const int64_t* m, const int64_t* n, const ork_complex_float* alpha,
                         const float* a, const int64_t* lda, const ork_complex_float* x, const int64_t* incx,
                         const ork_complex_float* beta, ork_complex_float* y, const int64_t* incy)
{
    level2::gemv<level2::RealByComplex<float>>(trans, *m, *n, *pairs(alpha), a, *lda, pairs(x), *incx, *pairs(beta),
                                               pairs(y), *incy);
}

void ork_blas_nx2_dzgemv(const char* trans, const int64_t* m, const int64_t* n, const ork_complex_double* alpha,
                         const double* a, const int64_t* lda, const ork_complex_double* x, const int64_t* incx,
                         const ork_complex_double* beta, ork_complex_double* y, const int64_t* incy)
{
    level2::gemv<level2::RealByComplex<double>>(trans, *m, *n, *pairs(alpha), a, *lda, pairs(x), *incx, *pairs(beta),
                                                pairs(y), *incy);
}

void ork_blas_nx2_xgemv_bf16bf16f32(const char* trans, const int64_t* m, const int64_t* n, const float* alpha,
                                    const uint16_t* a, const int64_t* lda, const uint16_t* x, const int64_t* incx,
                                    const float* beta, float* y, const int64_t* incy)
{
    level2::gemv<level2::Bfloat16>(trans, *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}

void ork_blas_nx2_xgemv_s8u8s32(const char* trans, const int64_t* m, const int64_t* n, const int32_t* alpha,
                                const int8_t* a, const int64_t* lda, const uint8_t* x, const int64_t* incx,
                                const int32_t* beta, int32_t* y, const int64_t* incy)
{
    level2::gemv<level2::Bytes>(trans, *m, *n, static_cast<uint32_t>(*alpha), a, *lda, x, *incx,
                                static_cast<uint32_t>(*beta), reinterpret_cast<uint32_t*>(y), *incy);
}

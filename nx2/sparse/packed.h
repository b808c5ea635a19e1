// SPDX-License-Identifier: MIT
// Walking the slices of a packed matrix: a row a lane, and one slice at a time.
#pragma once

#include "ork/abi/sparse/solve.h"
#include "sparse/row_solve.h"

namespace ork::sparse {

using Position = std::int64_t; // of an entry or a slice, whatever integer the arrays hold

template <class Int>
inline void scatter_lanes(double* y, const Int* row, Vec<double> a)
{
    _mm_storel_pd(y + row[0], a.v), _mm_storeh_pd(y + row[1], a.v);
}
template <class Int>
inline void scatter_lanes(float* y, const Int* row, Vec<float> a)
{
    _mm_store_ss(y + row[0], a.v), _mm_store_ss(y + row[1], _mm_movehdup_ps(a.v));
    const __m128 high = _mm_movehl_ps(a.v, a.v);
    _mm_store_ss(y + row[2], high), _mm_store_ss(y + row[3], _mm_movehdup_ps(high));
}
template <class Int>
inline void scatter_lanes(Complex<float>* y, const Int* row, Vec<Complex<float>> a)
{
    scatter_lanes(reinterpret_cast<double*>(y), row, Vec<double>{_mm_castps_pd(a.v.v)});
}
template <class Int>
inline void scatter_lanes(Complex<double>* y, const Int* row, Vec<Complex<double>> a)
{
    store<1>(y + row[0], a);
}

// One number for each of the h rows of a slice.
template <int h, class T>
struct Lanes {
    static constexpr int lanes = Vec<T>::lanes, registers = h / lanes;
    Vec<T> v[registers];

    template <class F>
    [[gnu::always_inline]] static Lanes each(F&& f)
    {
        Lanes a;
#pragma GCC unroll 4
        for (int j = 0; j < registers; ++j) a.v[j] = f(j * lanes, j);
        return a;
    }
    template <class Int>
    [[gnu::always_inline]] static Lanes gathered(const T* x, const Int* row)
    {
        return each([&](int l, int) { return gather(x, row + l, 0); });
    }
    static Lanes at(const T* p)
    {
        return each([&](int l, int) { return load<lanes>(p + l); });
    }
    static Lanes zero()
    {
        return each([](int, int) { return Vec<T>{}; });
    }
    template <class Int>
    [[gnu::always_inline]] void scatter_to(T* y, const Int* row) const
    {
#pragma GCC unroll 4
        for (int j = 0; j < registers; ++j) scatter_lanes(y, row + j * lanes, v[j]);
    }
    void store_at(T* p) const
    {
#pragma GCC unroll 4
        for (int j = 0; j < registers; ++j) store<lanes>(p + j * lanes, v[j]);
    }
    [[gnu::always_inline]] friend Lanes operator+(const Lanes& a, const Lanes& b)
    {
        return each([&](int, int j) { return a.v[j] + b.v[j]; });
    }
    [[gnu::always_inline]] friend Lanes operator-(const Lanes& a, const Lanes& b)
    {
        return each([&](int, int j) { return a.v[j] - b.v[j]; });
    }
    [[gnu::always_inline]] friend Lanes operator*(const Lanes& a, const Lanes& b)
    {
        return each([&](int, int j) { return times(a.v[j], b.v[j]); });
    }
    [[gnu::always_inline]] friend Lanes operator*(T a, const Lanes& b)
    {
        const Factor<T> factor(a);
        return each([&](int, int j) { return factor * b.v[j]; });
    }
};
template <class T>
struct Lanes<1, T> {
    T v;

    template <class Int>
    static Lanes gathered(const T* x, const Int* row)
    {
        return {x[row[0]]};
    }
    static Lanes at(const T* p) { return {*p}; }
    static Lanes zero() { return {T{}}; }
    template <class Int>
    void scatter_to(T* y, const Int* row) const
    {
        y[row[0]] = v;
    }
    void store_at(T* p) const { *p = v; }
    friend Lanes operator+(Lanes a, Lanes b) { return {a.v + b.v}; }
    friend Lanes operator-(Lanes a, Lanes b) { return {a.v - b.v}; }
    friend Lanes operator*(Lanes a, Lanes b) { return {a.v * b.v}; }
    friend Lanes operator*(T a, Lanes b) { return {a * b.v}; }
};

// A packed matrix as its kernels see it; a copy, because stores to y might change the original as far as the compiler
// knows.
template <int h, class Int, class T>
struct PackedSlices {
    using Row = Lanes<h, T>;
    Packed<Int, T> a;
    std::int64_t ahead =
        0; // bytes, of a matrix that comes from memory: those that each() will want, this far on its way

    explicit PackedSlices(const Packed<Int, T>& packed) : a(packed) {}

    const Int* rows(Position s) const { return a.order + s * h; }

    [[gnu::always_inline]] void fetch_slice(const PackedTriangle<Int, T>& t, Position s) const
    {
        if (ahead != 0)
            spblas::fetch_row(spblas::Csr<Int, T>{t.vals, t.cols, nullptr, nullptr}, t.begin[s], t.begin[s + 1], ahead);
    }
    // sum - (the triangle's rows of slice s) x.
    [[gnu::always_inline]] Row less(Row sum, const PackedTriangle<Int, T>& t, Position s, const T* x) const
    {
        fetch_slice(t, s);
        for (Position k = t.begin[s], end = t.begin[s + 1]; k < end; k += h)
            sum = sum - Row::at(t.vals + k) * Row::gathered(x, t.cols + k);
        return sum;
    }
    [[gnu::always_inline]] Row more(Row sum, const PackedTriangle<Int, T>& t, Position s, const T* x) const
    {
        fetch_slice(t, s);
        for (Position k = t.begin[s], end = t.begin[s + 1]; k < end; k += h)
            sum = sum + Row::at(t.vals + k) * Row::gathered(x, t.cols + k);
        return sum;
    }
    [[gnu::always_inline]] Row times_inverse(Row sum, Position s) const
    {
        return a.inverse == nullptr ? sum : sum * Row::at(a.inverse + s * h);
    }
    // Whether lane l is a row of its own.
    bool counts(Position s, int l) const { return l == 0 || rows(s)[l] != rows(s)[0]; }

    // body(s), of a matrix that comes from memory with what slices ahead need of the vectors on its way: their rows are
    // scattered, which no hardware foresees. x_begin, x_cols: of the triangle that names elements of x before their own
    // slices have touched them, of which those of its last entries are the furthest ahead.
    template <class Body>
    [[gnu::always_inline]] void each(Position first, Position last, bool descending, const T* b, const T* x,
                                     Body&& body, const Int* x_begin = nullptr, const Int* x_cols = nullptr)
    {
        ahead = a.far == 0 ? 0 : descending ? -far_ahead : far_ahead;
        constexpr Position rows_ahead = 64 / h;
        const Position step = descending ? -1 : 1, end = descending ? first - 1 : last;
        const Position fetched = a.far == 0 || a.height != h ? 0 : a.slices;
        for (Position s = descending ? last - 1 : first; s != end; s += step) {
            if (const Position next = s + step * rows_ahead; 0 <= next && next < fetched)
#pragma GCC unroll 4
                for (int l = 0; l < h; ++l) {
                    fetch_at(b + rows(next)[l], 0);
                    if (x_begin == nullptr)
                        fetch_at(x + rows(next)[l], 0);
                    else if (x_begin[next] != x_begin[next + 1])
                        fetch_at(x + x_cols[x_begin[next + 1] - h + l], 0);
                }
            body(s);
        }
    }
};

// body(slices) with the height as a constant.
template <class Int, class T, class Body>
[[gnu::always_inline]] inline void with_height(const Packed<Int, T>* a, Body&& body)
{
    if (a->height == 1)
        body(PackedSlices<1, Int, T>(*a));
    else
        body(PackedSlices<4, Int, T>(*a));
}

// y = T^-1 alpha b with the strict triangle `t` and the diagonal's inverse.
template <class Int, class T>
[[gnu::noinline]] void packed_solve(Position first, Position last, bool upper, Position base, const Packed<Int, T>* a,
                                    T alpha, const T* b, T* y)
{
    if (first >= last) return;
    with_height(
        a, [&](auto slices) __attribute__((always_inline)) {
            using Row = typename decltype(slices)::Row;
            const PackedTriangle<Int, T> t = upper ? slices.a.upper : slices.a.lower;
            const T* const x = spblas::counted_from(base, y);
            slices.each(
                first, last, upper, b, y, [&](Position s) __attribute__((always_inline)) {
                    const Row sum = slices.less(alpha * Row::gathered(b, slices.rows(s)), t, s, x);
                    slices.times_inverse(sum, s).scatter_to(y, slices.rows(s));
                });
        });
}

// y = alpha (L + D + U) x + beta y, of L and U those that are asked for.
template <class Int, class T>
[[gnu::noinline]] void packed_product(Position first, Position last, bool lower, bool upper, const Packed<Int, T>* a,
                                      T alpha, const T* x, T beta, T* y, T* dot)
{
    T sum_of_products{};
    with_height(
        a, [&](auto slices) __attribute__((always_inline)) {
            using Row = typename decltype(slices)::Row;
            constexpr int h = sizeof(Row) / sizeof(T);
            if (first < last)
                slices.each(
                    first, last, false, x, y, [&](Position s) __attribute__((always_inline)) {
                        const Int* const rows = slices.rows(s);
                        Row sum = Row::zero();
                        if (lower) sum = slices.more(sum, slices.a.lower, s, x);
                        if (slices.a.diagonal != nullptr)
                            sum = sum + Row::at(slices.a.diagonal + s * h) * Row::gathered(x, rows);
                        if (upper) sum = slices.more(sum, slices.a.upper, s, x);
                        sum = alpha * sum;
                        if (!(beta == T{})) sum = sum + beta * Row::gathered(y, rows);
                        sum.scatter_to(y, rows);
                        if (dot != nullptr)
                            for (int l = 0; l < h; ++l)
                                if (slices.counts(s, l))
                                    sum_of_products = sum_of_products + conjugated(x[rows[l]]) * y[rows[l]];
                    });
        });
    if (dot != nullptr) *dot = sum_of_products;
}

} // namespace ork::sparse

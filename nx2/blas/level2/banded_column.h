// SPDX-License-Identifier: MIT
// What the band and packed kernels do with one or two columns' stored elements: y <- y + t a, the sums of a x, or both
// with one look at a.
//
// Orders. y: the columns' products are added to an element one after the other, so its bits depend on nothing but its
// own row. Sums, by the column's rows alone: fewer than `few` elements, one after the other. Of more, registers of
// elements, from the first row on that is a multiple of their lanes and of 2, go to `parts` accumulators by turns, the
// elements before and after them, zeros in the other lanes, to the last one. The sum is (A0 + A1) + (A2 + A3), or A0 +
// A1, or A0; then its lanes (0 + 1, or (0 + 2) + (1 + 3)). Complex sums keep a.re x.re and a.im x.im apart from
// a.re x.im and a.im x.re until after the lanes; then the first two are subtracted and the others added (conjugated:
// the other way). Neither increments nor a second column change any of this.
#pragma once

#include "blas/level2/options.h"
#include "blas/level2/strided.h"

namespace ork::level2 {

// Elements a(0 .. count) beside rows row .. row + count of a vector.
template <class T> // may be const
struct StoredColumn {
    Int row, count;
    T* a;

    Int end() const { return row + count; }
};

template <class T>
struct Accumulator {
    Vec<T> value{};

    [[gnu::always_inline]] void add(Vec<T> a, Vec<T> x, Vec<T>) { value = value + a * x; }
    friend Accumulator operator+(Accumulator a, Accumulator b) { return {a.value + b.value}; }
    T total(bool) const { return fold(value); }
    static Vec<T> turned(Vec<T> x) { return x; }
};
template <class R>
struct Accumulator<Complex<R>> {
    Vec<R> straight{}, crossed{};

    [[gnu::always_inline]] void add(Vec<Complex<R>> a, Vec<Complex<R>> x, Vec<Complex<R>> turned)
    {
        straight = straight + a.v * x.v;
        crossed = crossed + a.v * turned.v;
    }
    friend Accumulator operator+(Accumulator a, Accumulator b)
    {
        return {a.straight + b.straight, a.crossed + b.crossed};
    }
    Complex<R> total(bool conjugated) const
    {
        const Complex<R> s = pair(straight), c = pair(crossed);
        if (conjugated) return {s.re + s.im, c.re - c.im};
        return {s.re - s.im, c.re + c.im};
    }
    static Vec<Complex<R>> turned(Vec<Complex<R>> x) { return {exchanged(x.v)}; }

private:
    static Complex<R> pair(Vec<double> a) { return {lane(a, 0), lane(a, 1)}; }
    static Complex<R> pair(Vec<float> a)
    {
        const Vec<float> both{_mm_add_ps(a.v, _mm_movehl_ps(a.v, a.v))};
        return {_mm_cvtss_f32(both.v), _mm_cvtss_f32(_mm_movehdup_ps(both.v))};
    }
};

// `count` elements, fewer than a register holds, and zeros above them.
inline Vec<double> load_some(const double* p, Int) { return {_mm_set_sd(get(p))}; }
inline Vec<float> load_some(const float* p, Int count)
{
    if (count == 1) return {_mm_set_ss(get(p))};
    if (count == 2) return load_low(p);
    return {_mm_movelh_ps(load_low(p).v, _mm_set_ss(get(p + 2)))};
}
inline Vec<Complex<float>> load_some(const Complex<float>* p, Int) { return {load_low(reals(p))}; }
inline Vec<Complex<double>> load_some(const Complex<double>* p, Int) { return load<1>(p); }

// In a register for good: the compiler would load twice what is used twice.
template <class T>
[[gnu::always_inline]] inline Vec<T> pinned(Vec<T> a)
{
    if constexpr (is_complex<T>)
        asm("" : "+x"(a.v.v));
    else
        asm("" : "+x"(a.v));
    return a;
}

// Accumulators of a sum that stands alone, and of one beside which y is added to.
template <class T>
constexpr int parts_alone = is_complex<T> ? 2 : 4;
template <class T>
constexpr int parts_beside_y = is_complex<T> ? 1 : 4;
template <class T>
constexpr Int few = is_complex<T> ? 4 : 12;

template <class T, int parts>
struct Parts {
    Accumulator<T> part[parts];

    T total(bool conjugated) const
    {
        if constexpr (parts == 4) return ((part[0] + part[1]) + (part[2] + part[3])).total(conjugated);
        if constexpr (parts == 2) return (part[0] + part[1]).total(conjugated);
        return part[0].total(conjugated);
    }
};

// `columns` columns at a time; y and x contiguous, with row 0 at their beginning.
template <bool adds, bool sums, int columns, int parts, class T>
class Pass {
public:
    static constexpr int lanes = Vec<T>::lanes, turns = sums ? parts : 4;
    static constexpr Int unit = lanes < 2 ? 2 : lanes, block = turns * lanes;

    Parts<T, parts> result[columns];

    // The first row at or after `row` that y is walked from in registers. The next column, one row further, then loads
    // what this one stored and not parts of two stores, for which it would have to wait.
    static Int boundary(Int row) { return (row + unit - 1) & -unit; }

    // Whether two columns can go together.
    static bool match(const StoredColumn<const T>& a, const StoredColumn<const T>& b)
    {
        const Int from = boundary(a.row), end = a.end() < b.end() ? a.end() : b.end();
        return from == boundary(b.row) && end >= from + block && a.count >= few<T> && b.count >= few<T>;
    }

    Pass(const StoredColumn<const T> (&column)[columns], const T (&t)[columns], T* y, const T* x)
        : Pass(column, t, y, x, std::make_integer_sequence<int, columns>())
    {
    }

    // Everything but what the columns have left in the end.
    [[gnu::always_inline]] void begin(bool far = false)
    {
        const Int from = boundary(column_[0].row);
        Int end = column_[0].end();
#pragma GCC unroll 2
        for (int c = 0; c < columns; ++c) {
            const Int row = column_[c].row, to = column_[c].end();
            if (from != row) edge(c, row, (from < to ? from : to) - row);
            end = to < end ? to : end;
        }
        row_ = from;
        if (far) {
            for (; row_ + block <= end; row_ += block) {
#pragma GCC unroll 2
                for (int c = 0; c < columns; ++c) prefetch<block>(at(c, row_));
                step_block<0, columns>();
            }
        } else {
            for (; row_ + block <= end; row_ += block) step_block<0, columns>();
        }
    }

    // What column c has left; its sum is complete then.
    template <int c>
    [[gnu::always_inline]] void finish()
    {
        const Int kept = row_, end = column_[c].end();
        for (; row_ + block <= end; row_ += block) step_block<c, c + 1>();
#pragma GCC unroll 4
        for (int k = 0; k < turns - 1; ++k)
            if (row_ + lanes <= end) {
                step<lanes, c, c + 1>(row_, k);
                row_ += lanes;
            }
        if constexpr (lanes > 1)
            if (row_ < end) edge(c, row_, end - row_);
        row_ = kept;
    }

private:
    template <int... c>
    Pass(const StoredColumn<const T> (&column)[columns], const T (&t)[columns], T* y, const T* x,
         std::integer_sequence<int, c...>)
        : column_{column[c]...}, t_{Factor<T>(t[c])...}, y_(y), x_(x)
    {
    }

    const T* at(int c, Int row) const { return column_[c].a + (row - column_[c].row); }

    template <int first, int last>
    [[gnu::always_inline]] void step_block()
    {
#pragma GCC unroll 4
        for (int k = 0; k < turns; ++k) step<lanes, first, last>(row_ + k * lanes, k);
    }

    template <int width, int first, int last>
    [[gnu::always_inline]] void step(Int row, int k)
    {
        Vec<T> v, u, turned;
        if constexpr (adds) v = load<width>(y_ + row);
        if constexpr (sums) {
            u = pinned(load<width>(x_ + row));
            turned = Accumulator<T>::turned(u);
        }
#pragma GCC unroll 2
        for (int c = first; c < last; ++c) {
            if constexpr (!sums) {
                v = sum(v, times<width>(t_[c], at(c, row)));
            } else {
                const Vec<T> a = pinned(load<width>(at(c, row)));
                if constexpr (adds) v = sum(v, t_[c] * a);
                result[c].part[k].add(a, u, turned);
            }
        }
        if constexpr (adds) store<width>(y_ + row, v);
    }

    // Fewer elements of column c than `unit`.
    [[gnu::always_inline]] void edge(int c, Int row, Int count)
    {
        const T* a = at(c, row);
        if constexpr (sums) {
            const Vec<T> u = load_some(x_ + row, count);
            result[c].part[parts - 1].add(load_some(a, count), u, Accumulator<T>::turned(u));
        }
        if constexpr (adds) {
            T* y = y_ + row;
            if constexpr (unit == 4)
                if (count & 2) {
                    store<2>(y, sum(load<2>(y), times<2>(t_[c], a)));
                    y += 2, a += 2;
                }
            if (count & 1) store<1>(y, sum(load<1>(y), times<1>(t_[c], a)));
        }
    }

    StoredColumn<const T> column_[columns];
    Factor<T> t_[columns];
    T* y_;
    const T* x_;
    Int row_ = 0;
};

// In one store: a load of the whole element right behind stores of its parts would wait for both.
inline void put_whole(float* p, float a) { put(p, a); }
inline void put_whole(double* p, double a) { put(p, a); }
inline void put_whole(Complex<float>* p, Complex<float> a)
{
    store<1>(p, Vec<Complex<float>>{{_mm_unpacklo_ps(_mm_set_ss(a.re), _mm_set_ss(a.im))}});
}
inline void put_whole(Complex<double>* p, Complex<double> a) { store(reals(p), Vec<double>{_mm_set_pd(a.im, a.re)}); }

// y <- y + t a of one element.
template <class T>
[[gnu::always_inline]] inline void add_one(T* y, Factor<T> factor, T t, const T* a)
{
    if constexpr (is_complex<T>)
        store<1>(y, sum(load<1>(y), times<1>(factor, a)));
    else
        put(y, get(y) + t * get(a));
}

// Columns of few elements, and y with increments.
template <class T>
[[gnu::always_inline]] inline void add_one_by_one(const StoredColumn<const T>& c, T t, Strided<T> y)
{
    const Factor<T> factor(t);
    T* p = y.at(c.row);
#pragma GCC unroll 2
    for (Int i = 0; i < c.count; ++i, p += y.inc) add_one(p, factor, t, c.a + i);
}
template <class T>
[[gnu::always_inline]] inline T sum_one_by_one(const StoredColumn<const T>& c, Strided<const T> x, bool conjugated)
{
    T s{};
    const T* p = x.at(c.row);
    for (Int i = 0; i < c.count; ++i, p += x.inc)
        s = s + (conjugated ? conjugate<true>(get(c.a + i)) : get(c.a + i)) * get(p);
    return s;
}

template <class T>
[[gnu::always_inline]] inline T add_and_sum_one_by_one(const StoredColumn<const T>& c, T t, T* y, const T* x,
                                                       bool conjugated)
{
    const Factor<T> factor(t);
    T s{};
    y += c.row, x += c.row;
    for (Int i = 0; i < c.count; ++i) {
        add_one(y + i, factor, t, c.a + i);
        s = s + (conjugated ? conjugate<true>(get(c.a + i)) : get(c.a + i)) * get(x + i);
    }
    return s;
}

// The sum along increments, through a buffer, in the order of a Pass with so many parts.
template <int parts, class T>
[[gnu::noinline]] T sum_strided(const StoredColumn<const T>& c, Strided<const T> x, bool conjugated)
{
    using Sum = Pass<false, true, 1, parts, T>;
    if (c.count < few<T>) return sum_one_by_one(c, x, conjugated);
    constexpr Int most = 32 * Vec<T>::lanes; // a multiple of every block
    Buffer<T, most + 2 * Sum::unit> buffer;
    Parts<T, parts> s;
    Int row = c.row, end = Sum::boundary(row) + most;
    for (; row < c.end(); row = end, end += most) {
        if (end > c.end()) end = c.end();
        const Int shift = row & (Sum::unit - 1);
        gather<T>(end - row, x.from(row), buffer.data() + shift);
        Sum pass({{shift, end - row, c.a + (row - c.row)}}, {T{}}, nullptr, buffer.data());
        pass.result[0] = s;
        pass.begin();
        pass.template finish<0>();
        s = pass.result[0];
    }
    return s.total(conjugated);
}

// `narrow`: all columns are of few elements and the vectors contiguous. A kernel is compiled for itself then, and what
// it does for a column is little more than the arithmetic.

// y(row .. row + count) <- y + t a.
template <bool narrow, class T>
[[gnu::always_inline]] inline void add_column(const StoredColumn<const T>& c, T t, Strided<T> y, bool far)
{
    if (!narrow && !y.contiguous()) return add_one_by_one(c, t, y);
    if (narrow || c.count < few<T>) return add_one_by_one(c, t, Strided<T>(y.first));
    Pass<true, false, 1, 1, T> pass({c}, {t}, y.first, nullptr);
    pass.begin(far);
    pass.template finish<0>();
}

// Sum of a x(row .. row + count), or of conj(a) x.
template <bool narrow, class T>
[[gnu::always_inline]] inline T column_sum(const StoredColumn<const T>& c, Strided<const T> x, bool conjugated,
                                           bool far)
{
    if (!narrow && !x.contiguous()) return sum_strided<parts_alone<T>>(c, x, conjugated);
    if (narrow || c.count < few<T>) return sum_one_by_one(c, Strided<const T>(x.first), conjugated);
    Pass<false, true, 1, parts_alone<T>, T> pass({c}, {T{}}, nullptr, x.first);
    pass.begin(far);
    pass.template finish<0>();
    return pass.result[0].total(conjugated);
}

// Both; x and y do not overlap.
template <bool narrow, class T>
[[gnu::always_inline]] inline T add_and_sum(const StoredColumn<const T>& c, T t, Strided<T> y, Strided<const T> x,
                                            bool conjugated, bool far)
{
    if (!narrow && (!x.contiguous() || !y.contiguous())) {
        add_one_by_one(c, t, y);
        return sum_strided<parts_beside_y<T>>(c, x, conjugated);
    }
    if (narrow || c.count < few<T>) return add_and_sum_one_by_one(c, t, y.first, x.first, conjugated);
    Pass<true, true, 1, parts_beside_y<T>, T> pass({c}, {t}, y.first, x.first);
    pass.begin(far);
    pass.template finish<0>();
    return pass.result[0].total(conjugated);
}

// Calls body with the n elements of v contiguous, where they fit into a buffer on the stack; else with v itself. They
// return to v unless they are constant.
template <class T, class Body>
[[gnu::noinline]] void in_buffer(Int n, Strided<T> v, const Body& body)
{
    using Element = std::remove_const_t<T>;
    Buffer<Element, chunk> buffer;
    gather<Element>(n, v, buffer.data());
    body(Strided<T>(buffer.data()));
    if constexpr (!std::is_const_v<T>) scatter<T>(n, buffer.data(), v);
}
template <class T, class Body>
inline void contiguous(Int n, Strided<T> v, const Body& body)
{
    if (v.contiguous() || v.inc == 0 || n > chunk)
        body(v);
    else
        in_buffer(n, v, body);
}

// A matrix that comes from memory: then lines are asked for ahead of their turn, which only costs in the caches.
template <class T>
inline bool is_far(Int elements)
{
    return elements * Int(sizeof(T)) >= 8 << 20;
}

} // namespace ork::level2

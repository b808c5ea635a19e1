// SPDX-License-Identifier: MIT
// Many tridiagonal systems in the lanes of registers, without interchanges. With d, du and b of equation i - 1 as they
// became,
//     d(i) <- 1 / (d(i) - dl(i) du(i - 1)),  du(i) <- du(i) d(i),  b(i) <- (b(i) - dl(i) b(i - 1)) d(i),
// then b(i) <- b(i) - du(i) b(i + 1) upwards: one division an equation. Its latency is the limit, so several registers
// are under way at a time.
#pragma once

#include "blas/divide.h"
#include "lapack/column_lanes.h"

namespace ork::lapack {

using Int = std::int64_t;

// dl, d, du and b stand alike. dl of the first equation is not read, du of the last one not used.
template <class T>
struct TridiagonalSystems {
    Int n;
    const T* dl;
    T *d, *du, *b;
    Int ld;
};

namespace tridiagonal {

inline Vec<double> is_zero(Vec<double> a) { return {_mm_cmpeq_pd(a.v, _mm_setzero_pd())}; }
inline Vec<float> is_zero(Vec<float> a) { return {_mm_cmpeq_ps(a.v, _mm_setzero_ps())}; }
inline Vec<double> both(Vec<double> a, Vec<double> b) { return {_mm_and_pd(a.v, b.v)}; }
inline Vec<float> both(Vec<float> a, Vec<float> b) { return {_mm_and_ps(a.v, b.v)}; }
inline Vec<double> either(Vec<double> a, Vec<double> b) { return {_mm_or_pd(a.v, b.v)}; }
inline Vec<float> either(Vec<float> a, Vec<float> b) { return {_mm_or_ps(a.v, b.v)}; }
// By the exponent: a comparison would raise a flag for NaN.
inline Vec<double> not_finite(Vec<double> a)
{
    const __m128i exponent = _mm_set1_epi64x(0x7ff0000000000000);
    return {_mm_castsi128_pd(_mm_cmpeq_epi64(_mm_and_si128(_mm_castpd_si128(a.v), exponent), exponent))};
}
inline Vec<float> not_finite(Vec<float> a)
{
    const __m128i exponent = _mm_set1_epi32(0x7f800000);
    return {_mm_castsi128_ps(_mm_cmpeq_epi32(_mm_and_si128(_mm_castps_si128(a.v), exponent), exponent))};
}
inline int signs(Vec<double> a) { return _mm_movemask_pd(a.v); }
inline int signs(Vec<float> a) { return _mm_movemask_ps(a.v); }

// All ones in both parts of an element that is zero.
template <class T>
inline Vec<Real<T>> zero_elements(Vec<T> a)
{
    const Vec<Real<T>> zero = is_zero(reals(a));
    if constexpr (is_complex<T>)
        return both(zero, exchanged(zero));
    else
        return zero;
}

template <class T>
inline Vec<T> inverse(Vec<T> a)
{
    using R = Real<T>;
    if constexpr (is_complex<T>) {
        T x[Vec<T>::lanes];
        store<Vec<T>::lanes>(x, a);
        for (T& e : x) e = divided(T{1, 0}, e);
        return load<Vec<T>::lanes>(x);
    } else {
        return broadcast(R(1)) / a;
    }
}

// What is done: all in one, with d and du as they were and scratch for what they become; d and du alone, in place; or b
// with d and du as the second left them.
enum class Task { solve, factor, apply };

// What equation i + 1 needs of equation i.
template <class T>
struct Above {
    Vec<T> du, b;
};

// `zero` collects the lanes that have met a pivot of zero, for the task that can't look for it afterwards.
template <Task task, bool first, class T>
[[gnu::always_inline]] inline void eliminate(Above<T>& above, Vec<T> dl, Vec<T>& d, Vec<T>& du, Vec<T>& b,
                                             Vec<Real<T>>& zero)
{
    if constexpr (task != Task::apply) {
        if constexpr (!first) d = d - times(dl, above.du);
        if constexpr (task == Task::factor) zero = either(zero, zero_elements(d));
        d = inverse(d);
        above.du = du = times(du, d);
    }
    if constexpr (task != Task::factor) {
        if constexpr (!first) b = b - times(dl, above.b);
        above.b = b = times(b, d);
    }
}

// The lowest lane that is set, as an element's; only called where there is one.
template <class T>
inline Int first_lane(Vec<Real<T>> zero)
{
    return __builtin_ctz(static_cast<unsigned>(signs(zero))) / (is_complex<T> ? 2 : 1);
}

// The first of the systems, counted from 1, with a pivot of zero, or 0; equations are `down` apart, systems `along`. A
// solution that has met 1 / 0 stays infinite or NaN from there upwards, so this is asked only where b(1) is not finite.
template <class T>
[[gnu::noinline]] inline Int first_zero_pivot(TridiagonalSystems<T> a, Int systems, Int along, Int down)
{
    for (Int s = 0; s < systems; ++s) {
        T above{};
        for (Int i = 0; i < a.n; ++i) {
            const Int at = s * along + i * down;
            const T pivot = i > 0 ? a.d[at] - a.dl[at] * above : a.d[at];
            if (pivot == T{}) return s + 1;
            above = a.du[at] * divided(T{1}, pivot);
        }
    }
    return 0;
}

constexpr Int systems_at_once = 16; // whose du and b go through the scratch memory, n elements each

// System s of equation i at [i ld + s]: registers of adjacent systems, equation by equation for a block of them, whose
// previous equation is still in the nearest cache.
template <Task task, class T>
class Interleaved {
public:
    // The first of the systems, counted from 1, with a pivot of zero, or 0.
    static Int run(const TridiagonalSystems<T>& a, Int systems, T* scratch)
    {
        Int info = 0;
        for (Int s = 0; s < systems; s += block) {
            const Int count = systems - s < block ? systems - s : block;
            const TridiagonalSystems<T> part{a.n, a.dl + s, a.d + s, a.du + s, task == Task::factor ? nullptr : a.b + s,
                                             a.ld};
            const Int zero = run_block(part, count, scratch);
            if (info == 0 && zero != 0) info = s + zero;
        }
        return info;
    }

private:
    static constexpr int lanes = Vec<T>::lanes;
    static constexpr Int block = 2 * systems_at_once;

    // body.operator()<width>(register, first system)
    template <class Body>
    [[gnu::always_inline]] static void each_register(Int count, Body&& body)
    {
        int r = 0;
        Int s = 0;
        for (; s + lanes <= count; s += lanes) body.template operator()<lanes>(r++, s);
        for (; s < count; ++s) body.template operator()<1>(r++, s);
    }

    [[gnu::noinline]] static Int run_block(const TridiagonalSystems<T>& a, Int count, T* scratch)
    {
        constexpr bool inverts = task != Task::apply, solves = task != Task::factor;
        Vec<Real<T>> zero[block / lanes + lanes] = {};
        T* const du_out = task == Task::solve ? scratch : a.du;
        const Int du_ld = task == Task::solve ? count : a.ld;
        const auto equation = [&]<bool first>(Int i) __attribute__((always_inline))
        {
            each_register(
                count, [&]<int width>(int r, Int s) __attribute__((always_inline)) {
                    const Int at = i * a.ld + s, du_at = i * du_ld + s;
                    Vec<T> dl{}, d = load<width>(a.d + at), du{}, b{};
                    Above<T> above{};
                    if constexpr (inverts) du = load<width>(a.du + at);
                    if constexpr (solves) b = load<width>(a.b + at);
                    if constexpr (!first) {
                        dl = load<width>(a.dl + at);
                        if constexpr (inverts) above.du = load<width>(du_out + du_at - du_ld);
                        if constexpr (solves) above.b = load<width>(a.b + at - a.ld);
                    }
                    eliminate<task, first>(above, dl, d, du, b, zero[r]);
                    if constexpr (task == Task::factor) store<width>(a.d + at, d);
                    if constexpr (inverts) store<width>(du_out + du_at, du);
                    if constexpr (solves) store<width>(a.b + at, b);
                });
        };
        if (a.n > 0) equation.template operator()<true>(0);
        for (Int i = 1; i < a.n; ++i) equation.template operator()<false>(i);
        if constexpr (solves)
            for (Int i = a.n - 2; i >= 0; --i)
                each_register(
                    count, [&]<int width>(int, Int s) __attribute__((always_inline)) {
                        T* const b = a.b + i * a.ld + s;
                        const Vec<T> du = load<width>(du_out + i * du_ld + s);
                        store<width>(b, load<width>(b) - times(du, load<width>(b + a.ld)));
                    });
        Int info = 0;
        if constexpr (task == Task::factor)
            each_register(count, [&]<int width>(int r, Int s) {
                if (info == 0 && signs(zero[r]) != 0) info = s + 1 + (width == 1 ? 0 : first_lane<T>(zero[r]));
            });
        if constexpr (task == Task::solve) {
            int suspicious = 0;
            if (a.n > 0)
                each_register(count, [&]<int width>(int, Int s) {
                    suspicious |= signs(not_finite(reals(load<width>(a.b + s))));
                });
            if (suspicious != 0) info = first_zero_pivot(a, count, 1, a.ld);
        }
        return info;
    }
};

// Equation i of system s at [s ld + i]: the elements of some systems go to the lanes one by one or in squares that are
// transposed on the way.
template <Task task, class T>
class Consecutive {
public:
    static Int run(const TridiagonalSystems<T>& a, Int systems, T* scratch)
    {
        Int info = 0;
        if (a.n <= 0) return info;
        for_each_group<T, 4>(systems, [&]<int registers>(Int s, Int count) {
            const Int from = s * a.ld;
            const TridiagonalSystems<T> part{
                a.n, a.dl + from, a.d + from, a.du + from, task == Task::factor ? nullptr : a.b + from, a.ld};
            const Int zero = run_group<registers>(part, count, scratch);
            if (info == 0 && zero != 0) info = s + zero;
        });
        return info;
    }

private:
    static constexpr int lanes = Vec<T>::lanes;
    // Two elements come as fast one by one, and leave faster.
    static constexpr int square = lanes == 4 ? 4 : 1;

    template <int registers>
    struct Group {
        ColumnLanes<T, registers> systems;
        Above<T> above[registers] = {};
        Vec<Real<T>> zero[registers] = {};

        Group(Int ld, Int count) : systems(ld, count) {}

        // Equations p .. p + rows - 1; rows is 1 or lanes.
        template <int rows>
        [[gnu::always_inline]] void get(const T* p, int r, Vec<T>* x) const
        {
            if constexpr (rows == 1)
                x[0] = systems.row(p, r);
            else
                systems.square(p, r, x);
        }
        template <int rows>
        [[gnu::always_inline]] void put(T* p, int r, const Vec<T>* x) const
        {
            if constexpr (rows == 1)
                systems.put_row(p, r, x[0]);
            else
                systems.put_square(p, r, x);
        }
        // Two registers for each of ours.
        [[gnu::always_inline]] static T* scratch_of(T* scratch, Int i, int r)
        {
            return scratch + (i * registers + r) * 2 * lanes;
        }

        template <int rows, bool first>
        [[gnu::always_inline]] void down(const TridiagonalSystems<T>& a, Int i, T* scratch)
        {
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) {
                Vec<T> dl[rows] = {}, d[rows], du[rows] = {}, b[rows] = {};
                if constexpr (rows > 1 || !first) get<rows>(a.dl + i, r, dl);
                get<rows>(a.d + i, r, d);
                if constexpr (task != Task::apply) get<rows>(a.du + i, r, du);
                if constexpr (task != Task::factor) get<rows>(a.b + i, r, b);
#pragma GCC unroll 4
                for (int l = 0; l < rows; ++l) {
                    if (first && l == 0)
                        eliminate<task, true>(above[r], dl[l], d[l], du[l], b[l], zero[r]);
                    else
                        eliminate<task, false>(above[r], dl[l], d[l], du[l], b[l], zero[r]);
                    if constexpr (task == Task::solve) {
                        T* const to = scratch_of(scratch, i + l, r);
                        store<lanes>(to, du[l]), store<lanes>(to + lanes, b[l]);
                    }
                }
                if constexpr (task == Task::factor) put<rows>(a.d + i, r, d), put<rows>(a.du + i, r, du);
                if constexpr (task == Task::apply) put<rows>(a.b + i, r, b);
            }
        }

        // above[].b now is of the equation below; the last one has none.
        template <int rows, bool last>
        [[gnu::always_inline]] void up(const TridiagonalSystems<T>& a, Int i, T* scratch)
        {
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) {
                Vec<T> du[rows], b[rows];
                if constexpr (task == Task::apply) get<rows>(a.du + i, r, du), get<rows>(a.b + i, r, b);
#pragma GCC unroll 4
                for (int l = rows - 1; l >= 0; --l) {
                    if constexpr (task == Task::solve) {
                        const T* const from = scratch_of(scratch, i + l, r);
                        du[l] = load<lanes>(from), b[l] = load<lanes>(from + lanes);
                    }
                    if (!last || l != rows - 1) b[l] = b[l] - times(du[l], above[r].b);
                    above[r].b = b[l];
                }
                put<rows>(a.b + i, r, b);
            }
        }

        [[gnu::always_inline]] Int run(const TridiagonalSystems<T>& a, Int count, T* scratch)
        {
            const Int n = a.n;
            Int i = 0;
            if (n >= square)
                down<square, true>(a, 0, scratch), i = square;
            else
                down<1, true>(a, 0, scratch), i = 1;
            for (; i + square <= n; i += square) down<square, false>(a, i, scratch);
            for (; i < n; ++i) down<1, false>(a, i, scratch);
            if constexpr (task != Task::factor) {
                if (i % square != 0)
                    up<1, true>(a, --i, scratch);
                else
                    i -= square, up<square, true>(a, i, scratch);
                for (; i % square != 0; --i) up<1, false>(a, i - 1, scratch);
                for (; i > 0; i -= square) up<square, false>(a, i - square, scratch);
            }
            if constexpr (task == Task::factor)
                for (int r = 0; r < registers; ++r)
                    if (signs(zero[r]) != 0) return r * lanes + first_lane<T>(zero[r]) + 1;
            if constexpr (task == Task::solve) {
                int suspicious = 0;
#pragma GCC unroll 4
                for (int r = 0; r < registers; ++r) suspicious |= signs(not_finite(reals(systems.row(a.b, r))));
                if (suspicious != 0) return first_zero_pivot(a, count, a.ld, 1);
            }
            return 0;
        }
    };

    template <int registers>
    [[gnu::noinline]] static Int run_group(const TridiagonalSystems<T>& systems, Int count, T* scratch)
    {
        const TridiagonalSystems<T> a = systems;
        Group<registers> group(a.ld, count); // here, so that it stays in registers
        return group.run(a, count, scratch);
    }
};

} // namespace tridiagonal

} // namespace ork::lapack

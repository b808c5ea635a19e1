// SPDX-License-Identifier: MIT
// Singular values of an upper bidiagonal matrix by implicit QR, to high relative accuracy: Demmel and Kahan, "Accurate
// singular values of bidiagonal matrices", SIAM J. Sci. Stat. Comput. 11, 1990.
#pragma once

#include "lapack/rotation.h"
#include "lapack/spectral/sweep.h"

namespace ork::lapack {

// Columns that the rotations of one side turn: real parts of a column, distance of columns. No columns: null.
template <class R>
struct Columns {
    R* data;
    Int parts, ld;

    R* at(Int j) const { return data + j * ld; }
};

namespace bidiagonal {

// A block of the matrix that has not split, seen from the end at which a sweep begins: the other end's view is that of
// the transpose with rows and columns reversed, which is upper bidiagonal as well.
template <class R>
struct Block {
    Int first, last; // indices
    bool upwards;
    R *d_data, *e_data;

    Int size() const { return last - first + 1; }
    R& d(Int i) const { return d_data[upwards ? last - i : first + i]; }
    R& e(Int i) const { return e_data[upwards ? last - 1 - i : first + i]; }
};

// The smaller singular value of (f g; 0 h).
template <class R>
inline R smallest_of_two(R f, R g, R h)
{
    const R af = absolute(f), ah = absolute(h);
    const R small = smaller(af, ah), large = larger(af, ah);
    if (small == 0) return 0;
    return small * (2 * large / (modulus(af + ah, g) + modulus(large - small, g)));
}

// A sweep of implicit zero-shift QR, which takes no difference of anything.
template <class R>
inline void zero_shift_sweep(Block<R> b, R* c1, R* s1, R* c2, R* s2)
{
    const Int last = b.size() - 1;
    R c = 1, old_c = 1, old_s = 0;
    for (Int i = 0; i < last; ++i) {
        const Rotation<R> right = rotation(b.d(i) * c, b.e(i));
        c = right.c;
        if (i > 0) b.e(i - 1) = old_s * right.r;
        const Rotation<R> left = rotation(old_c * right.r, b.d(i + 1) * right.s);
        old_c = left.c, old_s = left.s, b.d(i) = left.r;
        c1[i] = right.c, s1[i] = right.s, c2[i] = left.c, s2[i] = left.s;
    }
    const R h = b.d(last) * c;
    b.d(last) = h * old_c, b.e(last - 1) = h * old_s;
}

template <class R>
inline void shifted_sweep(Block<R> b, R shift, R* c1, R* s1, R* c2, R* s2)
{
    const Int last = b.size() - 1;
    R d = b.d(0), e = b.e(0);
    R f = (absolute(d) - shift) * (with_sign(R(1), d) + shift / d), g = e;
    for (Int i = 0; i < last; ++i) {
        const Rotation<R> right = rotation(f, g);
        if (i > 0) b.e(i - 1) = right.r;
        f = right.c * d + right.s * e, e = right.c * e - right.s * d;
        R next = b.d(i + 1);
        g = right.s * next, next = right.c * next;
        const Rotation<R> left = rotation(f, g);
        b.d(i) = left.r;
        f = left.c * e + left.s * next, d = left.c * next - left.s * e;
        if (i + 1 < last) g = left.s * b.e(i + 1), e = left.c * b.e(i + 1);
        c1[i] = right.c, s1[i] = right.s, c2[i] = left.c, s2[i] = left.s;
    }
    b.d(last) = d, b.e(last - 1) = f;
}

// An off-diagonal element that is nothing beside the singular values of its neighbours becomes zero (then the result is
// true). Otherwise `smallest` is a lower bound of the block's singular values.
template <class R>
inline bool split(Block<R> b, R tolerance, R& smallest)
{
    const Int last = b.size() - 1;
    if (absolute(b.e(last - 1)) <= tolerance * absolute(b.d(last))) {
        b.e(last - 1) = 0;
        return true;
    }
    R mu = absolute(b.d(0));
    smallest = mu;
    for (Int i = 0; i < last; ++i) {
        if (absolute(b.e(i)) <= tolerance * mu) {
            b.e(i) = 0;
            return true;
        }
        mu = absolute(b.d(i + 1)) * (mu / (mu + absolute(b.e(i))));
        smallest = smaller(smallest, mu);
    }
    return false;
}

template <class R>
inline R choose_shift(Block<R> b, Int n, R tolerance, R smallest, R largest)
{
    const Int last = b.size() - 1;
    if (static_cast<R>(n) * tolerance * (smallest / largest) <= larger(unit_roundoff<R>, R(0.01) * tolerance)) return 0;
    const R shift = smallest_of_two(b.d(last - 1), b.e(last - 1), b.d(last));
    const R size = absolute(b.d(0)), ratio = size > 0 ? shift / size : 1;
    return ratio * ratio < unit_roundoff<R> || size == 0 ? 0 : shift;
}

// Elements below this are zero beside the smallest singular value, or beside what is left of overflow.
template <class R>
inline R negligible(Int n, const R* d, const R* e, R tolerance)
{
    R mu = absolute(d[0]), smallest = mu;
    for (Int i = 1; i < n; ++i) {
        mu = mu == 0 ? 0 : absolute(d[i]) * (mu / (mu + absolute(e[i - 1])));
        smallest = smaller(smallest, mu);
    }
    const R order = static_cast<R>(n);
    return larger(tolerance * (smallest / root(order)), 6 * order * order * smallest_normal<R>);
}

} // namespace bidiagonal

// B = diag(d), superdiagonal e: d becomes the singular values, descending, u <- u Q and v <- v P where B = Q S P^T.
// scratch: 4 n numbers. Returns how many of e have not converged; then nothing is sorted.
template <class R>
inline Int bidiagonal_svd(Int n, R* d, R* e, Columns<R> u, Columns<R> v, R* scratch)
{
    using namespace bidiagonal;
    constexpr R tolerance = (sizeof(R) == 8 ? 100 : 10) * unit_roundoff<R>;
    const R threshold = negligible(n, d, e, tolerance);
    R *c1 = scratch, *s1 = c1 + n, *c2 = s1 + n, *s2 = c2 + n;
    Int budget = 6 * n * n; // rotations
    Int known_first = -1, known_last = -1;
    bool upwards = false;
    for (Int last = n - 1; last > 0;) {
        R largest = absolute(d[last]);
        Int first = last;
        while (first > 0) {
            const R off = absolute(e[first - 1]);
            if (off <= threshold) {
                e[first - 1] = 0;
                break;
            }
            --first;
            largest = larger(largest, larger(off, absolute(d[first])));
        }
        if (first == last) {
            --last;
            continue;
        }
        if (first > known_last || last < known_first) upwards = absolute(d[first]) < absolute(d[last]);
        known_first = first, known_last = last;
        const Block<R> block{first, last, upwards, d, e};
        R smallest = 0;
        if (split(block, tolerance, smallest)) continue;
        const Int count = last - first;
        if ((budget -= count) < 0) {
            Int left = 0;
            for (Int i = 0; i + 1 < n; ++i) left += !(e[i] == 0);
            return left;
        }
        const R shift = choose_shift(block, n, tolerance, smallest, largest);
        if (shift == 0)
            zero_shift_sweep(block, c1, s1, c2, s2);
        else
            shifted_sweep(block, shift, c1, s1, c2, s2);
        R& end = block.e(count - 1);
        if (absolute(end) <= threshold) end = 0;
        const Columns<R>&begun = upwards ? u : v, &other = upwards ? v : u;
        const Int begin = upwards ? last : first, sign = upwards ? -1 : 1;
        if (begun.data) turn_columns(begun.parts, count, c1, s1, begun.at(begin), sign * begun.ld);
        if (other.data) turn_columns(other.parts, count, c2, s2, other.at(begin), sign * other.ld);
    }
    for (Int i = 0; i < n; ++i)
        if (d[i] < 0 || (d[i] == 0 && __builtin_signbit(d[i]))) {
            d[i] = -d[i];
            if (v.data) multiply(v.parts, R(-1), v.at(i));
        }
    for (Int i = 0; i + 1 < n; ++i) {
        Int best = i;
        for (Int j = i + 1; j < n; ++j)
            if (d[j] > d[best]) best = j;
        if (best == i) continue;
        exchange(1, d + i, d + best);
        if (u.data) exchange(u.parts, u.at(i), u.at(best));
        if (v.data) exchange(v.parts, v.at(i), v.at(best));
    }
    return 0;
}

} // namespace ork::lapack

// SPDX-License-Identifier: MIT
// Eigenvalues, and the real Schur form, of an upper Hessenberg matrix: Francis's implicit double shift (Golub and Van
// Loan, Matrix Computations, 7.5) with the deflation test of Ahues and Tisseur ("A new deflation criterion for the QR
// algorithm", LAPACK Working Note 122, 1997).
#pragma once

#include "lapack/rotation.h"
#include "lapack/spectral/standard_block.h"

namespace ork::lapack {

namespace francis {

// A reflector of order 2 or 3 (then v2 = 0): I - tau (1, v1, v2) (1, v1, v2)^T.
template <class R>
struct SmallReflector {
    R tau = 0, v1 = 0, v2 = 0, beta;

    // Takes (x, y, z) to (beta, 0, 0).
    SmallReflector(R x, R y, R z) : beta(x)
    {
        const R rest = larger(absolute(y), absolute(z)), most = larger(absolute(x), rest);
        if (rest == 0) return;
        R scale = 1;
        if (!squares_safely(most) || most < smallest_normal<R> / unit_roundoff<R>) [[unlikely]] {
            scale = inverse_power(most);
            x *= scale, y *= scale, z *= scale;
        }
        const R signed_norm = -with_sign(
            static_cast<R>(root(static_cast<double>(x) * x + static_cast<double>(y) * y + static_cast<double>(z) * z)),
            x);
        tau = (signed_norm - x) / signed_norm;
        const R inverse = 1 / (x - signed_norm);
        v1 = y * inverse, v2 = z * inverse;
        beta = signed_norm / scale;
    }

    void apply_to_rows(Int columns, R* a, Int lda, bool three) const
    {
        const R t1 = tau * v1, t2 = tau * v2;
        if (three)
#pragma GCC unroll 2
            for (Int j = 0; j < columns; ++j, a += lda) {
                const R sum = a[0] + v1 * a[1] + v2 * a[2];
                a[0] -= sum * tau, a[1] -= sum * t1, a[2] -= sum * t2;
            }
        else
            for (Int j = 0; j < columns; ++j, a += lda) {
                const R sum = a[0] + v1 * a[1];
                a[0] -= sum * tau, a[1] -= sum * t1;
            }
    }
    void apply_to_columns(Int rows, R* a, Int lda, bool three) const
    {
        R *b = a + lda, *c = b + lda;
        const Vec<R> t = broadcast(tau), w1 = broadcast(v1), w2 = broadcast(v2), t1 = broadcast(tau * v1),
                     t2 = broadcast(tau * v2);
        if (three)
            each<R>(rows, [&]<int w>(Int i) {
                const Vec<R> x = load<w>(a + i), y = load<w>(b + i), z = load<w>(c + i), sum = x + w1 * y + w2 * z;
                store<w>(a + i, x - sum * t), store<w>(b + i, y - sum * t1), store<w>(c + i, z - sum * t2);
            });
        else
            each<R>(rows, [&]<int w>(Int i) {
                const Vec<R> x = load<w>(a + i), y = load<w>(b + i), sum = x + w1 * y;
                store<w>(a + i, x - sum * t), store<w>(b + i, y - sum * t1);
            });
    }
};

template <class R>
struct Shifts {
    R real1, imaginary1, real2, imaginary2;
};

template <class R>
struct Iteration {
    Int n, lo, hi;
    R* data;
    Int ld;
    bool whole; // the Schur form is wanted, not the eigenvalues alone
    R *wr, *wi;
    R* z; // or null
    Int ldz;

    R& h(Int i, Int j) const { return data[j * ld + i]; }
    // Quotients of anything less and an element of the matrix may have underflowed.
    R least;

    bool negligible(Int k) const // subdiagonal element (k, k - 1)
    {
        const R below = absolute(h(k, k - 1));
        if (below <= least) return true;
        R beside = absolute(h(k - 1, k - 1)) + absolute(h(k, k));
        if (beside == 0) {
            if (k - 2 >= lo) beside += absolute(h(k - 1, k - 2));
            if (k + 1 <= hi) beside += absolute(h(k + 1, k));
        }
        if (!(below <= spacing<R> * beside)) return false;
        const R above = absolute(h(k - 1, k)), own = absolute(h(k, k)), step = absolute(h(k - 1, k - 1) - h(k, k));
        const R ab = larger(below, above), ba = smaller(below, above), aa = larger(own, step), bb = smaller(own, step);
        const R s = aa + ab;
        return ba * (ab / s) <= larger(least, spacing<R> * (bb * (aa / s)));
    }
    // The first index of the block that ends with i and has not split.
    Int first_of_block(Int i) const
    {
        Int k = i;
        while (k > lo && !negligible(k)) --k;
        if (k > lo) h(k, k - 1) = 0;
        return k;
    }

    // Eigenvalues of the last 2 x 2 block; when fruitless, of another matrix of similar size.
    Shifts<R> shifts(Int first, Int last, int fruitless) const
    {
        R a, b, c, d;
        if (fruitless > 0 && fruitless % 10 == 0) {
            const bool at_first = fruitless % 20 == 10;
            const R s = at_first ? absolute(h(first + 1, first)) + absolute(h(first + 2, first + 1))
                                 : absolute(h(last, last - 1)) + absolute(h(last - 1, last - 2));
            a = d = R(0.75) * s + (at_first ? h(first, first) : h(last, last));
            b = R(-0.4375) * s, c = s;
        } else {
            a = h(last - 1, last - 1), b = h(last - 1, last), c = h(last, last - 1), d = h(last, last);
        }
        const R size = absolute(a) + absolute(b) + absolute(c) + absolute(d);
        if (size == 0) return {0, 0, 0, 0};
        a /= size, b /= size, c /= size, d /= size;
        const R middle = (a + d) / 2, determinant = (a - middle) * (d - middle) - b * c,
                r = root(absolute(determinant));
        if (determinant >= 0) return {middle * size, r * size, middle * size, -r * size};
        // Both real: twice the one nearer to the last element.
        const R one = middle + r, two = middle - r, nearer = absolute(one - d) <= absolute(two - d) ? one : two;
        return {nearer * size, 0, nearer * size, 0};
    }

    struct Start {
        Int at;
        R x, y, z; // first column of the shifted square
    };
    // A sweep may begin behind two consecutive small subdiagonal elements.
    Start begin(Int first, Int last, Shifts<R> s) const
    {
        for (Int m = last - 2;; --m) {
            const R below = h(m + 1, m), d = h(m, m), next = h(m + 1, m + 1);
            R scale = absolute(d - s.real2) + absolute(s.imaginary2) + absolute(below);
            const R ratio = below / scale;
            R x = ratio * h(m, m + 1) + (d - s.real1) * ((d - s.real2) / scale) - s.imaginary1 * (s.imaginary2 / scale);
            R y = ratio * (d + next - s.real1 - s.real2), z = ratio * h(m + 2, m + 1);
            scale = absolute(x) + absolute(y) + absolute(z);
            x /= scale, y /= scale, z /= scale;
            if (m == first) return {m, x, y, z};
            const R before = absolute(h(m, m - 1)), around = absolute(h(m - 1, m - 1)) + absolute(d) + absolute(next);
            if (before * (absolute(y) + absolute(z)) <= spacing<R> * absolute(x) * around) return {m, x, y, z};
        }
    }

    void sweep(Int first, Int last, Start start) const
    {
        const Int top = whole ? 0 : first, right = whole ? n - 1 : last;
        for (Int k = start.at; k < last; ++k) {
            const bool three = k + 2 <= last, begun = k > start.at;
            const SmallReflector<R> p(begun ? h(k, k - 1) : start.x, begun ? h(k + 1, k - 1) : start.y,
                                      !three  ? R(0)
                                      : begun ? h(k + 2, k - 1)
                                              : start.z);
            if (begun) {
                h(k, k - 1) = p.beta, h(k + 1, k - 1) = 0;
                if (three) h(k + 2, k - 1) = 0;
            } else if (k > first) {
                h(k, k - 1) *= 1 - p.tau; // exact also where v1 and v2 underflow
            }
            p.apply_to_rows(right - k + 1, &h(k, k), ld, three);
            p.apply_to_columns(smaller(k + 3, last) - top + 1, &h(top, k), ld, three);
            if (z) p.apply_to_columns(n, z + k * ldz, ldz, three);
        }
    }

    void finish_pair(Int i) const
    {
        Block2<R> block{h(i - 1, i - 1), h(i - 1, i), h(i, i - 1), h(i, i)};
        block.standardise();
        h(i - 1, i - 1) = block.a, h(i - 1, i) = block.b, h(i, i - 1) = block.c, h(i, i) = block.d;
        wr[i - 1] = block.a, wr[i] = block.d;
        wi[i - 1] = block.c == 0 ? R(0) : root(absolute(block.b)) * root(absolute(block.c));
        wi[i] = -wi[i - 1];
        if (!whole) return;
        if (i + 1 < n) rotate(n - i - 1, &h(i - 1, i + 1), ld, &h(i, i + 1), ld, block.cosine, block.sine);
        rotate(i - 1, &h(0, i - 1), &h(0, i), block.cosine, block.sine);
        if (z) rotate(n, z + (i - 1) * ldz, z + i * ldz, block.cosine, block.sine);
    }

    Int run() const
    {
        for (Int i = 0; i < n; ++i)
            if (i < lo || i > hi) wr[i] = h(i, i), wi[i] = 0;
        Int budget = 30 * larger<Int>(10, hi - lo + 1);
        for (Int i = hi; i >= lo;) {
            for (int fruitless = 0;; ++fruitless) {
                const Int first = first_of_block(i);
                if (first == i) {
                    wr[i] = h(i, i), wi[i] = 0;
                    i -= 1;
                    break;
                }
                if (first == i - 1) {
                    finish_pair(i);
                    i -= 2;
                    break;
                }
                if (budget-- == 0) return i + 1;
                sweep(first, i, begin(first, i, shifts(first, i, fruitless)));
            }
        }
        return 0;
    }
};

} // namespace francis

// The part lo ... hi of an n x n matrix that is triangular outside; zero below the subdiagonal. Returns 0, or i when
// the eigenvalues i + 1 ... hi (counted from 1) alone have converged.
template <class R>
inline Int schur_form(Int n, Int lo, Int hi, R* h, Int ldh, bool whole, R* wr, R* wi, R* z, Int ldz)
{
    R largest = 1;
    for (Int j = 0; j < n; ++j) largest = larger(largest, largest_part(n, h + j * ldh));
    const R least = smallest_normal<R> * (static_cast<R>(n) / spacing<R>)*largest;
    return francis::Iteration<R>{n, lo, hi, h, ldh, whole, wr, wi, z, ldz, least}.run();
}

} // namespace ork::lapack

// SPDX-License-Identifier: MIT
// The real Schur form of a 2 x 2 matrix: triangular, or with equal diagonal and off-diagonal elements of opposite sign
// (Bai and Demmel, "On swapping diagonal blocks in real Schur form", 1993).
#pragma once

#include "lapack/scalar.h"

namespace ork::lapack {

template <class R>
struct Block2 {
    R a, b, c, d; // (a b; c d)
    R cosine = 1, sine = 0;

    // (cosine sine; -sine cosine) times this times its transpose.
    void standardise()
    {
        if (c == 0) return;
        if (b == 0) return exchange_diagonal();
        if (a == d && (b < 0) != (c < 0)) return;
        const R p = (a - d) / 2, most = larger(absolute(b), absolute(c)), least = smaller(absolute(b), absolute(c));
        const R product = (b < 0) == (c < 0) ? least : -least; // b c / most
        const R scale = larger(absolute(p), most);
        const R discriminant = p / scale * p + most / scale * product;
        if (discriminant >= 4 * spacing<R>) {
            const R z = p + with_sign(root(scale) * root(discriminant), p);
            a = d + z, d = d - most / z * product;
            const R r = modulus(c, z);
            cosine = z / r, sine = c / r;
            b = b - c, c = 0;
            return;
        }
        equalise(p);
        if (c == 0) return;
        if (b == 0) {
            b = -c, c = 0;
            const R old = cosine;
            cosine = -sine, sine = old;
        } else if ((b < 0) == (c < 0)) {
            separate();
        }
    }

private:
    void exchange_diagonal()
    {
        const R old = a;
        a = d, d = old, b = -c, c = 0, cosine = 0, sine = 1;
    }
    // Equal diagonal elements; p is half their difference.
    void equalise(R p)
    {
        const R sigma = b + c, r = modulus(sigma, 2 * p);
        cosine = root((1 + absolute(sigma) / r) / 2);
        sine = -(p / (r * cosine)) * with_sign(R(1), sigma);
        const R aa = a * cosine + b * sine, bb = b * cosine - a * sine;
        const R cc = c * cosine + d * sine, dd = d * cosine - c * sine;
        a = aa * cosine + cc * sine, b = bb * cosine + dd * sine;
        c = cc * cosine - aa * sine, d = dd * cosine - bb * sine;
        a = d = (a + d) / 2;
    }
    // Two real eigenvalues, nearly equal: from equal diagonal elements to a triangle.
    void separate()
    {
        const R above = root(absolute(b)), below = root(absolute(c)), p = with_sign(above * below, c);
        const R r = 1 / root(absolute(b + c)), c1 = above * r, s1 = below * r, old = cosine;
        a = a + p, d = d - p, b = b - c, c = 0;
        cosine = old * c1 - sine * s1, sine = old * s1 + sine * c1;
    }
};

} // namespace ork::lapack

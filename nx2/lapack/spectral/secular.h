// SPDX-License-Identifier: MIT
// A root of the secular equation of the divide-and-conquer singular value decomposition, computed in double precision.
//
// The unknown is t = sigma^2 - d(K)^2 with K the nearer of the two poles around the root, so that neither a root close
// to its pole nor the differences d(j) - sigma lose digits. With poles p(j) = d(j)^2 - d(K)^2 and weights w(j) it
// solves
//     f(t) = c + sum w(j) / (p(j) - t) = 0,
// c = 1 and w = rho z^2, or, for large rho, c = 1/rho and w = z^2. f rises between poles. Left and right part of the
// sum are each replaced by a constant and one pole with equal value and slope (Bunch, Nielsen, Sorensen, "Rank-one
// modification of the symmetric eigenproblem", 1978; the quadratic as in Li, "Solving secular equations stably and
// efficiently", LAPACK Working Note 89, 1993), which converges quadratically; a bracket around the root decides where
// that fails.
#pragma once

#include "lapack/columns.h"

namespace ork::lapack::secular {

inline Vec<double> load_pair(const double* p) { return load(p); }
inline Vec<double> load_pair(const float* p) { return {_mm_cvtps_pd(load_low(p).v)}; }

struct Value {
    double f;
    double left, right;             // sums of terms up to pole `split` and behind it
    double left_slope, right_slope; // their derivatives, positive
    double size;                    // c + |left| + |right|, which rounding is relative to
};

// E: what d and z are stored as. Units are such that squares of what matters neither overflow nor underflow; the pole
// of a far larger d may be infinite, and its term zero.
template <class E>
struct Problem {
    Int n;
    const E *d, *z;
    double d_unit, z_unit; // what they are multiplied with
    double c, origin;      // origin = d(K)

    double pole(Int j) const { return (d[j] * d_unit - origin) * (d[j] * d_unit + origin); }
    double weight(Int j) const { return (z[j] * z_unit) * (z[j] * z_unit); }

    // Terms [first, end) of the sum and of its derivative.
    void add(Int first, Int end, double t, double& sum, double& slope) const
    {
        Vec<double> sums = broadcast(0.0), slopes = sums;
        const Vec<double> at = broadcast(t), from = broadcast(origin), of_d = broadcast(d_unit),
                          of_z = broadcast(z_unit);
        const auto term = [&](Vec<double> dj, Vec<double> zj) {
            const Vec<double> scaled = dj * of_d, root = zj * of_z;
            const Vec<double> inverse = broadcast(1.0) / ((scaled - from) * (scaled + from) - at);
            const Vec<double> quotient = root * root * inverse;
            sums = sums + quotient, slopes = slopes + quotient * inverse;
        };
        Int j = first;
        for (; j + 2 <= end; j += 2) term(load_pair(d + j), load_pair(z + j));
        if (j < end) term({_mm_set_pd(1, d[j])}, {_mm_set_sd(z[j])});
        sum = fold(sums), slope = fold(slopes);
    }
    Value at(double t, Int split) const
    {
        Value v;
        add(0, split + 1, t, v.left, v.left_slope);
        add(split + 1, n, t, v.right, v.right_slope);
        v.size = c + absolute(v.left) + absolute(v.right);
        v.f = c + v.right + v.left;
        return v;
    }
};

// Of |t|: `near` where f has the sign that it has at the pole K, `far` where it has the other. Both positive.
struct Bracket {
    double near, far;

    double middle() const { return far > 4 * near ? root(near) * root(far) : near + (far - near) / 2; }
    double within(double x) const { return x > near && x < far ? x : middle(); }
};

// The root of C x^2 - B x + A that is the one between poles, or behind both.
inline double quadratic_root(double A, double B, double C, bool behind)
{
    const double square = B * B - 4 * A * C, r = square > 0 ? root(square) : 0;
    if (behind) return B >= 0 ? (B + r) / (2 * C) : 2 * A / (B - r);
    return B > 0 ? 2 * A / (B + r) : (B - r) / (2 * C);
}

// t = sign |t| in the bracket, beginning at |t| = size; the poles around it, or of the last root the two before it, are
// split and split + 1. False: no convergence.
template <class E>
inline bool iterate(const Problem<E>& problem, Int split, double sign, Bracket bracket, double size, double& t)
{
    const bool behind = split + 2 == problem.n && sign > 0 && problem.pole(split + 1) == 0;
    double before = bracket.far - bracket.near;
    for (int step = 1; step < 300; ++step) {
        t = sign * size;
        const Value v = problem.at(t, split);
        if (!(v.f == v.f)) return false;
        const double noise = unit_roundoff<double> * v.size;
        if (absolute(v.f) <= noise) return true;
        (v.f * sign < 0 ? bracket.near : bracket.far) = size;
        const double width = bracket.far - bracket.near;
        if (!(width > spacing<double> * bracket.far)) return true;
        const double a = problem.pole(split) - t, b = problem.pole(split + 1) - t;
        const double y = quadratic_root(a * b * v.f, (a + b) * v.f - a * b * (v.left_slope + v.right_slope),
                                        v.f - a * v.left_slope - b * v.right_slope, behind);
        const double next = sign * (t + y);
        const bool inside = next > bracket.near && next < bracket.far;
        // From here on a step is as good as rounding lets it be.
        if (absolute(v.f) <= 16 * noise || absolute(next - size) <= unit_roundoff<double> * size) {
            if (inside) t = sign * next;
            return true;
        }
        const bool stuck = step % 4 == 0 && width > before / 4;
        if (step % 4 == 0) before = width;
        size = inside && !stuck ? next : bracket.middle();
    }
    return false;
}

// Root i (from 0): which pole it is measured from and its distance sigma - d(K), in the caller's units.
struct Root {
    Int K;
    double distance;
    bool converged;
};

template <class E>
inline Root find_root(Int n, Int i, const E* d, const E* z, double rho)
{
    constexpr double margin = 1 - 16 * unit_roundoff<double>;
    const bool last = i == n - 1;
    const double root_of_rho = root(rho);
    double largest = 0, squares_of_z = 0;
    for (Int j = 0; j < n; ++j) largest = larger(largest, absolute(static_cast<double>(z[j])));
    const double z_unit = inverse_power(largest);
    for (Int j = 0; j < n; ++j) squares_of_z += (z[j] * z_unit) * (z[j] * z_unit);
    const double weight = root_of_rho / z_unit; // sqrt(rho) in units of z
    const double d_unit = inverse_power(last ? larger<double>(d[i], weight) : d[i + 1]);
    const double g = weight * d_unit;
    Problem<E> problem{n, d, z, d_unit, g > 1 ? z_unit : z_unit * g, g > 1 ? 1 / g / g : 1, 0};
    Int K = i;
    problem.origin = d[K] * d_unit;
    Bracket bracket;
    double start;
    if (last) {
        bracket = {problem.weight(i) / problem.c, squares_of_z / problem.c * (g > 1 ? 1 : g * g) / margin};
        start = bracket.middle();
    } else {
        const double half = problem.pole(i + 1) / 2;
        const Value v = problem.at(half, i);
        const double C = v.f + (problem.weight(i) - problem.weight(i + 1)) / half;
        bracket.far = half / margin;
        double own = problem.weight(i), other = problem.weight(i + 1), constant = C;
        if (v.f >= 0) {
            bracket.near = own / (problem.c + v.right);
        } else {
            K = i + 1;
            problem.origin = d[K] * d_unit;
            const double exchanged = own;
            own = other, other = exchanged, constant = -C;
            bracket.near = own / -(problem.c + v.left);
        }
        start = quadratic_root(own * 2 * half, constant * 2 * half + own + other, constant, false);
    }
    constexpr double tiny = 0x1p-1000; // in units of squares
    bracket.near = larger(bracket.near * margin, tiny);
    double t = 0;
    const bool converged = iterate(problem, last ? i - 1 : i, K == i ? 1 : -1, bracket, bracket.within(start), t);
    const double sigma = root(problem.origin * problem.origin + t);
    return {K, t / (problem.origin + sigma) / d_unit, converged};
}

// delta(j) = d(j) - sigma, sum(j) = d(j) + sigma.
template <class E>
inline bool root_and_distances(Int n, Int i, const E* d, const E* z, E rho, E& sigma, E* delta, E* sum)
{
    if (n == 1) {
        sigma = static_cast<E>(modulus(static_cast<double>(d[0]), root(static_cast<double>(rho)) * z[0]));
        delta[0] = sum[0] = 1;
        return is_finite(sigma);
    }
    Root found = find_root(n, i, d, z, static_cast<double>(rho));
    // Later steps divide by it.
    if (absolute(found.distance) < smallest_normal<E>)
        found.distance = found.K == i ? smallest_normal<E> : -smallest_normal<E>;
    const double pole = d[found.K];
    sigma = static_cast<E>(pole + found.distance);
    for (Int j = 0; j < n; ++j) {
        delta[j] = static_cast<E>((d[j] - pole) - found.distance);
        sum[j] = static_cast<E>((d[j] + pole) + found.distance);
    }
    return found.converged && is_finite(sigma);
}

} // namespace ork::lapack::secular

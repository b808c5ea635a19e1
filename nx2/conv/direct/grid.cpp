// SPDX-License-Identifier: MIT
// Summation in any number of dimensions.
#include "conv/direct/direct.h"

namespace ork::conv {
namespace {

// z(k) of one k by the definition; `index` counts the elements of x that are met.
template <class T, class W>
void sum_one(const Problem& p, const Int* k)
{
    Int from[max_dims], to[max_dims], at[max_dims], output = 0;
    for (int d = 0; d < p.dims; ++d) {
        const Dimension& n = p.dimension[d];
        const Int m = n.first + k[d] * n.step;
        from[d] = m - (n.y - 1) > 0 ? m - (n.y - 1) : 0;
        to[d] = m < n.x - 1 ? m : n.x - 1;
        at[d] = from[d];
        output += k[d] * n.z_stride;
    }
    const int parts = p.is_complex ? 2 : 1;
    const T *x = static_cast<const T*>(p.x), *y = static_cast<const T*>(p.y);
    T* z = static_cast<T*>(p.z) + output * parts;
    W re = 0, im = 0;
    for (bool more = true; more;) {
        Int i = 0, j = 0;
        for (int d = 0; d < p.dims; ++d) {
            const Dimension& n = p.dimension[d];
            i += at[d] * n.x_stride;
            j += (n.first + k[d] * n.step - at[d]) * n.y_stride;
        }
        if (p.is_complex) {
            const W a = x[2 * i], b = p.conjugate_x ? -x[2 * i + 1] : x[2 * i + 1], c = y[2 * j], e = y[2 * j + 1];
            re += a * c - b * e, im += a * e + b * c;
        } else {
            re += W(x[i]) * W(y[j]);
        }
        more = false;
        for (int d = 0; d < p.dims && !more; ++d)
            if (more = ++at[d] <= to[d]; !more) at[d] = from[d];
    }
    z[0] = static_cast<T>(re);
    if (p.is_complex) z[1] = static_cast<T>(im);
}

template <class T, class W>
void sum_all(const Problem& p)
{
    Int k[max_dims] = {};
    for (bool more = true; more;) {
        sum_one<T, W>(p, k);
        more = false;
        for (int d = 0; d < p.dims && !more; ++d)
            if (more = ++k[d] < p.dimension[d].z; !more) k[d] = 0;
    }
}

} // namespace

int sum_grid(const Problem& problem)
{
    if (problem.is_double)
        sum_all<double, double>(problem);
    else if (problem.computes_double)
        sum_all<float, double>(problem);
    else
        sum_all<float, float>(problem);
    return 0;
}

double cost_of_sums(const Problem& problem)
{
    double cost = problem.is_complex ? 4e-10 : 1e-10;
    for (int d = 0; d < problem.dims; ++d) {
        const Dimension& n = problem.dimension[d];
        cost *= static_cast<double>(n.x < n.y ? n.x : n.y) * static_cast<double>(n.z);
    }
    return cost;
}

} // namespace ork::conv

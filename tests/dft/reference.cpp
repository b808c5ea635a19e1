// SPDX-License-Identifier: MIT
#include <cmath>
#include <numbers>

#include "dft/node.h"

namespace ork::test {
namespace {

// y = transform of n numbers `stride` apart, root[j] = exp(-+2 pi i j / (n root_step)).
void transform(Int n, const wide* x, Int stride, wide* y, const std::vector<wide>& root)
{
    if (n == 1) {
        *y = *x;
        return;
    }
    Int p = 2;
    while (n % p != 0) ++p;
    const Int m = n / p, step = static_cast<Int>(root.size()) / n;
    std::vector<wide> part(static_cast<std::size_t>(n));
    for (Int j = 0; j < p; ++j) transform(m, x + j * stride, stride * p, &part[static_cast<std::size_t>(j * m)], root);
    for (Int k = 0; k < n; ++k) {
        wide sum = 0;
        for (Int j = 0; j < p; ++j) {
            const wide a = part[static_cast<std::size_t>(j * m + k % m)];
            const wide w = root[static_cast<std::size_t>(j * k % n * step)];
            sum += wide(a.real() * w.real() - a.imag() * w.imag(), a.real() * w.imag() + a.imag() * w.real());
        }
        y[k] = sum;
    }
}

} // namespace

std::vector<wide> reference_dft(std::vector<wide> x, const Ints& lengths, int direction)
{
    const auto size = static_cast<Int>(x.size());
    Int stride = 1;
    for (const Int n : lengths) {
        std::vector<wide> root(static_cast<std::size_t>(n)), y(static_cast<std::size_t>(n));
        for (Int k = 0; k < n; ++k)
            root[static_cast<std::size_t>(k)] =
                std::polar(1.0L, (direction == ORK_DFT_FORWARD ? -2 : 2) * std::numbers::pi_v<long double> *
                                     static_cast<long double>(k) / static_cast<long double>(n));
        for (Int i = 0; i < size; ++i) {
            if (i / stride % n != 0) continue;
            transform(n, &x[static_cast<std::size_t>(i)], stride, y.data(), root);
            for (Int k = 0; k < n; ++k) x[static_cast<std::size_t>(i + k * stride)] = y[static_cast<std::size_t>(k)];
        }
        stride *= n;
    }
    return x;
}

} // namespace ork::test

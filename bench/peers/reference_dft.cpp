// SPDX-License-Identifier: MIT
// Mixed radix in Stockham's order: l = p m points a step become p transforms of m, with s = n/l of them side by side,
//     y[k + s (p j + r)] = w_l^(j r) sum over t of x[k + s (j + t m)] w_p^(t r),    j < m, k < s.
// A length with a large prime factor goes through Bluestein's convolution with a chirp, in powers of two.
#include "peers/reference_dft.h"

#include <algorithm>
#include <cmath>

namespace ork::peers {
namespace {

constexpr size_t largest_direct = 200; // factors up to here cost their square

LongPair operator*(LongPair a, LongPair b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
LongPair operator+(LongPair a, LongPair b) { return {a.re + b.re, a.im + b.im}; }

// exp(2 pi i sign j/n) from an angle within an eighth of a turn, where nothing is lost
LongPair root(size_t j, size_t n, int sign)
{
    const size_t eighths = 8 * j, octant = eighths / n, rest = eighths % n;
    const bool odd = octant % 2 == 1;
    const long double angle = static_cast<long double>(M_PIl) * static_cast<long double>(odd ? n - rest : rest) /
                              (4 * static_cast<long double>(n));
    const long double c = std::cos(angle), s = std::sin(angle);
    LongPair w;
    switch (octant) {
    case 0:
        w = {c, s};
        break;
    case 1:
        w = {s, c};
        break;
    case 2:
        w = {-s, c};
        break;
    case 3:
        w = {-c, s};
        break;
    case 4:
        w = {-c, -s};
        break;
    case 5:
        w = {-s, -c};
        break;
    case 6:
        w = {s, -c};
        break;
    default:
        w = {c, -s};
    }
    return {w.re, sign * w.im};
}

std::vector<size_t> prime_factors(size_t n)
{
    std::vector<size_t> factors;
    for (size_t p = 2; p * p <= n; ++p)
        for (; n % p == 0; n /= p) factors.push_back(p);
    if (n > 1) factors.push_back(n);
    return factors;
}

void mixed_radix(std::vector<LongPair>& x, const std::vector<size_t>& factors, int sign)
{
    const size_t n = x.size();
    std::vector<LongPair> y(n), roots(n);
    for (size_t j = 0; j < n; ++j) roots[j] = root(j, n, sign);
    size_t l = n;
    for (const size_t p : factors) {
        const size_t m = l / p, s = n / l;
        for (size_t j = 0; j < m; ++j)
            for (size_t r = 0; r < p; ++r) {
                const LongPair twiddle = roots[j * r * s];
                for (size_t k = 0; k < s; ++k) {
                    LongPair sum = x[k + s * j];
                    for (size_t t = 1; t < p; ++t) sum = sum + x[k + s * (j + t * m)] * roots[t * r % p * (n / p)];
                    y[k + s * (p * j + r)] = sum * twiddle;
                }
            }
        x.swap(y);
        l = m;
    }
}

// j k = (j^2 + k^2 - (k - j)^2)/2: a convolution with the chirp w^(-j^2/2), whose exponent is reduced modulo 2n first.
void bluestein(std::vector<LongPair>& x, int sign)
{
    const size_t n = x.size();
    size_t size = 1;
    while (size < 2 * n - 1) size *= 2;
    const std::vector<size_t> twos = prime_factors(size);
    const auto chirp = [&](size_t j, int direction) { return root(j * j % (2 * n), 2 * n, direction); };
    std::vector<LongPair> a(size), b(size);
    for (size_t j = 0; j < n; ++j) {
        a[j] = x[j] * chirp(j, sign);
        b[j] = b[(size - j) % size] = chirp(j, -sign);
    }
    mixed_radix(a, twos, -1);
    mixed_radix(b, twos, -1);
    for (size_t j = 0; j < size; ++j) a[j] = a[j] * b[j];
    mixed_radix(a, twos, 1);
    for (size_t k = 0; k < n; ++k) {
        x[k] = a[k] * chirp(k, sign);
        x[k].re /= static_cast<long double>(size);
        x[k].im /= static_cast<long double>(size);
    }
}

void one_dimension(std::vector<LongPair>& x, int sign)
{
    if (x.size() < 2) return;
    const std::vector<size_t> factors = prime_factors(x.size());
    if (factors.back() > largest_direct)
        bluestein(x, sign);
    else
        mixed_radix(x, factors, sign);
}

} // namespace

void reference_dft(std::vector<LongPair>& x, const std::vector<int>& lengths, int sign)
{
    size_t stride = 1;
    for (size_t d = lengths.size(); d-- > 0;) {
        const auto n = static_cast<size_t>(lengths[d]);
        std::vector<LongPair> line(n);
        for (size_t i = 0; i < x.size(); ++i) {
            if (i / stride % n != 0) continue; // not the begin of a line
            for (size_t j = 0; j < n; ++j) line[j] = x[i + j * stride];
            one_dimension(line, sign);
            for (size_t j = 0; j < n; ++j) x[i + j * stride] = line[j];
        }
        stride *= n;
    }
}

double accuracy(FftProblem& problem, Transform& transform)
{
    problem.fill();
    const FftCase& c = problem.what();
    std::vector<std::vector<LongPair>> want;
    for (int b = 0; b < c.batch; ++b) {
        std::vector<LongPair>& x = want.emplace_back(c.points());
        for (size_t i = 0; i < x.size(); ++i) {
            const std::complex<double> value = problem.input(static_cast<size_t>(b), i);
            x[i] = {value.real(), value.imag()};
        }
        reference_dft(x, c.lengths, c.backward ? 1 : -1);
    }
    transform.run();
    long double error = 0, norm = 0;
    for (size_t b = 0; b < want.size(); ++b)
        for (size_t i = 0; i < want[b].size(); ++i) {
            const std::complex<double> got = problem.output(b, i);
            const LongPair& w = want[b][i];
            const long double re = got.real() - w.re, im = got.imag() - w.im;
            error += re * re + im * im;
            norm += w.re * w.re + w.im * w.im;
        }
    return static_cast<double>(std::sqrt(error / norm));
}

} // namespace ork::peers

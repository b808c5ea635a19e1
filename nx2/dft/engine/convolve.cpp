// SPDX-License-Identifier: MIT
// Lengths with large prime factors, by convolutions of friendlier lengths.
//
// Rader: for a prime n with generator g, x[g^q] and exp(-2 pi i g^-q / n) are convolved cyclically over n - 1 numbers
// (C. M. Rader, Proc. IEEE 56, 1968). Bluestein: j k = (j^2 + k^2 - (j - k)^2) / 2 makes of any n a convolution with
// the chirp exp(pi i j^2 / n), whose angle is j^2 modulo 2 n (L. Bluestein, IEEE Trans. Audio 18, 1970).
#include "dft/engine/plan_data.h"

namespace ork::dft {

namespace {

std::int64_t product_modulo(std::int64_t a, std::int64_t b, std::int64_t n) { return a * b % n; } // n < 2^31

std::int64_t power_modulo(std::int64_t a, std::int64_t e, std::int64_t n)
{
    std::int64_t result = 1;
    for (; e > 0; e >>= 1, a = product_modulo(a, a, n))
        if (e & 1) result = product_modulo(result, a, n);
    return result;
}
// Of a prime n whose n - 1 has small primes only.
std::int64_t generator(std::int64_t n)
{
    for (std::int64_t g = 2;; ++g) {
        bool generates = true;
        for (const int p : pass_primes)
            if ((n - 1) % p == 0 && power_modulo(g, (n - 1) / p, n) == 1) generates = false;
        if (generates) return g;
    }
}

// The factors response[k] = FFT(values) / m, in place of values (m numbers of scratch each).
template <class R>
bool transform_response(Plan<R>& plan, std::int64_t m, Complex<R>* values)
{
    const std::size_t work = work_bytes(*plan.inner);
    void* memory = work == 0 ? nullptr : ork_serv_malloc(work, 64);
    if (work != 0 && memory == nullptr) return false;
    transform(*plan.inner, Direction::forward, R(1), values, values, memory);
    if (memory != nullptr) ork_serv_free(memory);
    const R over = R(1) / static_cast<R>(m);
    for (std::int64_t k = 0; k < m; ++k) set_factor(plan.response, k, over * values[k]);
    return true;
}

} // namespace

template <class R>
bool build_rader(Plan<R>& plan, Arena& arena)
{
    const std::int64_t n = plan.n, m = n - 1;
    plan.places = arena.take<std::int32_t>(static_cast<std::size_t>(2 * m));
    plan.response = take_factors<R>(arena, m);
    if (arena.counting()) return true;
    const std::int64_t g = generator(n), inverse = power_modulo(g, n - 2, n);
    std::int64_t up = 1, down = 1;
    for (std::int64_t q = 0; q < m; ++q) {
        plan.places[q] = static_cast<std::int32_t>(up), plan.places[m + q] = static_cast<std::int32_t>(down);
        up = product_modulo(up, g, n), down = product_modulo(down, inverse, n);
    }
    RootTable roots;
    auto* values = static_cast<Complex<R>*>(ork_serv_malloc(static_cast<std::size_t>(m) * sizeof(Complex<R>), 64));
    bool done = values != nullptr && roots.make(n);
    if (done) {
        for (std::int64_t q = 0; q < m; ++q) values[q] = rounded<R>(roots[plan.places[m + q]]);
        done = transform_response(plan, m, values);
    }
    if (values != nullptr) ork_serv_free(values);
    return done;
}

template <class R>
bool build_bluestein(Plan<R>& plan, Arena& arena)
{
    const std::int64_t n = plan.n, m = plan.inner->n;
    plan.chirp = take_factors<R>(arena, n);
    plan.response = take_factors<R>(arena, m);
    if (arena.counting()) return true;
    RootTable roots;
    auto* values = static_cast<Complex<R>*>(ork_serv_malloc(static_cast<std::size_t>(m) * sizeof(Complex<R>), 64));
    bool done = values != nullptr && roots.make(2 * n);
    if (done) {
        for (std::int64_t k = n; k <= m - n; ++k) values[k] = Complex<R>{};
        std::int64_t square = 0; // k^2 modulo 2 n
        for (std::int64_t k = 0; k < n; ++k) {
            const Complex<R> w = rounded<R>(roots[square]);
            set_factor(plan.chirp, k, w);
            values[k] = conj(w);
            if (k > 0) values[m - k] = conj(w);
            square += 2 * k + 1;
            while (square >= 2 * n) square -= 2 * n;
        }
        done = transform_response(plan, m, values);
    }
    if (values != nullptr) ork_serv_free(values);
    return done;
}

template <class R>
std::size_t convolution_work(const Plan<R>& plan)
{
    return whole_lines(static_cast<std::size_t>(plan.inner->n) * sizeof(Complex<R>)) + work_bytes(*plan.inner);
}

// x becomes its convolution with the response, plus `added` in every place. Returns the sum of x.
template <class R>
static Complex<R> convolve(const Plan<R>& plan, Complex<R>* x, void* work, Complex<R> added)
{
    transform(*plan.inner, Direction::forward, R(1), x, x, work);
    const Complex<R> sum = x[0];
    multiply(reals(x), plan.response, plan.inner->n);
    x[0] = x[0] + added;
    transform(*plan.inner, Direction::backward, R(1), x, x, work);
    return sum;
}

template <class R>
void run_rader(const Plan<R>& plan, Direction direction, const R* in, R* out, void* work)
{
    const std::int64_t n = plan.n, m = n - 1;
    auto* x = static_cast<Complex<R>*>(work);
    void* rest = static_cast<char*>(work) + whole_lines(static_cast<std::size_t>(m) * sizeof(Complex<R>));
    const auto* from = reinterpret_cast<const Complex<R>*>(in);
    auto* to = reinterpret_cast<Complex<R>*>(out);
    const Complex<R> first = from[0];
    for (std::int64_t q = 0; q < m; ++q) x[q] = from[plan.places[q]];
    to[0] = first + convolve(plan, x, rest, first);
    if (direction == Direction::forward)
        for (std::int64_t q = 0; q < m; ++q) to[plan.places[m + q]] = x[q];
    else
        for (std::int64_t q = 0; q < m; ++q) to[n - plan.places[m + q]] = x[q];
}

template <class R>
void run_bluestein(const Plan<R>& plan, Direction direction, const R* in, R* out, void* work)
{
    const std::int64_t n = plan.n, m = plan.inner->n;
    auto* x = static_cast<Complex<R>*>(work);
    void* rest = static_cast<char*>(work) + whole_lines(static_cast<std::size_t>(m) * sizeof(Complex<R>));
    const auto* from = reinterpret_cast<const Complex<R>*>(in);
    auto* to = reinterpret_cast<Complex<R>*>(out);
    for (std::int64_t k = 0; k < n; ++k) x[k] = from[k];
    for (std::int64_t k = n; k < m; ++k) x[k] = Complex<R>{};
    multiply(reals(x), plan.chirp, n);
    convolve(plan, x, rest, Complex<R>{});
    multiply(reals(x), plan.chirp, n);
    if (direction == Direction::forward) {
        for (std::int64_t k = 0; k < n; ++k) to[k] = x[k];
    } else {
        to[0] = x[0];
        for (std::int64_t k = 1; k < n; ++k) to[n - k] = x[k];
    }
}

#define INSTANTIATE(R)                                                                                                 \
    template bool build_rader(Plan<R>&, Arena&);                                                                       \
    template bool build_bluestein(Plan<R>&, Arena&);                                                                   \
    template std::size_t convolution_work(const Plan<R>&);                                                             \
    template void run_rader(const Plan<R>&, Direction, const R*, R*, void*);                                           \
    template void run_bluestein(const Plan<R>&, Direction, const R*, R*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft

// SPDX-License-Identifier: MIT
// One number decides about a whole output: the sum of its elements, each times a root of unity of its own. For the
// weights z^k with z = exp(2 pi i (a + 1/2)/n) the sum over k of z^k exp(-+2 pi i j k/n) is 1 + i cot(pi (a + 1/2 -+
// j)/n), so the sum that a right result has follows from the input in one pass, by formulas no transform is made of. An
// error in any one element moves it by that error, while rounding moves it by about as much as the norm of the output's
// rounding errors.
#include "peers/fft.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace ork::peers {
namespace {

using Pair = std::complex<double>;

// pi m/n within half a turn, reduced first: a small angle keeps all its digits
double half_turns(long long m, long long n)
{
    m %= 2 * n;
    return M_PI * static_cast<double>(m > n ? m - 2 * n : m < -n ? m + 2 * n : m) / static_cast<double>(n);
}

Pair on_circle(double angle) { return {std::cos(angle), std::sin(angle)}; }

// The z of one dimension, and both sides of the identity.
struct Weights {
    long long n, a;
    int sign; // of the transform's exponent

    Weights(int length, bool backward) : n(length), a(length / 3), sign(backward ? 1 : -1) {}
    Pair of_output(long long k) const { return on_circle(half_turns((2 * a + 1) * k, n)); }
    Pair of_input(long long j) const { return {1, 1 / std::tan(half_turns(2 * a + 1 + sign * 2 * j, n) / 2)}; }
};

// Sums in extended precision: the weights carry rounding errors of their own, the additions none.
struct Sum {
    long double re = 0, im = 0, squares = 0;
    void add(Pair weight, Pair value)
    {
        re += static_cast<long double>(weight.real()) * value.real() -
              static_cast<long double>(weight.imag()) * value.imag();
        im += static_cast<long double>(weight.real()) * value.imag() +
              static_cast<long double>(weight.imag()) * value.real();
        squares += static_cast<long double>(value.real()) * value.real() +
                   static_cast<long double>(value.imag()) * value.imag();
    }
};

template <class R>
const R* element(const void* data, size_t index)
{
    return static_cast<const R*>(data) + index;
}

double part(const void* data, bool single, size_t index)
{
    return single ? static_cast<double>(*element<float>(data, index)) : *element<double>(data, index);
}

// How one side of a transform lies in memory: rows of reals, of pairs, or of the half of a spectrum.
struct Side {
    const FftCase& c;
    const void* data;
    bool spectrum; // of real data

    Pair at(size_t transform, size_t row, size_t outer, size_t column) const
    {
        const size_t n = static_cast<size_t>(c.lengths.back());
        if (!c.real) {
            const size_t i = 2 * ((transform * outer + row) * n + column);
            return {part(data, c.single, i), part(data, c.single, i + 1)};
        }
        if (!spectrum)
            return {part(data, c.single, (transform * outer + row) * (c.in_place ? 2 * c.half_row() : n) + column), 0};
        if (column >= c.half_row()) return std::conj(at(transform, mirror(row), outer, n - column));
        const size_t i = 2 * ((transform * outer + row) * c.half_row() + column);
        return {part(data, c.single, i), part(data, c.single, i + 1)};
    }

    // The row of the negated outer frequencies.
    size_t mirror(size_t row) const
    {
        size_t result = 0, place = 1;
        for (size_t d = c.lengths.size() - 1; d-- > 0;) {
            const auto n = static_cast<size_t>(c.lengths[d]), k = row % n;
            row /= n;
            result += place * (k == 0 ? 0 : n - k);
            place *= n;
        }
        return result;
    }
};

template <class Weight>
Sum weighted(const FftCase& c, const Side& side, const Weight& weight)
{
    Sum sum;
    const size_t outer = c.outer(), n = static_cast<size_t>(c.lengths.back());
    std::vector<Weights> dimension;
    for (const int length : c.lengths) dimension.emplace_back(length, c.backward);
    for (int b = 0; b < c.batch; ++b)
        for (size_t row = 0; row < outer; ++row) {
            Pair before = on_circle(half_turns(b * 7919LL, 10007)); // transforms that change places show
            size_t rest = row;
            for (size_t d = c.lengths.size() - 1; d-- > 0; rest /= static_cast<size_t>(c.lengths[d]))
                before *= weight(dimension[d], static_cast<long long>(rest % static_cast<size_t>(c.lengths[d])));
            for (size_t k = 0; k < n; ++k)
                sum.add(before * weight(dimension.back(), static_cast<long long>(k)),
                        side.at(static_cast<size_t>(b), row, outer, k));
        }
    return sum;
}

// Bytes of one side; pairs have two parts.
size_t bytes(const FftCase& c, bool spectrum)
{
    const size_t row = c.real && !spectrum && !c.in_place ? static_cast<size_t>(c.lengths.back())
                       : c.real                           ? 2 * c.half_row()
                                                          : 2 * static_cast<size_t>(c.lengths.back());
    return static_cast<size_t>(c.batch) * c.outer() * row * (c.single ? sizeof(float) : sizeof(double));
}

template <class R>
void fill_side(const FftCase& c, R* data, bool spectrum, size_t parts)
{
    Random random;
    for (size_t i = 0; i < parts; ++i) data[i] = random.next<R>();
    if (!spectrum) return;
    // Columns that are their own mirror hold each other's conjugates.
    const size_t outer = c.outer(), n = static_cast<size_t>(c.lengths.back());
    const Side side{c, data, true};
    for (int b = 0; b < c.batch; ++b)
        for (size_t row = 0; row < outer; ++row)
            for (const size_t column : {size_t{0}, n / 2}) {
                if (2 * column % n != 0) continue;
                const auto at = [&](size_t r) {
                    return data + 2 * ((static_cast<size_t>(b) * outer + r) * c.half_row() + column);
                };
                const size_t other = side.mirror(row);
                at(other)[0] = at(row)[0];
                at(other)[1] = other == row ? 0 : -at(row)[1];
            }
}

bool read_int(const char*& p, const char* end, int& value)
{
    const auto [next, error] = std::from_chars(p, end, value);
    if (error != std::errc() || value < 1 || *p == '+') return false;
    p = next;
    return true;
}

} // namespace

std::string FftCase::kind() const
{
    return std::string(real ? "r" : "c") + (single ? "s" : "d") + (backward ? "b" : "") + (in_place ? "i" : "");
}

std::string FftCase::size() const
{
    std::string text;
    for (const int length : lengths) text += (text.empty() ? "" : "x") + std::to_string(length);
    return batch == 1 ? text : text + "*" + std::to_string(batch);
}

size_t FftCase::outer() const
{
    size_t product = 1;
    for (size_t d = 0; d + 1 < lengths.size(); ++d) product *= static_cast<size_t>(lengths[d]);
    return product;
}

size_t FftCase::points() const { return outer() * static_cast<size_t>(lengths.back()); }

size_t FftCase::half_row() const { return static_cast<size_t>(lengths.back()) / 2 + 1; }

double FftCase::work() const
{
    const auto n = static_cast<double>(points());
    return (real ? 2.5 : 5) * n * std::log2(n) * batch;
}

std::optional<FftCase> fft_case(const std::string& kind, const std::string& size)
{
    FftCase c;
    if (kind.size() < 2 || (kind[0] != 'c' && kind[0] != 'r') || (kind[1] != 's' && kind[1] != 'd'))
        return std::nullopt;
    const std::string rest = kind.substr(2);
    if (rest != "" && rest != "b" && rest != "i" && rest != "bi") return std::nullopt;
    c.real = kind[0] == 'r';
    c.single = kind[1] == 's';
    c.backward = rest.find('b') != std::string::npos;
    c.in_place = rest.find('i') != std::string::npos;

    const char *p = size.c_str(), *end = p + size.size();
    double points = 1;
    for (bool more = true; more;) {
        int length = 0;
        if (!read_int(p, end, length)) return std::nullopt;
        c.lengths.push_back(length);
        points *= length;
        more = p != end && *p == 'x';
        p += more;
    }
    if (p != end && *p == '*' && !read_int(++p, end, c.batch)) return std::nullopt;
    // one point has no work to divide by
    if (p != end || c.lengths.size() > 7 || points < 2 || points * c.batch > 0x1p31) return std::nullopt;
    return c;
}

FftProblem::FftProblem(const FftCase& c)
    : case_(c), in_(std::max(bytes(c, c.backward), c.in_place ? bytes(c, !c.backward) : 0)),
      out_(c.in_place ? 0 : bytes(c, !c.backward), 1088) // not on the input's cache sets
{
}

void FftProblem::fill()
{
    const bool spectrum = case_.real && case_.backward;
    const size_t parts = bytes(case_, spectrum) / (case_.single ? sizeof(float) : sizeof(double));
    if (case_.single)
        fill_side(case_, reinterpret_cast<float*>(in_.data()), spectrum, parts);
    else
        fill_side(case_, reinterpret_cast<double*>(in_.data()), spectrum, parts);
}

std::string FftProblem::check(Transform& transform)
{
    fill();
    const Sum want = weighted(case_, Side{case_, in(), case_.real && case_.backward},
                              [](const Weights& w, long long j) { return w.of_input(j); });
    if (!case_.in_place) std::memset(out(), 0xff, out_.size()); // NaN: an element not written shows
    transform.run();
    const Sum got = weighted(case_, Side{case_, out(), case_.real && !case_.backward},
                             [](const Weights& w, long long k) { return w.of_output(k); });
    // The norm of the output follows from the input's.
    const double points = static_cast<double>(case_.points());
    const long double norm = std::sqrt(want.squares * static_cast<long double>(points));
    const long double rounding = case_.single ? 0x1p-24L : 0x1p-53L;
    const long double error = std::hypot(got.re - want.re, got.im - want.im);
    const long double bound = 24 * rounding * std::sqrt(1 + std::log2(points)) * norm;
    if (error <= bound && std::fabs(got.squares / (want.squares * points) - 1) <= 100 * rounding) return {};
    char text[160];
    std::snprintf(text, sizeof(text), "weighted sum of the output is off by %.3Lg, rounding allows %.3Lg", error,
                  bound);
    return text;
}

Pair FftProblem::input(size_t transform, size_t i)
{
    const size_t n = static_cast<size_t>(case_.lengths.back());
    return Side{case_, in(), case_.real && case_.backward}.at(transform, i / n, case_.outer(), i % n);
}

Pair FftProblem::output(size_t transform, size_t i)
{
    const size_t n = static_cast<size_t>(case_.lengths.back());
    return Side{case_, out(), case_.real && !case_.backward}.at(transform, i / n, case_.outer(), i % n);
}

void FftProblem::settle()
{
    fill();
    // Transforms of transforms grow without end, those of zeros don't; no kernel's time depends on the values.
    if (case_.in_place) std::memset(in_.data(), 0, in_.size());
}

} // namespace ork::peers

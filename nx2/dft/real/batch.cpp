// SPDX-License-Identifier: MIT
// Transforms of real numbers, one or many, between any places: even lengths by complex transforms of half the length,
// odd ones one by one or two as the parts of one complex transform.
#include "dft/real/real_plan.h"

namespace ork::dft {

namespace {

template <class R>
Place<R> from_transform(Place<R> p, std::int64_t t)
{
    return {p.re + t * p.distance, p.im == nullptr ? nullptr : p.im + t * p.distance, p.stride, p.distance};
}

// Whether any byte between the first and the last number of one place may belong to the other.
template <class R>
bool may_overlap(const Place<R>& a, std::int64_t a_numbers, const Place<R>& b, std::int64_t b_numbers,
                 std::int64_t count)
{
    struct Range {
        const R *low, *high;
    };
    const auto range = [count](const Place<R>& p, std::int64_t numbers) -> Range {
        const R *low = p.re, *high = p.re;
        if (p.im != nullptr) (p.im < low ? low : high) = p.im;
        const std::int64_t along = (numbers - 1) * p.stride, across = (count - 1) * p.distance;
        (along < 0 ? low : high) += along;
        (across < 0 ? low : high) += across;
        return {low, high};
    };
    const Range x = range(a, a_numbers), y = range(b, b_numbers);
    return x.low <= y.high && y.low <= x.high;
}

// Where z[j] = x[2j] + i x[2j+1] stand among the real numbers.
template <class R>
Place<R> as_complex(const Place<R>& x)
{
    return {x.re, x.re + x.stride, 2 * x.stride, x.distance};
}
template <class R>
bool same(const Place<R>& a, const Place<R>& b, std::int64_t count)
{
    return a.re == b.re && a.im == b.im && a.stride == b.stride && (a.distance == b.distance || count == 1);
}
template <class R>
Place<R> lines(const RealPlan<R>& plan, void* work)
{
    R* const x = reinterpret_cast<R*>(static_cast<char*>(work) + plan.lines_offset);
    return {x, x + 1, 2, plan.line};
}

template <class R>
bool apart(const RealPlan<R>& plan, Packing packing, const Place<R>& x, const Place<R>& numbers, std::int64_t count)
{
    const std::int64_t length = packing == Packing::cce ? plan.n / 2 + 1 : packed_length(packing, plan.n);
    return !may_overlap(numbers, plan.n, x, length, count);
}

// Whether the complex numbers of the spectrum's place can hold those of the half-length transform meanwhile.
template <class R>
bool takes_halves(const RealPlan<R>& plan, Packing packing, const Place<R>& x, const Place<R>& halves,
                  const Place<R>& numbers, std::int64_t count)
{
    if (packing == Packing::pack) return false;
    const Place<R> place = spectrum(packing, plan.n, x).place();
    return same(place, halves, count) || apart(plan, packing, x, numbers, count);
}

template <class R>
void complex_transform(const RealPlan<R>& plan, Direction direction, const Place<R>& in, const Place<R>& out,
                       std::int64_t count, void* work)
{
    if (count == 1 && in.stride == 2 && out.stride == 2 && in.im == in.re + 1 && out.im == out.re + 1)
        transform(*plan.complex, direction, R(1), reinterpret_cast<const Complex<R>*>(in.re),
                  reinterpret_cast<Complex<R>*>(out.re), work);
    else
        transform(*plan.complex, direction, R(1), in, out, count, work);
}

template <class Body>
void in_blocks(std::int64_t count, std::int64_t block, Body body)
{
    for (std::int64_t t = 0; t < count; t += block) body(t, count - t < block ? count - t : block);
}

// The parts of the transform of x + i y: with Y' = conj(Y[n-k]), X = (Y + Y')/2 and, for the other, (Y - Y')/(2i).
template <class R>
void separate(std::int64_t n, R scale, const R* y, const Spectrum<R>& a, const Spectrum<R>& b)
{
    const R half = scale / 2;
    a.first[0] = scale == R(1) ? y[0] : scale * y[0];
    b.first[0] = scale == R(1) ? y[1] : scale * y[1];
    for (std::int64_t k = 1; k <= n / 2; ++k) {
        const R re = y[2 * k], im = y[2 * k + 1], mirror_re = y[2 * (n - k)], mirror_im = y[2 * (n - k) + 1];
        a.re[k * a.stride] = half * (re + mirror_re), a.im[k * a.stride] = half * (im - mirror_im);
        b.re[k * b.stride] = half * (im + mirror_im), b.im[k * b.stride] = half * (mirror_re - re);
    }
    if (a.zero_first != nullptr) *a.zero_first = *b.zero_first = 0;
}
template <class R>
void unite(std::int64_t n, const Spectrum<R>& a, const Spectrum<R>& b, R* y)
{
    y[0] = a.first[0], y[1] = b.first[0];
    for (std::int64_t k = 1; k <= n / 2; ++k) {
        const Complex<R> p(a.re[k * a.stride], a.im[k * a.stride]), q(b.re[k * b.stride], b.im[k * b.stride]);
        y[2 * k] = p.re - q.im, y[2 * k + 1] = p.im + q.re;
        y[2 * (n - k)] = p.re + q.im, y[2 * (n - k) + 1] = q.re - p.im;
    }
}

// A short odd length whose spectrum may have gaps; then it passes through `line`, n + 1 numbers.
template <class R>
bool dense(const Spectrum<R>& x)
{
    return x.stride == 2 && x.im == x.re + 1;
}
template <class R>
void small_forward(const RealPlan<R>& plan, R scale, const R* in, const Spectrum<R>& x, R* line)
{
    if (dense(x)) return plan.small_forward(scale, in, x);
    plan.small_forward(scale, in, spectrum(Packing::cce, plan.n, Place<R>{line, line + 1, 2, 0}));
    *x.first = line[0];
    for (std::int64_t k = 1; k <= plan.n / 2; ++k)
        x.re[k * x.stride] = line[2 * k], x.im[k * x.stride] = line[2 * k + 1];
    if (x.zero_first != nullptr) *x.zero_first = 0;
}
template <class R>
void small_backward(const RealPlan<R>& plan, R scale, const Spectrum<R>& x, R* out, R* line)
{
    if (dense(x)) return plan.small_backward(scale, x, out);
    line[0] = *x.first;
    for (std::int64_t k = 1; k <= plan.n / 2; ++k)
        line[2 * k] = x.re[k * x.stride], line[2 * k + 1] = x.im[k * x.stride];
    plan.small_backward(scale, spectrum(Packing::cce, plan.n, Place<R>{line, line + 1, 2, 0}), out);
}

} // namespace

template <class R>
void even_forward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
                  std::int64_t count, void* work)
{
    const std::int64_t m = plan.n / 2;
    const bool direct = takes_halves(plan, packing, out, as_complex(in), in, count);
    in_blocks(count, direct ? plan.block : plan.lines, [&](std::int64_t t, std::int64_t some) {
        const Spectrum<R> x = spectrum(packing, plan.n, from_transform(out, t));
        const Place<R> z = direct ? x.place() : lines(plan, work);
        complex_transform(plan, Direction::forward, as_complex(from_transform(in, t)), z, some, work);
        postprocess(m, plan.g, scale, z, x, some);
    });
}

template <class R>
void even_backward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
                   std::int64_t count, void* work)
{
    const std::int64_t m = plan.n / 2;
    const bool direct =
        takes_halves(plan, packing, in, as_complex(out), out, count) || apart(plan, packing, in, out, count);
    in_blocks(count, direct ? plan.block : plan.lines, [&](std::int64_t t, std::int64_t some) {
        const Place<R> numbers = as_complex(from_transform(out, t)), z = direct ? numbers : lines(plan, work);
        preprocess(m, plan.g, scale, spectrum(packing, plan.n, from_transform(in, t)), z, some);
        complex_transform(plan, Direction::backward, z, numbers, some, work);
    });
}

template <class R>
void odd_forward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
                 std::int64_t count, void* work)
{
    const std::int64_t n = plan.n, pairs = plan.complex == nullptr ? 0 : count / 2;
    const Place<R> y = lines(plan, work);
    in_blocks(pairs, plan.lines, [&](std::int64_t pair, std::int64_t some) {
        const R* x = in.re + 2 * pair * in.distance;
        transform(*plan.complex, Direction::forward, R(1),
                  Place<R>{const_cast<R*>(x), const_cast<R*>(x) + in.distance, in.stride, 2 * in.distance}, y, some,
                  work);
        for (std::int64_t i = 0; i < some; ++i)
            separate(n, scale, y.re + i * y.distance, spectrum(packing, n, from_transform(out, 2 * (pair + i))),
                     spectrum(packing, n, from_transform(out, 2 * (pair + i) + 1)));
    });
    for (std::int64_t t = 2 * pairs; t < count; ++t) {
        const R* from = in.re + t * in.distance;
        const Spectrum<R> x = spectrum(packing, n, from_transform(out, t));
        if (plan.odd != nullptr || plan.small_forward != nullptr) {
            if (in.stride != 1) {
                for (std::int64_t j = 0; j < n; ++j) y.re[j] = from[j * in.stride];
                from = y.re;
            }
            if (plan.odd != nullptr)
                forward(*plan.odd, scale, from, x, work);
            else
                small_forward(plan, scale, from, x, y.re);
            continue;
        }
        for (std::int64_t j = 0; j < n; ++j) y.re[2 * j] = from[j * in.stride], y.re[2 * j + 1] = 0;
        complex_transform(plan, Direction::forward, y, y, 1, work);
        x.first[0] = scale == R(1) ? y.re[0] : scale * y.re[0];
        for (std::int64_t k = 1; k <= n / 2; ++k) {
            Complex<R> value(y.re[2 * k], y.re[2 * k + 1]);
            if (scale != R(1)) value = scale * value;
            x.re[k * x.stride] = value.re, x.im[k * x.stride] = value.im;
        }
        if (x.zero_first != nullptr) *x.zero_first = 0;
    }
}

template <class R>
void odd_backward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
                  std::int64_t count, void* work)
{
    const std::int64_t n = plan.n, pairs = plan.complex == nullptr ? 0 : count / 2;
    const Place<R> y = lines(plan, work);
    in_blocks(pairs, plan.lines, [&](std::int64_t pair, std::int64_t some) {
        for (std::int64_t i = 0; i < some; ++i)
            unite(n, spectrum(packing, n, from_transform(in, 2 * (pair + i))),
                  spectrum(packing, n, from_transform(in, 2 * (pair + i) + 1)), y.re + i * y.distance);
        R* const x = out.re + 2 * pair * out.distance;
        transform(*plan.complex, Direction::backward, scale, y,
                  Place<R>{x, x + out.distance, out.stride, 2 * out.distance}, some, work);
    });
    for (std::int64_t t = 2 * pairs; t < count; ++t) {
        const Spectrum<R> x = spectrum(packing, n, from_transform(in, t));
        R* const to = out.re + t * out.distance;
        if (plan.odd != nullptr || plan.small_backward != nullptr) {
            R* const numbers = out.stride == 1 ? to : y.re;
            if (plan.odd != nullptr)
                backward(*plan.odd, scale, x, numbers, work);
            else
                small_backward(plan, scale, x, numbers, y.re);
            if (out.stride != 1)
                for (std::int64_t j = 0; j < n; ++j) to[j * out.stride] = y.re[j];
            continue;
        }
        y.re[0] = x.first[0], y.re[1] = 0;
        for (std::int64_t k = 1; k <= n / 2; ++k) {
            const R re = x.re[k * x.stride], im = x.im[k * x.stride];
            y.re[2 * k] = re, y.re[2 * k + 1] = im;
            y.re[2 * (n - k)] = re, y.re[2 * (n - k) + 1] = -im;
        }
        complex_transform(plan, Direction::backward, y, y, 1, work);
        for (std::int64_t j = 0; j < n; ++j) to[j * out.stride] = scale == R(1) ? y.re[2 * j] : scale * y.re[2 * j];
    }
}

template <class R>
void forward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
             std::int64_t count, void* work)
{
    if (plan.n % 2 == 0)
        even_forward(plan, packing, scale, in, out, count, work);
    else
        odd_forward(plan, packing, scale, in, out, count, work);
}
template <class R>
void backward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
              std::int64_t count, void* work)
{
    if (plan.n % 2 == 0)
        even_backward(plan, packing, scale, in, out, count, work);
    else
        odd_backward(plan, packing, scale, in, out, count, work);
}

#define INSTANTIATE(R)                                                                                                 \
    template void odd_forward(const RealPlan<R>&, Packing, R, const Place<R>&, const Place<R>&, std::int64_t, void*);  \
    template void odd_backward(const RealPlan<R>&, Packing, R, const Place<R>&, const Place<R>&, std::int64_t, void*); \
    template void forward(const RealPlan<R>&, Packing, R, const Place<R>&, const Place<R>&, std::int64_t, void*);      \
    template void backward(const RealPlan<R>&, Packing, R, const Place<R>&, const Place<R>&, std::int64_t, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft

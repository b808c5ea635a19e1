// SPDX-License-Identifier: MIT
// Transforms of real numbers, one or many, between any places; even lengths by complex transforms of half the length.
#include "dft/real/real_plan.h"

namespace ork::dft {

namespace {

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
    template void forward(const RealPlan<R>&, Packing, R, const Place<R>&, const Place<R>&, std::int64_t, void*);      \
    template void backward(const RealPlan<R>&, Packing, R, const Place<R>&, const Place<R>&, std::int64_t, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft

// SPDX-License-Identifier: MIT
// Odd lengths, one or many. Each transform is computed alone: two as the real and imaginary parts of one complex
// transform would be faster for some lengths, but an infinity or a magnitude of one would reach the other.
#include "dft/real/real_plan.h"

namespace ork::dft {
namespace {

// Large prime factors: the complex transform of numbers without imaginary parts.
template <class R>
Complex<R>* whole(const RealPlan<R>& plan, void* work)
{
    return reinterpret_cast<Complex<R>*>(static_cast<char*>(work) + plan.whole_offset);
}
template <class R>
void whole_forward(const RealPlan<R>& plan, R scale, const R* in, const Spectrum<R>& x, void* work)
{
    Complex<R>* const y = whole(plan, work);
    for (std::int64_t j = 0; j < plan.n; ++j) y[j] = {in[j], 0};
    transform(*plan.complex, Direction::forward, scale, y, y, work);
    *x.first = y[0].re;
    for (std::int64_t k = 1; k <= plan.n / 2; ++k) x.re[k * x.stride] = y[k].re, x.im[k * x.stride] = y[k].im;
    if (x.zero_first != nullptr) *x.zero_first = 0;
}
template <class R>
void whole_backward(const RealPlan<R>& plan, R scale, const Spectrum<R>& x, R* out, void* work)
{
    Complex<R>* const y = whole(plan, work);
    y[0] = {*x.first, 0};
    for (std::int64_t k = 1; k <= plan.n / 2; ++k) {
        y[k] = {x.re[k * x.stride], x.im[k * x.stride]};
        y[plan.n - k] = conj(y[k]);
    }
    transform(*plan.complex, Direction::backward, scale, y, y, work);
    for (std::int64_t j = 0; j < plan.n; ++j) out[j] = y[j].re;
}

template <class R>
bool dense(Packing packing, const Place<R>& x)
{
    return packing == Packing::cce ? x.im == x.re + 1 && x.stride == 2 : x.stride == 1;
}

// Lines of work memory, for transforms with gaps between their numbers.
template <class R>
R* first_line(const RealPlan<R>& plan, void* work)
{
    return reinterpret_cast<R*>(static_cast<char*>(work) + plan.lines_offset);
}
template <class R>
Spectrum<R> as_spectrum(const RealPlan<R>& plan, R* line)
{
    return spectrum(Packing::cce, plan.n, Place<R>{line, line + 1, 2, 0});
}

} // namespace

template <class R>
void odd_forward(const RealPlan<R>& plan, R scale, const R* in, const Spectrum<R>& x, void* work)
{
    if (plan.small_forward != nullptr)
        plan.small_forward(scale, in, x);
    else if (plan.odd != nullptr)
        forward(*plan.odd, scale, in, x, work);
    else
        whole_forward(plan, scale, in, x, work);
}
template <class R>
void odd_backward(const RealPlan<R>& plan, R scale, const Spectrum<R>& x, R* out, void* work)
{
    if (plan.small_backward != nullptr)
        plan.small_backward(scale, x, out);
    else if (plan.odd != nullptr)
        backward(*plan.odd, scale, x, out, work);
    else
        whole_backward(plan, scale, x, out, work);
}

template <class R>
void odd_forward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
                 std::int64_t count, void* work)
{
    const std::int64_t n = plan.n, row = plan.line;
    R* const line = first_line(plan, work);
    const bool gathers = in.stride != 1, scatters = !dense(packing, out);
    in_blocks(count, plan.lines, [&](std::int64_t t, std::int64_t some) {
        if (gathers)
            for (std::int64_t j = 0; j < n; ++j)
                for (std::int64_t i = 0; i < some; ++i)
                    line[i * row + j] = in.re[(t + i) * in.distance + j * in.stride];
        for (std::int64_t i = 0; i < some; ++i)
            odd_forward(plan, scale, gathers ? line + i * row : in.re + (t + i) * in.distance,
                        scatters ? as_spectrum(plan, line + i * row) : spectrum(packing, n, from_transform(out, t + i)),
                        work);
        if (!scatters) return;
        const Spectrum<R> x = spectrum(packing, n, from_transform(out, t));
        for (std::int64_t i = 0; i < some; ++i) {
            x.first[i * x.distance] = line[i * row];
            if (x.zero_first != nullptr) x.zero_first[i * x.distance] = 0;
        }
        for (std::int64_t k = 1; k <= n / 2; ++k)
            for (std::int64_t i = 0; i < some; ++i) {
                const std::int64_t at = i * x.distance + k * x.stride;
                x.re[at] = line[i * row + 2 * k], x.im[at] = line[i * row + 2 * k + 1];
            }
    });
}

template <class R>
void odd_backward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
                  std::int64_t count, void* work)
{
    const std::int64_t n = plan.n, row = plan.line;
    R* const line = first_line(plan, work);
    const bool gathers = !dense(packing, in), scatters = out.stride != 1;
    in_blocks(count, plan.lines, [&](std::int64_t t, std::int64_t some) {
        if (gathers) {
            const Spectrum<R> x = spectrum(packing, n, from_transform(in, t));
            for (std::int64_t i = 0; i < some; ++i) line[i * row] = x.first[i * x.distance];
            for (std::int64_t k = 1; k <= n / 2; ++k)
                for (std::int64_t i = 0; i < some; ++i) {
                    const std::int64_t at = i * x.distance + k * x.stride;
                    line[i * row + 2 * k] = x.re[at], line[i * row + 2 * k + 1] = x.im[at];
                }
        }
        for (std::int64_t i = 0; i < some; ++i)
            odd_backward(plan, scale,
                         gathers ? as_spectrum(plan, line + i * row) : spectrum(packing, n, from_transform(in, t + i)),
                         scatters ? line + i * row : out.re + (t + i) * out.distance, work);
        if (scatters)
            for (std::int64_t j = 0; j < n; ++j)
                for (std::int64_t i = 0; i < some; ++i)
                    out.re[(t + i) * out.distance + j * out.stride] = line[i * row + j];
    });
}

#define INSTANTIATE(R)                                                                                                 \
    template void odd_forward(const RealPlan<R>&, R, const R*, const Spectrum<R>&, void*);                             \
    template void odd_backward(const RealPlan<R>&, R, const Spectrum<R>&, R*, void*);                                  \
    template void odd_forward(const RealPlan<R>&, Packing, R, const Place<R>&, const Place<R>&, std::int64_t, void*);  \
    template void odd_backward(const RealPlan<R>&, Packing, R, const Place<R>&, const Place<R>&, std::int64_t, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft

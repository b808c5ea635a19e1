// SPDX-License-Identifier: MIT
// Straightforward transforms behind the interface of plan.h while the engine is being built.
#include "dft/engine/roots.h"
#include "dft/plan.h"
#include "frame/core_imports.h"
#include <cstdlib>

namespace ork::dft {

template <class R>
class Plan {
public:
    std::int64_t n;
};

template <class R>
int make_plan(std::int64_t n, Plan<R>** plan)
{
    *plan = static_cast<Plan<R>*>(ork_serv_malloc(sizeof(Plan<R>), 64));
    if (*plan == nullptr) return 1;
    (*plan)->n = n;
    return 0;
}
template <class R>
void free_plan(Plan<R>* plan)
{
    if (plan != nullptr) ork_serv_free(plan);
}
template <class R>
std::int64_t length(const Plan<R>& plan)
{
    return plan.n;
}
template <class R>
std::size_t work_bytes(const Plan<R>& plan)
{
    return plan.n * 16 * sizeof(R);
}
template <class R>
std::size_t work_bytes(const Plan<R>& plan, std::int64_t)
{
    return plan.n * 16 * sizeof(R);
}

namespace {
// y[k] = sum x[j * stride] w^(jk), n = p * m with the smallest prime p.
template <class R>
void recurse(std::int64_t n, const Complex<R>* x, std::int64_t stride, Complex<R>* y, Complex<R>* t)
{
    if (n == 1) {
        y[0] = x[0];
        return;
    }
    std::int64_t p = 2;
    while (n % p != 0) p = p * p > n ? n : p + 1;
    const std::int64_t m = n / p;
    for (std::int64_t j = 0; j < p; ++j) recurse(m, x + j * stride, stride * p, y + j * m, t);
    for (std::int64_t k = 0; k < n; ++k) {
        Complex<R> sum{};
        for (std::int64_t j = 0; j < p; ++j) {
            const Complex<R> w = rounded<R>(exact_root(static_cast<std::int64_t>(static_cast<__int128>(j) * k % n), n));
            sum = sum + y[j * m + k % m] * w;
        }
        t[k] = sum;
    }
    for (std::int64_t k = 0; k < n; ++k) y[k] = t[k];
}
} // namespace

template <class R>
void transform(const Plan<R>& plan, Direction direction, R scale, const Place<R>& in, const Place<R>& out,
               std::int64_t count, void* work)
{
    const std::int64_t n = plan.n;
    auto* x = static_cast<Complex<R>*>(work);
    for (std::int64_t t = 0; t < count; ++t) {
        const bool swap = direction == Direction::backward;
        for (std::int64_t k = 0; k < n; ++k) {
            const std::int64_t at = t * in.distance + k * in.stride;
            x[k] = swap ? Complex<R>{in.im[at], in.re[at]} : Complex<R>{in.re[at], in.im[at]};
        }
        recurse(n, x, 1, x + n, x + 2 * n);
        for (std::int64_t k = 0; k < n; ++k) {
            const std::int64_t at = t * out.distance + k * out.stride;
            Complex<R> y = swap ? Complex<R>{x[n + k].im, x[n + k].re} : x[n + k];
            if (scale != R(1)) y = scale * y;
            out.re[at] = y.re, out.im[at] = y.im;
        }
    }
}
template <class R>
void transform(const Plan<R>& plan, Direction direction, R scale, const Complex<R>* in, Complex<R>* out, void* work)
{
    transform(plan, direction, scale, interleaved(const_cast<Complex<R>*>(in), 1, 0), interleaved(out, 1, 0), 1, work);
}
template <class R>
std::int64_t group(const Plan<R>&)
{
    return 8;
}
template <class R>
std::int64_t units(const Plan<R>&, int)
{
    return 0;
}
template <class R>
std::size_t shared_bytes(const Plan<R>&)
{
    return 0;
}
template <class R>
std::size_t staged_work_bytes(const Plan<R>&)
{
    return 0;
}
template <class R>
void run_stage(const Plan<R>&, int, Direction, R, std::int64_t, std::int64_t, const Complex<R>*, Complex<R>*, void*,
               void*)
{
}

#define INSTANTIATE(R)                                                                                                 \
    template int make_plan(std::int64_t, Plan<R>**);                                                                   \
    template void free_plan(Plan<R>*);                                                                                 \
    template std::int64_t length(const Plan<R>&);                                                                      \
    template std::size_t work_bytes(const Plan<R>&);                                                                   \
    template std::size_t work_bytes(const Plan<R>&, std::int64_t);                                                     \
    template void transform(const Plan<R>&, Direction, R, const Complex<R>*, Complex<R>*, void*);                      \
    template void transform(const Plan<R>&, Direction, R, const Place<R>&, const Place<R>&, std::int64_t, void*);      \
    template std::int64_t group(const Plan<R>&);                                                                       \
    template std::int64_t units(const Plan<R>&, int);                                                                  \
    template std::size_t shared_bytes(const Plan<R>&);                                                                 \
    template std::size_t staged_work_bytes(const Plan<R>&);                                                            \
    template void run_stage(const Plan<R>&, int, Direction, R, std::int64_t, std::int64_t, const Complex<R>*,          \
                            Complex<R>*, void*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft

// SPDX-License-Identifier: MIT
// Plan and steps of odd lengths.
#include "dft/real/odd.h"
#include "dft/lines.h"

#include "dft/engine/roots.h"
#include "dft/real/odd_columns.h"
#include "dft/real/real.h"
#include "frame/core_imports.h"

namespace ork::dft {

template <class R>
class OddPlan {
public:
    std::int64_t n, r, m, padded;
    void (*columns_forward)(const OddColumns<R>&, const R*);
    void (*columns_backward)(const OddColumns<R>&, R*);
    Plan<R>* rows;
    RealPlan<R>* first;
    R* twiddles;
    std::size_t first_offset, rows_offset, own_bytes; // of work memory: below them that of the plans
};

namespace {

template <class R>
struct Radix {
    int r;
    void (*forward)(const OddColumns<R>&, const R*);
    void (*backward)(const OddColumns<R>&, R*);
};
template <class R, int r>
constexpr Radix<R> radix = {r, columns_forward<r, R>, columns_backward<r, R>};
// In order of preference: the larger, the smaller the share of row 0 and of the rows' assembly.
template <class R>
constexpr Radix<R> radices[] = {radix<R, 15>, radix<R, 9>, radix<R, 13>, radix<R, 11>,
                                radix<R, 7>,  radix<R, 5>, radix<R, 3>};

// exp(-2 pi i j2 k1 / n)/2. Roots at multiples of `side` and below it are exact, the others products of two of them.
template <class R>
bool fill_twiddles(OddPlan<R>& plan)
{
    constexpr int lanes = Vec<R>::lanes;
    const std::int64_t rows = plan.r / 2, bytes = static_cast<std::int64_t>(sizeof(R));
    std::int64_t side = 1;
    while (side * side < plan.m) side *= 2;
    plan.twiddles = static_cast<R*>(ork_serv_malloc(2 * rows * plan.padded * bytes, 64));
    auto* fine = static_cast<Complex<long double>*>(
        ork_serv_malloc(side * static_cast<std::int64_t>(sizeof(Complex<long double>)), 64));
    if (plan.twiddles != nullptr && fine != nullptr)
        for (std::int64_t k1 = 1; k1 <= rows; ++k1) {
            for (std::int64_t j = 0; j < side; ++j) fine[j] = exact_root(j * k1 % plan.n, plan.n);
            Complex<long double> coarse{};
            for (std::int64_t j2 = 0; j2 < plan.padded; ++j2) {
                if (j2 % side == 0) coarse = exact_root(j2 * k1 % plan.n, plan.n);
                const Complex<long double> w = coarse * fine[j2 % side];
                R* const at = plan.twiddles + 2 * ((k1 - 1) * plan.padded + j2 / lanes * lanes) + j2 % lanes;
                at[0] = static_cast<R>(w.re / 2), at[lanes] = static_cast<R>(w.im / 2);
            }
        }
    if (fine != nullptr) ork_serv_free(fine);
    return plan.twiddles != nullptr && fine != nullptr;
}

template <class R>
OddColumns<R> columns(const OddPlan<R>& plan, void* work)
{
    char* const at = static_cast<char*>(work);
    return {plan.m, plan.padded, plan.twiddles, reinterpret_cast<R*>(at + plan.first_offset),
            reinterpret_cast<R*>(at + plan.rows_offset)};
}
template <class R>
void transform_rows(const OddPlan<R>& plan, Direction direction, R scale, R* rows, void* work)
{
    const Place<R> place = {rows, rows + 1, 2, 2 * plan.padded};
    transform(*plan.rows, direction, scale, place, place, plan.r / 2, work);
}

} // namespace

template <class R>
int make_odd_plan(std::int64_t n, OddPlan<R>** result)
{
    *result = nullptr;
    const Radix<R>* best = nullptr;
    for (const Radix<R>& candidate : radices<R>)
        if (n % candidate.r == 0 && n > candidate.r && best == nullptr) best = &candidate;
    if (best == nullptr) return 0;
    auto* plan = static_cast<OddPlan<R>*>(ork_serv_malloc(sizeof(OddPlan<R>), 64));
    if (plan == nullptr) return 1;
    *plan = {};
    plan->n = n, plan->r = best->r, plan->m = n / best->r;
    plan->columns_forward = best->forward, plan->columns_backward = best->backward;
    constexpr std::int64_t step = 2 * Vec<R>::lanes;
    plan->padded = (plan->m + step - 1) / step * step;
    if (make_plan(plan->m, &plan->rows) != 0 || make_real_plan(plan->m, &plan->first) != 0 || !fill_twiddles(*plan)) {
        free_odd_plan(plan);
        return 1;
    }
    const std::size_t rows = work_bytes(*plan->rows, plan->r / 2), first = work_bytes(*plan->first);
    const std::size_t row_bytes = whole_lines(static_cast<std::size_t>(plan->padded + 2) * sizeof(R));
    plan->first_offset = whole_lines(rows > first ? rows : first);
    plan->rows_offset = plan->first_offset + row_bytes;
    plan->own_bytes = plan->rows_offset + static_cast<std::size_t>(plan->r / 2 * 2 * plan->padded) * sizeof(R);
    *result = plan;
    return 0;
}

template <class R>
void free_odd_plan(OddPlan<R>* plan)
{
    if (plan == nullptr) return;
    free_plan(plan->rows);
    free_real_plan(plan->first);
    if (plan->twiddles != nullptr) ork_serv_free(plan->twiddles);
    ork_serv_free(plan);
}

template <class R>
std::size_t work_bytes(const OddPlan<R>& plan)
{
    return plan.own_bytes;
}

// Row k1 holds X[k1 + r k2] at k2 = 0 ... m - 1; from (m - 1)/2 on these are conjugates of X[r (m - k2) - k1].
template <class R>
void forward(const OddPlan<R>& plan, R scale, const R* in, const Spectrum<R>& out, void* work)
{
    const std::int64_t r = plan.r, m = plan.m, pitch = 2 * plan.padded;
    const OddColumns<R> a = columns(plan, work);
    plan.columns_forward(a, in);
    transform_rows(plan, Direction::forward, scale, a.rows, work);
    forward(*plan.first, Packing::cce, scale, a.first, a.first, work);

    out.first[0] = a.first[0];
    const auto put = [&](std::int64_t k, R re, R im) { out.re[k * out.stride] = re, out.im[k * out.stride] = im; };
    for (std::int64_t k2 = 0; k2 <= m / 2; ++k2) {
        if (k2 > 0) put(r * k2, a.first[2 * k2], a.first[2 * k2 + 1]);
        const R* row = a.rows + 2 * k2;
        for (std::int64_t k1 = 1; k1 <= r / 2; ++k1, row += pitch) put(r * k2 + k1, row[0], row[1]);
        if (k2 == m / 2) break;
        row = a.rows + 2 * (m - 1 - k2);
        for (std::int64_t k1 = 1; k1 <= r / 2; ++k1, row += pitch) put(r * (k2 + 1) - k1, row[0], -row[1]);
    }
    if (out.zero_first != nullptr) *out.zero_first = 0;
}

template <class R>
void backward(const OddPlan<R>& plan, R scale, const Spectrum<R>& in, R* out, void* work)
{
    const std::int64_t r = plan.r, m = plan.m, pitch = 2 * plan.padded;
    const OddColumns<R> a = columns(plan, work);
    const auto get = [&](std::int64_t k, R& re, R& im) { re = in.re[k * in.stride], im = in.im[k * in.stride]; };
    a.first[0] = in.first[0];
    for (std::int64_t k2 = 0; k2 <= m / 2; ++k2) {
        if (k2 > 0) get(r * k2, a.first[2 * k2], a.first[2 * k2 + 1]);
        R* row = a.rows + 2 * k2;
        for (std::int64_t k1 = 1; k1 <= r / 2; ++k1, row += pitch) get(r * k2 + k1, row[0], row[1]);
        if (k2 == m / 2) break;
        row = a.rows + 2 * (m - 1 - k2);
        for (std::int64_t k1 = 1; k1 <= r / 2; ++k1, row += pitch) {
            get(r * (k2 + 1) - k1, row[0], row[1]);
            row[1] = -row[1];
        }
    }
    // What stands beyond the rows takes part in the last columns' arithmetic, so it must be numbers.
    for (std::int64_t k1 = 0; k1 < r / 2; ++k1)
        for (std::int64_t i = 2 * m; i < pitch; ++i) a.rows[k1 * pitch + i] = 0;
    transform_rows(plan, Direction::backward, 2 * scale, a.rows, work);
    backward(*plan.first, Packing::cce, scale, a.first, a.first, work);
    for (std::int64_t i = m; i < plan.padded; ++i) a.first[i] = 0;
    plan.columns_backward(a, out);
}

#define INSTANTIATE(R)                                                                                                 \
    template int make_odd_plan(std::int64_t, OddPlan<R>**);                                                            \
    template void free_odd_plan(OddPlan<R>*);                                                                          \
    template std::size_t work_bytes(const OddPlan<R>&);                                                                \
    template void forward(const OddPlan<R>&, R, const R*, const Spectrum<R>&, void*);                                  \
    template void backward(const OddPlan<R>&, R, const Spectrum<R>&, R*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft

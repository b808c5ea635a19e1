// SPDX-License-Identifier: MIT
#include "plan.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace ork::fftw {
namespace {

constinit std::atomic<int> threads = 0;

// Length of dimension d on a side.
std::int64_t extent(const Problem& p, int d, bool complex_side)
{
    const std::int64_t n = p.dimension[d].n;
    return d == 0 && p.kind != Kind::complex && complex_side ? n / 2 + 1 : n;
}

// Makes one side a dense buffer: its strides become dense ones, and the move between it and what they were is noted.
// False when there are too many elements.
bool buffer(Problem& p, std::int64_t Dimension::*side, bool complex_side, Move& move)
{
    std::int64_t stride = 1;
    const auto add = [&](Dimension& dimension, std::int64_t n) {
        move.dimension[move.rank++] = {n, dimension.*side, stride};
        dimension.*side = stride;
        return !__builtin_mul_overflow(stride, n, &stride);
    };
    bool fits = true;
    for (int d = 0; d < p.rank; ++d) fits = fits && add(p.dimension[d], extent(p, d, complex_side));
    for (int l = 0; l < p.loops; ++l) fits = fits && add(p.loop[l], p.loop[l].n);
    move.wanted = true;
    move.elements = stride;
    return fits && stride < std::int64_t{1} << 57;
}

// One of the loops is left to the core: the longest.
Dimension take_batch(Problem& p)
{
    if (p.loops == 0) return {1, 0, 0};
    Dimension* longest =
        std::max_element(p.loop, p.loop + p.loops, [](const Dimension& a, const Dimension& b) { return a.n < b.n; });
    const Dimension batch = *longest;
    *longest = p.loop[--p.loops];
    return batch;
}

bool describe(Plan& plan)
{
    Problem& p = plan.problem;
    const Dimension batch = take_batch(p);
    // The sides of the descriptor are those of a forward transform.
    const auto forward =
        p.backward ? std::pair(&Dimension::out, &Dimension::in) : std::pair(&Dimension::in, &Dimension::out);
    std::int64_t lengths[most_dimensions], in[most_dimensions + 1] = {0}, out[most_dimensions + 1] = {0};
    for (int d = 0; d < p.rank; ++d) {
        lengths[d] = p.dimension[d].n;
        in[d + 1] = p.dimension[d].*forward.first;
        out[d + 1] = p.dimension[d].*forward.second;
    }
    ork_dft_descriptor** handle = &plan.descriptor;
    std::int64_t failed =
        ork_dft_create_descriptor(handle, sizeof(Number) == 4 ? ORK_DFT_SINGLE : ORK_DFT_DOUBLE,
                                  p.kind == Kind::complex ? ORK_DFT_COMPLEX : ORK_DFT_REAL, p.rank, lengths);
    const auto set = [&](int parameter, std::int64_t value) {
        if (!failed) failed = ork_dft_set_integer(*handle, parameter, value);
    };
    set(ORK_DFT_NUMBER_OF_TRANSFORMS, batch.n);
    set(ORK_DFT_INPUT_DISTANCE, batch.*forward.first);
    set(ORK_DFT_OUTPUT_DISTANCE, batch.*forward.second);
    set(ORK_DFT_PLACEMENT, plan.in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE);
    set(ORK_DFT_COMPLEX_STORAGE, plan.split ? ORK_DFT_REAL_REAL : ORK_DFT_COMPLEX_COMPLEX);
    set(ORK_DFT_THREAD_LIMIT, planner_threads());
    if (!failed) failed = ork_dft_set_integers(*handle, ORK_DFT_INPUT_STRIDES, in);
    if (!failed) failed = ork_dft_set_integers(*handle, ORK_DFT_OUTPUT_STRIDES, out);
    if (!failed) failed = ork_dft_commit_descriptor(*handle);
    if (failed) ork_dft_free_descriptor(handle);
    return !failed;
}

bool same_strides(const Problem& p)
{
    const auto same = [](const Dimension& d) { return d.in == d.out; };
    return std::all_of(p.dimension, p.dimension + p.rank, same) && std::all_of(p.loop, p.loop + p.loops, same);
}

// Real data in place share their array line by line: beside dimension 0, complex strides are half the real ones.
bool same_lines(const Problem& p)
{
    const auto same = [&](const Dimension& d) { return p.kind == Kind::r2c ? d.in == 2 * d.out : 2 * d.in == d.out; };
    return std::all_of(p.dimension + 1, p.dimension + p.rank, same) && std::all_of(p.loop, p.loop + p.loops, same);
}

double operations(const Problem& p)
{
    double n = 1, count = 1;
    for (int d = 0; d < p.rank; ++d) n *= static_cast<double>(p.dimension[d].n);
    for (int l = 0; l < p.loops; ++l) count *= static_cast<double>(p.loop[l].n);
    return (p.kind == Kind::complex ? 5 : 2.5) * n * std::log2(n) * count;
}

bool fill(Plan& plan)
{
    Problem& p = plan.problem;
    plan.operations = operations(p);
    for (int l = 0; l < p.loops; ++l)
        if (p.loop[l].n == 0) return true;
    if (p.kind == Kind::r2r) {
        plan.in_place = p.in_place() && same_strides(p);
        if (p.in_place() && !plan.in_place && !buffer(p, &Dimension::out, false, plan.scatter)) return false;
        return make_real(plan);
    }
    if (p.kind == Kind::complex) {
        plan.split = p.split;
        plan.in_place = p.in_place() && same_strides(p);
        std::sort(p.dimension, p.dimension + p.rank,
                  [](const Dimension& a, const Dimension& b) { return std::abs(a.in) < std::abs(b.in); });
        if (p.in_place() && !plan.in_place && !buffer(p, &Dimension::out, true, plan.scatter)) return false;
        return describe(plan);
    }
    plan.in_place = p.in_place() && !p.split && same_lines(p);
    if (p.split && p.kind == Kind::c2r && !buffer(p, &Dimension::in, true, plan.gather)) return false;
    const bool scatter =
        p.kind == Kind::r2c ? p.split || (p.in_place() && !plan.in_place) : !p.split && p.in_place() && !plan.in_place;
    if (scatter && !buffer(p, &Dimension::out, p.complex_out(), plan.scatter)) return false;
    return describe(plan);
}

} // namespace

bool Problem::add_dimension(Dimension added)
{
    if (added.n < 1) return false;
    if (added.n == 1 && !(kind != Kind::complex && rank == 0)) return true;
    if (rank == most_dimensions) return false;
    dimension[rank++] = added;
    return true;
}

bool Problem::add_dimension(Dimension added, RealKind how)
{
    if (added.n < 1 || rank == most_dimensions) return false;
    real_kind[rank] = how;
    dimension[rank++] = added;
    return true;
}

bool Problem::add_loop(Dimension added)
{
    if (added.n < 0) return false;
    if (added.n == 1) return true;
    if (loops == most_loops) return false;
    loop[loops++] = added;
    return true;
}

Plan* make_plan(const Problem& problem)
{
    Plan* plan = static_cast<Plan*>(std::malloc(sizeof(Plan)));
    if (plan == nullptr) return nullptr;
    *plan = {};
    plan->problem = problem;
    if (plan->problem.rank == 0) plan->problem.dimension[plan->problem.rank++] = {1, 1, 1}; // a copy, also of r2hc
    if (fill(*plan)) return plan;
    free_plan(plan);
    return nullptr;
}

void free_plan(Plan* plan)
{
    if (plan == nullptr) return;
    if (plan->descriptor != nullptr) ork_dft_free_descriptor(&plan->descriptor);
    free_real(*plan);
    std::free(plan);
}

void set_planner_threads(int wanted) { threads.store(wanted < 0 ? 0 : wanted); }
int planner_threads() { return threads.load(); }

} // namespace ork::fftw

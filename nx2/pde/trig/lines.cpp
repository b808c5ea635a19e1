// SPDX-License-Identifier: MIT
#include "pde/trig/lines.h"

#include "frame/core_imports.h"
#include "pde/trig/side_by_side.h"
#include "simd/vec.h"

namespace ork::pde {
namespace {

// Where the kernel of a type starts, and which elements it has not but the scaling has.
struct Extent {
    Int first, elements; // of a line
    Int alone[2];        // scaled and nothing else; -1: none
};

Extent extent(Int type, Int n, Way way, bool scaled)
{
    switch (type) {
    case 0:
        return way == Way::forward ? Extent{0, n + 1, {0, n}} : Extent{0, n + 1, {-1, -1}};
    case 1:
        return {0, n + 1, {-1, -1}};
    case 2:
        return {0, n, {n, -1}};
    case 3:
        return {scaled ? 1 : 0, n, {0, -1}};
    default:
        return {0, n, {-1, -1}};
    }
}

template <class R>
void scale_alone(const Extent& e, R factor, R* line, Int stride)
{
    for (const Int i : e.alone)
        if (i >= 0) line[i * stride] *= factor;
}

// Lines whose elements are this near are put into the buffer side by side: a cache line.
template <class R>
constexpr Int buffered_at_once = 128 / sizeof(R);

// The first `elements` of `count` lines into lines of the buffer, or back. Neighbours go by squares of registers.
enum class Copy { in, out };
template <Copy way, class R>
void copy(R* at, const Lines& lines, Int elements, Int count, R* buffer, Int line)
{
    constexpr Int lanes = Vec<R>::lanes;
    const Int squares = lines.distance == 1 ? count / lanes * lanes : 0, rows = elements / lanes * lanes;
    const auto single = [&](Int i, Int j) {
        R &there = at[j * lines.distance + i * lines.stride], &here = buffer[j * line + i];
        (way == Copy::in ? here : there) = way == Copy::in ? there : here;
    };
    for (Int i = 0; i < rows; i += lanes) {
        R* const row = at + i * lines.stride;
        for (Int j = 0; j < squares; j += lanes) {
            Vec<R> x[lanes];
            for (Int k = 0; k < lanes; ++k)
                x[k] = load(way == Copy::in ? row + k * lines.stride + j : buffer + (j + k) * line + i);
            transpose(x);
            for (Int k = 0; k < lanes; ++k)
                store(way == Copy::in ? buffer + (j + k) * line + i : row + k * lines.stride + j, x[k]);
        }
    }
    for (Int i = 0; i < elements; ++i)
        for (Int j = i < rows ? squares : 0; j < count; ++j) single(i, j);
}

template <class R>
R scale(Int n, Way way, bool scaled)
{
    return !scaled ? R(1) : way == Way::forward ? R(1) / static_cast<R>(n) : R(0.5);
}

template <class R>
Int one_after_another(const TrigPlan<R>& plan, Way way, bool scaled, R* f, const Lines& lines)
{
    const Int n = plan.n;
    const Extent e = extent(plan.type, n, way, scaled);
    const R factor = scale<R>(n, way, scaled);

    constexpr Int on_stack = 16384 / sizeof(R), unit = 64 / sizeof(R);
    const bool buffered = lines.stride != 1;
    const Int group = !buffered ? 0 : lines.count < buffered_at_once<R> ? lines.count : buffered_at_once<R>;
    const Int line = (e.elements + unit) / unit * unit + unit; // not a power of two
    const Int numbers = work_numbers<R>(plan.type, n), whole = (numbers + unit - 1) / unit * unit + group * line;
    alignas(64) R small[on_stack];
    R* const work =
        whole <= on_stack ? small : static_cast<R*>(ork_serv_allocate(static_cast<std::size_t>(whole) * sizeof(R), 64));
    if (work == nullptr) return ORK_DFT_MEMORY_ERROR;
    R* const buffer = work + (whole - group * line);

    Int status = 0;
    for (Int k = 0; k < lines.count && status == 0; k += buffered ? group : 1) {
        R* const first = f + k * lines.distance;
        const Int count = !buffered ? 1 : lines.count - k < group ? lines.count - k : group;
        if (scaled)
            for (Int j = 0; j < count; ++j) scale_alone(e, factor, first + j * lines.distance, lines.stride);
        if (!buffered) {
            status = transform(plan, way, factor, first + e.first, work);
            continue;
        }
        R* const at = first + e.first * lines.stride;
        copy<Copy::in>(at, lines, e.elements, count, buffer, line);
        for (Int j = 0; j < count && status == 0; ++j) status = transform(plan, way, factor, buffer + j * line, work);
        copy<Copy::out>(at, lines, e.elements, count, buffer, line);
    }
    if (work != small) ork_serv_deallocate(work);
    return status;
}

} // namespace

template <class R>
Int transform_line(const TrigPlan<R>& plan, Way way, bool scaled, R* f)
{
    return one_after_another(plan, way, scaled, f, {1, 1, 0});
}

template <class R>
Int transform_lines(const TrigPlan<R>& plan, Way way, bool scaled, R* f, const Lines& lines)
{
    if (!goes_side_by_side(plan.type, plan.n)) return one_after_another(plan, way, scaled, f, lines);
    const R factor = scale<R>(plan.n, way, scaled);
    if (scaled)
        for (Int j = 0; j < lines.count; ++j)
            scale_alone(extent(plan.type, plan.n, way, scaled), factor, f + j * lines.distance, lines.stride);
    transform_side_by_side(plan.type, plan.n, factor, f, lines);
    return 0;
}

#define INSTANTIATE(R)                                                                                                 \
    template Int transform_line(const TrigPlan<R>&, Way, bool, R*);                                                    \
    template Int transform_lines(const TrigPlan<R>&, Way, bool, R*, const Lines&);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::pde

// SPDX-License-Identifier: MIT
#include "conv/fft/tile.h"

#include <atomic>
#include <cstring>

#include "conv/fft/parallel.h"
#include "frame/core_imports.h"
#include "simd/gather.h"

namespace ork::conv {
namespace {

// Pairs of numbers that a part of parallel work should have at least.
constexpr Int least_pairs = 16384;

bool forward(const ork_dft_descriptor* handle, void* data) { return ork_dft_dfticomputeforward(handle, data) == 0; }
bool backward(const ork_dft_descriptor* handle, void* data) { return ork_dft_dfticomputebackward(handle, data) == 0; }

// to = a b, pair by pair; to may be a.
template <class W>
void multiply(Int pairs, const W* a, const W* b, W* to)
{
    using Pair = Complex<W>;
    constexpr Int lanes = Vec<Pair>::lanes;
    const auto *p = reinterpret_cast<const Pair*>(a), *q = reinterpret_cast<const Pair*>(b);
    auto* r = reinterpret_cast<Pair*>(to);
    Int i = 0;
    for (; i + lanes <= pairs; i += lanes) store<lanes>(r + i, times(load<lanes>(p + i), load<lanes>(q + i)));
    for (; i < pairs; ++i) r[i] = p[i] * q[i];
}

template <class W>
void scale_numbers(Int count, W factor, W* x)
{
    for (Int i = 0; i < count; ++i) x[i] *= factor;
}

// Runs unit(u), u = 0 .. units - 1, each over so many pairs, in parts that depend on sizes alone. False when one was.
template <class Unit>
bool for_all(Int units, Int pairs_each, Unit unit)
{
    Int each = least_pairs / pairs_each + 1;
    if (each < (units + 255) / 256) each = (units + 255) / 256;
    std::atomic<bool> good = true;
    parallel((units + each - 1) / each, [&](Int part) {
        for (Int u = part * each; u < units && u < (part + 1) * each; ++u)
            if (!unit(u)) {
                good.store(false, std::memory_order_relaxed);
                return;
            }
    });
    return good.load(std::memory_order_relaxed);
}

// All places that blocks have along the axes from `from` on, one after the other.
template <class W>
class Planes {
public:
    Planes(const TransformPlan& plan, const Block& block, int from) : plan_(plan), block_(block), from_(from) {}
    Int count() const
    {
        Int count = 1;
        for (int k = from_; k < plan_.shape.rank; ++k) count *= block_.places[k].count;
        return count;
    }
    // The distance of the plane from the tile's beginning, in pairs; in *element, if wanted, that of its first element.
    Int at(Int plane, const Int* stride = nullptr, Int* element = nullptr) const
    {
        Int pairs = 0;
        for (int k = from_; k < plan_.shape.rank; ++k) {
            const Places& places = block_.places[k];
            const Int i = plane % places.count;
            plane /= places.count;
            pairs += (places.first + i * places.step) * plan_.pitch[k];
            if (element != nullptr) *element += (block_.element[k] + i) * stride[k];
        }
        return pairs;
    }

private:
    const TransformPlan& plan_;
    const Block& block_;
    int from_;
};

template <class W>
void clear(W* from, const W* to)
{
    if (from < to) std::memset(static_cast<void*>(from), 0, static_cast<std::size_t>(to - from) * sizeof(W));
}

// Zero outside of the block's lines.
template <class W>
void clear_rest(const TransformPlan& plan, const Block& block, W* tile)
{
    const auto full = [&](int k) { return block.places[k].count == plan.shape.axis[k].n; };
    int k = plan.shape.rank - 1;
    for (; k > 0 && full(k); --k) {
    }
    if (k == 0) return;
    // Whole planes of the last axis that is not full; within those in the block, the axis before, and so on.
    for (; k > 0; --k) {
        const Planes<W> planes(plan, block, k + 1);
        const Places& places = block.places[k];
        for (Int plane = 0; plane < planes.count(); ++plane) {
            W* begin = tile + 2 * planes.at(plane);
            const Int pitch = 2 * plan.pitch[k];
            clear(begin, begin + places.first * pitch);
            clear(begin + (places.first + places.count) * pitch, begin + plan.shape.axis[k].n * pitch);
        }
    }
}

// The block's lines, transformed.
template <class W>
bool transform_lines(const TransformPlan& plan, const Array& array, const Block& block, W* tile)
{
    const Shape& shape = plan.shape;
    const Planes<W> lines(plan, block, 1);
    const Int parts = shape.is_complex ? 2 : 1, length = shape.rank > 1 ? plan.pitch[1] : shape.line();
    clear_rest(plan, block, tile);
    const Places& places = block.places[0];
    return for_all(lines.count(), length, [&](Int u) {
        Int element = block.element[0] * array.stride[0];
        W* line = tile + 2 * lines.at(u, array.stride, &element);
        W *begin = line + parts * places.first, *end = begin + parts * places.count;
        clear(line, begin);
        pack(array, shape.is_complex, element, places.count, begin);
        clear(end, line + 2 * length);
        return forward(plan.line, line);
    });
}

// Runs visit(columns, pairs from the beginning of the tile, descriptor, count) over the groups of an axis.
template <class W, class Visit>
bool for_columns(const TransformPlan& plan, int axis, const Block& block, Visit visit)
{
    const Columns& columns = plan.columns[axis];
    const Planes<W> planes(plan, block, axis + 1);
    const Int groups = columns.groups();
    return for_all(planes.count() * groups, columns.group * plan.shape.axis[axis].n, [&](Int u) {
        const Int first = u % groups * columns.group;
        const bool whole = first + columns.group <= columns.width;
        return visit(planes.at(u / groups) + first, whole ? columns.whole : columns.rest,
                     whole ? columns.group : columns.width - first);
    });
}

template <class W>
bool transform_but_last(const TransformPlan& plan, const Array& array, const Block& block, W* tile)
{
    if (!transform_lines(plan, array, block, tile)) return false;
    for (int k = 1; k < plan.shape.rank - 1; ++k)
        if (!for_columns<W>(plan, k, block, [&](Int at, const ork_dft_descriptor* handle, Int) {
                return forward(handle, tile + 2 * at);
            }))
            return false;
    return true;
}

Block block_of(const Shape& shape, Int t, bool outputs)
{
    Block block;
    for (int k = 0; k < shape.rank; ++k) {
        const Axis& axis = shape.axis[k];
        const Int tile = t % axis.tiles;
        t /= axis.tiles;
        if (outputs) {
            block.places[k] = {axis.lead(), axis.outputs_of(tile), axis.step};
            block.element[k] = tile * axis.outputs;
        } else {
            const Range range = filled(axis, tile);
            block.places[k] = {range.begin, range.size(), 1};
            block.element[k] = axis.start(tile) + range.begin;
        }
    }
    return block;
}

} // namespace

Block filter_block(const Shape& shape)
{
    Block block{};
    for (int k = 0; k < shape.rank; ++k) block.places[k] = {0, shape.axis[k].filter, 1};
    return block;
}
Block signal_block(const Shape& shape, Int t) { return block_of(shape, t, false); }
Block output_block(const Shape& shape, Int t) { return block_of(shape, t, true); }

template <class W>
bool transform_block(const TransformPlan& plan, const Array& array, const Block& block, W scale, W* tile)
{
    const int last = plan.shape.rank - 1;
    if (!transform_but_last(plan, array, block, tile)) return false;
    if (last == 0) {
        scale_numbers(2 * plan.pairs, scale, tile);
        return true;
    }
    const Int n = plan.shape.axis[last].n, pitch = plan.pitch[last];
    return for_columns<W>(plan, last, block, [&](Int at, const ork_dft_descriptor* handle, Int count) {
        if (!forward(handle, tile + 2 * at)) return false;
        for (Int i = 0; i < n; ++i) scale_numbers(2 * count, scale, tile + 2 * (at + i * pitch));
        return true;
    });
}

template <class W>
bool convolve_tile(const TransformPlan& plan, const Signal<W>& signal, const W* filter, const Array& result,
                   const Block& outputs, W* tile)
{
    const Shape& shape = plan.shape;
    const int last = shape.rank - 1;
    const bool known = signal.transform != nullptr;
    const W* from = known ? signal.transform : tile;
    if (!known && !transform_but_last(plan, signal.array, signal.block, tile)) return false;
    if (last == 0) {
        multiply(plan.pairs, from, filter, tile);
    } else {
        const Int n = shape.axis[last].n, pitch = plan.pitch[last];
        if (!for_columns<W>(plan, last, signal.block, [&](Int at, const ork_dft_descriptor* handle, Int count) {
                if (!known && !forward(handle, tile + 2 * at)) return false;
                for (Int i = 0; i < n; ++i) {
                    const Int row = 2 * (at + i * pitch);
                    multiply(count, from + row, filter + row, tile + row);
                }
                return backward(handle, tile + 2 * at);
            }))
            return false;
    }
    for (int k = last - 1; k > 0; --k)
        if (!for_columns<W>(plan, k, outputs, [&](Int at, const ork_dft_descriptor* handle, Int) {
                return backward(handle, tile + 2 * at);
            }))
            return false;
    const Planes<W> lines(plan, outputs, 1);
    const Places& places = outputs.places[0];
    return for_all(lines.count(), shape.line(), [&](Int u) {
        Int element = outputs.element[0] * result.stride[0];
        W* line = tile + 2 * lines.at(u, result.stride, &element);
        if (!backward(plan.line, line)) return false;
        unpack(result, shape.is_complex, element, places.count, line + (shape.is_complex ? 2 : 1) * places.first,
               places.step);
        return true;
    });
}

#define INSTANTIATE(W)                                                                                                 \
    template bool transform_block<W>(const TransformPlan&, const Array&, const Block&, W, W*);                         \
    template bool convolve_tile<W>(const TransformPlan&, const Signal<W>&, const W*, const Array&, const Block&, W*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::conv

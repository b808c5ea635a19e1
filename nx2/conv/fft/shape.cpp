// SPDX-License-Identifier: MIT
#include "conv/fft/shape.h"

#include "conv/fft/fft.h"
#include "conv/fft/lengths.h"

namespace ork::conv {
namespace {

Int smaller(Int a, Int b) { return a < b ? a : b; }
Int larger(Int a, Int b) { return a > b ? a : b; }

struct Extents {
    Int x, y, x_from, y_from, first;
};

// What of x and y meets an output.
Extents kept(const Dimension& n)
{
    const Int last = n.first + (n.z - 1) * n.step;
    Extents e{};
    e.x_from = larger(0, n.first - (n.y - 1)), e.y_from = larger(0, n.first - (n.x - 1));
    e.x = smaller(n.x - 1, last) - e.x_from + 1, e.y = smaller(n.y - 1, last) - e.y_from + 1;
    e.first = n.first - e.x_from - e.y_from;
    return e;
}

void make_single(Axis& axis)
{
    const Int last = axis.first + (axis.z - 1) * axis.step;
    axis.n = good_length(larger(last + 1, axis.signal + axis.filter - 1 - axis.first));
    axis.tiles = 1, axis.outputs = axis.z;
}

void make_tiled(Axis& axis, Int n)
{
    axis.n = n;
    axis.outputs = (n - axis.filter) / axis.step + 1;
    axis.tiles = (axis.z + axis.outputs - 1) / axis.outputs;
}

// Nanoseconds of copying a number into a line or out of it, of multiplying two pairs of numbers, of starting a tile.
constexpr double copy_cost = 0.15, product_cost_double = 0.5, product_cost_single = 0.3, tile_cost = 40;

// Nanoseconds that a tile takes longer because it comes and goes through farther caches, together with the filter.
double memory_cost(double bytes)
{
    double rate = 0;
    for (double near = 256 << 10; near < bytes && rate < 0.5; near *= 2)
        rate += 0.1 * (bytes < 2 * near ? bytes / near - 1 : 1);
    return rate * bytes;
}

double seconds_of(const Shape& s)
{
    const Numbers numbers{s.is_complex, s.is_double};
    const double line = seconds_of_line(s.axis[0].n, numbers);
    const double pairs = static_cast<double>(s.line()), parts = s.is_complex ? 2 : 1;
    double tiles = static_cast<double>(s.axis[0].tiles), points = pairs;
    double rows = 1, filter_rows = 1, output_rows = 1, columns = 0, filter_columns = 0;
    for (int k = 1; k < s.rank; ++k) {
        const Axis& axis = s.axis[k];
        const double one = seconds_of_column(axis.n, s.is_double);
        const auto n = static_cast<double>(axis.n);
        // Columns of the axes before count once for every plane that is not empty.
        const auto in = static_cast<double>(smaller(axis.signal, axis.n)), f = static_cast<double>(axis.filter);
        const auto out = static_cast<double>(axis.outputs);
        filter_columns = filter_columns * f + points * one;
        columns = columns * (in + out) / 2 + 2 * points * one;
        rows *= in, filter_rows *= f, output_rows *= out;
        points *= n, tiles *= static_cast<double>(axis.tiles);
    }
    const double copied = (rows + output_rows) * static_cast<double>(s.axis[0].n) * parts * copy_cost;
    const double multiplied = points * (s.is_double ? product_cost_double : product_cost_single);
    const double memory = memory_cost(points * (s.is_double ? 16 : 8));
    return (filter_rows * line + filter_columns) +
           tiles * ((rows + output_rows) * line + columns + 1e-9 * (copied + multiplied + memory + tile_cost));
}

// Below so many products of elements nothing beats summation, and nobody should look for tiles.
constexpr Int few_products = 4096;

Shape describe(const Problem& problem)
{
    Shape s{};
    s.is_complex = problem.is_complex, s.is_double = problem.computes_double;
    Extents extents[max_dims];
    Int x = 1, y = 1;
    for (int d = 0; d < problem.dims; ++d) {
        const Extents& e = extents[d] = kept(problem.dimension[d]);
        s.x_from[d] = e.x_from, s.y_from[d] = e.y_from;
        x = times(x, e.x), y = times(y, e.y);
    }
    s.x_is_filter = x < y;
    for (int d = 0; d < problem.dims; ++d) {
        const Extents& e = extents[d];
        if (e.x == 1 && e.y == 1 && (s.rank > 0 || d + 1 < problem.dims)) continue;
        Axis& axis = s.axis[s.rank++];
        axis.dimension = d;
        axis.signal = s.x_is_filter ? e.y : e.x, axis.filter = s.x_is_filter ? e.x : e.y;
        axis.first = e.first, axis.z = problem.dimension[d].z, axis.step = problem.dimension[d].step;
    }
    return s;
}

} // namespace

Int Shape::tiles() const
{
    Int count = 1;
    for (int k = 0; k < rank; ++k) count = times(count, axis[k].tiles);
    return count;
}

Shape choose_shape(const Problem& problem, double* seconds)
{
    Shape best = describe(problem);
    Int products = 1;
    for (int k = 0; k < best.rank; ++k) {
        make_single(best.axis[k]);
        products = times(products, times(best.axis[k].z, best.axis[k].filter));
    }
    *seconds = seconds_of(best);
    if (products < few_products) return best;
    // One axis after the other, twice: what pays along one depends on the others.
    for (int round = 0; round < (best.rank == 1 ? 1 : 2); ++round)
        for (int k = 0; k < best.rank; ++k) {
            Shape trial = best;
            const auto offer = [&] {
                const double cost = seconds_of(trial);
                if (cost < *seconds) *seconds = cost, best = trial;
            };
            make_single(trial.axis[k]);
            const Int single = trial.axis[k].n;
            offer();
            good_lengths(best.axis[k].filter, single, [&](Int n) {
                make_tiled(trial.axis[k], n);
                if (trial.axis[k].tiles > 1) offer();
            });
        }
    return best;
}

double cost_of_transforms(const Problem& problem)
{
    double seconds;
    choose_shape(problem, &seconds);
    return seconds;
}

} // namespace ork::conv

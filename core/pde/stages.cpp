// SPDX-License-Identifier: MIT
// The stages of a solve, which kernels call one after the other: to coefficients, tridiagonal systems, and back. Lines
// and systems are divided among threads; what one computes doesn't depend on the others.
#include "export.h"
#include "ork/abi/core_pde.h"
#include "ork/abi/services.h"
#include "pde/direction.h"
#include "pde/kernels.h"
#include "pde/right_side.h"

namespace ork::pde {
namespace {

// Points a thread, below which waking it costs more than it saves: about 15 us.
constexpr double transformed_per_thread = 8000, solved_per_thread = 16000;

// Lines are prepared and transformed in pieces that stay in the second-level cache.
constexpr Int piece_bytes = 128 * 1024;

template <class R>
Int rows_at_once(const Grid<R>& grid)
{
    return std::max<Int>(8, piece_bytes / (grid.row * static_cast<Int>(sizeof(R))) / 8 * 8);
}

// body(row, count, plane) for pieces of the unknown rows first .. first + count - 1, counted through all planes.
template <class R, class Body>
Int for_rows(const Grid<R>& grid, Int first, Int count, Body&& body)
{
    const Int rows = grid.inside[1].size(), at_once = rows_at_once(grid);
    for (Int r = first, end = first + count; r < end;) {
        const Int j = r % rows, k = r / rows;
        const Int piece = std::min({at_once, rows - j, end - r});
        const Int status = body(grid.inside[1].first + j, piece, grid.inside[2].first + k);
        if (status != 0) return status;
        r += piece;
    }
    return 0;
}

template <class R>
LineSet<R> rows_of(const Grid<R>& grid, Int j, Int count, Int k)
{
    return {grid.work.f + k * grid.plane + j * grid.row, count, 1, grid.row};
}

// Columns of a plane, taken so many at once.
constexpr Int columns_at_once = 64;
template <class R>
Int pieces_of_columns(const Grid<R>& grid)
{
    return (grid.inside[0].size() + columns_at_once - 1) / columns_at_once;
}

template <class R>
Int transform_columns(const Grid<R>& grid, const Direction<R>& y, Int piece, Int k, bool backward)
{
    const Int i = grid.inside[0].first + piece * columns_at_once;
    const LineSet<R> lines = {grid.work.f + k * grid.plane + i, std::min(columns_at_once, grid.inside[0].end - i),
                              grid.row, 1};
    return backward ? y.backward(lines) : y.forward(lines);
}

// Planes that stay in the second-level cache are transformed in both directions at once, as long as there are enough of
// them for the threads: the stage of y has been done by that of x then (forward), or is left to it (backward).
template <class R>
bool whole_planes(const Grid<R>& grid)
{
    constexpr Int plane_bytes = 512 * 1024, planes = 16;
    return !grid.flat && grid.plane * static_cast<Int>(sizeof(R)) <= plane_bytes && grid.inside[2].size() >= planes;
}

template <class R>
void transform_planes(Work<R>* work, bool backward)
{
    const Grid<R> grid(*work);
    const Direction<R> x(*work, 0), y(*work, 1);
    const R h = grid.step(grid.last_direction());
    const RightSide<R> side(grid, h * h / (x.norm() * y.norm()));
    const Int rows = grid.inside[1].size(), pieces = pieces_of_columns(grid);
    const auto along_y = [&](Int k) {
        Int status = 0;
        for (Int piece = 0; piece < pieces && status == 0; ++piece)
            status = transform_columns(grid, y, piece, k, backward);
        return status;
    };
    share_units(*work, grid.inside[2].size(), rows * grid.row, transformed_per_thread / 2, [&](Int first, Int count) {
        for (Int plane = first; plane < first + count; ++plane) {
            Int status = backward ? along_y(grid.inside[2].first + plane) : 0;
            if (status == 0)
                status = for_rows(grid, plane * rows, rows, [&](Int j, Int piece, Int k) {
                    if (backward) return x.backward(rows_of(grid, j, piece, k));
                    for (Int r = 0; r < piece; ++r) side.prepare_row(j + r, k);
                    return x.forward(rows_of(grid, j, piece, k));
                });
            if (status == 0 && !backward) status = along_y(grid.inside[2].first + plane);
            if (status != 0) return status;
        }
        return Int{0};
    });
}

template <class R>
void forward_x(Work<R>* work)
{
    const Grid<R> grid(*work);
    if (whole_planes(grid)) return transform_planes(work, false);
    const Direction<R> x(*work, 0);
    const R h = grid.step(grid.last_direction());
    const RightSide<R> side(grid, h * h / (grid.flat ? x.norm() : x.norm() * Direction<R>(*work, 1).norm()));
    share_units(*work, grid.inside[1].size() * grid.inside[2].size(), grid.row, transformed_per_thread,
                [&](Int first, Int count) {
                    return for_rows(grid, first, count, [&](Int j, Int rows, Int k) {
                        for (Int r = 0; r < rows; ++r) side.prepare_row(j + r, k);
                        return x.forward(rows_of(grid, j, rows, k));
                    });
                });
}

// A direction's last point is its first.
template <class R>
void close_periods(const Grid<R>& grid)
{
    R* const f = grid.work.f;
    const Int nx = grid.n[0], ny = grid.n[1], nz = grid.flat ? 0 : grid.n[2];
    if (grid.side[0][0] == periodic)
        for (Int r = 0; r < (ny + 1) * (nz + 1); ++r) f[r * grid.row + nx] = f[r * grid.row];
    if (grid.side[1][0] == periodic)
        for (Int k = 0; k <= nz; ++k) std::copy_n(f + k * grid.plane, grid.row, f + k * grid.plane + ny * grid.row);
    if (!grid.flat && grid.side[2][0] == periodic) std::copy_n(f, grid.plane, f + nz * grid.plane);
}

template <class R>
void backward_x(Work<R>* work)
{
    const Grid<R> grid(*work);
    if (whole_planes(grid)) {
        transform_planes(work, true);
        return close_periods(grid);
    }
    const Direction<R> x(*work, 0);
    share_units(*work, grid.inside[1].size() * grid.inside[2].size(), grid.row, transformed_per_thread,
                [&](Int first, Int count) {
                    return for_rows(grid, first, count,
                                    [&](Int j, Int rows, Int k) { return x.backward(rows_of(grid, j, rows, k)); });
                });
    close_periods(grid);
}

// Units are pieces of planes, of so many columns.
template <class R>
void transform_y(Work<R>* work, bool backward)
{
    const Grid<R> grid(*work);
    if (whole_planes(grid)) return;
    const Direction<R> y(*work, 1);
    const Int pieces = pieces_of_columns(grid);
    share_units(*work, pieces * grid.inside[2].size(), columns_at_once * grid.n[1], transformed_per_thread,
                [&](Int first, Int count) -> Int {
                    for (Int unit = first; unit < first + count; ++unit) {
                        const Int k = grid.inside[2].first + unit / pieces;
                        if (const Int status = transform_columns(grid, y, unit % pieces, k, backward)) return status;
                    }
                    return 0;
                });
}

// Systems along the last direction, one for every unknown column (and row); units are blocks of columns.
template <class R>
void solve_last(Work<R>* work)
{
    constexpr Int block = tridiagonal_block / static_cast<Int>(sizeof(R));
    const Grid<R> grid(*work);
    const int last = grid.last_direction();
    const Range columns = grid.inside[0], along = grid.inside[last];
    const Int rows = grid.flat ? 1 : grid.inside[1].size(), order = along.size(), ends = grid.pair(last);
    const Int stride = grid.flat ? grid.row : grid.plane;
    if (order == 0) return;
    const Int pieces = (columns.size() + block - 1) / block;
    // Between sides that hold nothing q alone determines the mean.
    bool free = true;
    for (int i = 0; i <= last; ++i) free = free && (grid.pair(i) == nn || grid.pair(i) == pp);
    const R h = grid.step(last), held = work->singular != 0 ? R{0} : h * h * work->fpar[at_q];
    const R* const x_table = work->fpar + work->ipar[15] - 1;
    const R* const y_table = grid.flat ? nullptr : work->fpar + work->ipar[17] - 1;
    share_units(*work, pieces * rows, std::min(block, columns.size()) * order, solved_per_thread,
                [&](Int first, Int count) -> Int {
                    const auto bytes = static_cast<std::size_t>(tridiagonal_work<R>(order)) * sizeof(R);
                    R* const buffer = static_cast<R*>(ork_serv_allocate(bytes, 64));
                    if (buffer == nullptr) return no_memory;
                    for (Int unit = first; unit < first + count;) {
                        // As many blocks of a row as there are.
                        const Int i = columns.first + unit % pieces * block;
                        const Int blocks = std::min(pieces - unit % pieces, first + count - unit);
                        const Int j = grid.flat ? 0 : grid.inside[1].first + unit / pieces;
                        const Int systems = std::min(blocks * block, columns.end - i);
                        const bool constants = free && i == 0 && j == 0;
                        const R shift = grid.flat ? R{0} : y_table[j];
                        R* const f = work->f + i + along.first * stride + (grid.flat ? 0 : j * grid.row);
                        kernels::tridiagonal<R>(&systems, &order, &ends, constants ? &held : nullptr, x_table + i,
                                                &shift, f, &stride, buffer);
                        unit += blocks;
                    }
                    ork_serv_deallocate(buffer);
                    return 0;
                });
}

template <class R>
void forward_y(Work<R>* work)
{
    transform_y(work, false);
}
template <class R>
void backward_y(Work<R>* work)
{
    transform_y(work, true);
}
template <class R>
void nothing(Work<R>*)
{
}

} // namespace
} // namespace ork::pde

using namespace ork::pde;

ORK_EXPORT Int ork_pdepl_pl_get_max_thread() { return ork::threads::limit(); }

// The pair in a name is the one that the work record has, too.
#define STAGE(R, name, stage)                                                                                          \
    ORK_EXPORT void name##_dd(Work<R>* work) { stage(work); }                                                          \
    ORK_EXPORT void name##_dn(Work<R>* work) { stage(work); }                                                          \
    ORK_EXPORT void name##_nd(Work<R>* work) { stage(work); }                                                          \
    ORK_EXPORT void name##_nn(Work<R>* work) { stage(work); }                                                          \
    ORK_EXPORT void name##_pp(Work<R>* work) { stage(work); }
#define STAGES(p, R)                                                                                                   \
    STAGE(R, ork_pdepl_##p##_ft_2d, forward_x)                                                                         \
    STAGE(R, ork_pdepl_##p##_lu_2d, solve_last)                                                                        \
    STAGE(R, ork_pdepl_##p##_inv_ft_2d, backward_x)                                                                    \
    STAGE(R, ork_pdepl_##p##_ft_3d_x, forward_x)                                                                       \
    STAGE(R, ork_pdepl_##p##_ft_3d_y, forward_y)                                                                       \
    STAGE(R, ork_pdepl_##p##_ft_3d_z, solve_last)                                                                      \
    STAGE(R, ork_pdepl_##p##_inv_ft_3d_z, nothing)                                                                     \
    STAGE(R, ork_pdepl_##p##_inv_ft_3d_y, backward_y)                                                                  \
    STAGE(R, ork_pdepl_##p##_inv_ft_3d_x, backward_x)
STAGES(s, float)
STAGES(d, double)
#undef STAGES
#undef STAGE

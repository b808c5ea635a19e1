// SPDX-License-Identifier: MIT
#include "pde/direction.h"

#include "ork/abi/services.h"
#include "pde/kernels.h"

namespace ork::pde {
namespace {

// body(element, line): the loop over what is adjacent is the inner one.
template <class R, class Body>
void for_elements(const LineSet<R>& lines, Int first, Int end, Body&& body)
{
    if (lines.stride == 1)
        for (Int k = 0; k < lines.count; ++k)
            for (Int i = first; i < end; ++i) body(i, k);
    else
        for (Int i = first; i < end; ++i)
            for (Int k = 0; k < lines.count; ++k) body(i, k);
}

} // namespace

template <class R>
Direction<R>::Direction(const Work<R>& work, int direction)
{
    const Grid<R> grid(work);
    pair_ = grid.pair(direction);
    path_ = work.ipar[at_paths + direction];
    n_ = grid.n[direction];
    const bool y = direction == 1;
    const Int *ipar = work.ipar + at_transforms + 20 * direction, *positions = work.ipar + at_positions + 2 * direction;
    first_ = {y ? work.yhandle : work.xhandle, ipar, work.fpar + positions[0] - 1};
    second_ = {y ? work.ysecond : work.xsecond, ipar + 40, work.fpar + positions[1] - 1};
}

template <class R>
R Direction<R>::norm() const
{
    return static_cast<R>(path_ == halves || (path_ == whole && n_ == 2) ? n_ : 2 * n_);
}

template <class R>
Int Direction<R>::Transform::run(R* f, Int count, Int stride, Int distance, bool backward) const
{
    const Int way = backward;
    const Int status = kernels::lines_trig_transform<R>(&way, f, &count, &stride, &distance, handle, ipar, fpar);
    return status == ok ? Int{0} : Int{transform_error};
}

template <class R>
Int Direction<R>::run(const LineSet<R>& lines, bool backward) const
{
    if (lines.count <= 0) return 0;
    if (pair_ == pp) return path_ == halves ? run_halves(lines, backward) : run_whole(lines, backward);
    if (pair_ == dn)
        return first_.run(lines.f + n_ * lines.stride, lines.count, -lines.stride, lines.distance, backward);
    return first_.run(lines.f, lines.count, lines.stride, lines.distance, backward);
}

template <class R>
Int Direction<R>::run_halves(const LineSet<R>& lines, bool backward) const
{
    const Int m = n_ / 2;
    const R factor = backward ? R{1} : R{1} / 2;
    const auto exchange = [&] {
        for_elements(lines, 1, m, [&, f = lines.f, n = n_](Int i, Int k) {
            R &u = f[k * lines.distance + i * lines.stride], &v = f[k * lines.distance + (n - i) * lines.stride];
            const R sum = u + v, difference = u - v;
            u = sum * factor, v = difference * factor;
        });
    };
    if (!backward) exchange();
    Int status = first_.run(lines.f, lines.count, lines.stride, lines.distance, backward);
    if (status == 0)
        status = second_.run(lines.f + m * lines.stride, lines.count, lines.stride, lines.distance, backward);
    if (backward) exchange();
    return status;
}

template <class R>
Int Direction<R>::run_whole(const LineSet<R>& lines, bool backward) const
{
    const Int n = n_;
    R* const f = lines.f;
    const auto at = [&](Int i, Int k) { return k * lines.distance + i * lines.stride; };
    if (n == 2) { // cosines 0 and 1
        for (Int k = 0; k < lines.count; ++k) {
            const R u = f[at(0, k)], v = f[at(1, k)];
            f[at(0, k)] = u + v, f[at(1, k)] = u - v;
        }
        return 0;
    }
    // A few lines at a time, even and odd parts one behind the other, laid out as the lines are.
    constexpr Int most_bytes = 128 * 1024;
    const Int length = n + 1, bytes = 2 * length * static_cast<Int>(sizeof(R));
    const Int at_once = std::clamp<Int>(most_bytes / bytes, 1, lines.count);
    R* const buffer = static_cast<R*>(ork_serv_allocate(static_cast<std::size_t>(at_once * bytes), 64));
    if (buffer == nullptr) return no_memory;
    Int status = 0;
    for (Int done = 0; done < lines.count && status == 0; done += at_once) {
        const Int count = std::min(at_once, lines.count - done);
        const bool along = lines.stride == 1;
        const LineSet<R> even = {buffer, count, along ? 1 : count, along ? length : 1};
        R *const odd = buffer + count * length, *const from = f + done * lines.distance;
        const auto place = [&](Int i, Int k) { return k * even.distance + i * even.stride; };
        const auto transform = [&] {
            status = first_.run(buffer, count, even.stride, even.distance, backward);
            if (status == 0) status = second_.run(odd, count, even.stride, even.distance, backward);
        };
        if (!backward) {
            for_elements(even, 0, length, [&](Int i, Int k) {
                const R u = from[at(i == n ? 0 : i, k)], v = from[at(i == 0 ? 0 : n - i, k)];
                buffer[place(i, k)] = (u + v) / 2, odd[place(i, k)] = (u - v) / 2;
            });
            transform();
            for_elements(even, 0, n, [&](Int i, Int k) {
                from[at(i, k)] = i % 2 == 0 ? buffer[place(i, k)] : odd[place(i + 1, k)];
            });
        } else {
            for_elements(even, 0, length, [&](Int i, Int k) {
                const bool stored = i % 2 == 0;
                buffer[place(i, k)] = stored ? from[at(i, k)] : R{0};
                odd[place(i, k)] = stored && i > 0 ? from[at(i - 1, k)] : R{0};
            });
            transform();
            for_elements(even, 0, n, [&](Int i, Int k) { from[at(i, k)] = buffer[place(i, k)] + odd[place(i, k)]; });
        }
    }
    ork_serv_deallocate(buffer);
    return status;
}

template class Direction<float>;
template class Direction<double>;

} // namespace ork::pde

// SPDX-License-Identifier: MIT
#include "dft/lengths/table.h"

#include <utility>

#include "frame/export.h"

namespace ork::dft {

namespace {

template <class R, Direction direction, int... before>
constexpr typename LengthKernels<R>::Table table(std::integer_sequence<int, before...>)
{
    return {nullptr, length_kernel<R, before + 1, direction>...};
}

constexpr auto lengths = std::make_integer_sequence<int, longest_kernel>{};

} // namespace

template <class R>
constinit const typename LengthKernels<R>::Table LengthKernels<R>::forward = table<R, Direction::forward>(lengths);
template <class R>
constinit const typename LengthKernels<R>::Table LengthKernels<R>::backward = table<R, Direction::backward>(lengths);

template struct LengthKernels<float>;
template struct LengthKernels<double>;

namespace {

// direction: 0 forward, 1 backward. Null for a length that has no kernel.
template <class R>
LengthKernel kernel_of(std::int64_t n, std::int64_t direction)
{
    if (n < 1 || n > longest_kernel) return nullptr;
    return (direction == 0 ? LengthKernels<R>::forward : LengthKernels<R>::backward)[static_cast<std::size_t>(n)];
}

} // namespace

} // namespace ork::dft

ORK_EXPORT ork::dft::LengthKernel ork_dft_nx2_xc_length_kernel(std::int64_t n, std::int64_t direction)
{
    return ork::dft::kernel_of<float>(n, direction);
}
ORK_EXPORT ork::dft::LengthKernel ork_dft_nx2_xz_length_kernel(std::int64_t n, std::int64_t direction)
{
    return ork::dft::kernel_of<double>(n, direction);
}

// SPDX-License-Identifier: MIT
// The rows of routines.inc: rows::dgemv_x is the routine, kernels::dgemv_x its kernel.
#pragma once

#include <complex>
#include <iterator>
#include <utility>

#include "blas/routine.h"
#include "loader/kernel.h"
#include "ork/abi/xblas.h"
#include "xblas/call.h"

namespace ork::xblas {

namespace kernels {
#define ROUTINE(n, routine, T, shape)                                                                                  \
    inline constinit loader::Kernel<WithOrder<Calls<T>::shape##_x>::type> routine{"xblas", #routine};
#include "xblas/routines.inc"
} // namespace kernels

template <class T, const Argument& argument>
inline auto kernel_argument(Call& call)
{
    if constexpr (argument.is_number())
        return static_cast<const Int*>(&(call.*argument.number));
    else if constexpr (argument.kind == Kind::output)
        return static_cast<T*>(call.y);
    else
        return static_cast<const T*>(call.*argument.address);
}

template <class T, const auto& shape, auto& kernel>
void call_kernel(Call& call)
{
    [&]<std::size_t... i>(std::index_sequence<i...>)
    {
        kernel.get()(&call.order, kernel_argument<T, shape[i]>(call)...);
    }
    (std::make_index_sequence<std::size(shape)>());
}

template <class Element, const auto& list, auto& kernel>
struct Row {
    using T = Element;
    static constexpr const auto& arguments = list;
    static constexpr std::size_t count = std::size(list);

    static constexpr bool has(Int Call::*number, const void* Call::*address = nullptr)
    {
        for (const Argument& argument : list)
            if (argument.number == number && argument.address == address) return true;
        return false;
    }
    static constexpr Form form = has(&Call::kl) ? Form::band : has(&Call::m) ? Form::dense : Form::triangle;
    static constexpr int products = (has(nullptr, &Call::tail) ? 2 : 1) * (blas::is_complex<T> ? 4 : 1);
    static constexpr auto call = &call_kernel<T, list, kernel>;
};

namespace rows {
#define ROUTINE(n, routine, T, shape)                                                                                  \
    struct routine : Row<T, shapes::shape, kernels::routine> {                                                         \
        static constexpr Routine value{#routine, arguments, count, form, sizeof(T), products, call};                   \
    };
#include "xblas/routines.inc"
} // namespace rows

} // namespace ork::xblas

// SPDX-License-Identifier: MIT
// The bodies of the public entries: the arguments checked in the order of the Fortran list and handed to the row's
// driver by value.
#pragma once

#include <algorithm>
#include <array>
#include <tuple>
#include <type_traits>
#include <utility>

#include "blas/checks.h"
#include "blas/report.h"
#include "lapack/drivers.h"
#include "lapack/shapes.h"

namespace ork::lapack {

// A row of the table: `driver` does the work.
template <class T, const auto& shape, auto& driver>
struct Routine {
    using Element = T;
    static constexpr const auto& arguments = shape;
    static constexpr auto& run = driver;
    static constexpr std::size_t count = std::size(shape);
    static constexpr bool has_work = shape[count - 2].role == Role::work_size;
};

template <class Row, class Int, std::size_t i>
constexpr auto argument_type()
{
    using T = typename Row::Element;
    constexpr Argument a = Row::arguments[i];
    if constexpr (a.role == Role::letter)
        return std::type_identity<const char*>();
    else if constexpr (a.role == Role::elements || a.role == Role::work)
        return std::type_identity<std::conditional_t<a.written, T*, const T*>>();
    else
        return std::type_identity<std::conditional_t<a.written, Int*, const Int*>>();
}
template <class Row, class Int, std::size_t i>
using ArgumentType = typename decltype(argument_type<Row, Int, i>())::type;

// The bound of argument i, from the other arguments of the call.
template <class Row, std::size_t i, class Call>
[[gnu::always_inline]] inline std::int64_t bound_of(const Call& call)
{
    constexpr const auto& shape = Row::arguments;
    constexpr Bound bound = shape[i].bound;
    constexpr std::size_t plain = position(shape, bound.plain);
    if constexpr (bound.option != nullptr) {
        constexpr std::size_t option = position(shape, bound.option);
        if (blas::upper(*std::get<option>(call)) != shape[option].legal[0])
            return *std::get<position(shape, bound.other)>(call);
    }
    return *std::get<plain>(call);
}

template <class Row, std::size_t i, class Call>
[[gnu::always_inline]] inline std::int64_t least_work(const Call& call)
{
    return std::max<std::int64_t>(1, bound_of<Row, i>(call));
}

template <class Row, std::size_t i, class Call>
[[gnu::always_inline]] inline bool is_legal(const Call& call)
{
    constexpr Argument a = Row::arguments[i];
    if constexpr (a.role == Role::letter) {
        constexpr std::uint32_t legal = blas::letter_set(a.legal);
        return blas::is_in(legal, *std::get<i>(call));
    } else if constexpr (a.role == Role::size) {
        if constexpr (a.bound.plain != nullptr)
            if (*std::get<i>(call) > bound_of<Row, i>(call)) return false;
        return *std::get<i>(call) >= 0;
    } else if constexpr (a.role == Role::lead) {
        return *std::get<i>(call) >= std::max<std::int64_t>(1, bound_of<Row, i>(call));
    } else if constexpr (a.role == Role::work_size) {
        const std::int64_t lwork = *std::get<i>(call);
        if constexpr (a.unless != nullptr)
            if (*std::get<position(Row::arguments, a.unless)>(call) == 0) return lwork >= 1 || lwork == -1;
        return lwork >= least_work<Row, i>(call) || lwork == -1;
    } else {
        return true;
    }
}

// Place of the first illegal argument, counted from 1; 0 when the call is legal.
template <class Row, std::size_t i = 0, class Call>
[[gnu::always_inline]] inline int first_illegal(const Call& call)
{
    if constexpr (i == Row::count)
        return 0;
    else if (!is_legal<Row, i>(call)) [[unlikely]]
        return i + 1;
    else
        return first_illegal<Row, i + 1>(call);
}

// What the driver takes for an argument.
template <class Row, std::size_t i, class Pointer>
[[gnu::always_inline]] inline auto driver_value(Pointer argument)
{
    constexpr Role role = Row::arguments[i].role;
    if constexpr (role == Role::letter)
        return blas::upper(*argument);
    else if constexpr (role == Role::size || role == Role::lead)
        return static_cast<std::int64_t>(*argument);
    else if constexpr (role == Role::pivots)
        return Pivots(argument);
    else
        return argument;
}

// A number of elements as an element, rounded up: callers take that many.
template <class T>
inline T as_element(std::int64_t count)
{
    using R = Part<T>;
    R size = static_cast<R>(count);
    if (static_cast<std::int64_t>(size) < count) size *= 1 + std::numeric_limits<R>::epsilon();
    return T(size);
}

template <class Row, class Int, class... Parameters>
inline void entry(Parameters... p)
{
    const std::tuple call(p...);
    Int* info = std::get<Row::count - 1>(call);
    if (const int wrong = first_illegal<Row>(call); wrong != 0) [[unlikely]] {
        *info = -wrong;
        return blas::report_fortran<Int>(blas::fortran_name<Row>.data(), blas::fortran_name<Row>.size() - 1, wrong);
    }
    constexpr std::size_t work_size = Row::count - 2;
    if constexpr (Row::has_work) {
        *std::get<work_size - 1>(call) = as_element<typename Row::Element>(least_work<Row, work_size>(call));
        if (*std::get<work_size>(call) == -1) return static_cast<void>(*info = 0);
    }
    [&]<std::size_t... i>(std::index_sequence<i...>)
    {
        *info = static_cast<Int>(Row::run(driver_value<Row, i>(std::get<i>(call))...));
    }
    (std::make_index_sequence<Row::count - (Row::has_work ? 2 : 1)>());
    if constexpr (Row::has_work)
        *std::get<work_size - 1>(call) = as_element<typename Row::Element>(least_work<Row, work_size>(call));
}

} // namespace ork::lapack

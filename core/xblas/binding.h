// SPDX-License-Identifier: MIT
// The types that arguments have in each binding, and entries that make a Call of them.
#pragma once

#include <type_traits>

#include "ork/xblas.h"
#include "xblas/rows.h"

namespace ork::xblas {

// In C: real scalars by value, whatever is complex behind a void pointer.
template <class Row, class Width, std::size_t i>
constexpr auto c_type()
{
    using T = typename Row::T;
    constexpr Kind kind = Row::arguments[i].kind;
    if constexpr (kind == Kind::trans)
        return std::type_identity<blas_trans_type>();
    else if constexpr (kind == Kind::uplo)
        return std::type_identity<blas_uplo_type>();
    else if constexpr (kind == Kind::prec)
        return std::type_identity<blas_prec_type>();
    else if constexpr (kind == Kind::integer)
        return std::type_identity<Width>();
    else if constexpr (kind == Kind::scalar && !blas::is_complex<T>)
        return std::type_identity<T>();
    else if constexpr (kind == Kind::output)
        return std::type_identity<std::conditional_t<blas::is_complex<T>, void*, T*>>();
    else
        return std::type_identity<std::conditional_t<blas::is_complex<T>, const void*, const T*>>();
}
template <class Row, class Width, std::size_t i>
using CType = typename decltype(c_type<Row, Width, i>())::type;

template <class Row, class Width, std::size_t i>
using FortranType = std::conditional_t<
    Row::arguments[i].is_number(), const Width*,
    std::conditional_t<Row::arguments[i].kind == Kind::output, typename Row::T*, const typename Row::T*>>;

// `held` outlives the call.
template <const Argument& argument, class Held>
[[gnu::always_inline]] inline void store(Call& call, const Held& held)
{
    if constexpr (argument.is_number()) {
        if constexpr (std::is_pointer_v<Held>)
            call.*argument.number = *held;
        else
            call.*argument.number = held;
    } else if constexpr (argument.kind == Kind::output)
        call.y = held;
    else if constexpr (std::is_pointer_v<Held>)
        call.*argument.address = held;
    else
        call.*argument.address = &held;
}

template <class Row, class Width, class... Held>
[[gnu::always_inline]] inline void entry(bool c, Int order, const Held&... held)
{
    Call call;
    call.order = order;
    [&]<std::size_t... i>(std::index_sequence<i...>) { (store<Row::arguments[i]>(call, held), ...); }
    (std::index_sequence_for<Held...>());
    run(Row::value, call, {.c = c, .wide = sizeof(Width) == 8});
}

} // namespace ork::xblas

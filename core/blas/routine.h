// SPDX-License-Identifier: MIT
// A row of the routine table as a type, and the C types that its arguments have in each binding.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "blas/argument.h"
#include "ork/cblas.h"

namespace ork::blas {

template <class T>
using Complex = std::complex<T>;

template <class T>
struct RealOf {
    using type = T;
};
template <class T>
struct RealOf<Complex<T>> {
    using type = T;
};
template <class T>
inline constexpr bool is_complex = !std::is_same_v<typename RealOf<T>::type, T>;

// The element type of an argument in a row of type T.
template <class T, Element element>
constexpr auto element_type()
{
    if constexpr (element == Element::real)
        return std::type_identity<typename RealOf<T>::type>();
    else if constexpr (element == Element::signed_byte)
        return std::type_identity<std::int8_t>();
    else if constexpr (element == Element::byte)
        return std::type_identity<std::uint8_t>();
    else if constexpr (element == Element::short_word)
        return std::type_identity<std::int16_t>();
    else if constexpr (element == Element::half_word)
        return std::type_identity<std::uint16_t>();
    else
        return std::type_identity<T>();
}

// Arguments in the order of the Fortran list, for a routine of type T.
template <class T, const auto& shape>
struct Signature {
    static constexpr const auto& arguments = shape;
    static constexpr std::size_t count = std::size(shape);

    static constexpr bool is_checked()
    {
        for (const Argument& a : shape)
            if (a.is_checked()) return true;
        return false;
    }
    // Whether calls by rows may be made of conjugates.
    static constexpr bool has_conjugated()
    {
        if (!is_complex<T>) return false;
        for (const Argument& a : shape)
            if (a.conjugated) return true;
        return false;
    }
    static constexpr bool has(Role role)
    {
        for (const Argument& a : shape)
            if (a.role == role) return true;
        return false;
    }

    // The value type of argument i, and how the body takes it.
    template <std::size_t i>
    using Value = typename decltype(element_type<T, shape[i].element>())::type;
    template <std::size_t i>
    using Pointer = std::conditional_t<shape[i].written, Value<i>*, const Value<i>*>;
    template <std::size_t i>
    static constexpr auto canonical_type()
    {
        if constexpr (shape[i].is_option())
            return std::type_identity<const char*>();
        else if constexpr (shape[i].is_integer() || shape[i].role == Role::indices)
            return std::type_identity<const std::int64_t*>();
        else
            return std::type_identity<Pointer<i>>();
    }
    template <std::size_t i>
    using Canonical = typename decltype(canonical_type<i>())::type;
};

// `body` takes every argument by address, integers as 64-bit ones, and is called only with legal arguments.
template <class T, const auto& shape, auto& body>
struct Routine : Signature<T, shape> {
    using Arguments = Signature<T, shape>;

    template <class... Values>
    static decltype(auto) run(Values... a)
    {
        return body(a...);
    }

    template <std::size_t... i>
    static auto result_type(std::index_sequence<i...>)
        -> std::type_identity<decltype(body(std::declval<typename Arguments::template Canonical<i>>()...))>;
    using Result = typename decltype(result_type(std::make_index_sequence<Arguments::count>()))::type;
};

// Argument i of the Fortran binding: everything by address.
template <class Row, class Int, std::size_t i>
constexpr auto fortran_type()
{
    constexpr Argument a = Row::arguments[i];
    if constexpr (a.is_integer() || a.role == Role::indices)
        return std::type_identity<const Int*>();
    else
        return std::type_identity<typename Row::template Canonical<i>>();
}
template <class Row, class Int, std::size_t i>
using FortranType = typename decltype(fortran_type<Row, Int, i>())::type;

template <class Result, class Int>
using FortranResultOf = std::conditional_t<std::is_same_v<Result, std::int64_t>, Int, Result>;
template <class Row, class Int>
using FortranResult = FortranResultOf<typename Row::Result, Int>;

// Argument i of the C binding: integers and real scalars by value, whatever is complex behind a void pointer.
template <class Row, class Int, std::size_t i>
constexpr auto cblas_type()
{
    constexpr Argument a = Row::arguments[i];
    using Value = typename Row::template Value<i>;
    if constexpr (a.role == Role::transposition)
        return std::type_identity<CBLAS_TRANSPOSE>();
    else if constexpr (a.role == Role::triangle)
        return std::type_identity<CBLAS_UPLO>();
    else if constexpr (a.role == Role::diagonal)
        return std::type_identity<CBLAS_DIAG>();
    else if constexpr (a.role == Role::side)
        return std::type_identity<CBLAS_SIDE>();
    else if constexpr (a.is_integer())
        return std::type_identity<Int>();
    else if constexpr (a.role == Role::indices)
        return std::type_identity<const Int*>();
    else if constexpr (is_complex<Value>)
        return std::type_identity<std::conditional_t<a.written, void*, const void*>>();
    else if constexpr (a.role == Role::scalar)
        return std::type_identity<Value>();
    else
        return std::type_identity<typename Row::template Pointer<i>>();
}
template <class Row, class Int, std::size_t i>
using CblasType = typename decltype(cblas_type<Row, Int, i>())::type;

template <class Result>
using CblasResultOf = std::conditional_t<std::is_same_v<Result, std::int64_t>, CBLAS_INDEX,
                                         std::conditional_t<is_complex<Result>, void, Result>>;
template <class Row>
using CblasResult = CblasResultOf<typename Row::Result>;

} // namespace ork::blas

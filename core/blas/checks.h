// SPDX-License-Identifier: MIT
// The check of a call against its shape: which argument is the first illegal one, in the order of the Fortran list.
#pragma once

#include <algorithm>
#include <cstdint>
#include <tuple>

#include "blas/routine.h"

namespace ork::blas {

constexpr char upper(char letter) { return static_cast<char>(letter & ~0x20); }

// The letters of an option as a set of bits, A the lowest.
constexpr std::uint32_t letter_set(const char* letters)
{
    std::uint32_t set = 0;
    for (; *letters != 0; ++letters) set |= 1U << (*letters - 'A');
    return set;
}

constexpr bool is_in(std::uint32_t set, char letter)
{
    const std::uint32_t bit = static_cast<unsigned char>(upper(letter)) - std::uint32_t{'A'};
    return bit < 32 && (set >> bit & 1) != 0;
}

// The extent of argument i, from the other arguments of the call.
template <class Row, std::size_t i, class Call>
[[gnu::always_inline]] inline std::int64_t extent(const Call& call)
{
    constexpr const auto& shape = Row::arguments;
    constexpr Extent rule = shape[i].extent;
    std::int64_t count = rule.add;
    if constexpr (rule.option != nullptr) {
        constexpr std::size_t option = position(shape, rule.option);
        const bool plain = upper(*std::get<option>(call)) == shape[option].legal[0];
        count += plain ? *std::get<position(shape, rule.plain)>(call) : *std::get<position(shape, rule.other)>(call);
    } else if constexpr (rule.plain != nullptr) {
        count += *std::get<position(shape, rule.plain)>(call);
    }
    if constexpr (rule.plus != nullptr) count += *std::get<position(shape, rule.plus)>(call);
    return count;
}

template <class Row, std::size_t i, class Call>
[[gnu::always_inline]] inline bool is_legal(const Call& call)
{
    constexpr Argument a = Row::arguments[i];
    if constexpr (a.is_option()) {
        constexpr std::uint32_t legal = letter_set(a.legal);
        return is_in(legal, *std::get<i>(call));
    } else if constexpr (a.role == Role::size || a.role == Role::band)
        return *std::get<i>(call) >= 0;
    else if constexpr (a.role == Role::increment)
        return *std::get<i>(call) != 0;
    else if constexpr (a.role == Role::lead)
        return *std::get<i>(call) >= std::max<std::int64_t>(1, extent<Row, i>(call));
    else
        return true;
}

// Place of the first illegal argument, counted from 1; 0 when the call is legal. `call` is the canonical list. In line,
// so that the list stays in registers: out of line it cost a small gemm a quarter of its time.
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

} // namespace ork::blas

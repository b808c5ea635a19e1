// SPDX-License-Identifier: MIT
// How an illegal argument reaches the caller: once, by the routine's name and the position of the argument.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ork::blas {

// Through xerbla_ or, for 64-bit integers, xerbla_64_; either may be the application's own.
template <class Int>
[[gnu::cold]] void report_fortran(const char* routine, std::size_t length, int position);

// Through cblas_xerbla or cblas_xerbla64_; either may be the application's own.
template <class Int>
[[gnu::cold]] void report_cblas(const char* routine, int position);

// The name as Fortran programs know it: upper case, padded with blanks to six characters.
template <class Row>
inline constexpr auto fortran_name = [] {
    constexpr std::string_view name = Row::name;
    std::array<char, (name.size() < 6 ? 6 : name.size()) + 1> padded{};
    for (std::size_t i = 0; i + 1 < padded.size(); ++i)
        padded[i] = i >= name.size()                   ? ' '
                    : name[i] >= 'a' && name[i] <= 'z' ? static_cast<char>(name[i] - 'a' + 'A')
                                                       : name[i];
    return padded;
}();

template <class Row>
inline constexpr auto cblas_name = [] {
    constexpr std::string_view prefix = "cblas_", name = Row::name;
    std::array<char, prefix.size() + name.size() + 1> whole{};
    for (std::size_t i = 0; i < prefix.size(); ++i) whole[i] = prefix[i];
    for (std::size_t i = 0; i < name.size(); ++i) whole[prefix.size() + i] = name[i];
    return whole;
}();

} // namespace ork::blas

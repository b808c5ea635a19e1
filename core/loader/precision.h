// SPDX-License-Identifier: MIT
// Of names that differ by precision, the one of an element type: float, double, or a complex pair of them.
#pragma once

#include <type_traits>

namespace ork::loader {

template <class T>
constexpr const char* of_precision(const char* s, const char* d, const char* c = nullptr, const char* z = nullptr)
{
    if (std::is_same_v<T, float>) return s;
    if (std::is_same_v<T, double>) return d;
    return sizeof(T) == 2 * sizeof(float) ? c : z;
}

} // namespace ork::loader

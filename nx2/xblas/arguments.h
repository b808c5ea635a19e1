// SPDX-License-Identifier: MIT
// What a routine refuses before it touches anything.
#pragma once

#include <cstdint>

namespace ork::xblas {

using Int = std::int64_t;

inline constexpr Int by_rows = 101, by_columns = 102;
inline constexpr Int not_transposed = 111, transposed = 112, conjugate_transposed = 113;
inline constexpr Int upper = 121, lower = 122;
inline constexpr Int first_precision = 211, last_precision = 214;

// A kernel library has nobody to tell: a refusal shows by y, which stays as it was.
inline void report(const char* /*routine*/, Int /*position, negative*/) {}

struct Argument {
    bool wrong;
    Int position; // from 1, the order of storage first
};

// The first argument that is wrong is reported.
template <int count>
inline bool refused(const char* routine, const Argument (&arguments)[count])
{
    for (const Argument& argument : arguments)
        if (argument.wrong) {
            report(routine, -argument.position);
            return true;
        }
    return false;
}

inline bool within(Int value, Int first, Int last) { return value >= first && value <= last; }

} // namespace ork::xblas

// SPDX-License-Identifier: MIT
// Functions that exist for each precision, width of indices and format: which of them was called, in one number. That
// keeps 64 entries short.
#pragma once

#include "sparse/handle.h"

namespace ork::sparse {

constexpr unsigned code(char precision, unsigned bytes, Format format)
{
    return static_cast<unsigned char>(precision) | bytes << 8 | static_cast<unsigned>(format) << 16;
}
constexpr Format format_of(unsigned code) { return static_cast<Format>(code >> 16); }

// With names and arguments for each format.
inline Routine routine_of(unsigned code, const char* const (&names)[4], const char* const (&arguments)[4])
{
    return {names[code >> 16], arguments[code >> 16], static_cast<char>(code), static_cast<char>(code >> 8)};
}

} // namespace ork::sparse

// SPDX-License-Identifier: MIT
// Precisions by their letters, as handles have them.
#pragma once

#include "spblas/call.h"

namespace ork::sparse {

// Of s d c z.
constexpr spblas::Precision precision_of(char letter)
{
    switch (letter) {
    case 's':
        return spblas::Precision::s;
    case 'd':
        return spblas::Precision::d;
    case 'c':
        return spblas::Precision::c;
    default:
        return spblas::Precision::z;
    }
}
constexpr int precision_number(char letter) { return static_cast<int>(precision_of(letter)); }
constexpr bool is_complex(char letter) { return spblas::is_complex(precision_of(letter)); }
constexpr std::int64_t element_size(char letter) { return spblas::element_size(precision_of(letter)); }

} // namespace ork::sparse

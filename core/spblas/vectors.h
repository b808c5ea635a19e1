// SPDX-License-Identifier: MIT
// The arithmetic on dense operands that is left to the core.
#pragma once

#include "spblas/call.h"

namespace ork::spblas {

template <class T>
bool equals(const void* value, bool complex, T real)
{
    const T* v = static_cast<const T*>(value);
    return v[0] == real && (!complex || v[1] == T{});
}

inline bool equals(Precision precision, const void* value, int real)
{
    const bool narrow = precision == Precision::s || precision == Precision::c;
    return narrow ? equals<float>(value, is_complex(precision), static_cast<float>(real))
                  : equals<double>(value, is_complex(precision), real);
}

inline bool is_zero(Precision precision, const void* value) { return equals(precision, value, 0); }
inline bool is_one(Precision precision, const void* value) { return equals(precision, value, 1); }

// y <- alpha x; alpha = 0 does not read x, which may be y.
void scaled_copy(Precision precision, std::int64_t n, const void* alpha, const void* x, void* y);

// y <- y + x.
void add(Precision precision, std::int64_t n, const void* x, void* y);

// C <- alpha B for right-hand sides first .. first + count - 1; B may be C.
void scaled_copy(const Call& call, const void* alpha, const void* b, std::int64_t ldb, std::int64_t first,
                 std::int64_t count);

// C <- beta C, without reading it when beta = 0.
void scale_result(const Call& call);

} // namespace ork::spblas

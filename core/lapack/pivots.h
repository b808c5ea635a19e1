// SPDX-License-Identifier: MIT
// Row numbers in the caller's integers, so that both widths share every driver.
#pragma once

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

class Pivots {
public:
    explicit Pivots(std::int32_t* at) : at_(at), wide_(false) {}
    explicit Pivots(std::int64_t* at) : at_(at), wide_(true) {}
    // Drivers that only read take them too.
    explicit Pivots(const std::int32_t* at) : Pivots(const_cast<std::int32_t*>(at)) {}
    explicit Pivots(const std::int64_t* at) : Pivots(const_cast<std::int64_t*>(at)) {}

    Int get(Int i) const { return wide_ ? static_cast<const Int*>(at_)[i] : static_cast<const std::int32_t*>(at_)[i]; }
    void set(Int i, Int row) const
    {
        if (wide_)
            static_cast<Int*>(at_)[i] = row;
        else
            static_cast<std::int32_t*>(at_)[i] = static_cast<std::int32_t>(row);
    }
    // The same numbers as kernels take them; null when the caller's integers are narrower.
    Int* wide() const { return wide_ ? static_cast<Int*>(at_) : nullptr; }

private:
    void* at_;
    bool wide_;
};

} // namespace ork::lapack

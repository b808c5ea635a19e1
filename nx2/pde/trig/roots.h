// SPDX-License-Identifier: MIT
// Sines and cosines for tables.
#pragma once

#include "dft/engine/root_table.h"

namespace ork::pde {

// exp(-2 pi i k / n), 0 <= k < n: from products of two, or without memory for those each by a series.
class Roots {
public:
    explicit Roots(std::int64_t n) : n_(n), quick_(n > 64 && table_.make(n)) {}
    Complex<long double> operator[](std::int64_t k) const { return quick_ ? table_[k] : dft::exact_root(k, n_); }

private:
    dft::RootTable table_;
    std::int64_t n_;
    bool quick_;
};

} // namespace ork::pde

// SPDX-License-Identifier: MIT
// Coordinates in the order that solves want: by rows, in them by columns, no place twice.
#pragma once

#include "spblas/call.h"

namespace ork::spblas {

bool in_order(const Call& call);

// A copy in order, with entries of equal place added up in the order that they had. Row numbers must be right.
class OrderedCopy {
public:
    explicit OrderedCopy(const Call& call);
    ~OrderedCopy();
    OrderedCopy(const OrderedCopy&) = delete;
    OrderedCopy& operator=(const OrderedCopy&) = delete;

    bool has_memory() const { return memory_ != nullptr; }
    const Matrix& matrix() const { return matrix_; }

private:
    void* memory_;
    Matrix matrix_;
};

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// op(A) of a square matrix in compressed rows, as solves and smoothers analyse it.
#pragma once

#include "ork/abi/sparse.h"
#include "ork/sparse.h"

namespace ork::sparse {

// Rows whose columns ascend; rows, columns and positions of values from 0.
template <class Int>
struct SolveRows {
    std::int64_t count, base;
    const Int *index, *first, *last;
    Int* middle; // of each row the position of the first entry that is not left of the diagonal

    SolveRows(const Matrix& a, Int* middle)
        : count(a.rows), base(a.base), index(static_cast<const Int*>(a.index)), first(static_cast<const Int*>(a.first)),
          last(static_cast<const Int*>(a.last)), middle(middle)
    {
        for (std::int64_t i = 0; i < count; ++i) {
            std::int64_t k = first[i] - base;
            for (const std::int64_t end = last[i] - base, own = i + base; k < end && index[k] < own;) ++k;
            middle[i] = static_cast<Int>(k);
        }
    }
    struct Range {
        std::int64_t begin, end;
        std::int64_t size() const { return end - begin; }
    };
    Range lower(std::int64_t row) const { return {first[row] - base, middle[row]}; }
    Range diagonal(std::int64_t row) const
    {
        std::int64_t k = middle[row];
        for (const std::int64_t end = last[row] - base; k < end && index[k] == row + base;) ++k;
        return {middle[row], k};
    }
    Range upper(std::int64_t row) const { return {diagonal(row).end, last[row] - base}; }
    Range side(bool is_upper, std::int64_t row) const { return is_upper ? upper(row) : lower(row); }
    std::int64_t column(std::int64_t k) const { return index[k] - base; }
};

// The matrix itself where it is of that form, or a copy. whole: what `kind` says it stands for, as a general matrix;
// otherwise all that is stored, of which the triangle is_upper() counts. sorted: columns ascend.
class InRows {
public:
    InRows(const Matrix& a, int op, const ork_sparse_kind& kind, bool whole, bool sorted);
    ~InRows();
    InRows(const InRows&) = delete;
    InRows& operator=(const InRows&) = delete;

    const Matrix* get() const { return rows_; } // null without memory
    bool is_copy() const { return copy_ != nullptr; }
    bool is_upper() const { return upper_; }
    static bool stands(const Matrix& a, int op, const ork_sparse_kind& kind, bool whole);

private:
    const Matrix* rows_ = nullptr;
    Matrix* copy_ = nullptr;
    bool upper_;
};

// The first row, counted from the base, whose diagonal entry is missing, 0 or stored twice, in any format.
struct DiagonalFault {
    enum class Kind { none, missing, zero, repeated, no_memory } kind;
    std::int64_t row;
};
DiagonalFault diagonal_fault(const Matrix& a);

} // namespace ork::sparse

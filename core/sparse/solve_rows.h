// SPDX-License-Identifier: MIT
// op(A) of a square matrix in compressed rows, as solves and smoothers analyse it.
#pragma once

#include "ork/abi/sparse.h"
#include "ork/sparse.h"

namespace ork::sparse {

// Rows and columns from 0; entry(column, position of the value).
template <class Int>
struct SolveRows {
    std::int64_t count, base;
    const Int *index, *first, *last;

    explicit SolveRows(const Matrix& a)
        : count(a.rows), base(a.base), index(static_cast<const Int*>(a.index)), first(static_cast<const Int*>(a.first)),
          last(static_cast<const Int*>(a.last))
    {
    }
    template <class Entry>
    void each(std::int64_t row, Entry&& entry) const
    {
        for (std::int64_t k = first[row] - base, end = last[row] - base; k < end; ++k)
            entry(std::int64_t{index[k]} - base, k);
    }
};

// The matrix itself where it is of that form, or a copy. whole: what `kind` says it stands for, as a general matrix;
// otherwise all that is stored, of which the triangle is_upper() counts.
class InRows {
public:
    InRows(const Matrix& a, int op, const ork_sparse_kind& kind, bool whole);
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

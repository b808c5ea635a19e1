// SPDX-License-Identifier: MIT
// A factor of a product of records: rows of op(A) or its columns, where they stand in the record or in a copy.
#pragma once

#include "sparse/handle/exports.h"
#include "sparse/record.h"

namespace ork::sparse {

template <class Int>
class Operand {
public:
    // What is wanted of it. op as in HandleCalls; columns: not of blocks.
    struct Wanted {
        int op = 0;
        bool columns = false, ascending = false;
        bool numbers = false; // blocks are opened
        int layout = -1;      // of blocks; -1: as it is
    };

    Operand() = default;
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;
    ~Operand() { release_record(copy_); }

    // A RecordStatus.
    int take(const Matrix& a, const Wanted& w);
    // This record, which is released in the end.
    void own(Matrix* a) { lines_ = copy_ = a; }

    template <class T>
    Rows<Int, T> rows() const
    {
        return {static_cast<const T*>(lines_->values), static_cast<const Int*>(lines_->index),
                static_cast<const Int*>(lines_->first), static_cast<const Int*>(lines_->last),
                static_cast<Int>(lines_->base)};
    }
    const Matrix& record() const { return *lines_; }

private:
    const Matrix* lines_ = nullptr;
    Matrix* copy_ = nullptr;
};

} // namespace ork::sparse

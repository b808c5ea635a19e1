// SPDX-License-Identifier: MIT
// Both triangles of a Hermitian or symmetric matrix of which one is read.
#pragma once

#include "sparse/block.h"
#include "sparse/record.h"

namespace ork::sparse {

// csr, csc or bsr, square; of csc the columns are read as rows, which are those of the conjugate. The result is csr, or
// bsr, in the layout of A. Rows of sorted rows ascend. Null when there is no memory.
template <class Int, class T>
class Whole {
public:
    Whole(const Matrix& a, bool upper, bool symmetric)
        : a_(a), upper_(upper != (a.format == Format::csc)), block_(a.block),
          conjugate_here_(!symmetric && a.format == Format::csc),
          conjugate_there_(!symmetric && a.format != Format::csc)
    {
    }

    Matrix* make() const
    {
        const Format format = a_.format == Format::bsr ? Format::bsr : Format::csr;
        std::int64_t entries = 0;
        for_triangle([&](std::int64_t i, std::int64_t j, std::int64_t) { entries += i == j ? 1 : 2; });
        if (sizeof(Int) == 4 && entries > INT32_MAX - 1) return nullptr;
        Matrix* const c = new_matrix<Int>(a_, {format, a_.rows, a_.rows, block_, entries, a_.layout});
        if (c == nullptr) return nullptr;
        c->sorted = a_.sorted, c->distinct = a_.distinct;
        Int* const first = static_cast<Int*>(c->first);
        std::memset(first, 0, static_cast<std::size_t>(a_.rows + 1) * sizeof(Int));
        for_triangle([&](std::int64_t i, std::int64_t j, std::int64_t) {
            ++first[i];
            if (i != j) ++first[j];
        });
        Int sum = 0;
        for (std::int64_t i = 0; i <= a_.rows; ++i) {
            const Int count = first[i];
            first[i] = sum;
            sum = static_cast<Int>(sum + count);
        }
        fill(*c, first);
        // Each is the end of its row now.
        std::memmove(first + 1, first, static_cast<std::size_t>(a_.rows) * sizeof(Int));
        first[0] = 0;
        for (std::int64_t i = 0; i <= a_.rows; ++i) first[i] = static_cast<Int>(first[i] + c->base);
        return c;
    }

private:
    // body(row, column, position) of the entries of the triangle, of diagonal blocks too.
    template <class Body>
    void for_triangle(Body body) const
    {
        const Int* const index = index_of<Int>(a_);
        for (std::int64_t i = 0; i < a_.rows; ++i) {
            const auto range = line<Int>(a_, i);
            for (std::int64_t k = range.first; k < range.last; ++k) {
                const std::int64_t j = std::int64_t{index[k]} - a_.base;
                if (upper_ ? j >= i : j <= i) body(i, j, k);
            }
        }
    }

    void fill(const Matrix& c, Int* next) const
    {
        const std::int64_t size = block_ * block_;
        const T* const from = static_cast<const T*>(a_.values);
        T* const to = static_cast<T*>(c.values);
        Int* const index = index_of<Int>(c);
        for_triangle([&](std::int64_t i, std::int64_t j, std::int64_t k) {
            const std::int64_t here = next[i]++;
            index[here] = static_cast<Int>(j + c.base);
            // The diagonal as it is stored, were it complex.
            copy_block(block_, false, conjugate_here_ && i != j, from + k * size, to + here * size);
            if (i == j) return mirror(to + here * size);
            const std::int64_t there = next[j]++;
            index[there] = static_cast<Int>(i + c.base);
            copy_block(block_, true, conjugate_there_, from + k * size, to + there * size);
        });
    }

    // The other triangle of a diagonal block. (csc has none, so nothing of it is conjugated here.)
    void mirror(T* block) const
    {
        const bool below =
            upper_ != (a_.layout == column_major); // of a row-major block the elements with r < c are read
        for (std::int64_t r = 0; r < block_; ++r)
            for (std::int64_t c = 0; c < r; ++c) {
                T &lower = block[r * block_ + c], &upper = block[c * block_ + r];
                T& written = below ? lower : upper;
                written = below ? upper : lower;
                if constexpr (is_complex<T>)
                    if (conjugate_there_) written = conj(written);
            }
    }

    const Matrix& a_;
    bool upper_;
    std::int64_t block_;
    bool conjugate_here_, conjugate_there_;
};

} // namespace ork::sparse

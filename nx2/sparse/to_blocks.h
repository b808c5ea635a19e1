// SPDX-License-Identifier: MIT
// From compressed rows to square blocks: the block columns of a block row are collected with a mark for each, sorted,
// and the entries of its rows added into them.
#pragma once

#include "sparse/convert.h"

namespace ork::sparse {

template <class Int>
class IntoBlocks {
public:
    IntoBlocks(const Matrix& rows, Int block, int layout)
        : rows_(rows), block_(block), layout_(layout), block_rows_((rows.rows + block - 1) / block),
          block_cols_((rows.cols + block - 1) / block), marks_(new_array(block_cols_, sizeof(Int)))
    {
    }
    ~IntoBlocks() { ork_serv_free(marks_); }
    IntoBlocks(const IntoBlocks&) = delete;
    IntoBlocks& operator=(const IntoBlocks&) = delete;

    Matrix* make()
    {
        if (marks_ == nullptr) return nullptr;
        Matrix* const c =
            new_matrix<Int>(rows_, {Format::bsr, block_rows_, block_cols_, block_, count_blocks(), layout_});
        // Keys of the longest block row, and room to merge them.
        void* const keys = new_array(longest_, 2 * sizeof(Key<Int>));
        if (c != nullptr && keys != nullptr) fill(*c, static_cast<Key<Int>*>(keys));
        ork_serv_free(keys);
        if (c != nullptr && keys == nullptr) release_record(c);
        return keys != nullptr ? c : nullptr;
    }

private:
    Int* marks() { return static_cast<Int*>(marks_); }

    // visit(row, block column, position) of all entries of a block row.
    template <class Visit>
    void for_each_entry(std::int64_t block_row, Visit visit)
    {
        const std::int64_t first = block_row * block_, end = first + block_ < rows_.rows ? first + block_ : rows_.rows;
        const Int base = static_cast<Int>(rows_.base);
        for (std::int64_t i = first; i < end; ++i) {
            const auto range = line<Int>(rows_, i);
            for (Int k = range.first; k < range.last; ++k)
                visit(static_cast<Int>(i - first), static_cast<Int>((index_of<Int>(rows_)[k] - base) / block_), k);
        }
    }

    std::int64_t count_blocks()
    {
        for (std::int64_t j = 0; j < block_cols_; ++j) marks()[j] = -1;
        std::int64_t all = 0;
        for (std::int64_t i = 0; i < block_rows_; ++i) {
            std::int64_t count = 0;
            for_each_entry(i, [&](Int, Int column, Int) {
                if (marks()[column] == i) return;
                marks()[column] = static_cast<Int>(i);
                ++count;
            });
            all += count;
            if (count > longest_) longest_ = count;
        }
        return all;
    }

    void fill(Matrix& c, Key<Int>* keys)
    {
        std::memset(c.values, 0, static_cast<std::size_t>(c.entries * entry_bytes(c)));
        for (std::int64_t j = 0; j < block_cols_; ++j) marks()[j] = -1;
        Int* const first = static_cast<Int*>(c.first);
        const Int base = static_cast<Int>(c.base);
        std::int64_t done = 0;
        for (std::int64_t i = 0; i < block_rows_; ++i) {
            std::int64_t count = 0;
            for_each_entry(i, [&](Int, Int column, Int) {
                if (marks()[column] >= done) return;
                marks()[column] = static_cast<Int>(done + count);
                keys[count++] = {0, column, 0};
            });
            const Key<Int>* const sorted = merge_sort(keys, keys + count, count);
            for (std::int64_t k = 0; k < count; ++k) {
                index_of<Int>(c)[done + k] = static_cast<Int>(sorted[k].minor + base);
                marks()[sorted[k].minor] = static_cast<Int>(done + k);
            }
            add_entries(c, i);
            done += count;
            first[i + 1] = static_cast<Int>(done + base);
        }
        c.sorted = c.distinct = 1;
    }

    void add_entries(Matrix& c, std::int64_t block_row)
    {
        const bool complex = rows_.precision == 'c' || rows_.precision == 'z';
        if (rows_.precision == 's' || rows_.precision == 'c')
            add_entries<float>(c, block_row, complex ? 2 : 1);
        else
            add_entries<double>(c, block_row, complex ? 2 : 1);
    }

    template <class R>
    void add_entries(Matrix& c, std::int64_t block_row, int parts)
    {
        const R* const from = static_cast<const R*>(rows_.values);
        R* const to = static_cast<R*>(c.values);
        const Int base = static_cast<Int>(rows_.base);
        for_each_entry(block_row, [&](Int r, Int column, Int k) {
            const std::int64_t in_block = index_of<Int>(rows_)[k] - base - std::int64_t{column} * block_;
            const std::int64_t offset = layout_ == 0 ? r * std::int64_t{block_} + in_block : in_block * block_ + r;
            R* const place = to + (std::int64_t{marks()[column]} * block_ * block_ + offset) * parts;
            for (int part = 0; part < parts; ++part) place[part] += from[std::int64_t{k} * parts + part];
        });
    }

    const Matrix& rows_;
    Int block_;
    int layout_;
    std::int64_t block_rows_, block_cols_, longest_ = 0;
    void* marks_; // of a block column: where its block of this row stands in C
};

// As HandleCalls::convert_bsr has it.
template <class Int>
int convert_blocks(const Matrix& a, int op, Int block, int layout, Matrix** result)
{
    const std::int64_t larger = (a.rows > a.cols ? a.rows : a.cols) * a.block;
    std::int64_t filled, values;
    if (__builtin_add_overflow(larger, std::int64_t{block} - 1, &filled) || filled / block * block > most<Int>)
        return record_too_large;
    if (__builtin_mul_overflow(std::int64_t{block}, std::int64_t{block}, &values) || values > INT64_MAX / 16)
        return record_no_memory;
    Matrix* rows = nullptr;
    if (a.format != Format::csr || op != 0)
        if (const int status = convert_lines<Int>(a, op, false, &rows)) return status;
    Matrix* const c = IntoBlocks<Int>(rows != nullptr ? *rows : a, block, layout).make();
    release_record(rows);
    if (c == nullptr) return record_no_memory;
    *result = c;
    return record_done;
}

} // namespace ork::sparse

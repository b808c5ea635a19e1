// SPDX-License-Identifier: MIT
// The same matrix in arrays of its own, without the gaps between rows. No hints.
#pragma once

#include "sparse/record.h"

namespace ork::sparse {

// Null when there is no memory.
template <class Int>
Matrix* copy_lines(const Matrix& a)
{
    Matrix* const c = new_matrix<Int>(a, {a.format, a.rows, a.cols, a.block, a.entries, a.layout});
    if (c == nullptr) return nullptr;
    c->sorted = a.sorted, c->distinct = a.distinct;
    const std::int64_t bytes = entry_bytes(a);
    std::int64_t entries = 0;
    for (std::int64_t i = 0; i < lines_of(a); ++i) {
        const auto range = line<Int>(a, i);
        const std::int64_t count = std::int64_t{range.last} - range.first;
        if (count > 0) {
            std::memcpy(value_at(*c, entries), value_at(a, range.first), count * bytes);
            std::memcpy(index_of<Int>(*c) + entries, index_of<Int>(a) + range.first, count * sizeof(Int));
        }
        entries += count;
        if (a.format != Format::coo) static_cast<Int*>(c->first)[i + 1] = static_cast<Int>(entries + a.base);
    }
    if (a.format == Format::coo && entries > 0) std::memcpy(c->first, a.first, entries * sizeof(Int));
    return c;
}

} // namespace ork::sparse

// SPDX-License-Identifier: MIT
// What a member of bsr or bsc asks for, in a word that travels in the register of the argument that no kernel reads: an
// export is a jump, and members that differ in the word alone share one body.
#pragma once

#include <cstdint>

#include "spblas/rule.h"

namespace ork::spblas {

// A stored block B at (i, j) of the storage's own rows and columns adds B x_j to y_i, its direct product, and B^T x_i
// to y_j, its mirrored one; a rule takes either or both. Of blocks of columns (bsc) the storage is that of the
// transposed matrix by rows, its blocks transposed as well.
struct BlockRule {
    std::uint32_t direct : 1, mirrored : 1;
    std::uint32_t conjugate_direct : 1, conjugate_mirrored : 1, conjugate_diagonal : 1;
    std::uint32_t negate_direct : 1, negate_mirrored : 1;
    std::uint32_t whole : 1;         // every entry counts; otherwise a triangle and, as told, the diagonal
    std::uint32_t lower : 1;         // the triangle, of the storage's rows and columns
    std::uint32_t unit : 1;          // ones on the diagonal, whatever is stored
    std::uint32_t read_diagonal : 1; // the stored diagonal counts
    std::uint32_t base : 1;
    std::uint32_t blocks_by_rows : 1; // of a block as the storage has it
    std::uint32_t dense_by_rows : 1;  // B and C
    std::uint32_t by_columns : 1;     // bsc
    std::uint32_t : 17;
};
static_assert(sizeof(BlockRule) == 4);

// Of a solve: which end of the matrix depends on nothing.
constexpr bool is_forward(BlockRule rule) { return rule.lower == rule.direct; }

constexpr BlockRule transposed_storage(BlockRule r)
{
    BlockRule t = r;
    t.direct = r.mirrored, t.mirrored = r.direct;
    t.conjugate_direct = r.conjugate_mirrored, t.conjugate_mirrored = r.conjugate_direct;
    t.negate_direct = r.negate_mirrored, t.negate_mirrored = r.negate_direct;
    t.lower = !r.lower;
    t.blocks_by_rows = !r.blocks_by_rows;
    t.by_columns = !r.by_columns;
    return t;
}

template <class T>
constexpr BlockRule block_rule(const char* member)
{
    const Rule r = rule<T>(letters(member));
    const bool both = r.type == 's' || r.type == 'h' || r.type == 'a', none = r.type == 'd', skew = r.type == 'a';
    BlockRule b{};
    b.direct = both || (!none && !r.transpose), b.mirrored = both || (!none && r.transpose);
    b.conjugate_direct = b.conjugate_diagonal = r.conjugate;
    b.conjugate_mirrored = r.conjugate != (r.type == 'h');
    b.negate_direct = r.negate, b.negate_mirrored = r.negate != skew;
    b.whole = r.type == 'g';
    b.lower = r.lower, b.unit = r.unit, b.read_diagonal = !r.unit && !skew;
    b.base = r.base == 1;
    b.blocks_by_rows = b.dense_by_rows = r.row_major;
    return member[2] == 'c' ? transposed_storage(b) : b;
}

} // namespace ork::spblas

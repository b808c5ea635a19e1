// SPDX-License-Identifier: MIT
// C = op(A)^-1 C for a triangular or diagonal matrix of diagonals. Diagonals at a distance are taken out of a block of
// rows at once, as in a product, for the unknowns that they meet are known before the block begins; the near ones go
// row by row.
#pragma once

#include "spblas/dia.h"

namespace ork::spblas {

inline constexpr Index near_distance = 16; // less than this is near: a block has at least so many rows
inline constexpr int most_near = 16;       // more are only there if diagonals are repeated
inline constexpr Index most_block_rows = 256;

// The near diagonals of a solve, the nearest last: its product is what the next row waits for.
template <class T>
struct NearStrokes {
    Stroke<T> strokes[most_near];
    int count = 0;

    void insert(const Stroke<T>& s)
    {
        const auto distance = [](Index offset) { return offset < 0 ? -offset : offset; };
        int q = count++;
        for (; q > 0 && distance(strokes[q - 1].offset) < distance(s.offset); --q) strokes[q] = strokes[q - 1];
        strokes[q] = s;
    }
};

// What is left of the rows of a block, first to last or last to first. `diagonal` is null where ones are taken.
template <class Group, class T>
[[gnu::noinline]] void dia_solve_rows(const NearStrokes<T>& near, const T* diagonal, Range rows, bool forward,
                                      Conjugation<T> conjugated, const Operands<T>& o)
{
    const Index step = forward ? 1 : -1;
    Index i = forward ? rows.first : rows.last - 1;
    for (Index left = rows.last - rows.first; left > 0; --left, i += step) {
        T* c = o.c + Group::at(i, o.c_row);
        Group x = Group::load(c, o.c_side);
        for (int q = 0; q < near.count; ++q) {
            const Stroke<T>& s = near.strokes[q];
            if (i < s.rows.first || i >= s.rows.last) continue;
            x.add(T{} - conjugated(s.val[i]), Group::load(o.c + Group::at(i + s.offset, o.c_row), o.c_side));
        }
        if (diagonal != nullptr) x.divide(conjugated(diagonal[i]));
        x.store(c, o.c_side);
    }
}

template <class Int, class T>
[[gnu::noinline]] void dia_solve(Terms terms, Index m, const Dia<Int, T>& a, const Operands<T>& o)
{
    const bool mirror = terms.mirrored(), row_major = terms.row_major(), forward = terms.forward();
    const Conjugation<T> conjugated(terms.conjugate());
    const Range all{0, m};
    const auto is_near = [&](const Stroke<T>& s) { return -near_distance < s.offset && s.offset < near_distance; };

    const T* diagonal = nullptr;
    NearStrokes<T> near;
    Index block_rows = most_block_rows;
    for (Index k = 0; k < a.ndiag; ++k) {
        if (a.idiag[k] == 0 && terms.diagonal()) diagonal = a.val + k * a.lval;
        const Stroke<T> s = stroke(terms, mirror, a, k, m, m, all, all);
        if (s.rows.last <= s.rows.first || s.offset == 0) continue;
        if (!is_near(s))
            block_rows = std::min(block_rows, s.offset < 0 ? -s.offset : s.offset);
        else if (near.count < most_near)
            near.insert(s);
        else
            block_rows = 1;
    }
    if (block_rows == 1) near.count = 0; // then every diagonal is far enough

    for (Index done = 0; done < m; done += block_rows) {
        const Index next = std::min(done + block_rows, m);
        const Range block = forward ? Range{done, next} : Range{m - next, m - done};
        StrokeGroup<T> far(row_major, T{} - T{1}, conjugated, o);
        for (Index k = 0; k < a.ndiag; ++k) {
            const Stroke<T> s = stroke(terms, mirror, a, k, m, m, all, block);
            if (s.offset != 0 && (block_rows == 1 || !is_near(s))) far.take(s);
        }
        far.finish();
        if (near.count != 0 || diagonal != nullptr)
            for_groups(row_major, o, [&]<class Group>(Group, const Operands<T>& part) {
                dia_solve_rows<Group>(near, diagonal, block, forward, conjugated, part);
            });
    }
}

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// C = op(A)^-1 C for a triangular or diagonal matrix of diagonals. Diagonals at a distance are taken out of a block of
// rows at once, as in a product, for the unknowns that they meet are known before the block begins; the near ones go
// row by row.
#pragma once

#include "spblas/dia.h"

namespace ork::spblas {

inline constexpr int most_near = 16;
inline constexpr Index most_block_rows = 256;

// The near diagonals of a solve, the nearest last: its product is what the next row waits for.
template <class T>
struct NearStrokes {
    Stroke<T> strokes[most_near];
    int count = 0;
    Index limit; // of their distance

    void insert(const Stroke<T>& s)
    {
        int q = count++;
        for (; q > 0 && strokes[q - 1].distance() < s.distance(); --q) strokes[q] = strokes[q - 1];
        strokes[q] = s;
    }
};

// What is left of the rows of a block, first to last or last to first; all of them, or none but the first and last few
// of the matrix, meet every near diagonal. `diagonal` is null where ones are taken.
template <class Group, class T>
[[gnu::noinline]] void dia_solve_rows(const NearStrokes<T>& near, const T* diagonal, Range rows, bool forward,
                                      const StrokeTask<T>& task, const Operands<T>& o)
{
    const Index step = forward ? 1 : -1;
    const auto c = [&](Index i) { return o.c + Group::at(i, o.c_row); };
    const auto finish = [&](Group& x, Index i) {
        if (diagonal != nullptr) {
            task.ahead.fetch(diagonal + i);
            x.divide(task.conjugated(diagonal[i]));
        }
        x.store(c(i), o.c_side);
    };
    const auto take_out = [&](Group& x, const Stroke<T>& s, Index i) {
        task.ahead.fetch(s.val + i);
        x.subtract(task.conjugated(s.val[i]), Group::load(c(i + s.offset), o.c_side));
    };
    Index i = forward ? rows.first : rows.last - 1, left = rows.last - rows.first;
    const auto all_meet = [&] {
        return near.count == 0 || (i >= near.strokes[0].rows.first && i < near.strokes[0].rows.last);
    };
    for (; left > 0 && !all_meet(); --left, i += step) {
        Group x = Group::load(c(i), o.c_side);
        for (int q = 0; q < near.count; ++q) {
            const Stroke<T>& s = near.strokes[q];
            if (i >= s.rows.first && i < s.rows.last) take_out(x, s, i);
        }
        finish(x, i);
    }
    if (left == 0) return;

    // The row before stays in registers.
    const bool adjacent = near.count > 0 && near.strokes[near.count - 1].offset == -step;
    const int others = near.count - adjacent;
    const T* val = adjacent ? near.strokes[others].val : nullptr;
    Group before{};
    if (adjacent) before = Group::load(c(i - step), o.c_side);
    for (; left > 0; --left, i += step) {
        Group x = Group::load(c(i), o.c_side);
        for (int q = 0; q < others; ++q) take_out(x, near.strokes[q], i);
        task.ahead.fetch(val + i);
        if (adjacent) x.subtract(task.conjugated(val[i]), before);
        finish(x, i);
        before = x;
    }
}

template <class Int, class T>
[[gnu::noinline]] void dia_solve(Terms terms, Index m, const Dia<Int, T>& a, const Operands<T>& o)
{
    const bool mirror = terms.mirrored(), row_major = terms.row_major(), forward = terms.forward();
    const Range all{0, m};
    const StrokeTask<T> task{row_major, T{} - T{1}, Conjugation<T>(terms.conjugate()), Ahead(forward, a.bytes(all))};
    const auto used = [&](Index k, Range block) { return stroke(terms, mirror, a, k, m, m, all, block); };

    const T* diagonal = nullptr;
    NearStrokes<T> near;
    Index block_rows = most_block_rows;
    // Less than the limit is near. The last one makes all diagonals far ones, a block being as short as the nearest
    // allows: so many near ones are only there if diagonals are repeated, or the matrix is nearly full.
    for (const Index limit : {most_block_rows, Index{most_near}, Index{1}}) {
        near.count = 0;
        near.limit = limit;
        block_rows = most_block_rows;
        bool fits = true;
        for (Index k = 0; k < a.ndiag; ++k) {
            if (a.idiag[k] == 0 && terms.diagonal()) diagonal = a.val + k * a.lval;
            const Stroke<T> s = used(k, all);
            if (s.rows.last <= s.rows.first || s.offset == 0) continue;
            if (s.distance() >= limit)
                block_rows = std::min(block_rows, s.distance());
            else if (near.count < most_near)
                near.insert(s);
            else
                fits = false;
        }
        if (fits) break;
    }

    for (Index done = 0; done < m; done += block_rows) {
        const Index next = std::min(done + block_rows, m);
        const Range block = forward ? Range{done, next} : Range{m - next, m - done};
        StrokeGroup<T> far(task, o);
        for (Index k = 0; k < a.ndiag; ++k) {
            const Stroke<T> s = used(k, block);
            if (s.distance() >= near.limit) far.take(s);
        }
        far.finish();
        if (near.count != 0 || diagonal != nullptr)
            for_groups(row_major, o, [&]<class Group>(Group, const Operands<T>& part) {
                dia_solve_rows<Group>(near, diagonal, block, forward, task, part);
            });
    }
}

} // namespace ork::spblas

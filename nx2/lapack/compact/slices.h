// SPDX-License-Identifier: MIT
// Which matrices are worked on together. A slice is what one register holds of a pack. A division or a square root
// takes 13 to 20 cycles and the next step waits for it, so four slices take every step in turn: one's arithmetic hides
// the other's wait.
#pragma once

#include "blas/compact/lanes.h"
#include "lapack/members.h"

namespace ork::lapack {

using compact::by_columns;
using compact::by_rows;
using compact::Lanes;
using compact::Matrix;

inline constexpr int slices_together = 4;

// The arrays of a call: w, and the packs that are whole; neither layout nor format need exist.
struct Shape {
    Int layout, width, packs;

    template <class R>
    static Shape of(Int layout, Int format, Int nmat)
    {
        const Int width = compact::pack_bytes(format) / Int(sizeof(R));
        const bool exists = width > 0 && (layout == by_rows || layout == by_columns);
        return {layout, width, exists ? nmat / width : 0};
    }
    bool rows() const { return layout == by_rows; }

    template <class T, class R>
    compact::Packs<T, R> array(R* data, Int ld, Int m, Int n) const
    {
        return {data, ld, rows() ? m : n, width};
    }
};

struct Slice {
    Int pack, lane;
};

struct Group {
    Slice slices[slices_together];
    int count = 0;
    Int next_pack = 0, next_packs = 0; // the packs of the group behind this one, where it pays to fetch them
};

// work(group) for all slices in order, four at a time, or what one pack has when four of `elements` elements would not
// stay in the first level cache.
template <class T, class Work>
void in_groups(const Shape& shape, Int elements, Work&& work)
{
    using R = Real<T>;
    if (shape.packs <= 0) return;
    constexpr Int lanes = Vec<R>::lanes, first_level = 32768, second_level = 1 << 20;
    const Int bytes = elements * Int(sizeof(R)) * lanes * compact::Packs<T, R>::parts, own = shape.width / lanes;
    const Int most = slices_together * bytes <= first_level ? slices_together : own, packs = most / own;
    // Where matrices come from beyond the second level, fetching makes orders from 8 on 1.2 to 2.7 times as fast; in
    // near caches it would cost a fifth.
    const bool fetches = most * bytes >= 2048 && shape.packs * own * bytes > second_level;
    Group g;
    for (Int pack = 0; pack < shape.packs; ++pack)
        for (Int lane = 0; lane < shape.width; lane += lanes) {
            g.slices[g.count++] = {pack, lane};
            if (g.count < most) continue;
            const Int left = shape.packs - pack - 1;
            g.next_pack = pack + 1, g.next_packs = !fetches ? 0 : left < packs ? left : packs;
            work(g);
            g.count = 0;
        }
    g.next_packs = 0;
    if (g.count > 0) work(g);
}

// Brings lines (columns, or rows where they are stored by rows) first .. end - 1 of the next group nearer, of each the
// elements from begin(line) up to stop(line).
template <class T, class R, class Begin, class Stop>
[[gnu::noinline]] void fetch(const compact::Packs<T, R>& array, const Group& g, Int first, Int end, Begin begin,
                             Stop stop)
{
    const Int element = array.width * array.parts;
    for (Int p = 0; p < g.next_packs; ++p)
        for (Int line = first; line < end; ++line) {
            const R* data = array.data + (g.next_pack + p) * array.pack_size() + line * array.ld * element;
            const R* last = data + stop(line) * element;
            // Not the intrinsic: GCC 12 takes a function that does nothing else for one without effects.
            for (data += begin(line) * element; data < last; data += 64 / sizeof(R))
                asm volatile("prefetcht0 %0" : : "m"(*data));
        }
}

// The same a few lines of the cache at a time, between tiles: more at once than the processor keeps track of hold up
// the loads of the work itself.
struct Ahead {
    const char *at = nullptr, *end = nullptr;
    Int lines = 0;

    // Of the next group, in about `steps` steps.
    template <class T, class R>
    Ahead(const compact::Packs<T, R>& array, const Group& g, Int steps)
    {
        if (g.next_packs <= 0) return;
        const Int bytes = array.pack_size() * Int(sizeof(R));
        at = reinterpret_cast<const char*>(array.data) + g.next_pack * bytes, end = at + g.next_packs * bytes;
        lines = (end - at) / 64 / steps + 1;
    }
    [[gnu::always_inline]] inline void step()
    {
        for (Int k = 0; k < lines && at < end; ++k, at += 64) asm volatile("prefetcht0 %0" : : "m"(*at));
    }
};

// work(matrix) for all slices of one array in order, transposed if asked.
template <class T, class Work>
void one_by_one(const Shape& shape, bool transposed, const compact::Packs<T, Real<T>>& array, Work&& work)
{
    Matrix<Real<T>> a = array.matrix(0, 0, shape.rows() != transposed);
    const Int lanes = Vec<Real<T>>::lanes, gap = array.pack_size() - shape.width;
    for (Int pack = 0; pack < shape.packs; ++pack, a.data += gap)
        for (Int lane = 0; lane < shape.width; lane += lanes, a.data += lanes) work(a);
}

// f<size>() for a size of 1 to most.
template <int most, class F>
[[gnu::always_inline]] inline void with_size(Int size, F&& f)
{
    if constexpr (most > 1)
        if (size < most) return with_size<most - 1>(size, f);
    f.template operator()<most>();
}

// Splits what is left of a side into tiles of at most `side`: f<size>(position) in order.
template <int side, class F>
[[gnu::always_inline]] inline void in_tiles(Int first, Int end, F&& f)
{
    for (Int i = first; i < end;) {
        const Int rest = end - i;
        const Int size = rest == side + 1 && side > 2 ? side - 1 : rest < side ? rest : side; // 4 as 2 + 2, not 3 + 1
        with_size<side>(size, [&]<int constant>() { f.template operator()<constant>(i); });
        i += size;
    }
}

} // namespace ork::lapack

// SPDX-License-Identifier: MIT
// Sequences of plane rotations from the left. One of the two rows of a rotation stays in registers for the next one;
// the other comes in for this rotation alone, and one row is finished by it. With so many columns beside each other as
// hide the latency of a rotation, A passes through the registers once.
#include "lapack/column_lanes.h"
#include "lapack/members.h"

namespace ork::lapack {
namespace {

// Which rows rotation k = 0, 1, .. joins: k and k + 1, 0 and k + 1, k and m - 1.
enum class Pivot { variable, top, bottom };

template <Pivot pivot, bool forward>
struct Sequence {
    static constexpr bool carries_lower = pivot == Pivot::top || (pivot == Pivot::variable && forward);
    static constexpr bool finishes_lower = pivot == Pivot::bottom || (pivot == Pivot::variable && forward);

    // The row that is carried first, and the one that is left over.
    static Int begins(Int m) { return carries_lower ? 0 : m - 1; }
    static Int ends(Int m) { return finishes_lower ? m - 1 : 0; }

    const R *c, *s;

    struct Rotation {
        Vec<R> c, s;
    };
    [[gnu::always_inline]] Rotation at(Int k) const { return {broadcast(c[k]), broadcast(s[k])}; }
    [[gnu::always_inline]] void operator()(Rotation k, Vec<T>& carried, Vec<T>& row) const
    {
        const Vec<R> t = reals(carries_lower ? row : carried), u = reals(carries_lower ? carried : row);
        const Vec<T> higher{k.c * t - k.s * u}, lower{k.s * t + k.c * u};
        row = finishes_lower ? lower : higher, carried = finishes_lower ? higher : lower;
    }

    template <int registers>
    [[gnu::noinline]] void apply(Int m, Int count, T* a, Int lda) const
    {
        const ColumnLanes<T, registers> columns(lda, count);
        Vec<T> carried[registers];
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) carried[r] = columns.row(a + begins(m), r);
        recur<forward>(columns, m - 1, a + (carries_lower ? 1 : 0), a + (finishes_lower ? 0 : 1), carried, *this);
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) columns.put_row(a + ends(m), r, carried[r]);
    }
};

template <Pivot pivot, bool forward>
void lasr(Int m, Int n, const R* c, const R* s, T* a, Int lda)
{
    if (m < 2 || n < 1) return;
    constexpr int most = Vec<T>::lanes == 4 ? 4 : 6;
    for_each_group<T, most>(n, [&]<int registers>(Int j, Int count) {
        Sequence<pivot, forward>{c, s}.template apply<registers>(m, count, a + j * lda, lda);
    });
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(lasr_lvf)(const Int* m, const Int* n, const R* c, const R* s, T* a, const Int* lda)
{
    lasr<Pivot::variable, true>(*m, *n, c, s, a, *lda);
}

ORK_LAPACK_EXPORT(lasr_lvb)(const Int* m, const Int* n, const R* c, const R* s, T* a, const Int* lda)
{
    lasr<Pivot::variable, false>(*m, *n, c, s, a, *lda);
}

ORK_LAPACK_EXPORT(lasr_ltf)(const Int* m, const Int* n, const R* c, const R* s, T* a, const Int* lda)
{
    lasr<Pivot::top, true>(*m, *n, c, s, a, *lda);
}

ORK_LAPACK_EXPORT(lasr_ltb)(const Int* m, const Int* n, const R* c, const R* s, T* a, const Int* lda)
{
    lasr<Pivot::top, false>(*m, *n, c, s, a, *lda);
}

ORK_LAPACK_EXPORT(lasr_lbf)(const Int* m, const Int* n, const R* c, const R* s, T* a, const Int* lda)
{
    lasr<Pivot::bottom, true>(*m, *n, c, s, a, *lda);
}

ORK_LAPACK_EXPORT(lasr_lbb)(const Int* m, const Int* n, const R* c, const R* s, T* a, const Int* lda)
{
    lasr<Pivot::bottom, false>(*m, *n, c, s, a, *lda);
}

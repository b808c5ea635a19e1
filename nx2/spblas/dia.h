// SPDX-License-Identifier: MIT
// Products with a matrix of diagonals. Every contribution is a Stroke, c[i] += alpha val[i] b[i + offset] over a range
// of rows of C: a diagonal as it stands, or mirrored; so all members gather, block by block of C, with unit stride.
#pragma once

#include <algorithm>

#include "spblas/streams.h"
#include "spblas/terms.h"

namespace ork::spblas {

struct Range { // last exclusive
    Index first, last;
};

template <class Int, class T>
struct Dia {
    const T* val; // A(i, i + idiag[k]) is val[i + k * lval]
    Index lval;
    const Int* idiag;
    Index ndiag;

    Index bytes(Range rows) const { return ndiag * (rows.last - rows.first) * static_cast<Index>(sizeof(T)); }
};

template <class T>
struct Stroke {
    const T* val;
    Index offset;
    Range rows;

    Index distance() const { return offset < 0 ? -offset : offset; }
};

inline constexpr int strokes_at_once = 8, strokes_down_columns = 4;

// Diagonal k over `rows` of the m x n matrix, or mirrored, cut to rows `block` of C. Empty where the member does not
// use it; the main diagonal is never mirrored where a triangle counts.
template <class Int, class T>
inline Stroke<T> stroke(Terms terms, bool mirror, const Dia<Int, T>& a, Index k, Index m, Index n, Range rows,
                        Range block)
{
    const Index d = a.idiag[k];
    const T* val = a.val + k * a.lval;
    const bool used = mirror ? terms.mirrored() : terms.direct();
    const bool counts = !terms.filtered() ? used
                        : d == 0          ? !mirror && terms.diagonal()
                                          : used && (d < 0) == terms.lower();
    if (!counts || d >= n || d <= -m) return {val, 0, {0, 0}};
    const Index first = std::max({rows.first, -d, Index{0}}), last = std::min({rows.last, n - d, m});
    const Index shift = mirror ? d : 0;
    return {moved(val, -shift),
            mirror ? -d : d,
            {std::max(first + shift, block.first), std::min(last + shift, block.last)}};
}

template <class T>
struct StrokeTask {
    bool row_major;
    T alpha;
    Conjugation<T> conjugated;
    Ahead ahead;
};

// C += alpha val B over `rows` and strokes that all cover them: `count` at once down a column,
template <int count, class T>
[[gnu::noinline]] void add_strokes(const StrokeTask<T>& task, const Stroke<T>* strokes, Range rows, const T* b, T* c)
{
    const Factor<T> factor(task.alpha);
    const Conjugation<T> conjugated = task.conjugated;
    const Ahead ahead = task.ahead;
    const T *val[count], *x[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        val[q] = strokes[q].val + rows.first;
        x[q] = b + (rows.first + strokes[q].offset);
    }
    T* y = c + rows.first;
    for_strips<T>(
        rows.last - rows.first, [&]<int vectors, int width>(Index i) __attribute__((always_inline)) {
            Products<T> sum[vectors]{};
#pragma GCC unroll 4
            for (int q = 0; q < count; ++q) {
                ahead.fetch(val[q] + i);
#pragma GCC unroll 4
                for (int j = 0; j < vectors; ++j)
                    sum[j].template add<width>(val[q] + i + j * width, x[q] + i + j * width);
            }
#pragma GCC unroll 4
            for (int j = 0; j < vectors; ++j) add_to<width>(y + i + j * width, factor * sum[j].value(conjugated));
        });
}

// or row by row across right-hand sides.
template <class Group, class T>
[[gnu::noinline]] void add_strokes(const StrokeTask<T>& task, const Stroke<T>* strokes, int count, Range rows,
                                   const Operands<T>& o)
{
    for (Index i = rows.first; i < rows.last; ++i) {
        Group sum{};
        for (int q = 0; q < count; ++q) {
            const T* val = strokes[q].val + i;
            task.ahead.fetch(val);
            const T* b = o.b + (i + strokes[q].offset) * o.b_row;
            task.ahead.fetch(b);
            sum.add(task.conjugated(*val), Group::load(b, o.b_side));
        }
        T* c = o.c + i * o.c_row;
        Group total = Group::load(c, o.c_side);
        total.add(task.alpha, sum);
        total.store(c, o.c_side);
    }
}

template <class T>
[[gnu::noinline]] void add_strokes(const StrokeTask<T>& task, const Stroke<T>* strokes, int count, Range rows,
                                   const Operands<T>& o)
{
    if (rows.last <= rows.first) return;
    if (task.row_major)
        return for_lanes(o, [&]<class Group>(Group, const Operands<T>& part) {
            add_strokes<Group>(task, strokes, count, rows, part);
        });
    constexpr void (*add[])(const StrokeTask<T>&, const Stroke<T>*, Range, const T*,
                            T*) = {add_strokes<1, T>, add_strokes<2, T>, add_strokes<3, T>, add_strokes<4, T>};
    for (Index j = 0; j < o.sides; ++j) add[count - 1](task, strokes, rows, o.b + j * o.b_side, o.c + j * o.c_side);
}

// A few strokes on their way: rows that all of them cover are done together, the others one by one.
template <class T>
class StrokeGroup {
public:
    StrokeGroup(const StrokeTask<T>& task, const Operands<T>& o) : task_(task), o_(o) {}

    void take(const Stroke<T>& stroke)
    {
        if (stroke.rows.last <= stroke.rows.first) return;
        strokes_[count_++] = stroke;
        if (count_ == (task_.row_major ? strokes_at_once : strokes_down_columns)) finish();
    }
    void finish()
    {
        if (count_ == 0) return;
        Range common = strokes_[0].rows;
        for (int q = 1; q < count_; ++q)
            common = {std::max(common.first, strokes_[q].rows.first), std::min(common.last, strokes_[q].rows.last)};
        common.last = std::max(common.first, common.last);
        add_strokes(task_, strokes_, count_, common, o_);
        for (int q = 0; q < count_; ++q) {
            const Range rows = strokes_[q].rows;
            add_strokes(task_, strokes_ + q, 1, {rows.first, std::min(rows.last, common.first)}, o_);
            add_strokes(task_, strokes_ + q, 1, {std::max(rows.first, common.last), rows.last}, o_);
        }
        count_ = 0;
    }

private:
    const StrokeTask<T>& task_;
    const Operands<T>& o_;
    Stroke<T> strokes_[strokes_at_once];
    int count_ = 0;
};

// C = alpha op(A) B + beta C from `rows` of the m x n matrix A. Writes these rows of C alone where nothing is mirrored,
// and all of C otherwise.
template <class Int, class T>
[[gnu::noinline]] void dia_product(Terms terms, Range rows, Index m, Index n, T alpha, const Dia<Int, T>& a,
                                   const Operands<T>& o, T beta)
{
    const Index block_rows = terms.row_major() ? 128 : 512; // of C: half the first cache, beside B and the values
    const Range all = terms.mirrored() ? Range{0, terms.direct() ? m : n} : rows;
    alpha = terms.signed_alpha(alpha);
    const Ahead ahead(true, a.bytes(rows));
    const StrokeTask<T> direct_task{terms.row_major(), alpha, Conjugation<T>(terms.conjugate()), ahead};
    const StrokeTask<T> mirrored_task{terms.row_major(), terms.mirrored_minus() ? T{} - alpha : alpha,
                                      Conjugation<T>(terms.mirrored_conjugate()), ahead};
    for (Index i = all.first; i < all.last; i += block_rows) {
        const Range block{i, std::min(i + block_rows, all.last)};
        scale_rows(terms.row_major(), block.first, block.last, beta, o);
        if (terms.unit())
            add_identity(terms.row_major(), std::max(block.first, rows.first), std::min({block.last, rows.last, m, n}),
                         alpha, o);
        StrokeGroup<T> direct(direct_task, o), mirrored(mirrored_task, o);
        for (Index k = 0; k < a.ndiag; ++k) {
            direct.take(stroke(terms, false, a, k, m, n, rows, block));
            mirrored.take(stroke(terms, true, a, k, m, n, rows, block));
        }
        direct.finish();
        mirrored.finish();
    }
}

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// Products with a matrix of diagonals. Every contribution is a Stroke, c[i] += alpha val[i] b[i + offset] over a range
// of rows of C: a diagonal as it stands, or mirrored; so all members gather, block by block of C, with unit stride.
#pragma once

#include <algorithm>

#include "spblas/streams.h"
#include "spblas/terms.h"

namespace ork::spblas {

template <class Int, class T>
struct Dia {
    const T* val; // A(i, i + idiag[k]) is val[i + k * lval]
    Index lval;
    const Int* idiag;
    Index ndiag;
};

struct Range { // last exclusive
    Index first, last;
};

template <class T>
struct Stroke {
    const T* val;
    Index offset;
    Range rows;
};

inline constexpr int strokes_at_once = 4;

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
    return {val - shift, mirror ? -d : d, {std::max(first + shift, block.first), std::min(last + shift, block.last)}};
}

// C += alpha val B over `rows` and strokes that all cover them: `count` at once down a column,
template <int count, class T>
[[gnu::noinline]] void add_strokes(const Stroke<T>* strokes, Range rows, T alpha, Conjugation<T> conjugated, const T* b,
                                   T* c)
{
    constexpr int lanes = Vec<T>::lanes, block = is_complex<T> ? 1 : 2;
    const Factor<T> factor(alpha);
    const T *val[count], *x[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        val[q] = strokes[q].val + rows.first;
        x[q] = b + rows.first + strokes[q].offset;
    }
    T* y = c + rows.first;
    const Index n = rows.last - rows.first;
    Index i = 0;
    for (; i + block * lanes <= n; i += block * lanes) {
        Products<T> sum[block]{};
#pragma GCC unroll 4
        for (int q = 0; q < count; ++q)
#pragma GCC unroll 2
            for (int j = 0; j < block; ++j) sum[j].template add<lanes>(val[q] + i + j * lanes, x[q] + i + j * lanes);
#pragma GCC unroll 2
        for (int j = 0; j < block; ++j) add_to<lanes>(y + i + j * lanes, factor * sum[j].value(conjugated));
    }
    for (; i < n; ++i) {
        Products<T> sum{};
#pragma GCC unroll 4
        for (int q = 0; q < count; ++q) sum.template add<1>(val[q] + i, x[q] + i);
        add_to<1>(y + i, factor * sum.value(conjugated));
    }
}

// or row by row across right-hand sides.
template <class Group, class T>
[[gnu::noinline]] void add_strokes(const Stroke<T>* strokes, int count, Range rows, T alpha, Conjugation<T> conjugated,
                                   const Operands<T>& o)
{
    for (Index i = rows.first; i < rows.last; ++i) {
        Group sum{};
        for (int q = 0; q < count; ++q)
            sum.add(conjugated(strokes[q].val[i]), Group::load(o.b + (i + strokes[q].offset) * o.b_row, o.b_side));
        T* c = o.c + i * o.c_row;
        Group total = Group::load(c, o.c_side);
        total.add(alpha, sum);
        total.store(c, o.c_side);
    }
}

template <class T>
[[gnu::noinline]] void add_strokes(bool row_major, const Stroke<T>* strokes, int count, Range rows, T alpha,
                                   Conjugation<T> conjugated, const Operands<T>& o)
{
    if (rows.last <= rows.first) return;
    if (row_major)
        return for_lanes(o, [&]<class Group>(Group, const Operands<T>& part) {
            add_strokes<Group>(strokes, count, rows, alpha, conjugated, part);
        });
    constexpr void (*add[])(const Stroke<T>*, Range, T, Conjugation<T>, const T*,
                            T*) = {add_strokes<1, T>, add_strokes<2, T>, add_strokes<3, T>, add_strokes<4, T>};
    for (Index j = 0; j < o.sides; ++j)
        add[count - 1](strokes, rows, alpha, conjugated, o.b + j * o.b_side, o.c + j * o.c_side);
}

// A few strokes on their way: rows that all of them cover are done together, the others one by one.
template <class T>
class StrokeGroup {
public:
    StrokeGroup(bool row_major, T alpha, Conjugation<T> conjugated, const Operands<T>& o)
        : row_major_(row_major), alpha_(alpha), conjugated_(conjugated), o_(o)
    {
    }
    void take(const Stroke<T>& stroke)
    {
        if (stroke.rows.last <= stroke.rows.first) return;
        strokes_[count_++] = stroke;
        if (count_ == strokes_at_once) finish();
    }
    void finish()
    {
        if (count_ == 0) return;
        Range common = strokes_[0].rows;
        for (int q = 1; q < count_; ++q)
            common = {std::max(common.first, strokes_[q].rows.first), std::min(common.last, strokes_[q].rows.last)};
        common.last = std::max(common.first, common.last);
        add(strokes_, count_, common);
        for (int q = 0; q < count_; ++q) {
            const Range rows = strokes_[q].rows;
            add(strokes_ + q, 1, {rows.first, std::min(rows.last, common.first)});
            add(strokes_ + q, 1, {std::max(rows.first, common.last), rows.last});
        }
        count_ = 0;
    }

private:
    void add(const Stroke<T>* strokes, int count, Range rows)
    {
        add_strokes(row_major_, strokes, count, rows, alpha_, conjugated_, o_);
    }

    bool row_major_;
    T alpha_;
    Conjugation<T> conjugated_;
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
    const T mirrored_alpha = terms.mirrored_minus() ? T{} - alpha : alpha;
    for (Index i = all.first; i < all.last; i += block_rows) {
        const Range block{i, std::min(i + block_rows, all.last)};
        scale_rows(terms.row_major(), block.first, block.last, beta, o);
        if (terms.unit())
            add_identity(terms.row_major(), std::max(block.first, rows.first), std::min({block.last, rows.last, m, n}),
                         alpha, o);
        StrokeGroup<T> direct(terms.row_major(), alpha, Conjugation<T>(terms.conjugate()), o);
        StrokeGroup<T> mirrored(terms.row_major(), mirrored_alpha, Conjugation<T>(terms.mirrored_conjugate()), o);
        for (Index k = 0; k < a.ndiag; ++k) {
            direct.take(stroke(terms, false, a, k, m, n, rows, block));
            mirrored.take(stroke(terms, true, a, k, m, n, rows, block));
        }
        direct.finish();
        mirrored.finish();
    }
}

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// Products and solves of blocks: every routine walks the stored block rows, and what it does to each is its rule's.
#include "spblas/bsr_calls.h"
#include "spblas/bsr_diagonal.h"
#include "spblas/bsr_panel.h"
#include "spblas/bsr_small.h"
#include "spblas/members.h"
#include "spblas/scale.h"

namespace ork::spblas::bsr {

template <class Int, class T>
using Walk = void (*)(const BlockTask<Int, T>&, std::int64_t first, std::int64_t last);

// Kernels for the direct and the mirrored products of rows first .. last of the storage.
template <class Int, class T>
struct Walks {
    Walk<Int, T> direct = direct_blocks<Int, T>, mirrored = mirrored_blocks<Int, T>;
};

template <int lb, class Int, class T>
Walks<Int, T> small_walks(const BlockTask<Int, T>& t)
{
    if (t.by_rows)
        return {t.whole ? direct_small<lb, true, true, Int, T> : direct_small<lb, true, false, Int, T>,
                mirrored_small<lb, true, Int, T>};
    return {t.whole ? direct_small<lb, false, true, Int, T> : direct_small<lb, false, false, Int, T>,
            mirrored_small<lb, false, Int, T>};
}

// One vector, whose elements are adjacent.
template <class Int, class T>
Walks<Int, T> vector_walks(const BlockTask<Int, T>& t)
{
    if constexpr (!is_complex<T>) {
        if (t.lb == 2) return small_walks<2>(t);
        if (t.lb == 3) return small_walks<3>(t);
        if (t.lb == 4) return small_walks<4>(t);
    }
    return {};
}

template <class Int, class T>
BlockTask<Int, T> task(BlockRule rule, const Int* lb, const T* val, const Int* indx, const Int* pntrb, const Int* pntre,
                       T alpha, T beta)
{
    BlockTask<Int, T> t{};
    t.lb = *lb, t.val = val, t.indx = indx, t.pntrb = pntrb, t.pntre = pntre, t.base = rule.base;
    t.alpha = rule.negate_direct ? T(-1) * alpha : alpha;
    t.alpha_mirrored = rule.negate_mirrored ? T(-1) * alpha : alpha;
    t.beta = beta;
    t.conjugate = rule.conjugate_direct, t.conjugate_mirrored = rule.conjugate_mirrored;
    t.by_rows = rule.blocks_by_rows, t.dense_by_rows = rule.dense_by_rows;
    t.whole = rule.whole, t.lower = rule.lower;
    return t;
}

// Rows first .. last. Where anything but the rows themselves is written, all of y has been scaled before, and beta
// is 1.
template <class Int, class T>
void add_products(BlockRule rule, const BlockTask<Int, T>& t, Walks<Int, T> walks, std::int64_t first,
                  std::int64_t last, T alpha)
{
    if (rule.whole) return (rule.direct ? walks.direct : walks.mirrored)(t, first, last);
    for (std::int64_t i = first; i < last; ++i) {
        if (rule.direct) walks.direct(t, i, i + 1);
        if (rule.mirrored) walks.mirrored(t, i, i + 1);
        add_diagonal(rule, t, i, alpha);
    }
}

// Rows in the order in which they depend on each other. Direct: what is solved already enters the row; mirrored: the
// row, solved, leaves the rows to come.
template <class Int, class T>
void solve(BlockRule rule, const BlockTask<Int, T>& t, Walks<Int, T> walks, std::int64_t rows)
{
    const bool forward = t.lower == static_cast<bool>(rule.direct);
    for (std::int64_t s = 0; s < rows; ++s) {
        const std::int64_t i = forward ? s : rows - 1 - s;
        if (rule.direct) walks.direct(t, i, i + 1);
        solve_diagonal(rule, t, i);
        if (rule.mirrored) walks.mirrored(t, i, i + 1);
    }
}

} // namespace ork::spblas::bsr

namespace ork::spblas {

template <class Int, class T>
void BsrCalls<Int, T>::mvout_par(const Int* first, const Int* last, BlockRule rule, const Int* size, const T* alpha,
                                 const Int* lb, const T* val, const Int* indx, const Int* pntrb, const Int* pntre,
                                 const T* x, T* y, const T* beta)
{
    auto t = bsr::task(rule, lb, val, indx, pntrb, pntre, *alpha, *beta);
    t.x = x, t.y = y, t.count = 1, t.dense_by_rows = false;
    if (rule.mirrored || !rule.direct) {
        scale(*size * t.lb, *beta, y);
        t.beta = T(1);
    }
    bsr::add_products(rule, t, bsr::vector_walks(t), *first - 1, *last, *alpha);
}

template <class Int, class T>
void BsrCalls<Int, T>::mvout_seq(const Int* size, BlockRule rule, const T* alpha, const Int* lb, const T* val,
                                 const Int* indx, const Int* pntrb, const Int* pntre, const T* x, T* y, const T* beta)
{
    const Int one = 1;
    mvout_par(&one, size, rule, size, alpha, lb, val, indx, pntrb, pntre, x, y, beta);
}

template <class Int, class T>
void BsrCalls<Int, T>::mmout_par(const Int* first, const Int* last, const Int* m, const Int* n, BlockRule rule,
                                 const T* alpha, const Int* lb, const T* val, const Int* indx, const Int* pntrb,
                                 const Int* pntre, const T* b, const Int* ldb, T* c, const Int* ldc, const T* beta)
{
    auto t = bsr::task(rule, lb, val, indx, pntrb, pntre, *alpha, *beta);
    const std::int64_t begin = *first - 1;
    t.ldx = *ldb, t.ldy = *ldc, t.count = *last - begin;
    if (t.count <= 0) return;
    t.x = b + begin * (t.dense_by_rows ? 1 : t.ldx), t.y = c + begin * (t.dense_by_rows ? 1 : t.ldy);
    const std::int64_t rows = rule.by_columns ? *n : *m, columns = rule.by_columns ? *m : *n;
    if (rule.mirrored || !rule.direct) {
        const std::int64_t length = (rule.direct || !rule.mirrored ? rows : columns) * t.lb;
        if (t.dense_by_rows)
            for (std::int64_t r = 0; r < length; ++r) scale(t.count, *beta, t.y + r * t.ldy);
        else
            for (std::int64_t j = 0; j < t.count; ++j) scale(length, *beta, t.y + j * t.ldy);
        t.beta = T(1);
    }
    bsr::add_products(rule, t, {}, 0, rows, *alpha);
}

template <class Int, class T>
void BsrCalls<Int, T>::mmout_seq(const Int* m, const Int* nrhs, BlockRule rule, const T* alpha, const Int* lb,
                                 const T* val, const Int* indx, const Int* pntrb, const Int* pntre, const T* b,
                                 const Int* ldb, T* c, const Int* ldc, const T* beta)
{
    const Int one = 1;
    mmout_par(&one, nrhs, m, m, rule, alpha, lb, val, indx, pntrb, pntre, b, ldb, c, ldc, beta);
}

template <class Int, class T>
void BsrCalls<Int, T>::svout_seq(const Int* m, BlockRule rule, const Int* lb, const T* val, const Int* indx,
                                 const Int* pntrb, const Int* pntre, T* y)
{
    auto t = bsr::task(rule, lb, val, indx, pntrb, pntre, T(-1), T(1));
    t.x = t.y = y, t.count = 1, t.dense_by_rows = false;
    bsr::solve(rule, t, bsr::vector_walks(t), *m);
}

template <class Int, class T>
void BsrCalls<Int, T>::smout_par(const Int* first, const Int* last, const Int* m, BlockRule rule, const Int* lb,
                                 const T* val, const Int* indx, const Int* pntrb, const Int* pntre, T* c,
                                 const Int* ldc)
{
    auto t = bsr::task(rule, lb, val, indx, pntrb, pntre, T(-1), T(1));
    const std::int64_t begin = *first - 1;
    t.ldx = t.ldy = *ldc, t.count = *last - begin;
    t.x = t.y = c + begin * (t.dense_by_rows ? 1 : t.ldy);
    if (t.count > 0) bsr::solve(rule, t, {}, *m);
}

template struct BsrCalls<Int, T>;

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// Products and solves of blocks: every routine walks the stored block rows, and what it does to each is its rule's.
#include "simd/scale.h"
#include "spblas/bsr_calls.h"
#include "spblas/bsr_diagonal.h"
#include "spblas/bsr_panel.h"
#include "spblas/bsr_rows.h"
#include "spblas/members.h"

namespace ork::spblas::bsr {

template <class Int, class T>
BlockTask<T> task(BlockRule rule, const Int* lb, const T* val, const Int* indx, const Int* pntrb, const Int* pntre,
                  T alpha, T beta)
{
    BlockTask<T> t{};
    t.lb = *lb, t.val = val, t.indx = indx, t.pntrb = pntrb, t.pntre = pntre, t.base = rule.base;
    t.wide = sizeof(Int) == 8;
    t.alpha = rule.negate_direct ? T(-1) * alpha : alpha;
    t.alpha_mirrored = rule.negate_mirrored ? T(-1) * alpha : alpha;
    t.beta = beta;
    t.conjugate = rule.conjugate_direct, t.conjugate_mirrored = rule.conjugate_mirrored;
    t.by_rows = rule.blocks_by_rows, t.dense_by_rows = rule.dense_by_rows;
    t.whole = rule.whole, t.lower = rule.lower, t.direct = rule.direct;
    return t;
}

template <class T>
bool is_far(const BlockTask<T>& t, std::int64_t first, std::int64_t last)
{
    const std::int64_t bytes = t.lb * t.lb * static_cast<std::int64_t>(sizeof(T)) + (t.wide ? 8 : 4);
    return first < last && (t.last(last - 1) - t.first(first)) * bytes > far_bytes;
}

// Orders from 2 that have code of their own for one vector.
template <class T>
inline constexpr int largest_order = is_complex<T> ? 4 : 8;

// Calls f<order, by_rows>() and returns true for such an order, which is at least lb.
template <class T, int lb = 2, class F>
bool of_known_order(const BlockTask<T>& t, F&& f)
{
    if (t.lb == lb) {
        t.by_rows ? f.template operator()<lb, true>() : f.template operator()<lb, false>();
        return true;
    }
    if constexpr (lb < largest_order<T>)
        return of_known_order<T, lb + 1>(t, f);
    else
        return false;
}

// One vector; false where its order has no code of its own.
template <class Int, class T>
bool multiply_vector(BlockRule rule, const BlockTask<T>& t, std::int64_t first, std::int64_t last)
{
    return of_known_order(t, [&]<int order, bool by_rows>() {
        constexpr bool fetching = unrolled<order, T> != 0;
        if (!rule.whole || !rule.direct)
            product_rows<order, by_rows, T>(rule, t, first, last);
        else
            (t.far ? direct_rows<order, by_rows, fetching, Int, T>
                   : direct_rows<order, by_rows, false, Int, T>)(t, first, last);
    });
}
// Rows first .. last in the order of the solve, of `rows`.
template <class T>
bool solve_vector(BlockRule rule, const BlockTask<T>& t, std::int64_t first, std::int64_t last, std::int64_t rows)
{
    return of_known_order(
        t, [&]<int order, bool by_rows>() { solve_rows<order, by_rows, T>(rule, t, first, last, rows); });
}

// Vectors one by one, as many rows at a time as stay in the cache until the last vector has had them: f(task, first,
// last) of each, for rows in ascending order or, backward, in descending. Column-major panels of four vectors were
// slower by half.
template <class T, class F>
bool vector_by_vector(const BlockTask<T>& t, std::int64_t rows, bool forward, F&& f)
{
    constexpr std::int64_t near_bytes = 128 << 10;
    if (t.dense_by_rows || t.lb < 2 || t.lb > largest_order<T>) return false;
    BlockTask<T> one = t;
    one.count = 1;
    for (std::int64_t first = 0, last = 0; first < rows; first = last) {
        for (std::int64_t bytes = 0; last < rows && bytes < near_bytes; ++last) {
            const std::int64_t i = forward ? last : rows - 1 - last;
            bytes += (t.last(i) - t.first(i)) * t.lb * t.lb * static_cast<std::int64_t>(sizeof(T)) + 8;
        }
        for (std::int64_t j = 0; j < t.count; ++j) {
            one.x = t.x + j * t.ldx, one.y = t.y + j * t.ldy, one.far = t.far && j == 0;
            f(one, first, last);
        }
    }
    return true;
}

// Rows first .. last. Where anything but the rows themselves is written, all of y has been scaled before, and beta
// is 1.
template <class T>
[[gnu::noinline]] void add_products(BlockRule rule, const BlockTask<T>& t, std::int64_t first, std::int64_t last,
                                    T alpha)
{
    for (std::int64_t i = first; i < last; ++i) {
        if (rule.direct) add_direct(t, i);
        if (rule.mirrored) add_mirrored(t, i);
        if (!rule.whole) add_diagonal(rule, t, i, alpha);
    }
}

// Rows in the order in which they depend on each other. Direct: what is solved already enters the row; mirrored: the
// row, solved, leaves the rows to come.
template <class T>
[[gnu::noinline]] void solve(BlockRule rule, const BlockTask<T>& t, std::int64_t rows)
{
    for (std::int64_t s = 0; s < rows; ++s) {
        const std::int64_t i = is_forward(rule) ? s : rows - 1 - s;
        if (rule.direct) add_direct(t, i);
        solve_diagonal(rule, t, i);
        if (rule.mirrored) add_mirrored(t, i);
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
    t.far = bsr::is_far(t, *first - 1, *last);
    if (!bsr::multiply_vector<Int>(rule, t, *first - 1, *last)) bsr::add_products(rule, t, *first - 1, *last, *alpha);
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
    t.far = bsr::is_far(t, 0, rows);
    const auto multiply = [&](const bsr::BlockTask<T>& one, std::int64_t from, std::int64_t to) {
        bsr::multiply_vector<Int>(rule, one, from, to);
    };
    if (!bsr::vector_by_vector(t, rows, true, multiply)) bsr::add_products(rule, t, 0, rows, *alpha);
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
    t.far = is_forward(rule) && bsr::is_far(t, 0, *m);
    if (!bsr::solve_vector<T>(rule, t, 0, *m, *m)) bsr::solve<T>(rule, t, *m);
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
    t.far = is_forward(rule) && bsr::is_far(t, 0, *m);
    if (t.count <= 0) return;
    const auto solve = [&](const bsr::BlockTask<T>& one, std::int64_t from, std::int64_t to) {
        bsr::solve_vector<T>(rule, one, from, to, *m);
    };
    if (!bsr::vector_by_vector(t, *m, is_forward(rule), solve)) bsr::solve<T>(rule, t, *m);
}

template struct BsrCalls<Int, T>;

} // namespace ork::spblas

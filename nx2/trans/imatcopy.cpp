// SPDX-License-Identifier: MIT
// AB <- alpha op(AB).
#include "trans/chunks.h"
#include "trans/exchange.h"
#include "trans/letters.h"
#include "trans/members.h"
#include "trans/plain.h"
#include "trans/shift.h"

namespace ork::trans {
namespace {

// A block and its mirror image, or one on the diagonal, for the core's threads.
void swap_tiles(char trans, Int rows, Int cols, T* upper, T* lower, Int lda)
{
    const Moved<T> f(operation(trans).conjugated);
    if (upper == lower)
        turn(cols, upper, lda, f);
    else if (is_exchange_buffered<T>(lda, lda))
        exchange_buffered(rows, cols, upper, lower, lda, f);
    else
        exchange_blocks(rows, cols, upper, lower, lda, f);
}

template <class F>
void transpose_in_place(Int m, Int n, T* ab, Int lda, Int ldb, const F& f, bool changes)
{
    if (m == n) {
        turn(n, ab, lda, f);
        if (lda != ldb) restride(n, n, ab, lda, ldb, Moved<T>(false));
        return;
    }
    if (const ByChunks<T> chunks(m, n, ab); lda == m && m > 1 && n > 1 && chunks.possible()) {
        if (changes) plain<T>(m * n, 1, Source<T, F>{ab, m, f}, Sink<T>{ab, m});
        chunks.run();
    } else if (m > 1 && n > 1)
        transpose_by_cycles(m, n, ab, lda, f);
    else
        restride(m, n, ab, lda, lda, f);
    if (lda != m || ldb != n) Regroup<T>(m, n, ab, lda, ldb).run();
}

template <class F>
void move_in_place(Int m, Int n, T* ab, Int lda, Int ldb, const F& f)
{
    if (lda == m && ldb == m) m *= n, n = 1;
    if (lda == ldb)
        plain<T>(m, n, Source<T, F>{ab, lda, f}, Sink<T>{ab, ldb});
    else
        restride(m, n, ab, lda, ldb, f);
}

} // namespace

ORK_TRANS_EXPORT(imatcopy)
(char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda, Int ldb)
{
    const Operation op = operation(trans);
    if (!op.known || rows <= 0 || cols <= 0 || !(by_columns(ordering) || by_rows(ordering))) return;
    const Int m = by_columns(ordering) ? rows : cols, n = by_columns(ordering) ? cols : rows;
    const bool one = is_one(alpha);
    if (op.transposed) {
        if (one && m == n && lda == ldb && n >= 257 &&
            ORK_TRANS_DRIVER(imatcopy_square_t_par)(op.conjugated ? 'C' : 'T', n, ab, lda, swap_tiles) != 0)
            return;
        if (one) return transpose_in_place(m, n, ab, lda, ldb, Moved<T>(op.conjugated), is_complex<T> && op.conjugated);
        return transpose_in_place(m, n, ab, lda, ldb, Scaled<T>(alpha, op.conjugated), true);
    }
    if (!one) return move_in_place(m, n, ab, lda, ldb, Scaled<T>(alpha, op.conjugated));
    if (lda != ldb || (is_complex<T> && op.conjugated)) move_in_place(m, n, ab, lda, ldb, Moved<T>(op.conjugated));
}

} // namespace ork::trans

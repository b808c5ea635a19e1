// SPDX-License-Identifier: MIT
// C <- alpha op(A) + beta op(B).
#include "trans/letters.h"
#include "trans/members.h"
#include "trans/plain.h"

namespace ork::trans {

extern "C" {
Call::imatcopy ORK_TRANS_MEMBER(imatcopy);
Call::omatcopy ORK_TRANS_MEMBER(omatcopy);
Call::omatadd_seq ORK_TRANS_MEMBER(omatadd_seq);
}

namespace {

// Rounded products, nothing skipped.
using Term = Source<T, Scaled<T>>;

Int strips(Int lda, Int ldb)
{
    constexpr Int size = sizeof(T);
    return lda > 0 && ldb > 0 ? strip_width(lda * size, ldb * size) : 8;
}

// C (m x n) <- a + b^T
void add_transposed(Int m, Int n, const Term& a, const Term& b, T* c, Int ldc)
{
    transpose_any<T>(n, m, strips(b.lda, ldc), b, SinkOfSums<T, Scaled<T>>{c, ldc, a});
}

// C (m x n) <- ab, which is C, and b of an array apart.
void add_into(Int m, Int n, bool transposed, const Term& b, T* c, Int ldc)
{
    using Same = Source<T, Moved<T>>;
    const Same same{c, ldc, Moved<T>(false)};
    if (transposed)
        transpose_any<T>(n, m, strips(b.lda, ldc), b, SinkOfSums<T, Moved<T>>{c, ldc, same});
    else
        plain<T>(m, n, b, SinkOfSums<T, Moved<T>>{c, ldc, same});
}

struct Operand {
    Operation op;
    T factor;
    const T* a;
    Int lda;

    Term term() const { return {a, lda, Scaled<T>(factor, op.conjugated)}; }
    char trans() const { return op.transposed ? op.conjugated ? 'C' : 'T' : op.conjugated ? 'R' : 'N'; }
};

// C (m x n) <- one term, of C's array or of another.
void copy_alone(Int m, Int n, const Operand& a, T* c, Int ldc)
{
    const Int rows = a.op.transposed ? n : m, cols = a.op.transposed ? m : n; // as stored
    if (c == a.a)
        ORK_TRANS_MEMBER(imatcopy)('C', a.trans(), rows, cols, a.factor, c, a.lda, ldc);
    else
        ORK_TRANS_MEMBER(omatcopy)('C', a.trans(), rows, cols, a.factor, a.a, a.lda, c, ldc);
}

// C <- alpha op(C) + beta op(C), n x n, one of them transposed.
void add_mirrored(Int n, const Operand& plain, const Operand& mirrored, T* c)
{
    const Scaled<T> f = plain.term().f, g = mirrored.term().f;
    for (Int j = 0; j < n; ++j)
        for (Int i = 0; i <= j; ++i) {
            T *const upper = c + i + j * plain.lda, *const lower = c + j + i * plain.lda;
            const Vec<T> x = load<1>(upper), y = load<1>(lower);
            store<1>(upper, sum(f(x), g(y))), store<1>(lower, sum(f(y), g(x)));
        }
}

// C <- alpha op(C) + beta op(C), m x n.
void add_to_itself(Int m, Int n, const Operand& a, const Operand& b, T* c, Int ldc)
{
    const bool transposed = a.op.transposed && b.op.transposed;
    const Int rows = transposed ? n : m, cols = transposed ? m : n; // as stored
    if (a.op.transposed != b.op.transposed)
        b.op.transposed ? add_mirrored(n, a, b, c) : add_mirrored(n, b, a, c);
    else
        plain<T>(rows, cols, SourceOfSums<T, Scaled<T>>{a.term(), b.term()}, Sink<T>{c, a.lda});
    if (transposed || a.lda != ldc)
        ORK_TRANS_MEMBER(imatcopy)('C', transposed ? 'T' : 'N', rows, cols, T(1), c, a.lda, ldc);
}

// C is the array of a, not that of b.
void add_in_place(Int m, Int n, const Operand& a, const Operand& b, T* c, Int ldc)
{
    if (a.op.transposed || a.lda != ldc) {
        copy_alone(m, n, a, c, ldc);
        return add_into(m, n, b.op.transposed, b.term(), c, ldc);
    }
    if (b.op.transposed)
        add_transposed(m, n, a.term(), b.term(), c, ldc);
    else
        plain<T>(m, n, SourceOfSums<T, Scaled<T>>{a.term(), b.term()}, Sink<T>{c, ldc});
}

} // namespace

ORK_TRANS_EXPORT(omatadd_seq)
(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda, T beta, const T* b, Int ldb,
 T* c, Int ldc)
{
    const Operand first{operation(transa), alpha, a, lda}, second{operation(transb), beta, b, ldb};
    if (rows <= 0 || cols <= 0 || !first.op.known || !second.op.known) return;
    const Int m = by_columns(ordering) ? rows : cols, n = by_columns(ordering) ? cols : rows;
    if (!first.op.transposed && !second.op.transposed)
        plain<T>(m, n, SourceOfSums<T, Scaled<T>>{first.term(), second.term()}, Sink<T>{c, ldc});
    else if (!first.op.transposed)
        add_transposed(m, n, first.term(), second.term(), c, ldc);
    else if (!second.op.transposed)
        add_transposed(m, n, second.term(), first.term(), c, ldc);
    else
        transpose_any<T>(n, m, strips(lda, ldc), SourceOfSums<T, Scaled<T>>{first.term(), second.term()},
                         Sink<T>{c, ldc});
}

ORK_TRANS_EXPORT(omatadd)
(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda, T beta, const T* b, Int ldb,
 T* c, Int ldc)
{
    if (rows == 0 || cols == 0) return;
    const Operand first{operation(transa), alpha, a, lda}, second{operation(transb), beta, b, ldb};
    const bool alone = alpha == T(0) || beta == T(0);
    if (alone || c == a || c == b) {
        if (rows < 0 || cols < 0 || !first.op.known || !second.op.known) return;
        const Int m = by_columns(ordering) ? rows : cols, n = by_columns(ordering) ? cols : rows;
        if (alone) return copy_alone(m, n, alpha == T(0) ? second : first, c, ldc);
        if (a == b) return add_to_itself(m, n, first, second, c, ldc);
        return c == a ? add_in_place(m, n, first, second, c, ldc) : add_in_place(m, n, second, first, c, ldc);
    }
    using Size = std::uint64_t;
    const auto m = static_cast<Size>(rows), n = static_cast<Size>(cols);
    if (m >= 17 && n >= 17 && m * n * sizeof(T) > 131072)
        return ORK_TRANS_DRIVER(omatadd_par)(ordering, transa, transb, rows, cols, alpha, a, lda, beta, b, ldb, c, ldc);
    ORK_TRANS_MEMBER(omatadd_seq)(ordering, transa, transb, rows, cols, alpha, a, lda, beta, b, ldb, c, ldc);
}

} // namespace ork::trans

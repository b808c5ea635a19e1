// SPDX-License-Identifier: MIT
// B <- alpha op(A).
#include "trans/letters.h"
#include "trans/members.h"
#include "trans/plain.h"
#include "trans/strided.h"

namespace ork::trans {
namespace {

// Below 17 rows or columns, or up to 32,768 bytes, threads would cost more than they save. Unsigned, as a size below
// zero is the driver's to refuse.
bool is_parallel(Int rows, Int cols)
{
    using Size = std::uint64_t;
    const auto m = static_cast<Size>(rows), n = static_cast<Size>(cols);
    return m >= 17 && n >= 17 && m * n * sizeof(T) > 32768;
}

struct Shape {
    Int m, n, lda, stridea, ldb, strideb;
    bool transposed;
};

template <class F>
void copy_by(const Shape& s, const T* a, T* b, const F& f, bool moves_bits)
{
    const bool unit = s.stridea == 1 && s.strideb == 1 && s.lda != 0;
    if (!s.transposed) {
        if (unit && moves_bits) return copy(s.m, s.n, a, s.lda, b, s.ldb);
        if (unit) {
            const bool whole = s.lda == s.m && s.ldb == s.m;
            return plain<T>(whole ? s.m * s.n : s.m, whole ? 1 : s.n, Source<T, F>{a, s.lda, f}, Sink<T>{b, s.ldb});
        }
        return copy_strided<T>(s.m, s.n, {a, s.stridea, s.lda}, {b, s.strideb, s.ldb}, f);
    }
    if (!unit) return transpose_strided<T>(s.m, s.n, {a, s.stridea, s.lda}, {b, s.strideb, s.ldb}, f);
    if (s.m == 1 || s.n == 1) return copy_strided<T>(s.m, s.n, {a, 1, s.lda}, {b, s.ldb, 1}, f);
    constexpr Int size = sizeof(T);
    transpose_any<T>(s.m, s.n, strip_width(s.lda * size, s.ldb * size), Source<T, F>{a, s.lda, f}, Sink<T>{b, s.ldb});
}

} // namespace

ORK_TRANS_EXPORT(omatcopy2_seq)
(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea, T* b, Int ldb, Int strideb)
{
    const Operation op = operation(trans);
    if (!op.known || rows <= 0 || cols <= 0 || !(by_columns(ordering) || by_rows(ordering))) return;
    const bool columns = by_columns(ordering);
    const Shape s{columns ? rows : cols, columns ? cols : rows, lda, stridea, ldb, strideb, op.transposed};
    if (is_one(alpha))
        copy_by(s, a, b, Moved<T>(op.conjugated), !(is_complex<T> && op.conjugated));
    else
        copy_by(s, a, b, Scaled<T>(alpha, op.conjugated), false);
}

ORK_TRANS_EXPORT(omatcopy2)
(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea, T* b, Int ldb, Int strideb)
{
    if (rows == 0 || cols == 0) return;
    if (is_parallel(rows, cols))
        return ORK_TRANS_DRIVER(omatcopy2_par)(ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb);
    ORK_TRANS_MEMBER(omatcopy2_seq)(ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb);
}

ORK_TRANS_EXPORT(omatcopy)
(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, T* b, Int ldb)
{
    if (rows == 0 || cols == 0) return;
    if (is_parallel(rows, cols))
        return ORK_TRANS_DRIVER(omatcopy2_par)(ordering, trans, rows, cols, alpha, a, lda, 1, b, ldb, 1);
    ORK_TRANS_MEMBER(omatcopy2_seq)(ordering, trans, rows, cols, alpha, a, lda, 1, b, ldb, 1);
}

} // namespace ork::trans

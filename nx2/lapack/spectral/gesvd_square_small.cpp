// SPDX-License-Identifier: MIT
// A = U diag(s) V^H: reduction to bidiagonal form, then QR sweeps.
#include "lapack/members.h"
#include "lapack/spectral/bidiagonal.h"
#include "lapack/spectral/bidiagonal_qr.h"
#include "lapack/spectral/scaling.h"

namespace ork::lapack {
namespace {

template <class T>
void transpose_conjugated(Int n, T* a, Int lda)
{
    for (Int j = 0; j < n; ++j) {
        a[j * lda + j] = conj(a[j * lda + j]);
        for (Int i = 0; i < j; ++i) {
            const T above = a[j * lda + i];
            a[j * lda + i] = conj(a[i * lda + j]);
            a[i * lda + j] = conj(above);
        }
    }
}

// Where one side's vectors go; null: nowhere.
struct Target {
    T* data;
    Int ld;

    Target(char job, T* a, Int lda, T* given, Int ldgiven)
    {
        const char letter = static_cast<char>(job & ~0x20);
        const bool own = letter == 'A' || letter == 'S';
        data = own ? given : letter == 'O' ? a : nullptr;
        ld = own ? ldgiven : lda;
    }
    Columns<R> columns(Int n) const
    {
        constexpr Int parts = is_complex<T> ? 2 : 1;
        return {data ? reals(data) : nullptr, parts * n, parts * ld};
    }
};

// work: tau of both sides and a row, n elements each; e: n - 1 numbers; turns: 4 n, which may overlap work.
Int decompose(Int n, T* a, Int lda, R* s, Target u, Target v, T* work, R* e, R* turns)
{
    const auto [largest, finite] = extent(n, n, a, lda);
    if (!finite) {
        for (Int i = 0; i < n; ++i) s[i] = not_a_number<R>;
        if (u.data) fill(n, n, T(not_a_number<R>), u.data, u.ld);
        if (v.data) fill(n, n, T(not_a_number<R>), v.data, v.ld);
        return n;
    }
    const R scale = scale_for(largest);
    if (scale != 1) multiply_matrix(n, n, scale, a, lda);
    T *tauq = work, *taup = work + n, *row = work + 2 * n;
    reduce_to_bidiagonal(n, a, lda, s, e, tauq, taup, row);
    // What is formed in place of a comes last.
    const bool left_first = u.data != a;
    if (u.data && left_first) form_left(n, a, lda, u.data, u.ld, tauq);
    if (v.data) form_right(n, a, lda, v.data, v.ld, taup);
    if (u.data && !left_first) form_left(n, a, lda, u.data, u.ld, tauq);
    const Int info = bidiagonal_svd(n, s, e, u.columns(n), v.columns(n), turns);
    if (v.data) transpose_conjugated(n, v.data, v.ld);
    if (scale != 1) {
        for (Int i = 0; i < n; ++i) s[i] /= scale;
        for (Int i = 0; i + 1 < n && info > 0; ++i) e[i] /= scale;
    }
    return info;
}

} // namespace

#if ORK_KERNEL_COMPLEX
ORK_LAPACK_EXPORT(gesvd_square_small)
(const char* jobu, const char* jobvt, const Int*, const Int* n, T* a, const Int* lda, R* s, T* u, const Int* ldu, T* vt,
 const Int* ldvt, T* work, const Int* lwork, R* rwork, Int* info)
{
    *info = 0;
    const T size(static_cast<R>(*n > 0 ? 3 * *n : 1));
    if (*lwork != -1 && *n > 0)
        *info = decompose(*n, a, *lda, s, Target(*jobu, a, *lda, u, *ldu), Target(*jobvt, a, *lda, vt, *ldvt), work,
                          rwork, rwork + *n);
    work[0] = size;
}
#else
ORK_LAPACK_EXPORT(gesvd_square_small)
(const char* jobu, const char* jobvt, const Int*, const Int* n, T* a, const Int* lda, R* s, T* u, const Int* ldu, T* vt,
 const Int* ldvt, T* work, const Int* lwork, Int* info)
{
    *info = 0;
    const T size = static_cast<R>(*n > 0 ? 5 * *n : 1);
    // work(2 ... n) are the superdiagonals.
    if (*lwork != -1 && *n > 0)
        *info = decompose(*n, a, *lda, s, Target(*jobu, a, *lda, u, *ldu), Target(*jobvt, a, *lda, vt, *ldvt),
                          work + *n, work + 1, work + *n);
    work[0] = size;
}
#endif

} // namespace ork::lapack

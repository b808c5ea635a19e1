// SPDX-License-Identifier: MIT
// Eigenvalues and eigenvectors of a small general real matrix: balancing, Hessenberg form, Schur form, substitution.
#include "lapack/members.h"

#if !ORK_KERNEL_COMPLEX
#include "lapack/rotation.h"
#include "lapack/spectral/balance.h"
#include "lapack/spectral/francis.h"
#include "lapack/spectral/hessenberg.h"
#include "lapack/spectral/scaling.h"
#include "lapack/spectral/schur_vectors.h"

namespace ork::lapack {
namespace {

// Norm 1; of a complex vector the component of largest modulus real.
void normalise(Int n, const T* wi, T* v, Int ldv)
{
    for (Int j = 0; j < n; ++j) {
        T *re = v + j * ldv, *im = re + ldv;
        if (wi[j] == 0) {
            multiply(n, 1 / norm(n, re), re);
            continue;
        }
        ++j;
        const T inverse = 1 / modulus(norm(n, re), norm(n, im));
        multiply(n, inverse, re);
        multiply(n, inverse, im);
        Int largest = 0;
        T most = -1;
        for (Int i = 0; i < n; ++i)
            if (const T size = re[i] * re[i] + im[i] * im[i]; size > most) most = size, largest = i;
        const Rotation<T> turn = rotation(re[largest], im[largest]);
        rotate(n, re, im, turn.c, turn.s);
        im[largest] = 0;
    }
}

struct Vectors {
    T* data; // or null
    Int ld;
};

// work: 4 n numbers, 3 n without vectors.
Int decompose(Int n, T* a, Int lda, T* wr, T* wi, Vectors left, Vectors right, T* work)
{
    const auto [largest, finite] = extent(n, n, a, lda);
    if (!finite) {
        for (Int i = 0; i < n; ++i) wr[i] = wi[i] = not_a_number<T>;
        for (const Vectors& v : {left, right})
            if (v.data) fill(n, n, not_a_number<T>, v.data, v.ld);
        return n;
    }
    const T scale = scale_for(largest);
    if (scale != 1) multiply_matrix(n, n, scale, a, lda);
    T *tau = work + n, *scratch = work + 2 * n;
    const Balance<T> balanced = balance(n, a, lda, work);
    reduce_to_hessenberg(n, balanced.lo, balanced.hi, a, lda, tau);
    const Vectors schur_vectors = left.data ? left : right;
    if (schur_vectors.data)
        form_hessenberg_vectors(n, balanced.lo, balanced.hi, a, lda, tau, schur_vectors.data, schur_vectors.ld);
    for (Int j = 0; j < n; ++j)
        for (Int i = j + 2; i < n; ++i) a[j * lda + i] = 0;
    const Int info = schur_form(n, balanced.lo, balanced.hi, a, lda, schur_vectors.data != nullptr, wr, wi,
                                schur_vectors.data, schur_vectors.ld);
    if (info == 0 && left.data && right.data)
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i) right.data[j * right.ld + i] = left.data[j * left.ld + i];
    if (info == 0 && right.data) {
        right_eigenvectors(n, a, lda, right.data, right.ld, scratch);
        balanced.undo(right.data, right.ld, false);
        normalise(n, wi, right.data, right.ld);
    }
    if (info == 0 && left.data) {
        left_eigenvectors(n, a, lda, left.data, left.ld, scratch);
        balanced.undo(left.data, left.ld, true);
        normalise(n, wi, left.data, left.ld);
    }
    if (scale != 1)
        for (Int i = 0; i < n; ++i) wr[i] /= scale, wi[i] /= scale;
    return info;
}

bool wanted(char job) { return (job & ~0x20) == 'V'; }

} // namespace

ORK_LAPACK_EXPORT(geev_small)
(const char* jobvl, const char* jobvr, const Int* n, T* a, const Int* lda, T* wr, T* wi, T* vl, const Int* ldvl, T* vr,
 const Int* ldvr, T* work, const Int* lwork, Int* info)
{
    *info = 0;
    const bool left = wanted(*jobvl), right = wanted(*jobvr);
    if (*lwork != -1 && *n > 0)
        *info = decompose(*n, a, *lda, wr, wi, {left ? vl : nullptr, *ldvl}, {right ? vr : nullptr, *ldvr}, work);
    work[0] = static_cast<T>(*n > 0 ? (left || right ? 4 : 3) * *n : 1);
}

} // namespace ork::lapack
#endif

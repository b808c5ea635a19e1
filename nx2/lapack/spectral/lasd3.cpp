// SPDX-License-Identifier: MIT
// The secular step of the divide-and-conquer singular value decomposition: roots, the z for which they are exact (Gu
// and Eisenstat, "A divide-and-conquer algorithm for the bidiagonal SVD", SIAM J. Matrix Anal. Appl. 16, 1995),
// vectors.
#include "blas/gemm/multiply.h"
#include "lapack/members.h"
#include "lapack/spectral/secular.h"

namespace ork::lapack {
namespace {

struct Matrix {
    R* data;
    Int ld;

    R* column(Int j) const { return data + j * ld; }
};
struct ConstMatrix {
    const R* data;
    Int ld;

    const R* column(Int j) const { return data + j * ld; }
};

// C = A B or C += A B; A is m x depth.
void multiply_matrices(Int m, Int n, Int depth, const R* a, Int lda, const R* b, Int ldb, R* c, Int ldc, bool overwrite)
{
    if (m <= 0 || n <= 0 || (depth <= 0 && !overwrite)) return;
    if (depth <= 0) {
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < m; ++i) c[j * ldc + i] = 0;
        return;
    }
    gemm::multiply(gemm::Product<R>{m, n, depth, R(1), gemm::rows_of(gemm::Op('N'), a, lda),
                                    gemm::columns_of(gemm::Op('N'), b, ldb), c, ldc, overwrite});
}

// z(i)^2 = (prod over j of (d(i) - sigma(j)) (d(i) + sigma(j))) / (prod over j != i of (d(i) - d(j)) (d(i) + d(j))),
// with factors paired so that each quotient is moderate; its sign is that of the old z.
void recompute(Int k, const R* d, Matrix differences, Matrix sums, R* z, const R* old)
{
    for (Int i = 0; i < k; ++i) z[i] = differences.column(k - 1)[i] * sums.column(k - 1)[i];
    for (Int j = 0; j + 1 < k; ++j) {
        const R *difference = differences.column(j), *sum = sums.column(j);
        const auto divide = [&](Int first, Int end, R other) {
            const Vec<R> pole = broadcast(other);
            each<R>(end - first, [&]<int w>(Int offset) {
                const Int i = first + offset;
                const Vec<R> quotient = load<w>(difference + i) * load<w>(sum + i) / (load<w>(d + i) - pole);
                store<w>(z + i, load<w>(z + i) * (quotient / (load<w>(d + i) + pole)));
            });
        };
        divide(0, j + 1, d[j + 1]);
        divide(j + 1, k, d[j]);
    }
    for (Int i = 0; i < k; ++i) z[i] = with_sign(root(absolute(z[i])), old[i]);
}

struct Step {
    Int nl, nr, sqre, k;
    const Int *idxc, *ctot;

    // Rows of u above the row of the coupling and columns of vt up to its own come from the upper half, whose vectors
    // are columns 2 ... 1 + ctot(1) and, with those that reach into both halves, the last ctot(3) before k.
    void left(ConstMatrix u2, Matrix q, Matrix u) const
    {
        const Int both = 1 + ctot[0] + ctot[1], lower = 1 + ctot[0], n = nl + nr + 1;
        if (k == 2) return multiply_matrices(n, k, k, u2.data, u2.ld, q.data, q.ld, u.data, u.ld, true);
        multiply_matrices(nl, k, ctot[0], u2.column(1), u2.ld, q.data + 1, q.ld, u.data, u.ld, true);
        multiply_matrices(nl, k, ctot[2], u2.column(both), u2.ld, q.data + both, q.ld, u.data, u.ld, false);
        for (Int j = 0; j < k; ++j) u.column(j)[nl] = q.column(j)[0];
        multiply_matrices(nr, k, ctot[1] + ctot[2], u2.column(lower) + nl + 1, u2.ld, q.data + lower, q.ld,
                          u.data + nl + 1, u.ld, true);
    }
    void right(ConstMatrix vt2, Matrix q, Matrix vt) const
    {
        const Int both = 1 + ctot[0] + ctot[1], lower = 1 + ctot[0], m = nl + nr + 1 + sqre;
        if (k == 2) return multiply_matrices(k, m, k, q.data, q.ld, vt2.data, vt2.ld, vt.data, vt.ld, true);
        multiply_matrices(k, nl + 1, lower, q.data, q.ld, vt2.data, vt2.ld, vt.data, vt.ld, true);
        multiply_matrices(k, nl + 1, ctot[2], q.column(both), q.ld, vt2.data + both, vt2.ld, vt.data, vt.ld, false);
        // The first vector belongs to both halves; the rest of the lower one's follow those of the upper.
        const Int first = nl + 1, columns = nr + sqre;
        multiply_matrices(k, columns, 1, q.data, q.ld, vt2.column(first), vt2.ld, vt.column(first), vt.ld, true);
        multiply_matrices(k, columns, ctot[1] + ctot[2], q.column(lower), q.ld, vt2.column(first) + lower, vt2.ld,
                          vt.column(first), vt.ld, false);
    }
};

Int secular_step(const Step& step, R* d, Matrix q, const R* dsigma, Matrix u, ConstMatrix u2, Matrix vt,
                 ConstMatrix vt2, R* z)
{
    const Int k = step.k, n = step.nl + step.nr + 1, m = n + step.sqre;
    if (k == 1) {
        d[0] = absolute(z[0]);
        for (Int j = 0; j < m; ++j) vt.column(j)[0] = vt2.column(j)[0];
        for (Int i = 0; i < n; ++i) u.data[i] = z[0] > 0 ? u2.data[i] : -u2.data[i];
        return 0;
    }
    R* old = q.data;
    const R size = norm(k, z);
    for (Int i = 0; i < k; ++i) old[i] = z[i], z[i] /= size;
    const R rho = size * size;
    for (Int j = 0; j < k; ++j)
        if (!secular::root_and_distances(k, j, dsigma, z, rho, d[j], u.column(j), vt.column(j))) return 1;
    recompute(k, dsigma, u, vt, z, old);
    for (Int i = 0; i < k; ++i) {
        R *left = u.column(i), *right = vt.column(i), *to = q.column(i);
        each<R>(k, [&]<int w>(Int j) {
            const Vec<R> component = load<w>(z + j) / load<w>(left + j) / load<w>(right + j);
            store<w>(right + j, component);
            store<w>(left + j, load<w>(dsigma + j) * component);
        });
        left[0] = -1;
        const R length = norm(k, left);
        to[0] = left[0] / length;
        for (Int j = 1; j < k; ++j) to[j] = left[step.idxc[j] - 1] / length;
    }
    step.left(u2, q, u);
    for (Int i = 0; i < k; ++i) {
        const R* right = vt.column(i);
        const R length = norm(k, right);
        q.data[i] = right[0] / length;
        for (Int j = 1; j < k; ++j) q.column(j)[i] = right[step.idxc[j] - 1] / length;
    }
    step.right(vt2, q, vt);
    return 0;
}

} // namespace

ORK_LAPACK_EXPORT(lasd3)
(const Int* nl, const Int* nr, const Int* sqre, const Int* k, R* d, R* q, const Int* ldq, const R* dsigma, R* u,
 const Int* ldu, const R* u2, const Int* ldu2, R* vt, const Int* ldvt, const R* vt2, const Int* ldvt2, const Int* idxc,
 const Int* ctot, R* z, Int* info)
{
    *info = secular_step({*nl, *nr, *sqre, *k, idxc, ctot}, d, {q, *ldq}, dsigma, {u, *ldu}, {u2, *ldu2}, {vt, *ldvt},
                         {vt2, *ldvt2}, z);
}

} // namespace ork::lapack

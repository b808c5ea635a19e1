// SPDX-License-Identifier: MIT
// Recursive factorization (Toledo, "Locality of reference in LU decomposition with partial pivoting", 1997): the left
// half of the columns, a triangular solve and a product for the right half, then the right half. Nearly all work is in
// dgemm.
#include "demos/lu.h"

#include <stdexcept>

#include "ork/blas.h"

namespace ork::tool {
namespace {

constexpr int few = 8; // columns that are worth no recursion
constexpr int one = 1;
constexpr double plus = 1, minus = -1;

// Exchanges rows first .. last - 1 of `columns` columns with their pivots.
void exchange(int columns, double* a, int lda, const int* pivot, int first, int last)
{
    for (int i = first; i < last; ++i)
        if (pivot[i] != i) dswap_(&columns, a + i, &lda, a + pivot[i], &lda);
}

// Column after column of an m x n matrix.
void factor_few(int m, int n, double* a, int lda, int* pivot)
{
    for (int j = 0; j < n; ++j) {
        double* column = a + static_cast<long>(j) * lda;
        const int rows = m - j, below = rows - 1, right = n - j - 1;
        pivot[j] = j + idamax_(&rows, column + j, &one) - 1;
        const double largest = column[pivot[j]];
        if (!(largest < 0 || largest > 0)) throw std::runtime_error("the matrix is singular");
        exchange(n, a, lda, pivot, j, j + 1);
        const double scale = 1 / largest;
        dscal_(&below, &scale, column + j + 1, &one);
        dger_(&below, &right, &minus, column + j + 1, &one, column + lda + j, &lda, column + lda + j + 1, &lda);
    }
}

void factor_columns(int m, int n, double* a, int lda, int* pivot)
{
    if (n <= few) return factor_few(m, n, a, lda, pivot);
    const int left = n / 2, right = n - left, below = m - left;
    double* top = a + static_cast<long>(left) * lda; // right of the left half
    factor_columns(m, left, a, lda, pivot);
    exchange(right, top, lda, pivot, 0, left);
    dtrsm_("L", "L", "N", "U", &left, &right, &plus, a, &lda, top, &lda);
    dgemm_("N", "N", &below, &right, &left, &minus, a + left, &lda, top, &lda, &plus, top + left, &lda);
    factor_columns(below, right, top + left, lda, pivot + left);
    for (int i = left; i < n; ++i) pivot[i] += left;
    exchange(left, a, lda, pivot, left, n);
}

} // namespace

Factors factor(int n, std::vector<double> a)
{
    Factors f{n, std::move(a), std::vector<int>(static_cast<size_t>(n))};
    factor_columns(n, n, f.lu.data(), n, f.pivot.data());
    return f;
}

std::vector<double> solve(const Factors& f, int count, std::vector<double> b)
{
    exchange(count, b.data(), f.n, f.pivot.data(), 0, f.n);
    dtrsm_("L", "L", "N", "U", &f.n, &count, &plus, f.lu.data(), &f.n, b.data(), &f.n);
    dtrsm_("L", "U", "N", "N", &f.n, &count, &plus, f.lu.data(), &f.n, b.data(), &f.n);
    return b;
}

} // namespace ork::tool

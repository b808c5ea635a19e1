// SPDX-License-Identifier: MIT
#include "demos/cg.h"

#include <cmath>
#include <fmt/format.h>
#include <stdexcept>

#include "ork/cblas.h"
#include "ork/spblas.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

void require(int64_t status)
{
    if (status != ORK_SPBLAS_SUCCESS) throw std::runtime_error(ork_spblas_last_error()->text);
}

double dot(const Vector& x, const Vector& y)
{
    return cblas_ddot(static_cast<int>(x.size()), x.data(), 1, y.data(), 1);
}
double norm(const Vector& x) { return cblas_dnrm2(static_cast<int>(x.size()), x.data(), 1); }
// y += alpha x
void add(double alpha, const Vector& x, Vector& y)
{
    cblas_daxpy(static_cast<int>(x.size()), alpha, x.data(), 1, y.data(), 1);
}

size_t begin(const peers::CsrMatrix& a, int row) { return static_cast<size_t>(a.ptr[static_cast<size_t>(row)]); }
size_t end(const peers::CsrMatrix& a, int row) { return static_cast<size_t>(a.ptr[static_cast<size_t>(row) + 1]); }

// Columns as rows.
peers::CsrMatrix transpose(const peers::CsrMatrix& a)
{
    peers::CsrMatrix t;
    t.rows = a.columns;
    t.columns = a.rows;
    t.ptr.assign(static_cast<size_t>(a.columns) + 1, 0);
    for (const int column : a.col) ++t.ptr[static_cast<size_t>(column) + 1];
    for (size_t i = 1; i < t.ptr.size(); ++i) t.ptr[i] += t.ptr[i - 1];
    t.col.resize(a.entries());
    t.val.resize(a.entries());
    std::vector<int> next = t.ptr;
    for (int i = 0; i < a.rows; ++i)
        for (size_t k = begin(a, i); k < end(a, i); ++k) {
            const auto to = static_cast<size_t>(next[static_cast<size_t>(a.col[k])]++);
            t.col[to] = i;
            t.val[to] = a.val[k];
        }
    return t;
}

// Column k of the factor is final once the columns before it have been subtracted. `columns` holds the columns of the
// lower triangle, each from the diagonal down; false when a pivot is not positive.
bool factorize(peers::CsrMatrix& columns)
{
    for (int k = 0; k < columns.rows; ++k) {
        const size_t diagonal = begin(columns, k), after = end(columns, k);
        if (!(columns.val[diagonal] > 0)) return false;
        const double pivot = std::sqrt(columns.val[diagonal]);
        columns.val[diagonal] = pivot;
        for (size_t i = diagonal + 1; i < after; ++i) columns.val[i] /= pivot;
        for (size_t j = diagonal + 1; j < after; ++j) {
            // the part of column k from row j down, subtracted where column j has entries
            size_t to = begin(columns, columns.col[j]);
            const size_t last = end(columns, columns.col[j]);
            for (size_t i = j; i < after; ++i) {
                while (to < last && columns.col[to] < columns.col[i]) ++to;
                if (to < last && columns.col[to] == columns.col[i]) columns.val[to] -= columns.val[i] * columns.val[j];
            }
        }
    }
    return true;
}

} // namespace

void multiply(const peers::CsrMatrix& lower, const Vector& x, Vector& y)
{
    constexpr ork_spblas_kind kind = {ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};
    y.resize(x.size());
    require(ork_spblas_lp64_dcsrmv(ORK_SPBLAS_NO_TRANS, kind, lower.rows, lower.rows, 1, lower.val.data(),
                                   lower.col.data(), lower.ptr.data(), lower.ptr.data() + 1, x.data(), 0, y.data()));
}

void solve(const peers::CsrMatrix& lower, bool transposed, const Vector& x, Vector& y)
{
    constexpr ork_spblas_kind kind = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};
    y.resize(x.size());
    require(ork_spblas_lp64_dcsrsv(transposed ? ORK_SPBLAS_TRANS : ORK_SPBLAS_NO_TRANS, kind, lower.rows, lower.rows, 1,
                                   lower.val.data(), lower.col.data(), lower.ptr.data(), lower.ptr.data() + 1, x.data(),
                                   y.data()));
}

GaussSeidel::GaussSeidel(const peers::CsrMatrix& lower) : lower_(lower)
{
    for (int i = 0; i < lower.rows; ++i) diagonal_.push_back(lower.val[end(lower, i) - 1]);
}

void GaussSeidel::apply(const Vector& r, Vector& z) const
{
    solve(lower_, false, r, half_);
    for (size_t i = 0; i < half_.size(); ++i) half_[i] *= diagonal_[i];
    solve(lower_, true, half_, z);
}

IncompleteCholesky::IncompleteCholesky(const peers::CsrMatrix& lower)
{
    const peers::CsrMatrix columns = transpose(lower);
    for (; shift_ <= 1; shift_ = shift_ == 0 ? 1e-4 : 2 * shift_) {
        peers::CsrMatrix trial = columns;
        for (int k = 0; k < trial.rows; ++k) trial.val[begin(trial, k)] *= 1 + shift_;
        if (!factorize(trial)) continue;
        factor_ = transpose(trial);
        return;
    }
    throw std::runtime_error("the matrix has no incomplete Cholesky factor, even with its diagonal doubled");
}

void IncompleteCholesky::apply(const Vector& r, Vector& z) const
{
    solve(factor_, false, r, half_);
    solve(factor_, true, half_, z);
}

Solution conjugate_gradients(const peers::CsrMatrix& lower, const Vector& b, const Preconditioner& m, double tolerance,
                             int most_iterations)
{
    const double start = peers::now(peers::Clock::wall), size = norm(b);
    Solution s;
    s.x.assign(b.size(), 0);
    Vector r = b, z, p, q;
    m.apply(r, z);
    p = z;
    double rz = dot(r, z);
    s.history.push_back(1);
    while (s.iterations() < most_iterations && !(s.history.back() <= tolerance)) {
        multiply(lower, p, q);
        const double step = rz / dot(p, q);
        add(step, p, s.x);
        add(-step, q, r);
        m.apply(r, z);
        const double before = rz;
        rz = dot(r, z);
        cblas_dscal(static_cast<int>(p.size()), rz / before, p.data(), 1);
        add(1, z, p);
        s.history.push_back(norm(r) / size);
        if (std::isnan(s.history.back())) break;
    }
    s.reached = s.history.back() <= tolerance;
    s.seconds = peers::now(peers::Clock::wall) - start;
    return s;
}

} // namespace ork::tool

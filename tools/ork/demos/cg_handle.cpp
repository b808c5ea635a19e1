// SPDX-License-Identifier: MIT
#include "demos/cg_handle.h"

#include <cmath>

#include "ork/cblas.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr ork_sparse_kind general = {ORK_SPBLAS_GENERAL, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT};

} // namespace

HandleSolver::HandleSolver(const peers::CsrMatrix& matrix, int iterations) : handle_(matrix)
{
    const double start = peers::now(peers::Clock::wall);
    require_sparse(ork_sparse_set_dotmv_hint(handle_.get(), ORK_SPBLAS_NO_TRANS, general, iterations));
    require_sparse(ork_sparse_set_symgs_hint(handle_.get(), ORK_SPBLAS_NO_TRANS, general, iterations));
    require_sparse(ork_sparse_optimize(handle_.get()));
    analysis_ = peers::now(peers::Clock::wall) - start;
}

double HandleSolver::multiply(const Vector& x, Vector& y) const
{
    double dot = 0;
    y.resize(x.size());
    require_sparse(ork_sparse_d_dotmv(ORK_SPBLAS_NO_TRANS, 1, handle_.get(), general, x.data(), 0, y.data(), &dot));
    return dot;
}

void HandleSolver::sweep(const Vector& r, Vector& z) const
{
    z.assign(r.size(), 0);
    require_sparse(ork_sparse_d_symgs(ORK_SPBLAS_NO_TRANS, handle_.get(), general, 1, r.data(), z.data()));
}

Solution HandleSolver::solve(const Vector& b, double tolerance, int most_iterations) const
{
    const auto n = static_cast<int>(b.size());
    const double start = peers::now(peers::Clock::wall), size = cblas_dnrm2(n, b.data(), 1);
    Solution s;
    s.x.assign(b.size(), 0);
    Vector r = b, z, p, q;
    sweep(r, z);
    p = z;
    double rz = cblas_ddot(n, r.data(), 1, z.data(), 1);
    s.history.push_back(1);
    while (s.iterations() < most_iterations && !(s.history.back() <= tolerance)) {
        const double step = rz / multiply(p, q);
        cblas_daxpy(n, step, p.data(), 1, s.x.data(), 1);
        cblas_daxpy(n, -step, q.data(), 1, r.data(), 1);
        sweep(r, z);
        const double before = rz;
        rz = cblas_ddot(n, r.data(), 1, z.data(), 1);
        cblas_daxpby(n, 1, z.data(), 1, rz / before, p.data(), 1);
        s.history.push_back(cblas_dnrm2(n, r.data(), 1) / size);
        if (std::isnan(s.history.back())) break;
    }
    s.reached = s.history.back() <= tolerance;
    s.seconds = peers::now(peers::Clock::wall) - start;
    return s;
}

} // namespace ork::tool

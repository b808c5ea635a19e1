// SPDX-License-Identifier: MIT
// Eigen's product of sparse matrices, with sorted rows as it gives them.
#include <Eigen/Core>
#include <Eigen/SparseCore>

#include "peers/spgemm.h"

namespace ork::peers {
namespace {

class EigenSpgemm : public Spgemm {
public:
    explicit EigenSpgemm(const CsrMatrix& a)
        : a_(a.rows, a.columns, a.ptr.back(), a.ptr.data(), a.col.data(), a.val.data())
    {
    }
    void run() override
    {
        const Matrix c = a_ * a_;
        rows_ = c.rows(); // so that it is not dropped
    }
    std::vector<double> times(const std::vector<double>& x) override
    {
        const Matrix c = a_ * a_;
        std::vector<double> y(static_cast<size_t>(c.rows()));
        Eigen::Map<Eigen::VectorXd>(y.data(), c.rows()) = c * Eigen::Map<const Eigen::VectorXd>(x.data(), c.cols());
        return y;
    }

private:
    using Matrix = Eigen::SparseMatrix<double, Eigen::RowMajor, int>;
    Eigen::Map<const Matrix> a_;
    Eigen::Index rows_ = 0;
};

} // namespace

std::unique_ptr<Spgemm> eigen_spgemm(const CsrMatrix& a) { return std::make_unique<EigenSpgemm>(a); }

} // namespace ork::peers

// SPDX-License-Identifier: MIT
// Eigen's sparse module on the arrays as they are: compressed rows, 32- or 64-bit indices.
#include <Eigen/Core>
#include <Eigen/SparseCore>

#include "peers/sparse.h"

namespace ork::peers {
namespace {

template <class Int, class T>
class EigenSparse : public SparseOperation {
public:
    using Matrix = Eigen::Map<const Eigen::SparseMatrix<T, Eigen::RowMajor, Int>>;
    using Vector = Eigen::Matrix<T, Eigen::Dynamic, 1>;
    template <int order>
    using Dense = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic, order>;

    EigenSparse(const SparseOperands& o, const Int* col, const Int* ptr)
        : c_(o.what), a_(o.m, o.n, ptr[o.m], ptr, col, static_cast<const T*>(o.val)), x_(static_cast<const T*>(o.x)),
          y_(static_cast<T*>(o.y)), dot_(static_cast<T*>(o.dot))
    {
    }
    void run() override
    {
        multiply_or_solve();
        if (c_.routine != SparseCase::Routine::dotmv) return;
        *dot_ = Eigen::Map<const Vector>(x_, a_.cols()).dot(Eigen::Map<const Vector>(y_, a_.rows()));
    }

private:
    void multiply_or_solve()
    {
        const bool transposed = c_.letter == 'T';
        const Eigen::Map<const Vector> x(x_, transposed ? a_.rows() : a_.cols());
        Eigen::Map<Vector> y(y_, transposed ? a_.cols() : a_.rows());
        switch (c_.letter) {
        case 'N':
            y.noalias() = a_ * x;
            return;
        case 'T':
            y.noalias() = a_.transpose() * x;
            return;
        case 'S':
            y.noalias() = a_.template selfadjointView<Eigen::Lower>() * x;
            return;
        case 'R':
            return many<Eigen::RowMajor>();
        case 'C':
            return many<Eigen::ColMajor>();
        case 'L':
            y = x;
            return a_.template triangularView<Eigen::Lower>().solveInPlace(y);
        case 'U':
            y = x;
            return a_.template triangularView<Eigen::Upper>().solveInPlace(y);
        }
    }

    template <int order>
    void many()
    {
        const Eigen::Map<const Dense<order>> b(x_, a_.cols(), c_.nrhs);
        Eigen::Map<Dense<order>>(y_, a_.rows(), c_.nrhs).noalias() = a_ * b;
    }

    SparseCase c_;
    Matrix a_;
    const T* x_;
    T *y_, *dot_;
};

template <class T>
std::unique_ptr<SparseOperation> make(const SparseOperands& o)
{
    if (o.what.wide) return std::make_unique<EigenSparse<int64_t, T>>(o, o.col64, o.ptr64);
    return std::make_unique<EigenSparse<int, T>>(o, o.col, o.ptr);
}

} // namespace

std::unique_ptr<SparseOperation> eigen_sparse(const SparseOperands& o)
{
    if (o.what.routine == SparseCase::Routine::symgs) return nullptr;
    return o.what.single ? make<float>(o) : make<double>(o);
}

} // namespace ork::peers

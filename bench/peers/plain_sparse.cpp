// SPDX-License-Identifier: MIT
// The loops that a textbook has, left to the compiler (-O3 -msse4.2).
#include <algorithm>

#include "peers/sparse.h"

namespace ork::peers {
namespace {

template <class Int, class T>
struct Csr {
    Int m, n;
    const T* val;
    const Int *col, *ptr;
};

template <class Int, class T>
void mv(Csr<Int, T> a, const T* x, T* y)
{
    for (Int i = 0; i < a.m; ++i) {
        T sum = 0;
        for (Int k = a.ptr[i]; k < a.ptr[i + 1]; ++k) sum += a.val[k] * x[a.col[k]];
        y[i] = sum;
    }
}

template <class Int, class T>
void mv_transposed(Csr<Int, T> a, const T* x, T* y)
{
    std::fill_n(y, a.n, T(0));
    for (Int i = 0; i < a.m; ++i)
        for (Int k = a.ptr[i]; k < a.ptr[i + 1]; ++k) y[a.col[k]] += a.val[k] * x[i];
}

// The diagonal ends a row of the lower triangle.
template <class Int, class T>
void mv_symmetric(Csr<Int, T> a, const T* x, T* y)
{
    for (Int i = 0; i < a.m; ++i) {
        const Int diagonal = a.ptr[i + 1] - 1;
        T sum = 0;
        for (Int k = a.ptr[i]; k < diagonal; ++k) {
            sum += a.val[k] * x[a.col[k]];
            y[a.col[k]] += a.val[k] * x[i];
        }
        y[i] = sum + a.val[diagonal] * x[i];
    }
}

template <class Int, class T>
T dotmv(Csr<Int, T> a, const T* x, T* y)
{
    T dot = 0;
    for (Int i = 0; i < a.m; ++i) {
        T sum = 0;
        for (Int k = a.ptr[i]; k < a.ptr[i + 1]; ++k) sum += a.val[k] * x[a.col[k]];
        y[i] = sum;
        dot += x[i] * sum;
    }
    return dot;
}

template <class T>
T dot_of(size_t n, const T* x, const T* y)
{
    T dot = 0;
    for (size_t i = 0; i < n; ++i) dot += x[i] * y[i];
    return dot;
}

template <class Int, class T>
void relax(Csr<Int, T> a, Int i, T sum, T* y)
{
    T diagonal = 1;
    for (Int k = a.ptr[i]; k < a.ptr[i + 1]; ++k) {
        if (a.col[k] == i)
            diagonal = a.val[k];
        else
            sum -= a.val[k] * y[a.col[k]];
    }
    y[i] = sum / diagonal;
}

template <class Int, class T>
void symmetric_sweep(Csr<Int, T> a, const T* b, T* y)
{
    for (Int i = 0; i < a.m; ++i) relax(a, i, b[i], y);
    for (Int i = a.m; i-- > 0;) relax(a, i, b[i], y);
}

template <class Int, class T>
void mm_rows(Csr<Int, T> a, int nrhs, const T* b, T* c)
{
    for (Int i = 0; i < a.m; ++i) {
        T* row = c + i * nrhs;
        std::fill_n(row, nrhs, T(0));
        for (Int k = a.ptr[i]; k < a.ptr[i + 1]; ++k)
            for (int j = 0; j < nrhs; ++j) row[j] += a.val[k] * b[a.col[k] * nrhs + j];
    }
}

template <class Int, class T>
void solve_lower(Csr<Int, T> a, const T* x, T* y)
{
    for (Int i = 0; i < a.m; ++i) {
        const Int diagonal = a.ptr[i + 1] - 1;
        T sum = x[i];
        for (Int k = a.ptr[i]; k < diagonal; ++k) sum -= a.val[k] * y[a.col[k]];
        y[i] = sum / a.val[diagonal];
    }
}

template <class Int, class T>
void solve_upper(Csr<Int, T> a, const T* x, T* y)
{
    for (Int i = a.m; i-- > 0;) {
        T sum = x[i];
        for (Int k = a.ptr[i] + 1; k < a.ptr[i + 1]; ++k) sum -= a.val[k] * y[a.col[k]];
        y[i] = sum / a.val[a.ptr[i]];
    }
}

template <class Int, class T>
class Plain : public SparseOperation {
public:
    Plain(const SparseOperands& o, const Int* col, const Int* ptr)
        : c_(o.what), a_{o.m, o.n, static_cast<const T*>(o.val), col, ptr}, x_(static_cast<const T*>(o.x)),
          y_(static_cast<T*>(o.y)), dot_(static_cast<T*>(o.dot))
    {
    }
    void run() override
    {
        if (c_.routine == SparseCase::Routine::symgs) return symmetric_sweep(a_, x_, y_);
        if (c_.routine == SparseCase::Routine::dotmv && c_.letter == 'N') {
            *dot_ = dotmv(a_, x_, y_);
            return;
        }
        multiply_or_solve();
        if (c_.routine == SparseCase::Routine::dotmv) *dot_ = dot_of(static_cast<size_t>(a_.m), x_, y_);
    }

private:
    void multiply_or_solve()
    {
        switch (c_.letter) {
        case 'N':
            return mv(a_, x_, y_);
        case 'T':
            return mv_transposed(a_, x_, y_);
        case 'S':
            return mv_symmetric(a_, x_, y_);
        case 'R':
            return mm_rows(a_, c_.nrhs, x_, y_);
        case 'C':
            for (Int j = 0; j < c_.nrhs; ++j) mv(a_, x_ + j * a_.n, y_ + j * a_.m);
            return;
        case 'L':
            return solve_lower(a_, x_, y_);
        case 'U':
            return solve_upper(a_, x_, y_);
        }
    }

    SparseCase c_;
    Csr<Int, T> a_;
    const T* x_;
    T *y_, *dot_;
};

template <class T>
std::unique_ptr<SparseOperation> make(const SparseOperands& o)
{
    if (o.what.wide) return std::make_unique<Plain<int64_t, T>>(o, o.col64, o.ptr64);
    return std::make_unique<Plain<int, T>>(o, o.col, o.ptr);
}

} // namespace

std::unique_ptr<SparseOperation> plain_sparse(const SparseOperands& o)
{
    return o.what.single ? make<float>(o) : make<double>(o);
}

} // namespace ork::peers

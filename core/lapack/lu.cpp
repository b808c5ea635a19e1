// SPDX-License-Identifier: MIT
// LU by recursion over the columns: the left half, the rows of U right of it, the product that the right half loses,
// the right half. Panels of a few columns are a kernel's. Toledo, "Locality of reference in LU decomposition with
// partial pivoting", 1997; Gustavson, "Recursion leads to automatic variable blocking", 1997.
#include "lapack/crossover.h"
#include "lapack/drivers.h"
#include "lapack/instantiate.h"
#include "lapack/interchange.h"
#include "lapack/kernels.h"
#include "ork/ork.h"

namespace ork::lapack {

namespace {

// With row interchanges: pivots number `first` on receive rows that count from 1 in the caller's matrix, in which this
// one begins at row `first` + 1.
template <class T>
class Pivoting {
public:
    explicit Pivoting(Pivots ipiv) : ipiv_(ipiv) {}

    Int panel(Int m, Int n, Matrix<T> a, Int first) const
    {
        Int rows[lu_panel], info = 0;
        kernels::getrf_small<T>(&m, &n, a.data, &a.lead, rows, &info);
        for (Int i = 0; i < std::min(m, n); ++i) ipiv_.set(first + i, first + rows[i]);
        return info;
    }
    // The exchanges first + 1 .. first + count in n other columns, from the row `base` on that `a` begins with.
    void exchange(Int n, Matrix<T> a, Int first, Int count, Int base) const
    {
        exchange_rows(n, a, ipiv_, first, count, base, Order::forward);
    }

private:
    Pivots ipiv_;
};

template <class T>
class NoPivoting {
public:
    Int panel(Int m, Int n, Matrix<T> a, Int) const
    {
        Int info = 0;
        kernels::getrfnp_small<T>(&m, &n, a.data, &a.lead, &info);
        return info;
    }
    void exchange(Int, Matrix<T>, Int, Int, Int) const {}
};

// The columns right of `done` factored ones, above and below.
template <class T, class Way>
void update(const Way& way, Int m, Int done, Int n, Matrix<T> a, Int first)
{
    const Matrix<T> right = a.from(0, done);
    way.exchange(n, right, first, done, first);
    solve<T>('L', 'L', 'N', 'U', done, n, 1, a, right);
    if (m > done) multiply<T>('N', 'N', m - done, n, done, -1, a.from(done, 0), right, 1, right.from(done, 0));
}

// m >= n. Row and column 1 of A are number `first` + 1 of the whole matrix.
template <class T, class Way>
Int factor_columns(const Way& way, Int m, Int n, Matrix<T> a, Int first)
{
    if (n <= lu_panel) return way.panel(m, n, a, first);
    const Int left = (n / 2 + lu_panel - 1) / lu_panel * lu_panel, right = n - left;
    const Int info = factor_columns<T>(way, m, left, a, first);
    update<T>(way, m, left, right, a, first);
    const Int below = factor_columns<T>(way, m - left, right, a.from(left, left), first + left);
    way.exchange(left, a.from(left, 0), first + left, right, first + left);
    return info != 0 ? info : below != 0 ? left + below : 0;
}

// Between two products that are worth a second thread stand panels on one, during which a worker falls asleep: at order
// 300 two threads were 1.28 times as fast as one with a worker that still spun and 0.93 times with one that slept. So
// the whole factorisation keeps to one thread below order 400.
class OneThreadIfSmall {
public:
    OneThreadIfSmall(Int m, Int n)
        : small_(static_cast<double>(m) * static_cast<double>(n) * static_cast<double>(std::min(m, n)) <
                 400.0 * 400 * 400)
    {
        if (small_) before_ = ork_set_num_threads_local(1);
    }
    ~OneThreadIfSmall()
    {
        if (small_) ork_set_num_threads_local(before_);
    }
    OneThreadIfSmall(const OneThreadIfSmall&) = delete;
    OneThreadIfSmall& operator=(const OneThreadIfSmall&) = delete;

private:
    bool small_;
    int before_ = 0;
};

template <class T, class Way>
Int factor(const Way& way, Int m, Int n, Matrix<T> a)
{
    const OneThreadIfSmall threads(m, n);
    const Int columns = std::min(m, n);
    const Int info = factor_columns<T>(way, m, columns, a, 0);
    if (n > columns) update<T>(way, m, columns, n - columns, a, 0);
    return info;
}

bool is_small(Int m, Int n) { return m <= small_lu && n <= small_lu; }

} // namespace

template <class T>
Int getrf(Int m, Int n, T* a, Int lda, Pivots ipiv)
{
    if (m == 0 || n == 0) return 0;
    if (!is_small(m, n)) return factor<T>(Pivoting<T>(ipiv), m, n, {a, lda});
    Int info = 0, rows[small_lu];
    Int* wide = ipiv.wide();
    kernels::getrf_small<T>(&m, &n, a, &lda, wide != nullptr ? wide : rows, &info);
    if (wide == nullptr)
        for (Int i = 0; i < std::min(m, n); ++i) ipiv.set(i, rows[i]);
    return info;
}

template <class T>
Int getrfnp(Int m, Int n, T* a, Int lda)
{
    if (m == 0 || n == 0) return 0;
    if (is_small(m, n)) return NoPivoting<T>().panel(m, n, {a, lda}, 0);
    return factor<T>(NoPivoting<T>(), m, n, {a, lda});
}

template <class T>
Int getrs(char trans, Int n, Int nrhs, const T* a, Int lda, Pivots ipiv, T* b, Int ldb)
{
    if (n == 0 || nrhs == 0) return 0;
    if (n <= small_solve && nrhs <= small_sides) {
        Int info = 0, rows[small_solve];
        const Int* wide = ipiv.wide();
        if (wide == nullptr)
            for (Int i = 0; i < n; ++i) rows[i] = ipiv.get(i);
        kernels::getrs_small<T>(&trans, &n, &nrhs, a, &lda, wide != nullptr ? wide : rows, b, &ldb, &info);
        return 0;
    }
    const Matrix<const T> factors{a, lda};
    const Matrix<T> x{b, ldb};
    if (trans == 'N') {
        exchange_rows(nrhs, x, ipiv, 0, n, 0, Order::forward);
        solve<T>('L', 'L', 'N', 'U', n, nrhs, 1, factors, x);
        solve<T>('L', 'U', 'N', 'N', n, nrhs, 1, factors, x);
    } else {
        solve<T>('L', 'U', trans, 'N', n, nrhs, 1, factors, x);
        solve<T>('L', 'L', trans, 'U', n, nrhs, 1, factors, x);
        exchange_rows(nrhs, x, ipiv, 0, n, 0, Order::backward);
    }
    return 0;
}

template <class T>
Int gesv(Int n, Int nrhs, T* a, Int lda, Pivots ipiv, T* b, Int ldb)
{
    const Int info = getrf(n, n, a, lda, ipiv);
    if (info == 0) getrs<T>('N', n, nrhs, a, lda, ipiv, b, ldb);
    return info;
}

template <class T>
Int gtsv(Int n, Int nrhs, T* dl, T* d, T* du, T* b, Int ldb)
{
    if (n == 0) return 0;
    Int info = 0;
    kernels::gtsv_small<T>(&n, &nrhs, dl, d, du, b, &ldb, &info);
    return info;
}

INSTANTIATE(getrf)
INSTANTIATE(getrfnp)
INSTANTIATE(getrs)
INSTANTIATE(gesv)
INSTANTIATE(gtsv)

} // namespace ork::lapack

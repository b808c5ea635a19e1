// SPDX-License-Identifier: MIT
// Sparse products and solves of ork through its public interface, looked up by name so that an older build can be
// measured too.
#include <dlfcn.h>

#include "ork/spblas.h"
#include "peers/opening.h"

namespace ork::peers {
namespace {

template <class Int, class T>
struct Routines {
    using Mv = int64_t(ork_spblas_operation, ork_spblas_kind, Int m, Int n, T alpha, const T* val, const Int* indx,
                       const Int* pntrb, const Int* pntre, const T* x, T beta, T* y);
    using Mm = int64_t(ork_spblas_operation, ork_spblas_kind, ork_spblas_layout, Int m, Int n, Int nrhs, T alpha,
                       const T* val, const Int* indx, const Int* pntrb, const Int* pntre, const T* b, Int ldb, T beta,
                       T* c, Int ldc);
    using Sv = int64_t(ork_spblas_operation, ork_spblas_kind, Int m, Int n, T alpha, const T* val, const Int* indx,
                       const Int* pntrb, const Int* pntre, const T* x, T* y);
};

template <class Int, class T>
class Call : public SparseOperation {
public:
    using Dot = T(int n, const T* x, int incx, const T* y, int incy);

    Call(void* routine, void* dot, const SparseOperands& o, const Int* col, const Int* ptr)
        : routine_(routine), dot_(reinterpret_cast<Dot*>(dot)), o_(o), col_(col), ptr_(ptr)
    {
    }
    void run() override
    {
        multiply_or_solve();
        if (o_.what.routine == SparseCase::Routine::dotmv)
            *static_cast<T*>(o_.dot) =
                dot_(static_cast<int>(o_.m), static_cast<const T*>(o_.x), 1, static_cast<const T*>(o_.y), 1);
    }

private:
    void multiply_or_solve()
    {
        const auto operation = o_.what.letter == 'T' ? ORK_SPBLAS_TRANS : ORK_SPBLAS_NO_TRANS;
        const ork_spblas_kind kind = {o_.what.routine == SparseCase::Routine::sv ? ORK_SPBLAS_TRIANGULAR
                                      : o_.what.letter == 'S'                    ? ORK_SPBLAS_SYMMETRIC
                                                                                 : ORK_SPBLAS_GENERAL,
                                      o_.what.letter == 'U' ? ORK_SPBLAS_UPPER : ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT,
                                      ORK_SPBLAS_BASE_0};
        const Int m = o_.m, n = o_.n;
        const auto* val = static_cast<const T*>(o_.val);
        const auto* x = static_cast<const T*>(o_.x);
        auto* y = static_cast<T*>(o_.y);
        using R = Routines<Int, T>;
        switch (o_.what.routine) {
        case SparseCase::Routine::mv:
        case SparseCase::Routine::dotmv:
            reinterpret_cast<typename R::Mv*>(routine_)(operation, kind, m, n, 1, val, col_, ptr_, ptr_ + 1, x, 0, y);
            return;
        case SparseCase::Routine::mm:
            reinterpret_cast<typename R::Mm*>(routine_)(
                operation, kind, o_.what.letter == 'R' ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR, m, n,
                o_.what.nrhs, 1, val, col_, ptr_, ptr_ + 1, x, o_.ldx, 0, y, o_.ldy);
            return;
        case SparseCase::Routine::sv:
            reinterpret_cast<typename R::Sv*>(routine_)(operation, kind, m, n, 1, val, col_, ptr_, ptr_ + 1, x, y);
            return;
        case SparseCase::Routine::symgs:
            return; // it has none
        }
    }

    void* routine_;
    Dot* dot_;
    SparseOperands o_;
    const Int *col_, *ptr_;
};

template <class T>
std::unique_ptr<SparseOperation> make(void* routine, void* dot, const SparseOperands& o)
{
    if (o.what.wide) return std::make_unique<Call<int64_t, T>>(routine, dot, o, o.col64, o.ptr64);
    return std::make_unique<Call<int32_t, T>>(routine, dot, o, o.col, o.ptr);
}

} // namespace

SparseMaker ork_sparse(void* handle)
{
    if (dlsym(handle, "ork_spblas_dcsrmv") == nullptr) return {};
    return [handle](const SparseOperands& o) -> std::unique_ptr<SparseOperation> {
        if (o.what.handle) return ork_handle(handle, o);
        constexpr const char* names[] = {"csrmv", "csrmm", "csrsv", "csrmv"};
        if (o.what.routine == SparseCase::Routine::symgs) return nullptr;
        const std::string symbol = std::string(o.what.wide ? "ork_spblas_" : "ork_spblas_lp64_") +
                                   (o.what.single ? 's' : 'd') + names[static_cast<int>(o.what.routine)];
        void* routine = dlsym(handle, symbol.c_str());
        void* dot = dlsym(handle, o.what.single ? "cblas_sdot" : "cblas_ddot");
        if (routine == nullptr || dot == nullptr) return nullptr;
        return o.what.single ? make<float>(routine, dot, o) : make<double>(routine, dot, o);
    };
}

} // namespace ork::peers

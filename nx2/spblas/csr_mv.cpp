// SPDX-License-Identifier: MIT
// The members of csr with vectors: mvout, gemvout, svout.
#include "spblas/csr_mv.h"
#include "spblas/csr_mv_symmetric.h"
#include "spblas/csr_mv_triangular.h"
#include "spblas/csr_sv.h"
#include "spblas/members.h"

namespace ork::spblas {
namespace {

using Call = Calls<Format::csr, Int, T>;

// The body of a product. All but the general ones take base and sign at run time.
template <Rule r>
constexpr auto product_body()
{
    constexpr Rule shared = r.with_run_time_base();
    if constexpr (r.type == 'g')
        return r.transpose ? general_transposed<shared, Int, T> : general_product<r, Int, T>;
    else if constexpr (r.type == 't')
        return triangular_product<shared, Int, T>;
    else if constexpr (r.unit)
        return unit_symmetric_product<shared, Int, T>;
    else
        return symmetric_product<shared, Int, T>;
}

template <Rule r>
constexpr auto whole_product_body()
{
    constexpr Rule shared = r.with_run_time_base();
    if constexpr (r.type == 'd')
        return diagonal_product<shared, Int, T>;
    else
        return triangular_transposed<shared, Int, T>;
}

template <Rule r>
constexpr auto solve_body()
{
    constexpr Rule shared = r.with_run_time_base();
    if constexpr (r.type == 'd')
        return diagonal_solve<shared, Int, T>;
    else
        return r.transpose ? transposed_solve<shared, Int, T> : triangular_solve<shared, Int, T>;
}

} // namespace

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const void*, const Int* m, const T* alpha, const T* val, \
                           const Int* indx, const Int* pntrb, const Int* pntre, const T* x, T* y, const T* beta)       \
    {                                                                                                                  \
        constexpr Rule r = rule<T>(letters(name));                                                                     \
        product_body<r>()(first, last, form(r), m, alpha, val, indx, pntrb, pntre, x, y, beta);                        \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutPar>);
#include "spblas/members/csr_mvout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const void*, const T* alpha, const T* val, const Int* indx, const Int* pntrb, \
                           const Int* pntre, const T* x, T* y, const T* beta)                                          \
    {                                                                                                                  \
        constexpr Rule r = rule<T>(letters(name));                                                                     \
        whole_product_body<r>()(m, form(r), alpha, val, indx, pntrb, pntre, x, y, beta);                               \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::MvoutSeq>);
#include "spblas/members/csr_mvout_seq.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* first, const Int* last, const void*, const void*, const void*, const T* val,     \
                           const Int* indx, const Int* ia, const void*, const T* x, T* y)                              \
    {                                                                                                                  \
        gemv_rows(Rows{std::int64_t{*first} - 1, *last}, val, indx, ia, x, y);                                         \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::GemvoutPar>);
#include "spblas/members/csr_gemvout_par.inc"
#undef MEMBER

#define MEMBER(symbol, name)                                                                                           \
    ORK_EXPORT void symbol(const Int* m, const void*, const T* val, const Int* indx, const Int* pntrb,                 \
                           const Int* pntre, T* y)                                                                     \
    {                                                                                                                  \
        constexpr Rule r = rule<T>(letters(name));                                                                     \
        solve_body<r>()(m, form(r), val, indx, pntrb, pntre, y);                                                       \
    }                                                                                                                  \
    static_assert(std::is_same_v<decltype(symbol), Call::SvoutSeq>);
#include "spblas/members/csr_svout_seq.inc"
#undef MEMBER

} // namespace ork::spblas

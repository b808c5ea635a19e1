// SPDX-License-Identifier: MIT
// The public functions: what they are given, in the shape of a Call.
#include "export.h"
#include "spblas/csr_tools.h"
#include "spblas/drivers.h"

namespace ork::spblas {
namespace {

template <class Int>
constexpr Variant variant(Precision precision)
{
    return {precision, sizeof(Int) == 8};
}

inline const void* address(const float& scalar) { return &scalar; }
inline const void* address(const double& scalar) { return &scalar; }
inline const void* address(const void* scalar) { return scalar; }

inline std::int64_t product_with_vector(Variant v, int op, ork_spblas_kind kind, std::int64_t m, std::int64_t n,
                                        const void* alpha, const Matrix& a, const void* x, const void* beta, void* y)
{
    return mv({Routine::mvout, v.precision, v.wide, op, 0, kind, m, n, 1, a, alpha, beta, x, 0, y, 0});
}

inline std::int64_t product_with_matrix(Variant v, int op, ork_spblas_kind kind, int layout, std::int64_t m,
                                        std::int64_t n, std::int64_t nrhs, const void* alpha, const Matrix& a,
                                        const void* b, std::int64_t ldb, const void* beta, void* c, std::int64_t ldc)
{
    return mm({Routine::mmout, v.precision, v.wide, op, layout, kind, m, n, nrhs, a, alpha, beta, b, ldb, c, ldc});
}

inline std::int64_t solve_vector(Variant v, int op, ork_spblas_kind kind, std::int64_t m, std::int64_t n,
                                 const void* alpha, const Matrix& a, const void* x, void* y)
{
    return solve({Routine::svout, v.precision, v.wide, op, 0, kind, m, n, 1, a, alpha, nullptr, x, 0, y, 0});
}

inline std::int64_t solve_matrix(Variant v, int op, ork_spblas_kind kind, int layout, std::int64_t m, std::int64_t n,
                                 std::int64_t nrhs, const void* alpha, const Matrix& a, const void* b, std::int64_t ldb,
                                 void* c, std::int64_t ldc)
{
    return solve(
        {Routine::smout, v.precision, v.wide, op, layout, kind, m, n, nrhs, a, alpha, nullptr, b, ldb, c, ldc});
}

} // namespace
} // namespace ork::spblas

using namespace ork::spblas;

#define ORK_INT int32_t
#define ORK_NAME(routine) ork_spblas_lp64_s##routine
#define ORK_ELEMENT float
#define ORK_SCALAR float
#define ORK_PRECISION Precision::s
#include "spblas/entries.inc"

#define ORK_INT int32_t
#define ORK_NAME(routine) ork_spblas_lp64_d##routine
#define ORK_ELEMENT double
#define ORK_SCALAR double
#define ORK_PRECISION Precision::d
#include "spblas/entries.inc"

#define ORK_INT int32_t
#define ORK_NAME(routine) ork_spblas_lp64_c##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#define ORK_PRECISION Precision::c
#include "spblas/entries.inc"

#define ORK_INT int32_t
#define ORK_NAME(routine) ork_spblas_lp64_z##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#define ORK_PRECISION Precision::z
#include "spblas/entries.inc"

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_spblas_s##routine
#define ORK_ELEMENT float
#define ORK_SCALAR float
#define ORK_PRECISION Precision::s
#include "spblas/entries.inc"

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_spblas_d##routine
#define ORK_ELEMENT double
#define ORK_SCALAR double
#define ORK_PRECISION Precision::d
#include "spblas/entries.inc"

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_spblas_c##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#define ORK_PRECISION Precision::c
#include "spblas/entries.inc"

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_spblas_z##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#define ORK_PRECISION Precision::z
#include "spblas/entries.inc"

ORK_EXPORT int64_t ork_spblas_lp64_dcsrsymmvs(ork_spblas_uplo uplo, int32_t m, const double* val, const int32_t* indx,
                                              const int32_t* ia, const double* x, double* y)
{
    return symmetric_in_three_arrays({Precision::d, false}, uplo, m, csr(val, indx, ia), x, y);
}
ORK_EXPORT int64_t ork_spblas_dcsrsymmvs(ork_spblas_uplo uplo, int64_t m, const double* val, const int64_t* indx,
                                         const int64_t* ia, const double* x, double* y)
{
    return symmetric_in_three_arrays({Precision::d, true}, uplo, m, csr(val, indx, ia), x, y);
}

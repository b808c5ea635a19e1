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

// What follows the sizes. The functions below have the arguments before in the registers in which the entries have
// them, which keeps 242 entries short.
struct VectorOperands {
    Variant variant;
    const void* alpha;
    Matrix a;
    const void *x, *beta;
    void* y;
};
struct MatrixOperands {
    Variant variant;
    std::int64_t nrhs;
    const void* alpha;
    Matrix a;
    const void* b;
    std::int64_t ldb;
    const void* beta;
    void* c;
    std::int64_t ldc;
};

Call call_of(Routine routine, int op, ork_spblas_kind kind, std::int64_t m, std::int64_t n, const VectorOperands& o)
{
    return {routine, o.variant.precision, o.variant.wide, op, 0, kind, m, n, 1, &o.a, o.alpha, o.beta, o.x, 0, o.y, 0};
}

Call call_of(Routine routine, int op, ork_spblas_kind kind, int layout, std::int64_t m, std::int64_t n,
             const MatrixOperands& o)
{
    return {routine,
            o.variant.precision,
            o.variant.wide,
            op,
            layout,
            kind,
            m,
            n,
            o.nrhs,
            &o.a,
            o.alpha,
            o.beta,
            o.b,
            o.ldb,
            o.c,
            o.ldc};
}

[[gnu::noinline]] std::int64_t multiply(int op, ork_spblas_kind kind, std::int64_t m, std::int64_t n,
                                        const VectorOperands& operands)
{
    return mv(call_of(Routine::mvout, op, kind, m, n, operands));
}

[[gnu::noinline]] std::int64_t multiply(int op, ork_spblas_kind kind, int layout, std::int64_t m, std::int64_t n,
                                        const MatrixOperands& operands)
{
    return mm(call_of(Routine::mmout, op, kind, layout, m, n, operands));
}

[[gnu::noinline]] std::int64_t solve(int op, ork_spblas_kind kind, std::int64_t m, std::int64_t n,
                                     const VectorOperands& operands)
{
    return solve(call_of(Routine::svout, op, kind, m, n, operands));
}

[[gnu::noinline]] std::int64_t solve(int op, ork_spblas_kind kind, int layout, std::int64_t m, std::int64_t n,
                                     const MatrixOperands& operands)
{
    return solve(call_of(Routine::smout, op, kind, layout, m, n, operands));
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

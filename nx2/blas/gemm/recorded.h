// SPDX-License-Identifier: MIT
// A multiply whose sizes, options and scalars are known beforehand: the create calls record them, and the object's
// routine multiplies with them through the general kernel. No code is generated on this path, which status 1 says.
#pragma once

#include <cstddef>
#include <type_traits>

#include "blas/gemm/units.h"
#include "frame/core_imports.h"
#include "ork/abi/jit.h"

namespace ork::gemm {

template <class T>
using Gemm = void(const char* transa, const char* transb, const Int* m, const Int* n, const Int* k, const T* alpha,
                  const T* a, const Int* lda, const T* b, const Int* ldb, const T* beta, T* c, const Int* ldc);

template <class T>
struct Recorded {
    char layout, transa, transb; // 'C' by columns or 'R' by rows; N, T or C
    Int m, n, k, lda, ldb, ldc;
    T alpha, beta;
    void (*routine)(const Recorded* object, const T* a, const T* b, T* c);
};

// The size of the object that callers know, or what double complex takes.
template <class T>
constexpr std::size_t recorded_bytes = sizeof(Recorded<T>) > 80 ? sizeof(Recorded<T>) : 80;
static_assert(std::is_standard_layout_v<Recorded<double>> && sizeof(Recorded<double>) == 80);
static_assert(sizeof(Recorded<Complex<double>>) == 96);

// By rows C^T = op(B)^T op(A)^T: the same memory with the operands exchanged.
template <class T, Gemm<T>& multiply>
void run_recorded(const Recorded<T>* r, const T* a, const T* b, T* c)
{
    if (r->layout == 'R')
        multiply(&r->transb, &r->transa, &r->n, &r->m, &r->k, &r->alpha, b, &r->ldb, a, &r->lda, &r->beta, c, &r->ldc);
    else
        multiply(&r->transa, &r->transb, &r->m, &r->n, &r->k, &r->alpha, a, &r->lda, b, &r->ldb, &r->beta, c, &r->ldc);
}

template <class T, Gemm<T>& multiply>
Int record(Recorded<T>** object, const char* warning, char layout, char transa, char transb, Int m, Int n, Int k,
           T alpha, Int lda, Int ldb, T beta, Int ldc)
{
    auto* r = static_cast<Recorded<T>*>(ork_serv_malloc(recorded_bytes<T>, 64));
    *object = r;
    if (ork_serv_check_ptr_and_warn(r, warning) != 0) {
        *object = nullptr;
        return ORK_JIT_NO_MEMORY;
    }
    *r = {layout, transa, transb, m, n, k, lda, ldb, ldc, alpha, beta, run_recorded<T, multiply>};
    return ORK_JIT_STANDARD;
}

// The letter of op(A) also says that matrices are stored by rows.
struct Folded {
    char layout, trans;
};
constexpr Folded unfold(char letter)
{
    switch (letter) {
    case 'O':
        return {'R', 'N'};
    case 'U':
        return {'R', 'T'};
    case 'V':
        return {'R', 'C'};
    default:
        return {'C', letter};
    }
}

} // namespace ork::gemm

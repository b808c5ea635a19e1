// SPDX-License-Identifier: MIT
// The public functions by their names, for any element type and integer.
#pragma once

#include <dlfcn.h>

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "ork/spblas.h"
#include "spblas/member.h"
#include "spblas/storage.h"

namespace ork::test {

// Real scalars are values, complex ones addresses.
template <class T>
auto scalar_argument(const T& value)
{
    if constexpr (is_complex<T>)
        return static_cast<const void*>(&value);
    else
        return value;
}

// ork_spblas_dcsrmv for "csrmv". Arguments must have the very types of the function's.
template <class Int, class T, class... Arguments>
std::int64_t call_public(const std::string& routine, Arguments... arguments)
{
    const std::string name =
        std::string(sizeof(Int) == 4 ? "ork_spblas_lp64_" : "ork_spblas_") + precision_letter<T>() + routine;
    void* address = dlsym(RTLD_DEFAULT, name.c_str());
    if (address == nullptr) {
        ADD_FAILURE() << "no " << name;
        return -1;
    }
    return reinterpret_cast<std::int64_t (*)(Arguments...)>(address)(arguments...);
}

// The arrays of any format.
template <class Int, class T>
struct Matrix {
    Format format;
    Int m, n; // of blocks
    std::vector<T> val;
    std::vector<Int> indx, begin, end; // as Arrays has them
    Int number, lval;

    Matrix(Format format, const Sparse<T>& a, const Arrangement& how)
        : format(format), m(static_cast<Int>(a.rows)), n(static_cast<Int>(a.columns))
    {
        const Arrays<T> arrays = arrange(format, a, how);
        val = arrays.val;
        indx.assign(arrays.indx.begin(), arrays.indx.end());
        begin.assign(arrays.begin.begin(), arrays.begin.end());
        end.assign(arrays.end.begin(), arrays.end.end());
        number = static_cast<Int>(arrays.number);
        lval = static_cast<Int>(arrays.lval);
    }

    // f(arguments of the matrix ...)
    template <class F>
    std::int64_t with(F f) const
    {
        const T* v = val.data();
        const Int *i = indx.data(), *b = begin.data(), *e = end.data();
        switch (format) {
        case Format::csr:
            return f(v, i, b, e);
        case Format::coo:
            return f(v, i, b, number);
        case Format::dia:
            return f(v, lval, i, number);
        case Format::sky:
            return f(v, b);
        default:
            return f(number, v, i, b, e);
        }
    }

    std::int64_t mv(int op, ork_spblas_kind kind, T alpha, const T* x, T beta, T* y) const
    {
        return with([&](auto... a) {
            return call_public<Int, T>(name_of(format) + "mv", op, kind, m, n, scalar_argument(alpha), a..., x,
                                       scalar_argument(beta), y);
        });
    }
    std::int64_t mm(int op, ork_spblas_kind kind, int layout, Int nrhs, T alpha, const T* b, Int ldb, T beta, T* c,
                    Int ldc) const
    {
        return with([&](auto... a) {
            return call_public<Int, T>(name_of(format) + "mm", op, kind, layout, m, n, nrhs, scalar_argument(alpha),
                                       a..., b, ldb, scalar_argument(beta), c, ldc);
        });
    }
    std::int64_t sv(int op, ork_spblas_kind kind, T alpha, const T* x, T* y) const
    {
        return with([&](auto... a) {
            return call_public<Int, T>(name_of(format) + "sv", op, kind, m, n, scalar_argument(alpha), a..., x, y);
        });
    }
    std::int64_t sm(int op, ork_spblas_kind kind, int layout, Int nrhs, T alpha, const T* b, Int ldb, T* c,
                    Int ldc) const
    {
        return with([&](auto... a) {
            return call_public<Int, T>(name_of(format) + "sm", op, kind, layout, m, n, nrhs, scalar_argument(alpha),
                                       a..., b, ldb, c, ldc);
        });
    }
};

// Letters that Model understands, for what the public interface takes.
inline Shape letters_of(int op, ork_spblas_kind kind, char layout)
{
    const bool triangle = kind.type != ORK_SPBLAS_GENERAL && kind.type != ORK_SPBLAS_DIAGONAL;
    const bool diagonal = kind.type != ORK_SPBLAS_GENERAL && kind.type != ORK_SPBLAS_SKEW;
    return {kind.base == ORK_SPBLAS_BASE_0 ? '0' : '1',
            "ntcs"[op - ORK_SPBLAS_NO_TRANS],
            "gshtad"[kind.type],
            !triangle                       ? '_'
            : kind.uplo == ORK_SPBLAS_LOWER ? 'l'
                                            : 'u',
            !diagonal                      ? '_'
            : kind.diag == ORK_SPBLAS_UNIT ? 'u'
                                           : 'n',
            layout};
}

} // namespace ork::test

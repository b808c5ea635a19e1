// SPDX-License-Identifier: MIT
// A core's routines for forwarding entries to reach: built into a program and into a library with the core's name.
#include <cstdarg>

#include "frame/core/echo.h"

using ork::test::Int;

extern "C" {

#define ROUTINE(name, entry)                                                                                           \
    double name(Int i0, Int i1, Int i2, Int i3, Int i4, Int i5, Int i6, Int i7, double d0, double d1, double d2,       \
                double d3, double d4, double d5, double d6, double d7, double d8)                                      \
    {                                                                                                                  \
        return ork::test::mixture(#name, i0, i1, i2, i3, i4, i5, i6, i7, d0, d1, d2, d3, d4, d5, d6, d7, d8);          \
    }
#include "frame/core/routines.inc"
#undef ROUTINE

std::complex<float> ork_blas_lp64_cdotu(const float* x, const Int* n, float y) { return {*x + y, float(*n)}; }
std::complex<double> ork_blas_lp64_zdotu(const double* x, const Int* n, double y) { return {*x + y, double(*n)}; }

Int ork_conv_newtask(Int count, ...)
{
    std::va_list arguments;
    va_start(arguments, count);
    double sum = 0;
    for (Int i = 0; i < count; ++i) sum += va_arg(arguments, double);
    va_end(arguments);
    return static_cast<Int>(sum);
}
}

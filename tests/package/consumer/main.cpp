// SPDX-License-Identifier: MIT
#include <complex>
#include <cstdio>

#include <ork/blas.h>
#include <ork/cblas.h>
#include <ork/ork.h>
#include <ork/spblas.h>

int main()
{
    const std::complex<double> x[] = {{1, 2}, {3, 4}}, y[] = {{5, 6}, {7, 8}};
    const std::int64_t n = 2, one = 1;
    const std::complex<double> dot = ork_blas_zdotu(&n, x, &one, y, &one);
    std::printf("ork %s: (%g, %g)\n", ork_version(), dot.real(), dot.imag());
    return dot == std::complex<double>(-18, 68) ? 0 : 1;
}

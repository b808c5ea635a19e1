/* SPDX-License-Identifier: MIT */
/* Interface of transforms and solvers, as a C11 program uses it: the example of the header, then messages. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "ork/pde.h"

static int example(void)
{
    enum { NX = 100, NY = 100 };
    static double f[(NX + 1) * (NY + 1)], zero[NX + 1], rpar[ORK_HELMHOLTZ_2D_REALS(NX, NY)];
    int64_t ipar[ORK_PDE_INTEGERS];
    ork_dft_descriptor* xhandle;
    for (int i = 0; i < (NX + 1) * (NY + 1); ++i) f[i] = 1;
    if (ork_d_init_helmholtz_2d(0, 1, 0, 1, NX, NY, "DDDD", 0, ipar, rpar) != ORK_PDE_OK) return 1;
    if (ork_d_commit_helmholtz_2d(&xhandle, ipar, rpar) != ORK_PDE_OK) return 2;
    if (ork_d_helmholtz_2d(f, zero, zero, zero, zero, &xhandle, ipar, rpar) != ORK_PDE_OK) return 3;
    if (ork_free_helmholtz_2d(&xhandle, ipar) != ORK_PDE_OK) return 4;
    return fabs(f[50 * (NX + 1) + 50] - 0.0736713) < 2e-5 ? 0 : 5; /* the series' value */
}

/* A transform without a commit, and a rectangle with an unpaired period: errors. A singular one: a warning. */
static int messages(int64_t where)
{
    int64_t ipar[ORK_PDE_INTEGERS];
    double f[3] = {0}, rpar[ORK_HELMHOLTZ_2D_REALS(4, 4)];
    ork_dft_descriptor* handle = NULL;
    if (ork_d_init_trig_transform(1, 0, ipar, rpar) != ORK_PDE_OK) return 1;
    ipar[ORK_PDE_ERROR_MESSAGES] = where;
    if (ork_d_commit_trig_transform(f, &handle, ipar, rpar) != ORK_PDE_BAD_ARGUMENT) return 2;

    if (ork_d_init_helmholtz_2d(0, 1, 0, 1, 4, 4, "DPDD", 0, ipar, rpar) != ORK_PDE_OK) return 3;
    ipar[ORK_PDE_ERROR_MESSAGES] = where;
    if (ork_d_commit_helmholtz_2d(&handle, ipar, rpar) != ORK_PDE_BAD_ARGUMENT) return 4;

    if (ork_d_init_helmholtz_2d(0, 1, 0, 1, 4, 4, "NNPP", 0, ipar, rpar) != ORK_PDE_OK) return 5;
    ipar[ORK_PDE_WARNING_MESSAGES] = where;
    if (ork_d_commit_helmholtz_2d(&handle, ipar, rpar) != ORK_PDE_OK) return 6;
    if (ipar[ORK_PDE_SINGULAR] != 1) return 7;
    return ork_free_helmholtz_2d(&handle, ipar) == ORK_PDE_OK ? 0 : 8;
}

int main(int count, char** arguments) { return count == 1 ? example() : messages(strtol(arguments[1], NULL, 10)); }

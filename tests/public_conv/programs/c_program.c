/* SPDX-License-Identifier: MIT */
/* The examples of the header, as a C11 program. */
#include <stdio.h>

#include "ork/conv.h"

static int line(void)
{
    static double x[1000], y[16], z[1015];
    int32_t nx = 1000, ny = 16, nz = nx + ny - 1;
    for (int i = 0; i < nx; ++i) x[i] = i;
    for (int i = 0; i < ny; ++i) y[i] = 1;
    ork_conv_task* task;
    if (ork_conv_newtask(&task, ORK_CONV_CONVOLUTION, 0, ORK_CONV_AUTO, ORK_CONV_REAL, ORK_CONV_DOUBLE, 1, &nx, &ny,
                         &nz) != ORK_CONV_OK)
        return 1;
    if (ork_conv_exec(task, x, NULL, y, NULL, z, NULL) != ORK_CONV_OK) return 2;
    for (int k = 0; k < nz; ++k) {
        const int from = k < ny ? 0 : k - ny + 1, to = k < nx ? k : nx - 1;
        const double error = z[k] - (to - from + 1) * (from + to) / 2.0;
        if (!(error * error < 1e-16)) return 3;
    }
    if (ork_conv_deletetask(&task) != ORK_CONV_OK || task != NULL) return 4;
    return 0;
}

static int template_in_a_picture(void)
{
    static float image[480][640], p[32][32], score[449][609];
    uint32_t state = 1;
    for (int j = 0; j < 480; ++j)
        for (int i = 0; i < 640; ++i) {
            state = state * 1664525u + 1013904223u;
            image[j][i] = (float)(state >> 31) - 0.5F;
        }
    for (int j = 0; j < 32; ++j)
        for (int i = 0; i < 32; ++i) p[j][i] = image[j + 77][i + 333];
    ork_conv_task* task;
    int32_t patch[] = {32, 32}, picture[] = {640, 480}, places[] = {609, 449}, first[] = {0, 0};
    if (ork_conv_newtask(&task, ORK_CONV_CORRELATION, 0, ORK_CONV_AUTO, ORK_CONV_REAL, ORK_CONV_SINGLE, 2, patch,
                         picture, places) != ORK_CONV_OK)
        return 5;
    if (ork_conv_edittask(task, ORK_CONV_START, first) != ORK_CONV_OK) return 6;
    if (ork_conv_exec(task, p, NULL, image, NULL, score, NULL) != ORK_CONV_OK) return 7;
    for (int j = 0; j < 449; ++j)
        for (int i = 0; i < 609; ++i) {
            const int here = i == 333 && j == 77;
            if (here ? !(score[j][i] > 255.9F && score[j][i] < 256.1F) : !(score[j][i] < 128)) return 8;
        }
    return ork_conv_deletetask(&task) == ORK_CONV_OK ? 0 : 9;
}

int main(void)
{
    const int failed = line();
    return failed != 0 ? failed : template_in_a_picture();
}

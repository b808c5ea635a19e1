/* SPDX-License-Identifier: MIT */
/* Convolution and correlation in one to seven dimensions: a task is described once and run on data any number of times.

       ork_conv_task* task;
       int32_t nx = 1000, ny = 16, nz = nx + ny - 1;
       ork_conv_newtask(&task, ORK_CONV_CONVOLUTION, 0, ORK_CONV_AUTO, ORK_CONV_REAL, ORK_CONV_DOUBLE, 1, &nx, &ny,
   &nz); ork_conv_exec(task, x, NULL, y, NULL, z, NULL); // z(k) = sum over i of x(i) y(k - i)
       ork_conv_deletetask(&task);

   WHAT IS COMPUTED, with indices k, i of dims numbers each, from 0:
     convolution   z(k) = sum over i of x(i) y(m - i),          m = start + k decimation
     correlation   z(k) = sum over i of conj(x(i)) y(i + m),    m = start + k decimation, a lag
   over all i for which both elements exist. m is within 0 .. xshape + yshape - 2 in every dimension for convolution,
   within 1 - xshape .. yshape - 1 for correlation. By default start is the first of these and decimation 1. */
#ifndef ORK_CONV_H
#define ORK_CONV_H

#include <stdint.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

typedef struct ork_conv_task ork_conv_task;

enum { ORK_CONV_MAX_DIMS = 7 };

enum ork_conv_job { ORK_CONV_CONVOLUTION = 1, ORK_CONV_CORRELATION = 2 };
/* Direct summation, transforms, or whichever is the faster for the shapes. */
enum ork_conv_mode { ORK_CONV_AUTO = 0, ORK_CONV_DIRECT = 1, ORK_CONV_FFT = 2 };
enum ork_conv_domain { ORK_CONV_REAL = 1, ORK_CONV_COMPLEX = 2 };
enum ork_conv_precision { ORK_CONV_SINGLE = 1, ORK_CONV_DOUBLE = 2 };
enum ork_conv_parameter {
    ORK_CONV_MODE = 3,
    ORK_CONV_PARAMETER_4 = 4,
    ORK_CONV_START = 5,
    ORK_CONV_DECIMATION = 6,
    ORK_CONV_INTERNAL_PRECISION = 9
};

enum ork_conv_status {
    ORK_CONV_OK = 0,
    ORK_CONV_NO_TASK_MEMORY = -4,
    ORK_CONV_NULL = -5,
    ORK_CONV_UNSUPPORTED = -2000,
    ORK_CONV_NO_WORK_MEMORY = -2001,
    ORK_CONV_BAD_EDIT = -2211,
    ORK_CONV_FIXED_PARAMETER = -2212,
    ORK_CONV_BAD_START = -2302,
    ORK_CONV_BAD_DECIMATION = -2303,
    ORK_CONV_BAD_X_SHAPE = -2311,
    ORK_CONV_BAD_Y_SHAPE = -2312,
    ORK_CONV_BAD_Z_SHAPE = -2313,
    ORK_CONV_BAD_Z_STRIDE = -2323,
    ORK_CONV_NULL_X = -2331,
    ORK_CONV_NULL_Y = -2332,
    ORK_CONV_NULL_Z = -2333
};

int32_t ork_conv_newtask(ork_conv_task** task, int32_t job, int32_t code, int32_t mode, int32_t domain,
                         int32_t precision, int32_t dims, const int32_t* xshape, const int32_t* yshape,
                         const int32_t* zshape);
int32_t ork_conv_newtaskx(ork_conv_task** task, int32_t job, int32_t code, int32_t mode, int32_t domain,
                          int32_t precision, int32_t dims, const int32_t* xshape, const int32_t* yshape,
                          const int32_t* zshape, const void* x, const int32_t* xstride);
int32_t ork_conv_edittask(ork_conv_task* task, int32_t parameter, const int32_t* value);
int32_t ork_conv_exec(ork_conv_task* task, const void* x, const int32_t* xstride, const void* y, const int32_t* ystride,
                      void* z, const int32_t* zstride);
int32_t ork_conv_execx(ork_conv_task* task, const void* y, const int32_t* ystride, void* z, const int32_t* zstride);
int32_t ork_conv_copytask(ork_conv_task** copy, const ork_conv_task* task);
int32_t ork_conv_deletetask(ork_conv_task** task);

/* A sentence on a status, never null. */
const char* ork_conv_status_text(int32_t status);

ORK_END_DECLS

#endif

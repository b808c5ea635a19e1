/* SPDX-License-Identifier: MIT */
/* Convolution and correlation in one to seven dimensions, of real or complex numbers, by summation or by Fourier
   transforms. A task is described once and run on data any number of times:

       int32_t nx = 1000, ny = 16, nz = nx + ny - 1;
       ork_conv_task* task;
       ork_conv_newtask(&task, ORK_CONV_CONVOLUTION, 0, ORK_CONV_AUTO, ORK_CONV_REAL, ORK_CONV_DOUBLE, 1, &nx, &ny,
                        &nz);
       ork_conv_exec(task, x, NULL, y, NULL, z, NULL);   // z(k) = sum over i of x(i) y(k - i)
       ork_conv_deletetask(&task);

   WHAT IS COMPUTED, with indices k, i of as many numbers as there are dimensions, each counted from 0:

       convolution   z(k) = sum over i of x(i) y(m - i)
       correlation   z(k) = sum over i of conj(x(i)) y(i + m)        m = start + k decimation

   over all i for which both elements exist; conj changes nothing in real numbers. Where they can exist, m lies within

       convolution   0 .. xshape + yshape - 2      the index of the full result
       correlation   1 - xshape .. yshape - 1      the lag: how far x is moved along y

   in every dimension, and so must start and the last output, start + (zshape - 1) decimation. By default start is the
   first of these and decimation 1, so zshape = xshape + yshape - 1 gives the full result, and a smaller zshape its
   beginning. A part of it by edits: where a patch of 32 x 32 pixels lies in a picture of 640 x 480,

       int32_t patch[] = {32, 32}, picture[] = {640, 480}, places[] = {609, 449}, first[] = {0, 0};
       ork_conv_newtask(&task, ORK_CONV_CORRELATION, 0, ORK_CONV_AUTO, ORK_CONV_REAL, ORK_CONV_SINGLE, 2, patch,
                        picture, places);
       ork_conv_edittask(task, ORK_CONV_START, first);   // only lags at which all of the patch is in the picture
       ork_conv_exec(task, p, NULL, image, NULL, score, NULL);

   ARRAYS. Extents and strides are lists of dims numbers, strides in elements (of complex data: pairs). Pointers address
   element 0 (0, 0, ...), whatever the strides. Null strides are those of tight arrays whose first index runs fastest:
   1, shape(0), shape(0) shape(1), ... Strides may be negative, those of x and y also 0; z's must not make two outputs
   fall on one place. A C array image[480][640] has the shape {640, 480}. Nothing is read or written but the elements, x
   and y are read only, and z may not overlap them. Lists are copied; only a fixed x is referred to after a call.

   PRECISIONS. Data are single or double; the internal precision, that of the computation, is the same at first and can
   be edited: single data summed in double are rounded once, at the end. Double data with internal precision single are
   refused in one dimension (unless x is transformed in one piece: ORK_CONV_FFT and more than 33554432 elements), and
   computed in double in more.

   MODES. ORK_CONV_DIRECT sums, ORK_CONV_FFT transforms. ORK_CONV_AUTO takes the one that should be faster by shapes,
   outputs, domain and precision, never by a timing, so the choice is the same in every run. It is made by the first run
   after the creation and after every edit.

   FIXED X. A task of newtaskx keeps the address of x (and copies its strides), and execx runs it on that x and any y:
   where transforms are used, that of x is computed at the first execx and kept. So x must stay as it is for as long as
   execx is called; after a change of x edit anything, if only to what it was, and x is read anew. exec on such a task
   takes the x that it is given and leaves what is kept. execx on a task of newtask has no x: ORK_CONV_NULL_X.

   EDITS, with the address of a number or of a list of dims numbers; code and parameter 4 are carried for the
   application and mean nothing:

       ORK_CONV_MODE                  ORK_CONV_AUTO, ORK_CONV_DIRECT or ORK_CONV_FFT
       ORK_CONV_PARAMETER_4           any number
       ORK_CONV_START                 a list
       ORK_CONV_DECIMATION            a list
       ORK_CONV_INTERNAL_PRECISION    ORK_CONV_SINGLE or ORK_CONV_DOUBLE

   STATUSES are returned, and kept in the task.
     A null task         ORK_CONV_NULL, of every call.
     Creation, copies    ORK_CONV_NULL for null addresses of the task or of shapes, ORK_CONV_NO_TASK_MEMORY; the address
                         of the new task is then not stored. Numbers are looked at by the runs.
     An edit             ORK_CONV_BAD_EDIT for an unknown parameter, or a null value of a known one;
                         ORK_CONV_FIXED_PARAMETER for 1, 2, 7, 8 and 10 .. 19, which belong to the creation;
                         ORK_CONV_NULL for an unknown parameter with a null value. A failed edit ends the use of the
                         task: later edits and runs return the same status, and nothing is left but to delete it.
     A run               the first of these that applies, in any dimension; z is then as it was:
                           ORK_CONV_UNSUPPORTED     job, precisions or dims, or the precisions of a line (above)
                           ORK_CONV_NULL_X          x is null
                           ORK_CONV_BAD_X_SHAPE     an extent is below 1
                           ORK_CONV_NULL_Y, ORK_CONV_BAD_Y_SHAPE, ORK_CONV_NULL_Z, ORK_CONV_BAD_Z_SHAPE
                           ORK_CONV_BAD_Z_STRIDE    is 0
                           ORK_CONV_BAD_START       is not within the bounds of m
                           ORK_CONV_BAD_DECIMATION  is below 1, or the last output beyond the bounds of m
                         or, with z perhaps written in part, ORK_CONV_NO_WORK_MEMORY. The next run is judged by itself;
                         edits return the status until a run has succeeded.

   ERRORS. With n the number of terms of a sum, N the number of elements of x and y together, and eps that of the
   internal precision (2.2e-16, 1.2e-7),

       summation     |error of z(k)| <= n eps sum of |x| |y|, over the terms of z(k)
       transforms    |error of z(k)| <= 8 eps log2(2 N) |x| |y|, with the Euclidean norms of the whole arrays

   and half a unit in the last place of z where it is less precise. So where outputs differ in size by many orders, the
   small ones are right by summation only. NaN and infinity appear where they enter a sum; transforms spread them over
   any number of outputs.

   THREADS. Large tasks are run by as many threads as other calls may use (ork/ork.h). Several threads may run one task
   at once, each into a z of its own; the first run after the creation or an edit, edits and the release are for one
   thread alone. A copy is a task of its own, with the settings, the status and the fixed x of the first; the transform
   of x it computes anew. */
#ifndef ORK_CONV_H
#define ORK_CONV_H

#include <stdint.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

typedef struct ork_conv_task ork_conv_task;

enum { ORK_CONV_MAX_DIMS = 7 };

enum ork_conv_job { ORK_CONV_CONVOLUTION = 1, ORK_CONV_CORRELATION = 2 };
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

/* Makes a task. xshape, yshape and zshape are lists of dims extents. */
int32_t ork_conv_newtask(ork_conv_task** task, int32_t job, int32_t code, int32_t mode, int32_t domain,
                         int32_t precision, int32_t dims, const int32_t* xshape, const int32_t* yshape,
                         const int32_t* zshape);
/* The same with an x that stays the same, for execx. Null strides are those of a tight array. */
int32_t ork_conv_newtaskx(ork_conv_task** task, int32_t job, int32_t code, int32_t mode, int32_t domain,
                          int32_t precision, int32_t dims, const int32_t* xshape, const int32_t* yshape,
                          const int32_t* zshape, const void* x, const int32_t* xstride);
/* Sets a parameter to *value, or to the list that begins there. */
int32_t ork_conv_edittask(ork_conv_task* task, int32_t parameter, const int32_t* value);
/* Computes z. */
int32_t ork_conv_exec(ork_conv_task* task, const void* x, const int32_t* xstride, const void* y, const int32_t* ystride,
                      void* z, const int32_t* zstride);
/* Computes z of the fixed x. */
int32_t ork_conv_execx(ork_conv_task* task, const void* y, const int32_t* ystride, void* z, const int32_t* zstride);
/* Makes a second task like the first. */
int32_t ork_conv_copytask(ork_conv_task** copy, const ork_conv_task* task);
/* Releases the task and clears the pointer. */
int32_t ork_conv_deletetask(ork_conv_task** task);

/* What a status means and what to do about it, in English; never null. */
const char* ork_conv_status_text(int32_t status);

ORK_END_DECLS

#endif

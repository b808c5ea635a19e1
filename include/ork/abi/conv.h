/* SPDX-License-Identifier: MIT */
// Convolution and correlation tasks: their record, and the kernels ork_conv_<tag>_<call> on it. C++: a core looks them
// up by name. What a task computes, and the arguments, are told in ork/conv.h; here stands what the core and a kernel
// library share.
//
// Arguments are passed by value, arrays by address; integers have 32 bits. The calls return a status of ork/conv.h.
//
//     newtaskx     makes a record; `extra` and `optional` are carried: a core passes x and its strides there
//     newtask      the same without
//     edittask     sets parameter 3 (mode), 4, 5 (start), 6 (decimation) or 9 (internal precision)
//     exec         runs the task on x and y
//     execx        the same on x at address `extra` with strides `optional`, whose transform is kept from the first run
//     copytask     makes a second task, without what the first has kept
//     deletetask   releases a task and clears the pointer
//     method       1 or 2: the mode that is faster for the task as it stands
#ifndef ORK_ABI_CONV_H
#define ORK_ABI_CONV_H

#include <stdint.h>

#include "ork/abi/core_conv.h"
#include "ork/conv.h"

struct ork_conv_task {
    int32_t status; // of the last call; kept until the next edit
    int32_t job, code, mode, parameter_4;
    int32_t* start;      // dims numbers in the storage below, or null: the default
    int32_t* decimation; // the same; null: 1
    int32_t domain, precision, internal_precision;
    int32_t dims;
    int32_t *xshape, *yshape, *zshape;
    int32_t* optional; // or null
    int64_t extra;
    int32_t start_storage[ORK_CONV_MAX_DIMS], decimation_storage[ORK_CONV_MAX_DIMS];
    int32_t committed; // 1 after the checks of the first run; 0 after every edit

    int32_t automatic; // the core's: mode is chosen anew, by `method`, whenever the task is not committed
    int32_t shapes[4][ORK_CONV_MAX_DIMS]; // what the four pointers refer to
    void *plan, *kept;                    // the kernel library's: transforms, and what it keeps of a fixed x
};

namespace ork::conv {

struct Calls {
    using newtaskx = int32_t(ork_conv_task** task, int32_t job, int32_t code, int32_t mode, int32_t domain,
                             int32_t precision, int32_t dims, const int32_t* xshape, const int32_t* yshape,
                             const int32_t* zshape, int64_t extra, const int32_t* optional);
    using newtask = int32_t(ork_conv_task** task, int32_t job, int32_t code, int32_t mode, int32_t domain,
                            int32_t precision, int32_t dims, const int32_t* xshape, const int32_t* yshape,
                            const int32_t* zshape);
    using edittask = int32_t(ork_conv_task* task, int32_t parameter, const int32_t* value);
    using exec = int32_t(ork_conv_task* task, const void* x, const int32_t* xstride, const void* y,
                         const int32_t* ystride, void* z, const int32_t* zstride);
    using execx = int32_t(ork_conv_task* task, const void* y, const int32_t* ystride, void* z, const int32_t* zstride);
    using copytask = int32_t(ork_conv_task** copy, const ork_conv_task* task);
    using deletetask = int32_t(ork_conv_task** task);
    using method = int32_t(const ork_conv_task* task);
};

} // namespace ork::conv

#endif

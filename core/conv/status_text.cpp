// SPDX-License-Identifier: MIT
#include "export.h"
#include "ork/conv.h"

ORK_EXPORT const char* ork_conv_status_text(int32_t status)
{
    switch (status) {
    case ORK_CONV_OK:
        return "no error";
    case ORK_CONV_NO_TASK_MEMORY:
        return "there is no memory for the task";
    case ORK_CONV_NULL:
        return "a task, or the shape of x, y or z, is a null pointer";
    case ORK_CONV_UNSUPPORTED:
        return "nothing computes this: job and precisions must be 1 or 2, dims 1 to 7, and double data in one "
               "dimension need the internal precision double";
    case ORK_CONV_NO_WORK_MEMORY:
        return "there is no memory for the work of a run; direct summation needs less";
    case ORK_CONV_BAD_EDIT:
        return "an edit named an unknown parameter or gave a null value; the task can only be deleted now";
    case ORK_CONV_FIXED_PARAMETER:
        return "an edit named a parameter that belongs to the creation; the task can only be deleted now";
    case ORK_CONV_BAD_START:
        return "start lies outside the full result: 0 to xshape + yshape - 2 in a convolution, lags 1 - xshape to "
               "yshape - 1 in a correlation";
    case ORK_CONV_BAD_DECIMATION:
        return "decimation is below 1, or start + (zshape - 1) decimation lies beyond the full result";
    case ORK_CONV_BAD_X_SHAPE:
        return "an extent of x is below 1";
    case ORK_CONV_BAD_Y_SHAPE:
        return "an extent of y is below 1";
    case ORK_CONV_BAD_Z_SHAPE:
        return "an extent of z is below 1";
    case ORK_CONV_BAD_Z_STRIDE:
        return "a stride of z is 0";
    case ORK_CONV_NULL_X:
        return "x is a null pointer, or execx is called on a task that has no x of its own";
    case ORK_CONV_NULL_Y:
        return "y is a null pointer";
    case ORK_CONV_NULL_Z:
        return "z is a null pointer";
    default:
        return "not a status of convolution tasks";
    }
}

// SPDX-License-Identifier: MIT
#include "export.h"
#include "ork/conv.h"

ORK_EXPORT const char* ork_conv_status_text(int32_t status)
{
    switch (status) {
    case ORK_CONV_OK:
        return "no error";
    case ORK_CONV_NO_TASK_MEMORY:
        return "no memory for the task";
    case ORK_CONV_NULL:
        return "a null pointer was given for a task or a shape";
    case ORK_CONV_UNSUPPORTED:
        return "no kernel for this job, precision, internal precision or number of dimensions";
    case ORK_CONV_NO_WORK_MEMORY:
        return "no memory for the work arrays of a run";
    case ORK_CONV_BAD_EDIT:
        return "the parameter to edit is unknown, or its value is null";
    case ORK_CONV_FIXED_PARAMETER:
        return "the parameter can't be changed after the task was created";
    case ORK_CONV_BAD_START:
        return "start lies outside the full result";
    case ORK_CONV_BAD_DECIMATION:
        return "decimation is less than 1, or leads beyond the end of the full result";
    case ORK_CONV_BAD_X_SHAPE:
        return "the shape of x has an extent less than 1";
    case ORK_CONV_BAD_Y_SHAPE:
        return "the shape of y has an extent less than 1";
    case ORK_CONV_BAD_Z_SHAPE:
        return "the shape of z has an extent less than 1";
    case ORK_CONV_BAD_Z_STRIDE:
        return "a stride of z is 0";
    case ORK_CONV_NULL_X:
        return "x is null";
    case ORK_CONV_NULL_Y:
        return "y is null";
    case ORK_CONV_NULL_Z:
        return "z is null";
    default:
        return "unknown status";
    }
}

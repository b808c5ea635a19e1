// SPDX-License-Identifier: MIT
// Convolution by Fourier transforms, through the core's descriptors.
#pragma once

#include "conv/problem.h"

namespace ork::conv {

// What depends on the shapes only: sizes of transforms, descriptors. Read-only once it is made.
struct TransformPlan;
// What is kept of an x that stays the same.
struct KeptOperand;

// Status 0, or -2001 when there is no memory. Data pointers and strides are not looked at.
int make_plan(const Problem& problem, TransformPlan** plan);
void free_plan(TransformPlan* plan); // null is fine

int keep_x(const TransformPlan& plan, const Problem& problem, KeptOperand** kept);
void free_kept(KeptOperand* kept); // null is fine

// Status 0 or -2001. With `kept`, problem.x is not read.
int convolve(const TransformPlan& plan, const Problem& problem, const KeptOperand* kept);

// Seconds, roughly, that `convolve` takes on one thread.
double cost_of_transforms(const Problem& problem);

} // namespace ork::conv

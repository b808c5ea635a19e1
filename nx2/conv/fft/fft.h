// SPDX-License-Identifier: MIT
// Convolution by Fourier transforms, through the core's descriptors.
//
// A number of the result is off by at most 8 eps log2(2 N) |x|_2 |y|_2, with N the numbers of x and y together, eps the
// precision computed in and Euclidean norms; single results of double computations are rounded on top. Bits depend on
// shapes, start and decimation alone, not on strides, threads or how often a plan has been used.
#pragma once

#include "conv/problem.h"

namespace ork::conv {

// What depends on the shapes only: sizes of transforms, descriptors. Read-only once it is made.
struct TransformPlan;
// What is kept of an x that stays the same: its transforms, unless they took much more memory than x does.
struct KeptOperand;

// Status 0, or -2001 when there is no memory. Data pointers and strides are not looked at.
int make_plan(const Problem& problem, TransformPlan** plan);
void free_plan(TransformPlan* plan); // null is fine

int keep_x(const TransformPlan& plan, const Problem& problem, KeptOperand** kept);
void free_kept(KeptOperand* kept); // null is fine

// Status 0 or -2001. With `kept`, x must still be what it was: what was not kept is read again. Results have the same
// bits with and without.
int convolve(const TransformPlan& plan, const Problem& problem, const KeptOperand* kept);

// Seconds, roughly, that `convolve` takes on one thread.
double cost_of_transforms(const Problem& problem);

} // namespace ork::conv

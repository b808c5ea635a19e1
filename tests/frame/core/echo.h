// SPDX-License-Identifier: MIT
// Stand-ins for the core's routines that answer with a mixture of their name and of every argument, in registers and on
// the stack, so a forwarding entry that loses or crosses anything gives another answer.
#pragma once

#include <complex>
#include <cstdint>

namespace ork::test {

using Int = std::int64_t;

// Six integers and eight floating-point numbers travel in registers, the rest on the stack.
using Echo = double(Int, Int, Int, Int, Int, Int, Int, Int, double, double, double, double, double, double, double,
                    double, double);
using EchoFloat = std::complex<float>(const float*, const Int*, float);
using EchoDouble = std::complex<double>(const double*, const Int*, double);
using EchoMany = Int(Int count, ...); // the sum of `count` doubles: takes their number from a register

constexpr double mixture(const char* name, Int i0, Int i1, Int i2, Int i3, Int i4, Int i5, Int i6, Int i7, double d0,
                         double d1, double d2, double d3, double d4, double d5, double d6, double d7, double d8)
{
    double sum = 0, weight = 1;
    for (const char* c = name; *c != 0; ++c) sum = sum * 3 + *c;
    for (double term : {double(i0), double(i1), double(i2), double(i3), double(i4), double(i5), double(i6), double(i7),
                        d0, d1, d2, d3, d4, d5, d6, d7, d8})
        sum += term * (weight += 0.5);
    return sum;
}

// Looks every entry up in the kernel library (its dlopen handle) and calls it twice: the first call binds it, the
// second jumps. The number of the first entry that answers wrongly, counted from 1; 0 when all are right.
int wrong_same_named_entry(void* kernel_library);
int wrong_renamed_entry(void* kernel_library);

} // namespace ork::test

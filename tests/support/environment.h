// SPDX-License-Identifier: MIT
// What a call leaves behind besides its results: floating-point control and flags, and how much stack it needed.
#pragma once

#include <cstddef>
#include <functional>

#include <gtest/gtest.h>

namespace ork::test {

// Bits of the exception flags in MXCSR.
enum FpFlag : unsigned {
    fp_invalid = 1,
    fp_denormal = 2,
    fp_divide = 4,
    fp_overflow = 8,
    fp_underflow = 16,
    fp_inexact = 32
};

// Calls the function with all exception flags clear, and in turn with rounding to nearest, and with the least usual
// control word (rounding towards zero, flush-to-zero and denormals-are-zero on) unless default_control_only. Fails when
// the control word of SSE or x87 changed or a flag outside `allowed` was raised. The caller's environment is restored.
testing::AssertionResult keeps_fp_environment(const std::function<void()>& function, unsigned allowed = fp_inexact,
                                              bool default_control_only = false);

// Exception flags that the call raised, in the environment that the caller has.
unsigned fp_flags_of(const std::function<void()>& function);

// Runs the function on a stack of its own of this many bytes above an inaccessible page. Sanitizers get eight times as
// much: their frames are larger and say nothing about the real ones.
void run_on_small_stack(std::size_t bytes, const std::function<void()>& function);
inline constexpr std::size_t small_stack = 64 << 10;

} // namespace ork::test

// SPDX-License-Identifier: MIT
// The C interface of FFTW 3, as its manual has it, in the precision of this build: names begin with fftw_ for double
// and fftwf_ for single. FFTW's arrays have their last dimension contiguous; nothing is scaled.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "ork/types.h"

#ifdef ORK_FFTW_SINGLE
using Number = float;
#define FFTW(name) fftwf_##name
#define FFTW_TEXT "fftwf"
#else
using Number = double;
#define FFTW(name) fftw_##name
#define FFTW_TEXT "fftw"
#endif
#define ENTRY extern "C" __attribute__((visibility("default")))

namespace ork::fftw {

using Complex = Number[2];
struct Plan;

template <class Int>
struct IoDim {
    Int n, is, os; // length, strides of input and output
};
using IoDim32 = IoDim<int>;
using IoDim64 = IoDim<std::ptrdiff_t>;

enum Sign { forward_sign = -1, backward_sign = 1 };

} // namespace ork::fftw

// SPDX-License-Identifier: MIT
// The six transforms on n, n + 1 or n - 1 adjacent numbers.
#pragma once

#include "pde/trig/state.h"

namespace ork::pde {

enum class Way { forward, backward };

// What the kernels of one committed transform use; `table` is the caller's and read only.
template <class R>
struct TrigPlan {
    Int type, n;
    const R* table;
    const ork_dft_descriptor* dft;
};

// Length of the Fourier transform.
template <class R>
Int dft_length(Int type, Int n);
// Writes the tables of a type.
template <class R>
void make_tables(Int type, Int n, R* table);

// Numbers of work memory, which is aligned to 64 bytes.
template <class R>
Int work_numbers(Int type, Int n);

// Twice the plain sum times `factor`, in place. The first element is f[0], for type 3 f[1]: see ork/abi/pde.h for what
// is read and written. Gives a status of the Fourier transform.
template <class R>
Int transform(const TrigPlan<R>& plan, Way way, R factor, R* f, R* work);

} // namespace ork::pde

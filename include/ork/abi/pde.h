/* SPDX-License-Identifier: MIT */
// Kernels of trigonometric transforms and of Poisson and Helmholtz solvers, and what they call of the core: names,
// arguments, contracts. C++: a core looks the kernels up by name.
//
//     ork_pdett_<tag>_<p>_<stage>_trig_transform       d forward; free has no precision
//     ork_pdepl_<tag>_<p>_<stage>_<problem>            d init helmholtz_2d; the solve has no stage, free no precision
//
// p is s or d. Every argument is an address, integers have 64 bits; a handle is the address of the pointer to a
// descriptor of Fourier transforms. A core's routine of a stage takes the work record of its solve.
#ifndef ORK_ABI_PDE_H
#define ORK_ABI_PDE_H

#include <cstdint>

#include "ork/dft.h"

namespace ork::pde {

using Int = std::int64_t;

// Statuses of every stage, stored in stat and in the array of integers.
enum Status : Int { ok = 0, bad_argument = -100, transform_failed = -1000, bad_state = -10000, running = -99999 };

template <class R>
struct TrigCalls {
    using init = void(const Int* n, const Int* type, Int* ipar, R* fpar, Int* stat);
    using commit = void(R* f, ork_dft_descriptor** handle, Int* ipar, R* fpar, Int* stat);
    using forward = commit;
    using backward = commit;
    using free = void(ork_dft_descriptor** handle, Int* ipar, Int* stat);

    // forward or backward of `count` lines at once, by any number of threads: element i of line k is
    // f[k distance + i stride]; ipar and fpar are read only and no message is built. A committed transform with its
    // scaling and nothing else: bits are those of single calls. Gives the status.
    using lines = Int(const Int* backward, R* f, const Int* count, const Int* stride, const Int* distance,
                      ork_dft_descriptor** handle, const Int* ipar, const R* fpar);
};

// Shared by the stages of one solve. Arrays of the boundary that a problem has not are null.
template <class R>
struct Work {
    R* f; // x fastest, (nx + 1) (ny + 1) (nz + 1) numbers, nz = 0 in two dimensions
    const R *bd_ax, *bd_bx, *bd_ay, *bd_by, *bd_az, *bd_bz;
    Int* ipar;
    R* fpar;
    Int nx, ny, nz;
    ork_dft_descriptor **xhandle, **yhandle;
    Int singular; // 1: the problem has a solution but for a constant, if at all
    Int status;   // 0; anything else is a failure
};

template <class R>
using Stage = void(Work<R>* work);

} // namespace ork::pde

#endif

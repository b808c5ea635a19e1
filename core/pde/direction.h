// SPDX-License-Identifier: MIT
// Lines taken to coefficients along a transformed direction, and back. ork/abi/pde.h says which mode lands where.
#pragma once

#include "pde/grid.h"

namespace ork::pde {

// Element i of line k is f[k distance + i stride]; one of stride and distance is 1.
template <class R>
struct LineSet {
    R* f;
    Int count, stride, distance;
};

template <class R>
class Direction {
public:
    Direction(const Work<R>& work, int direction); // 0 x, 1 y

    // Coefficients taken back are the numbers divided by this.
    R norm() const;
    // Gives 0 or the status of a stage.
    Int forward(const LineSet<R>& lines) const { return run(lines, false); }
    Int backward(const LineSet<R>& lines) const { return run(lines, true); }

private:
    struct Transform {
        ork_dft_descriptor** handle;
        const Int* ipar;
        const R* fpar;
        Int run(R* f, Int count, Int stride, Int distance, bool backward) const;
    };

    Int run(const LineSet<R>& lines, bool backward) const;
    Int run_halves(const LineSet<R>& lines, bool backward) const;
    Int run_whole(const LineSet<R>& lines, bool backward) const;

    Pair pair_;
    Int path_, n_;
    Transform first_, second_;
};

} // namespace ork::pde

// SPDX-License-Identifier: MIT
// What the real dimension of a node has for its plan.
#pragma once

#include "dft/node/node.h"
#include "dft/real/real.h"

namespace ork::dft {

template <class R>
struct RealNode {
    RealPlan<R>* plan;
    Packing packing;
    PackedColumns<R> columns; // of two packed dimensions; real is owned, complex is the second dimension's
};

} // namespace ork::dft

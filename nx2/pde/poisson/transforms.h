// SPDX-License-Identifier: MIT
// The trigonometric transforms of a solver, by entries of this library.
#pragma once

#include "ork/abi/pde.h"
#include "pde/trig/state.h"

extern "C" {
ork::pde::TrigCalls<float>::init ork_pdett_nx2_s_init_trig_transform;
ork::pde::TrigCalls<double>::init ork_pdett_nx2_d_init_trig_transform;
ork::pde::TrigCalls<float>::commit ork_pdett_nx2_s_commit_trig_transform;
ork::pde::TrigCalls<double>::commit ork_pdett_nx2_d_commit_trig_transform;
ork::pde::TrigCalls<double>::free ork_pdett_nx2_free_trig_transform;
}

namespace ork::pde {

inline void init_transform(Int n, Int type, Int* ipar, float* fpar, Int* stat)
{
    ork_pdett_nx2_s_init_trig_transform(&n, &type, ipar, fpar, stat);
}
inline void init_transform(Int n, Int type, Int* ipar, double* fpar, Int* stat)
{
    ork_pdett_nx2_d_init_trig_transform(&n, &type, ipar, fpar, stat);
}
inline void commit_transform(float* f, ork_dft_descriptor** handle, Int* ipar, float* fpar, Int* stat)
{
    ork_pdett_nx2_s_commit_trig_transform(f, handle, ipar, fpar, stat);
}
inline void commit_transform(double* f, ork_dft_descriptor** handle, Int* ipar, double* fpar, Int* stat)
{
    ork_pdett_nx2_d_commit_trig_transform(f, handle, ipar, fpar, stat);
}

} // namespace ork::pde

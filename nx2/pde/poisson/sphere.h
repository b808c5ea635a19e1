// SPDX-License-Identifier: MIT
// The arrays of a problem on the sphere, and the transforms in longitude that it calls.
#pragma once

#include "ork/abi/pde_sphere.h"
#include "pde/poisson/state.h"

extern "C" {
ork::pde::TrigCalls<float>::lines ork_pdett_nx2_s_lines_trig_transform;
ork::pde::TrigCalls<double>::lines ork_pdett_nx2_d_lines_trig_transform;
}

namespace ork::pde {

inline Int transform_lines(Int backward, float* f, Int count, Int distance, ork_dft_descriptor** handle,
                           const Int* ipar, const float* fpar)
{
    const Int stride = 1;
    return ork_pdett_nx2_s_lines_trig_transform(&backward, f, &count, &stride, &distance, handle, ipar, fpar);
}
inline Int transform_lines(Int backward, double* f, Int count, Int distance, ork_dft_descriptor** handle,
                           const Int* ipar, const double* fpar)
{
    const Int stride = 1;
    return ork_pdett_nx2_d_lines_trig_transform(&backward, f, &count, &stride, &distance, handle, ipar, fpar);
}

// Where everything stands in fpar, from 0. Sines and cosines of period `length` half turns: the half circle that a
// mirror image completes, or for an odd np the circle, whose image is the circle once more.
struct SpherePlan {
    Int circles, length, eigenvalues, latitudes, sine, cosine;

    SpherePlan(bool around, Int np, Int nt)
        : circles(around && np % 2 == 0 && np >= 4 ? 2 : 1), length(np / circles), eigenvalues(reals_before_tables),
          latitudes(eigenvalues + length + 1), sine(latitudes + 2 * nt + 3),
          cosine(around ? sine + transform_reals(length) : sine)
    {
    }
};

// All that a solve goes by when it reads or writes arrays.
template <bool around>
Int sphere_seal(const Int* ipar)
{
    Seal seal;
    seal.add(around);
    for (const int entry : {SphereArray::west, SphereArray::east, SphereArray::north, SphereArray::south,
                            SphereArray::np, SphereArray::nt})
        seal.add(ipar[entry]);
    for (const int transform : {SphereArray::sine, SphereArray::cosine})
        for (const int entry : {trig_n, trig_type, trig_status, trig_unscaled}) seal.add(ipar[transform + entry]);
    return seal.value();
}

// Nothing holds the constants: both poles are unknown, and q is nothing beside the other terms.
template <class R>
bool sphere_singular(const Int* ipar, const R* fpar)
{
    const R ht = fpar[1] / static_cast<R>(ipar[SphereArray::nt]), shift = ht * ht * fpar[at_q];
    return ipar[SphereArray::north] == side_pole && ipar[SphereArray::south] == side_pole &&
           shift <= fpar[at_tolerance] && -shift <= fpar[at_tolerance];
}

constexpr double pi = 3.14159265358979323846;

} // namespace ork::pde

// SPDX-License-Identifier: MIT
// The core's Fourier transforms of real numbers, as trigonometric transforms use them: in place, adjacent, packed as
// R0 R(n/2) R1 I1 ... (R0 R1 I1 ... for odd n).
#pragma once

#include <type_traits>

#include "frame/core_imports.h"
#include "pde/trig/state.h"

namespace ork::pde {

// Gives the transform's status; a failure leaves no descriptor.
template <class R>
Int make_dft(ork_dft_descriptor** handle, Int length, Int user_threads)
{
    Int status;
    if constexpr (std::is_same_v<R, float>)
        status = ork_dft_dfticreatedescriptor_s_1d(handle, ORK_DFT_REAL, length);
    else
        status = ork_dft_dfticreatedescriptor_d_1d(handle, ORK_DFT_REAL, length);
    if (status != 0) return status;
    status = ork_dft_dftisetvalue(*handle, ORK_DFT_PACKED_FORMAT, ORK_DFT_PERM);
    if (status == 0) status = ork_dft_dftisetvalue(*handle, ORK_DFT_CONJUGATE_EVEN_STORAGE, ORK_DFT_COMPLEX_REAL);
    if (status == 0 && user_threads >= 2)
        status = ork_dft_dftisetvalue(*handle, ORK_DFT_NUMBER_OF_USER_THREADS, user_threads);
    if (status == 0) status = ork_dft_dfticommitdescriptor(*handle);
    if (status != 0) ork_dft_dftifreedescriptor(handle);
    return status;
}

} // namespace ork::pde

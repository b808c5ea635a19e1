// SPDX-License-Identifier: MIT
// Passes by radix.
#include "dft/engine/radix_list.h"

namespace ork::dft {

template <class R>
const Kernels<R>* kernels(int radix)
{
#define CASE(r)                                                                                                        \
    case r:                                                                                                            \
        return &Radix<r, R>::kernels;
    switch (radix) {
        ORK_RADICES(CASE)
    }
    if constexpr (sizeof(R) == sizeof(double)) switch (radix) {
            ORK_LAST_RADICES(CASE)
        }
    return nullptr;
}
template const Kernels<float>* kernels<float>(int);
template const Kernels<double>* kernels<double>(int);

} // namespace ork::dft

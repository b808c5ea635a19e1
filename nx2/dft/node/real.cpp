// SPDX-License-Identifier: MIT
#include "dft/node/divide.h"

namespace ork::dft {
template <class R>
std::int32_t plan_real(ork_dft_node&)
{
    return ORK_DFT_UNSUPPORTED;
}
template <class R>
std::int32_t make_real_stages(ork_dft_node&)
{
    return ORK_DFT_UNSUPPORTED;
}
template <class R>
void free_real(void*)
{
}
template std::int32_t plan_real<float>(ork_dft_node&);
template std::int32_t plan_real<double>(ork_dft_node&);
template std::int32_t make_real_stages<float>(ork_dft_node&);
template std::int32_t make_real_stages<double>(ork_dft_node&);
template void free_real<float>(void*);
template void free_real<double>(void*);
} // namespace ork::dft

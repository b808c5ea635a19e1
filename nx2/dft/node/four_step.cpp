// SPDX-License-Identifier: MIT
#include "dft/node/divide.h"

namespace ork::dft {
template <class R>
std::int32_t make_four_step(ork_dft_node&)
{
    return ORK_DFT_NOT_APPLICABLE;
}
template <class R>
void free_four_step(ork_dft_four_step*)
{
}
template <class R>
void divide_four_step(const ork_dft_node&, StageList&)
{
}
template <class R, Direction direction>
std::int32_t four_step_kernel(const void*, void*, const void*, void*)
{
    return ORK_DFT_UNSUPPORTED;
}
template std::int32_t make_four_step<float>(ork_dft_node&);
template std::int32_t make_four_step<double>(ork_dft_node&);
template void free_four_step<float>(ork_dft_four_step*);
template void free_four_step<double>(ork_dft_four_step*);
template void divide_four_step<float>(const ork_dft_node&, StageList&);
template void divide_four_step<double>(const ork_dft_node&, StageList&);
template std::int32_t four_step_kernel<float, Direction::forward>(const void*, void*, const void*, void*);
template std::int32_t four_step_kernel<float, Direction::backward>(const void*, void*, const void*, void*);
template std::int32_t four_step_kernel<double, Direction::forward>(const void*, void*, const void*, void*);
template std::int32_t four_step_kernel<double, Direction::backward>(const void*, void*, const void*, void*);
} // namespace ork::dft

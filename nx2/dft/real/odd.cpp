// SPDX-License-Identifier: MIT
#include "dft/real/odd.h"
namespace ork::dft {
template <class R>
int make_odd_plan(std::int64_t, OddPlan<R>** plan)
{
    *plan = nullptr;
    return 0;
}
template <class R>
void free_odd_plan(OddPlan<R>*)
{
}
template <class R>
std::size_t work_bytes(const OddPlan<R>&)
{
    return 0;
}
#define INSTANTIATE(R)                                                                                                 \
    template int make_odd_plan(std::int64_t, OddPlan<R>**);                                                            \
    template void free_odd_plan(OddPlan<R>*);                                                                          \
    template std::size_t work_bytes(const OddPlan<R>&);
INSTANTIATE(float)
INSTANTIATE(double)
} // namespace ork::dft

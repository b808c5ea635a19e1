// SPDX-License-Identifier: MIT
#include "conv/direct/direct.h"
#include "conv/direct/sum.h"

namespace ork::conv {
namespace {

template <int parts>
int sum_planned(const Problem& problem, const Plan& plan)
{
    if (problem.is_double) return sum_planned<double, double, parts>(problem, plan);
    return problem.computes_double ? sum_planned<float, double, parts>(problem, plan)
                                   : sum_planned<float, float, parts>(problem, plan);
}

} // namespace

int sum_grid(const Problem& problem)
{
    const Plan plan = plan_sums(problem);
    return problem.is_complex ? sum_planned<2>(problem, plan) : sum_planned<1>(problem, plan);
}

} // namespace ork::conv

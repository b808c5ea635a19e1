// SPDX-License-Identifier: MIT
// Plans of real transforms: dimension by dimension, the first from the input to the output, the others there.
#include <algorithm>
#include <cstdlib>

#include "plan.h"

namespace ork::fftw {
namespace {

constexpr int most_others = most_dimensions + most_loops - 1;

// Every line of one dimension; n, in and out of `others` tell where the lines begin.
struct Lines {
    const RealTransform* transform;
    std::int64_t in_stride, out_stride;
    int others = 0;
    Dimension other[most_others] = {};

    std::int64_t run(const Number* in, Number* out, Number* buffer, int loops) const
    {
        if (loops == 0) return transform->run(in, in_stride, out, out_stride, buffer);
        const Dimension& loop = other[loops - 1];
        std::int64_t status = 0;
        for (std::int64_t i = 0; i < loop.n && status == 0; ++i)
            status = run(in + i * loop.in, out + i * loop.out, buffer, loops - 1);
        return status;
    }
};

Number* memory(std::size_t numbers)
{
    void* address;
    return posix_memalign(&address, 64, numbers * sizeof(Number)) == 0 ? static_cast<Number*>(address) : nullptr;
}

} // namespace

bool make_real(Plan& plan)
{
    Problem& p = plan.problem;
    plan.transforms = static_cast<RealTransform*>(std::calloc(static_cast<std::size_t>(p.rank), sizeof(RealTransform)));
    if (plan.transforms == nullptr) return false;
    bool made = true;
    for (int d = 0; d < p.rank && made; ++d) made = plan.transforms[d].make(p.real_kind[d], p.dimension[d].n);
    return made;
}

void free_real(Plan& plan)
{
    if (plan.transforms == nullptr) return;
    for (int d = 0; d < plan.problem.rank; ++d) plan.transforms[d].release();
    std::free(plan.transforms);
}

std::int64_t execute_real(const Plan& plan, const Arrays& arrays)
{
    const Problem& p = plan.problem;
    std::size_t room = 0;
    for (int d = 0; d < p.rank; ++d) room = std::max(room, plan.transforms[d].room());
    Number* const buffer = memory(room);
    // An array that changes its strides is written to a copy, in which the output is dense, and then moved.
    Number* const whole = plan.scatter.wanted ? memory(static_cast<std::size_t>(plan.scatter.elements)) : nullptr;
    std::int64_t status = ORK_DFT_MEMORY_ERROR;
    if (buffer != nullptr && (whole != nullptr || !plan.scatter.wanted)) {
        Number* const out = whole != nullptr ? whole : arrays.out.re;
        status = 0;
        for (int d = 0; d < p.rank && status == 0; ++d) {
            const auto from = d == 0 ? &Dimension::in : &Dimension::out;
            Lines lines{plan.transforms + d, p.dimension[d].*from, p.dimension[d].out};
            const auto add = [&](const Dimension& other) {
                lines.other[lines.others++] = {other.n, other.*from, other.out};
            };
            for (int e = 0; e < p.rank; ++e)
                if (e != d) add(p.dimension[e]);
            for (int l = 0; l < p.loops; ++l) add(p.loop[l]);
            status = lines.run(d == 0 ? arrays.in.re : out, out, buffer, lines.others);
        }
    }
    if (status == 0 && whole != nullptr) scatter(plan.scatter, whole, arrays.out.re);
    std::free(whole);
    std::free(buffer);
    return status;
}

} // namespace ork::fftw

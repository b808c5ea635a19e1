// SPDX-License-Identifier: MIT
// The kernel pairs that a commit gives to a dimension: one transform of unit stride. The plan is the engine's, of the
// four-step pair its record.
#include "dft/node/node.h"
#include "dft/primitives/wrappers.h"

namespace ork::dft {
namespace {

struct Arguments {
    double scale = 1;
    void* work = nullptr;
    explicit Arguments(const void* argument)
    {
        if (argument == nullptr) return;
        const auto& given = *static_cast<const ork_dft_argument*>(argument);
        scale = given.scale, work = given.work;
    }
};

template <class R, Direction direction>
std::int32_t power_of_two_kernel(const void* in, void* out, const void* plan, void* argument)
{
    const Arguments given(argument);
    return Primitives<R>::transform(in, out, length(plan_of<R>(plan)), plan, static_cast<int>(direction), given.scale,
                                    given.work);
}

template <class R, Direction direction>
std::int32_t mixed_kernel(const void* in, void* out, const void* plan, void* argument)
{
    const Arguments given(argument);
    const auto run = [&](void* work) {
        transform<R>(plan_of<R>(plan), direction, static_cast<R>(given.scale), static_cast<const Complex<R>*>(in),
                     static_cast<Complex<R>*>(out), work);
        return static_cast<std::int32_t>(ORK_DFT_OK);
    };
    return given.work != nullptr ? run(given.work) : with_work(work_bytes(plan_of<R>(plan)), run);
}

template <class R, Direction direction>
std::int32_t batched_kernel(const void* in, void* out, const void* plan, void* argument)
{
    const Arguments given(argument);
    auto* from = const_cast<R*>(static_cast<const R*>(in));
    auto* to = static_cast<R*>(out);
    const ork_dft_place in_place = {from, from + 1, 2, 0}, out_place = {to, to + 1, 2, 0};
    return Primitives<R>::batch(&in_place, &out_place, 1, plan, static_cast<int>(direction), given.scale, given.work);
}

template <class R, Direction direction>
std::int32_t split_kernel(const void* in, void* out, const void* plan, void* argument)
{
    const Arguments given(argument);
    const auto place = [](const void* parts) -> Place<R> {
        const auto& split = *static_cast<const ork_dft_split*>(parts);
        return {static_cast<R*>(split.re), static_cast<R*>(split.im), 1, 0};
    };
    const auto run = [&](void* work) {
        transform<R>(plan_of<R>(plan), direction, static_cast<R>(given.scale), place(in), place(out), 1, work);
        return static_cast<std::int32_t>(ORK_DFT_OK);
    };
    return given.work != nullptr ? run(given.work) : with_work(work_bytes(plan_of<R>(plan), 1), run);
}

} // namespace

template <class R, Direction direction>
std::int32_t four_step_kernel(const void* in, void* out, const void* plan, void* argument);

#define BOTH(kernel)                                                                                                   \
    {                                                                                                                  \
        kernel<R, Direction::forward>, kernel<R, Direction::backward>                                                  \
    }
template <class R>
ork_dft_kernel* const Kernels<R>::power_of_two[2] = BOTH(power_of_two_kernel);
template <class R>
ork_dft_kernel* const Kernels<R>::mixed[2] = BOTH(mixed_kernel);
template <class R>
ork_dft_kernel* const Kernels<R>::batched[2] = BOTH(batched_kernel);
template <class R>
ork_dft_kernel* const Kernels<R>::split[2] = BOTH(split_kernel);
template <class R>
ork_dft_kernel* const Kernels<R>::four_step[2] = BOTH(four_step_kernel);
#undef BOTH
template struct Kernels<float>;
template struct Kernels<double>;

} // namespace ork::dft

// SPDX-License-Identifier: MIT
// One transform, and a batch, behind the checks of the primitives.
#include "dft/node/node.h"
#include "dft/primitives/wrappers.h"

namespace ork::dft {
namespace {

template <class R>
[[gnu::always_inline]] inline std::int32_t one(const void* in, void* out, std::int64_t n, const void* plan,
                                               std::int32_t direction, double scale, void* work)
{
    if (in == nullptr || out == nullptr || plan == nullptr) return ORK_DFT_PRIMITIVE_NULL;
    if (n < 1) return ORK_DFT_PRIMITIVE_LENGTH;
    const auto run = [=](void* memory) {
        transform<R>(plan_of<R>(plan), static_cast<Direction>(direction), static_cast<R>(scale),
                     static_cast<const Complex<R>*>(in), static_cast<Complex<R>*>(out), memory);
        return static_cast<std::int32_t>(ORK_DFT_OK);
    };
    return work != nullptr ? run(work) : with_work(work_bytes(plan_of<R>(plan)), run);
}

template <class R>
inline Place<R> place_of(const ork_dft_place& place)
{
    return {static_cast<R*>(place.re), static_cast<R*>(place.im), place.stride, place.distance};
}

template <class R>
[[gnu::always_inline]] inline std::int32_t batch(const ork_dft_place* in, const ork_dft_place* out, std::int64_t count,
                                                 const void* plan, std::int32_t direction, double scale, void* work)
{
    if (in == nullptr || out == nullptr || plan == nullptr) return ORK_DFT_PRIMITIVE_NULL;
    if (in->re == nullptr || in->im == nullptr || out->re == nullptr || out->im == nullptr)
        return ORK_DFT_PRIMITIVE_NULL;
    if (count < 1) return ORK_DFT_PRIMITIVE_LENGTH;
    const auto run = [=](void* memory) {
        transform<R>(plan_of<R>(plan), static_cast<Direction>(direction), static_cast<R>(scale), place_of<R>(*in),
                     place_of<R>(*out), count, memory);
        return static_cast<std::int32_t>(ORK_DFT_OK);
    };
    return work != nullptr ? run(work) : with_work(work_bytes(plan_of<R>(plan), count), run);
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

ORK_PRIMITIVE std::int32_t ork_dft_nx2_ufx_transform_c(const void* in, void* out, std::int64_t n, const void* plan,
                                                       std::int32_t direction, double scale, void* work)
{
    return one<float>(in, out, n, plan, direction, scale, work);
}
ORK_PRIMITIVE std::int32_t ork_dft_nx2_ufx_transform_z(const void* in, void* out, std::int64_t n, const void* plan,
                                                       std::int32_t direction, double scale, void* work)
{
    return one<double>(in, out, n, plan, direction, scale, work);
}
ORK_PRIMITIVE std::int32_t ork_dft_nx2_ufx_batch_c(const ork_dft_place* in, const ork_dft_place* out,
                                                   std::int64_t count, const void* plan, std::int32_t direction,
                                                   double scale, void* work)
{
    return batch<float>(in, out, count, plan, direction, scale, work);
}
ORK_PRIMITIVE std::int32_t ork_dft_nx2_ufx_batch_z(const ork_dft_place* in, const ork_dft_place* out,
                                                   std::int64_t count, const void* plan, std::int32_t direction,
                                                   double scale, void* work)
{
    return batch<double>(in, out, count, plan, direction, scale, work);
}

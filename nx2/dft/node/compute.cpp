// SPDX-License-Identifier: MIT
// The entries that compute a whole descriptor on the calling thread.
#include "dft/node/node.h"
#include "frame/export.h"

namespace ork::dft {
namespace {

// One transform of unit stride: the kernel and nothing else.
template <class R, Direction direction, bool apart>
[[gnu::always_inline]] inline std::int32_t single(const ork_dft_node& node, void* const* arrays)
{
    constexpr bool forward = direction == Direction::forward;
    ork_dft_kernel* const kernel = forward ? node.forward_kernel : node.backward_kernel;
    const R scale = scale_of<R>(node, direction);
    ork_dft_argument argument = {scale, nullptr};
    const std::int64_t input = node.input_offset, output = apart ? node.output_offset : input;
    const std::int64_t read = forward ? input : output, written = forward ? output : input;
    if (split(node)) {
        const int second = apart ? 2 : 0;
        const auto part = [&](int i, std::int64_t offset) { return static_cast<R*>(arrays[i]) + offset; };
        const ork_dft_split from = {part(0, read), part(1, read)};
        const ork_dft_split to = {part(second, written), part(second + 1, written)};
        return kernel(&from, apart ? const_cast<ork_dft_split*>(&to) : const_cast<ork_dft_split*>(&from), node.plan,
                      &argument);
    }
    // In place the sides of real data begin at the same address.
    const bool real = node.domain.domain == ORK_DFT_REAL;
    const std::int64_t real_unit = real ? 1 : 2, spectrum_unit = real && (packed(node) || !apart) ? 1 : 2;
    const auto* from = static_cast<const R*>(arrays[0]) + read * (forward ? real_unit : spectrum_unit);
    auto* to = static_cast<R*>(arrays[apart ? 1 : 0]) + written * (forward ? spectrum_unit : real_unit);
    const std::int32_t status = kernel(from, to, node.plan, &argument);
    if ((node.flags & ORK_DFT_FLAG_UNSCALED) == 0 || scale == R(1)) return status;
    if constexpr (is_double<R>)
        ork_dft_nx2_dft_zdscal(node.length, scale, reinterpret_cast<ork_complex_double*>(to), 1);
    else
        ork_dft_nx2_dft_csscal(node.length, scale, reinterpret_cast<ork_complex_float*>(to), 1);
    return status;
}

template <class R, Direction direction, bool apart>
inline std::int32_t compute(ork_dft_node* node, void* const* arrays)
{
    if ((node->flags & ORK_DFT_FLAG_PLAIN) != 0) [[likely]] {
        ork_dft_kernel* const kernel = direction == Direction::forward ? node->forward_kernel : node->backward_kernel;
        return kernel(arrays[0], arrays[apart ? 1 : 0], node->plan, nullptr);
    }
    if ((node->flags & ORK_DFT_FLAG_SINGLE) != 0) return single<R, direction, apart>(*node, arrays);
    if (node->rank == 2) {
        if (node->two_d != nullptr) return node->two_d(node, arrays, static_cast<std::int32_t>(direction));
        ork_dft_compute* const real = direction == Direction::forward ? node->two_d_forward : node->two_d_backward;
        if (real != nullptr) return real(node, arrays);
    }
    return ork_dft_nx2_run_stages(node, arrays, static_cast<std::int32_t>(direction));
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT std::int32_t ork_dft_nx2_run_stages(const ork_dft_node* node, void* const* arrays, std::int32_t direction)
{
    if ((node->flags & ORK_DFT_FLAG_PLANNED) == 0) return ORK_DFT_NOT_PLANNED;
    ork_dft_call call = {arrays, nullptr, direction};
    if (node->shared_bytes > 0) {
        call.shared = ork_dft_ufxMalloc(node->shared_bytes);
        if (call.shared == nullptr) return ORK_DFT_NO_MEMORY;
    }
    std::int32_t status = ORK_DFT_OK;
    for (std::int32_t i = 0; i < node->stages[direction] && status == ORK_DFT_OK; ++i) {
        const ork_dft_stage& stage = node->stage[direction][i];
        status = stage.run(node, &call, &stage, 0, stage.units);
    }
    if (call.shared != nullptr) ork_dft_ufxFree(call.shared);
    return status;
}

#define COMPUTE(name, R, direction, apart)                                                                             \
    ORK_EXPORT std::int32_t ork_dft_nx2_##name(ork_dft_node* node, void* const* arrays)                                \
    {                                                                                                                  \
        return compute<R, Direction::direction, apart>(node, arrays);                                                  \
    }
COMPUTE(xzforward, double, forward, false)
COMPUTE(xzbackward, double, backward, false)
COMPUTE(xzforward_out, double, forward, true)
COMPUTE(xzbackward_out, double, backward, true)
COMPUTE(xcforward, float, forward, false)
COMPUTE(xcbackward, float, backward, false)
COMPUTE(xcforward_out, float, forward, true)
COMPUTE(xcbackward_out, float, backward, true)

#define TWO_D(name)                                                                                                    \
    ORK_EXPORT std::int32_t ork_dft_nx2_##name(ork_dft_node* node, void* const* arrays, std::int32_t direction)        \
    {                                                                                                                  \
        return ork_dft_nx2_run_stages(node, arrays, direction);                                                        \
    }
TWO_D(xzdft2d)
TWO_D(xzdft2d_out)
TWO_D(xcdft2d)
TWO_D(xcdft2d_out)

#define REAL_TWO_D(name, direction)                                                                                    \
    ORK_EXPORT std::int32_t ork_dft_nx2_##name(ork_dft_node* node, void* const* arrays)                                \
    {                                                                                                                  \
        return ork_dft_nx2_run_stages(node, arrays, direction);                                                        \
    }
REAL_TWO_D(xdzdft2d, ORK_DFT_FORWARD)
REAL_TWO_D(xzddft2d, ORK_DFT_BACKWARD)
REAL_TWO_D(xdzzdft2d, ORK_DFT_FORWARD)
REAL_TWO_D(xzzddft2d, ORK_DFT_BACKWARD)
REAL_TWO_D(xscdft2d, ORK_DFT_FORWARD)
REAL_TWO_D(xcsdft2d, ORK_DFT_BACKWARD)
REAL_TWO_D(xsccdft2d, ORK_DFT_FORWARD)
REAL_TWO_D(xccsdft2d, ORK_DFT_BACKWARD)

// SPDX-License-Identifier: MIT
// Prime lengths in single precision. The numbers x[j] + x[p - j], which cosines multiply, fill the lower half of a
// register and -i (x[j] - x[p - j]), which sines multiply, the upper one: half of the products and sums of butterfly.h.
#pragma once

#include "dft/butterfly.h"
#include "dft/pair.h"

namespace ork::dft {

// By the angle 2 pi i / p, and in which of them the output k takes the input j: group by group of outputs, within it
// all j, for each the outputs of the group.
template <int p, Direction direction>
struct HalvesTable {
    static constexpr int m = (p - 1) / 2, groups = (m + 11) / 12;        // twelve registers of sums
    static constexpr int begin(int group) { return m * group / groups; } // first output of a group, less 1

    alignas(16) float factors[p][4];
    std::uint16_t offsets[m * m]; // bytes

    consteval HalvesTable() : factors(), offsets()
    {
        for (int i = 0; i < p; ++i) {
            const Root<float> w = root_of_unity<float>(i, p);
            const float s = direction == Direction::forward ? w.sin : -w.sin;
            factors[i][0] = factors[i][1] = w.cos;
            factors[i][2] = s;
            factors[i][3] = -s;
        }
        int i = 0;
        for (int group = 0; group < groups; ++group)
            for (int j = 1; j <= m; ++j)
                for (int k = begin(group) + 1; k <= begin(group + 1); ++k)
                    offsets[i++] = static_cast<std::uint16_t>(j * k % p * sizeof(factors[0]));
    }
};
template <int p, Direction direction>
inline constexpr HalvesTable<p, direction> halves_table;

template <int p, Direction direction>
[[gnu::always_inline]] inline void prime_by_halves(const float* in, float* out)
{
    constexpr const auto& table = halves_table<p, direction>;
    constexpr int m = table.m;
    Vec<float> terms[m];
    const Vec<float> first = load_low(in), signs = {_mm_setr_ps(0, 0, -0.0f, -0.0f)};
    Vec<float> all = first;
    unrolled<m>([&](auto i) ORK_INLINE_LAMBDA {
        constexpr int j = i + 1;
        const Vec<float> both = load<2>(in + 2 * j) + flipped(load<2>(in + 2 * (p - j)), signs);
        all = all + both;
        terms[i] = {_mm_shuffle_ps(both.v, both.v, _MM_SHUFFLE(2, 3, 1, 0))};
    });
    store<2>(out, all);

    const std::uint16_t* offset = table.offsets;
    unrolled<table.groups>([&](auto group) ORK_INLINE_LAMBDA {
        constexpr int begin = table.begin(group), outputs = table.begin(group + 1) - begin;
        Vec<float> sum[outputs];
        for (Vec<float>& a : sum) a = first;
        if constexpr (p <= 13) {
            unrolled<m>([&](auto j) ORK_INLINE_LAMBDA {
                unrolled<outputs>([&](auto k) ORK_INLINE_LAMBDA {
                    sum[k] = sum[k] + terms[j] * load_aligned(table.factors[(j + 1) * (k + 1) % p]);
                });
            });
        } else {
#pragma GCC unroll 1
            for (int j = 0; j < m; ++j, offset += outputs)
                unrolled<outputs>([&](auto k) ORK_INLINE_LAMBDA {
                    const char* const factor = reinterpret_cast<const char*>(table.factors) + offset[k];
                    sum[k] = sum[k] + terms[j] * load_aligned(reinterpret_cast<const float*>(factor));
                });
        }
        unrolled<outputs / 2>([&](auto pair) ORK_INLINE_LAMBDA {
            constexpr int k = begin + 1 + 2 * pair;
            const __m128 one = sum[2 * pair].v, two = sum[2 * pair + 1].v;
            const Vec<float> a = {_mm_movelh_ps(one, two)}, b = {_mm_movehl_ps(two, one)}, less = a - b;
            store(out + 2 * k, a + b);
            store<2>(out + 2 * (p - k), less);
            store_high(out + 2 * (p - k - 1), less);
        });
        if constexpr (outputs % 2 != 0) {
            constexpr int k = begin + outputs;
            const Vec<float> a = sum[outputs - 1], b = {_mm_movehl_ps(a.v, a.v)};
            store<2>(out + 2 * k, a + b);
            store<2>(out + 2 * (p - k), a - b);
        }
    });
}

} // namespace ork::dft

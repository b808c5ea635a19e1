// SPDX-License-Identifier: MIT
// Nodes of either precision by their exported entries, and references in long double.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "ork/abi/dft.h"
#include "support/fake_core.h"
#include "support/random.h"

namespace ork::test {

using Int = std::int64_t;
using Ints = std::vector<Int>;
using Arrays = std::initializer_list<void*>;
using wide = std::complex<long double>;

template <class R>
inline constexpr bool is_double = sizeof(R) == 8;

// A node with its settings; commit and compute go through the entries of its precision, domain and rank.
template <class R>
class Node {
public:
    explicit Node(const Ints& lengths, int domain = ORK_DFT_COMPLEX)
    {
        const bool real = domain == ORK_DFT_REAL;
        const auto rank = static_cast<Int>(lengths.size());
        Int status;
        if (rank == 1)
            status = (is_double<R> ? real ? ork_dft_nx2_dfti_create_dr1d : ork_dft_nx2_dfti_create_dc1d
                      : real       ? ork_dft_nx2_dfti_create_sr1d
                                   : ork_dft_nx2_dfti_create_sc1d)(&node_, lengths[0], &settings_);
        else
            status = (is_double<R> ? real ? ork_dft_nx2_dfti_create_drmd : ork_dft_nx2_dfti_create_dcmd
                      : real       ? ork_dft_nx2_dfti_create_srmd
                                   : ork_dft_nx2_dfti_create_scmd)(&node_, rank, lengths.data(), &settings_);
        EXPECT_EQ(status, ORK_DFT_OK);
    }
    ~Node() { ork_dft_nx2_dfti_free_node(&node_); }
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    ork_dft_node* operator->() const { return node_; }
    ork_dft_node* get() const { return node_; }
    ork_dft_settings& settings() { return settings_; }

    int commit() const
    {
        const bool many = node_->rank != 1, real = node_->domain.domain == ORK_DFT_REAL;
        if (is_double<R>)
            return (real   ? many ? ork_dft_nx2_commit_descriptor_core_d_r2c_md
                                  : ork_dft_nx2_commit_descriptor_core_d_r2c_1d
                    : many ? ork_dft_nx2_commit_descriptor_core_d_c2c_md
                           : ork_dft_nx2_commit_descriptor_core_d_c2c_1d)(node_);
        return (real ? many ? ork_dft_nx2_commit_descriptor_core_s_r2c_md : ork_dft_nx2_commit_descriptor_core_s_r2c_1d
                : many ? ork_dft_nx2_commit_descriptor_core_s_c2c_md
                       : ork_dft_nx2_commit_descriptor_core_s_c2c_1d)(node_);
    }
    int compute(int direction, Arrays arrays) const
    {
        return (direction == ORK_DFT_FORWARD ? node_->forward : node_->backward)(node_, arrays.begin());
    }
    // The stages with units taken in pieces of `piece`, the last ones first where units are independent.
    int compute_in_pieces(int direction, Arrays arrays, Int piece) const
    {
        std::vector<char> shared(static_cast<std::size_t>(node_->shared_bytes) + 64);
        const auto address = (reinterpret_cast<std::uintptr_t>(shared.data()) + 63) / 64 * 64;
        const ork_dft_call call = {arrays.begin(), reinterpret_cast<void*>(address), direction};
        int status = 0;
        for (int s = 0; s < node_->stages[direction]; ++s) {
            const ork_dft_stage& stage = node_->stage[direction][s];
            for (Int from = (stage.units - 1) / piece * piece; from >= 0; from -= piece)
                status |= stage.run(node_, &call, &stage, from, std::min(from + piece, stage.units));
        }
        return status;
    }

private:
    ork_dft_node* node_ = nullptr;
    ork_dft_settings settings_{};
};

// X[k0, k1, ...] of dense arrays, the first dimension fastest.
std::vector<wide> reference_dft(std::vector<wide> x, const Ints& lengths, int direction);

// The length of the difference relative to that of `want`; NaN anywhere makes it NaN.
template <class C>
long double relative_error(const std::vector<C>& got, const std::vector<wide>& want)
{
    long double difference = 0, size = 0;
    for (std::size_t i = 0; i < want.size(); ++i) {
        difference += std::norm(wide(got[i]) - want[i]);
        size += std::norm(want[i]);
    }
    return std::sqrt(difference / size);
}

// What a transform of n numbers may be off by: its error grows as the square root of log2 n.
template <class R>
long double tolerance(Int n)
{
    return 2.2L * std::numeric_limits<R>::epsilon() * std::sqrt(1 + std::log2(static_cast<long double>(n)));
}

} // namespace ork::test

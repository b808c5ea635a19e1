// SPDX-License-Identifier: MIT
// A transform of vectors of numbers: every lane is a transform of its own, so no pass shuffles. Lanes may be
// neighbouring columns of a matrix, or any transforms of one batch.
#pragma once

#include "dft/engine/arena.h"
#include "dft/engine/radix_list.h"
#include "dft/engine/root_table.h"

namespace ork::dft {

constexpr int most_passes = 12;

template <class R>
class Vertical {
public:
    // Radices in the order of the passes; their product is n.
    void set(std::int64_t n, const int* radices, int passes);
    // Takes the tables' memory, and fills them when there is memory. The roots are of any multiple of n.
    void build(Arena& arena, const RootTable& roots);

    std::int64_t n() const { return n_; }
    int passes() const { return passes_; }
    int last_radix() const { return radix_[passes_ - 1]; }
    std::int64_t blocks() const { return n_ / last_radix(); }

    // From memory to memory. Scratch of a vector: n cells; none is used when there is one pass only.
    void run(Pass<R>& a, Row in, Row out) const;
    // From scratch (natural order, destroyed) to memory.
    void run_from_scratch(Pass<R>& a, Row out) const;
    // From memory to rows in memory, with the twiddles of a longer transform. passes() >= 2.
    void run_to_rows(Pass<R>& a, Row in) const;

    // The two halves of run(), so that several vectors can begin one after another and end together. passes() >= 2.
    void begin(Pass<R>& a, Row row) const;
    void end(Pass<R>& a, Row row) const;

private:
    void within(Pass<R>& a, int from, int to) const;

    std::int64_t n_ = 0;
    int passes_ = 0;
    int radix_[most_passes];
    const Kernels<R>* kernels_[most_passes];
    R* twiddles_[most_passes];
    std::int32_t* order_ = nullptr;
};

} // namespace ork::dft

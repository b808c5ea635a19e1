// SPDX-License-Identifier: MIT
// Tables and order of the passes.
#include "dft/engine/vertical.h"

namespace ork::dft {

template <class R>
void Vertical<R>::set(std::int64_t n, const int* radices, int passes)
{
    n_ = n, passes_ = passes;
    for (int i = 0; i < passes; ++i) radix_[i] = radices[i], kernels_[i] = kernels<R>(radices[i]);
}

template <class R>
void Vertical<R>::build(Arena& arena, const RootTable& roots)
{
    const std::int64_t multiple = roots.order() / n_;
    std::int64_t length = n_;
    for (int i = 0; i + 1 < passes_; ++i) {
        const int r = radix_[i];
        const std::int64_t m = length / r, unit = n_ / length;
        auto* w = twiddles_[i] = arena.take<R>(static_cast<std::size_t>(m * (r - 1) * factor<R>));
        if (!arena.counting())
            for (std::int64_t j = 0; j < m; ++j)
                for (int k = 1; k < r; ++k, w += factor<R>)
                    for (int lane = 0; lane < lanes<R>; ++lane)
                        store_factor(w, lane, rounded<R>(roots[j * k * unit * multiple]));
        length = m;
    }
    order_ = arena.take<std::int32_t>(static_cast<std::size_t>(blocks()));
    if (arena.counting()) return;
    // Block (k1 r2 + k2) r3 + k3 ... holds results k1 + r1 (k2 + r2 (k3 ...)) and further ones blocks() apart.
    for (std::int64_t b = 0; b < blocks(); ++b) {
        std::int64_t rest = b, size = blocks(), index = 0, weight = 1;
        for (int i = 0; i + 1 < passes_; ++i) {
            size /= radix_[i];
            index += rest / size * weight;
            rest %= size;
            weight *= radix_[i];
        }
        order_[b] = static_cast<std::int32_t>(index);
    }
}

template <class R>
void Vertical<R>::within(Pass<R>& a, int from, int to) const
{
    for (int i = from; i < to; ++i) {
        std::int64_t before = 1;
        for (int j = 0; j < i; ++j) before *= radix_[j];
        a.blocks = before;
        a.columns = n_ / before / radix_[i];
        a.twiddles = twiddles_[i];
        kernels_[i]->within(a);
    }
}

template <class R>
void Vertical<R>::end(Pass<R>& a, Row row) const
{
    a.blocks = a.out_blocks = blocks();
    a.order = order_;
    const Kernels<R>* k = kernels_[passes_ - 1];
    (row == Row::apart ? k->out : k->out_row[row == Row::descending])(a);
}

template <class R>
void Vertical<R>::begin(Pass<R>& a, Row row) const
{
    a.columns = n_ / radix_[0];
    a.twiddles = twiddles_[0];
    (row == Row::ascending ? kernels_[0]->in_row : kernels_[0]->in)(a);
    within(a, 1, passes_ - 1);
}

template <class R>
void Vertical<R>::run(Pass<R>& a, Row in, Row out) const
{
    if (passes_ == 1) return kernels_[0]->whole(a);
    begin(a, in);
    end(a, out);
}

template <class R>
void Vertical<R>::run_from_scratch(Pass<R>& a, Row out) const
{
    within(a, 0, passes_ - 1);
    end(a, out);
}

template <class R>
void Vertical<R>::run_to_rows(Pass<R>& a, Row in) const
{
    begin(a, in);
    a.blocks = a.out_blocks = blocks();
    a.order = order_;
    kernels_[passes_ - 1]->rows(a);
}

template class Vertical<float>;
template class Vertical<double>;

} // namespace ork::dft

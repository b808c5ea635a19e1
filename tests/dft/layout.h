// SPDX-License-Identifier: MIT
// Arrays of transforms in any layout: where each number is, in guarded memory whose other bytes must stay.
#pragma once

#include <algorithm>
#include <memory>
#include <ostream>

#include "dft/node.h"
#include "support/guarded.h"

namespace ork::test {

// One side of a transform, counted as a node counts it.
struct Side {
    Ints lengths, strides; // by dimension; of a half spectrum the first length is n/2 + 1
    Int transforms = 1, distance = 0, offset = 0;

    Int size() const
    {
        Int product = 1;
        for (const Int n : lengths) product *= n;
        return product;
    }
    // Of element i of transform t, the first dimension fastest.
    Int position(Int i, Int t) const
    {
        Int at = offset + t * distance;
        for (std::size_t d = 0; d < lengths.size(); ++d) {
            at += i % lengths[d] * strides[d];
            i /= lengths[d];
        }
        return at;
    }
    Int extent() const // elements of an array that holds all
    {
        Int most = 0;
        for (Int t = 0; t < transforms; ++t)
            for (Int i = 0; i < size(); ++i) most = std::max(most, position(i, t) + 1);
        return most;
    }
};

// For messages.
inline std::ostream& operator<<(std::ostream& out, const Side& side)
{
    out << side.transforms << " of lengths";
    for (const Int n : side.lengths) out << ' ' << n;
    out << ", strides";
    for (const Int stride : side.strides) out << ' ' << stride;
    return out << ", distance " << side.distance << ", offset " << side.offset;
}

inline Side dense(const Ints& lengths, Int transforms = 1)
{
    Side side{lengths, {}, transforms, 1, 0};
    for (const Int n : lengths) {
        side.strides.push_back(side.distance);
        side.distance *= n;
    }
    return side;
}

// The array or pair of arrays of one side, of complex numbers.
template <class R>
class Array {
public:
    using C = std::complex<R>;

    Array(const Side& side, bool split, Guard guard = Guard::end) : side_(side), split_(split)
    {
        const Int extent = side.extent();
        if (split) im_ = std::make_unique<Guarded<R>>(extent, guard);
        re_ = std::make_unique<Guarded<R>>(split ? extent : 2 * extent, guard);
    }
    void fill(Random& random)
    {
        for (Int t = 0; t < side_.transforms; ++t)
            for (Int i = 0; i < side_.size(); ++i) set(i, t, random.uniform<C>());
        re_->remember();
        if (split_) im_->remember();
    }
    void set(Int i, Int t, C value)
    {
        const Int at = side_.position(i, t);
        (*re_)[split_ ? at : 2 * at] = value.real();
        (split_ ? (*im_)[at] : (*re_)[2 * at + 1]) = value.imag();
    }
    C get(Int i, Int t) const
    {
        const Int at = side_.position(i, t);
        return {(*re_)[split_ ? at : 2 * at], split_ ? (*im_)[at] : (*re_)[2 * at + 1]};
    }
    template <class T = wide>
    std::vector<T> transform(Int t) const
    {
        std::vector<T> values;
        for (Int i = 0; i < side_.size(); ++i) values.push_back(T(get(i, t)));
        return values;
    }
    std::vector<C> all() const
    {
        std::vector<C> values;
        for (Int t = 0; t < side_.transforms; ++t)
            for (Int i = 0; i < side_.size(); ++i) values.push_back(get(i, t));
        return values;
    }
    R* re() const { return re_->data(); }
    R* im() const { return split_ ? im_->data() : nullptr; }

    void read_only() const
    {
        re_->read_only();
        if (split_) im_->read_only();
    }
    testing::AssertionResult padding_intact() const
    {
        std::vector<bool> element(static_cast<std::size_t>(side_.extent()));
        for (Int t = 0; t < side_.transforms; ++t)
            for (Int i = 0; i < side_.size(); ++i) element[static_cast<std::size_t>(side_.position(i, t))] = true;
        const auto ours = [&](Int at) { return element[static_cast<std::size_t>(split_ ? at : at / 2)]; };
        const auto result = re_->unchanged_except(ours);
        return result && split_ ? im_->unchanged_except(ours) : result;
    }

private:
    Side side_;
    bool split_;
    std::unique_ptr<Guarded<R>> re_, im_;
};

// A transform of complex data: what is set in a node, and the arrays of a call.
struct Layout {
    Side in, out;
    bool in_place = true, split = false;

    Int numbers() const { return in.size(); }
};

template <class R>
void set(Node<R>& node, const Layout& layout)
{
    node->placement = layout.in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE;
    if (layout.split) node->storage.complex_storage = ORK_DFT_REAL_REAL;
    node->transforms = layout.in.transforms;
    node->input_distance = layout.in.distance, node->output_distance = layout.out.distance;
    node->input_offset = layout.in.offset, node->output_offset = layout.out.offset;
    for (std::size_t d = 0; d < layout.in.lengths.size(); ++d) {
        node->dimensions[d].input_stride = layout.in.strides[d];
        node->dimensions[d].output_stride = layout.in_place ? layout.in.strides[d] : layout.out.strides[d];
    }
}

template <class R, class Call>
int call(const Layout& layout, const Array<R>& from, const Array<R>& to, Call compute)
{
    if (layout.in_place && layout.split) return compute({from.re(), from.im()});
    if (layout.in_place) return compute({from.re()});
    if (layout.split) return compute({from.re(), from.im(), to.re(), to.im()});
    return compute({from.re(), to.re()});
}

} // namespace ork::test

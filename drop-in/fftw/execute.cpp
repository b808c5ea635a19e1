// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "plan.h"

namespace ork::fftw {
namespace {

struct Side {
    Array array;
    int unit; // real numbers from one element to the next: 2 when it is interleaved complex
};

// out[...] = in[...], strides in real numbers, elements of `numbers` adjacent ones.
void copy(const Number* in, int in_unit, Number* out, int out_unit, const Dimension* dimension, int rank, int numbers)
{
    if (rank == 0) {
        for (int i = 0; i < numbers; ++i) out[i] = in[i];
        return;
    }
    const Dimension& d = dimension[rank - 1];
    for (std::int64_t i = 0; i < d.n; ++i)
        copy(in + i * d.in * in_unit, in_unit, out + i * d.out * out_unit, out_unit, dimension, rank - 1, numbers);
}

// Each side is split, or interleaved, or real as the other is.
void copy(const Side& in, const Side& out, const Dimension* dimension, int rank)
{
    if (in.array.im == nullptr && out.array.im == nullptr)
        return copy(in.array.re, in.unit, out.array.re, out.unit, dimension, rank, in.unit);
    const auto imaginary = [](const Array& array) { return array.im != nullptr ? array.im : array.re + 1; };
    copy(in.array.re, in.unit, out.array.re, out.unit, dimension, rank, 1);
    copy(imaginary(in.array), in.unit, imaginary(out.array), out.unit, dimension, rank, 1);
}

int unit(bool complex_side, bool split) { return complex_side && !split ? 2 : 1; }

class Buffer {
public:
    // Of a side; split when the descriptor is.
    bool make(const Move& move, bool complex_side, bool split)
    {
        unit_ = unit(complex_side, split);
        const std::size_t parts = complex_side ? 2 : 1, numbers = static_cast<std::size_t>(move.elements) * parts;
        void* memory;
        if (posix_memalign(&memory, 64, numbers * sizeof(Number)) != 0) return false;
        array_.re = static_cast<Number*>(memory);
        if (complex_side && split) array_.im = array_.re + move.elements;
        return true;
    }
    ~Buffer() { std::free(array_.re); }

    Array array() const { return array_; }
    Side side() const { return {array_, unit_}; }

private:
    Array array_;
    int unit_ = 1;
};

std::int64_t call(const Plan& plan, const Array& in, const Array& out)
{
    const ork_dft_descriptor* d = plan.descriptor;
    const bool backward = plan.problem.backward;
    if (plan.split) {
        if (plan.in_place) return (backward ? ork_dft_backward_split : ork_dft_forward_split)(d, in.re, in.im);
        return (backward ? ork_dft_backward_split_out : ork_dft_forward_split_out)(d, in.re, in.im, out.re, out.im);
    }
    if (plan.in_place) return (backward ? ork_dft_backward : ork_dft_forward)(d, in.re);
    return (backward ? ork_dft_backward_out : ork_dft_forward_out)(d, in.re, out.re);
}

Array moved(const Array& array, std::int64_t numbers)
{
    return {array.re + numbers, array.im != nullptr ? array.im + numbers : nullptr};
}

std::int64_t call_loops(const Plan& plan, const Array& in, const Array& out, int loops)
{
    if (loops == 0) return call(plan, in, out);
    const Problem& p = plan.problem;
    const Dimension& loop = p.loop[loops - 1];
    const std::int64_t in_step = loop.in * unit(p.complex_in(), plan.split);
    const std::int64_t out_step = loop.out * unit(p.complex_out(), plan.split);
    std::int64_t status = ORK_DFT_NO_ERROR;
    for (std::int64_t i = 0; i < loop.n && status == ORK_DFT_NO_ERROR; ++i)
        status = call_loops(plan, moved(in, i * in_step), moved(out, i * out_step), loops - 1);
    return status;
}

std::int64_t call_through_buffers(const Plan& plan, const Arrays& arrays)
{
    const Problem& p = plan.problem;
    Buffer in, out;
    if (plan.gather.wanted) {
        if (!in.make(plan.gather, p.complex_in(), plan.split)) return ORK_DFT_MEMORY_ERROR;
        const Side from = {arrays.in, unit(p.complex_in(), p.split)};
        copy(from, in.side(), plan.gather.dimension, plan.gather.rank);
    }
    if (plan.scatter.wanted && !out.make(plan.scatter, p.complex_out(), plan.split)) return ORK_DFT_MEMORY_ERROR;
    const std::int64_t status = call_loops(plan, plan.gather.wanted ? in.array() : arrays.in,
                                           plan.scatter.wanted ? out.array() : arrays.out, p.loops);
    if (!plan.scatter.wanted || status != ORK_DFT_NO_ERROR) return status;
    Dimension back[most_dimensions + most_loops];
    for (int d = 0; d < plan.scatter.rank; ++d) {
        const Dimension& dimension = plan.scatter.dimension[d];
        back[d] = {dimension.n, dimension.out, dimension.in};
    }
    copy(out.side(), {arrays.out, unit(p.complex_out(), p.split)}, back, plan.scatter.rank);
    return status;
}

} // namespace

void scatter(const Move& move, const Number* from, Number* to)
{
    Dimension back[most_dimensions + most_loops];
    for (int d = 0; d < move.rank; ++d) {
        const Dimension& dimension = move.dimension[d];
        back[d] = {dimension.n, dimension.out, dimension.in};
    }
    copy(from, 1, to, 1, back, move.rank, 1);
}

// The interface has no way to report a failure.
void execute(const Plan& plan, const Arrays& arrays)
{
    if (plan.descriptor == nullptr && plan.transforms == nullptr) return;
    const std::int64_t status = plan.transforms != nullptr ? execute_real(plan, arrays)
                                : plan.gather.wanted || plan.scatter.wanted
                                    ? call_through_buffers(plan, arrays)
                                    : call_loops(plan, arrays.in, arrays.out, plan.problem.loops);
    if (status != ORK_DFT_NO_ERROR) [[unlikely]]
        std::fprintf(stderr, "ork: " FFTW_TEXT "_execute: %s\n", ork_dft_error_message(status));
}

} // namespace ork::fftw

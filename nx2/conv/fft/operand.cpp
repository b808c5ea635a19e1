// SPDX-License-Identifier: MIT
#include "conv/fft/operand.h"

#include <cstring>
#include <type_traits>

namespace ork::conv {
namespace {

Array array_of(const void* data, const Int* from, bool takes_x, const Problem& problem, const Shape& shape)
{
    Array array{};
    const auto stride_of = [&](int d) {
        const Dimension& n = problem.dimension[d];
        return takes_x ? n.x_stride : n.y_stride;
    };
    Int offset = 0;
    for (int d = 0; d < problem.dims; ++d) offset += from[d] * stride_of(d);
    for (int k = 0; k < shape.rank; ++k) array.stride[k] = stride_of(shape.axis[k].dimension);
    array.is_double = problem.is_double;
    array.conjugate = takes_x && problem.conjugate_x;
    const Int bytes = (problem.is_double ? 8 : 4) * (problem.is_complex ? 2 : 1);
    array.data = static_cast<const char*>(data) + offset * bytes;
    return array;
}

template <class T, class W>
void gather_real(const T* from, Int stride, Int count, W* line)
{
    if (stride == 1) {
        if constexpr (std::is_same_v<T, W>)
            std::memcpy(line, from, static_cast<std::size_t>(count) * sizeof(T));
        else
            for (Int i = 0; i < count; ++i) line[i] = from[i];
    } else {
        for (Int i = 0; i < count; ++i) line[i] = static_cast<W>(from[i * stride]);
    }
}

template <bool conjugate, class T, class W>
void gather_complex(const T* from, Int stride, Int count, W* line)
{
    for (Int i = 0; i < count; ++i) {
        line[2 * i] = static_cast<W>(from[2 * i * stride]);
        const auto im = static_cast<W>(from[2 * i * stride + 1]);
        line[2 * i + 1] = conjugate ? -im : im;
    }
}

template <class T, class W>
void pack_numbers(const T* from, const Array& array, bool is_complex, Int count, W* line)
{
    const Int stride = array.stride[0];
    if (!is_complex)
        gather_real(from, stride, count, line);
    else if (array.conjugate)
        gather_complex<true>(from, stride, count, line);
    else if (stride == 1)
        gather_real(from, 1, 2 * count, line);
    else
        gather_complex<false>(from, stride, count, line);
}

template <class T, class W>
void unpack_numbers(T* to, const Array& array, bool is_complex, Int count, const W* line, Int step)
{
    const Int stride = array.stride[0];
    if (stride == 1 && step == 1) {
        gather_real(line, 1, is_complex ? 2 * count : count, to);
    } else if (!is_complex) {
        for (Int i = 0; i < count; ++i) to[i * stride] = static_cast<T>(line[i * step]);
    } else {
        for (Int i = 0; i < count; ++i) {
            to[2 * i * stride] = static_cast<T>(line[2 * i * step]);
            to[2 * i * stride + 1] = static_cast<T>(line[2 * i * step + 1]);
        }
    }
}

} // namespace

Array filter_of(const Problem& problem, const Shape& shape)
{
    return shape.x_is_filter ? array_of(problem.x, shape.x_from, true, problem, shape)
                             : array_of(problem.y, shape.y_from, false, problem, shape);
}
Array signal_of(const Problem& problem, const Shape& shape)
{
    return shape.x_is_filter ? array_of(problem.y, shape.y_from, false, problem, shape)
                             : array_of(problem.x, shape.x_from, true, problem, shape);
}
Array result_of(const Problem& problem, const Shape& shape)
{
    Array array{};
    for (int k = 0; k < shape.rank; ++k) array.stride[k] = problem.dimension[shape.axis[k].dimension].z_stride;
    array.is_double = problem.is_double;
    array.data = problem.z;
    return array;
}

template <class W>
void pack(const Array& array, bool is_complex, Int at, Int count, W* line)
{
    if (is_complex) at *= 2;
    if (array.is_double)
        pack_numbers(static_cast<const double*>(array.data) + at, array, is_complex, count, line);
    else
        pack_numbers(static_cast<const float*>(array.data) + at, array, is_complex, count, line);
}

template <class W>
void unpack(const Array& array, bool is_complex, Int at, Int count, const W* line, Int step)
{
    if (is_complex) at *= 2;
    void* data = const_cast<void*>(array.data);
    if (array.is_double)
        unpack_numbers(static_cast<double*>(data) + at, array, is_complex, count, line, step);
    else
        unpack_numbers(static_cast<float*>(data) + at, array, is_complex, count, line, step);
}

#define INSTANTIATE(W)                                                                                                 \
    template void pack<W>(const Array&, bool, Int, Int, W*);                                                           \
    template void unpack<W>(const Array&, bool, Int, Int, const W*, Int);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::conv

// SPDX-License-Identifier: MIT
// Kernels by the letters of a call. A name is composed and looked up at the first call that wants it.
#pragma once

#include "spblas/call.h"

namespace ork::spblas {

// What a call asks for in the letters of an existing member: real numbers are their own conjugates, a diagonal matrix
// its own transpose. Of vectors the layout follows the base.
Shape shape_of(const Call& call);

// Never null: without the kernel the process ends with a message.
void* kernel_for(const Call& call, Shape shape);

// All arguments of kernels are addresses.
template <class... Pointers>
inline void invoke(void* kernel, Pointers... arguments)
{
    using Address = const void*;
    reinterpret_cast<void (*)(decltype(Address(arguments))...)>(kernel)(arguments...);
}

// body(addresses of the matrix as its kernels take them ...).
template <class Body>
inline void with_matrix(const Matrix& a, Body body)
{
    const void* const* p = a.array;
    const std::int64_t* k = a.number;
    switch (a.format) {
    case Format::csr:
        return body(p[0], p[1], p[2], p[3]);
    case Format::coo:
        return body(p[0], p[1], p[2], static_cast<const void*>(k));
    case Format::bsr:
    case Format::bsc:
        return body(static_cast<const void*>(k), p[0], p[1], p[2], p[3]);
    case Format::dia:
        return body(p[0], static_cast<const void*>(k), p[1], static_cast<const void*>(k + 1));
    case Format::sky:
        return body(p[0], p[1]);
    }
}

} // namespace ork::spblas

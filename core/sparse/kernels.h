// SPDX-License-Identifier: MIT
// A stem's kernels by the precision and the width that a call turns out to have, each looked up at the first call that
// wants it:
//
//     constinit Kernels<8> merge{"csr_mv_merge"};
//     auto* const kernel = merge.get<Calls<std::int64_t, double>::csr_mv_merge>(a); // a Matrix, or ('d', 4)
//     kernel(0, n, stride, parts, alpha, beta, partials, y);
//
// The signature is that of 64-bit indices for both widths: ork/abi/sparse.h says why that is right. Arrays of indices
// are cast to it, and an Int that a 32-bit kernel returns has to be cast to int32_t first. Once found, a kernel costs a
// load and a branch.
#pragma once

#include <atomic>
#include <complex>

#include "ork/abi/sparse.h"
#include "sparse/precision.h"

namespace ork::sparse {

// Never null: without the kernel the process ends with a message. A precision of 0 stands for stems without one.
void* find_kernel(const char* stem, char precision, int index_bytes);

// 8 members, or of a stem without precision 2.
template <int members>
class Kernels {
public:
    constexpr explicit Kernels(const char* stem) : stem_(stem) {}

    template <class Signature>
    Signature* get(char precision, int index_bytes)
    {
        const int wide = index_bytes == 8 ? 1 : 0;
        std::atomic<void*>& entry = address_[members == 2 ? wide : precision_number(precision) * 2 + wide];
        void* address = entry.load(std::memory_order_acquire);
        if (address == nullptr) [[unlikely]] {
            address = find_kernel(stem_, members == 2 ? 0 : precision, index_bytes);
            entry.store(address, std::memory_order_release);
        }
        return reinterpret_cast<Signature*>(address);
    }

    template <class Signature>
    Signature* get(const Matrix& a)
    {
        return get<Signature>(a.precision, a.index_bytes);
    }

private:
    std::atomic<void*> address_[members] = {};
    const char* stem_;
};

// body(T{}) with the type of a precision: float, double, std::complex<float> or std::complex<double>, which are passed
// by value as the kernels' own numbers are.
template <class Body>
inline auto with_type(char precision, Body body)
{
    switch (precision) {
    case 's':
        return body(float{});
    case 'd':
        return body(double{});
    case 'c':
        return body(std::complex<float>{});
    default:
        return body(std::complex<double>{});
    }
}

} // namespace ork::sparse

// SPDX-License-Identifier: MIT
// What stands behind an ork_dft_descriptor: the user's parameters, and the kernel library's node made from them.
#pragma once

#include <cstdint>

#include "ork/abi/dft.h"

namespace ork::dft {

constexpr int most_dimensions = ORK_DFT_MOST_DIMENSIONS;
enum Side { input, output }; // of the forward transform
// The arrays of a call.
enum Form { one_array = 1, in_and_out = 2, two_parts = 3, two_parts_in_and_out = 4 };
enum Direction { forward = ORK_DFT_FORWARD, backward = ORK_DFT_BACKWARD };

struct Parameters {
    std::int64_t precision = 0, domain = 0, rank = 0;
    std::int64_t lengths[most_dimensions] = {};
    std::int64_t transforms = 1;
    double scale[2] = {1, 1}; // by direction
    std::int64_t placement = ORK_DFT_INPLACE;
    std::int64_t complex_storage = ORK_DFT_COMPLEX_COMPLEX, conjugate_even_storage = ORK_DFT_COMPLEX_COMPLEX;
    std::int64_t packed_format = ORK_DFT_CCS;
    std::int64_t workspace = ORK_DFT_ALLOW;
    std::int64_t ordering = ORK_DFT_ORDERED;
    std::int64_t own_strides[2][most_dimensions + 1] = {}; // by side: offset, then by dimension
    bool has_strides[2] = {};                              // otherwise the default ones
    std::int64_t distance[2] = {};                         // by side
    std::int64_t thread_limit = 0, user_threads = 1;
    char name[ORK_DFT_NAME_SIZE] = "";

    bool in_place() const { return placement == ORK_DFT_INPLACE; }
    bool real() const { return domain == ORK_DFT_REAL; }
    bool split() const { return !real() && complex_storage == ORK_DFT_REAL_REAL; }
    bool packed() const { return real() && conjugate_even_storage == ORK_DFT_COMPLEX_REAL; }
    Form form() const { return static_cast<Form>(one_array + (split() ? 2 : 0) + (in_place() ? 0 : 1)); }
};

struct Message {
    std::int64_t status = ORK_DFT_NO_ERROR;
    char text[ORK_DFT_MESSAGE_SIZE] = "";
};

// Offset and strides of a side, as they are or as they are by default.
void strides_of(const Parameters& parameters, Side side, std::int64_t strides[most_dimensions + 1]);

// Product of the lengths, and the sum of all distances by which an element may be away from the array's begin; -1 when
// not less than `limit`. No two elements of less than most_numbers are further apart than a pointer can bridge.
std::int64_t numbers(const Parameters& parameters, std::int64_t limit);
std::int64_t reach(const Parameters& parameters, Side side, std::int64_t limit);
constexpr std::int64_t most_numbers = std::int64_t{1} << 57;

} // namespace ork::dft

struct ork_dft_descriptor {
    std::uint64_t state = 0; // alive, or when committed alive + the form of calls; anything else: no descriptor
    ork_dft_node* node = nullptr;
    int useful_threads = 1; // more don't make a computation faster, or are not allowed
    ork::dft::Parameters parameters;
    ork::dft::Message message;

    static constexpr std::uint64_t alive = 0x5ca1ab1e'0ddba110;
    bool committed() const { return state != alive; }
};

namespace ork::dft {

// Memory of descriptors. A released one is used again for descriptors but never given back before the library leaves,
// so that the state of a freed descriptor can be read.
ork_dft_descriptor* new_descriptor(); // null when there is no memory
void delete_descriptor(ork_dft_descriptor* descriptor);

inline bool alive(const ork_dft_descriptor* descriptor)
{
    return descriptor != nullptr && reinterpret_cast<std::uintptr_t>(descriptor) % alignof(ork_dft_descriptor) == 0 &&
           descriptor->state - ork_dft_descriptor::alive <= two_parts_in_and_out;
}

// Keep a text, in the descriptor or, when there is none yet, for the calling thread; return the status.
[[gnu::format(printf, 3, 4)]] std::int64_t fail(ork_dft_descriptor* descriptor, std::int64_t status, const char* format,
                                                ...);
[[gnu::format(printf, 2, 3)]] std::int64_t fail_without_descriptor(std::int64_t status, const char* format, ...);

} // namespace ork::dft

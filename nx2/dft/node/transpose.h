// SPDX-License-Identifier: MIT
// Transposition in place of a square of rows x rows entries, each one or two complex numbers wide.
#pragma once

#include "simd/complex.h"

namespace ork::dft {

template <class C, int width>
struct Square {
    struct Entry {
        C number[width];
    };
    static constexpr std::int64_t tile = 128 / static_cast<std::int64_t>(sizeof(Entry)) * 2; // rows of 256 bytes

    Entry* entries;
    std::int64_t rows;

    std::int64_t bands() const { return (rows + tile - 1) / tile; }

    // All tiles on and right of the diagonal in a band of rows change places with their mirror images.
    void transpose_band(std::int64_t band) const
    {
        for (std::int64_t other = band; other < bands(); ++other) exchange(band * tile, other * tile);
    }

private:
    std::int64_t extent(std::int64_t begin) const { return rows - begin < tile ? rows - begin : tile; }

    void exchange(std::int64_t i, std::int64_t j) const
    {
        const std::int64_t height = extent(i), breadth = extent(j);
        Entry upper[tile][tile]; // [column][row] of the tile at (i, j)
        for (std::int64_t r = 0; r < height; ++r)
            for (std::int64_t c = 0; c < breadth; ++c) upper[c][r] = entries[(i + r) * rows + j + c];
        if (i != j)
            for (std::int64_t c = 0; c < breadth; ++c) {
                const Entry* const mirror = entries + (j + c) * rows + i;
                for (std::int64_t r = 0; r < height; ++r) entries[(i + r) * rows + j + c] = mirror[r];
            }
        for (std::int64_t c = 0; c < breadth; ++c)
            for (std::int64_t r = 0; r < height; ++r) entries[(j + c) * rows + i + r] = upper[c][r];
    }
};

} // namespace ork::dft

// SPDX-License-Identifier: MIT
// Many matrices of one size in the compact layout, element by element as it is defined, in guarded memory that is NaN
// wherever no element was set.
#pragma once

#include "support/guarded.h"
#include "support/scalar.h"

namespace ork::test {

template <class T>
struct Packs {
    using R = Real<T>;
    static constexpr std::int64_t parts = is_complex<T> ? 2 : 1;

    static std::int64_t width_of(std::int64_t format)
    {
        return (16 << (format - 181)) / static_cast<std::int64_t>(sizeof(R));
    }

    std::int64_t rows, columns, ld, width, count;
    bool by_rows;
    Guarded<R> memory;

    Packs(std::int64_t rows, std::int64_t columns, bool by_rows, std::int64_t ld, std::int64_t width,
          std::int64_t count, Guard side = Guard::end)
        : rows(rows), columns(columns), ld(ld), width(width), count(count), by_rows(by_rows),
          memory((count + width - 1) / width * ld * (by_rows ? rows : columns) * width * parts, side, 0)
    {
    }
    std::int64_t whole() const { return count / width * width; }
    // Place of the real part; the imaginary one stands `width` behind it.
    std::int64_t at(std::int64_t q, std::int64_t i, std::int64_t j) const
    {
        const std::int64_t place = by_rows ? i * ld + j : i + j * ld, size = ld * (by_rows ? rows : columns);
        return (q / width * size + place) * parts * width + q % width;
    }
    T get(std::int64_t q, std::int64_t i, std::int64_t j) const
    {
        if constexpr (is_complex<T>)
            return {memory[at(q, i, j)], memory[at(q, i, j) + width]};
        else
            return memory[at(q, i, j)];
    }
    void set(std::int64_t q, std::int64_t i, std::int64_t j, T x)
    {
        if constexpr (is_complex<T>)
            memory[at(q, i, j)] = x.real(), memory[at(q, i, j) + width] = x.imag();
        else
            memory[at(q, i, j)] = x;
    }
    // Whether only elements (i, j) of matrices of whole packs for which may_change(i, j) says so have changed.
    template <class MayChange>
    testing::AssertionResult only_changed(MayChange&& may_change) const
    {
        std::vector<bool> allowed(static_cast<std::size_t>(memory.size()));
        for (std::int64_t q = 0; q < whole(); ++q)
            for (std::int64_t j = 0; j < columns; ++j)
                for (std::int64_t i = 0; i < rows; ++i)
                    for (std::int64_t part = 0; part < parts && may_change(i, j); ++part)
                        allowed[static_cast<std::size_t>(at(q, i, j) + part * width)] = true;
        return memory.unchanged_except([&](std::int64_t i) { return allowed[static_cast<std::size_t>(i)]; });
    }
};

} // namespace ork::test

// SPDX-License-Identifier: MIT
// A matrix that is written, divided into blocks for threads.
#pragma once

#include <algorithm>
#include <cstdint>

#include "blas/strips.h"
#include "ork/abi/core_trans.h"

namespace ork::trans {

inline constexpr Int line = 64; // bytes of the cache's lines

inline double bytes_of(Int rows, Int cols, Int element)
{
    return rows <= 0 || cols <= 0
               ? 0.0
               : static_cast<double>(rows) * static_cast<double>(cols) * static_cast<double>(element);
}

// Elements from `address` on before the next line begins.
inline Int elements_to_line(const void* address, Int element)
{
    return static_cast<Int>(-reinterpret_cast<std::uintptr_t>(address) % line) / element;
}

struct Block {
    Int row, column, rows, columns;
};

// Bytes of a result from which on it is divided, at least two blocks, and how.
struct Policy {
    double least, least_block;
    bool by_columns; // if there are enough of them
};

// Blocks of a result of rows x columns elements by columns at `address`, elements stand side by side in a column:
// several times as many as there are threads, since the processors may have other work.
class Division {
public:
    Division(Int rows, Int columns, Int element, const void* address, const Policy& policy);
    int parts() const { return parts_; }

    Block block(int part) const;

    // body(block) for every block.
    template <class Body>
    void run(Body body) const
    {
        threads::run(parts_, [&](int part) { body(block(part)); });
    }

private:
    Int begin(int part) const;

    Int rows_, columns_;
    bool by_columns_;
    Int unit_ = 1, first_ = 0; // blocks begin at multiples of unit_ after first_
    int parts_ = 1;
};

} // namespace ork::trans

// SPDX-License-Identifier: MIT
// A matrix that is written, divided into blocks for threads.
#pragma once

#include <algorithm>
#include <cstdint>

#include "blas/strips.h"
#include "ork/abi/core_trans.h"

namespace ork::trans {

// Bytes of a matrix that a further thread must have to write.
inline constexpr double bytes_per_thread = 256 * 1024;

inline constexpr Int line = 64; // bytes of the cache's lines

// Threads worth using for `bytes`; at least 1.
inline int affordable_threads(double bytes) { return blas::affordable_threads(bytes, bytes_per_thread); }

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

// Blocks of a rows x columns matrix by columns at `address`, elements stand side by side in a column: several times as
// many as there are threads, since the processors may have other work. Whole columns where there are enough of them;
// else parts of all columns, between which the cache's lines are not divided if columns begin on equal places of lines.
class Division {
public:
    Division(Int rows, Int columns, Int element, const void* address);
    int parts() const { return parts_; }

    Block block(int part) const;

    // body(block) for every block.
    template <class Body>
    void run(Body body) const
    {
        threads::run(parts_, [&](int part) { body(block(part)); });
    }

private:
    Int rows_, columns_;
    bool by_columns_ = true;
    Int first_ = 0, length_ = 0; // the first block takes first_ more
    int parts_ = 1;
};

} // namespace ork::trans

// SPDX-License-Identifier: MIT
#include "trans/division.h"

namespace ork::trans {

namespace {

constexpr double bytes_per_block = 128 * 1024, blocks_of_a_thread = 4;

} // namespace

Division::Division(Int rows, Int columns, Int element, const void* address) : rows_(rows), columns_(columns)
{
    const double bytes = bytes_of(rows, columns, element);
    const int threads = affordable_threads(bytes);
    if (threads == 1) return;
    const int wanted =
        static_cast<int>(threads * std::clamp(bytes / (threads * bytes_per_block), 1.0, blocks_of_a_thread));
    const Int unit = line / element;
    by_columns_ = columns >= 4 * unit * wanted || columns >= rows;
    // A block of columns need not begin on a line, but kernels that transpose like whole lines of what they read.
    first_ = by_columns_ ? 0 : elements_to_line(address, element);
    const Int whole = by_columns_ ? columns : rows;
    length_ = blas::strip_length(whole, wanted, unit);
    parts_ = std::max(1, static_cast<int>((whole - first_ + length_ - 1) / length_));
}

Block Division::block(int part) const
{
    const Int whole = by_columns_ ? columns_ : rows_;
    const Int begin = part == 0 ? 0 : first_ + part * length_;
    const Int end = std::min(whole, first_ + (part + 1) * length_);
    return by_columns_ ? Block{0, begin, rows_, end - begin} : Block{begin, 0, end - begin, columns_};
}

} // namespace ork::trans

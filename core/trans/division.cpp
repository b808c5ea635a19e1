// SPDX-License-Identifier: MIT
#include "trans/division.h"

namespace ork::trans {

namespace {

constexpr int blocks_of_a_thread = 4;

} // namespace

Division::Division(Int rows, Int columns, Int element, const void* address) : rows_(rows), columns_(columns)
{
    const double bytes = bytes_of(rows, columns, element);
    const int threads = blas::affordable_threads(bytes, bytes_per_block);
    if (threads == 1) return;
    parts_ = static_cast<int>(std::min<double>(bytes / bytes_per_block, threads * blocks_of_a_thread));
    unit_ = line / element;
    by_columns_ = columns >= 4 * unit_ * parts_ || columns >= rows;
    // A block of columns need not begin on a line, but kernels that transpose like whole lines of what they read.
    if (!by_columns_) first_ = elements_to_line(address, element);
}

Int Division::begin(int part) const
{
    const Int whole = by_columns_ ? columns_ : rows_;
    if (part == 0 || part == parts_) return part == 0 ? 0 : whole;
    const Int even = whole / parts_ * part + whole % parts_ * part / parts_;
    return std::max<Int>(0, (even - first_) / unit_ * unit_ + first_);
}

Block Division::block(int part) const
{
    const Int first = begin(part), count = begin(part + 1) - first;
    return by_columns_ ? Block{0, first, rows_, count} : Block{first, 0, count, columns_};
}

} // namespace ork::trans

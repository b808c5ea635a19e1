// SPDX-License-Identifier: MIT
#include "trans/division.h"

namespace ork::trans {

namespace {

constexpr int blocks_of_a_thread = 4;

} // namespace

Division::Division(Int rows, Int columns, Int element, const void* address, const Policy& policy)
    : rows_(rows), columns_(columns), by_columns_(policy.by_columns)
{
    const double bytes = bytes_of(rows, columns, element);
    if (bytes < policy.least) return;
    const int threads = threads::limit();
    if (threads == 1) return;
    parts_ = static_cast<int>(std::min<double>(bytes / policy.least_block, threads * blocks_of_a_thread));
    const Int whole_lines = line / element;
    if (by_columns_ ? columns < 2 * parts_ : rows < 4 * whole_lines * parts_) by_columns_ = !by_columns_;
    if (by_columns_) return;
    // Lines of the cache are not divided between rows if columns begin on equal places of lines.
    unit_ = whole_lines;
    first_ = elements_to_line(address, element);
}

Int Division::begin(int part) const
{
    const Int whole = by_columns_ ? columns_ : rows_;
    if (part == 0 || part == parts_) return part == 0 ? 0 : whole;
    const Int even = whole / parts_ * part + whole % parts_ * part / parts_;
    return (std::max(even, first_) - first_) / unit_ * unit_ + first_;
}

Block Division::block(int part) const
{
    const Int first = begin(part), count = begin(part + 1) - first;
    return by_columns_ ? Block{0, first, rows_, count} : Block{first, 0, count, columns_};
}

} // namespace ork::trans

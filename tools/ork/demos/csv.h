// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace ork::tool {

// Rows of `columns` integers from low to high, separated by commas; the last column may have bounds of its own. Lines
// may end in CR LF, and blank lines at the end don't count. Throws std::runtime_error naming file and line.
struct IntegerTable {
    int columns, low, high, last_low, last_high;
};
std::vector<std::vector<int>> read_csv(const std::string& file, const IntegerTable& shape);

} // namespace ork::tool

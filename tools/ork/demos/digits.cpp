// SPDX-License-Identifier: MIT
#include "demos/digits.h"

#include "demos/csv.h"

namespace ork::tool {

Images read_digits(const std::string& file)
{
    const auto rows = read_csv(file, {pixels_each + 1, 0, darkest, 0, 9});
    Images images;
    images.count = static_cast<int>(rows.size());
    for (int j = 0; j < pixels_each; ++j)
        for (const std::vector<int>& row : rows) images.pixels.push_back(row[static_cast<size_t>(j)]);
    for (const std::vector<int>& row : rows) images.digit.push_back(row.back());
    return images;
}

} // namespace ork::tool

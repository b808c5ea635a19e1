// SPDX-License-Identifier: MIT
#include "sparse/facts.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <unordered_set>

namespace ork::tool {
namespace {

size_t begin(const peers::CsrMatrix& a, int row) { return static_cast<size_t>(a.ptr[static_cast<size_t>(row)]); }

std::vector<int> lengths_of(const peers::CsrMatrix& a)
{
    std::vector<int> lengths;
    for (size_t i = 1; i < a.ptr.size(); ++i) lengths.push_back(a.ptr[i] - a.ptr[i - 1]);
    std::sort(lengths.begin(), lengths.end());
    return lengths;
}

// Null when the place is empty.
const double* entry(const peers::CsrMatrix& a, int row, int column)
{
    const auto first = a.col.begin() + a.ptr[static_cast<size_t>(row)],
               last = a.col.begin() + a.ptr[static_cast<size_t>(row) + 1], at = std::lower_bound(first, last, column);
    return at == last || *at != column ? nullptr : &a.val[static_cast<size_t>(at - a.col.begin())];
}

} // namespace

Facts facts_of(const peers::CsrMatrix& a)
{
    Facts facts;
    const std::vector<int> lengths = lengths_of(a);
    for (size_t quarter = 0; quarter <= 4; ++quarter)
        facts.quartiles.push_back(lengths[(lengths.size() - 1) * quarter / 4]);
    facts.mean = static_cast<double>(a.entries()) / static_cast<double>(a.rows);
    facts.empty_rows = static_cast<int>(std::upper_bound(lengths.begin(), lengths.end(), 0) - lengths.begin());
    std::unordered_set<int> diagonals;
    for (int i = 0; i < a.rows; ++i)
        for (size_t k = begin(a, i); k < begin(a, i + 1); ++k) {
            const int j = a.col[k];
            diagonals.insert(j - i);
            facts.below = std::max(facts.below, i - j);
            facts.above = std::max(facts.above, j - i);
            if (a.rows != a.columns) continue;
            const double* mirror = entry(a, j, i);
            facts.unmatched += mirror == nullptr;
            facts.unequal += mirror != nullptr && *mirror != a.val[k];
        }
    facts.diagonals = diagonals.size();
    return facts;
}

std::vector<Bar> histogram_of(const peers::CsrMatrix& a)
{
    constexpr int most_bars = 12;
    const std::vector<int> lengths = lengths_of(a);
    const bool each = lengths.back() - lengths.front() < most_bars;
    std::map<int, Bar> bars; // by `least`
    for (const int length : lengths) {
        int least = length, most = length;
        if (!each && length > 0) {
            for (least = 1; 2 * least <= length;) least *= 2;
            most = 2 * least - 1;
        }
        ++bars.try_emplace(least, Bar{least, most, 0}).first->second.rows;
    }
    std::vector<Bar> all;
    for (const auto& [least, bar] : bars) all.push_back(bar);
    return all;
}

std::vector<std::string> draw_in_text(const std::vector<Bar>& bars)
{
    constexpr double width = 40;
    int highest = 1;
    for (const Bar& bar : bars) highest = std::max(highest, bar.rows);
    std::vector<std::string> lines;
    for (const Bar& bar : bars) {
        const std::string label =
            bar.least == bar.most ? fmt::format("{}", bar.least) : fmt::format("{}-{}", bar.least, bar.most);
        // a bar for whatever there is, however little
        const auto length = static_cast<size_t>(std::max(1.0, width * bar.rows / highest));
        lines.push_back(fmt::format("{:>15} |{:<40} {}", label, std::string(length, '#'), bar.rows));
    }
    return lines;
}

} // namespace ork::tool

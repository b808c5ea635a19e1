// SPDX-License-Identifier: MIT
#include "peers/measure.h"

#include <algorithm>

namespace ork::peers {

Samples interleave(const std::vector<Entrant>& entrants, const Effort& effort)
{
    const size_t count = entrants.size();
    std::vector<long> calls;
    double round = 0; // seconds
    for (const Entrant& run : entrants) {
        calls.push_back(calibrate(run, effort.sample, effort.clock));
        round += std::max(effort.sample, calls.back() == 1 ? time_of(run, 1, effort.clock) : 0.0);
    }
    const int rounds = std::clamp(static_cast<int>(effort.budget / std::max(round, 1e-9)), effort.fewest, effort.most);
    Samples seconds(count, std::vector<double>(static_cast<size_t>(rounds)));
    for (size_t r = 0; r < static_cast<size_t>(rounds); ++r)
        for (size_t i = 0; i < count; ++i) {
            const size_t e = (i + r) % count;
            seconds[e][r] = time_of(entrants[e], calls[e], effort.clock) / static_cast<double>(calls[e]);
        }
    return seconds;
}

double median(std::vector<double> values)
{
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1) return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

double speed_ratio(const std::vector<double>& a, const std::vector<double>& b)
{
    std::vector<double> ratios(std::min(a.size(), b.size()));
    for (size_t r = 0; r < ratios.size(); ++r) ratios[r] = b[r] / a[r];
    return median(std::move(ratios));
}

} // namespace ork::peers

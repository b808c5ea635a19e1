// SPDX-License-Identifier: MIT
#include "demos/demo.h"

#include <cmath>
#include <fmt/format.h>

#include "page.h"

namespace ork::tool {

const std::vector<Demo>& demos()
{
    static const std::vector<Demo> all = {pca,      linear_system, ecg,      beats,  blur,  match,           structure,
                                          pagerank, kalman,        residual, rotate, clone, charges_in_a_box};
    return all;
}

void keep_largest(double& largest, long double value)
{
    if (!std::isnan(largest) && !(static_cast<double>(value) <= largest)) largest = static_cast<double>(value);
}

void Report::check(const std::string& what, double error, double bound) { checks_.push_back({what, error, bound}); }

void Report::line(const std::string& text) { lines_.push_back(text); }

void Report::timing(double seconds, double flops)
{
    seconds_ = seconds;
    flops_ = flops;
}

bool Report::all_hold() const
{
    for (const Check& c : checks_)
        if (!c.holds()) return false;
    return !checks_.empty(); // nothing checked is nothing proved
}

std::string Report::rate() const
{
    return seconds_ > 0 ? fmt::format("  {:.2f} ms, {:.2f} GF/s", seconds_ * 1e3, flops_ / seconds_ / 1e9) : "";
}

void Report::write(Page& page) const
{
    if (all_hold()) {
        std::vector<std::string> lines = lines_;
        if (seconds_ > 0) lines.push_back(rate());
        page.output(lines);
        for (const std::string& file : pictures_) page.picture(file);
    } else {
        page.paragraph("A check failed, so no result is shown.");
    }
    std::vector<Page::Row> rows;
    for (const Check& c : checks_)
        rows.push_back(
            {c.what, fmt::format("{:.2g}", c.error), fmt::format("{:.2g}", c.bound), c.holds() ? "held" : "failed"});
    page.table({"check", "error", "allowed", ""}, rows);
}

int Report::print(bool with_checks) const
{
    if (!all_hold()) {
        if (checks_.empty()) fmt::print("nothing was checked, so nothing is shown\n");
        for (const Check& c : checks_)
            if (!c.holds()) fmt::print("CHECK FAILED: {}: error {:.3g}, allowed {:.3g}\n", c.what, c.error, c.bound);
        return 1;
    }
    for (const std::string& line : lines_) fmt::print("{}\n", line);
    if (with_checks)
        for (const Check& c : checks_)
            fmt::print("  held: {}: error {:.2g}, allowed {:.2g}\n", c.what, c.error, c.bound);
    else
        fmt::print("  {} checks held (--checks lists them)\n", checks_.size());
    if (seconds_ > 0) fmt::print("{}\n", rate());
    for (const std::string& file : pictures_) fmt::print("  picture: {}\n", file);
    return 0;
}

} // namespace ork::tool

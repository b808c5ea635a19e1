// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "bench/result.h"

namespace ork::tool::bench {
namespace {

std::string number(double value)
{
    if (!(value > 0)) return "-";
    return value < 9.995 ? fmt::format("{:.2f}", value) : fmt::format("{:.1f}", value);
}

std::string percent(double value) { return value > 0 ? fmt::format("{:.0f} %", 100 * value) : "-"; }

std::string rate_of(const Figure* figure)
{
    if (figure == nullptr) return "-";
    return figure->fault.empty() ? number(figure->rate) : "wrong";
}

// "ork: 1.31 times as fast as legacy; its analysis lasts 9.1 calls and has paid after 40"
std::string cost(const Result& result, const Figure& figure)
{
    std::string text = figure.name + ": ";
    if (const Figure* other = result.without_analysis())
        text += fmt::format("{:.2f} times as fast as {}; ", other->seconds / figure.seconds, other->name);
    text += fmt::format("its analysis lasts {:.1f} calls", figure.analysis / figure.seconds);
    if (result.pays_after(figure) >= 0)
        text += fmt::format(" and has paid after {:.0f}", std::ceil(result.pays_after(figure)));
    return text;
}

} // namespace

void Table::row(const Result& result)
{
    const std::string group = result.routine + (result.variant.empty() ? "" : " " + result.variant);
    if (group != group_) {
        group_ = group;
        fmt::print("\n{}, {}\n", group, result.unit);
        fmt::print("{:>14} {:>8} ", "size", "ork");
        if (all_)
            for (const Figure& f : result.figures) {
                if (f.kind != peers::Kind::subject) fmt::print("{:>13}", f.name);
            }
        else
            fmt::print("{:>8}  {:<13}", "peer", "");
        fmt::print(" {:>8} {:>8} {:>8}", "ork/peer", "limit", "of limit");
        if (result.traffic > 0)
            fmt::print("     GB/s  2 threads speed-up over mv");
        else if (result.two_threads > 0)
            fmt::print("  2 threads speed-up");
        fmt::print("{}\n", all_ || result.traffic > 0 ? "" : "     wide");
    }
    const Figure *subject = result.subject(), *best = result.find(result.best_peer), *wide = nullptr;
    for (const Figure& f : result.figures)
        if (f.kind == peers::Kind::wide) wide = &f;
    fmt::print("{:>14} {:>8} ", result.shape, rate_of(subject));
    if (all_)
        for (const Figure& f : result.figures) {
            if (f.kind != peers::Kind::subject) fmt::print("{:>13}", rate_of(&f));
        }
    else
        fmt::print("{:>8}  {:<13}", rate_of(best), result.best_peer);
    fmt::print(" {:>8} {:>8} {:>8}", result.ratio > 0 ? fmt::format("{:.3f}", result.ratio) : "-", number(result.limit),
               percent(result.of_limit));
    if (result.traffic > 0)
        fmt::print(" {:>8} {:>10} {:>8} {:>7}", number(result.traffic), number(result.two_threads),
                   number(result.speed_up), number(result.over_singles));
    else if (result.two_threads > 0)
        fmt::print(" {:>10} {:>8}", number(result.two_threads), number(result.speed_up));
    fmt::print("{}\n", all_ || result.traffic > 0 ? "" : fmt::format(" {:>8}", rate_of(wide)));
    for (const Figure& f : result.figures) {
        if (!f.note.empty() && (all_ || &f == best || &f == subject)) fmt::print("{:>14} {}: {}\n", "", f.name, f.note);
        if (f.analysis > 0 && f.fault.empty() && (all_ || &f == subject))
            fmt::print("{:>14} {}\n", "", cost(result, f));
    }
    for (const Figure& f : result.figures)
        if (!f.fault.empty()) fmt::print("{:>14} {} computed a wrong result: {}\n", "", f.name, f.fault);
    std::fflush(stdout);
}

void Table::summary(const std::vector<Result>& results) const
{
    std::vector<const Result*> compared;
    double limit = 0;
    for (const Result& r : results) {
        if (r.ratio > 0) compared.push_back(&r);
        if (r.unit == "GF/s" && r.traffic == 0) limit = std::max(limit, r.limit);
    }
    fmt::print("\n{} cases measured", results.size());
    if (!compared.empty()) {
        std::sort(compared.begin(), compared.end(), [](auto* a, auto* b) { return a->ratio < b->ratio; });
        const auto behind = std::count_if(compared.begin(), compared.end(), [](auto* r) { return r->ratio < 1; });
        fmt::print("; ork at least as fast as the best peer in {} of {}, median ratio {:.3f}",
                   compared.size() - static_cast<size_t>(behind), compared.size(),
                   compared[compared.size() / 2]->ratio);
        const Result& worst = *compared.front();
        fmt::print(", smallest {:.3f} ({}{}{} {})", worst.ratio, worst.routine, worst.variant.empty() ? "" : " ",
                   worst.variant, worst.shape);
    }
    fmt::print(".\n");
    if (limit > 0) fmt::print("Highest arithmetic limit seen during the run: {:.2f} GF/s.\n", limit);
}

} // namespace ork::tool::bench

// SPDX-License-Identifier: MIT
#include <algorithm>

#include "bench/result.h"

namespace ork::tool::bench {
namespace {

// The candidate that runs fastest here and now, and at what rate.
const peers::Limit& fastest(const std::vector<peers::Limit>& limits, double& best_rate)
{
    const peers::Limit* best = &limits.front();
    best_rate = 0;
    for (const peers::Limit& limit : limits) {
        const long calls = peers::calibrate(limit.run, 5e-4);
        for (int sample = 0; sample < 3; ++sample) {
            const double rate = limit.work * static_cast<double>(calls) / peers::time_of(limit.run, calls);
            if (rate > best_rate) best_rate = rate, best = &limit;
        }
    }
    return *best;
}

// Rounds of their own, with the wall clock, which peers on one thread need not suffer from.
void measure_two_threads(const Contest& contest, peers::Effort effort, Result& result)
{
    peers::Entrant subject;
    for (const Contender& contender : contest.contenders)
        if (contender.kind == peers::Kind::subject) subject = contender.run;
    effort.clock = peers::Clock::wall;
    effort.budget /= 2;
    const peers::Samples seconds = peers::interleave({contest.two_threads, subject}, effort);
    result.two_threads = contest.work / peers::median(seconds[0]) / 1e9;
    result.speed_up = peers::speed_ratio(seconds[0], seconds[1]);
}

} // namespace

const Figure* Result::subject() const
{
    for (const Figure& f : figures)
        if (f.kind == peers::Kind::subject) return &f;
    return nullptr;
}

const Figure* Result::find(const std::string& name) const
{
    for (const Figure& f : figures)
        if (f.name == name) return &f;
    return nullptr;
}

const Figure* Result::without_analysis() const
{
    for (const char* name : {"legacy", "plain"})
        if (const Figure* figure = find(name); figure != nullptr && figure->fault.empty()) return figure;
    return nullptr;
}

double Result::pays_after(const Figure& figure) const
{
    const Figure* other = without_analysis();
    constexpr double noise = 1.02; // what gains less can't be told from nothing
    if (other == nullptr || !(other->seconds > noise * figure.seconds)) return -1;
    return figure.analysis / (other->seconds - figure.seconds);
}

Result measure(const Family& family, const Case& c, const std::vector<peers::Library>& libraries, peers::Effort effort)
{
    Contest contest = c.prepare(libraries);
    if (contest.threaded) effort.clock = peers::Clock::wall;
    Result result;
    result.family = family.name;
    result.routine = c.routine;
    result.variant = c.variant;
    result.shape = c.shape;
    result.unit = family.unit;
    result.size = c.size;
    result.work = contest.work;

    std::vector<peers::Entrant> entrants;
    std::vector<size_t> figure_of; // entrant -> figure
    for (const Contender& contender : contest.contenders) {
        result.figures.push_back(
            {contender.name, contender.kind, 0, 0, contender.fault, contender.note, contender.analysis});
        if (!contender.fault.empty()) continue; // a wrong result has no speed
        entrants.push_back(contender.run);
        figure_of.push_back(result.figures.size() - 1);
    }
    if (entrants.empty()) return result;
    const size_t singles = entrants.size();
    if (contest.one_by_one) entrants.push_back(contest.one_by_one);
    double limit_work = 0, limit_before = 0;
    if (!contest.limits.empty()) {
        const peers::Limit& limit = fastest(contest.limits, limit_before);
        limit_work = limit.work;
        entrants.push_back(limit.run);
    }

    const peers::Samples seconds = peers::interleave(entrants, effort);
    result.rounds = static_cast<int>(seconds.front().size());
    const std::vector<double>*subject = nullptr, *best = nullptr;
    double best_seconds = 0;
    for (size_t e = 0; e < figure_of.size(); ++e) {
        Figure& figure = result.figures[figure_of[e]];
        figure.seconds = peers::median(seconds[e]);
        figure.rate = contest.work / figure.seconds / 1e9;
        if (figure.kind == peers::Kind::subject) subject = &seconds[e];
        if (figure.kind == peers::Kind::peer && (best == nullptr || figure.seconds < best_seconds)) {
            best = &seconds[e];
            best_seconds = figure.seconds;
            result.best_peer = figure.name;
        }
    }
    if (subject && contest.one_by_one) result.over_singles = peers::speed_ratio(*subject, seconds[singles]);
    if (subject && best) result.ratio = peers::speed_ratio(*subject, *best);
    if (limit_work > 0) {
        const std::vector<double>& samples = seconds.back();
        // a limit that a disturbance kept from view in the rounds was perhaps seen before them
        result.limit = std::max(limit_before, limit_work / *std::min_element(samples.begin(), samples.end())) / 1e9;
        if (const Figure* f = result.subject()) result.of_limit = f->rate / result.limit;
    }
    if (const Figure* f = result.subject()) result.traffic = contest.bytes / f->seconds / 1e9;
    if (subject && contest.two_threads) measure_two_threads(contest, effort, result);
    return result;
}

} // namespace ork::tool::bench

// SPDX-License-Identifier: MIT
// Convolutions: ork with the method of its choice against loops and FFTW (dconv, dcorr), or against its own two methods
// (dauto), which it must come close to the better of.
#include <algorithm>
#include <cstdio>
#include <fmt/format.h>

#include "bench/family.h"
#include "ork/conv.h"
#include "ork/ork.h"
#include "peers/conv.h"

namespace ork::tool::bench {
namespace {

const std::vector<std::string> usual_sizes = {
    "100:5",       "1000:16",     "1000:100",      "1000:1000",      "10000:64",    "100000:8",
    "100000:16",   "100000:32",   "100000:64",     "100000:128",     "100000:256",  "100000:1000",
    "1000000:101", "20000:20000", "1000000:10000", "1000000:100000", "128x128:9x9", "1024x1024:64x64"};
const std::vector<std::string> quick_sizes = {"1000:16", "1000:1000", "100000:64", "128x128:9x9"};

// Slow sums beside fast transforms and the other way round are left out: nobody would choose wrongly there.
std::vector<std::string> grid_of_sizes()
{
    std::vector<std::string> sizes;
    for (int x = 16; x <= 1 << 20; x *= 4)
        for (int y = 2; y <= std::min(x, 2048); y *= x <= 64 ? 2 : 4) sizes.push_back(fmt::format("{}:{}", x, y));
    for (const int x : {32, 64, 128, 256, 512, 1024})
        for (const int y : {3, 5, 8, 16, 32})
            if (2 * y <= x) sizes.push_back(fmt::format("{0}x{0}:{1}x{1}", x, y));
    return sizes;
}

bool parse(const std::string& size, peers::ConvCase& c)
{
    int x = 0, y = 0, x2 = 0, y2 = 0, end = 0;
    const auto done = [&] { return end == static_cast<int>(size.size()); };
    if (std::sscanf(size.c_str(), "%d:%d%n", &x, &y, &end) == 2 && done())
        c.x = {x}, c.y = {y};
    else if (std::sscanf(size.c_str(), "%dx%d:%dx%d%n", &x, &x2, &y, &y2, &end) == 4 && done())
        c.x = {x, x2}, c.y = {y, y2};
    else
        return false;
    const auto good = [](int n) { return n >= 1 && n <= 50'000'000; };
    return std::all_of(c.x.begin(), c.x.end(), good) && std::all_of(c.y.begin(), c.y.end(), good);
}

Contest prepare(const peers::ConvCase& c, bool of_methods, const std::vector<peers::Library>& libraries)
{
    const std::shared_ptr<peers::ConvProblem> problem = peers::make_conv(c);
    Contest result{{}, problem->work(), {}, problem, false};
    const auto add = [&](const std::string& name, peers::Kind kind, const peers::Entrant& run) {
        if (run) result.contenders.push_back({name, kind, run, problem->check(run)});
    };
    for (const peers::Library& library : libraries) {
        const bool subject = library.kind == peers::Kind::subject;
        if (!subject && !of_methods) add(library.name, library.kind, problem->fftw(library));
        if (!subject) continue;
        const peers::Entrant run = problem->ork(library, ORK_CONV_AUTO);
        add(library.name, library.kind, run);
        if (of_methods) {
            add("direct", peers::Kind::peer, problem->ork(library, ORK_CONV_DIRECT));
            add("fft", peers::Kind::peer, problem->ork(library, ORK_CONV_FFT));
        } else if (run) {
            result.two_threads = [run](long calls) {
                const int one = ork_set_num_threads_local(2);
                run(calls);
                ork_set_num_threads_local(one);
            };
        }
    }
    if (!of_methods && problem->work() < 2e10) {
        add("hand", peers::Kind::peer, problem->by_hand());
        add("plain", peers::Kind::peer, problem->plain());
    }
    return result;
}

} // namespace

std::vector<Case> conv_cases(const Selection& selection)
{
    std::vector<Case> cases;
    const std::vector<std::string> usual = {"dconv", "sconv", "dcorr"}, quick = {"dconv"};
    for (const std::string& routine : !selection.routines.empty() ? selection.routines
                                      : selection.quick           ? quick
                                                                  : usual) {
        const std::string kind = routine.substr(std::min<size_t>(1, routine.size()));
        if (std::string("sdcz").find(routine[0]) == std::string::npos) continue;
        if (kind != "conv" && kind != "corr" && kind != "auto") continue;
        const bool of_methods = kind == "auto";
        for (const std::string& size : !selection.sizes.empty() ? selection.sizes
                                       : selection.quick        ? quick_sizes
                                       : of_methods             ? grid_of_sizes()
                                                                : usual_sizes) {
            peers::ConvCase c{routine[0], kind == "corr", {}, {}};
            if (!parse(size, c)) continue;
            cases.push_back({routine, "", size, 0,
                             [c, of_methods](const auto& libraries) { return prepare(c, of_methods, libraries); }});
        }
    }
    return cases;
}

} // namespace ork::tool::bench

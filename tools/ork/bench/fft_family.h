// SPDX-License-Identifier: MIT
// What the measurements of transforms share: which cases were asked for, and the libraries' plans of one.
#pragma once

#include "bench/family.h"
#include "peers/fft.h"

namespace ork::tool::bench {

std::vector<peers::FftCase> fft_selection(const Selection& selection);

struct Planned {
    Planned(const peers::FftCase& what, const std::vector<peers::Library>& libraries);

    struct Plan {
        std::string name;
        peers::Kind kind;
        std::unique_ptr<peers::Transform> transform;
        double seconds; // that planning took
    };
    peers::FftProblem problem;
    std::vector<Plan> plans; // of the libraries that have the case, in their order
};

// Tables of what `ork bench fft --accuracy` and `--planning` print.
void show_accuracy(const Selection& selection, const std::vector<peers::Library>& libraries);
void show_planning(const Selection& selection, const std::vector<peers::Library>& libraries);

} // namespace ork::tool::bench

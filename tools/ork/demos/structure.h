// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "demos/cg.h"

namespace ork::tool {

struct Method {
    const char *name, *colour;
    char mark; // in the terminal's plot
    Solution solution;
};

// Residuals over iterations, both on logarithmic scales.
std::vector<std::string> plot_in_text(const std::vector<Method>& methods);
void draw_structure(const std::string& file, const peers::CsrMatrix& matrix, const std::vector<Method>& methods);

} // namespace ork::tool

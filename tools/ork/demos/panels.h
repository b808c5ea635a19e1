// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "demos/pgm.h"

namespace ork::tool {

// Titled pictures in a row, the longer side of each `side` pixels.
void draw_panels(const std::string& file, const std::vector<std::pair<std::string, const Picture*>>& panels,
                 double side);

// Throws std::runtime_error naming the file.
void write_png(const std::string& file, const Picture& picture);

} // namespace ork::tool

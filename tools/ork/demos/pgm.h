// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ork::tool {

struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> pixels; // row by row
};

// Binary PGM files of 8 bits a pixel. Both throw std::runtime_error naming the file.
Picture read_pgm(const std::string& file);
void write_pgm(const std::string& file, const Picture& picture);

} // namespace ork::tool

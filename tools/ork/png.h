// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ork::tool {

// A grey picture of 8 bits a pixel as a PNG file, not compressed.
std::string png(int width, int height, const std::vector<uint8_t>& pixels);

// "data:image/png;base64,...", for an Svg's image.
std::string data_uri(const std::string& png);

} // namespace ork::tool

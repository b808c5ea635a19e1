// SPDX-License-Identifier: MIT
// Principal component analysis of small images. Matrices are stored by columns: a row is an image, a column a pixel.
#pragma once

#include <string>
#include <vector>

#include "demos/digits.h"

namespace ork::tool {

struct Reconstruction {
    int components;
    std::vector<double> images; // count x 64
    double rms;                 // error a pixel, in grey levels
};

struct Principal {
    std::vector<double> mean;       // 64
    std::vector<double> covariance; // 64 x 64
    std::vector<double> variance;   // along each component, descending
    std::vector<double> components; // 64 x 64, a column each, of length one
    std::vector<double> scores;     // count x 64
    std::vector<Reconstruction> kept;
    double flops = 0, product_flops = 0, product_seconds = 0; // the latter two of dgemm alone
};

void draw_pca(const std::string& file, const Images& images, const Principal& result);

} // namespace ork::tool

// SPDX-License-Identifier: MIT
// This program's own xerbla_, xerbla_64_, cblas_xerbla and cblas_xerbla64_, which take the library's place and keep
// what they are told.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ork::test {

struct Report {
    std::string through; // the symbol
    std::string routine;
    std::int64_t position;
    bool operator==(const Report&) const = default;
};

// Reports since the last call of this function.
std::vector<Report> take_reports();

} // namespace ork::test

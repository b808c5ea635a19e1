// SPDX-License-Identifier: MIT
// Squares of sparse matrices, C = A A with a sparse C: counting, filling and releasing it, double, 32-bit indices where
// a library has them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "peers/libraries.h"

namespace ork::peers {

class Spgemm {
public:
    virtual ~Spgemm() = default;
    virtual void run() = 0;                                              // makes C and releases it
    virtual std::vector<double> times(const std::vector<double>& x) = 0; // C x of a C made anew
    virtual std::string storage() const { return {}; }                   // what is particular about C
};

// Of the library with this name among find_handle_peers or ork; null when it has none. A must outlive it. ork's runs on
// as many threads as the caller may use.
std::unique_ptr<Spgemm> make_spgemm(const Library& library, const CsrMatrix& a);
std::unique_ptr<Spgemm> eigen_spgemm(const CsrMatrix& a); // null without Eigen

} // namespace ork::peers

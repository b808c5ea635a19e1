// SPDX-License-Identifier: MIT
// What this program puts in the place of the core's: messages as their numbers and arguments, printing into a text,
// and Fourier transforms and memory that fail when told to.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace ork::test {

struct ReplacedCore {
    std::string printed;             // what went to standard output
    std::string failing;             // the Fourier transform's call that fails: "create", "commit", "free", ...
    std::int64_t failing_status = 7; // what it gives
    bool no_memory = false;          // for work
    std::int64_t lengths = 0;        // of the latest descriptor
    std::vector<std::pair<std::int64_t, std::int64_t>> settings; // parameters set since then
    std::int64_t descriptors = 0;                                // alive
};
ReplacedCore& replaced_core();

} // namespace ork::test

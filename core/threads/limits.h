// SPDX-License-Identifier: MIT
// How many threads calls may use: settings and their defaults.
#pragma once

namespace ork::threads {

constexpr int most_threads = 256;

// Of the whole process, set or default.
int process_limit();

// Processors that this process may use; spinning and helping others make sense within them only.
int processors();

// The child of a fork may have another affinity by the time it calls.
void forget_processors();

} // namespace ork::threads

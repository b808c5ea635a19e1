// SPDX-License-Identifier: MIT
// What `ork bench trig --accuracy` prints: errors of all types beside that of a real Fourier transform of the length.
#pragma once

#include "bench/family.h"

namespace ork::tool::bench {

void show_trig_accuracy(const Selection& selection, const std::vector<peers::Library>& libraries);

} // namespace ork::tool::bench

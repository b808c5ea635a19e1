// SPDX-License-Identifier: MIT
#pragma once

namespace ork::loader {

// Opens the kernel library unless that was tried before; returns an ork_status.
int initialize();

// A fork waits until the library is open or was refused.
void before_fork();
void after_fork();

} // namespace ork::loader

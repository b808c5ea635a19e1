// SPDX-License-Identifier: MIT
#pragma once

namespace ork::loader {

// Opens the kernel library unless that was tried before; returns an ork_status.
int initialize();

// A fork waits until no thread is in the dynamic loader for us.
void before_fork();
void after_fork_in_parent();
void after_fork_in_child();

} // namespace ork::loader

// SPDX-License-Identifier: MIT
#pragma once

namespace ork::loader {

// Opens the kernel library unless that was tried before; returns an ork_status.
int initialize();

// Address of a routine of the system's mathematics library, which is opened at the first call: as one of the core's own
// needs it would take almost as much address space as the core. Ends the process when it isn't there.
void* find_in_libm(const char* routine);

// A fork waits until no thread is in the dynamic loader for us.
void before_fork();
void after_fork_in_parent();
void after_fork_in_child();

} // namespace ork::loader

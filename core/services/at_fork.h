// SPDX-License-Identifier: MIT
#pragma once

namespace ork::services {

// Makes fork() leave the core whole in parent and child. Called before the first lock or thread of the core, not at
// load.
void register_fork_handlers();

} // namespace ork::services

// SPDX-License-Identifier: MIT
#pragma once

namespace ork::services {

// In the child of a fork the lock is free: whoever held it lives in the parent only.
void reset_lock();

} // namespace ork::services

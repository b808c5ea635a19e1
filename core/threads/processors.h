// SPDX-License-Identifier: MIT
// How many processors this process may use.
#pragma once

namespace ork::threads {

// Within the affinity mask and the control group's quota, at least 1.
int available_processors();

// Processors that the quotas of a control group and its ancestors leave, a fraction; 0 when they leave all.
// `membership` is the text of /proc/self/cgroup, `root` the folder where the groups are mounted.
double group_quota(const char* membership, const char* root);

} // namespace ork::threads

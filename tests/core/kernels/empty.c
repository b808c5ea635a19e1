/* SPDX-License-Identifier: MIT */
/* The right code path, and not one kernel. */
int dll_cpu_version(void) { return 3; }

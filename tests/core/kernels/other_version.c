/* SPDX-License-Identifier: MIT */
/* A kernel library for another code path. */
int dll_cpu_version(void) { return 7; }

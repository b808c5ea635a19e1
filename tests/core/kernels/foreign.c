/* SPDX-License-Identifier: MIT */
/* A shared library that is no kernel library. */
int something_else(void) { return 3; }

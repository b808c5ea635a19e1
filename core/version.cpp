// SPDX-License-Identifier: MIT
extern "C" __attribute__((visibility("default"))) const char* ork_version() { return ORK_VERSION; }

// SPDX-License-Identifier: MIT
// What cpuid says about the processor that we run on.
#pragma once

namespace ork::services {

struct Processor {
    char vendor[13] = ""; // "AuthenticAMD", "GenuineIntel", ...
    char name[49] = "";   // the brand string, without leading blanks
    int family = 0;       // with the extended bits added, as the makers publish them
    int model = 0;
    bool sse42 = false;
    bool avx2 = false;   // and the system saves the registers
    bool avx512 = false; // the same, with the F, DQ, BW and VL groups
};

Processor detect_processor();

// Code of a processor model, from the table in processor.cpp; 0 when it has no row there.
int microarchitecture(const Processor& processor);

} // namespace ork::services

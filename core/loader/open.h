// SPDX-License-Identifier: MIT
// Finding and opening the kernel library.
#pragma once

#include <limits.h>

#include "loader/table.h"

namespace ork::loader {

struct Outcome {
    int status = 0; // an ork_status
    const KernelLibrary* library = nullptr;
    void* handle = nullptr;
    char path[PATH_MAX] = "";        // tried or open
    char error[PATH_MAX + 256] = ""; // when it is not open
};

// Opens the best library for this processor, in the global scope. Any number of threads may try at once.
void open_library(Outcome& outcome);

} // namespace ork::loader

// SPDX-License-Identifier: MIT
// The kernel libraries that this core knows, and how their routines are named.
#pragma once

#include <cstddef>

#include "services/processor.h"

namespace ork::loader {

struct KernelLibrary {
    const char* tag;  // the part of its routines' names that tells it from its siblings
    const char* file; // beside the core
    int code_path;    // what its dll_cpu_version returns
    bool (*serves)(const services::Processor&);
};

// The best one for a processor; null when there is none.
const KernelLibrary* choose(const services::Processor& processor);

// Writes ork_<domain>_<tag>_<routine>, or for the domain "sparse" ork_sparse_<routine>_<tag>; false when it doesn't
// fit.
bool compose_name(char* name, std::size_t size, const char* domain, const char* tag, const char* routine);

} // namespace ork::loader

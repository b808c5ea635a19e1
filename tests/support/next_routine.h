// SPDX-License-Identifier: MIT
#pragma once

#include <dlfcn.h>

namespace ork::test {

// The routine that a program's own one of the same name stands before.
template <class Function>
Function* next_routine(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace ork::test

// SPDX-License-Identifier: MIT
// A main program that is the core itself: it defines the routines, and the kernel library's entries reach them.
#include <dlfcn.h>

#include <gtest/gtest.h>

#include "frame/core/echo.h"
#include "support/process.h"

namespace ork::test {
namespace {

TEST(ForwardingEntries, ReachTheMainProgram)
{
    for (int flags : {RTLD_LAZY, RTLD_LAZY | RTLD_GLOBAL}) {
        const auto child = run_child(
            [flags] {
                void* library = dlopen(ORK_LIB_DIR "/libork_nx2.so", flags);
                if (library == nullptr) return 103;
                if (const int wrong = wrong_same_named_entry(library)) return wrong;
                return wrong_renamed_entry(library);
            },
            5);
        EXPECT_TRUE(child.ok()) << child.describe();
    }
}

} // namespace
} // namespace ork::test

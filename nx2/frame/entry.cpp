// SPDX-License-Identifier: MIT
// The library's entry routine and its code-path number.
#include <cstdint>

#include "frame/export.h"

namespace ork {

// Reasons for which the run-time calls the entry routine.
enum class Reason { process_detach, process_attach, thread_attach, thread_detach };

// Nothing to set up or to tear down: no thread, no table, no processor query. Reports success for every reason.
[[gnu::used]] static int library_entry(Reason) { return 1; }

} // namespace ork

// 3 stands for the SSE4.2 code path; a core compares it when it chooses a kernel library.
ORK_EXPORT std::int32_t dll_cpu_version() { return 3; }

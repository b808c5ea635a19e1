// SPDX-License-Identifier: MIT
#include "sparse/environment.h"

#include <atomic>

#include "export.h"
#include "ork/abi/services.h"
#include "ork/sparse.h"
#include "sparse/kernels.h"

namespace ork::sparse {
namespace {

using Handles = HandleCalls<std::int64_t>;
constinit Kernels<2> ee_init("ee_init"), kernel_set_verbose_mode("set_verbose_mode");

enum { untouched, being_made, made };
constinit std::atomic<int> state = untouched;
constinit Environment record = {};

} // namespace

Environment& environment()
{
    if (state.load(std::memory_order_acquire) == made) [[likely]]
        return record;
    auto* const initialise = ee_init.get<Handles::ee_init>(0, 8); // before the state, for the look-up takes long
    int none = untouched;
    if (state.compare_exchange_strong(none, being_made, std::memory_order_acq_rel)) {
        initialise(&record);
        state.store(made, std::memory_order_release);
    }
    while (state.load(std::memory_order_acquire) != made) {
    }
    return record;
}

bool prints() { return __atomic_load_n(&environment().verbose, __ATOMIC_RELAXED) != 0 || ork_serv_verbose_mode() != 0; }

} // namespace ork::sparse

ORK_EXPORT int ork_sparse_set_verbose_mode(int mode)
{
    using namespace ork::sparse;
    return kernel_set_verbose_mode.get<Handles::set_verbose_mode>(0, 8)(&environment(), mode);
}

// SPDX-License-Identifier: MIT
// The exports of one precision: the build compiles each source that includes this file once for each of the four and
// says which by ORK_KERNEL_LETTER, ORK_KERNEL_ELEMENT and ORK_KERNEL_COMPLEX.
//
//     ORK_TRANS_EXPORT(omatcopy)(char ordering, ...) { ... }
//
// declares the export with the signature that Calls<T> has for it, so another one does not compile. ORK_TRANS_DRIVER(
// omatcopy2_par) is a driver of the core; its address must not be taken, as imports are bound on their first call.
#pragma once

#include "frame/core_imports.h"
#include "frame/export.h"
#include "ork/abi/trans.h"
#include "simd/complex.h"

namespace ork::trans {

using T = ORK_KERNEL_ELEMENT;
using Call = Calls<T>;

#define ORK_TRANS_SYMBOL_OF(prefix, letter, stem) prefix##letter##stem
#define ORK_TRANS_SYMBOL(prefix, letter, stem) ORK_TRANS_SYMBOL_OF(prefix, letter, stem)
#define ORK_TRANS_MEMBER(stem) ORK_TRANS_SYMBOL(ork_trans_nx2_ork_, ORK_KERNEL_LETTER, stem)
#define ORK_TRANS_DRIVER(stem) ORK_TRANS_SYMBOL(ork_trans_ork_, ORK_KERNEL_LETTER, stem)
#define ORK_TRANS_EXPORT(stem)                                                                                         \
    ORK_EXPORT Call::stem ORK_TRANS_MEMBER(stem);                                                                      \
    ORK_EXPORT void ORK_TRANS_MEMBER(stem)

extern "C" {
Call::omatcopy2_seq ORK_TRANS_MEMBER(omatcopy2_seq);
Call::omatcopy2_par ORK_TRANS_DRIVER(omatcopy2_par);
Call::omatadd_par ORK_TRANS_DRIVER(omatadd_par);
Call::imatcopy_square_t_par ORK_TRANS_DRIVER(imatcopy_square_t_par);
Call::omatcopy_batch_strided_par ORK_TRANS_DRIVER(omatcopy_batch_strided_par);
Call::imatcopy_batch_strided_par ORK_TRANS_DRIVER(imatcopy_batch_strided_par);
Call::omatadd_batch_strided_par ORK_TRANS_DRIVER(omatadd_batch_strided_par);
Call::omatcopy_batch_par ORK_TRANS_DRIVER(omatcopy_batch_par);
Call::imatcopy_batch_par ORK_TRANS_DRIVER(imatcopy_batch_par);
}

} // namespace ork::trans

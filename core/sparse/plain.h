// SPDX-License-Identifier: MIT
// A matrix as the routines on callers' arrays take it (core/spblas), which serve every kind and operation: what an
// analysis has nothing to say about goes there.
//
//     PlainCall plain(*a, Routine::mmout, op, kind, layout);
//     if (!plain.has_memory()) return no_memory(r);
//     plain.call.nrhs = ..., plain.call.alpha = ...
//     return told_as(r, spblas::mm(plain.call));
#pragma once

#include "ork/abi/sparse.h"
#include "sparse/error.h"
#include "spblas/call.h"

namespace ork::sparse {

// Compressed columns are handed over as the rows of the transposed matrix. Blocks of another layout than the routine
// takes are copied for the time of the call: in mm and sm it is that of B and C, in mv and sv row-major with base 0 and
// column-major with base 1.
class PlainCall {
public:
    // layout: of mm and sm; the sizes, numbers and dense operands of the call are left to fill in.
    PlainCall(const Matrix& a, spblas::Routine routine, int op, const ork_sparse_kind& kind, int layout = 0);
    ~PlainCall();
    PlainCall(const PlainCall&) = delete;
    PlainCall& operator=(const PlainCall&) = delete;

    bool has_memory() const { return memory_; }

    spblas::Call call;

private:
    const void* in_other_layout(const Matrix& a, const void* values);

    spblas::Matrix matrix_;
    void* copy_ = nullptr;
    bool memory_ = true;
};

// A status of core/spblas as one of ours, told under our name.
std::int64_t told_as(const Routine& routine, std::int64_t status);

} // namespace ork::sparse

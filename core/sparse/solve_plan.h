// SPDX-License-Identifier: MIT
// What an analysis keeps of a triangle, or of a matrix that is smoothed: packed slices (abi/sparse/solve.h), and how
// threads share them.
#pragma once

#include "sparse/schedule.h"
#include "threads/pool.h"

namespace ork::sparse {

struct SolveKey {
    int op;
    ork_sparse_kind kind;
    bool whole; // both triangles
    bool operator==(const SolveKey& k) const
    {
        return op == k.op && kind.type == k.kind.type && kind.uplo == k.kind.uplo && kind.diag == k.kind.diag &&
               whole == k.whole;
    }
};
// Calls that mean the same have one key.
SolveKey solve_key(const Matrix& a, int op, ork_sparse_kind kind, bool whole);

struct SolvePlan {
    SolvePlan* next = nullptr;
    SolveKey key;
    Packed<std::int64_t, double> packed; // of the matrix's own integers and numbers
    bool upper;                          // the triangle that is packed, unless both are
    std::int64_t rows, bytes;
    std::int64_t chunks;
    int threads;
    const std::int64_t* chunk_begin;
    void *memory, *values_memory;
    double padding; // stored numbers for each entry

    std::int64_t lanes() const { return packed.slices * packed.height; }
    template <class Int, class T>
    const Packed<Int, T>* as() const
    {
        return reinterpret_cast<const Packed<Int, T>*>(&packed);
    }
};

// diagonal: it has no inverse of all digits; diagonal_fault() knows whether it is wrong. useless: too many entries.
enum class Planned { done, diagonal, useless, no_memory };

// `lasting`: worth a schedule, which takes as long as some ten solves; otherwise rows as they follow each other.
Planned make_plan(const Matrix& a, const SolveKey& key, bool lasting, SolvePlan*& plan);
void release_plan(SolvePlan* plan);
// After values changed in place. False where the plan can't follow.
bool refresh_plan(const Matrix& a, SolvePlan& plan);

const SolvePlan* find_plan(const Matrix& a, const SolveKey& key);

// body(slice_first, slice_last, share) for all slices, shares numbered from 0 to shares() - 1. Slices ascend, or
// descend, as the solve needs them; free: in no order.
enum class Direction { ascending, descending, free };
int shares(const SolvePlan& plan);
void run_shares(const SolvePlan& plan, Direction direction,
                void (*body)(void* context, std::int64_t first, std::int64_t last, int share), void* context);
template <class Body>
void run_shares(const SolvePlan& plan, Direction direction, Body&& body)
{
    run_shares(
        plan, direction,
        [](void* context, std::int64_t first, std::int64_t last, int share) {
            (*static_cast<Body*>(context))(first, last, share);
        },
        &body);
}

} // namespace ork::sparse

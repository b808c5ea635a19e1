// SPDX-License-Identifier: MIT
// Transforms of n real numbers to the half X[0 .. n/2] of their conjugate-even spectrum, and back.
//
// forward: X[k] = sum over j of x[j] exp(-2 pi i j k / n). backward: x[j] = the same sum with + over all n numbers of
// the spectrum, of which the half is given; imaginary parts that are zero by symmetry (of X[0], and of X[n/2] for even
// n) are never read. Results are multiplied by `scale` unless that is exactly 1. A plan is read-only once it is made.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dft/plan.h"

namespace ork::dft {

// Layouts of the half spectrum. The first three are vectors of real numbers:
//   ccs   R0 0 R1 I1 ... R(n/2) 0 for even n (n + 2 numbers), R0 0 R1 I1 ... R I for odd n (n + 1)
//   pack  R0 R1 I1 ... R(n/2) for even n, R0 R1 I1 ... R I for odd n (n)
//   perm  R0 R(n/2) R1 I1 ... for even n, as pack for odd n (n)
//   cce   n/2 + 1 complex numbers
// Values are those of a node's packed_format.
enum class Packing : int { ccs = 54, pack = 55, perm = 56, cce = 57 };

// Real numbers of the layout for length n.
constexpr std::int64_t packed_length(Packing packing, std::int64_t n)
{
    return packing == Packing::pack || packing == Packing::perm ? n : n / 2 * 2 + 2;
}

template <class R>
class RealPlan;

// Status 0, or 1 when there is no memory (nothing is left behind then). n >= 1.
template <class R>
int make_real_plan(std::int64_t n, RealPlan<R>** plan);
template <class R>
void free_real_plan(RealPlan<R>* plan); // null is fine
template <class R>
std::int64_t length(const RealPlan<R>& plan);

// Bytes of work memory, 64-byte aligned, for any of the calls below (any count); it holds nothing between calls.
template <class R>
std::size_t work_bytes(const RealPlan<R>& plan);
// The same for a single contiguous transform.
template <class R>
std::size_t work_bytes(const RealPlan<R>& plan, Packing packing);

// One transform of contiguous numbers. in and out are equal, and then the array has room for the longer of the two
// sides, or apart.
template <class R>
void forward(const RealPlan<R>& plan, Packing packing, R scale, const R* in, R* out, void* work);
template <class R>
void backward(const RealPlan<R>& plan, Packing packing, R scale, const R* in, R* out, void* work);

// A side of real numbers, and a packed one: number i of transform t is re[t * distance + i * stride]; im is not used.
// A cce side: as with complex transforms, X[k] has its parts at re[t * distance + k * stride] and im[the same], whether
// interleaved or not.
template <class R>
inline Place<R> real_numbers(R* x, std::int64_t stride, std::int64_t distance)
{
    return {x, nullptr, stride, distance};
}

// `count` transforms. The sides are apart, or transform t of one shares memory with transform t of the other and with
// no other transform.
template <class R>
void forward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
             std::int64_t count, void* work);
template <class R>
void backward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
              std::int64_t count, void* work);

// Threads that divide a batch do so at multiples of this many transforms from its first: then every division gives the
// same bits, and no time is lost on unfinished groups.
template <class R>
std::int64_t group(const RealPlan<R>& plan);

// One long transform of contiguous numbers in three stages of independent units, as the two of complex plans (plan.h):
// all units of a stage before the next, each once. `shared` is common to all, `work` each thread's own.
// units(plan, direction, 0) == 0: the plan has no stages.
template <class R>
std::int64_t units(const RealPlan<R>& plan, Direction direction, int stage);
template <class R>
std::size_t shared_bytes(const RealPlan<R>& plan, Packing packing);
template <class R>
std::size_t staged_work_bytes(const RealPlan<R>& plan);
template <class R>
void run_stage(const RealPlan<R>& plan, int stage, Direction direction, Packing packing, R scale, std::int64_t from,
               std::int64_t to, const R* in, R* out, void* shared, void* work);

// Between cce (contiguous, interleaved) and a packed layout of one spectrum of length n. In place when equal (the array
// has room for the longer). To cce: zeros are written where symmetry has them. From cce: those are not read.
template <class R>
void from_cce(Packing packing, std::int64_t n, const R* cce, R* packed);
template <class R>
void to_cce(Packing packing, std::int64_t n, const R* packed, R* cce);

// The pass over columns of a matrix of m rows of n real numbers each, in packed storage; its rows are or will be packed
// vectors of length n. So a row has one or two columns of real numbers (R0; for even n R(n/2)) and (n - 1)/2 pairs of
// columns that are complex. The complex ones are transformed as such, m numbers down a pair; a real one becomes or
// comes from a packed vector of length m (m + 2 or m + 1 numbers down for ccs). ccs has zeros beside a real column,
// which are not read; forward writes them, and below the complex columns zeros too.
//
// Column unit 0 is R0, units 1 .. (n - 1)/2 are complex, the last one for even n is R(n/2); threads divide units.
// Number (i, j) of the matrix is re[i * stride + j * distance].
template <class R>
struct PackedColumns {
    const Plan<R>* complex; // both of length m; complex may be null for n < 3
    const RealPlan<R>* real;
    std::int64_t n;
    Packing packing; // not cce
};
constexpr std::int64_t column_units(std::int64_t n) { return n / 2 + 1; }
template <class R>
std::size_t work_bytes(const PackedColumns<R>& columns);
// in and out are the same place or apart.
template <class R>
void transform(const PackedColumns<R>& columns, Direction direction, R scale, const Place<R>& in, const Place<R>& out,
               std::int64_t from, std::int64_t to, void* work);

} // namespace ork::dft

// SPDX-License-Identifier: MIT
// Numbers instead of addresses: what a handle is. Its lower half is a slot of a table, its upper half the generation
// that the slot was in, odd while its matrix lives. So a destroyed handle, also one whose slot is in use again, and a
// word that was never one are told from a live handle without following any of them.
#pragma once

#include "ork/abi/sparse.h"
#include "ork/sparse.h"

namespace ork::sparse {

// Null when there is no memory for another slot.
ork_sparse_matrix_t enter(Matrix* matrix);

// The matrix, which from now on has no handle; null when it had none, or another thread was first.
Matrix* withdraw(ork_sparse_matrix_t handle);

} // namespace ork::sparse

// SPDX-License-Identifier: MIT
// Parts of a product with a general or a band matrix. Elements of y don't depend on each other, so any part of them is
// a product of its own: with some rows or columns of the matrix, and for a band with the part of x that these reach.
#pragma once

#include "xblas/call.h"

namespace ork::xblas {

// Real multiply-adds of a call.
double products(const Routine& routine, const Call& call);

// So many elements of y may be divided; those of a band that come after them reach no element of x, and belong to the
// last piece.
Int divisible(const Routine& routine, const Call& call);

// The call for the elements first .. first + count - 1, first + count <= divisible().
Call piece(const Routine& routine, const Call& call, Int first, Int count);

} // namespace ork::xblas

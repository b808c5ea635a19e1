/* SPDX-License-Identifier: MIT */
// Kernels of small, batched and building-block LAPACK: how they are named, what they take. C++: a core looks them up by
// name.
//
//     ork_lapack_ps_<tag>_<p><stem>      d getrf_small
//
// p is the precision s d c z. Every argument is an address, integers have 64 bits, Fortran's hidden lengths of letters
// are left out. Matrices are stored by columns with a leading dimension of at least max(1, rows); rows, columns, pivots
// and info count from 1. Kernels check nothing and print nothing; they take no memory and keep no state. Work arrays
// are the caller's. Where an element is complex a reciprocal, a quotient and a modulus are computed without
// needless overflow; products are the plain formula.
//
// Of a routine that LAPACK has, the arguments, results and info are LAPACK's unless the stem says more; illegal
// arguments are the caller's business. What the headers below fix beyond that is the order of operations, so that
// results do not depend on who calls: the same arguments give the same bits.
//
//     lapack/factor.h    LU, Cholesky and QR of small matrices
//     lapack/spectral.h  singular values and eigenvalues of small matrices, symmetric indefinite, secular equations
//     lapack/blocks.h    rotations, reflectors, tridiagonal systems, copies, panels of blocked reductions
//     lapack/compact.h   many matrices of one size side by side
#ifndef ORK_ABI_LAPACK_H
#define ORK_ABI_LAPACK_H

#include "ork/abi/lapack/blocks.h"
#include "ork/abi/lapack/compact.h"
#include "ork/abi/lapack/factor.h"
#include "ork/abi/lapack/spectral.h"

namespace ork::lapack {

// Calls<T>::stem is the signature of a stem; T is float, double or a complex pair of them.
template <class T>
struct Calls : FactorCalls<T>, SpectralCalls<T>, BlockCalls<T>, CompactCalls<T> {
};

} // namespace ork::lapack

#endif

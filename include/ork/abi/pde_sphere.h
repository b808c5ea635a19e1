/* SPDX-License-Identifier: MIT */
// Kernels of the Helmholtz equation on a sphere and on grids that are not uniform in z: calls, arrays, discretisation.
// Conventions, statuses and their order are those of ork/abi/pde.h.
//
// THE SPHERE. -Laplace(u) + q u = f on the unit sphere, longitude phi in [ap, bp], colatitude theta in [at, bt] with
// 0 <= at < bt <= pi; phi(i) = ap + i hp, i = 0 .. np, hp = (bp - ap) / np; theta(j) = at + j ht, j = 0 .. nt,
// ht = (bt - at) / nt. f holds the right-hand side on entry and u on exit, longitude fastest: point (i, j) stands at
// f[j (np + 1) + i]. With s(j) = sin theta(j) the equation of point (i, j) is
//
//     (s(j - 1/2) (u(i, j) - u(i, j - 1)) + s(j + 1/2) (u(i, j) - u(i, j + 1))) / (ht^2 s(j))
//       + (2 u(i, j) - u(i - 1, j) - u(i + 1, j)) / (hp^2 s(j)^2) + q u(i, j) = f(i, j)
//
// of second order in both steps; times s(j) it is a balance of fluxes, so nothing is lost on the whole sphere.
//
//   sph_p   The whole circle, bp - ap = 2 pi: point np is point 0; f(np, j) is not read and equals f(0, j) on exit.
//           A pole in the domain, at = 0 or bt = pi, is one unknown. Its equation is the balance of its cap of radius
//           ht/2, with w = 2 sin(ht/4)^2 / ht for a weight where other rows have s(j), m the mean of u over the row
//           next to it and g the mean of f over the pole's own row:
//               sin(ht/2) (u - m) / (ht^2 w) + q u = g
//           On exit the whole row holds u. A side that is no pole holds Dirichlet values in its row of f, which stays.
//           With both poles and |ht^2 q| within the tolerance the problem is singular: the mean of f by the weights is
//           dropped and the solution with that mean zero is taken; ipar[SphereArray::singular] is 1 then, else 0.
//   sph_np  A part of the circle. All four sides hold Dirichlet values: f(0, j), f(np, j), f(i, 0), f(i, nt), which
//           stay. A pole is a side like any other.
//
// Longitude takes sine transforms of type 0, on the circle also cosine transforms of type 1: of length np/2 for even
// np >= 4, else of length np over the circle twice. np = 1 has no transform, so its commit fails with -1000.
//
// ALONG Z NOT UNIFORM. Single precision only; as helmholtz_3d in x and y, with nodes z(0) < z(1) < ... < z(nz) of the
// caller's. With h(k) = z(k + 1) - z(k) the second difference is
//
//     2 ((u(k + 1) - u(k)) / h(k) - (u(k) - u(k - 1)) / h(k - 1)) / (h(k - 1) + h(k))
//
// of second order where the steps change gradually. At a Neumann side the ghost point stands at the distance of its
// mirror image, and bd_az, bd_bz are derivatives along the outward normal. Periodic: point nz is point 0, h(-1) is
// h(nz - 1).
#ifndef ORK_ABI_PDE_SPHERE_H
#define ORK_ABI_PDE_SPHERE_H

#include "ork/abi/pde.h"

namespace ork::pde {

// Of ork_pdepl_<tag>_<p>_<stage>_{sph_p, sph_np}; free has no precision. sph_p has two handles, of the sine and of the
// cosine transform.
template <class R>
struct SphereCalls {
    using init = void(const R* ap, const R* bp, const R* at, const R* bt, const Int* np, const Int* nt, const R* q,
                      Int* ipar, R* fpar, Int* stat);
    using commit_np = void(R* f, ork_dft_descriptor** sine, Int* ipar, R* fpar, Int* stat);
    using commit_p = void(R* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine, Int* ipar, R* fpar, Int* stat);
    using solve_np = commit_np;
    using solve_p = commit_p;
};
using FreeSphereNp = void(ork_dft_descriptor** sine, Int* ipar, Int* stat);
using FreeSphereP = void(ork_dft_descriptor** sine, ork_dft_descriptor** cosine, Int* ipar, Int* stat);

// Entries of ipar, 128 integers. Those that are not named mean what they mean to helmholtz_2d.
struct SphereArray {
    enum : int {
        status = 0,
        error_switch = 1,
        warning_switch = 2,
        west = 6, // codes of the sides ap, bp, at, bt
        east = 7,
        north = 8,
        south = 9,
        np = 12,
        nt = 13,
        eigenvalues = 15,  // 1-based positions in fpar: of the eigenvalues in longitude
        latitudes = 16,    // of nt + 2 sines between the rows and nt + 1 weights of the rows
        sine_array = 19,   // of the transforms' arrays
        cosine_array = 20, // 0: sph_np
        message_set = 23,
        threads = 24,
        singular = 27,
        sine = 40, // the transforms' ipar
        cosine = 60
    };
};
enum SphereSide : Int { side_values = 0, side_circle = 2, side_pole = 3 };

// Real numbers: 0 bp - ap, 1 bt - at, 2 at, 3 q, 4 tolerance of the test for singularity 1e-10, then the tables. Room
// for all of it:
constexpr Int sphere_reals(Int np, Int nt) { return 6 * np + 2 * nt + 16; }

// Of ork_pdepl_<tag>_s_<stage>_helmholtz_nonuniform_3d; free is that of helmholtz_3d. z has nz + 1 nodes, which commit
// keeps in fpar: it has room for helmholtz_3d and for what stands behind.
struct NonuniformCalls {
    using init = void(const float* ax, const float* bx, const float* ay, const float* by, const Int* nx, const Int* ny,
                      const Int* nz, const char* BCtype, const float* q, Int* ipar, float* fpar, Int* stat);
    using commit = void(float* f, const float* z, ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, Int* ipar,
                        float* fpar, Int* stat);
    using solve = PoissonCalls<float>::helmholtz_3d;
};
constexpr Int nonuniform_reals(Int nx, Int ny, Int nz) { return reals_3d(nx, ny) + 2 * nz + 3; }

} // namespace ork::pde

#endif

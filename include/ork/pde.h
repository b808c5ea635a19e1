/* SPDX-License-Identifier: MIT */
/* Sine and cosine transforms, and fast solvers of Poisson's and Helmholtz's equation

       -Laplace(u) + q u = f

   on rectangles, boxes and spheres. Everything goes through the same steps: init describes the problem in two arrays of
   the caller's, commit checks and plans, then solve or transform as often as you like, and free. Laplace(u) = -1 on a
   square, u = 0 on its boundary:

       enum { NX = 100, NY = 100 };
       static double f[(NX + 1) * (NY + 1)], zero[NX + 1], rpar[ORK_HELMHOLTZ_2D_REALS(NX, NY)];
       int64_t ipar[ORK_PDE_INTEGERS];
       ork_dft_descriptor* xhandle;
       for (int i = 0; i < (NX + 1) * (NY + 1); ++i) f[i] = 1;
       ork_d_init_helmholtz_2d(0, 1, 0, 1, NX, NY, "DDDD", 0, ipar, rpar);
       ork_d_commit_helmholtz_2d(&xhandle, ipar, rpar);
       ork_d_helmholtz_2d(f, zero, zero, zero, zero, &xhandle, ipar, rpar);    // f is u now: 0.0737 in the middle
       ork_free_helmholtz_2d(&xhandle, ipar);

   GRIDS. Grid points 0 .. nx in x, 0 .. ny in y (0 .. nz in z), hx = (bx - ax) / nx and so on. Point (i, j, k) stands
   at f[i + j (nx + 1) + k (nx + 1) (ny + 1)].

   SCHEME. Central differences, of second order: at every unknown point

       (2 u(i, j) - u(i-1, j) - u(i+1, j)) / hx^2 + the same in y (and z) + q u(i, j) = f(i, j)

   which is solved to rounding in O(N log N). In single precision rounding of the equations moves u by up to 1e-8 n^2 of
   its size. With q > 0 or a Dirichlet side there is one solution; q < 0 is allowed but warned of.

   SIDES. A letter a side, of either case, in the order ax, bx, ay, by (az, bz):
     D  Dirichlet: bd holds u on the side. It is copied into f; on edges the later side's values hold.
     N  Neumann: bd holds the derivative along the outward normal. The equation is set up at the points of the side,
        with the point beyond it eliminated by a central difference: u(-1) = u(1) + 2 hx bd.
     P  periodic, both sides of a direction or none: point nx is point 0. f of point nx is not read, and equals that of
        point 0 on exit. bd is not read and may be null.

   On D sides f need not be set. bd_ax and bd_bx hold ny + 1 numbers, bd_ay and bd_by nx + 1; in three dimensions a
   plane each, ordered like a plane of f: bd_ax[j + k (ny + 1)], bd_ay[i + k (nx + 1)], bd_az[i + j (nx + 1)].

   SINGULAR PROBLEMS: no D and q = 0, or |q h^2| up to 1e-10, h of the last direction. A solution is determined but for
   a constant, and exists only if f and bd balance. The part of f that doesn't (a constant) is dropped, and the solution
   with mean zero is computed, points of N sides counting half (edges a quarter). commit warns and
   ipar[ORK_PDE_SINGULAR] is 1; a solve warns when what it drops is more than rounding.

   THREE DIMENSIONS, with two handles:

       ork_d_init_helmholtz_3d(ax, bx, ay, by, az, bz, nx, ny, nz, "NNPPDD", q, ipar, rpar);
       ork_d_commit_helmholtz_3d(&xhandle, &yhandle, ipar, rpar);
       ork_d_helmholtz_3d(f, bd_ax, bd_bx, NULL, NULL, bd_az, bd_bz, &xhandle, &yhandle, ipar, rpar);
       ork_free_helmholtz_3d(&xhandle, &yhandle, ipar);

   NODES OF ONE'S OWN IN Z, in single precision: z[0] < z[1] < ... < z[nz] in place of az, bz and nz equal intervals.
   With h(k) = z[k+1] - z[k] the second difference is

       2 ((u(k+1) - u(k)) / h(k) - (u(k) - u(k-1)) / h(k-1)) / (h(k-1) + h(k))

   of second order where the intervals change gradually. Beyond N the eliminated point lies as far away as the inner
   one. commit takes the nodes into rpar; solve and free are as above.

       ork_s_init_helmholtz_nonuniform_3d(ax, bx, ay, by, nx, ny, nz, "DDDDDN", q, ipar, rpar);
       ork_s_commit_helmholtz_nonuniform_3d(z, &xhandle, &yhandle, ipar, rpar);
       ork_s_helmholtz_nonuniform_3d(f, bd_ax, bd_bx, bd_ay, bd_by, bd_az, bd_bz, &xhandle, &yhandle, ipar, rpar);
       ork_free_helmholtz_3d(&xhandle, &yhandle, ipar);

   x must have 2 intervals or more, in three dimensions also y: their transforms begin there.

   THE SPHERE. Longitude in [ap, bp] with np intervals, colatitude in [at, bt] within [0, pi] with nt; point (i, j)
   stands at f[i + j (np + 1)]. sph_p: bp - ap = 2 pi, and u is periodic in longitude; a pole in the domain, at = 0 or
   bt = pi, is one unknown whose equation is the balance of the cap around it, a side that is none holds Dirichlet
   values in its row of f. sph_np: the four sides hold Dirichlet values in f. With s(j) = sin(at + j ht) the scheme is

       (s(j-1/2) (u(i, j) - u(i, j-1)) + s(j+1/2) (u(i, j) - u(i, j+1))) / (ht^2 s(j))
           + (2 u(i, j) - u(i-1, j) - u(i+1, j)) / (hp^2 s(j)^2) + q u(i, j) = f(i, j)

   and at a pole, with m the mean of u over the row next to it, g that of f over its own row and w = 2 sin(ht/4)^2 / ht,

       sin(ht/2) (u - m) / (ht^2 w) + q u = g

   With both poles and q = 0 the problem is singular as above; rows count by s(j), poles by w.

       ork_d_init_sph_p(0, 2 * pi, 0, pi, np, nt, 1, ipar, rpar);
       ork_d_commit_sph_p(&sine, &cosine, ipar, rpar);
       ork_d_sph_p(f, &sine, &cosine, ipar, rpar);
       ork_free_sph_p(&sine, &cosine, ipar);

   TRANSFORMS, of f[0 .. n], n > 1, in place. Forward gives F(k) where f(k) stood; backward after forward gives f again.
   In sums with (half ...) those terms count half.

     type  forward F(k) = 2/n times the sum of f(i) times         backward f(i) = sum of F(k) times
     0     sin(pi k i / n)                    f(0) = f(n) = 0      the same
     1     cos(pi k i / n), half i = 0, n                          the same, half k = 0, n
     2     cos((2k+1) pi i / 2n), half i = 0  f(n) = 0             the same, no half; k = 0 .. n-1
     3     sin((2k-1) pi i / 2n), half i = n  f(0) = 0             the same, no half; k = 1 .. n
     4     cos((2k+1)(2i+1) pi / 4n)          f[0 .. n-1]          the same
     5     sin((2k+1)(2i+1) pi / 4n)          f[0 .. n-1]          the same

   Values that must be 0 are taken for 0; commit warns when they exceed rpar[0]. With ipar[ORK_TRIG_UNSCALED] = 1
   between init and commit nothing is scaled and nothing looked at: results are n times those of forward and twice those
   of backward, and elements that must be 0 are not touched (of type 3, f(i) stands at f[i-1] then).

       ork_d_init_trig_transform(n, 0, ipar, rpar);
       ork_d_commit_trig_transform(f, &handle, ipar, rpar);
       ork_d_forward_trig_transform(f, &handle, ipar, rpar);
       ork_d_backward_trig_transform(f, &handle, ipar, rpar);
       ork_free_trig_transform(&handle, ipar);

   ARRAYS. ipar has ORK_PDE_INTEGERS integers, rpar as many numbers as the macros below say. Both are the caller's and
   may be moved between the steps, not changed but where this header says so: what isn't as commit left it is refused.
   commit sets the handles; after a failed one there is nothing to free, and free does no harm.

   STATUSES, returned and stored in ipar: ORK_PDE_OK or an ork_pde_status. A failed step blocks the next ones until
   init. Null pointers are ORK_PDE_BAD_ARGUMENT and leave everything as it was.

   MESSAGES say what went wrong and what to do. ipar[1] switches those of errors, ipar[2] those of warnings: above 0, as
   init sets them, to standard output; below 0 appended to ORK_Poisson_Library_Log.txt, of transforms to
   ORK_Trig_Transforms_Log.txt, in the current directory; 0 none.

   THREADS. Large problems are solved by as many threads as other calls may use (ork/ork.h), with the same bits for
   every number; spheres, and systems along nodes of one's own, by one. ipar[ORK_PDE_THREADS] of a solver, set by init,
   may be lowered. Several threads may solve at once, each with arrays of its own: for one commit, with copies of ipar
   and rpar and the same handles. */
#ifndef ORK_PDE_H
#define ORK_PDE_H

#include "ork/dft.h"
#include "ork/types.h"

ORK_BEGIN_DECLS

enum ork_pde_status {
    ORK_PDE_OK = 0,
    ORK_PDE_BAD_ARGUMENT = -100,      /* sizes, sides or lengths; a stage of a solver that failed */
    ORK_PDE_TRANSFORM_FAILED = -1000, /* a transform can't be set up: too short, or no memory */
    ORK_PDE_BAD_STATE = -10000,       /* a step without the one before it, or after one that failed */
    ORK_PDE_RUNNING = -99999          /* a step has begun and not ended */
};

/* Elements of ipar that an application may set or read. */
enum {
    ORK_PDE_ERROR_MESSAGES = 1,
    ORK_PDE_WARNING_MESSAGES = 2,
    ORK_TRIG_UNSCALED = 10, /* of a transform */
    ORK_PDE_THREADS = 24,   /* of a solver */
    ORK_PDE_SINGULAR = 27   /* of a solver */
};

/* Lengths of ipar and rpar. */
#define ORK_PDE_INTEGERS 128
#define ORK_TRIG_REALS(n) (5 * (n) / 2 + 2)
#define ORK_HELMHOLTZ_2D_REALS(nx, ny) (6 * (nx) + (ny) + 16)
#define ORK_HELMHOLTZ_3D_REALS(nx, ny) (6 * ((nx) + (ny)) + 20)
#define ORK_HELMHOLTZ_NONUNIFORM_3D_REALS(nx, ny, nz) (6 * ((nx) + (ny)) + 2 * (nz) + 23)
#define ORK_SPHERE_REALS(np, nt) (6 * (np) + 2 * (nt) + 16)

#define ORK_REAL float
#define ORK_NAME(routine) ork_s_##routine
#include "ork/pde_routines.h"
#undef ORK_NAME
#undef ORK_REAL
#define ORK_REAL double
#define ORK_NAME(routine) ork_d_##routine
#include "ork/pde_routines.h"
#undef ORK_NAME
#undef ORK_REAL

/* Nodes of one's own in z. */
int64_t ork_s_init_helmholtz_nonuniform_3d(float ax, float bx, float ay, float by, int64_t nx, int64_t ny, int64_t nz,
                                           const char* sides, float q, int64_t* ipar, float* rpar);
int64_t ork_s_commit_helmholtz_nonuniform_3d(const float* z, ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle,
                                             int64_t* ipar, float* rpar);
int64_t ork_s_helmholtz_nonuniform_3d(float* f, const float* bd_ax, const float* bd_bx, const float* bd_ay,
                                      const float* bd_by, const float* bd_az, const float* bd_bz,
                                      ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, int64_t* ipar,
                                      float* rpar);

/* Of either precision. */
int64_t ork_free_trig_transform(ork_dft_descriptor** handle, int64_t* ipar);
int64_t ork_free_helmholtz_2d(ork_dft_descriptor** xhandle, int64_t* ipar);
int64_t ork_free_helmholtz_3d(ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, int64_t* ipar);
int64_t ork_free_sph_p(ork_dft_descriptor** sine, ork_dft_descriptor** cosine, int64_t* ipar);
int64_t ork_free_sph_np(ork_dft_descriptor** sine, int64_t* ipar);

ORK_END_DECLS

#endif

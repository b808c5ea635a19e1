/* SPDX-License-Identifier: MIT */
// Kernels of trigonometric transforms and of Poisson and Helmholtz solvers, and what they call of the core: names,
// arguments, contracts. C++: a core looks the kernels up by name.
//
//     ork_pdett_<tag>_<p>_<stage>_trig_transform       d forward; free has no precision
//     ork_pdepl_<tag>_<p>_<stage>_<problem>            d init helmholtz_2d; the solve has no stage, free no precision
//
// p is s or d. Every argument is an address, integers have 64 bits; a handle is the address of the pointer to a
// descriptor of Fourier transforms. A core's routine of a stage takes the work record of its solve.
#ifndef ORK_ABI_PDE_H
#define ORK_ABI_PDE_H

#include <cstdint>

#include "ork/dft.h"

namespace ork::pde {

using Int = std::int64_t;

// Statuses of every stage, stored in stat and in the array of integers.
enum Status : Int { ok = 0, bad_argument = -100, transform_failed = -1000, bad_state = -10000, running = -99999 };

// TRIGONOMETRIC TRANSFORMS. A kernel computes twice the sum below, in place; unless ipar[10] is set the stage
// multiplies by 1/n (forward) or 1/2 (backward), which makes forward and backward inverse to each other. Without it
// backward after forward gives 2n times the numbers. A sum with (half ...) counts those elements half.
//
//     type  forward F(k), sum over i of f(i) times   i, k                    backward f(i), sum over k of F(k) times
//     0     sin(pi k i / n)                          1 .. n-1                the same
//     1     cos(pi k i / n) (half i = 0, n)          0 .. n                  the same (half k = 0, n)
//     2     cos((2k+1) pi i / 2n) (half i = 0)       0 .. n-1                the same, no half
//     3     sin((2k-1) pi i / 2n) (half i = n)       1 .. n                  the same, no half
//     4     cos((2k+1)(2i+1) pi / 4n)                0 .. n-1                the same
//     5     sin((2k+1)(2i+1) pi / 4n)                0 .. n-1                the same
//
// F(k) lands where f(k) stands. f[0] and f[n] of type 0, f[n] of type 2 and f[0] of type 3 are zeros of the function:
// they are not read into the sums and only the scaling touches them (in types 2 and 3 both, in type 0 the forward one).
// Type 3 with ipar[10] set transforms f[0 .. n-1], so f(i) stands at f[i-1]. f[n] of types 4 and 5 is not touched.
//
// The array of real numbers has 5n/2 + 2 elements or more: tolerance, a mark of the commit, tables. A computation with
// an array that bears no mark, or the mark of another n or type, is refused with bad_state.
template <class R>
struct TrigCalls {
    using init = void(const Int* n, const Int* type, Int* ipar, R* fpar, Int* stat);
    using commit = void(R* f, ork_dft_descriptor** handle, Int* ipar, R* fpar, Int* stat);
    using forward = commit;
    using backward = commit;
    using free = void(ork_dft_descriptor** handle, Int* ipar, Int* stat);

    // forward or backward of `count` lines at once, by any number of threads: element i of line k is
    // f[k distance + i stride]; ipar and fpar are read only and no message is built. A committed transform with its
    // scaling and nothing else. The bits of a line depend on its numbers alone, not on where it lies or on the others;
    // those of single calls may be others. Gives the status.
    using lines = Int(const Int* backward, R* f, const Int* count, const Int* stride, const Int* distance,
                      ork_dft_descriptor** handle, const Int* ipar, const R* fpar);
};

// POISSON AND HELMHOLTZ SOLVERS
//
// -Laplace(u) + q u = f on grid points 0..nx, 0..ny (and 0..nz) by central differences; h is the step of a direction. A
// side is Dirichlet (code 0: u given), Neumann (1: derivative along the outward normal given) or periodic (2: point n
// is point 0). UNKNOWN points of a direction, by the pair of its sides:
//     dd 1 .. n-1     dn 1 .. n     nd 0 .. n-1     nn 0 .. n     pp 0 .. n-1
// The solver (a kernel library) checks, plans and calls the stages (routines of the core); it never looks at f between
// them. Arrays of the boundary are indexed like a side of f: bd_ax[j + k (ny+1)], bd_ay[i + k (nx+1)],
// bd_az[i + j (nx+1)]; those of periodic sides are not read.
//
// INTEGERS, 128 of them. Indices from 0; "position" counts real numbers from 1.
//     0       status of the last stage
//     1, 2    switches of error and warning messages: > 0 printed, < 0 appended to the log file, 0 silent
//     6..11   codes of the sides ax, bx, ay, by, az, bz; a letter that is none of d, n, p gives -1
//     12..14  nx, ny, nz (0 in two dimensions)
//     15      position of the table of x, 6; 16 that of its last entry, nx + 6
//     17, 18  the same of y in three dimensions, nx + 7 and nx + ny + 7; 0 in two
//     19      position of the array of the x transform. Two dimensions: nx + 7, periodic x nx + ny + 10. Three:
//             nx + ny + 8
//     20      periodic x: position of the array of the second transform. Two dimensions else: nx + 7 + 3 nx / 2 rounded
//             down, which nobody reads
//     21, 22  three dimensions: the same of y
//     23      1: messages by _print_diagnostics_c, 0: by _f
//     24      threads that a stage may use
//     25, 26  path of x and of y (26: three dimensions only): type of the transform, or Path
//     27      1 when the problem is singular; set by commit and by every solve
//     28      seal of the commit: what of this array must be as it was (sizes, codes, positions, paths)
//     29, 30  descriptors of the second transforms of x and y, for periodic sides
//     31      seal of the handles: what a free or a second commit may release
//     32      seal of init: the sizes, by which arrays are as long as they are
//     40..59  the ipar of the x transform       80..99    of the second one
//     60..79  of the y transform                100..119  of the second one
//
// REAL NUMBERS: 0 bx - ax, 1 by - ay, 2 bz - az, 3 q, 4 tolerance of the test for singularity 1e-10, tables from
// element 5, arrays of the transforms. reals_2d(), reals_3d() suffice.
constexpr Int transform_reals(Int n) { return 5 * n / 2 + 2; } // of one array
constexpr Int reals_2d(Int nx, Int ny) { return 6 * nx + ny + 16; }
constexpr Int reals_3d(Int nx, Int ny) { return 6 * (nx + ny) + 20; }

// TRANSFORMED DIRECTIONS: x, and y in three dimensions. Every transform is committed without scaling (ipar[10] = 1), so
// backward after forward is 2n times the numbers and what is zero by the type is neither read nor written: Dirichlet
// values stay where they are. Below for x; n = nx.
//     dd   type 0 of the whole line; mode k = 1 .. n-1 at column k
//     nn   type 1; mode k = 0 .. n at column k
//     nd   type 2; mode k = 0 .. n-1 at column k
//     dn   type 2 of the line reversed: element i is column n - i (stride -1 from column n); mode k at column n - k
//     pp   halves, n even and > 2, m = n / 2. First (u(i) + u(n-i)) / 2 at column i and (u(i) - u(n-i)) / 2 at column
//          n - i for 0 < i < m; columns 0 and m as they are. Then type 1 of length m on columns 0 .. m, and the second
//          transform, type 0 of length m, on columns m .. n (it leaves columns m and n alone). Cosine k = 0 .. m at
//          column k, sine k = 1 .. m-1 at column m + k.
//          whole, n odd or 2. Even part e(i) = (u(i) + u(n-i)) / 2, odd part o(i) = (u(i) - u(n-i)) / 2, i = 0 .. n,
//          each a line of its own: type 1 of length n of e, type 0 of length n of o. Their even elements 2k (the odd
//          ones are zero) are cosine and sine k: cosine k at column 2k, sine k at column 2k - 1.
// The table of x has an entry for each column 0 .. nx, that of y for each row 0 .. ny: in two dimensions
//     2 + hy^2 (lambda + q)
// for x, in three
//     hz^2 lambda                 for x
//     2 + hz^2 (lambda + q)       for y
// where lambda = (2 - 2 cos theta) / h^2, theta = pi k / n of dd and nn, pi (2k + 1) / 2n of nd and dn, 2 pi k / n of
// pp, k the mode at that place. Where no mode stands the entry repeats a neighbour's.
enum Path : Int { halves = -1, whole = -2 };

// Shared by the stages of one solve.
template <class R>
struct Work {
    R* f; // x fastest, (nx + 1) (ny + 1) (nz + 1) numbers, nz = 0 in two dimensions
    const R *bd_ax, *bd_bx, *bd_ay, *bd_by, *bd_az, *bd_bz; // null: a direction that the problem has not
    Int* ipar;
    R* fpar;
    Int nx, ny, nz;
    ork_dft_descriptor **xhandle, **yhandle; // null: a direction that is not transformed
    Int singular;                            // 1: the solution is determined but for a constant, if there is any
    Int status;                              // 0; a stage stores anything else when it fails
    ork_dft_descriptor **xsecond, **ysecond; // of the second transforms
};

// STAGES. Two dimensions: ft_2d_<x>, lu_2d_<y>, inv_ft_2d_<x>, where <x> is the pair of x. Three: ft_3d_x_<x>,
// ft_3d_y_<y>, ft_3d_z_<z>, inv_ft_3d_z_<z>, inv_ft_3d_y_<y>, inv_ft_3d_x_<x>. A stage that finds status set is not
// called. A core may do what is ft_3d_y's in ft_3d_x already, and what is inv_ft_3d_y's in inv_ft_3d_x.
// Pairs of other directions: 2 code(a) + code(b) = 0 dd, 1 dn, 2 nd, 3 nn, 6 pp.
//
// Before the first stage f holds the right-hand side at unknown points and u at the points of Dirichlet sides (x sides
// first, then y, then z, so an edge has the value of the later). h is hy in two dimensions, hz in three.
//
// ft_2d, ft_3d_x: at unknown points f becomes h^2 times
//         f + u(Dirichlet neighbour) / hx^2          beside a Dirichlet side of x, from f
//         f + 2 bd / hx                              on a Neumann side of x
//     and the same for y (and z) with their steps. A point that lies beside a Dirichlet side and on the Neumann one
//     across (one interval) takes 2 u / h^2. Then every line of unknown points is transformed along x, with what
//     scale suits the stages that come back. Points that are no unknowns stay as they are.
// ft_3d_y: every line of coefficients is transformed along y, in planes of unknown points.
// lu_2d, ft_3d_z: one tridiagonal system along the last direction for every coefficient,
//         d v(j) - v(j-1) - v(j+1) = g(j)            d the table's entry, or the sum of the entries of x and y
//     for unknown j, without the neighbour at a Dirichlet end, with twice the inner neighbour at a Neumann end
//     (d v(0) - 2 v(1)), cyclic for pp (one interval: (d - 2) v(0); two: d v(0) - 2 v(1)). v replaces g. In a singular
//     problem the system of the constant mode (column 0, row 0) first loses the mean of its right-hand side and then
//     its solution's: sums with half weights at Neumann ends, so that the mean of u by the scheme's weights is 0. In
//     other problems whose sides are all nn or pp that system has d = 2 + h^2 q, with the digits that a sum loses.
// inv_ft_3d_z: nothing that f needs; a place to release what ft_3d_z kept.
// inv_ft_3d_y: back along y, the same lines as ft_3d_y.
// inv_ft_2d, inv_ft_3d_x: back along x, the same lines as ft. Then the copies of periodic directions, in this order:
//     column nx is column 0, row ny row 0, plane nz plane 0, over the whole side.
template <class R>
using Stage = void(Work<R>* work);

// fpar has the problem's precision; free has none. Every stage stores its status in stat and ipar[0].
// init: ok, whatever the arguments. commit: f and boundary arrays are not read. A second commit with the same handles
// releases the transforms of the first. free: also after a failed commit; nothing is left to be freed then.
template <class R>
struct PoissonCalls {
    using init_helmholtz_2d = void(const R* ax, const R* bx, const R* ay, const R* by, const Int* nx, const Int* ny,
                                   const char* BCtype, const R* q, Int* ipar, R* fpar, Int* stat);
    using init_helmholtz_3d = void(const R* ax, const R* bx, const R* ay, const R* by, const R* az, const R* bz,
                                   const Int* nx, const Int* ny, const Int* nz, const char* BCtype, const R* q,
                                   Int* ipar, R* fpar, Int* stat);
    using helmholtz_2d = void(R* f, const R* bd_ax, const R* bd_bx, const R* bd_ay, const R* bd_by,
                              ork_dft_descriptor** xhandle, Int* ipar, R* fpar, Int* stat);
    using helmholtz_3d = void(R* f, const R* bd_ax, const R* bd_bx, const R* bd_ay, const R* bd_by, const R* bd_az,
                              const R* bd_bz, ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, Int* ipar,
                              R* fpar, Int* stat);
    using commit_helmholtz_2d = helmholtz_2d;
    using commit_helmholtz_3d = helmholtz_3d;
    using free_helmholtz_2d = void(ork_dft_descriptor** xhandle, Int* ipar, Int* stat);
    using free_helmholtz_3d = void(ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, Int* ipar, Int* stat);
    using pl_print_diagnostics_c = void(const Int* code, const Int* ipar, const R* fpar, const char* argument);
    using pl_print_diagnostics_f = pl_print_diagnostics_c;
};

// DIAGNOSTICS: what is wrong, and the catalogue messages of printer c after 10, the title, and 11 (errors) or 12
// (warnings); printer f takes numbers 193 higher. Every argument of a message is text, numbers included; (argument) is
// the text that the caller of the printer hands over. 201 (name) and 202 say that the log file can't be opened.
//     0 1 2         solve: nx, ny, nz below 1            13(nx) 14 15; 16(ny) 17 18; 19(nz) 20 21
//     10000 1 2     commit: the same                     23(nx) 24 25 26 27; 28(ny) 29 30 31 32; 33(nz) 34 35 36 37
//     3 4 5         length of x, y, z not above 0        38(length) 39; 40(length) 41; 42(length) 43
//     6 .. 11       code of ax, bx, ay, by, az, bz       44(code) 45; 46(code) 47; ... 54(code) 55
//     10067         periodic on one side of x only       59(code ax, code bx) 60
//     10089 10111   of y, of z                           61(code ay, code by) 62; 63(code az, code bz) 64
//     12            called in a wrong state              56(ipar[0]) 57 58
//     23 24         init, commit of the x transform      65(argument) 69 70; 66(argument) 69 70
//     10023 10024   of its second transform              67(argument) 69 70; 68(argument) 69 70
//     33 34         init, commit of the y transform      78(argument) 69 70; 79(argument) 69 70
//     10033 10034   of its second transform              the same
//     25            stage ft of x, or of y               71(argument) 74 75
//     26            stage lu, or ft_3d_z                 72(argument) 74 75
//     27            stages inv_ft                        73(argument) 74 75
//     28            no memory for the work record        76 77
//     29            a transform can't be freed           80(argument)
//     10200         ipar is not what commit left         81 58
//     10201         commit: more points than addresses   82 83
//     10202         commit: one handle for two transforms 84 85
//     10900         singular: mean 0 is what solve gives 190 191
//     10903         solve, singular: f drops its mean    192 193
//     10904         q below 0                            194(q) 195 196
//     others                                             22

} // namespace ork::pde

#endif

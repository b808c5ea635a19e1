# SPDX-License-Identifier: MIT
"""Poisson's and Helmholtz's equation, -Laplace(u) + q u = f, by fast solvers of second order.

Arrays are grids with both ends, the last axis x: f[j, i] or f[k, j, i]. Sides are named by a letter each in the order
ax, bx, ay, by (az, bz): D for given values of u, N for given derivatives along the outward normal, P for periodic.
"""

import ctypes

import numpy as np

from ._library import Error, address, double, int64, pointer, routine, single, text, working_type

_INTEGERS, _SINGULAR = 128, 27


def _calls_of(letter, real):
    ends = (real,) * 4
    tail = (pointer, pointer)
    return {
        "init_2d": routine(f"ork_{letter}_init_helmholtz_2d", *ends, int64, int64, text, real, *tail),
        "commit_2d": routine(f"ork_{letter}_commit_helmholtz_2d", pointer, *tail),
        "solve_2d": routine(f"ork_{letter}_helmholtz_2d", *(pointer,) * 6, *tail),
        "init_3d": routine(f"ork_{letter}_init_helmholtz_3d", *ends, real, real, int64, int64, int64, text, real, *tail),
        "commit_3d": routine(f"ork_{letter}_commit_helmholtz_3d", pointer, pointer, *tail),
        "solve_3d": routine(f"ork_{letter}_helmholtz_3d", *(pointer,) * 9, *tail),
        "init_sphere": routine(f"ork_{letter}_init_sph_p", *ends, int64, int64, real, *tail),
        "commit_sphere": routine(f"ork_{letter}_commit_sph_p", pointer, pointer, *tail),
        "solve_sphere": routine(f"ork_{letter}_sph_p", *(pointer,) * 3, *tail),
    }


_calls = {"s": _calls_of("s", single), "d": _calls_of("d", double)}
_free = {
    "2d": routine("ork_free_helmholtz_2d", pointer, pointer),
    "3d": routine("ork_free_helmholtz_3d", pointer, pointer, pointer),
    "sphere": routine("ork_free_sph_p", pointer, pointer, pointer),
}


def _solve(u, form, count, init_arguments, boundary, reals):
    calls = _calls["s" if u.dtype == np.float32 else "d"]
    ipar, rpar = np.zeros(_INTEGERS, np.int64), np.zeros(reals, u.dtype)
    handles = [ctypes.c_void_p() for _ in range(count)]
    arrays = address(ipar), address(rpar)
    where = [ctypes.addressof(handle) for handle in handles]
    status = calls["init_" + form](*init_arguments, *arrays)
    ipar[1] = ipar[2] = 0  # silent: failures are raised
    try:
        if status == 0:
            status = calls["commit_" + form](*where, *arrays)
        if status == 0:
            status = calls["solve_" + form](address(u), *boundary, *where, *arrays)
    finally:
        _free[form](*where, address(ipar))
    if status != 0:
        raise Error("the solver refused the problem: each direction needs enough intervals, a positive length and "
                    "sides that go together (P with P)", status)
    return bool(ipar[_SINGULAR])


def _boundary(values, names, shapes, sides, dtype):
    """One contiguous array a side; 0 where nothing is given."""
    values = dict(values or {})
    unknown = set(values) - set(names)
    if unknown:
        raise ValueError(f"no such side: {', '.join(sorted(unknown))}; sides are {', '.join(names)}")
    result = []
    for name, shape, side in zip(names, shapes, sides):
        if name in values and side == "P":
            raise ValueError(f"side {name} is periodic and takes no values")
        result.append(np.ascontiguousarray(np.broadcast_to(np.asarray(values.get(name, 0), dtype), shape)))
    return result


def solve(f, lengths=None, sides=None, boundary=None, q=0.0):
    """u of -Laplace(u) + q u = f on a rectangle (two axes) or a box (three).

    lengths: of the domain along x, y (z), 1 each by default. sides: letters as above, all D by default. boundary: numbers
    or arrays for sides, {"ax": ..., "by": ...}, 0 where nothing is given; arrays have the shape of the side in f.
    With no D side and q = 0 the solution with mean zero is computed, for f without the part that has no solution.

    >>> u = solve(np.ones((101, 101)))          # u = 0 around the unit square; 0.0737 in the middle
    """
    f = np.asarray(f)
    if f.ndim not in (2, 3):
        raise ValueError("f must have two axes or three")
    if min(f.shape) < 2:
        raise ValueError("f must have at least two points along each axis")
    dimensions = f.ndim
    u = np.array(f, working_type(f, real=True), order="C", copy=True)
    lengths = [1.0] * dimensions if lengths is None else [float(length) for length in lengths]
    sides = ("D" * 2 * dimensions if sides is None else sides).upper()
    if len(lengths) != dimensions or len(sides) != 2 * dimensions:
        raise ValueError("lengths needs one number an axis, sides one letter a side")
    names = ["ax", "bx", "ay", "by", "az", "bz"][:2 * dimensions]
    shapes = [f.shape[:axis] + f.shape[axis + 1:] for axis in range(dimensions - 1, -1, -1) for _ in range(2)]
    arrays = _boundary(boundary, names, shapes, sides, u.dtype)
    intervals = [n - 1 for n in f.shape[::-1]]
    ends = [end for length in lengths for end in (0.0, length)]
    form = f"{dimensions}d"
    nx, ny = intervals[:2]
    reals = 6 * nx + ny + 16 if dimensions == 2 else 6 * (nx + ny) + 20
    _solve(u, form, dimensions - 1, [*ends, *intervals, sides.encode(), float(q)],
           [None if side == "P" else address(array) for array, side in zip(arrays, sides)], reals)
    return u


def solve_sphere(f, q=1.0, colatitudes=(0.0, np.pi)):
    """u of -Laplace(u) + q u = f on the unit sphere, or the part of it between two colatitudes.

    f[j, i]: row j at colatitude at + j (bt - at) / nt, column i at longitude 2 pi i / np, the last column the first again.
    A row that is no pole holds the values of u there. With both poles and q = 0 the mean is zero.
    """
    f = np.asarray(f)
    if f.ndim != 2 or min(f.shape) < 2:
        raise ValueError("f must have two axes of at least two points")
    u = np.array(f, working_type(f, real=True), order="C", copy=True)
    nt, np_ = f.shape[0] - 1, f.shape[1] - 1
    at, bt = (float(end) for end in colatitudes)
    _solve(u, "sphere", 2, [0.0, 2 * np.pi, at, bt, np_, nt, float(q)], [], 6 * np_ + 2 * nt + 16)
    return u

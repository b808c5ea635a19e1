# SPDX-License-Identifier: MIT
"""Sine and cosine transforms of real data.

    type  forward F(k) = 2/n times the sum of f(i) times
    0     sin(pi k i / n)                     f[0 .. n], f(0) = f(n) = 0
    1     cos(pi k i / n), half i = 0 and n   f[0 .. n]
    2     cos((2k+1) pi i / 2n), half i = 0   f[0 .. n], f(n) = 0
    3     sin((2k-1) pi i / 2n), half i = n   f[0 .. n], f(0) = 0
    4     cos((2k+1)(2i+1) pi / 4n)           f[0 .. n-1]
    5     sin((2k+1)(2i+1) pi / 4n)           f[0 .. n-1]

backward undoes forward.
"""

import ctypes

import numpy as np

from ._library import Error, address, int64, pointer, routine, working_type

_STEPS = ("init", "commit", "forward", "backward")
_calls = {
    letter: {step: routine(f"ork_{letter}_{step}_trig_transform",
                           *((int64, int64, pointer, pointer) if step == "init" else (pointer,) * 4))
             for step in _STEPS}
    for letter in "sd"
}
_free = routine("ork_free_trig_transform", pointer, pointer)


def _run(f, kind, axis, step):
    if kind not in range(6):
        raise ValueError(f"type is {kind!r}; it is 0 to 5")
    f = np.asarray(f)
    lines = np.moveaxis(f.astype(working_type(f, real=True), copy=True), axis, -1)
    lines = np.ascontiguousarray(lines)
    n = lines.shape[-1] - (kind < 4)
    if n < 2:
        raise ValueError(f"type {kind} needs at least {2 + (kind < 4)} points")
    calls = _calls["s" if lines.dtype == np.float32 else "d"]
    ipar, rpar, handle = np.zeros(128, np.int64), np.zeros(5 * n // 2 + 2, lines.dtype), ctypes.c_void_p()
    arrays = ctypes.addressof(handle), address(ipar), address(rpar)
    status = calls["init"](n, kind, *arrays[1:])
    ipar[1] = ipar[2] = 0  # silent: failures are raised
    # Numbers that are zero by symmetry are taken for zero.
    work = np.zeros(n + 1, lines.dtype)
    try:
        if status == 0:
            status = calls["commit"](address(work), *arrays)
        for line in lines.reshape(-1, lines.shape[-1]):
            if status != 0:
                break
            work[:line.size] = line
            status = calls[step](address(work), *arrays)
            line[:] = work[:line.size]
    finally:
        _free(arrays[0], address(ipar))
    if status != 0:
        raise Error(f"the transform of type {kind} with {n} intervals failed", status)
    return np.moveaxis(lines, -1, axis)


def forward(f, type, axis=-1):
    """The transform of a type along an axis."""
    return _run(f, type, axis, "forward")


def backward(f, type, axis=-1):
    """What forward has transformed."""
    return _run(f, type, axis, "backward")

# SPDX-License-Identifier: MIT
"""Convolution and correlation in one to seven dimensions, by sums or by transforms, whichever is faster.

    z(k) = sum over i of x(i) y(k - i)            convolve
    z(k) = sum over i of conj(x(i)) y(i + k)      correlate; k = 0 is index x.shape - 1 of the full result
"""

import numpy as np

from ._library import Error, Handle, address, int32, integers, pointer, routine, text, working_type

_CONVOLUTION, _CORRELATION = 1, 2
_MODES = {"auto": 0, "direct": 1, "fft": 2}
_START, _DECIMATION = 5, 6

_new = routine("ork_conv_newtask", pointer, *(int32,) * 6, *(pointer,) * 3, result=int32)
_new_fixed = routine("ork_conv_newtaskx", pointer, *(int32,) * 6, *(pointer,) * 5, result=int32)
_edit = routine("ork_conv_edittask", pointer, int32, pointer, result=int32)
_exec = routine("ork_conv_exec", *(pointer,) * 7, result=int32)
_exec_fixed = routine("ork_conv_execx", *(pointer,) * 5, result=int32)
_delete = routine("ork_conv_deletetask", pointer, result=int32)
_text = routine("ork_conv_status_text", int32, result=text)


def _check(status):
    if status != 0:
        raise Error(_text(status).decode(), status)


class Task:
    """One convolution or correlation, run on any number of arrays of the same shapes.

    x may be given at once, as an array: then its transform is kept, and calls take y alone. start and decimation say which
    part of the result is wanted, with `shape` points; by default all of it.
    """

    def __init__(self, x, y_shape, dtype=None, correlate=False, method="auto", shape=None, start=None, decimation=None):
        fixed = isinstance(x, np.ndarray)
        x_shape = x.shape if fixed else tuple(x)
        self.dtype = working_type(x if fixed else np.float64) if dtype is None else np.dtype(dtype)
        self.dtype = working_type(self.dtype)
        if method not in _MODES:
            raise ValueError(f"method is {method!r}; it is one of {', '.join(_MODES)}")
        dims = len(x_shape)
        if dims == 0 or dims > 7 or len(y_shape) != dims:
            raise ValueError("x and y must have the same number of axes, one to seven")
        full = tuple(a + b - 1 for a, b in zip(x_shape, y_shape))
        if start is not None or decimation is not None:
            if shape is None:
                raise ValueError("start and decimation need a shape")
        self.shapes = tuple(x_shape), tuple(y_shape), full if shape is None else tuple(shape)
        self._task = Handle(_delete)
        self._x = np.ascontiguousarray(x, self.dtype) if fixed else None
        # The library's first axis runs fastest.
        shapes = [integers(extents[::-1], np.int32) for extents in self.shapes]
        is_complex, is_double = self.dtype.kind == "c", self.dtype in (np.float64, np.complex128)
        arguments = [self._task.where, _CORRELATION if correlate else _CONVOLUTION, 0, _MODES[method], 1 + is_complex,
                     1 + is_double, dims, *map(address, shapes)]
        _check(_new_fixed(*arguments, address(self._x), None) if fixed else _new(*arguments))
        for parameter, values in ((_START, start), (_DECIMATION, decimation)):
            if values is not None:
                if len(values) != dims:
                    raise ValueError("start and decimation need one number an axis")
                numbers = integers(values[::-1], np.int32)
                _check(_edit(self._task.value, parameter, address(numbers)))

    def _array(self, values, shape, name):
        values = np.ascontiguousarray(values, self.dtype)
        if values.shape != shape:
            raise ValueError(f"{name} must have the shape {shape}")
        return values

    def __call__(self, *operands):
        """z of x and y, or of y alone when x was given."""
        expected = 1 if self._x is not None else 2
        if len(operands) != expected:
            raise TypeError(f"this task takes {'y' if expected == 1 else 'x and y'}")
        y = self._array(operands[-1], self.shapes[1], "y")
        z = np.empty(self.shapes[2], self.dtype)
        if self._x is not None:
            _check(_exec_fixed(self._task.value, address(y), None, address(z), None))
        else:
            x = self._array(operands[0], self.shapes[0], "x")
            _check(_exec(self._task.value, address(x), None, address(y), None, address(z), None))
        return z


def _full(x, y, correlate, method):
    x, y = np.asarray(x), np.asarray(y)
    dtype = working_type(x, y)
    return Task(x.shape, y.shape, dtype, correlate, method)(x, y)


def convolve(x, y, method="auto"):
    """The full convolution of arrays of the same number of axes, x.shape + y.shape - 1 points."""
    return _full(x, y, False, method)


def correlate(x, y, method="auto"):
    """The full correlation: conj(x) slid along y. Index i along an axis is lag i - (x.shape - 1)."""
    return _full(x, y, True, method)

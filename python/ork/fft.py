# SPDX-License-Identifier: MIT
"""Discrete Fourier transforms with the signatures of numpy.fft: forward with exp(-2 pi i j k / n).

Single precision stays single. Transforms are planned once for each shape and kept for the next call.
"""

import functools

import numpy as np

from ._library import Error, Handle, address, double, int64, integers, pointer, routine, text, working_type

_create = routine("ork_dft_create_descriptor", pointer, int64, int64, int64, pointer)
_free = routine("ork_dft_free_descriptor", pointer)
_set_integer = routine("ork_dft_set_integer", pointer, int64, int64)
_set_integers = routine("ork_dft_set_integers", pointer, int64, pointer)
_set_real = routine("ork_dft_set_real", pointer, int64, double)
_commit = routine("ork_dft_commit_descriptor", pointer)
_forward = routine("ork_dft_forward_out", pointer, pointer, pointer)
_backward = routine("ork_dft_backward_out", pointer, pointer, pointer)
_message = routine("ork_dft_error_message", int64, result=text)

_NUMBER_OF_TRANSFORMS, _FORWARD_SCALE, _BACKWARD_SCALE, _PLACEMENT = 5, 6, 7, 8
_INPUT_STRIDES, _OUTPUT_STRIDES, _INPUT_DISTANCE, _OUTPUT_DISTANCE = 12, 13, 14, 15
_COMPLEX, _REAL, _SINGLE, _DOUBLE, _NOT_INPLACE = 32, 33, 35, 36, 44


def _check(status):
    if status != 0:
        raise Error(_message(status).decode(), status)


class _Transform:
    """Batches of transforms of the last axes of contiguous arrays, not in place."""

    def __init__(self, precision, domain, lengths, count, scale):
        self.handle = Handle(_free)
        order = integers(lengths[::-1])
        _check(_create(self.handle.where, precision, domain, len(lengths), address(order)))
        half = lengths[-1] // 2 + 1
        self.shapes = lengths, lengths if domain == _COMPLEX else lengths[:-1] + (half,)
        for parameter, distance, shape in zip((_INPUT_STRIDES, _OUTPUT_STRIDES), (_INPUT_DISTANCE, _OUTPUT_DISTANCE),
                                              self.shapes):
            strides = integers([0] + [int(np.prod(shape[axis:])) for axis in range(len(shape), 0, -1)])
            _check(_set_integers(self.handle.value, parameter, address(strides)))
            _check(_set_integer(self.handle.value, distance, int(np.prod(shape))))
        _check(_set_integer(self.handle.value, _NUMBER_OF_TRANSFORMS, count))
        _check(_set_integer(self.handle.value, _PLACEMENT, _NOT_INPLACE))
        _check(_set_real(self.handle.value, _FORWARD_SCALE, scale))
        _check(_set_real(self.handle.value, _BACKWARD_SCALE, scale))
        _check(_commit(self.handle.value))

    def run(self, compute, source, result):
        _check(compute(self.handle.value, address(source), address(result)))
        return result


@functools.lru_cache(maxsize=64)
def _planned(precision, domain, lengths, count, scale):
    return _Transform(precision, domain, lengths, count, scale)


def _scale(norm, lengths, backward):
    number = float(np.prod(lengths))
    exponents = {None: (0, -1), "backward": (0, -1), "ortho": (-0.5, -0.5), "forward": (-1, 0)}
    if norm not in exponents:
        raise ValueError(f'norm is {norm!r}; it is "backward", "ortho" or "forward"')
    return number ** exponents[norm][backward]


def _resized(array, axis, length):
    """Cut or filled up with zeros along one axis."""
    if array.shape[axis] == length:
        return array
    if array.shape[axis] > length:
        return array[(slice(None),) * axis + (slice(length),)]
    result = np.zeros(array.shape[:axis] + (length,) + array.shape[axis + 1:], array.dtype)
    result[(slice(None),) * axis + (slice(array.shape[axis]),)] = array
    return result


def _axes(array, s, axes):
    if axes is None:
        axes = range(array.ndim) if s is None else range(-len(s), 0)
    axes = [axis + array.ndim if axis < 0 else axis for axis in axes]
    if any(not 0 <= axis < array.ndim for axis in axes) or len(set(axes)) != len(axes):
        raise ValueError("axes must be different ones of the array")
    if s is not None and len(s) != len(axes):
        raise ValueError("s must have one length for each axis")
    return axes


def _lengths(array, s, axes):
    return [int(n) for n in s] if s is not None else [array.shape[axis] for axis in axes]


def _cut(array, axes, lengths):
    for axis, length in zip(axes, lengths):
        array = _resized(array, axis, max(length, 0))
    return array


def _last(array, axes):
    """Those axes at the end, in their order; and how to put them back."""
    count = array.ndim
    places = list(range(count - len(axes), count))
    return np.moveaxis(array, axes, places), lambda result: np.moveaxis(result, places, axes)


def _run(array, axes, lengths, domain, norm, backward):
    if any(n < 1 for n in lengths):
        raise ValueError("a transform needs at least one point along each axis")
    numbers, put_back = _last(array, axes)
    source = np.ascontiguousarray(numbers)
    outer = source.shape[:source.ndim - len(axes)]
    count = int(np.prod(outer))
    is_single = source.dtype in (np.float32, np.complex64)
    if domain == _REAL and backward:
        kind = np.float32 if is_single else np.float64
    else:
        kind = np.complex64 if is_single else np.complex128
    last = lengths[-1] // 2 + 1 if domain == _REAL and not backward else lengths[-1]
    result = np.empty(outer + tuple(lengths[:-1]) + (last,), kind)
    if count > 0:
        transform = _planned(_SINGLE if is_single else _DOUBLE, domain, tuple(lengths), count,
                             _scale(norm, lengths, backward))
        transform.run(_backward if backward else _forward, source, result)
    return put_back(result)


def _complex(x):
    x = np.asarray(x)
    return x.astype(np.complex64 if working_type(x).itemsize <= 4 or x.dtype == np.complex64 else np.complex128,
                    copy=False)


def _transform_complex(x, s, axes, norm, backward):
    x = _complex(x)
    axes = _axes(x, s, axes)
    if not axes:
        return x.copy()
    lengths = _lengths(x, s, axes)
    x = _cut(x, axes, lengths)
    return _run(x, axes, lengths, _COMPLEX, norm, backward)


def fftn(x, s=None, axes=None, norm=None):
    """The transform along several axes, by default all."""
    return _transform_complex(x, s, axes, norm, False)


def ifftn(x, s=None, axes=None, norm=None):
    """The inverse of fftn."""
    return _transform_complex(x, s, axes, norm, True)


def fft(x, n=None, axis=-1, norm=None):
    """The transform along one axis, cut or filled up with zeros to n points."""
    return fftn(x, None if n is None else (n,), (axis,), norm)


def ifft(x, n=None, axis=-1, norm=None):
    """The inverse of fft."""
    return ifftn(x, None if n is None else (n,), (axis,), norm)


def rfftn(x, s=None, axes=None, norm=None):
    """The transform of real numbers; of the last axis the points 0 to n/2."""
    x = np.asarray(x)
    x = x.astype(working_type(x, real=True), copy=False)
    axes = _axes(x, s, axes)
    if not axes:
        raise ValueError("at least one axis is to be transformed")
    lengths = _lengths(x, s, axes)
    x = _cut(x, axes, lengths)
    return _run(x, axes, lengths, _REAL, norm, False)


def irfftn(x, s=None, axes=None, norm=None):
    """The inverse of rfftn. Without s the last axis has an even number of points."""
    x = _complex(x)
    axes = _axes(x, s, axes)
    if not axes:
        raise ValueError("at least one axis is to be transformed")
    lengths = _lengths(x, s, axes)
    if s is None:
        lengths[-1] = 2 * (lengths[-1] - 1)
    if lengths[-1] < 1:
        raise ValueError("a transform needs at least one point along each axis")
    x = _cut(x, axes, lengths[:-1] + [lengths[-1] // 2 + 1])
    return _run(x, axes, lengths, _REAL, norm, True)


def rfft(x, n=None, axis=-1, norm=None):
    """The transform of real numbers, points 0 to n/2."""
    return rfftn(x, None if n is None else (n,), (axis,), norm)


def irfft(x, n=None, axis=-1, norm=None):
    """The inverse of rfft, of n real points (by default an even number)."""
    return irfftn(x, None if n is None else (n,), (axis,), norm)

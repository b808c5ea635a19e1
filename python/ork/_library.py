# SPDX-License-Identifier: MIT
"""The C library: where it is found, and what Python must know of its routines."""

import ctypes
import os
import weakref
from pathlib import Path

import numpy as np

FILE = "libork_core.so.0"

int32, int64, size_t = ctypes.c_int32, ctypes.c_int64, ctypes.c_size_t
pointer, text = ctypes.c_void_p, ctypes.c_char_p
single, double = ctypes.c_float, ctypes.c_double


class Error(RuntimeError):
    """A call of the library that failed; `status` is what it returned."""

    def __init__(self, message, status=None):
        super().__init__(message)
        self.status = status


def _candidates():
    given = os.environ.get("ORK_LIBRARY")
    if given:
        yield Path(given) / FILE if Path(given).is_dir() else Path(given)
        return
    yield Path(__file__).resolve().parents[2] / "build" / "release" / "lib" / FILE
    yield Path(FILE)  # wherever the loader looks


def _load():
    tried = []
    for path in _candidates():
        try:
            return ctypes.CDLL(str(path))
        except OSError as failure:
            tried.append(f"  {path}: {failure}")
    raise ImportError(f"{FILE} can't be loaded; set ORK_LIBRARY to the file or its folder. Tried:\n" + "\n".join(tried))


_library = _load()


def routine(name, *arguments, result=int64):
    """The routine of that name, which takes and returns these types."""
    found = getattr(_library, name)
    found.argtypes = arguments
    found.restype = result
    return found


if routine("ork_initialize", result=ctypes.c_int)() != 0:
    raise ImportError(routine("ork_error_text", result=text)().decode())

_version = routine("ork_version", result=text)
_set_threads = routine("ork_set_num_threads", ctypes.c_int, result=None)
_threads = routine("ork_get_max_threads", result=ctypes.c_int)
_kernels = routine("ork_kernel_library", result=text)


def version():
    """The version of the library."""
    return _version().decode()


def library_path():
    """The file of the kernel library in use."""
    return _kernels().decode()


def threads():
    """How many threads a call may use now."""
    return _threads()


def set_threads(count):
    """Sets how many threads a call may use; 0 goes back to the default."""
    _set_threads(int(count))


def working_type(*arrays, real=False):
    """The type in which arrays are computed: the widest of the four that they need."""
    common = np.result_type(*arrays)
    if not real and common.kind == "c":
        return np.dtype(np.complex64 if common.itemsize <= 8 else np.complex128)
    if common.kind == "c":
        raise TypeError("complex numbers are not supported here")
    return np.dtype(np.float32 if common.kind == "f" and common.itemsize <= 4 else np.float64)


def address(array):
    return None if array is None else array.ctypes.data


def integers(values, dtype=np.int64):
    """A contiguous array of integers, to be kept alive while the library reads it."""
    return np.ascontiguousarray(values, dtype=dtype)


class Handle:
    """An object of the library: `where` takes its address, `value` is it; freed with this one, or at exit.

    free is given the handle's address, or the handle itself.
    """

    def __init__(self, free, by_value=False):
        self._pointer = pointer()
        self.where = ctypes.addressof(self._pointer)
        weakref.finalize(self, Handle._release, self._pointer, free, by_value)

    @staticmethod
    def _release(held, free, by_value):
        if held.value:
            free(held.value if by_value else ctypes.addressof(held))

    @property
    def value(self):
        return self._pointer.value

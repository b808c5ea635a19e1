# SPDX-License-Identifier: MIT
"""Sparse matrices behind handles of the library, which chooses a layout for what will be done often.

    a = Matrix.from_coo(rows, columns, values, shape)
    a.optimize(calls=1000)
    y = a @ x
"""

import ctypes

import numpy as np

from ._library import Error, Handle, address, double, int64, integers, pointer, routine, single, working_type

_NO_TRANS, _TRANS, _CONJ_TRANS = 111, 112, 113
_GENERAL, _TRIANGULAR, _UPPER, _LOWER, _NON_UNIT, _UNIT = 0, 3, 121, 122, 131, 132
_ROW_MAJOR = 101
_LETTERS = {np.dtype(np.float32): "s", np.dtype(np.float64): "d", np.dtype(np.complex64): "c",
            np.dtype(np.complex128): "z"}


class _Kind(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("uplo", ctypes.c_int), ("diag", ctypes.c_int)]


class _Failure(ctypes.Structure):
    _fields_ = [("status", int64), ("argument", int64), ("value", int64), ("row", int64), ("position", int64),
                ("text", ctypes.c_char * 200)]


class _Description(ctypes.Structure):
    _fields_ = [("layout", ctypes.c_char * 24), ("slice_height", int64), ("padding", double), ("seconds", double),
                ("bytes", int64), ("text", ctypes.c_char * 400)]


_GENERAL_KIND = _Kind(_GENERAL, _UPPER, _NON_UNIT)


def _scalars(letter):
    return {"s": single, "d": double}.get(letter, pointer)


def _typed(letter):
    scalar = _scalars(letter)
    name = f"ork_sparse_{letter}_"
    return {
        "create_csr": routine(name + "create_csr_i8", pointer, ctypes.c_int, *(int64,) * 2, *(pointer,) * 4),
        "create_coo": routine(name + "create_coo_i8", pointer, ctypes.c_int, *(int64,) * 3, *(pointer,) * 3),
        "export_csr": routine(name + "export_csr_i8", *(pointer,) * 8),
        "mv": routine(name + "mv", ctypes.c_int, scalar, pointer, _Kind, pointer, scalar, pointer),
        "mm": routine(name + "mm", ctypes.c_int, scalar, pointer, _Kind, ctypes.c_int, pointer, int64, int64, scalar,
                      pointer, int64),
        "sv": routine(name + "sv", ctypes.c_int, scalar, pointer, _Kind, pointer, pointer),
        "add": routine(name + "add", ctypes.c_int, pointer, scalar, pointer, pointer),
    }


_calls = {letter: _typed(letter) for letter in "sdcz"}
_destroy = routine("ork_sparse_destroy", pointer)
_convert_csr = routine("ork_sparse_convert_csr", pointer, ctypes.c_int, pointer)
_spmm = routine("ork_sparse_spmm", ctypes.c_int, pointer, pointer, pointer)
_hints = {name: routine(f"ork_sparse_set_{name}_hint", pointer, ctypes.c_int, _Kind, int64) for name in ("mv", "sv")}
_optimize = routine("ork_sparse_optimize", pointer)
_describe = routine("ork_sparse_describe", pointer, pointer)
_last_error = routine("ork_sparse_last_error", result=ctypes.POINTER(_Failure))


def _check(status):
    if status != 0:
        raise Error(_last_error().contents.text.decode(), status)


def _operation(transpose):
    if transpose not in (False, True, "conjugate"):
        raise ValueError('transpose is False, True or "conjugate"')
    return {False: _NO_TRANS, True: _TRANS, "conjugate": _CONJ_TRANS}[transpose]


class Matrix:
    """A matrix of compressed rows. Made by from_csr, from_coo or from_scipy; the arrays are copied."""

    def __init__(self, handle, shape, dtype, arrays=()):
        self._owned, self._handle, self._arrays = handle, handle.value, arrays
        self.shape, self.dtype = tuple(shape), np.dtype(dtype)
        self._letter = _LETTERS[self.dtype]
        self._call = _calls[self._letter]

    @classmethod
    def _create(cls, name, shape, dtype, arguments, arrays):
        handle = Handle(_destroy, by_value=True)
        _check(_calls[_LETTERS[dtype]][name](handle.where, 0, *shape, *arguments))
        return cls(handle, shape, dtype, arrays)

    @classmethod
    def from_csr(cls, pointers, columns, values, shape):
        """Row i has its entries at pointers[i] .. pointers[i + 1] of columns and values, counted from 0."""
        values = np.array(values, working_type(np.asarray(values)), copy=True)
        pointers, columns = np.array(pointers, np.int64, copy=True), np.array(columns, np.int64, copy=True)
        shape = _shape(shape)
        if pointers.shape != (shape[0] + 1,) or columns.shape != values.shape or values.ndim != 1:
            raise ValueError("pointers needs one entry more than rows, columns as many as values")
        if pointers.size > 0 and (pointers[0] < 0 or pointers.max() > values.size):
            raise ValueError("pointers lead out of the values")
        ends = integers(pointers[1:])
        return cls._create("create_csr", shape, values.dtype,
                           (address(pointers), address(ends), address(columns), address(values)),
                           (pointers, ends, columns, values))

    @classmethod
    def from_coo(cls, rows, columns, values, shape):
        """Entry k at row rows[k] and column columns[k], in any order; entries of one place add up in products."""
        values = np.array(values, working_type(np.asarray(values)), copy=True)
        rows, columns = np.array(rows, np.int64, copy=True), np.array(columns, np.int64, copy=True)
        if not rows.shape == columns.shape == values.shape or values.ndim != 1:
            raise ValueError("rows, columns and values must have the same length")
        entries = cls._create("create_coo", _shape(shape), values.dtype,
                              (values.size, address(rows), address(columns), address(values)), (rows, columns, values))
        return entries._made(_convert_csr, entries._handle, _NO_TRANS)

    @classmethod
    def from_scipy(cls, matrix):
        """From a sparse matrix of SciPy."""
        rows = matrix.tocsr()
        return cls.from_csr(rows.indptr, rows.indices, rows.data, rows.shape)

    def _made(self, call, *arguments, shape=None):
        result = Handle(_destroy, by_value=True)
        _check(call(*arguments, result.where))
        return Matrix(result, shape or self.shape, self.dtype)

    def __repr__(self):
        return f"<ork.sparse.Matrix of {self.shape[0]} x {self.shape[1]} {self.dtype.name}>"

    def _scalar(self, value):
        """As the library takes it, and what must live as long as the call."""
        if self._letter in "sd":
            return value, None
        array = np.array([value], self.dtype)
        return address(array), array

    def _vector(self, x, length):
        x = np.ascontiguousarray(x, self.dtype)
        if x.shape[:1] != (length,) or x.ndim > 2:
            raise ValueError(f"the operand must have {length} rows and one axis or two")
        return x

    def multiply(self, x, transpose=False):
        """A x, or with transpose its transpose times x; x a vector or a matrix of columns."""
        operation = _operation(transpose)
        rows, columns = self.shape if transpose is False else self.shape[::-1]
        x = self._vector(x, columns)
        y = np.zeros((rows,) + x.shape[1:], self.dtype)
        (one, keep_one), (zero, keep_zero) = self._scalar(1), self._scalar(0)
        if x.ndim == 1:
            status = self._call["mv"](operation, one, self._handle, _GENERAL_KIND, address(x), zero, address(y))
        elif x.shape[1] == 0:
            status = 0
        else:
            count = x.shape[1]
            status = self._call["mm"](operation, one, self._handle, _GENERAL_KIND, _ROW_MAJOR, address(x), count, count,
                                      zero, address(y), count)
        _check(status)
        return y

    def __matmul__(self, other):
        if not isinstance(other, Matrix):
            return self.multiply(other)
        if self.shape[1] != other.shape[0]:
            raise ValueError(f"shapes {self.shape} and {other.shape} can't be multiplied")
        return self._made(_spmm, _NO_TRANS, self._handle, other._handle, shape=(self.shape[0], other.shape[1]))

    def __add__(self, other):
        one, keep = self._scalar(1)
        return self._made(self._call["add"], _NO_TRANS, self._handle, one, other._handle)

    @property
    def T(self):
        """The transpose, a matrix of its own."""
        return self._made(_convert_csr, self._handle, _TRANS, shape=self.shape[::-1])

    def _triangle(self, lower, unit):
        return _Kind(_TRIANGULAR, _LOWER if lower else _UPPER, _UNIT if unit else _NON_UNIT)

    def solve_triangular(self, b, lower=True, unit_diagonal=False, transpose=False):
        """x of T x = b, T the lower or upper triangle of the matrix."""
        x = self._vector(b, self.shape[0])
        if x.ndim != 1:
            raise ValueError("b must be a vector")
        y = np.zeros_like(x)
        one, keep = self._scalar(1)
        _check(self._call["sv"](_operation(transpose), one, self._handle, self._triangle(lower, unit_diagonal), address(x),
                                address(y)))
        return y

    def optimize(self, calls=1000, solve=None):
        """Analyses the matrix for so many products with vectors, or solves with its "lower" or "upper" triangle."""
        if solve is None:
            _check(_hints["mv"](self._handle, _NO_TRANS, _GENERAL_KIND, calls))
        elif solve in ("lower", "upper"):
            _check(_hints["sv"](self._handle, _NO_TRANS, self._triangle(solve == "lower", False), calls))
        else:
            raise ValueError('solve is "lower" or "upper"')
        _check(_optimize(self._handle))
        return self

    def describe(self):
        """What optimize chose, in words."""
        description = _Description()
        _check(_describe(self._handle, ctypes.addressof(description)))
        return description.text.decode()

    def to_csr(self):
        """Pointers, columns and values, as from_csr takes them."""
        base, rows, columns = ctypes.c_int(), int64(), int64()
        arrays = [ctypes.c_void_p() for _ in range(4)]
        _check(self._call["export_csr"](self._handle, *(ctypes.addressof(out) for out in (base, rows, columns, *arrays))))

        def numbers(out, count, dtype):
            if count == 0:
                return np.zeros(0, dtype)
            memory = (ctypes.c_char * (count * np.dtype(dtype).itemsize)).from_address(out.value)
            return np.frombuffer(memory, dtype).copy()

        starts, ends = (numbers(out, rows.value, np.int64) - base.value for out in arrays[:2])
        pointers = np.concatenate([starts[:1] if starts.size else np.zeros(1, np.int64), ends])
        stored = int(pointers.max())
        return pointers, numbers(arrays[2], stored, np.int64) - base.value, numbers(arrays[3], stored, self.dtype)

    def to_dense(self):
        """An array, entries of one place added up."""
        pointers, columns, values = self.to_csr()
        result = np.zeros(self.shape, self.dtype)
        np.add.at(result, (np.repeat(np.arange(self.shape[0]), np.diff(pointers)), columns), values)
        return result


def _shape(shape):
    rows, columns = (int(n) for n in shape)
    if rows < 0 or columns < 0:
        raise ValueError("a shape has no negative numbers")
    return rows, columns

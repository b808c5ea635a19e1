# SPDX-License-Identifier: MIT
"""The package against NumPy's own results and definitions."""

import os
import subprocess
import sys
import unittest
from pathlib import Path

import numpy as np

import ork

TYPES = (np.float32, np.float64, np.complex64, np.complex128)


def noise(shape, dtype, seed=1):
    random = np.random.default_rng(seed)
    x = random.standard_normal(shape)
    if np.dtype(dtype).kind == "c":
        x = x + 1j * random.standard_normal(shape)
    return x.astype(dtype)


def tolerance(dtype):
    return 2e-5 if np.dtype(dtype) in (np.float32, np.complex64) else 1e-12


class Fourier(unittest.TestCase):
    def near(self, result, expected, dtype):
        self.assertEqual(result.shape, expected.shape)
        scale = np.abs(expected).max() if expected.size else 1
        self.assertTrue(np.abs(result - expected).max(initial=0) <= tolerance(dtype) * max(scale, 1))

    def test_complex(self):
        for dtype in (np.complex64, np.complex128):
            x = noise((5, 12, 7), dtype)
            for axis in (0, 1, -1):
                for n in (None, 5, 16):
                    for norm in (None, "ortho", "forward"):
                        result = ork.fft.fft(x, n, axis, norm)
                        self.assertEqual(result.dtype, dtype)
                        self.near(result, np.fft.fft(x, n, axis, norm), dtype)
                        self.near(ork.fft.ifft(x, n, axis, norm), np.fft.ifft(x, n, axis, norm), dtype)
            self.near(ork.fft.fftn(x), np.fft.fftn(x), dtype)
            self.near(ork.fft.ifftn(x, (6, 4), (2, 0)), np.fft.ifftn(x, (6, 4), (2, 0)), dtype)

    def test_real(self):
        for dtype in (np.float32, np.float64):
            x = noise((6, 9, 10), dtype)
            for axis, n in ((-1, None), (1, None), (0, 11), (2, 4)):
                spectrum = np.fft.rfft(x, n, axis)
                result = ork.fft.rfft(x, n, axis)
                self.assertEqual(result.dtype.itemsize, 2 * x.dtype.itemsize)
                self.near(result, spectrum, dtype)
                self.near(ork.fft.irfft(result, n or x.shape[axis], axis), np.fft.irfft(spectrum, n or x.shape[axis], axis),
                          dtype)
            self.near(ork.fft.rfftn(x, axes=(1, 2)), np.fft.rfftn(x, axes=(1, 2)), dtype)
            self.near(ork.fft.irfftn(np.fft.rfftn(x), x.shape), x, dtype)

    def test_what_is_not_transformed(self):
        x = np.arange(6.0)
        self.near(ork.fft.fft(x[::2]), np.fft.fft(x[::2]), float)
        self.near(ork.fft.fft(np.arange(6)), np.fft.fft(np.arange(6)), float)
        self.assertEqual(ork.fft.fft(np.zeros((0, 4))).shape, (0, 4))
        for call in (lambda: ork.fft.fft(x, 0), lambda: ork.fft.fft(x, norm="none"), lambda: ork.fft.fft(x, axis=1)):
            self.assertRaises(ValueError, call)
        self.assertRaises(TypeError, ork.fft.rfft, x * 1j)


class Trigonometric(unittest.TestCase):
    def test_definitions(self):
        n = 9
        i, k = np.arange(n + 1), np.arange(n + 1)[:, None]
        half = np.where((i == 0) | (i == n), 0.5, 1)
        matrices = [
            np.sin(np.pi * k * i / n), np.cos(np.pi * k * i / n) * half,
            np.cos((2 * k + 1) * np.pi * i / (2 * n)) * np.where(i == 0, 0.5, 1) * (i < n) * (k < n),
            np.sin((2 * k - 1) * np.pi * i / (2 * n)) * np.where(i == n, 0.5, 1) * (i > 0) * (k > 0),
            np.cos((2 * k + 1) * (2 * i + 1) * np.pi / (4 * n)), np.sin((2 * k + 1) * (2 * i + 1) * np.pi / (4 * n)),
        ]
        for kind, matrix in enumerate(matrices):
            points = n + (kind < 4)
            for dtype in (np.float32, np.float64):
                f = noise((3, points), dtype)
                if kind in (0, 3):
                    f[:, 0] = 0
                if kind in (0, 2):
                    f[:, n] = 0
                result = ork.trig.forward(f, kind)
                self.assertEqual(result.dtype, dtype)
                expected = 2 / n * f @ matrix[:points, :points].T
                self.assertTrue(np.abs(result - expected).max() <= tolerance(dtype) * 4, kind)
                self.assertTrue(np.abs(ork.trig.backward(result, kind) - f).max() <= tolerance(dtype) * 4, kind)
                self.assertTrue(np.array_equal(ork.trig.forward(f.T, kind, axis=0).T, result))

    def test_what_is_refused(self):
        self.assertRaises(ValueError, ork.trig.forward, np.zeros(9), 6)
        self.assertRaises(ValueError, ork.trig.forward, np.zeros(2), 0)
        self.assertRaises(TypeError, ork.trig.forward, np.zeros(9, complex), 0)


def residual(u, f, lengths, q):
    """Of the equation at inner points."""
    inner = (slice(1, -1),) * u.ndim
    result = q * u[inner] - f[inner]
    for axis, length in zip(range(u.ndim - 1, -1, -1), lengths):
        h = length / (u.shape[axis] - 1)
        ahead, back = list(inner), list(inner)
        ahead[axis], back[axis] = slice(2, None), slice(None, -2)
        result += (2 * u[inner] - u[tuple(ahead)] - u[tuple(back)]) / h**2
    return np.abs(result).max()


class Poisson(unittest.TestCase):
    def test_given_values(self):
        f = noise((21, 31), float)
        side = noise(21, float, 2)
        u = ork.poisson.solve(f, (3, 2), boundary={"ax": side, "by": 2.5}, q=0.5)
        self.assertTrue(residual(u, f, (3, 2), 0.5) < 1e-9)
        self.assertTrue(np.array_equal(u[1:-1, 0], side[1:-1]) and np.all(u[-1] == 2.5) and np.all(u[1:-1, -1] == 0))

    def test_box_and_periods(self):
        f = noise((9, 13, 17), np.float32)
        f[:, :, -1] = f[:, :, 0]
        u = ork.poisson.solve(f, (1, 2, 3), "PPNDDD", {"ay": 0.3}, q=1)
        self.assertEqual(u.dtype, np.float32)
        self.assertTrue(np.array_equal(u[:, :, 0], u[:, :, -1]))
        self.assertTrue(residual(u.astype(float), f.astype(float), (1, 2, 3), 1) < 2e-2)

    def test_mean_is_zero_without_a_given_value(self):
        y, x = np.mgrid[0:33, 0:33] / 32
        u = ork.poisson.solve(np.cos(np.pi * x) * np.cos(np.pi * y) + 7, sides="NNNN")
        self.assertTrue(np.abs(u - np.cos(np.pi * x) * np.cos(np.pi * y) / (2 * np.pi**2)).max() < 1e-4)

    def test_sphere(self):
        theta = np.linspace(0, np.pi, 65)[:, None]
        phi = np.linspace(0, 2 * np.pi, 129)
        exact = np.sin(theta) * np.cos(phi)  # eigenvalue 2
        self.assertTrue(np.abs(ork.poisson.solve_sphere(3 * exact) - exact).max() < 1e-3)

    def test_what_is_refused(self):
        f = np.zeros((9, 9))
        self.assertRaises(ork.Error, ork.poisson.solve, f, sides="DPDD")
        self.assertRaises(ork.Error, ork.poisson.solve, f, lengths=(0, 1))
        for wrong in (dict(boundary={"az": 1}), dict(sides="PPDD", boundary={"ax": 1}), dict(sides="DD"),
                      dict(boundary={"ax": np.zeros(4)})):
            self.assertRaises(ValueError, ork.poisson.solve, f, **wrong)
        self.assertRaises(ValueError, ork.poisson.solve, np.zeros(9))


class Sparse(unittest.TestCase):
    def matrices(self, dtype, rows=40, columns=30):
        random = np.random.default_rng(3)
        dense = noise((rows, columns), dtype) * (random.random((rows, columns)) < 0.2)
        at = np.nonzero(dense)
        order = random.permutation(at[0].size)
        return dense, ork.sparse.Matrix.from_coo(at[0][order], at[1][order], dense[at][order], dense.shape)

    def test_products(self):
        for dtype in TYPES:
            dense, a = self.matrices(dtype)
            self.assertTrue(np.array_equal(a.to_dense(), dense))
            for ready in (False, True):
                if ready:
                    a.optimize(100)
                    self.assertIn("mv", a.describe())
                x, many = noise(30, dtype), noise((30, 4), dtype)
                self.assertTrue(np.abs(a @ x - dense @ x).max() < 20 * tolerance(dtype))
                self.assertTrue(np.abs(a @ many - dense @ many).max() < 20 * tolerance(dtype))
                back = noise(40, dtype)
                self.assertTrue(np.abs(a.multiply(back, "conjugate") - dense.conj().T @ back).max() < 20 * tolerance(dtype))
            self.assertTrue(np.abs((a @ a.T).to_dense() - dense @ dense.T).max() < 20 * tolerance(dtype))
            self.assertTrue(np.abs((a + a).to_dense() - 2 * dense).max() < tolerance(dtype))
            self.assertTrue(np.array_equal(a.T.to_dense(), dense.T))

    def test_triangles(self):
        dense, _ = self.matrices(np.float64, 30, 30)
        dense += 10 * np.eye(30)
        at = np.nonzero(dense)
        a = ork.sparse.Matrix.from_coo(*at, dense[at], dense.shape).optimize(10, "lower")
        b = noise(30, float)
        self.assertTrue(np.abs(np.tril(dense) @ a.solve_triangular(b) - b).max() < 1e-12)
        self.assertTrue(np.abs(np.triu(dense) @ a.solve_triangular(b, lower=False) - b).max() < 1e-12)

    def test_what_is_refused(self):
        _, a = self.matrices(np.float64)
        self.assertRaises(ValueError, a.multiply, np.zeros(29))
        self.assertRaises(ValueError, lambda: a @ a)
        with self.assertRaisesRegex(ork.Error, "columns run from"):
            ork.sparse.Matrix.from_csr([0, 1], [5], [1.0], (1, 3))
        self.assertRaises(ValueError, ork.sparse.Matrix.from_csr, [0, 9], [0], [1.0], (1, 3))


class Convolution(unittest.TestCase):
    def test_lines(self):
        for dtype in TYPES:
            x, y = noise(57, dtype), noise(12, dtype)
            for method in ("auto", "direct", "fft"):
                z = ork.conv.convolve(x, y, method)
                self.assertEqual(z.dtype, dtype)
                self.assertTrue(np.abs(z - np.convolve(x, y)).max() < 100 * tolerance(dtype))
                self.assertTrue(np.abs(ork.conv.correlate(y, x, method) - np.correlate(x, y, "full")).max() <
                                100 * tolerance(dtype))

    def test_planes_and_parts(self):
        x, y = noise((8, 9), float), noise((3, 2), float)
        full = sum(np.pad(x * y[j, i], ((j, 2 - j), (i, 1 - i))) for j in range(3) for i in range(2))
        for method in ("direct", "fft"):
            self.assertTrue(np.abs(ork.conv.convolve(x, y, method) - full).max() < 1e-12)
            part = ork.conv.Task(x.shape, y.shape, method=method, shape=(3, 2), start=(2, 1), decimation=(3, 4))
            self.assertTrue(np.abs(part(x, y) - full[2:9:3, 1:6:4]).max() < 1e-12)
            fixed = ork.conv.Task(y, x.shape, method=method)
            for _ in range(2):
                self.assertTrue(np.abs(fixed(x) - full).max() < 1e-12)

    def test_what_is_refused(self):
        self.assertRaisesRegex(ork.Error, "start", ork.conv.Task((8,), (3,), shape=(2,), start=(99,)), np.zeros(8),
                               np.zeros(3))
        self.assertRaises(ValueError, ork.conv.convolve, np.zeros((2, 2)), np.zeros(2))
        self.assertRaises(ValueError, ork.conv.convolve, np.zeros(2), np.zeros(2), "fast")
        self.assertRaises(TypeError, ork.conv.Task((8,), (3,)), np.zeros(8))


class Library(unittest.TestCase):
    def test_the_program_of_the_page(self):
        page = (Path(__file__).resolve().parents[2] / "docs" / "python.md").read_text()
        names = {}
        exec(page.split("```python\n")[1].split("```")[0], names)
        self.assertTrue(0 < names["u"][50, 49] < names["u"][50, 50])
        self.assertTrue(np.array_equal(names["y"], np.r_[1, np.zeros(998), 1]))
        self.assertEqual(names["peaks"].shape, (10049,))

    def test_threads(self):
        self.assertRegex(ork.version(), r"^\d+\.\d+\.\d+$")
        ork.set_threads(1)
        self.assertEqual(ork.threads(), 1)
        ork.set_threads(0)

    def test_a_library_that_is_not_there(self):
        ran = subprocess.run([sys.executable, "-c", "import ork"], env=dict(os.environ, ORK_LIBRARY="/nowhere.so"),
                             capture_output=True, text=True)
        self.assertEqual(ran.returncode, 1)
        self.assertIn("set ORK_LIBRARY", ran.stderr)
        self.assertIn("/nowhere.so", ran.stderr)


if __name__ == "__main__":
    unittest.main()

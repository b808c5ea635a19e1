# SPDX-License-Identifier: MIT
# Handwritten digits in NumPy, and SciPy where it is: least squares, Gaussian kernels, principal components, eigenvalues.
# Every result is checked by what defines it. Usage: numpy_scipy.py [folder of data]. README.md says what is printed.
import os
import sys
import time

import numpy as np

try:
    import scipy.linalg as scipy_linalg
except ImportError:
    scipy_linalg = None

folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data")
table = np.loadtxt(os.path.join(folder, "digits.csv"), delimiter=",")
pixels, digit = table[:, :64], table[:, 64].astype(int)
wanted = np.where(digit[:, None] == np.arange(10), 1.0, -1.0)
eps = np.finfo(float).eps
train = 1200  # images to learn from; the other 597 are the test
failed = False


def check(name, value, limit):
    global failed
    right = value <= limit  # a NaN is not
    failed |= not right
    print(f"check {name} {value:.3g} {limit:.3g}{'' if right else ' wrong'}")


def timed(name, work):
    start = time.perf_counter()
    result = work()
    print(f"time {name} {1e3 * (time.perf_counter() - start):.3f}")
    return result


def errors(scores, images):
    return np.mean(scores.argmax(axis=1) != digit[images])


def kernel(x, y):
    square = (x * x).sum(axis=1)[:, None] + (y * y).sum(axis=1) - 2 * (x @ y.T)
    return np.exp(-0.001 * square)


norm = np.linalg.norm

# 64 pixels and a constant; some pixels are empty in every image, so the rank is less than 65.
a = np.hstack((pixels, np.ones((len(pixels), 1))))
x = timed("least-squares", lambda: np.linalg.lstsq(a, wanted, rcond=None)[0])
check("least-squares-gradient", norm(a.T @ (a @ x - wanted)) / (norm(a) * norm(a @ x - wanted)), 100 * eps)
check("least-squares-errors", errors(a @ x, slice(None)), 0.08)

known, unknown = pixels[:train], pixels[train:]
k = timed("kernel-matrix", lambda: kernel(known, known))
check("kernel-last-column", abs(k[:, -1] - np.exp(-0.001 * ((known - known[-1]) ** 2).sum(axis=1))).max(), 4 * eps)
k += 0.01 * np.eye(train)


def learn():
    if scipy_linalg:
        return scipy_linalg.cho_solve(scipy_linalg.cho_factor(k, lower=True), wanted[:train])
    return np.linalg.solve(k, wanted[:train])


weight = timed("kernel-regression", learn)
check("kernel-residual", norm(k @ weight - wanted[:train]) / (norm(k) * norm(weight)), 100 * eps)
check("kernel-errors", errors(kernel(unknown, known) @ weight, slice(train, None)), 0.06)

centred = pixels - pixels.mean(axis=0)
u, s, vt = timed("principal-components", lambda: np.linalg.svd(centred, full_matrices=False))
check("components-product", norm((u * s) @ vt - centred) / norm(centred), 100 * eps)
check("components-orthogonal", norm(vt @ vt.T - np.eye(64)), 1000 * eps)
check("components-variance", abs((s * s).sum() / (centred * centred).sum() - 1), 100 * eps)

part = k[:700, :700]
value, vector = timed("eigenvectors", lambda: np.linalg.eigh(part))
check("eigenvectors-product", norm(part @ vector - vector * value) / norm(part), 100 * eps)
check("eigenvectors-orthogonal", norm(vector.T @ vector - np.eye(700)), 1e5 * eps)

if scipy_linalg:
    q, r = timed("scipy-qr", lambda: scipy_linalg.qr(k[:, :600], mode="economic"))
    check("scipy-qr-product", norm(q @ r - k[:, :600]) / norm(k), 100 * eps)
    p, lower, upper = timed("scipy-lu", lambda: scipy_linalg.lu(k))
    check("scipy-lu-product", norm(p @ (lower @ upper) - k) / norm(k), 100 * eps)

for line in sorted({line.split()[-1] for line in open("/proc/self/maps") if ".so" in line}):
    print("library", line)
sys.exit(failed)

# SPDX-License-Identifier: MIT
# Linear algebra as NumPy does it, over its types and strides. Exit status 77: this NumPy does not use libblas.so.3.
import sys

import numpy as np

a = np.ones((9, 9))
a @ a
if "libork_core" not in open("/proc/self/maps").read():
    sys.exit(77)

random = np.random.default_rng(1)
for type in (np.float32, np.float64, np.complex64, np.complex128):
    n, eps = 300, np.finfo(type).eps
    a = random.standard_normal((n, n)) + (1j * random.standard_normal((n, n)) if np.issubdtype(type, np.complexfloating) else 0)
    a = a.astype(type)
    size = np.linalg.norm(a)

    def check(got, want, scale):
        assert np.linalg.norm(got - want) < 30 * eps * scale, (type, np.linalg.norm(got - want) / (eps * scale))

    b = a[:, 7:9].copy()
    x = np.linalg.solve(a, b)
    check(a @ x, b, size * np.linalg.norm(x))
    u, s, v = np.linalg.svd(a)
    check((u * s) @ v, a, size)
    w, q = np.linalg.eigh(a + a.conj().T)
    check((q * w) @ q.conj().T, a + a.conj().T, size)
    wide = a.astype(np.clongdouble)  # no BLAS
    for left, right in ((slice(None), slice(None)), (slice(None, None, 2), slice(None, None, -3))):
        check(a[left] @ a[:, right], wide[left] @ wide[:, right], size * size)
        check(a[:, left].T @ a.conj()[:, right], wide[:, left].T @ wide.conj()[:, right], size * size)
    check(a.T @ a, wide.T @ wide, size * size)
    check(a[5] @ a, wide[5] @ wide, size * size)
    check(a @ a[:, 5], wide @ wide[:, 5], size * size)
    check(np.vdot(a, a), np.vdot(wide, wide), size * size)

# SPDX-License-Identifier: MIT
# Solutions, inverses and factors as NumPy asks LAPACK for them. Exit status 77: the overlay is not in front.
import sys

import numpy as np

if "liblapack_ork" not in open("/proc/self/maps").read():
    sys.exit(77)

random = np.random.default_rng(1)
for type in (np.float64, np.complex128):
    for n in (1, 2, 5, 20, 33, 200):
        eps = np.finfo(type).eps
        a = random.standard_normal((n, n)) + (1j * random.standard_normal((n, n)) if type is np.complex128 else 0)
        condition = np.linalg.cond(a)

        def check(got, want, scale):
            assert np.linalg.norm(got - want) < 30 * n * eps * scale, (type, n)

        b = random.standard_normal((n, 3))
        x = np.linalg.solve(a, b)
        check(a @ x, b, np.linalg.norm(a) * np.linalg.norm(x))
        check(np.linalg.inv(a) @ a, np.eye(n), condition)
        q, r = np.linalg.qr(a)
        check(q @ r, a, np.linalg.norm(a))
        check(q.conj().T @ q, np.eye(n), 1)
        q, _ = np.linalg.qr(a[:, : n // 2 + 1], mode="complete")
        check(q.conj().T @ q, np.eye(n), 1)
        p = a @ a.conj().T + np.eye(n)
        l = np.linalg.cholesky(p)
        check(l @ l.conj().T, p, np.linalg.norm(p))
        sign, logarithm = np.linalg.slogdet(p)
        assert abs(logarithm - 2 * np.log(np.abs(np.diag(l))).sum()) < 1e-9 * n
for wrong in (lambda: np.linalg.solve(np.zeros((40, 40)), np.ones(40)), lambda: np.linalg.cholesky(-np.eye(40))):
    try:
        wrong()
    except np.linalg.LinAlgError:
        continue
    sys.exit(1)

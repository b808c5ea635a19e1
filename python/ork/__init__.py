# SPDX-License-Identifier: MIT
"""Fourier and trigonometric transforms, sparse matrices, Poisson and Helmholtz solvers, convolution on NumPy arrays.

    ork.fft      fft, ifft, rfft, irfft and their forms of several dimensions
    ork.trig     sine and cosine transforms
    ork.poisson  -Laplace(u) + q u = f on rectangles, boxes and spheres
    ork.sparse   sparse matrices behind analysed handles
    ork.conv     convolution and correlation in one to seven dimensions

Arrays are float32, float64, complex64 or complex128; anything else is computed as float64 or complex128. Failures raise
ork.Error with the library's own text.
"""

from . import conv, fft, poisson, sparse, trig
from ._library import Error, library_path, set_threads, threads, version

__all__ = ["Error", "conv", "fft", "library_path", "poisson", "set_threads", "sparse", "threads", "trig", "version"]

#!/usr/bin/python3
"""Reference values for tests/util/fft_test.cpp, computed with NumPy.

Prints one named array per line: the name, the number of values, then the
values as Python reprs (which read back exactly). Inputs are fixed-seed noise, printed too so the
test transforms exactly the same numbers.

The library's forward transform (direction 1) is exp(-2 pi i ik/n) scaled by
1/n, which is numpy.fft.fft(x) / n; its inverse (any other direction) is
exp(+2 pi i ik/n) unscaled, which is numpy.fft.ifft(x) * n. The same holds in
two dimensions with fft2 and ifft2 and n = nx * ny.
"""
import numpy as np

rng = np.random.default_rng(20240917)


def emit(name, values):
    values = np.ravel(values)
    print(name, len(values), *(repr(float(v)) for v in values))


def emit_complex(name, z):
    emit(name + ".re", np.real(z))
    emit(name + ".im", np.imag(z))


def noise(shape):
    return rng.uniform(-2.385, 2.385, shape) + 1j * rng.uniform(-2.385, 2.385, shape)


# 12 is not a power of two: only the direct transform takes it.
for n in (8, 12, 16, 64):
    x = noise(n)
    emit_complex("sig%d" % n, x)
    emit_complex("fwd%d" % n, np.fft.fft(x) / n)
    emit_complex("inv%d" % n, np.fft.ifft(x) * n)

# Grids c[i][j] with nx rows of ny values, written row after row.
for nx, ny in ((4, 8), (8, 4)):
    c = noise((nx, ny))
    emit_complex("grid%dx%d" % (nx, ny), c)
    emit_complex("fwd%dx%d" % (nx, ny), np.fft.fft2(c) / (nx * ny))
    emit_complex("inv%dx%d" % (nx, ny), np.fft.ifft2(c) * (nx * ny))
    # Columns only: what a grid with a refused row length is left with.
    emit_complex("cols%dx%d" % (nx, ny), np.fft.fft(c, axis=0) / nx)

# Correlation. numpy.correlate(a, v, "full")[lag + n - 1] is
# sum a[i + lag] v[i], so a = y - my, v = x - mx gives the linear
# correlation at delay lag; delays run from -(n // 2) to n // 2 - 1.
# np.roll(a, -lag)[i] is a[(i + lag) mod n], the circular shift.
lags = [-9, -1, 0, 1, 3, 6, 7, 8, 23]
emit("lags", lags)
for n in (8, 7):
    x = rng.uniform(-2.385, 2.385, n)
    y = rng.uniform(-2.385, 2.385, n)
    emit("cx%d" % n, x)
    emit("cy%d" % n, y)
    dx, dy = x - x.mean(), y - y.mean()
    full = np.correlate(dy, dx, "full") / np.sqrt(np.sum(dx * dx) * np.sum(dy * dy))
    emit("corr%d" % n, full[n - 1 - n // 2 : n - 1 + n // 2])
    emit("auto%d" % n, [np.sum(dx * np.roll(dx, -lag)) for lag in lags])
    emit("cross%d" % n, [np.sum(dx * np.roll(dy, -lag)) for lag in lags])

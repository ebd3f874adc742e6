#!/usr/bin/python3
"""NumPy references for tests/util/fft_test.cpp: lines of name, count, then real and imaginary parts
as exact Python reprs. The library's direction 1 is numpy.fft.fft(x) / n, any other ifft(x) * n."""
import numpy as np

rng = np.random.default_rng(20240917)


def emit(name, v):
    v = np.ravel(v).astype(complex)
    print(name, len(v), *(repr(float(e)) for e in np.concatenate([v.real, v.imag])))


def noise(shape):
    return rng.uniform(-2.385, 2.385, shape) + 1j * rng.uniform(-2.385, 2.385, shape)


for n in (8, 12, 16, 64):  # 12: the direct transform only
    x = noise(n)
    emit("sig%d" % n, x)
    emit("dft1_%d" % n, np.fft.fft(x) / n)
    emit("dft-1_%d" % n, np.fft.ifft(x) * n)
    emit("dft2_%d" % n, np.fft.fft(x)[2 * np.arange(n) % n])  # direction 2 doubles the angle, unscaled

for nx, ny in ((4, 8), (8, 4)):  # grids c[i][j] of nx rows of ny values
    c = noise((nx, ny))
    emit("grid%dx%d" % (nx, ny), c)
    emit("fft2d_%dx%d_1" % (nx, ny), np.fft.fft2(c) / (nx * ny))
    emit("fft2d_%dx%d_-1" % (nx, ny), np.fft.ifft2(c) * (nx * ny))
    # Refused sizes on the 4x8 grid: nx leaves it alone, ny only after the columns j < ny are done.
    for rx, ry in ((2, 4), (1, 4), (0, 4), (6, 4), (4, 2), (4, 3), (4, 0), (4, 6)) if nx == 4 else ():
        cols = np.fft.fft(c, axis=0) / 4
        emit("fft2d_%dx%d_1" % (rx, ry), np.where((rx == 4) & (np.arange(8) < ry), cols, c))

# correlate(dy, dx, "full")[d + n - 1] = sum dx[i] dy[i + d], delays -(n // 2) .. n // 2 - 1;
# np.roll(a, -lag)[i] = a[(i + lag) mod n].
lags = [-9, -1, 0, 1, 3, 6, 7, 8, 23]
emit("lags", lags)
for n in (8, 7):
    x, y = rng.uniform(-2.385, 2.385, n), rng.uniform(-2.385, 2.385, n)
    dx, dy = x - x.mean(), y - y.mean()
    full = np.correlate(dy, dx, "full") / np.sqrt(np.sum(dx * dx) * np.sum(dy * dy))
    emit("xy%d" % n, x + 1j * y)  # the two signals as real and imaginary parts
    emit("corr%d" % n, full[n - 1 - n // 2 : n - 1 + n // 2])
    # AutoCorr as real parts, CrossCorr as imaginary parts.
    emit("autocross%d" % n, [np.sum(dx * np.roll(dx, -d)) + 1j * np.sum(dx * np.roll(dy, -d)) for d in lags])

emit("noise", noise(4096))  # inputs for identities

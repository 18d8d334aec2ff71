#!/usr/bin/env python3
"""Measures fluctuation fields the engine writes, apart from the engine.

    fluctuation_spectrum_check.py FLUCTUATION_FIELD_WRITER

For each case the writer makes a field and evolves it a step; every file is
read here with numpy alone and must show, with the expected values taken from
the case's parameters:
- ln f of width log_normal_width and mean -width^2 / 2 (to 1e-5);
- f of mean 1 within sampling error (where that is tight enough to tell);
- no power at k = 0 or above 1 / length_scale (k in cycles per cell), only
  single precision rounding;
- a radially averaged log power spectrum of g whose least squares slope over
  the band, in log-log, is -power_law within four standard errors, for each
  field and, more tightly, averaged over fresh fields (steps with a = 0);
- after a step with factor a, a correlation a with the state before, within
  five standard errors (where that is tight enough to tell).

Sampling errors come from the requested spectrum: a mode's power is its
spectral density times an exponential deviate (log variance pi^2 / 6), modes
k and -k are one deviate, and the sample statistics of the field rest on
(sum S)^2 / sum S^2 / 2 independent values. Modes that are their own mirror
(every index 0 or n/2) are real, with another distribution, and are left out
of the fit.
"""
import math
import os
import struct
import subprocess
import sys
import tempfile

import numpy

# n_x, n_y, n_z, power_law, log_normal_width, length_scale, seed, a
CASES = [
    (32, 32, 32, 2.0, 0.8, 2.0, 3, 0.5),
    (40, 38, 37, 11.0 / 3.0, 1.2, 4.0, 5, 0.8),
    (33, 32, 31, 1.0, 0.3, 3.0, 7, 0.3),
]
# Fresh fields (a = 0) whose slopes are averaged.
FRESH_FIELDS = 6
# The averaged slope must be known to this (one standard error) for the check
# to mean something; a correlation check to this (its tolerance).
LARGEST_SLOPE_ERROR = 0.05
LARGEST_CORRELATION_TOLERANCE = 0.2


def read_lattice(path):
    with open(path, "rb") as source:
        raw = source.read()
    assert raw[:8] == b"TCLATTIC", path
    n_x, n_y, n_z = struct.unpack("<3i", raw[8:20])
    assert len(raw) == 20 + 4 * n_x * n_y * n_z, path
    flat = numpy.frombuffer(raw, dtype="<f4", offset=20).astype(numpy.float64)
    return flat.reshape((n_x, n_y, n_z), order="F")


def wavenumbers(shape):
    axes = numpy.meshgrid(*[numpy.fft.fftfreq(n) for n in shape], indexing="ij")
    magnitude = numpy.sqrt(sum(a * a for a in axes))
    # A mode is its own mirror when each index is 0 or n/2.
    own_mirror = numpy.ones(shape, dtype=bool)
    for a, n in zip(numpy.meshgrid(*[numpy.arange(n) for n in shape], indexing="ij"), shape):
        own_mirror &= (a == 0) | (2 * a == n)
    return magnitude, own_mirror


class Check:
    def __init__(self):
        self.failures = []
        self.means_checked = 0

    def expect(self, condition, text):
        print(("ok      " if condition else "FAILED  ") + text)
        if not condition:
            self.failures.append(text)


def measure(check, name, f, power, width, length):
    """Checks one file; returns ln f, the number of independent values, and
    the measured slope with its standard error."""
    log_f = numpy.log(f)
    check.expect(abs(log_f.std() - width) < 1e-5,
                 "%s: width of ln f %.8f, asked %.8f" % (name, log_f.std(), width))
    check.expect(abs(log_f.mean() + 0.5 * width * width) < 1e-5,
                 "%s: mean of ln f %.8f, expected %.8f" % (name, log_f.mean(), -0.5 * width**2))

    magnitude, own_mirror = wavenumbers(f.shape)
    band = (magnitude > 0) & (magnitude <= 1.0 / length + 1e-12)
    spectral = numpy.where(band, numpy.where(band, magnitude, 1.0) ** -power, 0.0)
    independent = 0.5 * spectral.sum() ** 2 / (spectral**2).sum()

    # Checked where it tells the shift by -width^2 / 2 from none.
    mean_tolerance = 5.0 * math.sqrt((math.exp(width * width) - 1.0) / independent)
    if mean_tolerance < 0.5 * (math.exp(0.5 * width * width) - 1.0):
        check.means_checked += 1
        check.expect(abs(f.mean() - 1.0) < mean_tolerance,
                     "%s: mean of f %.6f, 1 within %.4f" % (name, f.mean(), mean_tolerance))

    g = (log_f - log_f.mean()) / log_f.std()
    power_of_mode = numpy.abs(numpy.fft.fftn(g)) ** 2
    inside_mean = power_of_mode[band].mean()
    outside_max = power_of_mode[~band].max() if (~band).any() else 0.0
    check.expect(outside_max < 1e-9 * inside_mean,
                 "%s: largest power outside the band %.3g of the band's mean"
                 % (name, outside_max / inside_mean))

    # Radial average of log power in shells a quarter cycle per grid wide
    # (radius in index units); slope by least squares weighted by the number
    # of independent modes in each shell.
    fitted = band & ~own_mirror
    x_mode = numpy.log(magnitude[fitted])
    y_mode = numpy.log(power_of_mode[fitted])
    shell = numpy.floor(magnitude[fitted] * min(f.shape) * 4.0).astype(int)
    xs, ys, counts = [], [], []
    for s in numpy.unique(shell):
        inside = shell == s
        xs.append(x_mode[inside].mean())
        ys.append(y_mode[inside].mean())
        counts.append(0.5 * inside.sum())
    xs, ys, counts = numpy.array(xs), numpy.array(ys), numpy.array(counts)
    x_bar = (counts * xs).sum() / counts.sum()
    y_bar = (counts * ys).sum() / counts.sum()
    spread = (counts * (xs - x_bar) ** 2).sum()
    slope = (counts * (xs - x_bar) * (ys - y_bar)).sum() / spread
    error = math.sqrt(math.pi**2 / 6.0 / spread)
    check.expect(abs(slope + power) < 4.0 * error,
                 "%s: spectral slope %.4f, expected %.4f within %.4f (%d shells)"
                 % (name, slope, -power, 4.0 * error, len(xs)))
    return log_f, independent, slope, error


def main():
    writer = sys.argv[1]
    check = Check()
    correlations_checked = 0
    with tempfile.TemporaryDirectory() as folder:
        for n_x, n_y, n_z, power, width, length, seed, a in CASES:
            name = "%dx%dx%d power %.3f length %.1f" % (n_x, n_y, n_z, power, length)
            prefix = os.path.join(folder, "field_%d_%d_%d" % (n_x, n_y, n_z))
            subprocess.run([writer, str(n_x), str(n_y), str(n_z), repr(power), repr(width),
                            repr(length), str(seed), repr(a), "1", prefix], check=True)
            first = read_lattice(prefix + "_0.dat")
            second = read_lattice(prefix + "_1.dat")
            check.expect(first.shape == (n_x, n_y, n_z), name + ": sizes on file")
            before, independent, _, _ = measure(check, name, first, power, width, length)
            after, _, _, _ = measure(check, name + " after a step", second, power, width, length)
            r = numpy.corrcoef(before.ravel(), after.ravel())[0, 1]
            tolerance = 5.0 / math.sqrt(independent)
            if tolerance < LARGEST_CORRELATION_TOLERANCE:
                correlations_checked += 1
                check.expect(abs(r - a) < tolerance,
                             "%s: correlation over a step %.4f, expected %.2f within %.4f"
                             % (name, r, a, tolerance))

            fresh = prefix + "_fresh"
            subprocess.run([writer, str(n_x), str(n_y), str(n_z), repr(power), repr(width),
                            repr(length), str(seed + 1000), "0", str(FRESH_FIELDS - 1), fresh],
                           check=True)
            slopes, errors = [], []
            for step in range(FRESH_FIELDS):
                _, _, slope, error = measure(check, "%s fresh %d" % (name, step),
                                             read_lattice("%s_%d.dat" % (fresh, step)),
                                             power, width, length)
                slopes.append(slope)
                errors.append(error)
            mean_slope = sum(slopes) / len(slopes)
            mean_error = math.sqrt(sum(e * e for e in errors)) / len(errors)
            check.expect(mean_error < LARGEST_SLOPE_ERROR,
                         "%s: averaged slope known to %.4f" % (name, mean_error))
            check.expect(abs(mean_slope + power) < 4.0 * mean_error,
                         "%s: spectral slope over %d fresh fields %.4f, expected %.4f within %.4f"
                         % (name, len(slopes), mean_slope, -power, 4.0 * mean_error))
    check.expect(check.means_checked >= 2,
                 "%d fields tight enough for the mean check" % check.means_checked)
    check.expect(correlations_checked >= 2,
                 "%d cases tight enough for the correlation check" % correlations_checked)
    if check.failures:
        print("%d checks failed" % len(check.failures))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3
"""Expected spectrum files, evolved spectra and heights of the wave spectra
and the swell, worked out apart from the engine, formula by formula.

Run: python3 spectrum_reference.py [output folder]. Writes into
tests/data/ocean/ unless a folder is given. Needs numpy.

Per case <name>:
  <name>.spectrum   the spectrum file as the engine writes it with the
                    byte-swap setting on a little-endian host: big-endian
                    int32 n_kx, int32 n_ky, then n_kx * 2 * n_ky float32.
  <name>.evolved    the half-complex spectrum after the evolution to the
                    case's time, one float32 a line in repr.
  <name>.heights    the lattice after the inverse transform, node (i, j) on
                    line i + n_x * j, in repr of the double result.
The wind sea also has wind_sea.acceleration (the evolved acceleration
spectrum, not transformed) and wind_sea.potential (the transformed potential).

Arithmetic follows the engine's: each element is a float32 that is read,
worked on in double and rounded back to float32 after the phase turn and
again after the scaling. The random numbers come from the generator of
tests/volumes/random_reference.py (family 902).

The inverse transform. The engine's 2D real transform with sign -1 computes,
with no scaling, h[i, j] = sum over the full kx, ky grid of
F[p, q] exp(+2 pi i (p i / n_x + q j / n_y)), the half-complex buffer holding
columns p = 0 .. n_x / 2 of row q at float 2 * (p + n_kx * q). numpy's irfft2
over axes (rows, columns) = (q, p) with s = (n_y, n_x) is the same sum divided
by n_x * n_y, so heights = irfft2(F) * n_x * n_y, read back row-major:
element j * n_x + i, that is i + n_x * j.
"""
import math
import os
import struct
import sys

import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "volumes"))
import random_reference  # noqa: E402

PI = 3.1415926535
TWO_PI = 6.283185307
DEG = 0.017453292519444445
NOTHING = 99999999.0
F32 = np.float32


def f32(x):
    return float(F32(x))


# ---------------------------------------------------------------------------
# Layout and the Hermitian step


class Layout:
    def __init__(self, n_x, n_y, dx, dy):
        self.n_x, self.n_y, self.dx, self.dy = n_x, n_y, dx, dy
        self.n_kx = n_x // 2 + 1
        self.n_ky = n_y
        self.dk_x = 1.0 / (n_x * dx)
        self.dk_y = 1.0 / (n_y * dy)
        self.dk_area = self.dk_x * self.dk_y

    def at(self, i, j):
        return 2 * (i + self.n_kx * j)


def hermitian(lay, data):
    """Imaginary corners zero; rows n_y - j of the first and last columns are
    the conjugates of rows j."""
    half = lay.n_y // 2
    last = lay.n_kx - 1
    for i, j in ((0, 0), (0, half), (last, 0), (last, half)):
        data[lay.at(i, j) + 1] = f32(0.0)
    for j in range(1, half):
        for i in (0, last):
            src, dst = lay.at(i, j), lay.at(i, lay.n_y - j)
            data[dst] = data[src]
            data[dst + 1] = -data[src + 1]


def wind_noise(lay, seed):
    """Gaussian deviates times sqrt(dk_area / 2), every float in index order."""
    g = random_reference.Shuffled(seed)
    a = math.pow(lay.dk_area * 0.5, 0.5)
    data = np.zeros(2 * lay.n_kx * lay.n_ky, dtype=F32)
    for e in range(data.size):
        data[e] = F32(g.gaussian() * a)
    hermitian(lay, data)
    return data


def swell_noise(lay, seed):
    """sqrt(dk_area) times a unit phasor of uniform phase, element by element."""
    g = random_reference.Shuffled(seed)
    a = math.pow(lay.dk_area, 0.5)
    data = np.zeros(2 * lay.n_kx * lay.n_ky, dtype=F32)
    for e in range(lay.n_kx * lay.n_ky):
        u = g.uniform()
        data[2 * e] = F32(a * math.cos(TWO_PI * u))
        data[2 * e + 1] = F32(a * math.sin(TWO_PI * u))
    hermitian(lay, data)
    return data


def spectrum_bytes(lay, data):
    return struct.pack(">ii", lay.n_kx, lay.n_ky) + data.astype(">f4").tobytes()


# ---------------------------------------------------------------------------
# Spectra


class Wind:
    """The wind sea's constants and spectral density."""

    def __init__(self, lay, kind, speed, direction, glassy=0.0, band=(NOTHING, NOTHING)):
        self.kind, self.speed, self.direction = kind, speed, direction
        self.band_low, self.band_high = band
        k_max_x = 1.0 / (lay.dx * 2.0) - lay.dk_x
        k_max_y = 1.0 / (lay.dy * 2.0) - lay.dk_y
        self.k_lattice = min(k_max_x, k_max_y)
        self.k_cut = self.k_lattice
        if kind == 104 and glassy > 0.0 and 1.0 / glassy < self.k_lattice:
            self.k_cut = 1.0 / glassy
        u = speed
        self.k_wind = 6.5727 / (u * u * 2.0 * PI) if u > 0.0 else NOTHING
        level = math.log(100.0 / self.k_wind) * 0.0032246527744746794
        if not level > 0.0:
            level = 0.0
        self.amplitude = (u * 0.00508 + 0.003) / level if level > 0.0 else 0.0

    @staticmethod
    def theta(kx, ky):
        if kx == 0.0:
            return 1.57079632675 if ky >= 0.0 else 4.71238898025
        t = math.atan(ky / kx)
        return t + PI if kx < 0.0 else t

    def value(self, kx, ky):
        k2 = kx * kx + ky * ky
        c = math.cos(self.theta(kx, ky) - self.direction)
        if self.kind in (103, 104):
            if k2 > self.k_cut * self.k_cut or k2 == 0.0:
                return 0.0
            v = 2.6e-05 * c * c / (k2 * k2) * math.exp(-self.k_wind * self.k_wind / k2)
        else:
            if k2 > self.k_cut * self.k_cut or k2 < self.k_wind * self.k_wind:
                return 0.0
            v = 2.6e-05 * c * c / (k2 * k2)
        if self.band_low ** 2 < k2 < self.band_high ** 2:
            v *= 0.5
        return v

    def density(self, kx, ky):
        return self.value(kx, ky) * self.amplitude


class Swell:
    def __init__(self, lay, rms, wavelength, long_spread, trans_spread, direction):
        self.direction = direction
        k = 1.0 / wavelength
        c, s = math.cos(direction), math.sin(direction)
        self.kx0 = math.floor(c * k / lay.dk_x) * lay.dk_x
        self.ky0 = math.floor(s * k / lay.dk_y) * lay.dk_y
        kl, kt = long_spread * k, trans_spread * k
        self.a = kt * kt * s * s + kl * kl * c * c
        self.b = kt * kt * c * c + kl * kl * s * s
        self.c = (kl * kl - kt * kt) * s * c
        self.det = self.a * self.b - self.c * self.c
        if not self.det > 0.0:
            self.det = kl * 1e-05 * kl * kt * kt
        self.peak = rms * rms / (TWO_PI * math.sqrt(self.det))
        self.k_cut = min(1.0 / (2.0 * lay.dx) - lay.dk_x, 1.0 / (2.0 * lay.dy) - lay.dk_y)

    def q(self, u, v):
        return (v * v * self.a + u * u * self.b - 2.0 * u * v * self.c) / (2.0 * self.det)

    def density(self, kx, ky):
        if kx * kx + ky * ky > self.k_cut * self.k_cut:
            return 0.0
        return 0.5 * (self.peak * math.exp(-self.q(kx - self.kx0, ky - self.ky0)) +
                      self.peak * math.exp(-self.q(-kx - self.kx0, -ky - self.ky0)))


# ---------------------------------------------------------------------------
# Evolution


def row_ky(lay, row):
    """Signed ky of a row in cycles per metre; row n_y / 2 counts as positive."""
    return row * lay.dk_y if row <= lay.n_y // 2 else -(lay.n_y - row) * lay.dk_y


def turn_phases(lay, data, t, direction, potential):
    cos_d, sin_d = math.cos(direction), math.sin(direction)
    out = data.copy()
    for j in range(lay.n_ky):
        ky = lay.dk_y * TWO_PI * abs(j if j <= lay.n_y // 2 else lay.n_y - j)
        if j > lay.n_y // 2:
            ky = -ky
        for i in range(lay.n_kx):
            kx = lay.dk_x * TWO_PI * i
            w = 3.132 * math.pow(kx * kx + ky * ky, 0.25)
            s = 1.0 if kx * cos_d + ky * sin_d >= 0.0 else -1.0
            e = lay.at(i, j)
            a, b = float(data[e]), float(data[e + 1])
            if potential:
                if not w > 0.0:
                    out[e], out[e + 1] = 0.0, 0.0
                    continue
                sw, cw = math.sin(w * t) / w, math.cos(w * t) / w
                out[e] = F32(a * sw - s * b * cw)
                out[e + 1] = F32(b * sw + s * a * cw)
            else:
                c, sn = math.cos(w * t), math.sin(w * t)
                out[e] = F32(a * c + s * b * sn)
                out[e + 1] = F32(b * c - s * a * sn)
    return out


def sinc(u):
    return 1.0 if u == 0.0 else math.sin(u) / u


def factor(form, density, kx, ky, smear):
    if form == "height":
        return math.pow(density, 0.5)
    if form == "potential":
        return math.pow(density, 0.5) * -9.81
    k2 = kx * kx + ky * ky
    sx, sy, st = smear
    f = -6.2831853 * math.sqrt(k2 * density * 9.81 * 9.81) * sinc(PI * kx * sx) * sinc(PI * ky * sy)
    if st > 0.0:
        f *= sinc(PI * math.sqrt(k2 * TWO_PI * 9.81) * st)
    return f


def scale(lay, data, density, form, smear=(0.0, 0.0, 0.0)):
    out = data.copy()
    for j in range(lay.n_ky):
        ky = row_ky(lay, j)
        for i in range(lay.n_kx):
            kx = i * lay.dk_x
            m = factor(form, density(kx, ky), kx, ky, smear)
            e = lay.at(i, j)
            out[e] = F32(float(data[e]) * m)
            out[e + 1] = F32(float(data[e + 1]) * m)
    return out


def evolve(lay, noise, spectrum, t, form, smear=(0.0, 0.0, 0.0)):
    turned = turn_phases(lay, noise, t, spectrum.direction, form == "potential")
    scaled = scale(lay, turned, spectrum.density, form, smear)
    hermitian(lay, scaled)
    return scaled


def transform(lay, data):
    pairs = data.astype(np.float64).reshape(lay.n_ky, lay.n_kx, 2)
    full = pairs[..., 0] + 1j * pairs[..., 1]
    return (np.fft.irfft2(full, s=(lay.n_y, lay.n_x)) * (lay.n_x * lay.n_y)).ravel()


# ---------------------------------------------------------------------------
# Cases; the C++ tests hold the same table.

WIND_CASES = [
    # name, type, seed, n_x, n_y, dx, dy, speed, direction (deg), glassy, band, t
    ("wind_sea", 103, 12345, 16, 8, 3.0, 4.0, 5.0, 30.0, 0.0, (NOTHING, NOTHING), 7.5),
    ("glassy_sea", 104, 99, 16, 8, 1.0, 1.0, 3.0, 75.0, 4.0, (NOTHING, NOTHING), 3.0),
    ("calm_sea", 103, 3, 16, 8, 2.0, 2.0, 0.0, 0.0, 0.0, (NOTHING, NOTHING), 5.0),
    ("hard_cut_sea", 101, -5, 16, 8, 1.5, 1.5, 2.5, 300.0, 0.0, (0.18, 0.22), 2.0),
]
# The wind sea's acceleration smearing: metres, metres, seconds.
WIND_SEA_SMEAR = (2.0, 3.0, 0.5)
SWELL_CASES = [
    # name, seed, n_x, n_y, dx, dy, rms, wavelength, long, trans, direction (deg), t
    ("swell", 7, 16, 8, 10.0, 10.0, 0.8, 60.0, 0.3, 0.5, 200.0, 12.0),
]


def write_values(path, values, as_float32):
    with open(path, "w") as out:
        for v in values:
            out.write(repr(float(F32(v)) if as_float32 else float(v)) + "\n")


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "..", "data", "ocean")
    os.makedirs(folder, exist_ok=True)

    def put(name, suffix):
        return os.path.join(folder, name + "." + suffix)

    for name, kind, seed, n_x, n_y, dx, dy, speed, deg, glassy, band, t in WIND_CASES:
        lay = Layout(n_x, n_y, dx, dy)
        noise = wind_noise(lay, seed)
        with open(put(name, "spectrum"), "wb") as out:
            out.write(spectrum_bytes(lay, noise))
        wind = Wind(lay, kind, speed, deg * DEG, glassy, band)
        evolved = evolve(lay, noise, wind, t, "height")
        write_values(put(name, "evolved"), evolved, True)
        write_values(put(name, "heights"), transform(lay, evolved), False)
        if name == "wind_sea":
            acc = evolve(lay, noise, wind, t, "acceleration", WIND_SEA_SMEAR)
            write_values(put(name, "acceleration"), acc, True)
            pot = evolve(lay, noise, wind, t, "potential")
            write_values(put(name, "potential"), transform(lay, pot), False)

    for name, seed, n_x, n_y, dx, dy, rms, wavelength, long_s, trans_s, deg, t in SWELL_CASES:
        lay = Layout(n_x, n_y, dx, dy)
        noise = swell_noise(lay, seed)
        with open(put(name, "spectrum"), "wb") as out:
            out.write(spectrum_bytes(lay, noise))
        swell = Swell(lay, rms, wavelength, long_s, trans_s, deg * DEG)
        evolved = evolve(lay, noise, swell, t, "height")
        write_values(put(name, "evolved"), evolved, True)
        write_values(put(name, "heights"), transform(lay, evolved), False)


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""Reference phase table of 181 angles and its lookup by linear interpolation.

Writes tests/data/volumes/phase_lookup_reference.txt (path relative to this
script).

Table
-----
181 values P[i], i = 0..180, one per degree from 0 to 180, of the
Henyey-Greenstein function with g = 0.6, per steradian and normalised to
unit integral over the sphere (the normalisation under which the isotropic
value is 1 / (4 pi)):
    P(theta) = (1 - g^2) / (4 pi (1 + g^2 - 2 g cos theta)^1.5),
evaluated at theta = i * 0.017453292519444445 (degrees to radians as the
system converts them) with the library pi in the 1 / (4 pi) factor. The
table's values are written, so only they matter to a test.

Lookup (scattering angle a in radians)
--------------------------------------
i = floor(|a| / 3.1415926535 * 180.0); for i < 180,
f = |a| * 57.29577951471995 - i and value = (1 - f) P[i] + f P[i + 1];
for i = 180 the value is P[180]; beyond, 0.

Angles
------
50 angles drawn uniformly from [0, 3.1415926535] by numpy's default_rng
with seed 20261125 (records "lookup"), and a few edge angles (records
"edge"): 0, an exact degree, a negative angle, the literal pi, the library
pi, half a degree past 180, and angles past 181 degrees, which give 0.

Checks (the script stops if one fails)
--------------------------------------
1. The lookup is recomputed by numpy.interp over the degree grid with
   x = |a| * 180 / 3.1415926535 (0 past 181 degrees, P[180] between 180 and
   181); relative agreement within 1e-13.
2. The function integrates to 1 over the sphere (2 pi times the integral of
   P sin theta, Simpson on 200001 points): within 1e-9.
3. The interpolated value stays within 2 % of the function at the same angle
   (the column exact, for information only: a test compares with value).
"""

import math
import os

import numpy as np

G = 0.6
PI_LITERAL = 3.1415926535
DEG_TO_RAD = 0.017453292519444445
RAD_TO_DEG = 57.29577951471995
SEED = 20261125


def hg(theta):
    return (1.0 - G * G) / (4.0 * math.pi * (1.0 + G * G - 2.0 * G * np.cos(theta)) ** 1.5)


def lookup(table, a):
    x = abs(a)
    i = int(math.floor(x / PI_LITERAL * 180.0))
    if i < 180:
        f = x * RAD_TO_DEG - i
        return (1.0 - f) * table[i] + f * table[i + 1]
    if i == 180:
        return table[180]
    return 0.0


def lookup_check(table, a):
    x = abs(a) * 180.0 / PI_LITERAL
    if x >= 181.0:
        return 0.0
    if x >= 180.0:
        return table[180]
    return float(np.interp(x, np.arange(181.0), table))


def main():
    table = np.array([hg(i * DEG_TO_RAD) for i in range(181)])

    th = np.linspace(0.0, math.pi, 200001)
    f = hg(th) * np.sin(th)
    h = th[1] - th[0]
    integral = 2.0 * math.pi * h / 3.0 * (f[0] + f[-1] + 4.0 * f[1:-1:2].sum() + 2.0 * f[2:-1:2].sum())
    assert abs(integral - 1.0) < 1e-9, integral

    rng = np.random.default_rng(SEED)
    angles = rng.uniform(0.0, PI_LITERAL, 50)
    edges = [
        0.0,
        90.0 * DEG_TO_RAD,
        -1.0,
        PI_LITERAL,
        math.pi,
        180.5 * DEG_TO_RAD,
        181.5 * DEG_TO_RAD,
        3.2,
    ]

    out_dir = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", "volumes")
    os.makedirs(out_dir, exist_ok=True)
    path = os.path.normpath(os.path.join(out_dir, "phase_lookup_reference.txt"))
    out = []
    w = out.append
    w("# Phase table of 181 angles (one per degree, 0 to 180) and lookups by linear interpolation.")
    w("# Written by tests/volumes/phase_lookup_reference.py (its docstring gives derivation and checks).")
    w("# Table: Henyey-Greenstein g = 0.6 per steradian, unit integral over the sphere.")
    w("# Lookup at angle a (radians): i = floor(|a| / 3.1415926535 * 180.0); i < 180:")
    w("# f = |a| * 57.29577951471995 - i, value = (1 - f) P[i] + f P[i+1]; i = 180: P[180]; beyond: 0.")
    w("# Line formats (first word is the tag):")
    w("#   table degree value          (181 lines, degree 0..180)")
    w("#   lookup n angle_rad value exact   (50 random angles; exact = the function itself, information)")
    w("#   edge n angle_rad value          (edge cases: 0, a whole degree, negative, pi, past 180 and 181)")
    for i in range(181):
        w("table %d %.17g" % (i, table[i]))
    worst = 0.0
    for n, a in enumerate(angles):
        v = lookup(table, a)
        c = lookup_check(table, a)
        worst = max(worst, abs(v - c) / abs(c))
        assert abs(v - c) <= 1e-13 * abs(c), (a, v, c)
        exact = float(hg(a))
        assert abs(v - exact) < 0.02 * exact, (a, v, exact)
        w("lookup %d %.17g %.17g %.17g" % (n, a, v, exact))
    for n, a in enumerate(edges):
        v = lookup(table, a)
        c = lookup_check(table, a)
        assert abs(v - c) <= 1e-13 * abs(c), (a, v, c)
        w("edge %d %.17g %.17g" % (n, a, v))
    assert lookup(table, PI_LITERAL) == table[180] and lookup(table, math.pi) == table[180]
    assert lookup(table, 3.2) == 0.0 and lookup(table, -1.0) == lookup(table, 1.0)
    with open(path, "w") as fh:
        fh.write("\n".join(out) + "\n")
    print("wrote", path)
    print("sphere integral of the function: %.12f" % integral)
    print("largest relative difference lookup vs numpy.interp: %.3e" % worst)


if __name__ == "__main__":
    main()

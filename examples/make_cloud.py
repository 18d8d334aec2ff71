#!/usr/bin/python3
"""Writes the clouds of the example scenes and their phase functions.

    make_cloud.py FOLDER [NAME ...]

Writes the named files (when none is named: those that FOLDER's files name)
into FOLDER:

    cumulus.lwc          a fair-weather cumulus, 96 x 96 x 64 lattice points
                         15 m apart (1.4 km across, 945 m tall): a flat base,
                         a heap of rounded turrets, and ragged edges; liquid
                         water content in g/m^3, at most about 0.6. A binary
                         lattice file (tools/write_density.py).
    cloud_phase.dat      a phase file for three bands: Henyey-Greenstein,
                         g = 0.8, the forward peak of cloud droplets, per
                         steradian (unit integral over the sphere), at 0 to
                         180 degrees.

Every number comes from closed formulas and a fixed seed, so every run
writes the same bytes.
"""
import math
import os
import sys

import numpy

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tools"))
from write_density import write_density  # noqa: E402

from make_textures import named_in  # noqa: E402

SIZE = (96, 96, 64)
SPACING = 15.0


def cumulus():
    nx, ny, nz = SIZE
    x = (numpy.arange(nx) - (nx - 1) / 2.0) * SPACING
    y = (numpy.arange(ny) - (ny - 1) / 2.0) * SPACING
    z = numpy.arange(nz) * SPACING
    X, Y, Z = numpy.meshgrid(x, y, z, indexing="ij")
    rng = numpy.random.RandomState(17)
    # Turrets: spheres heaped on a broad base, the higher ones nearer the
    # middle, so the top rises in rounded towers.
    shape = numpy.full(X.shape, -1e9)
    turrets = [(0.0, 0.0, 260.0, 420.0)]
    for _ in range(26):
        r = rng.uniform(130.0, 260.0)
        angle = rng.uniform(0.0, 2.0 * math.pi)
        reach = rng.uniform(0.0, 380.0)
        cx, cy = reach * math.cos(angle), reach * math.sin(angle)
        cz = 180.0 + rng.uniform(0.0, 1.0) * (560.0 - 0.9 * reach)
        turrets.append((cx, cy, cz, r))
    for cx, cy, cz, r in turrets:
        inside = 1.0 - numpy.sqrt((X - cx) ** 2 + (Y - cy) ** 2 + (Z - cz) ** 2) / r
        shape = numpy.maximum(shape, inside)
    # Ragged edges: a few octaves of waves with fixed random phases.
    noise = numpy.zeros(X.shape)
    for octave in range(4):
        k = 2.0 * math.pi / (320.0 / 2 ** octave)
        for _ in range(3):
            d = rng.normal(size=3)
            d /= numpy.linalg.norm(d)
            phase = rng.uniform(0.0, 2.0 * math.pi)
            noise += 0.5 ** octave * numpy.sin(k * (d[0] * X + d[1] * Y + d[2] * Z) + phase)
    shape = shape + 0.12 * noise
    # The flat base at 60 m (the condensation level), sharp over one point.
    base = numpy.clip((Z - 45.0) / 15.0, 0.0, 1.0)
    # Water content grows with height above the base, as in a rising parcel.
    content = 0.25 + 0.35 * numpy.clip(Z / 700.0, 0.0, 1.0)
    lwc = content * numpy.clip(shape / 0.15, 0.0, 1.0) * base
    lwc[lwc < 0.01] = 0.0
    return lwc


def phase_file(path, g=0.8, bands=(1, 2, 3)):
    with open(path, "w") as out:
        for band in bands:
            out.write("%d\n" % band)
            for degree in range(181):
                mu = math.cos(math.radians(degree))
                value = (1.0 - g * g) / (4.0 * math.pi * (1.0 + g * g - 2.0 * g * mu) ** 1.5)
                out.write("%d %.9g\n" % (degree, value))


def main(argv):
    if len(argv) < 2:
        sys.stderr.write(__doc__)
        return 2
    folder = argv[1]
    wanted = argv[2:] or [n for n in ("cumulus.lwc", "cloud_phase.dat") if named_in(folder, n)]
    for name in wanted:
        path = os.path.join(folder, name)
        if name == "cumulus.lwc":
            write_density(path, cumulus())
        elif name == "cloud_phase.dat":
            phase_file(path)
        else:
            sys.stderr.write("make_cloud.py: no file called %s\n" % name)
            return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

#!/usr/bin/python3
"""Writes the single-scattering fixture of the sky and sunlight tests.

Run from this folder:
  /usr/bin/python3 single_scattering_fixture.py > ../data/atmosphere/single_scattering.txt

Every value comes from single_scattering_reference.py (a brute-force
quadrature of the two-layer single-scattering sky, written apart from the
engine and copied here unchanged; its docstring lists its conventions) for the air files in ../data/atmosphere/single_scattering/: clean,
dirty and hazy air over a round base of radius 6371000 m, with three bands.

Lines (whitespace separated; '#' starts a comment):
  sky air sun_elevation sun_azimuth ox oy oz dx dy dz distance L1 L2 L3 T1 T2 T3
  short (as sky: paths of 10 m to 1 km)
  sun air sun_elevation sun_azimuth px py pz E1 E2 E3
Angles in degrees; the sun's direction is (cos el cos az, cos el sin az,
sin el). A distance of 'inf' is a path to the ground or out of the air. L is
the path radiance, T the transmission of the path and E the sun's irradiance
at the point, band by band.
"""
import math
import os

import numpy as np

import single_scattering_reference as ref

HERE = os.path.dirname(os.path.abspath(__file__))
AIRS = os.path.join(HERE, "..", "data", "atmosphere", "single_scattering")
BANDS = [(1, 0.45, 0.1), (2, 0.55, 0.1), (3, 0.65, 0.1)]
SUN = [1.8, 1.8, 1.5]
D2R = math.pi / 180.0


def direction(elevation, azimuth):
    e, a = elevation * D2R, azimuth * D2R
    return [math.cos(e) * math.cos(a), math.cos(e) * math.sin(a), math.sin(e)]


def numbers(values):
    return " ".join(repr(float(v)) for v in values)


def main():
    print("# written by single_scattering_fixture.py; do not edit")
    for kind in ("clean", "dirty", "haze"):
        air = ref.parse_air_file(os.path.join(AIRS, kind + ".air"))
        for sun_elevation in (45.0, 3.0):
            sun = ref.make_sun(sun_elevation, 0.0, BANDS, SUN)
            for height in (10.0, 1000.0):
                origin = [0.0, 0.0, height]
                # Level and grazing views (from 1000 m the horizon is 1.0
                # degree down, from 10 m 0.1 degree), one above, towards,
                # across and away from the sun.
                for elevation in (10.0, 1.0, 0.0, -0.3):
                    for azimuth in (0.0, 90.0, 180.0):
                        d = direction(elevation, azimuth)
                        distances = [None]
                        if elevation == 0.0 and azimuth == 90.0:
                            distances += [2000.0, 20000.0]
                        for distance in distances:
                            L, T, change = ref.path_radiance(air, BANDS, sun, origin, d, distance,
                                                             tol=1e-5, with_info=True)
                            print("sky %s %r 0.0 %s %s %s %s %s" %
                                  (kind, sun_elevation, numbers(origin), numbers(d),
                                   "inf" if distance is None else repr(distance), numbers(L),
                                   numbers(T)))
        # Short paths, where the optical depth's table loses digits.
        sun = ref.make_sun(45.0, 0.0, BANDS, SUN)
        for elevation in (0.5, 2.0, 5.0):
            for distance in (10.0, 100.0, 1000.0):
                origin = [0.0, 0.0, 10.0]
                d = direction(elevation, 90.0)
                L, T, change = ref.path_radiance(air, BANDS, sun, origin, d, distance, tol=1e-5,
                                                 with_info=True)
                print("short %s 45.0 0.0 %s %s %r %s %s" %
                      (kind, numbers(origin), numbers(d), distance, numbers(L), numbers(T)))
        # Sunlight on the face of a wall 10 m up: 0 once the sun has set.
        for sun_elevation in (10.0, 3.0, 45.0, -5.0, -60.0):
            sun = ref.make_sun(sun_elevation, 0.0, BANDS, SUN)
            for point in ([1.0, 0.2, 10.0], [0.0, 0.0, 1000.0]):
                E = ref.sun_irradiance(air, BANDS, sun, point)
                print("sun %s %r 0.0 %s %s" % (kind, sun_elevation, numbers(point), numbers(E)))


if __name__ == "__main__":
    main()

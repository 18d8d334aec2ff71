#!/usr/bin/python3
"""Reference Fresnel reflectance at the nodes of the sea's cosine axis.

The sea keeps, per band, a table of reflectance over a cosine axis from -1 to
1 in steps of 0.01 (201 nodes).  A node's cosine c says both the angle and the
direction in which light crosses the surface:

  * c <= 0: light arrives from the air (index 1) onto water of index n;
  * c  > 0: light leaves the water (index n) into the air (index 1), so the
    relative index is 1/n and total internal reflection can occur.

The angle of incidence is acos(|c|).  This script works straight from the
electromagnetic amplitude coefficients of a plane interface, with cosines
rather than angles, so it shares nothing with the angle-difference form the
engine evaluates:

  cos_i = |c|,  sin_t = (n1 / n2) sin_i,  cos_t = sqrt(1 - sin_t^2)
  r_s = (n1 cos_i - n2 cos_t) / (n1 cos_i + n2 cos_t)
  r_p = (n2 cos_i - n1 cos_t) / (n2 cos_i + n1 cos_t)
  R   = (r_s^2 + r_p^2) / 2         (unpolarised light)

and R = 1 whenever sin_t >= 1 (total internal reflection).

Output: tests/data/ocean/fresnel_nodes.txt, lines "# ..." are comments, data
lines are "n i c R" for n = 1.34 and n = 1.5 (201 nodes each), c and R
written with %.17g.
"""

import math
import os
import sys

import numpy as np

AXIS_NODES = 201
AXIS_FIRST = -1.0
AXIS_LAST = 1.0
INDICES = (1.34, 1.5)


def axis_step():
    return (AXIS_LAST - AXIS_FIRST) / (AXIS_NODES - 1)


def node_cosine(i):
    return AXIS_FIRST + i * axis_step()


def unpolarised_reflectance(c, n):
    """Reflectance for the axis cosine c at a water surface of index n."""
    if c <= 0.0:
        n1, n2 = 1.0, n  # from the air into the water
    else:
        n1, n2 = n, 1.0  # from the water out into the air
    cos_i = abs(c)
    sin_i = math.sqrt(max(0.0, 1.0 - cos_i * cos_i))
    sin_t = (n1 / n2) * sin_i
    if sin_t >= 1.0:
        return 1.0
    cos_t = math.sqrt(1.0 - sin_t * sin_t)
    r_s = (n1 * cos_i - n2 * cos_t) / (n1 * cos_i + n2 * cos_t)
    r_p = (n2 * cos_i - n1 * cos_t) / (n2 * cos_i + n1 * cos_t)
    return 0.5 * (r_s * r_s + r_p * r_p)


def reflectance_nodes(n):
    return np.array([unpolarised_reflectance(node_cosine(i), n)
                     for i in range(AXIS_NODES)])


def self_check():
    # Normal incidence from either side: ((n - 1) / (n + 1))^2.
    for n in INDICES:
        expect = ((n - 1.0) / (n + 1.0)) ** 2
        assert abs(unpolarised_reflectance(-1.0, n) - expect) < 1e-15
        assert abs(unpolarised_reflectance(1.0, n) - expect) < 1e-15
    assert abs(unpolarised_reflectance(-1.0, 1.34) - (0.34 / 2.34) ** 2) < 1e-15
    # Grazing incidence from the air reflects everything.
    assert unpolarised_reflectance(0.0, 1.34) == 1.0
    # Inside the water, beyond the critical angle, reflection is total; just
    # inside it, it is not.
    for n in INDICES:
        critical_cos = math.sqrt(1.0 - 1.0 / (n * n))
        assert unpolarised_reflectance(critical_cos - 1e-6, n) == 1.0
        assert unpolarised_reflectance(critical_cos + 1e-3, n) < 1.0
    # Stokes relations: the transmittance through the surface is the same in
    # both directions for matching angles, so R(air side at theta_i) equals
    # R(water side at the refracted angle theta_t).
    for n in INDICES:
        for cos_i in np.linspace(0.05, 1.0, 20):
            sin_t = math.sqrt(1.0 - cos_i * cos_i) / n
            cos_t = math.sqrt(1.0 - sin_t * sin_t)
            a = unpolarised_reflectance(-cos_i, n)
            b = unpolarised_reflectance(cos_t, n)
            assert abs(a - b) < 1e-13, (n, cos_i, a, b)
    # Independent form for the s and p reflectances, by the angles.
    for n in INDICES:
        for cos_i in np.linspace(0.1, 0.99, 30):
            ti = math.acos(cos_i)
            tt = math.asin(math.sin(ti) / n)
            rs = (math.sin(ti - tt) / math.sin(ti + tt)) ** 2
            rp = (math.tan(ti - tt) / math.tan(ti + tt)) ** 2
            assert abs(0.5 * (rs + rp) - unpolarised_reflectance(-cos_i, n)) < 1e-13
    # Reflectance from the air grows steadily with the angle of incidence.
    for n in INDICES:
        r = reflectance_nodes(n)[: AXIS_NODES // 2 + 1]
        assert np.all(np.diff(r) >= 0.0)


def main():
    self_check()
    here = os.path.dirname(os.path.abspath(__file__))
    out_path = os.path.join(here, "..", "data", "ocean", "fresnel_nodes.txt")
    out_path = os.path.normpath(out_path)
    lines = [
        "# Unpolarised Fresnel reflectance at the cosine axis nodes of the sea's",
        "# reflectance table, from the s and p amplitude coefficients of a plane",
        "# interface. c = -1 + i * 0.01 for i = 0..200; incidence angle acos(|c|).",
        "# c <= 0: light from the air onto water of index n; c > 0: light leaving",
        "# the water (relative index 1/n); total internal reflection gives 1.",
        "# Written by tests/ocean/fresnel_reference.py.",
        "# columns: n i c R",
    ]
    for n in INDICES:
        r = reflectance_nodes(n)
        for i in range(AXIS_NODES):
            lines.append("%g %d %.17g %.17g" % (n, i, node_cosine(i), r[i]))
    with open(out_path, "w") as f:
        f.write("\n".join(lines) + "\n")
    print("wrote %s (%d data lines)" % (out_path, len(INDICES) * AXIS_NODES))
    return 0


if __name__ == "__main__":
    sys.exit(main())

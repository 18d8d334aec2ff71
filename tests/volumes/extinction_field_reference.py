#!/usr/bin/python3
"""Exact optical depth towards the sun from every point of a uniform box lattice.

Writes tests/data/volumes/extinction_field_reference.txt (path relative to
this script).

Scene
-----
A lattice of 9 x 7 x 5 points at spacings 2 x 3 x 1.5 m with density 0.8 at
every point; the box is centred on the origin of its frame with sizes
(n - 1) * spacing (16 x 18 x 6 m), so point (i, j, k) sits at
(-8 + 2 i, -9 + 3 j, -3 + 1.5 k). One extinction coefficient, 0.25 per unit
density per metre, turns the density column into an optical depth.

Sun
---
s is the unit vector towards the sun in the box frame, from the file angles
theta (zenith, 0 = overhead) and phi (azimuth):
s = (sin theta cos phi, sin theta sin phi, cos theta). Cases: overhead (one
axis: light straight down), theta 30 and theta 60 in the x-z plane (two
axes; at theta 30 the x axis gets only a small weight, at theta 60, 30
degrees above the horizontal, both weigh), theta 50 at
azimuth 215 (three axes, negative x and y), and theta 120 at azimuth 30 (a
sun below the box's horizontal in its frame, negative z).

Derivation
----------
For a point p the path inside the box towards the sun is
u(p) = min over axes with s_i != 0 of (sign(s_i) h_i - p_i) / s_i, h_i the
half size: the distance to the face the ray leaves through. The density
column is rho * u and the optical depth x * rho * u. A point on the face
nearest the sun has u = 0.

Checks (the script stops if one fails)
--------------------------------------
1. u is found a second way, by bisection (100 halvings) on the largest
   distance along s at which the point is still inside the closed box;
   agreement within 1e-9 m.
2. Hand formulas: sun overhead, u = 3 - z; theta 30 in the x-z plane,
   u = min((8 - x) / sin 30, (3 - z) / cos 30), and the same at theta 60;
   agreement within 1e-12.

The records "weights" give, for information, the axis fractions
a_i = |s_i / L_i| normalised to sum 1, and the axis weights that rule gives
(an axis alone above 0.7; otherwise each fraction less 0.30000000000000004,
clamped at 0 and renormalised). A field built by walking lattice planes
is exact at the points whose sun ray leaves through the face the walk starts
from, and only approximates the others (column face); tolerances belong
to the test that compares.
"""

import math
import os

import numpy as np

N = (9, 7, 5)
SPACING = (2.0, 3.0, 1.5)
RHO = 0.8
EXTINCTION = 0.25
HALF = np.array([(n - 1) * L / 2.0 for n, L in zip(N, SPACING)])

SUNS = [
    (0, 0.0, 0.0),
    (1, 30.0, 0.0),
    (2, 60.0, 0.0),
    (3, 50.0, 215.0),
    (4, 120.0, 30.0),
]

FACE_NAMES = ("x", "y", "z")


def sun_vector(theta_deg, phi_deg):
    th = math.radians(theta_deg)
    ph = math.radians(phi_deg)
    v = np.array([math.sin(th) * math.cos(ph), math.sin(th) * math.sin(ph), math.cos(th)])
    v[np.abs(v) < 1e-15] = 0.0
    return v


def path_to_edge(p, s):
    """Closed form: (distance, name of the exit face(s))."""
    dists = {}
    for i in range(3):
        if s[i] == 0.0:
            continue
        face = math.copysign(HALF[i], s[i])
        dists[("+" if s[i] > 0 else "-") + FACE_NAMES[i]] = (face - p[i]) / s[i]
    u = min(dists.values())
    faces = "".join(name for name, d in sorted(dists.items(), key=lambda kv: kv[0][1]) if d - u < 1e-12)
    return max(u, 0.0) + 0.0, faces  # + 0.0 turns -0.0 into 0.0


def inside(q):
    return bool(np.all(np.abs(q) <= HALF * (1.0 + 1e-15)))


def path_by_bisection(p, s):
    lo, hi = 0.0, float(np.linalg.norm(2.0 * HALF)) + 1.0
    assert inside(p) and not inside(p + hi * s)
    for _ in range(100):
        mid = 0.5 * (lo + hi)
        if inside(p + mid * s):
            lo = mid
        else:
            hi = mid
    return lo


def axis_weights(s):
    a = np.array([abs(s[i] / SPACING[i]) for i in range(3)])
    a /= a.sum()
    if a.max() > 0.7:
        w = np.zeros(3)
        w[int(np.argmax(a))] = 1.0
    else:
        w = np.maximum(a - 0.30000000000000004, 0.0)
        w /= w.sum()
    return a, w


def main():
    out_dir = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", "volumes")
    os.makedirs(out_dir, exist_ok=True)
    path = os.path.normpath(os.path.join(out_dir, "extinction_field_reference.txt"))
    out = []
    w = out.append
    w("# Exact optical depth from each lattice point to the box's edge towards the sun (uniform box).")
    w("# Written by tests/volumes/extinction_field_reference.py (its docstring gives derivation and checks).")
    w("# Box centred on the origin, size (n - 1) * spacing per axis; point (i, j, k) at")
    w("# (-X/2 + i dx, -Y/2 + j dy, -Z/2 + k dz); i runs along x, j along y, k along z.")
    w("# s points towards the sun: s = (sin theta cos phi, sin theta sin phi, cos theta).")
    w("# Line formats (first word is the tag):")
    w("#   box nx ny nz dx dy dz rho extinction half_x half_y half_z")
    w("#   sun id theta_deg phi_deg sx sy sz")
    w("#   weights sun_id a_x a_y a_z w_x w_y w_z   (axis fractions |s_i/L_i| normalised, and the")
    w("#       weights after the 0.7 / 0.30000000000000004 rule; for information)")
    w("#   point sun_id i j k x y z path column tau face")
    w("#       path = length in metres of the sun ray inside the box; column = rho * path;")
    w("#       tau = extinction * rho * path; face = face(s) the sun ray leaves through (+x, -z, ...;")
    w("#       two or three names when the exit is on an edge or a corner).")
    w("box %d %d %d %.17g %.17g %.17g %.17g %.17g %.17g %.17g %.17g"
      % (N + SPACING + (RHO, EXTINCTION) + tuple(HALF)))
    worst = 0.0
    for sid, th, ph in SUNS:
        s = sun_vector(th, ph)
        w("sun %d %.17g %.17g %.17g %.17g %.17g" % (sid, th, ph, s[0], s[1], s[2]))
        a, wt = axis_weights(s)
        w("weights %d %.17g %.17g %.17g %.17g %.17g %.17g" % ((sid,) + tuple(a) + tuple(wt)))
        for k in range(N[2]):
            for j in range(N[1]):
                for i in range(N[0]):
                    p = -HALF + np.array([i * SPACING[0], j * SPACING[1], k * SPACING[2]])
                    u, faces = path_to_edge(p, s)
                    ub = path_by_bisection(p, s)
                    worst = max(worst, abs(u - ub))
                    assert abs(u - ub) < 1e-9, (sid, i, j, k, u, ub)
                    if sid == 0:
                        assert abs(u - (HALF[2] - p[2])) < 1e-12
                    if sid in (1, 2):
                        want = min((HALF[0] - p[0]) / math.sin(math.radians(th)),
                                   (HALF[2] - p[2]) / math.cos(math.radians(th)))
                        assert abs(u - want) < 1e-12
                    w("point %d %d %d %d %.17g %.17g %.17g %.17g %.17g %.17g %s"
                      % (sid, i, j, k, p[0], p[1], p[2], u, RHO * u, EXTINCTION * RHO * u, faces))
    with open(path, "w") as f:
        f.write("\n".join(out) + "\n")
    print("wrote", path)
    print("largest difference closed form vs bisection: %.3e m" % worst)


if __name__ == "__main__":
    main()

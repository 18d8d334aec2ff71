import math
import os
import sys

import numpy

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker  # noqa: E402

# Worked out by hand from the scene: a camera at the origin looking along +x,
# 8 x 8 pixels over 60 degrees each way, so the image plane at unit distance
# runs over +-tan(30 deg) in steps of p = 2 tan(30 deg) / 8, the same on both
# axes. A ray through the plane point (e, a) meets a plane x = X at the
# distance X * sqrt(1 + e^2 + a^2), at x = X.
#   near box: 2 m thick at x 10, its face at x = 9 for |y|, |z| <= 2, so
#             over |e|, |a| <= 2/9 on the plane.
#   far box:  at x 20, its face at x = 19 for |y|, |z| <= 10: |e|, |a| <= 10/19.
#   distant:  at x 19001, its face at x = 19000, wider than the picture.
# Nothing in these scenes is farther than 19 km; "nothing" is written as 1e8.
half = math.tan(60 * 0.008726646259722222)
p = 2 * half / 8
edges = [-half + k * p for k in range(9)]
centres = [-half + (k + 0.5) * p for k in range(8)]
NOTHING = 1e8


def stretch(i, j):
    return math.sqrt(1 + centres[i] ** 2 + centres[j] ** 2)


def inside(k, limit):
    """Pixel index k wholly within |t| <= limit on its axis."""
    return abs(edges[k]) <= limit and abs(edges[k + 1]) <= limit


def share(k, limit):
    """Part of pixel index k's span that lies within |t| <= limit."""
    lo, hi = edges[k], edges[k + 1]
    return max(0.0, min(hi, limit) - max(lo, -limit)) / p


c = Checker()


def close(name, got, want, rel=1e-5, abs_tol=0.0):
    c.expect(abs(got - want) <= max(rel * abs(want), abs_tol),
             f"{name}: {got!r}, want {want!r}")


NEAR = 2 / 9
FAR = 10 / 19
for prefix in ("nearfirstc1cam", "farfirstc1cam"):
    dist = c.planes(prefix + "_scene_distance0001.img", 1, 8, 8)
    xyz = c.planes(prefix + "_scene_xyz0001.img", 3, 8, 8)
    filled = c.planes(prefix + "_fraction_filled0001.img", 1, 8, 8)
    near_d = c.planes(prefix + "_near_distance0001.img", 1, 8, 8)
    far_d = c.planes(prefix + "_far_distance0001.img", 1, 8, 8)
    if not (dist and xyz and filled and near_d and far_d):
        continue
    for i in range(8):
        for j in range(8):
            where = f"{prefix} pixel ({i}, {j})"
            n = stretch(i, j)
            d = float(dist[0][i, j])
            if inside(i, NEAR) and inside(j, NEAR):
                # Only the near box shows.
                close(where + " scene distance", d, 9 * n)
                close(where + " x", float(xyz[0][i, j]), 9.0, abs_tol=1e-4)
                close(where + " near box distance", float(near_d[0][i, j]), 9 * n)
                close(where + " filled", float(filled[0][i, j]), 1.0)
            elif share(i, NEAR) > 0 and share(j, NEAR) > 0:
                # The near box covers part and stands in front of the far one:
                # its own piece's distance, between its corners' distances.
                lo = 9 * math.sqrt(1 + min(abs(edges[i]), abs(edges[i + 1])) ** 2
                                   + min(abs(edges[j]), abs(edges[j + 1])) ** 2)
                c.expect(lo - 1e-4 <= d <= 9 * math.sqrt(1 + NEAR ** 2 + NEAR ** 2),
                         f"{where} scene distance {d} is not the near box's")
                close(where + " filled", float(filled[0][i, j]), 1.0)
            elif inside(i, FAR) and inside(j, FAR):
                # Only the far box shows.
                close(where + " scene distance", d, 19 * n)
                close(where + " x", float(xyz[0][i, j]), 19.0, abs_tol=1e-4)
                close(where + " far box distance", float(far_d[0][i, j]), 19 * n)
                close(where + " near box distance", float(near_d[0][i, j]), NOTHING)
                close(where + " filled", float(filled[0][i, j]), 1.0)
            else:
                # Part of the far box's edge, nothing else.
                lo = 19 * math.sqrt(1 + min(abs(edges[i]), abs(edges[i + 1])) ** 2
                                    + min(abs(edges[j]), abs(edges[j + 1])) ** 2)
                c.expect(lo - 1e-4 <= d <= 19 * math.sqrt(1 + 2 * FAR ** 2),
                         f"{where} scene distance {d} is not the far box's")
                close(where + " filled", float(filled[0][i, j]), share(i, FAR) * share(j, FAR))

dist = c.planes("distantc1distant_scene_distance0001.img", 1, 8, 8)
xyz = c.planes("distantc1distant_scene_xyz0001.img", 3, 8, 8)
own = c.planes("distantc1distant_distant_distance0001.img", 1, 8, 8)
if dist and xyz and own:
    for i in range(8):
        for j in range(8):
            where = f"distant pixel ({i}, {j})"
            n = stretch(i, j)
            close(where + " scene distance", float(dist[0][i, j]), 19000 * n)
            close(where + " own distance", float(own[0][i, j]), 19000 * n)
            close(where + " x", float(xyz[0][i, j]), 19000.0, abs_tol=0.05)
c.done()

import math
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker  # noqa: E402

# Worked out by hand, as in scene_depth_is_the_nearest_surface_in_metres: a
# camera at the origin looking along +x, 8 x 8 pixels over 60 degrees, the
# image plane at unit distance over +-tan(30 deg) in steps p.
#   near box (radiance 1):   its face at x = 9 over |e|, |a| <= 2/9
#   far box (radiance 0.5):  its face at x = 19 over |e|, |a| <= 10/19
# Coverage is area on the image plane, so the near box covers the share
# s(i, 2/9) * s(j, 2/9) of pixel (i, j), and the far box, behind it, what is
# left of its own share.
half = math.tan(60 * 0.008726646259722222)
p = 2 * half / 8
edges = [-half + k * p for k in range(9)]
centres = [-half + (k + 0.5) * p for k in range(8)]


def share(k, limit):
    lo, hi = edges[k], edges[k + 1]
    return max(0.0, min(hi, limit) - max(lo, -limit)) / p


c = Checker()


def close(name, got, want, tol=1e-5):
    c.expect(abs(got - want) <= tol * max(1.0, abs(want)), f"{name}: {got!r}, want {want!r}")


for base in ("nearfirstc1cam", "farfirstc1cam"):
    c.files({base + "0001.img", base + "_radiance0001.img", base + "_distance0001.img",
             base + "_fraction_filled0001.img", base + "_near_alpha0001.img",
             base + "_far_alpha0001.img", base + "_near_near_alpha0001.img",
             base + "_near_fraction_filled0001.img"})
    picture = c.planes(base + "0001.img", 1, 8, 8)
    radiance = c.planes(base + "_radiance0001.img", 1, 8, 8)
    distance = c.planes(base + "_distance0001.img", 1, 8, 8)
    filled = c.planes(base + "_fraction_filled0001.img", 1, 8, 8)
    alpha_near = c.planes(base + "_near_alpha0001.img", 1, 8, 8)
    alpha_far = c.planes(base + "_far_alpha0001.img", 1, 8, 8)
    own_alpha = c.planes(base + "_near_near_alpha0001.img", 1, 8, 8)
    own_filled = c.planes(base + "_near_fraction_filled0001.img", 1, 8, 8)
    if not all((picture, radiance, distance, filled, alpha_near, alpha_far, own_alpha,
                own_filled)):
        continue
    for i in range(8):
        for j in range(8):
            where = f"{base} pixel ({i}, {j})"
            near = share(i, 2 / 9) * share(j, 2 / 9)
            far = (1 - near) * share(i, 10 / 19) * share(j, 10 / 19)
            close(where + " picture", float(picture[0][i, j]), near * 1.0 + far * 0.5)
            close(where + " scene radiance", float(radiance[0][i, j]), float(picture[0][i, j]))
            close(where + " filled", float(filled[0][i, j]), near + far)
            close(where + " alpha of near", float(alpha_near[0][i, j]), near)
            close(where + " alpha of far", float(alpha_far[0][i, j]), far)
            close(where + " near's own alpha", float(own_alpha[0][i, j]), near)
            close(where + " near's own filled", float(own_filled[0][i, j]), near)
            n = math.sqrt(1 + centres[i] ** 2 + centres[j] ** 2)
            d = float(distance[0][i, j])
            if near == 1.0:
                close(where + " distance", d, 9 * n)
            elif near == 0.0 and far == 1.0:
                close(where + " distance", d, 19 * n)
            elif near > 0.0:
                c.expect(d < 9 * 1.1, f"{where} distance {d} is not the near box's")
            else:
                c.expect(19 <= d < 19 * 1.5, f"{where} distance {d} is not the far box's")
c.done()

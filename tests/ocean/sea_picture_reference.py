#!/usr/bin/python3
"""Brute-force picture of a periodic sea lattice seen by three cameras.

Writes tests/data/ocean/sea_picture_reference.txt: for every pixel of three
cameras, the first point where the pixel's centre ray goes below the bilinear
lattice surface, or "sky". It is worked out here from first principles
(marching plus bisection, cross-checked by an exact per-cell solve), so that
a renderer's visibility can be compared against it.

Lattice
  64 x 64 nodes, dx = dy = 1 m, periodic in x and y, offset_x = offset_y = 32
  (world (0, 0) at the lattice centre), z_offset 0. Node (i, j) holds
  h[i + 64 j] (float32) and sits at world x = i - 32, y = j - 32. A world
  point (x, y) samples the surface by a = x + 32, b = y + 32, i = floor(a),
  j = floor(b), f = a - i, g = b - j, and the bilinear mix
  (1-f)(1-g) h(i,j) + (1-f) g h(i,j+1) + f (1-g) h(i+1,j) + f g h(i+1,j+1),
  with both indices wrapped modulo 64. The heights are six cosines with
  integer wave numbers (m, n) in -6..6, so the field is periodic on the
  lattice: h = sum A cos(2 pi (m i + n j) / 64 + p), drawn from
  numpy default_rng(20261126) in the order m, n (redrawn while both are 0),
  A in [0.1, 0.4), p in [0, 2 pi), wave after wave.

Camera pose: what chi, phi and theta do
  The world-to-view matrix is the object rotation
    row 0: c(th)c(chi)c(ph) - s(th)s(ph), c(th)c(chi)s(ph) + s(th)c(ph), -c(th)s(chi)
    row 1: -s(th)c(chi)c(ph) - c(th)s(ph), -s(th)c(chi)s(ph) + c(th)c(ph), s(th)s(chi)
    row 2: s(chi)c(ph), s(chi)s(ph), c(chi)
  and its transpose takes view directions to the world. A plane point (e, a)
  (e on the elevation axis, a on the azimuth axis) gives the view direction
  (-e, -a, 1) / sqrt(e e + a a + 1); the ray starts at the camera position.
  Hence the centre of the image (e = a = 0) looks along row 2:
    (sin chi cos phi, sin chi sin phi, cos chi)
  - chi is the angle of the line of sight from the zenith (+z): 0 looks
    straight up, pi/2 at the horizon, pi straight down. A line of sight
    8 degrees below horizontal is chi = 98 degrees.
  - phi is the compass angle of the line of sight, from +x towards +y.
  - theta turns the picture about the line of sight. With theta = 0 and a
    camera near the horizon, view x (row 0) points down and view y (row 1)
    points to the left of the line of sight, so because e and a enter negated,
    a larger e looks higher and a larger a looks further right.
  Looking straight down (chi = pi) only theta - phi matters; phi = pi/2 with
  theta = 0 puts +y (north) at the top of the picture and +x on the right,
  the same picture as a camera facing north tilted down to the vertical.
  Angles are held in radians, converted from whole degrees by
  0.017453292519444445 as a key frame does.

Image plane, rows and columns
  Rows run along elevation (n_rows = elevation pixels), columns along azimuth.
  For an axis of n pixels and full field of view F degrees: half angle
  h = F * 0.008726646259722222, pixel size p = 2 tan(h) / n, size = n p.
  Pixel k spans -size/2 + p k to -size/2 + p (k + 1); its centre is the mean.
  Row 0 is at the lowest elevation coordinate and column 0 at the lowest
  azimuth coordinate, so for these upright cameras (theta = 0) row 0,
  column 0 is the BOTTOM-LEFT corner of the scene as seen through the camera
  (for the downward camera: the south-west corner). Rows grow upwards and
  columns to the right.

Hits
  Each centre ray (unit direction, so t is metres) is marched from the camera
  out to t = 2000 m with a step of 0.025 m over the stretch where the ray's
  height lies within the lattice's height range (elsewhere the ray cannot be
  below the surface, since a bilinear mix never leaves the node range). The
  first sample below the surface is bracketed and refined by bisection to a
  bracket narrower than 1e-6 m; the hit is the ray point at the bracket's
  middle. No crossing within 2000 m is "sky".

Horizon (cameras a and c)
  The fractional row where the horizontal direction (flat sea at height 0)
  and the direction dipped by sqrt(2 h / R), R = 6.371e6 m, h the camera
  height (round sea), cross the central column (a = 0). The row coordinate
  puts row k's centre at k, so the bottom edge of row 0 is -0.5.

Self-checks (the script stops on any failure): orthonormal rotation; the
centre ray of each camera against the intended direction; up and right in
the picture; project() inverts the plane ray; bilinear sampling hits node
values and wraps; marching on flat planes against the analytic hit; every
marched hit against an exact solve of the quadratic the ray makes with each
bilinear cell; horizon rows against the elevation of their rays.

Run: /usr/bin/python3 tests/ocean/sea_picture_reference.py [output path]
"""

import os
import sys

import numpy as np

DEG_TO_RAD = 0.017453292519444445
HALF_FOV_PER_DEGREE = 0.008726646259722222
N_NODES = 64
SPACING = 1.0
OFFSET = 32.0
MAX_RANGE = 2000.0
MARCH_STEP = 0.025
BISECT_WIDTH = 1e-6
EARTH_RADIUS = 6.371e6


def check(condition, what):
    if not condition:
        sys.stderr.write("self-check failed: %s\n" % what)
        sys.exit(1)


def make_heights():
    rng = np.random.default_rng(20261126)
    i = np.arange(N_NODES, dtype=np.float64)[None, :]
    j = np.arange(N_NODES, dtype=np.float64)[:, None]
    field = np.zeros((N_NODES, N_NODES))
    waves = []
    for _ in range(6):
        while True:
            m, n = (int(v) for v in rng.integers(-6, 7, size=2))
            if (m, n) != (0, 0):
                break
        amp = rng.uniform(0.1, 0.4)
        phase = rng.uniform(0.0, 2.0 * np.pi)
        waves.append((m, n, amp, phase))
        field += amp * np.cos(2.0 * np.pi * (m * i + n * j) / N_NODES + phase)
    # Array [j, i] flattened row by row is element i + 64 j.
    return field.astype(np.float32), waves


class Lattice:
    def __init__(self, heights):
        self.h = heights.astype(np.float64)  # [j, i]
        self.low = float(self.h.min())
        self.high = float(self.h.max())

    def height_at(self, x, y):
        a = (np.asarray(x, dtype=np.float64) + OFFSET) * (1.0 / SPACING)
        b = (np.asarray(y, dtype=np.float64) + OFFSET) * (1.0 / SPACING)
        fi = np.floor(a)
        fj = np.floor(b)
        f = a - fi
        g = b - fj
        i0 = fi.astype(np.int64) % N_NODES
        j0 = fj.astype(np.int64) % N_NODES
        i1 = (i0 + 1) % N_NODES
        j1 = (j0 + 1) % N_NODES
        h = self.h
        return (h[j0, i0] * (1 - f) * (1 - g) + h[j1, i0] * (1 - f) * g +
                h[j0, i1] * f * (1 - g) + h[j1, i1] * f * g)


def world_to_view(chi, phi, theta):
    cc, sc = np.cos(chi), np.sin(chi)
    cp, sp = np.cos(phi), np.sin(phi)
    ct, st = np.cos(theta), np.sin(theta)
    return np.array([
        [ct * cc * cp - st * sp, ct * cc * sp + st * cp, -ct * sc],
        [-st * cc * cp - ct * sp, -st * cc * sp + ct * cp, st * sc],
        [sc * cp, sc * sp, cc],
    ])


class Camera:
    def __init__(self, name, position, chi_deg, phi_deg, theta_deg, n_cols,
                 n_rows, fov_azimuth, fov_elevation):
        self.name = name
        self.position = np.array(position, dtype=np.float64)
        self.chi = chi_deg * DEG_TO_RAD
        self.phi = phi_deg * DEG_TO_RAD
        self.theta = theta_deg * DEG_TO_RAD
        self.n_cols = n_cols
        self.n_rows = n_rows
        self.fov_azimuth = fov_azimuth
        self.fov_elevation = fov_elevation
        self.to_view = world_to_view(self.chi, self.phi, self.theta)
        self.to_world = self.to_view.T
        self.size_e = n_rows * (2.0 * np.tan(fov_elevation * HALF_FOV_PER_DEGREE) / n_rows)
        self.size_a = n_cols * (2.0 * np.tan(fov_azimuth * HALF_FOV_PER_DEGREE) / n_cols)

    def centre_e(self, row):
        lo = self.size_e * -0.5 + (self.size_e / self.n_rows) * row
        hi = self.size_e * -0.5 + (self.size_e / self.n_rows) * (row + 1)
        return 0.5 * (lo + hi)

    def centre_a(self, col):
        lo = self.size_a * -0.5 + (self.size_a / self.n_cols) * col
        hi = self.size_a * -0.5 + (self.size_a / self.n_cols) * (col + 1)
        return 0.5 * (lo + hi)

    def plane_ray(self, e, a):
        v = np.array([-e, -a, 1.0]) / np.sqrt(e * e + a * a + 1.0)
        return self.to_world @ v

    def project(self, point):
        v = self.to_view @ (np.asarray(point) - self.position)
        return -v[0] / v[2], -v[1] / v[2]

    def fractional_row(self, e):
        # Row coordinate with row k's centre at k.
        return (e + 0.5 * self.size_e) / (self.size_e / self.n_rows) - 0.5


def band_interval(origin, d, low, high):
    """Stretch of t in [0, MAX_RANGE] where the ray's z lies in [low, high]."""
    # A hair of margin so that a flat lattice still leaves a stretch to march.
    low -= 1e-6
    high += 1e-6
    oz, dz = origin[2], d[2]
    if dz == 0.0:
        if oz > high or oz < low:
            return None
        return 0.0, MAX_RANGE
    t_a = (high - oz) / dz
    t_b = (low - oz) / dz
    t0 = max(0.0, min(t_a, t_b))
    t1 = min(MAX_RANGE, max(t_a, t_b))
    if t0 >= t1:
        return None
    return t0, t1


def clearance(lat, origin, d, t):
    p = origin[:, None] * 1.0 + d[:, None] * np.atleast_1d(t)[None, :]
    return p[2] - lat.height_at(p[0], p[1])


def march(lat, origin, d):
    """First crossing below the surface, as t, or None for sky."""
    band = band_interval(origin, d, lat.low, lat.high)
    if band is None:
        return None
    t0, t1 = band
    n_steps = int(np.ceil((t1 - t0) / MARCH_STEP))
    chunk = 20000
    prev_t = t0
    prev_f = clearance(lat, origin, d, t0)[0]
    check(prev_f >= 0.0, "ray starts above the surface")
    k = 1
    while k <= n_steps:
        ks = np.arange(k, min(k + chunk, n_steps + 1))
        ts = np.minimum(t0 + MARCH_STEP * ks, t1)
        fs = clearance(lat, origin, d, ts)
        below = np.nonzero(fs < 0.0)[0]
        if below.size:
            idx = below[0]
            lo = ts[idx - 1] if idx > 0 else prev_t
            hi = ts[idx]
            while hi - lo > BISECT_WIDTH:
                mid = 0.5 * (lo + hi)
                if clearance(lat, origin, d, mid)[0] < 0.0:
                    hi = mid
                else:
                    lo = mid
            return 0.5 * (lo + hi)
        prev_t = ts[-1]
        k = ks[-1] + 1
    return None


def exact_first_crossing(lat, origin, d):
    """Independent answer: along each bilinear cell the clearance is a
    quadratic in t; take the smallest root where it turns negative."""
    band = band_interval(origin, d, lat.low, lat.high)
    if band is None:
        return None
    t0, t1 = band
    ox, oy, oz = origin
    dx, dy, dz = d
    cuts = [np.array([t0, t1])]
    for o, dd in ((ox, dx), (oy, dy)):
        if dd != 0.0:
            u0 = (o + t0 * dd + OFFSET) / SPACING
            u1 = (o + t1 * dd + OFFSET) / SPACING
            ks = np.arange(np.ceil(min(u0, u1)), np.floor(max(u0, u1)) + 1)
            cuts.append((ks * SPACING - OFFSET - o) / dd)
    ts = np.unique(np.clip(np.concatenate(cuts), t0, t1))
    lo, hi = ts[:-1], ts[1:]
    keep = hi > lo
    lo, hi = lo[keep], hi[keep]
    mid = 0.5 * (lo + hi)
    ci = np.floor((ox + mid * dx + OFFSET) / SPACING)
    cj = np.floor((oy + mid * dy + OFFSET) / SPACING)
    i0 = ci.astype(np.int64) % N_NODES
    j0 = cj.astype(np.int64) % N_NODES
    i1 = (i0 + 1) % N_NODES
    j1 = (j0 + 1) % N_NODES
    h = lat.h
    A = h[j0, i0]
    B = h[j0, i1] - h[j0, i0]
    C = h[j1, i0] - h[j0, i0]
    D = h[j1, i1] - h[j0, i1] - h[j1, i0] + h[j0, i0]
    # f = p0 + p1 t, g = q0 + q1 t inside the cell.
    p0 = (ox + OFFSET) / SPACING - ci
    p1 = dx / SPACING
    q0 = (oy + OFFSET) / SPACING - cj
    q1 = dy / SPACING
    c0 = oz - (A + B * p0 + C * q0 + D * p0 * q0)
    c1 = dz - (B * p1 + C * q1 + D * (p0 * q1 + p1 * q0))
    c2 = -D * p1 * q1
    # Both roots of each cell's quadratic, in a cancellation-free form.
    linear = np.abs(c2) < 1e-14
    with np.errstate(divide="ignore", invalid="ignore"):
        disc = c1 * c1 - 4.0 * c2 * c0
        sq = np.sqrt(np.where(disc >= 0.0, disc, np.nan))
        qq = -0.5 * (c1 + np.copysign(sq, c1))
        r1 = np.where(linear, -c0 / c1, qq / c2)
        r2 = np.where(linear, np.nan, c0 / qq)
    best = np.full(lo.size, np.inf)
    for r in (r1, r2):
        # A root inside the cell's stretch where the clearance turns negative.
        ok = (np.isfinite(r) & (r >= lo - 1e-9) & (r <= hi + 1e-9) &
              (c1 + 2.0 * c2 * r < 0.0))
        best = np.where(ok & (r < best), r, best)
    found = np.nonzero(np.isfinite(best))[0]
    if found.size == 0:
        return None
    return float(best[found[0]])


def self_check_rotation(cam, expected_centre):
    m = cam.to_view
    check(np.allclose(m @ m.T, np.eye(3), atol=1e-12), cam.name + " rotation orthonormal")
    check(abs(np.linalg.det(m) - 1.0) < 1e-12, cam.name + " rotation proper")
    centre = cam.plane_ray(0.0, 0.0)
    check(np.allclose(centre, expected_centre, atol=1e-9),
          "%s centre ray %s, intended %s" % (cam.name, centre, expected_centre))
    # A step up in e looks higher (for the downward camera: further north).
    up = cam.plane_ray(0.1, 0.0) - centre
    right = cam.plane_ray(0.0, 0.1) - centre
    if abs(centre[2]) > 0.99:
        check(up[1] > 0.0 and abs(up[0]) < 1e-9, cam.name + " top of picture is +y")
        check(right[0] > 0.0 and abs(right[1]) < 1e-9, cam.name + " right of picture is +x")
    else:
        check(up[2] > 0.0, cam.name + " larger elevation looks higher")
        # Right of the line of sight, seen from above: clockwise turn.
        cross_z = centre[0] * right[1] - centre[1] * right[0]
        check(cross_z < 0.0, cam.name + " larger azimuth looks right")
    for e, a in ((0.13, -0.07), (-0.2, 0.31)):
        p = cam.position + 7.0 * cam.plane_ray(e, a)
        pe, pa = cam.project(p)
        check(abs(pe - e) < 1e-12 and abs(pa - a) < 1e-12, cam.name + " project inverts plane ray")
    # Pixel centres are symmetric about the plane's centre.
    check(abs(cam.centre_e(0) + cam.centre_e(cam.n_rows - 1)) < 1e-12, cam.name + " rows symmetric")
    check(abs(cam.centre_a(0) + cam.centre_a(cam.n_cols - 1)) < 1e-12, cam.name + " cols symmetric")


def self_check_lattice(lat, heights_f32):
    rng = np.random.default_rng(7)
    for _ in range(20):
        i, j = (int(v) for v in rng.integers(0, N_NODES, size=2))
        x, y = i * SPACING - OFFSET, j * SPACING - OFFSET
        check(lat.height_at(x, y) == float(heights_f32[j, i]), "node value")
        x, y = rng.uniform(-100, 100, size=2)
        check(abs(lat.height_at(x, y) - lat.height_at(x + 64.0, y - 128.0)) < 1e-12, "periodic wrap")
    # Halfway along a cell edge: the mean of its two nodes.
    i, j = 5, 60
    mid = lat.height_at(i + 0.5 - OFFSET, j - OFFSET)
    check(abs(mid - 0.5 * (lat.h[j, i] + lat.h[j, i + 1])) < 1e-12, "edge midpoint")
    mid = lat.height_at(63.0 - OFFSET, 63.5 - OFFSET)  # wraps j + 1 to row 0
    check(abs(mid - 0.5 * (lat.h[63, 63] + lat.h[0, 63])) < 1e-12, "wrapped edge midpoint")


def self_check_march_on_plane(cam):
    for level in (0.0, -0.75, 0.375):  # exact in float32
        flat = Lattice(np.full((N_NODES, N_NODES), level, dtype=np.float32))
        for row in range(0, cam.n_rows, 5):
            for col in range(0, cam.n_cols, 7):
                d = cam.plane_ray(cam.centre_e(row), cam.centre_a(col))
                t = march(flat, cam.position, d)
                if d[2] < 0.0 and (level - cam.position[2]) / d[2] <= MAX_RANGE:
                    want = (level - cam.position[2]) / d[2]
                    check(t is not None and abs(t - want) < 1e-6,
                          "%s plane %g row %d col %d: %r vs %r" % (cam.name, level, row, col, t, want))
                else:
                    check(t is None, "%s plane %g row %d col %d sky" % (cam.name, level, row, col))


def horizon_rows(cam):
    """Rows where the level direction and the dipped direction cross the
    central column; closed form for an upright camera (theta = 0)."""
    tilt = cam.chi - 0.5 * np.pi
    dip = np.sqrt(2.0 * cam.position[2] / EARTH_RADIUS)
    rows = []
    for elevation in (0.0, -dip):
        e = np.tan(elevation + tilt)
        r = cam.fractional_row(e)
        # Cross-check through the general ray: its elevation angle.
        ray = cam.plane_ray(e, 0.0)
        check(abs(np.arcsin(ray[2]) - elevation) < 1e-12, cam.name + " horizon ray elevation")
        rows.append(r)
    return rows


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    out_path = (sys.argv[1] if len(sys.argv) > 1 else
                os.path.join(here, "..", "data", "ocean", "sea_picture_reference.txt"))
    heights, waves = make_heights()
    lat = Lattice(heights)
    self_check_lattice(lat, heights)

    cameras = [
        Camera("a", (0.0, 0.0, 3.0), 98.0, 0.0, 0.0, 64, 36, 60.0, 33.75),
        Camera("b", (3.0, -2.0, 20.0), 180.0, 90.0, 0.0, 48, 48, 40.0, 40.0),
        Camera("c", (0.0, 0.0, 1.5), 90.0, 120.0, 0.0, 64, 24, 50.0, 18.75),
    ]
    intended = {
        "a": (np.cos(8 * np.pi / 180), 0.0, -np.sin(8 * np.pi / 180)),
        "b": (0.0, 0.0, -1.0),
        "c": (np.cos(120 * np.pi / 180), np.sin(120 * np.pi / 180), 0.0),
    }
    for cam in cameras:
        self_check_rotation(cam, np.array(intended[cam.name]))
        check(cam.position[2] > lat.height_at(cam.position[0], cam.position[1]) + 0.2,
              cam.name + " camera above the water")
        self_check_march_on_plane(cam)

    lines = []
    lines.append("# Brute-force reference picture of a periodic sea lattice, written by")
    lines.append("# tests/ocean/sea_picture_reference.py (see its docstring for the derivation).")
    lines.append("# Lines, in order:")
    lines.append("#   lattice <n_x> <n_y> <dx> <dy> <offset_x> <offset_y>  (periodic both axes, z_offset 0)")
    lines.append("#   the n_x * n_y float32 heights (%.9g), element i + n_x * j = node (i, j),")
    lines.append("#     node (i, j) at world x = i * dx - offset_x, y = j * dy - offset_y; bilinear between nodes")
    lines.append("#   then per camera:")
    lines.append("#   camera <name> <x> <y> <z> <chi> <phi> <theta> <n_cols> <n_rows> <fov_azimuth_deg> <fov_elevation_deg>")
    lines.append("#     angles in radians (degrees times 0.017453292519444445); chi = line of sight from the zenith,")
    lines.append("#     phi = its compass angle from +x towards +y, theta = turn about it (0: upright)")
    lines.append("#   followed by n_rows * n_cols pixel lines, row by row, columns within a row:")
    lines.append("#     <row> <col> hit <x> <y> <z>   first point below the surface along the pixel centre ray")
    lines.append("#     <row> <col> sky              no crossing within 2000 m of the camera")
    lines.append("#     rows run along elevation, columns along azimuth; row 0 is the lowest elevation and")
    lines.append("#     column 0 the lowest azimuth: for these upright cameras row 0, column 0 is the")
    lines.append("#     bottom-left corner of the scene (camera b, looking down with +y at the top: south-west)")
    lines.append("#   horizon <camera> flat <row> round <row>")
    lines.append("#     fractional row (row k's centre at k) where the central column meets the level")
    lines.append("#     direction (flat sea at height 0) and the direction dipped by sqrt(2 h / 6.371e6)")
    lines.append("# Hits: marched at 0.025 m steps, refined by bisection to 1e-6 m; positions carry that error.")
    lines.append("# Heights: sum of A cos(2 pi (m i + n j) / 64 + p) over the waves (m n A p):")
    for m, n, amp, phase in waves:
        lines.append("#   %d %d %.17g %.17g" % (m, n, amp, phase))
    lines.append("lattice 64 64 1.0 1.0 32 32")
    lines.append(" ".join("%.9g" % v for v in heights.ravel()))

    mismatches = 0
    n_hits = 0
    for cam in cameras:
        lines.append("camera %s %.17g %.17g %.17g %.17g %.17g %.17g %d %d %.17g %.17g" % (
            cam.name, cam.position[0], cam.position[1], cam.position[2], cam.chi, cam.phi,
            cam.theta, cam.n_cols, cam.n_rows, cam.fov_azimuth, cam.fov_elevation))
        cam_hits = 0
        for row in range(cam.n_rows):
            for col in range(cam.n_cols):
                d = cam.plane_ray(cam.centre_e(row), cam.centre_a(col))
                t = march(lat, cam.position, d)
                t_exact = exact_first_crossing(lat, cam.position, d)
                if (t is None) != (t_exact is None) or (
                        t is not None and abs(t - t_exact) > 1e-5):
                    mismatches += 1
                    sys.stderr.write("%s row %d col %d: marched %s exact %s\n" % (
                        cam.name, row, col, t, t_exact))
                if t is None:
                    lines.append("%d %d sky" % (row, col))
                else:
                    p = cam.position + t * d
                    check(abs(p[2] - lat.height_at(p[0], p[1])) < 1e-6, "hit lies on the surface")
                    lines.append("%d %d hit %.7f %.7f %.7f" % (row, col, p[0], p[1], p[2]))
                    cam_hits += 1
        n_hits += cam_hits
        sys.stderr.write("camera %s: %d hits of %d pixels\n" % (
            cam.name, cam_hits, cam.n_rows * cam.n_cols))
    check(mismatches == 0, "%d pixels where marching and the exact solve disagree" % mismatches)

    for cam in cameras:
        if cam.name in ("a", "c"):
            flat_row, round_row = horizon_rows(cam)
            lines.append("horizon %s flat %.12f round %.12f" % (cam.name, flat_row, round_row))

    with open(out_path, "w") as out:
        out.write("\n".join(lines) + "\n")
    sys.stderr.write("wrote %s (%d hits)\n" % (out_path, n_hits))


if __name__ == "__main__":
    main()

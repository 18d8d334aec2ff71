#!/usr/bin/python3
"""Reference projections and pixel coverage of polygons seen by cameras.

Writes tests/data/polygons/projected_area_reference.txt (line format in its
header).

Camera model
------------
A camera is a position, three angles chi, phi, theta (whole degrees times
0.017453292519444445), a pixel count on each axis and a full field of view on
each axis in degrees. The world-to-view matrix W has the rows
  c(th)c(chi)c(ph) - s(th)s(ph),  c(th)c(chi)s(ph) + s(th)c(ph), -c(th)s(chi)
 -s(th)c(chi)c(ph) - c(th)s(ph), -s(th)c(chi)s(ph) + c(th)c(ph),  s(th)s(chi)
  s(chi)c(ph),                    s(chi)s(ph),                    c(chi)
A point p goes to v = W (p - position), then to the plane point
e = -v.x / v.z, a = -v.y / v.z, then to pixel coordinates
x = (a - first_a) / pixel_a (along columns), y = (e - first_e) / pixel_e (along
rows), with pixel = 2 tan(F * 0.008726646259722222) / n for a full field of view
F over n pixels and first = -n pixel / 2. Pixel (row, col) is the square
[col, col + 1] x [row, row + 1]; the picture is [0, n_cols] x [0, n_rows].

The script checks this model against what it is meant to do before it writes
anything: W is a rotation (W W^T = I, det W = +1); its third row is the line of
sight (sin chi cos phi, sin chi sin phi, cos chi); the picture centre is at
(n_cols / 2, n_rows / 2); with theta = 0 near the horizon, a point above the line
of sight has a larger row and a point to its right a larger column; looking
straight down with phi = 90 deg, theta = 0, north (+y) has larger rows and +x
larger columns; and the inverse path (pixel to plane point to view direction
(-e, -a, 1) through W^T) passes through the point it came from to 1e-9 relative.

Polygons
--------
Per camera, 30 triangles and convex quads are drawn in view space: a centre at a
random depth and picture position (a third of them placed near or over an edge so
that they are partly outside), a plane through it no closer than 78 deg to
edge-on, and corners at sorted angles on an ellipse in that plane, sized from a
third of a pixel to about 15 pixels. Every corner is in front of the camera with
v.z at least 0.3 of the centre's depth, so nothing crosses the camera's plane.
The world corners (view corner through W^T plus the position) are rounded to
doubles; everything below is computed from those doubles.

Each polygon is projected, clipped to the picture rectangle by clipping against
its four sides in turn, and its clipped area taken by the shoelace formula. The
area is checked by a second, independent construction: for two convex shapes the
intersection is the convex hull of the corners of each inside the other plus all
edge-edge crossings, and the hull's area must agree to 1e-9.

For the first 5 polygons of each camera, the area inside each pixel square is
computed by the same side-by-side clipping against that square, checked pixel by
pixel against the hull construction, and the pixel areas must sum to the clipped
area to 1e-9.

facing is 1 when the polygon's normal, minus the normalised Newell vector of its
corners in order, satisfies normal . (first corner - position) < 0, that is when
a ray from the camera meets its front. The script checks that facing polygons
are exactly those whose projection runs with negative signed shoelace area in
(x, y) = (column, row) coordinates, i.e. clockwise with rows up.

Meshes
------
A closed cube of 12 triangles (side 4 m, turned at random, fully in the
picture), wound so that each face's normal points out of the cube, and a planar
quad cut into a 4 x 4 grid of cells of two triangles each (32 triangles, all
facing the camera, partly outside the picture). For each, per pixel, the summed
area of the facing triangles' projections in that pixel. Checks: the sums over
the pixels equal the area of the silhouette (the convex hull of the projected
corners) clipped to the picture; every pixel whose square lies wholly inside the
silhouette sums to 1 to 1e-12; and for the cube the triangles not facing the
camera give the same per-pixel sums (a closed convex surface is covered once
from either side).

Tolerances
----------
All numbers are exact double evaluations (coordinates to about 1e-11 pixel,
areas to 1e-9 pixel^2). A renderer that carries the projected x, y as floats
(single precision) differs by more; the script rounds the projected corners to
float and reports the largest resulting change: expect about 1e-5 pixel in
coordinates and 1e-4 pixel^2 in areas, both per pixel and per polygon.
"""

import os
import sys

import numpy as np

SEED = 20261127
DEG = 0.017453292519444445
HALF_DEG = 0.008726646259722222
N_PER_CAMERA = 30
N_PIXEL_LISTS = 5
HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "data", "polygons", "projected_area_reference.txt")


def fmt(x):
    return repr(float(x))


class Camera:
    def __init__(self, ident, position, chi_deg, phi_deg, theta_deg, n_cols, n_rows, fov_az, fov_el):
        self.ident = ident
        self.position = np.array(position, dtype=float)
        self.degrees = (chi_deg, phi_deg, theta_deg)
        self.chi = chi_deg * DEG
        self.phi = phi_deg * DEG
        self.theta = theta_deg * DEG
        self.n_cols = n_cols
        self.n_rows = n_rows
        self.fov_az = fov_az
        self.fov_el = fov_el
        self.pixel_a = 2.0 * np.tan(fov_az * HALF_DEG) / n_cols
        self.pixel_e = 2.0 * np.tan(fov_el * HALF_DEG) / n_rows
        self.first_a = -(n_cols * self.pixel_a) / 2.0
        self.first_e = -(n_rows * self.pixel_e) / 2.0
        sc, cc = np.sin(self.chi), np.cos(self.chi)
        sp, cp = np.sin(self.phi), np.cos(self.phi)
        st, ct = np.sin(self.theta), np.cos(self.theta)
        self.w = np.array([
            [ct * cc * cp - st * sp, ct * cc * sp + st * cp, -ct * sc],
            [-st * cc * cp - ct * sp, -st * cc * sp + ct * cp, st * sc],
            [sc * cp, sc * sp, cc],
        ])

    def view(self, p):
        return (np.asarray(p) - self.position) @ self.w.T

    def project(self, p):
        v = self.view(p)
        e = -v[..., 0] / v[..., 2]
        a = -v[..., 1] / v[..., 2]
        x = (a - self.first_a) / self.pixel_a
        y = (e - self.first_e) / self.pixel_e
        return np.stack([x, y], axis=-1)

    def direction_of(self, xy):
        a = self.first_a + xy[0] * self.pixel_a
        e = self.first_e + xy[1] * self.pixel_e
        d = np.array([-e, -a, 1.0]) / np.sqrt(e * e + a * a + 1.0)
        return self.w.T @ d

    def to_world(self, v):
        return self.position + np.asarray(v) @ self.w


def check_camera(cam):
    w = cam.w
    assert np.max(np.abs(w @ w.T - np.eye(3))) < 1e-14
    assert abs(np.linalg.det(w) - 1.0) < 1e-14
    los = np.array([np.sin(cam.chi) * np.cos(cam.phi), np.sin(cam.chi) * np.sin(cam.phi), np.cos(cam.chi)])
    assert np.max(np.abs(w[2] - los)) < 1e-15
    centre = cam.project(cam.position + 50.0 * los)
    assert np.max(np.abs(centre - [cam.n_cols / 2.0, cam.n_rows / 2.0])) < 1e-9
    # round trip pixel -> direction -> the point
    rng = np.random.default_rng(7)
    for _ in range(20):
        p = cam.to_world(np.array([rng.uniform(-3, 3), rng.uniform(-3, 3), rng.uniform(1, 50)]))
        d = cam.direction_of(cam.project(p))
        q = p - cam.position
        assert np.linalg.norm(np.cross(d, q)) < 1e-9 * np.linalg.norm(q)
        assert np.dot(d, q) > 0


def check_upright_facts():
    # near the horizon, theta 0: up is a larger row, right a larger column
    cam = Camera(-1, [0.0, 0.0, 2.0], 98, 35, 0, 64, 48, 40, 30)
    los = cam.w[2]
    flat = np.array([np.cos(cam.phi), np.sin(cam.phi), 0.0])
    right = np.cross(flat, [0.0, 0.0, 1.0])
    base = cam.project(cam.position + 30.0 * los)
    up = cam.project(cam.position + 30.0 * los + [0.0, 0.0, 1.0])
    rt = cam.project(cam.position + 30.0 * los + right)
    assert up[1] > base[1] + 1 and abs(up[0] - base[0]) < 1e-9
    assert rt[0] > base[0] + 1 and abs(rt[1] - base[1]) < 1e-9
    # straight down, phi 90: north at the top, east on the right
    cam = Camera(-1, [0.0, 0.0, 100.0], 180, 90, 0, 40, 40, 50, 50)
    base = cam.project([0.0, 0.0, 0.0])
    north = cam.project([0.0, 5.0, 0.0])
    east = cam.project([5.0, 0.0, 0.0])
    assert north[1] > base[1] + 1 and abs(north[0] - base[0]) < 1e-9
    assert east[0] > base[0] + 1 and abs(east[1] - base[1]) < 1e-9


def shoelace(poly):
    if len(poly) < 3:
        return 0.0
    x, y = poly[:, 0], poly[:, 1]
    return 0.5 * float(np.sum(x * np.roll(y, -1) - np.roll(x, -1) * y))


def clip_half(poly, axis, bound, keep_below):
    """Clip a polygon (m x 2) to x[axis] <= bound or x[axis] >= bound."""
    out = []
    m = len(poly)
    for i in range(m):
        cur = poly[i]
        nxt = poly[(i + 1) % m]
        cin = cur[axis] <= bound if keep_below else cur[axis] >= bound
        nin = nxt[axis] <= bound if keep_below else nxt[axis] >= bound
        if cin:
            out.append(cur)
        if cin != nin:
            t = (bound - cur[axis]) / (nxt[axis] - cur[axis])
            q = cur + t * (nxt - cur)
            q[axis] = bound
            out.append(q)
    return np.array(out).reshape(-1, 2)


def clip_rect(poly, x0, x1, y0, y1):
    for axis, bound, below in ((0, x0, False), (0, x1, True), (1, y0, False), (1, y1, True)):
        if len(poly) == 0:
            break
        poly = clip_half(poly, axis, bound, below)
    if len(poly) == 0:
        return poly
    keep = [0]
    for i in range(1, len(poly)):
        if np.any(poly[i] != poly[keep[-1]]):
            keep.append(i)
    poly = poly[keep]
    if len(poly) > 1 and np.all(poly[0] == poly[-1]):
        poly = poly[:-1]
    return poly


def hull(points):
    pts = sorted(set((float(p[0]), float(p[1])) for p in points))
    if len(pts) < 3:
        return np.zeros((0, 2))

    def cross(o, a, b):
        return (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0])

    lower = []
    for p in pts:
        while len(lower) >= 2 and cross(lower[-2], lower[-1], p) <= 0:
            lower.pop()
        lower.append(p)
    upper = []
    for p in reversed(pts):
        while len(upper) >= 2 and cross(upper[-2], upper[-1], p) <= 0:
            upper.pop()
        upper.append(p)
    return np.array(lower[:-1] + upper[:-1])


def inside_convex(poly, p, eps=1e-12):
    s = np.sign(shoelace(poly))
    m = len(poly)
    for i in range(m):
        a, b = poly[i], poly[(i + 1) % m]
        c = (b[0] - a[0]) * (p[1] - a[1]) - (b[1] - a[1]) * (p[0] - a[0])
        if s * c < -eps:
            return False
    return True


def segment_crossings(p, q, r, s):
    d1 = q - p
    d2 = s - r
    den = d1[0] * d2[1] - d1[1] * d2[0]
    if den == 0:
        return []
    t = ((r[0] - p[0]) * d2[1] - (r[1] - p[1]) * d2[0]) / den
    u = ((r[0] - p[0]) * d1[1] - (r[1] - p[1]) * d1[0]) / den
    if -1e-15 <= t <= 1 + 1e-15 and -1e-15 <= u <= 1 + 1e-15:
        return [p + t * d1]
    return []


def hull_intersection_area(poly, x0, x1, y0, y1):
    """Area of convex poly within the rectangle by the hull of its corners."""
    rect = np.array([[x0, y0], [x1, y0], [x1, y1], [x0, y1]], dtype=float)
    pts = [p for p in poly if x0 <= p[0] <= x1 and y0 <= p[1] <= y1]
    pts += [c for c in rect if inside_convex(poly, c)]
    for i in range(len(poly)):
        for j in range(4):
            pts += segment_crossings(poly[i], poly[(i + 1) % len(poly)], rect[j], rect[(j + 1) % 4])
    h = hull(pts)
    return abs(shoelace(h)) if len(h) >= 3 else 0.0


def pixel_areas(poly, n_cols, n_rows):
    """{(row, col): area} of the projected polygon, by clipping to each pixel."""
    x0 = max(int(np.floor(poly[:, 0].min())), 0)
    x1 = min(int(np.floor(poly[:, 0].max())), n_cols - 1)
    y0 = max(int(np.floor(poly[:, 1].min())), 0)
    y1 = min(int(np.floor(poly[:, 1].max())), n_rows - 1)
    out = {}
    for row in range(y0, y1 + 1):
        for col in range(x0, x1 + 1):
            c = clip_rect(poly, col, col + 1, row, row + 1)
            area = abs(shoelace(c)) if len(c) >= 3 else 0.0
            if area > 0.0:
                out[(row, col)] = area
    return out


def part_normal(p):
    a = b = c = 0.0
    n = len(p)
    for i in range(n):
        j = (i + 1) % n
        a += (p[i][2] + p[j][2]) * (p[i][1] - p[j][1])
        b += (p[i][0] + p[j][0]) * (p[i][2] - p[j][2])
        c += (p[i][1] + p[j][1]) * (p[i][0] - p[j][0])
    v = -np.array([a, b, c])
    return v / np.linalg.norm(v)


def facing(p, cam):
    return int(np.dot(part_normal(p), p[0] - cam.position) < 0.0)


def is_convex_ccw_or_cw(poly):
    m = len(poly)
    s = []
    for i in range(m):
        a, b, c = poly[i], poly[(i + 1) % m], poly[(i + 2) % m]
        s.append((b[0] - a[0]) * (c[1] - b[1]) - (b[1] - a[1]) * (c[0] - b[0]))
    s = np.array(s)
    return bool(np.all(s > 0) or np.all(s < 0))


def random_unit(rng):
    v = rng.normal(size=3)
    return v / np.linalg.norm(v)


def make_polygon(rng, cam, k, edge_case):
    """A planar triangle or convex quad in front of the camera, world coordinates."""
    while True:
        depth = rng.uniform(3.0, 80.0)
        if edge_case:
            # centre within 3 pixels of one side of the picture, either way
            side = int(rng.integers(0, 4))
            x = rng.uniform(-3.0, cam.n_cols + 3.0)
            y = rng.uniform(-3.0, cam.n_rows + 3.0)
            if side == 0:
                x = rng.uniform(-3.0, 3.0)
            elif side == 1:
                x = cam.n_cols + rng.uniform(-3.0, 3.0)
            elif side == 2:
                y = rng.uniform(-3.0, 3.0)
            else:
                y = cam.n_rows + rng.uniform(-3.0, 3.0)
        else:
            x = rng.uniform(2.0, cam.n_cols - 2.0)
            y = rng.uniform(2.0, cam.n_rows - 2.0)
        a = cam.first_a + x * cam.pixel_a
        e = cam.first_e + y * cam.pixel_e
        centre = depth * np.array([-e, -a, 1.0])
        n = random_unit(rng)
        if abs(np.dot(n, centre / np.linalg.norm(centre))) < 0.2:
            continue
        helper = np.zeros(3)
        helper[int(np.argmin(np.abs(n)))] = 1.0
        e1 = np.cross(helper, n)
        e1 /= np.linalg.norm(e1)
        e2 = np.cross(n, e1)
        size_px = 10.0 ** rng.uniform(np.log10(0.35), np.log10(15.0))
        radius = size_px * depth * min(cam.pixel_a, cam.pixel_e)
        t = np.sort(rng.uniform(0, 2 * np.pi, k))
        gaps = np.diff(np.concatenate([t, [t[0] + 2 * np.pi]]))
        if gaps.min() < 0.5 * 2 * np.pi / k:
            continue
        ratio = rng.uniform(0.4, 1.0)
        v = centre[None, :] + radius * (np.cos(t)[:, None] * e1[None, :] + ratio * np.sin(t)[:, None] * e2[None, :])
        if rng.uniform() < 0.5:
            v = v[::-1].copy()
        if np.min(v[:, 2]) < 0.3 * depth:
            continue
        p = cam.to_world(v)
        xy = cam.project(p)
        if not is_convex_ccw_or_cw(xy):
            continue
        clipped = clip_rect(xy, 0.0, cam.n_cols, 0.0, cam.n_rows)
        if len(clipped) < 3 or abs(shoelace(clipped)) < 1e-3:
            continue
        return p


def mesh_coverage(tris, cam, faces):
    total = {}
    for tri, f in zip(tris, faces):
        if not f:
            continue
        for key, area in pixel_areas(cam.project(tri), cam.n_cols, cam.n_rows).items():
            total[key] = total.get(key, 0.0) + area
    return total


def check_mesh(tris, cam, faces, corners, closed):
    front = mesh_coverage(tris, cam, faces)
    sil = hull(cam.project(corners))
    sil_area = abs(shoelace(clip_rect(sil, 0.0, cam.n_cols, 0.0, cam.n_rows)))
    assert abs(sum(front.values()) - sil_area) < 1e-9 * max(1.0, sil_area), (sum(front.values()), sil_area)
    interior = 0
    for (row, col), s in front.items():
        sq = [(col, row), (col + 1, row), (col, row + 1), (col + 1, row + 1)]
        if all(inside_convex(sil, np.array(c), eps=-1e-9) for c in sq):
            assert abs(s - 1.0) < 1e-12, ((row, col), s)
            interior += 1
    assert interior > 10
    if closed:
        back = mesh_coverage(tris, cam, [not f for f in faces])
        for k in set(front) | set(back):
            assert abs(front.get(k, 0.0) - back.get(k, 0.0)) < 1e-12
    return front, interior, sil_area


def make_cube(rng, cam):
    q, _ = np.linalg.qr(rng.normal(size=(3, 3)))
    if np.linalg.det(q) < 0:
        q[:, 0] = -q[:, 0]
    centre_view = np.array([-0.05, 0.08, 28.0])
    centre = cam.to_world(centre_view)
    half = 2.0
    corners = []
    for i in range(8):
        s = np.array([1 if i & 1 else -1, 1 if i & 2 else -1, 1 if i & 4 else -1], dtype=float)
        corners.append(centre + half * (q @ s))
    corners = np.array(corners)
    # faces as corner index quads; order made so the normal points outwards
    quads = [(0, 2, 6, 4), (1, 3, 7, 5), (0, 1, 5, 4), (2, 3, 7, 6), (0, 1, 3, 2), (4, 5, 7, 6)]
    tris = []
    for quad in quads:
        a, b, c, d = (corners[i] for i in quad)
        for tri in (np.array([a, b, c]), np.array([a, c, d])):
            n = part_normal(tri)
            if np.dot(n, tri.mean(axis=0) - centre) < 0:
                tri = tri[::-1].copy()
            assert np.dot(part_normal(tri), tri.mean(axis=0) - centre) > 0
            tris.append(tri)
    return tris, corners


def make_grid(rng, cam):
    # a 6 m square, tilted, with its centre near the right edge of the picture
    x = cam.n_cols - 6.0
    y = cam.n_rows * 0.45
    a = cam.first_a + x * cam.pixel_a
    e = cam.first_e + y * cam.pixel_e
    centre = cam.to_world(30.0 * np.array([-e, -a, 1.0]))
    n = cam.position - centre
    n /= np.linalg.norm(n)
    tilt = random_unit(rng)
    n = n + 0.6 * (tilt - np.dot(tilt, n) * n)
    n /= np.linalg.norm(n)
    helper = np.zeros(3)
    helper[int(np.argmin(np.abs(n)))] = 1.0
    e1 = np.cross(helper, n)
    e1 /= np.linalg.norm(e1)
    e2 = np.cross(n, e1)
    nodes = np.zeros((5, 5, 3))
    for i in range(5):
        for j in range(5):
            nodes[i, j] = centre + (i - 2) * 1.5 * e1 + (j - 2) * 1.5 * e2
    tris = []
    for i in range(4):
        for j in range(4):
            a, b, c, d = nodes[i, j], nodes[i + 1, j], nodes[i + 1, j + 1], nodes[i, j + 1]
            pair = ((a, b, c), (a, c, d)) if (i + j) % 2 == 0 else ((a, b, d), (b, c, d))
            for tri in pair:
                tri = np.array(tri)
                if not facing(tri, cam):
                    tri = tri[::-1].copy()
                tris.append(tri)
    corners = np.array([nodes[0, 0], nodes[4, 0], nodes[4, 4], nodes[0, 4]])
    return tris, corners


def main():
    check_upright_facts()
    cameras = [
        Camera(0, [12.5, -30.0, 6.0], 98, 35, 0, 64, 48, 40, 30),
        Camera(1, [5.0, 10.0, 120.0], 180, 90, 0, 40, 40, 50, 50),
        Camera(2, [-20.0, 40.0, 15.0], 70, -130, 25, 50, 36, 55, 36),
    ]
    for cam in cameras:
        check_camera(cam)
    rng = np.random.default_rng(SEED)
    lines = []
    worst = {"area_hull": 0.0, "pixel_hull": 0.0, "pixel_sum": 0.0,
             "float_xy": 0.0, "float_area": 0.0, "float_pixel": 0.0}
    n_partial = 0
    n_facing = 0
    for cam in cameras:
        lines.append("camera %d %s %s %s %s %s %s %d %d %s %s" % (
            cam.ident, fmt(cam.position[0]), fmt(cam.position[1]), fmt(cam.position[2]),
            fmt(cam.chi), fmt(cam.phi), fmt(cam.theta), cam.n_cols, cam.n_rows,
            fmt(cam.fov_az), fmt(cam.fov_el)))
        lines.append("degrees %d %d %d %d" % ((cam.ident,) + cam.degrees))
        lines.append("plane %d %s %s %s %s" % (cam.ident, fmt(cam.pixel_e), fmt(cam.pixel_a),
                                               fmt(cam.first_e), fmt(cam.first_a)))
        lines.append("matrix %d %s" % (cam.ident, " ".join(fmt(x) for x in cam.w.ravel())))
        for idx in range(N_PER_CAMERA):
            k = 3 if idx % 2 == 0 else 4
            edge_case = idx % 3 == 1
            p = make_polygon(rng, cam, k, edge_case)
            xy = cam.project(p)
            clipped = clip_rect(xy, 0.0, cam.n_cols, 0.0, cam.n_rows)
            area = abs(shoelace(clipped))
            full = abs(shoelace(xy))
            if area < full - 1e-9:
                n_partial += 1
            hull_area = hull_intersection_area(xy, 0.0, cam.n_cols, 0.0, cam.n_rows)
            worst["area_hull"] = max(worst["area_hull"], abs(hull_area - area))
            f = facing(p, cam)
            n_facing += f
            # facing <=> clockwise in (column, row)
            assert (shoelace(xy) < 0) == bool(f)
            # single-precision projected corners
            xyf = xy.astype(np.float32).astype(float)
            worst["float_xy"] = max(worst["float_xy"], np.max(np.abs(xyf - xy)))
            af = abs(shoelace(clip_rect(xyf, 0.0, cam.n_cols, 0.0, cam.n_rows)))
            worst["float_area"] = max(worst["float_area"], abs(af - area))

            lines.append("polygon %d %d %d %s" % (cam.ident, idx, k, " ".join(fmt(x) for x in p.ravel())))
            lines.append("projected %d %s" % (k, " ".join(fmt(x) for x in xy.ravel())))
            lines.append("clipped %d %s" % (len(clipped), " ".join(fmt(x) for x in clipped.ravel())))
            lines.append("area %s" % fmt(area))
            lines.append("facing %d" % f)
            if idx < N_PIXEL_LISTS:
                pix = pixel_areas(xy, cam.n_cols, cam.n_rows)
                worst["pixel_sum"] = max(worst["pixel_sum"], abs(sum(pix.values()) - area))
                for (row, col), s in pix.items():
                    h = hull_intersection_area(xy, col, col + 1, row, row + 1)
                    worst["pixel_hull"] = max(worst["pixel_hull"], abs(h - s))
                pixf = pixel_areas(xyf, cam.n_cols, cam.n_rows)
                for key in set(pix) | set(pixf):
                    worst["float_pixel"] = max(worst["float_pixel"], abs(pix.get(key, 0.0) - pixf.get(key, 0.0)))
                lines.append("pixels %d" % len(pix))
                for (row, col) in sorted(pix):
                    lines.append("pixel %d %d %s" % (row, col, fmt(pix[(row, col)])))

    mesh_rng = np.random.default_rng(SEED + 1)
    meshes = []
    cube_tris, cube_corners = make_cube(mesh_rng, cameras[0])
    cxy = cameras[0].project(cube_corners)
    assert cxy.min() > 0 and cxy[:, 0].max() < cameras[0].n_cols and cxy[:, 1].max() < cameras[0].n_rows
    meshes.append(("cube", cameras[0], cube_tris, cube_corners, True))
    grid_tris, grid_corners = make_grid(mesh_rng, cameras[2])
    gxy = hull(cameras[2].project(grid_corners))
    assert abs(shoelace(clip_rect(gxy, 0.0, cameras[2].n_cols, 0.0, cameras[2].n_rows))) < abs(shoelace(gxy)) - 1.0
    meshes.append(("grid", cameras[2], grid_tris, grid_corners, False))
    mesh_notes = []
    for name, cam, tris, corners, closed in meshes:
        faces = [facing(t, cam) for t in tris]
        for t, f in zip(tris, faces):
            assert (shoelace(cam.project(t)) < 0) == bool(f)
        cover, interior, sil_area = check_mesh(tris, cam, faces, corners, closed)
        mesh_notes.append("%s: %d triangles, %d facing, %d pixels, %d wholly inside, silhouette %.6f" % (
            name, len(tris), sum(faces), len(cover), interior, sil_area))
        lines.append("mesh %s %d %d" % (name, cam.ident, len(tris)))
        for i, (t, f) in enumerate(zip(tris, faces)):
            lines.append("triangle %d %s %d" % (i, " ".join(fmt(x) for x in t.ravel()), f))
        lines.append("coverage %d" % len(cover))
        for (row, col) in sorted(cover):
            lines.append("cell %d %d %s" % (row, col, fmt(cover[(row, col)])))

    assert worst["area_hull"] < 1e-9, worst
    assert worst["pixel_hull"] < 1e-9, worst
    assert worst["pixel_sum"] < 1e-9, worst

    header = [
        "# Polygons projected by cameras: pixel coordinates, clipped areas, per-pixel coverage.",
        "# Written by tests/polygons/projected_area_reference.py (numpy seed %d); see its docstring." % SEED,
        "# Pixel coordinates: x along columns, y along rows; pixel (row, col) is [col, col+1] x [row, row+1].",
        "# camera <id> px py pz chi phi theta n_cols n_rows fov_azimuth fov_elevation  (angles: radians; fov: degrees)",
        "# degrees <id> chi phi theta                        (the whole degrees the radians came from)",
        "# plane <id> pixel_e pixel_a first_e first_a         (derived, for checking)",
        "# matrix <id> w00 w01 w02 w10 w11 w12 w20 w21 w22    (world to view, row-major; derived)",
        "# polygon <camera> <index> <n> x0 y0 z0 ... (n world corners, in order)",
        "# projected <n> x0 y0 ...                           (pixel coordinates of the corners)",
        "# clipped <m> x0 y0 ...                             (the projection clipped to [0, n_cols] x [0, n_rows])",
        "# area <pixels^2>                                   (shoelace area of the clipped polygon)",
        "# facing <1|0>     (1: normal = -Newell vector normalised, normal . (corner0 - camera) < 0)",
        "# pixels <k>, then k lines: pixel <row> <col> <area>  (first 5 polygons per camera; area > 0 only)",
        "# mesh <cube|grid> <camera> <n_triangles>, then triangle <i> x0 y0 z0 x1 y1 z1 x2 y2 z2 <facing>,",
        "# then coverage <k> and k lines: cell <row> <col> <summed area of the facing triangles in the pixel>",
        "# Tolerances: 1e-9 on coordinates and areas for a double evaluation; with x, y held as floats",
        "# expect up to about 1e-5 on coordinates and 1e-4 on areas.",
    ]
    os.makedirs(os.path.dirname(OUT), exist_ok=True)
    with open(OUT, "w") as f:
        f.write("\n".join(header + lines) + "\n")
    print("wrote", os.path.normpath(OUT))
    print("polygons partly outside:", n_partial, "of", N_PER_CAMERA * len(cameras), "; facing:", n_facing)
    for note in mesh_notes:
        print(note)
    for key in sorted(worst):
        print("worst %-12s %.3g" % (key, worst[key]))
    return 0


if __name__ == "__main__":
    sys.exit(main())

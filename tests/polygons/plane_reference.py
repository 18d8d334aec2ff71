#!/usr/bin/python3
"""Reference planes and texture gradients for planar polygons.

Writes tests/data/polygons/plane_reference.txt (line format in its header).

How the numbers are made
------------------------
Each polygon is built in a plane chosen first: a unit normal n_b (random on the
sphere, nearly along a coordinate axis with a tilt of 1e-5 to 2e-2 rad, or exactly
along one), an orthonormal in-plane basis e1, e2 with e1 x e2 = n_b, and an offset
c with coordinates up to 300 m. A simple polygon is drawn in (x, y) of that basis:
convex ones on an ellipse at sorted parametric angles, non-convex ones star-shaped
(sorted angles, random radii) and kept only when some corner is reflex; every
polygon is checked to be simple (no two non-adjacent edges meet) and about half
of them have their order reversed. The 3-D vertices p = c + x e1 + y e2 are
rounded to doubles, and those doubles are the data.

The renderer's normal is minus the normalised Newell vector, so that it points to
the side from which the vertices run clockwise. It is derived here without the
Newell sums, from the vector area of the rounded vertices, V = 1/2 sum over the
fan from vertex 0 of (p_i - p_0) x (p_(i+1) - p_0), accumulated in 80-bit long
double: normal = -V / |V|, plane_d = -(normal . p_0). Three checks hold it to
1e-12: (1) the normal from the construction, -sign(A2) n_b with A2 the signed 2-D
area; (2) a least-squares plane (smallest singular vector of the centred vertices)
with its sign fixed by the vertex order through the sign of V; (3) a direct
evaluation of the Newell sums a, b, c in double, in edge order, and (-a, -b, -c)
normalised, started at every vertex and run both ways, since another
summation order is as good. Every vertex is checked to lie on the plane to
1e-9 m. The worst difference found is printed (about 1.3e-13).

Texture coordinates are an exact affine function of position in the plane:
g_u = alpha_u e1 + beta_u e2 (and g_v likewise), u_i = u0 + g_u . (p_i - p_0)
evaluated in long double and then rounded. So the in-plane gradient that
reproduces every vertex's (u, v) is unique and is g_u, g_v themselves.

The fit itself (normal equations over the differences from the first vertex in
the two kept axes, the dropped axis being that of the largest |normal| component,
and the row of the dropped axis replaced by the normal so that the gradient stays
in the plane) is evaluated in the script as a further check; it must give g_u,
g_v back to 1e-9 relative on every polygon, and it does when the kept rows hold
the full three-component sums.  A variant that also replaces the column of the
dropped axis with the normal (dropping the d_a d_c and d_b d_c sums from the kept
rows) does not reproduce the vertices of tilted planes; the script reports its
worst residual so that the difference is on record.

Three degenerate polygons end the file: three collinear points, two coincident
points and a third, and three equal points. Their coordinates are small integers
or halves so that the Newell sums are exactly 0.0 in double for any summation
order; the renderer then marks them not imaged, with normal (0, 0, 1) and
plane_d 0.

Tolerances: normal 1e-12 per component, plane_d 1e-9 m, gradients 1e-9 relative
to their length, fitted (u, v) at the vertices 1e-9 absolute.
"""

import os
import sys

import numpy as np

SEED = 20261125
N_POLYGONS = 40
HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "data", "polygons", "plane_reference.txt")

LD = np.longdouble


def fmt(x):
    return repr(float(x))


def basis_for(n):
    """Orthonormal e1, e2 with e1 x e2 = n."""
    helper = np.zeros(3)
    helper[int(np.argmin(np.abs(n)))] = 1.0
    e1 = np.cross(helper, n)
    e1 /= np.linalg.norm(e1)
    e2 = np.cross(n, e1)
    return e1, e2


def signed_area_2d(xy):
    x, y = xy[:, 0], xy[:, 1]
    return 0.5 * np.sum(x * np.roll(y, -1) - np.roll(x, -1) * y)


def segments_cross(p, q, r, s):
    """Closed segments pq and rs share a point."""

    def orient(a, b, c):
        return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])

    d1, d2 = orient(r, s, p), orient(r, s, q)
    d3, d4 = orient(p, q, r), orient(p, q, s)
    if ((d1 > 0) != (d2 > 0)) and ((d3 > 0) != (d4 > 0)) and d1 * d2 != 0 and d3 * d4 != 0:
        return True

    def on_seg(a, b, c):
        return (min(a[0], b[0]) <= c[0] <= max(a[0], b[0])
                and min(a[1], b[1]) <= c[1] <= max(a[1], b[1]))

    if d1 == 0 and on_seg(r, s, p):
        return True
    if d2 == 0 and on_seg(r, s, q):
        return True
    if d3 == 0 and on_seg(p, q, r):
        return True
    if d4 == 0 and on_seg(p, q, s):
        return True
    return False


def is_simple(xy):
    n = len(xy)
    for i in range(n):
        for j in range(i + 1, n):
            if j == i + 1 or (i == 0 and j == n - 1):
                continue
            if segments_cross(xy[i], xy[(i + 1) % n], xy[j], xy[(j + 1) % n]):
                return False
    return True


def is_convex(xy):
    n = len(xy)
    s = []
    for i in range(n):
        a, b, c = xy[i], xy[(i + 1) % n], xy[(i + 2) % n]
        s.append((b[0] - a[0]) * (c[1] - b[1]) - (b[1] - a[1]) * (c[0] - b[0]))
    s = np.array(s)
    return bool(np.all(s > 0) or np.all(s < 0))


def sorted_angles(rng, k):
    """k sorted angles with gaps of at least a quarter of the mean gap."""
    while True:
        t = np.sort(rng.uniform(0.0, 2.0 * np.pi, k))
        gaps = np.diff(np.concatenate([t, [t[0] + 2.0 * np.pi]]))
        if gaps.min() > 0.25 * 2.0 * np.pi / k:
            return t


def polygon_2d(rng, k, convex, size):
    while True:
        t = sorted_angles(rng, k)
        if convex:
            r1 = size
            r2 = size * rng.uniform(0.35, 1.0)
            xy = np.stack([r1 * np.cos(t), r2 * np.sin(t)], axis=1)
        else:
            r = size * rng.uniform(0.3, 1.0, k)
            xy = np.stack([r * np.cos(t), r * np.sin(t)], axis=1)
        rot = rng.uniform(0.0, 2.0 * np.pi)
        m = np.array([[np.cos(rot), -np.sin(rot)], [np.sin(rot), np.cos(rot)]])
        xy = xy @ m.T + rng.uniform(-0.3, 0.3, 2) * size
        if not is_simple(xy):
            continue
        if convex != is_convex(xy):
            continue
        if rng.uniform() < 0.5:
            xy = xy[::-1].copy()
        return xy


def newell_direct(p):
    """The renderer's sums, in double, edge after edge."""
    a = b = c = 0.0
    n = len(p)
    for i in range(n):
        j = (i + 1) % n
        xi, yi, zi = float(p[i][0]), float(p[i][1]), float(p[i][2])
        xj, yj, zj = float(p[j][0]), float(p[j][1]), float(p[j][2])
        a += (zi + zj) * (yi - yj)
        b += (xi + xj) * (zi - zj)
        c += (yi + yj) * (xi - xj)
    return a, b, c


def vector_area_ld(p):
    q = p.astype(LD)
    v = np.zeros(3, dtype=LD)
    for i in range(1, len(q) - 1):
        v += np.cross(q[i] - q[0], q[i + 1] - q[0])
    return v / 2


def texture_fit(p, uv, normal, full_rows):
    """Gradient fit over the kept axes with the dropped row set to the normal.

    full_rows: the kept rows hold the sums with the dropped axis (d_a d_c,
    d_b d_c); otherwise that column is replaced by the normal as well.
    """
    c = int(np.argmax(np.abs(normal)))
    a, b = [k for k in range(3) if k != c]
    s = np.zeros((3, 3))
    ru = np.zeros(3)
    rv = np.zeros(3)
    for i in range(1, len(p)):
        d = p[i] - p[0]
        du = uv[i][0] - uv[0][0]
        dv = uv[i][1] - uv[0][1]
        s[a][a] += d[a] * d[a]
        s[b][a] += d[a] * d[b]
        s[c][a] += d[a] * d[c]
        s[b][b] += d[b] * d[b]
        s[c][b] += d[b] * d[c]
        ru[a] += d[a] * du
        ru[b] += d[b] * du
        rv[a] += d[a] * dv
        rv[b] += d[b] * dv
    s[a][b] = s[b][a]
    s[a][c] = s[c][a]
    s[b][c] = s[c][b]
    s[c][:] = normal
    if not full_rows:
        s[:, c] = normal
    ru[c] = 0.0
    rv[c] = 0.0
    inv = np.linalg.inv(s)
    return inv @ ru, inv @ rv


def make_normal(rng, kind):
    if kind == "random":
        n = rng.normal(size=3)
        return n / np.linalg.norm(n), None
    axis = int(rng.integers(0, 3))
    sign = 1.0 if rng.uniform() < 0.5 else -1.0
    n = np.zeros(3)
    n[axis] = sign
    if kind == "axis":
        return n, axis
    tilt = 10.0 ** rng.uniform(-5.0, np.log10(2e-2))
    t = rng.normal(size=3)
    t[axis] = 0.0
    t /= np.linalg.norm(t)
    n = np.cos(tilt) * n + np.sin(tilt) * t
    return n / np.linalg.norm(n), None


def main():
    rng = np.random.default_rng(SEED)
    records = []
    worst = {"newell": 0.0, "svd": 0.0, "construct": 0.0, "plane": 0.0,
             "fit": 0.0, "fit_uv": 0.0, "variant_uv": 0.0}
    # plane kinds: mostly random, some nearly aligned, two exactly aligned
    kinds = (["random"] * 28) + (["near"] * 10) + (["axis"] * 2)
    rng.shuffle(kinds)
    for idx in range(N_POLYGONS):
        kind = kinds[idx]
        k = int(rng.integers(3, 13))
        convex = True if k == 3 else bool(rng.uniform() < 0.5)
        size = 10.0 ** rng.uniform(np.log10(0.5), np.log10(50.0))
        nb, axis = make_normal(rng, kind)
        if axis is None:
            e1, e2 = basis_for(nb)
        else:
            others = [m for m in range(3) if m != axis]
            e1 = np.zeros(3)
            e1[others[0]] = 1.0
            e2 = np.cross(nb, e1)
        assert abs(np.dot(np.cross(e1, e2), nb) - 1.0) < 1e-14
        centre = rng.uniform(-300.0, 300.0, 3)
        xy = polygon_2d(rng, k, convex, size)
        p = centre[None, :] + xy[:, 0:1] * e1[None, :] + xy[:, 1:2] * e2[None, :]
        if axis is not None:
            p[:, axis] = centre[axis]  # exactly planar on an axis plane

        # the renderer's normal, from the vector area in long double
        va = vector_area_ld(p)
        normal_ld = -va / np.sqrt(np.sum(va * va))
        normal = normal_ld.astype(float)
        plane_d = float(-np.sum(normal_ld * p[0].astype(LD)))

        # check 1: the construction
        a2 = signed_area_2d(xy)
        n_construct = -np.sign(a2) * nb
        worst["construct"] = max(worst["construct"], np.max(np.abs(n_construct - normal)))
        # check 2: least-squares plane, sign by vertex order
        centred = p - p.mean(axis=0)
        _, _, vt = np.linalg.svd(centred)
        n_svd = vt[2] * (1.0 if np.dot(vt[2], va.astype(float)) < 0 else -1.0)
        worst["svd"] = max(worst["svd"], np.max(np.abs(n_svd - normal)))
        # check 3: the Newell sums evaluated directly
        a, b, c = newell_direct(p)
        nn = -np.array([a, b, c])
        nn /= np.linalg.norm(nn)
        worst["newell"] = max(worst["newell"], np.max(np.abs(nn - normal)))
        # the same sums started at every vertex and run both ways (a reversed
        # run flips the sign), as another summation order would give them
        for shift in range(k):
            for back in (False, True):
                q = np.roll(p, -shift, axis=0)
                q = q[::-1] if back else q
                a, b, c = newell_direct(q)
                nq = np.array([a, b, c]) * (1.0 if back else -1.0)
                nq /= np.linalg.norm(nq)
                worst["newell"] = max(worst["newell"], np.max(np.abs(nq - normal)))
        # every vertex on the plane
        worst["plane"] = max(worst["plane"], np.max(np.abs(p @ normal + plane_d)))

        # texture: exact affine in the plane
        scale = 1.0 / size
        gu = (rng.uniform(-1, 1) * e1 + rng.uniform(-1, 1) * e2) * scale
        gv = (rng.uniform(-1, 1) * e1 + rng.uniform(-1, 1) * e2) * scale
        u0 = rng.uniform(-2.0, 2.0)
        v0 = rng.uniform(-2.0, 2.0)
        dp = (p - p[0]).astype(LD)
        u = (LD(u0) + dp @ gu.astype(LD)).astype(float)
        v = (LD(v0) + dp @ gv.astype(LD)).astype(float)
        u[0], v[0] = u0, v0
        uv = np.stack([u, v], axis=1)

        fu, fv = texture_fit(p, uv, normal, True)
        worst["fit"] = max(worst["fit"],
                           np.max(np.abs(fu - gu)) / np.linalg.norm(gu),
                           np.max(np.abs(fv - gv)) / np.linalg.norm(gv))
        worst["fit_uv"] = max(worst["fit_uv"],
                              np.max(np.abs(u0 + (p - p[0]) @ fu - u)),
                              np.max(np.abs(v0 + (p - p[0]) @ fv - v)))
        wu, wv = texture_fit(p, uv, normal, False)
        worst["variant_uv"] = max(worst["variant_uv"],
                                  np.max(np.abs(u0 + (p - p[0]) @ wu - u)),
                                  np.max(np.abs(v0 + (p - p[0]) @ wv - v)))

        shape = "convex" if convex else "nonconvex"
        records.append({
            "index": idx, "kind": kind + "_" + shape, "p": p, "uv": uv,
            "normal": normal, "plane_d": plane_d, "valid": 1,
            "gu": gu, "gv": gv, "u0": u0, "v0": v0,
            "axis": int(np.argmax(np.abs(normal))),
        })

    # degenerate polygons: the Newell sums are exactly zero in double
    degenerate = [
        ("degenerate_collinear", np.array([[1.0, 2.0, 3.0], [3.0, 5.0, 7.0], [6.0, 9.5, 13.0]])),
        ("degenerate_coincident", np.array([[4.0, -2.0, 7.5], [4.0, -2.0, 7.5], [-3.0, 8.0, 1.0]])),
        ("degenerate_all_equal", np.array([[12.5, -40.0, 3.0], [12.5, -40.0, 3.0], [12.5, -40.0, 3.0]])),
    ]
    for j, (kind, p) in enumerate(degenerate):
        a, b, c = newell_direct(p)
        assert (a, b, c) == (0.0, 0.0, 0.0), (kind, a, b, c)
        assert np.all(vector_area_ld(p) == 0)
        for perm in ([0, 1, 2], [1, 2, 0], [2, 0, 1], [2, 1, 0]):
            assert newell_direct(p[perm]) == (0.0, 0.0, 0.0)
        uv = np.array([[0.0, 0.0], [0.5, 0.25], [1.0, 0.5]])
        records.append({
            "index": N_POLYGONS + j, "kind": kind, "p": p, "uv": uv,
            "normal": np.array([0.0, 0.0, 1.0]), "plane_d": 0.0, "valid": 0,
            "gu": np.zeros(3), "gv": np.zeros(3), "u0": 0.0, "v0": 0.0, "axis": 2,
        })

    assert worst["construct"] < 1e-12, worst
    assert worst["svd"] < 1e-12, worst
    assert worst["newell"] < 1e-12, worst
    assert worst["plane"] < 1e-9, worst
    assert worst["fit"] < 1e-9, worst
    assert worst["fit_uv"] < 1e-9, worst

    os.makedirs(os.path.dirname(OUT), exist_ok=True)
    with open(OUT, "w") as f:
        f.write("# Planar polygons: normal, plane offset and texture gradients.\n")
        f.write("# Written by tests/polygons/plane_reference.py (numpy seed %d); see its docstring.\n" % SEED)
        f.write("# Per polygon, in this order:\n")
        f.write("#   polygon <index> <kind> <n_vertices>\n")
        f.write("#   vertex x y z u v              (n_vertices lines, in polygon order)\n")
        f.write("#   normal nx ny nz plane_d\n")
        f.write("#   valid <1|0>                   (0: points on a line; normal 0 0 1, plane_d 0, not imaged)\n")
        f.write("#   axis <k>                      (0, 1, 2: the axis of the largest |normal| component)\n")
        f.write("#   gradients gux guy guz gvx gvy gvz u0 v0   (zeros when valid is 0)\n")
        f.write("#   end\n")
        f.write("# normal = -(a, b, c) / |(a, b, c)| with the Newell sums a, b, c over edges i -> i+1;\n")
        f.write("# plane_d = -(normal . first vertex); u = u0 + g_u . (p - first vertex), likewise v.\n")
        f.write("# Tolerances: normal 1e-12, plane_d 1e-9, gradients 1e-9 relative, fitted u, v 1e-9.\n")
        for r in records:
            p, uv = r["p"], r["uv"]
            f.write("polygon %d %s %d\n" % (r["index"], r["kind"], len(p)))
            for i in range(len(p)):
                f.write("vertex %s %s %s %s %s\n" % (fmt(p[i][0]), fmt(p[i][1]), fmt(p[i][2]),
                                                     fmt(uv[i][0]), fmt(uv[i][1])))
            n = r["normal"]
            f.write("normal %s %s %s %s\n" % (fmt(n[0]), fmt(n[1]), fmt(n[2]), fmt(r["plane_d"])))
            f.write("valid %d\n" % r["valid"])
            f.write("axis %d\n" % r["axis"])
            g = list(r["gu"]) + list(r["gv"]) + [r["u0"], r["v0"]]
            f.write("gradients %s\n" % " ".join(fmt(x) for x in g))
            f.write("end\n")

    kinds_written = {}
    for r in records:
        kinds_written[r["kind"]] = kinds_written.get(r["kind"], 0) + 1
    print("wrote", os.path.normpath(OUT), len(records), "polygons")
    print("kinds:", kinds_written)
    for key in sorted(worst):
        print("worst %-10s %.3g" % (key, worst[key]))
    return 0


if __name__ == "__main__":
    sys.exit(main())

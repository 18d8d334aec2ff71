#!/usr/bin/python3
"""Reference cells of the sea's radiance and reflection tables.

A pixel of sea sees a resolved facet (its slope comes from the lattice) and,
below the lattice's resolution, a Gaussian spread of unresolved slopes of
per-component width g.  The engine averages the surface's radiance and its
reflectance over those unresolved slopes once, into tables indexed by

  t  where the facet's cosine c lies between its two possible limits lo, hi
     (16 nodes, 0.1 .. 0.995);
  s  the resolved facet's squared slope (15 nodes, 0 .. 9 * slope_resolved^2);
  m  the cosine of the view's zenith, m = -(ray z): 9 nodes 0.005 .. 0.995
     seen from above the water, 36 nodes -0.995 .. -0.005 from below.

Every axis node is first + index * step with step = (last - first) /
(nodes - 1).  This script recomputes chosen cells with the same arithmetic the
engine is meant to use, so that its tables can be checked cell by cell:

Limits of the facet cosine for view cosine m and squared slope s:
  e = sqrt((1 - m^2) s)  (0 when m^2 >= 1),  f = sqrt(s + 1),
  lo = (m - e) / f, hi = (m + e) / f; from above each is raised to 0 when
  negative, from below each is lowered to 0 when positive.
  Cell (t, s, m) integrates at c = (hi - lo) t + lo.

Average over unresolved slopes at (c, s, m):
  w = sqrt(1 - m^2), p0 = (c sqrt(s + 1) - m) / w; q0 = sqrt(s - p0^2) when
  p0^2 <= s, otherwise p0 = sqrt(s) and q0 = 0.  T = w / |m| (w / 1e-05 when
  |m| < 1e-05).  For u = -3.0 + 0.1 i (i = 0..70), outer loop, and
  v = -3.0 + 0.2 j (j = 0..30), inner loop: p = u g + p0, the row is skipped
  when 1 + T p <= 0; q = v g + q0; weight = (1 + T p) exp(-u^2/2) exp(-v^2/2)
  (visibility and projected area times the Gaussian); S = p^2 + q^2;
  k = (p w + m) / sqrt(S + 1).  The cell is sum(weight * value) / sum(weight),
  or 0 when the weight sum is not positive.

Value integrated for the radiance table, with R = fresnel(-k),
z = 2 k / sqrt(S + 1) - m (zenith cosine of the mirrored ray) and
L = mean sky radiance at z:
  from above: (1 - R) upwelling + R L;  from below: R upwelling + (1 - R) L.
Value integrated for the reflection table: R when z > 0, else 0 (the weight is
still counted), from either side.

fresnel(x) looks up linearly a 201-node table over [-1, 1] (node c_i =
-1 + 0.01 i), clamped to the end nodes.  Its nodes hold the engine's own
angle-difference form with pi written 3.1415926535: a = acos(c), index n for
c <= 0 and 1/n for c > 0; q = sin(3.1415926535 - a) / index, 1 when q >= 1;
b = asin(q) for a <= 1.57079632675, else 3.1415926535 - asin(q);
R = ((1 - index) / (1 + index))^2 when |3.1415926535 - a| or |a| < 0.001, else
0.5 (sin^2(b - a) / sin^2(b + a) + tan^2(b - a) / tan^2(b + a)), capped at 1.
The mean sky radiance is a 201-node table over z in [-1, 1], looked up the
same way with z clamped.

Output: tests/data/ocean/facet_table_cells.txt.  Lines "# ..." are comments.
Each case is
  case <side> <n> <upwelling> <g> <slope_resolved>
  sky <201 values of the mean sky radiance at z = -1 + 0.01 i>
  cells <K>
  K lines: <t_index> <s_index> <m_index> <radiance_cell> <reflection_cell>
with doubles written %.17g.
"""

import math
import os
import sys

import numpy as np

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import fresnel_reference  # noqa: E402  (textbook reflectance for a cross-check)

PI = 3.1415926535
HALF_PI_LIMIT = 1.57079632675

TABLE_NODES = 201
TABLE_FIRST = -1.0
TABLE_LAST = 1.0

T_AXIS = (16, 0.1, 0.995)
S_NODES = 15
M_ABOVE = (9, 0.005, 0.995)
M_BELOW = (36, -0.995, -0.005)

CELLS_PER_CASE = 40


class Axis(object):
    def __init__(self, nodes, first, last):
        self.nodes = nodes
        self.first = first
        self.last = last
        self.step = (last - first) / (nodes - 1)
        self.inv_step = 1.0 / self.step

    def value(self, i):
        return self.first + i * self.step


def fresnel_by_angles(a, index):
    """The engine's angle-difference form for incidence angle a (radians)."""
    q = math.sin(PI - a) / index
    if q >= 1.0:
        return 1.0
    if a <= HALF_PI_LIMIT:
        b = math.asin(q)
    else:
        b = PI - math.asin(q)
    if abs(PI - a) < 0.001 or abs(a) < 0.001:
        return (1.0 - index) ** 2 / (index + 1.0) ** 2
    r = 0.5 * (math.sin(b - a) ** 2 / math.sin(b + a) ** 2 +
               math.tan(b - a) ** 2 / math.tan(b + a) ** 2)
    return min(r, 1.0)


def fresnel_nodes(n):
    axis = Axis(TABLE_NODES, TABLE_FIRST, TABLE_LAST)
    out = np.zeros(TABLE_NODES)
    for i in range(TABLE_NODES):
        c = axis.value(i)
        index = 1.0 / n if c > 0.0 else n
        out[i] = fresnel_by_angles(math.acos(c), index)
    return out


def linear_lookup(table, axis, x):
    """Linear interpolation over the axis nodes, clamped at both ends."""
    r = (x - axis.first) * axis.inv_step
    if r <= 0.0:
        return float(table[0])
    if r >= axis.nodes - 1:
        return float(table[axis.nodes - 1])
    i = int(math.floor(r))
    if i > axis.nodes - 2:
        i = axis.nodes - 2
    f = r - i
    return float(table[i]) * (1.0 - f) + float(table[i + 1]) * f


def facet_limits(m, s, side):
    e = math.sqrt((1.0 - m * m) * s) if m * m < 1.0 else 0.0
    f = math.sqrt(s + 1.0)
    lo = (m - e) / f
    hi = (m + e) / f
    if side > 0:
        lo = max(lo, 0.0)
        hi = max(hi, 0.0)
    else:
        lo = min(lo, 0.0)
        hi = min(hi, 0.0)
    return lo, hi


class Sea(object):
    """One case: side, index, upwelling, unresolved width and sky table."""

    def __init__(self, side, n, upwelling, g, slope_resolved, sky):
        self.side = side
        self.n = n
        self.upwelling = upwelling
        self.g = g
        self.slope_resolved = slope_resolved
        self.sky = np.asarray(sky, dtype=float)
        self.table_axis = Axis(TABLE_NODES, TABLE_FIRST, TABLE_LAST)
        self.fresnel_table = fresnel_nodes(n)
        self.t_axis = Axis(*T_AXIS)
        self.s_axis = Axis(S_NODES, 0.0, 9.0 * slope_resolved * slope_resolved)
        self.m_axis = Axis(*(M_ABOVE if side > 0 else M_BELOW))

    def fresnel(self, x):
        return linear_lookup(self.fresnel_table, self.table_axis, x)

    def sky_mean(self, z):
        return linear_lookup(self.sky, self.table_axis, z)

    def local_values(self, k, big_s, m):
        r = self.fresnel(-k)
        z = 2.0 * k / math.sqrt(big_s + 1.0) - m
        sky = self.sky_mean(z)
        if self.side > 0:
            radiance = (1.0 - r) * self.upwelling + r * sky
        else:
            radiance = r * self.upwelling + (1.0 - r) * sky
        reflection = r if z > 0.0 else 0.0
        return radiance, reflection

    def facet_average(self, c, s, m):
        """(radiance, reflection) averaged over the unresolved slopes."""
        w = math.sqrt(1.0 - m * m)
        p0 = (c * math.sqrt(s + 1.0) - m) / w
        if p0 * p0 <= s:
            q0 = math.sqrt(s - p0 * p0)
        else:
            p0 = math.sqrt(s)
            q0 = 0.0
        if abs(m) < 1e-05:
            tv = w / 1e-05
        else:
            tv = w / abs(m)
        g = self.g
        sum_w = 0.0
        sum_rad = 0.0
        sum_refl = 0.0
        for i in range(71):
            u = -3.0 + 0.1 * i
            p = u * g + p0
            if not (1.0 + tv * p > 0.0):
                continue
            for j in range(31):
                v = -3.0 + 0.2 * j
                q = v * g + q0
                weight = (1.0 + tv * p) * math.exp(-u * u / 2.0) * math.exp(-v * v / 2.0)
                big_s = p * p + q * q
                k = (p * w + m) / math.sqrt(big_s + 1.0)
                rad, refl = self.local_values(k, big_s, m)
                sum_rad += weight * rad
                sum_refl += weight * refl
                sum_w += weight
        if not (sum_w > 0.0):
            return 0.0, 0.0
        return sum_rad / sum_w, sum_refl / sum_w

    def cell(self, ti, si, mi):
        t = self.t_axis.value(ti)
        s = self.s_axis.value(si)
        m = self.m_axis.value(mi)
        lo, hi = facet_limits(m, s, self.side)
        c = (hi - lo) * t + lo
        return self.facet_average(c, s, m)

    def cell_vectorised(self, ti, si, mi):
        """The same cell by whole-grid numpy arithmetic, for a cross-check."""
        t = self.t_axis.value(ti)
        s = self.s_axis.value(si)
        m = self.m_axis.value(mi)
        lo, hi = facet_limits(m, s, self.side)
        c = (hi - lo) * t + lo
        w = math.sqrt(1.0 - m * m)
        p0 = (c * math.sqrt(s + 1.0) - m) / w
        if p0 * p0 <= s:
            q0 = math.sqrt(s - p0 * p0)
        else:
            p0, q0 = math.sqrt(s), 0.0
        tv = w / max(abs(m), 1e-05)
        u = -3.0 + 0.1 * np.arange(71)
        v = -3.0 + 0.2 * np.arange(31)
        uu, vv = np.meshgrid(u, v, indexing="ij")
        p = uu * self.g + p0
        q = vv * self.g + q0
        keep = (1.0 + tv * p) > 0.0
        weight = np.where(keep, (1.0 + tv * p) * np.exp(-uu ** 2 / 2) * np.exp(-vv ** 2 / 2), 0.0)
        big_s = p * p + q * q
        k = (p * w + m) / np.sqrt(big_s + 1.0)
        ax = self.table_axis
        r = np.interp(-k, ax.first + ax.step * np.arange(ax.nodes), self.fresnel_table)
        z = 2.0 * k / np.sqrt(big_s + 1.0) - m
        sky = np.interp(z, ax.first + ax.step * np.arange(ax.nodes), self.sky)
        if self.side > 0:
            rad = (1.0 - r) * self.upwelling + r * sky
        else:
            rad = r * self.upwelling + (1.0 - r) * sky
        refl = np.where(z > 0.0, r, 0.0)
        total = weight.sum()
        if not total > 0.0:
            return 0.0, 0.0
        return (weight * rad).sum() / total, (weight * refl).sum() / total


def sky_nodes(kind):
    z = TABLE_FIRST + (TABLE_LAST - TABLE_FIRST) / (TABLE_NODES - 1) * np.arange(TABLE_NODES)
    out = np.zeros(TABLE_NODES)
    for i, zi in enumerate(z):
        if kind == "bright_horizon":
            # Brighter towards the zenith, dim and fading to black below.
            out[i] = 1.0 + 3.0 * zi * zi if zi > 0.0 else 0.2 * (1.0 + zi) ** 2
        else:
            # Brightest at the horizon, darker overhead, a faint floor below.
            out[i] = 2.5 - 1.5 * zi if zi > 0.0 else 0.1 + 0.4 * (1.0 + zi)
    return out


CASES = [
    # side, n, upwelling, g, slope_resolved, sky, sampling seed
    (1, 1.34, 0.02, 0.06, 0.12, "bright_horizon", 11),
    (1, 1.34, 0.02, 0.11, 0.12, "bright_horizon", 12),
    (-1, 1.34, 0.3, 0.06, 0.12, "bright_horizon", 13),
    (-1, 1.34, 0.3, 0.11, 0.12, "bright_horizon", 14),
    (1, 1.5, 0.05, 0.08, 0.2, "dim_zenith", 15),
    (-1, 1.5, 0.4, 0.08, 0.2, "dim_zenith", 16),
]


def sample_cells(sea, seed):
    """40 cells that between them visit every node of every axis once or
    more; the corners of the table are forced in."""
    rng = np.random.RandomState(seed)
    nt, ns, nm = sea.t_axis.nodes, sea.s_axis.nodes, sea.m_axis.nodes
    pt, ps, pm = rng.permutation(nt), rng.permutation(ns), rng.permutation(nm)
    chosen = []
    for corner in ((0, 0, 0), (nt - 1, ns - 1, nm - 1), (0, ns - 1, nm - 1), (nt - 1, 0, 0)):
        chosen.append(corner)
    k = 0
    while len(chosen) < CELLS_PER_CASE:
        cell = (int(pt[k % nt]), int(ps[k % ns]), int(pm[k % nm]))
        if cell not in chosen:
            chosen.append(cell)
        k += 1
    for axis_nodes, which in ((nt, 0), (ns, 1), (nm, 2)):
        assert set(c[which] for c in chosen) == set(range(axis_nodes))
    assert any(c[1] == 0 for c in chosen)
    return sorted(chosen)


def self_check():
    # The engine's angle form of the reflectance agrees with the textbook.
    for n in (1.34, 1.5):
        nodes = fresnel_nodes(n)
        for i in range(TABLE_NODES):
            c = fresnel_reference.node_cosine(i)
            ref = fresnel_reference.unpolarised_reflectance(c, n)
            assert abs(nodes[i] - ref) < 1e-8, (n, i, nodes[i], ref)
    # A uniform sky as bright as the upwelling light makes every radiance
    # cell that brightness, whatever the reflectance.
    for side in (1, -1):
        sea = Sea(side, 1.34, 0.7, 0.09, 0.15, np.full(TABLE_NODES, 0.7))
        for cell in ((0, 0, 0), (5, 7, 3), (15, 14, sea.m_axis.nodes - 1)):
            rad, _ = sea.cell(*cell)
            assert abs(rad - 0.7) < 1e-13, (side, cell, rad)
    # With a vanishing unresolved width and a flat resolved facet, a cell is
    # the flat surface's value: from above, reflectance fresnel(-m) of the sky
    # at z = m plus the transmitted upwelling.
    sky = sky_nodes("bright_horizon")
    sea = Sea(1, 1.34, 0.02, 1e-9, 0.12, sky)
    for mi in range(sea.m_axis.nodes):
        m = sea.m_axis.value(mi)
        r = sea.fresnel(-m)
        rad, refl = sea.cell(3, 0, mi)
        assert abs(rad - ((1.0 - r) * 0.02 + r * sea.sky_mean(m))) < 1e-8
        assert abs(refl - r) < 1e-8
    # At s = 0 the limits collapse and t does not matter.
    sea = Sea(-1, 1.34, 0.3, 0.06, 0.12, sky)
    for mi in (0, 17, 35):
        lo, hi = facet_limits(sea.m_axis.value(mi), 0.0, -1)
        assert lo == hi
        assert sea.cell(0, 0, mi) == sea.cell(15, 0, mi)
    # The loop and the whole-grid evaluations agree.
    for params in CASES:
        side, n, up, g, sr, kind, seed = params
        sea = Sea(side, n, up, g, sr, sky_nodes(kind))
        for cell in sample_cells(sea, seed)[::7]:
            a = sea.cell(*cell)
            b = sea.cell_vectorised(*cell)
            assert abs(a[0] - b[0]) < 1e-12 and abs(a[1] - b[1]) < 1e-12, (params, cell, a, b)


def main():
    self_check()
    here = os.path.dirname(os.path.abspath(__file__))
    out_path = os.path.normpath(os.path.join(here, "..", "data", "ocean", "facet_table_cells.txt"))
    lines = [
        "# Radiance and reflection table cells of the sea, averaged over the",
        "# unresolved slopes; written by tests/ocean/facet_table_reference.py.",
        "# Axes (node = first + index * (last - first) / (nodes - 1)):",
        "#   t 16 nodes 0.1 .. 0.995; s 15 nodes 0 .. 9 * slope_resolved^2;",
        "#   m 9 nodes 0.005 .. 0.995 above (side 1), 36 nodes -0.995 .. -0.005",
        "#   below (side -1).",
        "# Per case: 'case <side> <n> <upwelling> <g> <slope_resolved>', then one",
        "# line 'sky' followed on the same line by the mean sky radiance at the",
        "# 201 nodes z = -1 + 0.01 i, then 'cells <K>' and K lines",
        "# '<t_index> <s_index> <m_index> <radiance_cell> <reflection_cell>'.",
        "# The reflectance table nodes are the Fresnel reflectance of index n",
        "# (c <= 0) or 1/n (c > 0) at cosines c = -1 + 0.01 i.",
    ]
    for params in CASES:
        side, n, up, g, sr, kind, seed = params
        sky = sky_nodes(kind)
        sea = Sea(side, n, up, g, sr, sky)
        cells = sample_cells(sea, seed)
        lines.append("case %d %.17g %.17g %.17g %.17g" % (side, n, up, g, sr))
        lines.append("sky " + " ".join("%.17g" % x for x in sky))
        lines.append("cells %d" % len(cells))
        for ti, si, mi in cells:
            rad, refl = sea.cell(ti, si, mi)
            lines.append("%d %d %d %.17g %.17g" % (ti, si, mi, rad, refl))
    with open(out_path, "w") as f:
        f.write("\n".join(lines) + "\n")
    print("wrote %s (%d cases)" % (out_path, len(CASES)))
    return 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3
"""Reference values for the disturbed sea lattice (TCDisturbed_grid).

Builds one fixed scene - a periodic primary lattice with crest cusps and a
round-surface drop, four detail lattices (rotated additive, multiplying,
periodic additive, additive radial) and one mirror line - samples the
holder's height_at and slope_at (keep_flat 0) at random points, and writes
tests/data/disturbances/holder_points.txt for the C++ test that compares
against it.

The model is written straight from the behaviour of the holder, one scalar
point at a time, and shares no code with the engine:

  height(x, y) = M * (lattice + A) + z_offset
      lattice : bilinear over the primary floats at ((x + offset_x) / dx,
                (y + offset_y) / dy); corners wrap on both axes.
      A       : sum of the additive details, M : product of the multiplying
                details, each sampled in its own frame u = x + off_x,
                v = y + off_y, turned by u' = u c - v s, v' = v c + u s
                with c = cos(a), s = sin(-a) when the detail is rotated.
      Cartesian details are bilinear; outside a non-periodic detail a corner
      counts 0 (additive) or 1 (multiplying); periodic details wrap.
      Radial details: r = |(u, v)|, linear in f[i] at radius i * dx while
      r < (n_x - 1) * dx, else 0 (additive) or 1 (multiplying).
  + for each mirror line: the same sum at the mirror point
      p' = 2 ((p - p0) . n) n + 2 p0 - p, n = (cos, sin) of the line angle,
      without z_offset (one reflection deep).
  then the crest cusp h += cusp_factor * (h - z_offset)^2,
  then the round drop h -= 0.5 (x^2 + y^2) / radius.

  slope(x, y) = M * (lattice slope + additive detail slopes), plus each
  mirror's slope at p' reflected back (q = sx nx + sy ny, s'' = 2 q n - s),
  then the cusp factor (1 + 2 cusp_factor (h0 - z_offset)), then the round
  curvature (-x / radius, -y / radius).
      lattice slope: backward node differences over L = slope_step cells
      (wrapped), averaged bilinearly at a half-step shift along the
      differenced axis so that the difference is centred.
      cartesian detail: the same with step S = trunc(L * dx / detail_dx) + 1;
      on a non-periodic detail a node with i < 0, i - S >= n_x, j < 0 or
      j - S >= n_y gives 0 and 0, otherwise its indices are clamped to the
      array and the divisor is kept.
      radial detail: backward differences of the radial profile over
      delta = L * dx (primary spacing), zero beyond the last radius.
      rotated details turn the slope back: sx' = sx c + sy s,
      sy' = sy c - sx s.

Choices made where the behaviour leaves room:
  * A cartesian detail has a single step S, computed from the x spacings.
    Along v it is applied with the detail's own dy: divisor S * detail_dy and
    sampling shift 0.5 * S * detail_dy, which keeps the difference centred as
    on the primary lattice.  The divisor of a clamped stencil is S times the
    detail's spacing on that axis.
  * The zero-slope test of a non-periodic detail node is applied to the node
    as a whole: a node failing it gives zero for both slopes.
  * h0 in the cusp correction of the slope is the holder's full height at
    the given point (details and mirror included) without cusps and without
    the round drop.
  * Multiplying details add no slope of their own (their gradient is left
    out); the multiplier M at the point scales lattice and additive slopes.
  * Stored arrays are rounded to float32 once; every operation on them is in
    double.  Point coordinates are doubles.

Run with /usr/bin/python3 from anywhere; the fixture path is taken relative
to this file.
"""

import math
import os

import numpy as np

SEED = 20261125
N_POINTS = 3000
DEG = 0.017453292519444445


class Detail:
    def __init__(self, mode, periodic, rotated, angle, n_x, n_y, dx, dy,
                 off_x, off_y, values):
        self.mode = mode
        self.periodic = periodic
        self.rotated = rotated
        self.angle = angle
        self.n_x = n_x
        self.n_y = n_y
        self.dx = dx
        self.dy = dy
        self.off_x = off_x
        self.off_y = off_y
        self.values = np.asarray(values, dtype=np.float32)
        self.c = math.cos(angle)
        self.s = math.sin(-angle)

    def f(self, i, j):
        return float(self.values[i + self.n_x * j])

    def is_multiplier(self):
        return self.mode in (2, 3)

    def is_radial(self):
        return self.mode in (1, 3)

    def coords(self, x, y):
        u = x + self.off_x
        v = y + self.off_y
        if self.rotated:
            return u * self.c - v * self.s, v * self.c + u * self.s
        return u, v

    def radial_profile(self, r, beyond):
        # Linear in the stored row, f[i] at radius i * dx.
        if r < (self.n_x - 1) * self.dx:
            s = r / self.dx
            i = math.floor(s)
            w = 1.0 - (s - i)
            return self.f(i, 0) * w + (1.0 - w) * self.f(i + 1, 0)
        return beyond

    def value(self, x, y):
        u, v = self.coords(x, y)
        if self.is_radial():
            return self.radial_profile(math.sqrt(u * u + v * v),
                                       1.0 if self.is_multiplier() else 0.0)
        outside = 1.0 if self.is_multiplier() else 0.0
        total = 0.0
        for i, j, w in bilinear(u / self.dx, v / self.dy):
            if self.periodic:
                total += w * self.f(i % self.n_x, j % self.n_y)
            elif 0 <= i < self.n_x and 0 <= j < self.n_y:
                total += w * self.f(i, j)
            else:
                total += w * outside
        return total

    def node_slope(self, i, j, step):
        """Backward differences at a node, in the detail's own frame."""
        nx, ny = self.n_x, self.n_y
        if self.periodic:
            i0, im = i % nx, (i - step) % nx
            j0, jm = j % ny, (j - step) % ny
        else:
            if i < 0 or i - step >= nx or j < 0 or j - step >= ny:
                return 0.0, 0.0
            i0, im = clamp(i, nx), clamp(i - step, nx)
            j0, jm = clamp(j, ny), clamp(j - step, ny)
        sx = (self.f(i0, j0) - self.f(im, j0)) / (step * self.dx)
        sy = (self.f(i0, j0) - self.f(i0, jm)) / (step * self.dy)
        return sx, sy

    def slope(self, x, y, lattice_dx, level_step):
        """Slope of an additive detail, turned back to world axes."""
        u, v = self.coords(x, y)
        if self.is_radial():
            if math.sqrt(u * u + v * v) < (self.n_x - 1) * self.dx:
                delta = level_step * lattice_dx
                f0 = self.radial_profile(math.sqrt(u * u + v * v), 0.0)
                f1 = self.radial_profile(math.sqrt((u - delta) ** 2 + v * v),
                                         0.0)
                f2 = self.radial_profile(math.sqrt((v - delta) ** 2 + u * u),
                                         0.0)
                sx, sy = (f0 - f1) / delta, (f0 - f2) / delta
            else:
                sx, sy = 0.0, 0.0
        else:
            step = math.trunc(level_step * lattice_dx / self.dx) + 1
            sx = 0.0
            for i, j, w in bilinear((u + 0.5 * step * self.dx) / self.dx,
                                    v / self.dy):
                sx += w * self.node_slope(i, j, step)[0]
            sy = 0.0
            for i, j, w in bilinear(u / self.dx,
                                    (v + 0.5 * step * self.dy) / self.dy):
                sy += w * self.node_slope(i, j, step)[1]
        if self.rotated:
            sx, sy = sx * self.c + sy * self.s, sy * self.c - sx * self.s
        return sx, sy


def clamp(i, n):
    return min(max(i, 0), n - 1)


def bilinear(a, b):
    """Corners and weights, in the order (i,j) (i,j+1) (i+1,j) (i+1,j+1)."""
    i = math.floor(a)
    j = math.floor(b)
    f = a - i
    g = b - j
    return ((i, j, (1.0 - f) * (1.0 - g)), (i, j + 1, (1.0 - f) * g),
            (i + 1, j, f * (1.0 - g)), (i + 1, j + 1, f * g))


class Holder:
    def __init__(self, lattice, heights, details, lines):
        self.__dict__.update(lattice)
        self.heights = np.asarray(heights, dtype=np.float32)
        self.details = details
        # Each line: x0, y0, angle; the unit direction is stored once.
        self.lines = [(x0, y0, math.cos(a), math.sin(a)) for x0, y0, a in lines]

    def h(self, i, j):
        return float(self.heights[i % self.n_x + self.n_x * (j % self.n_y)])

    def lattice_height(self, x, y):
        a = (x + self.offset_x) / self.dx
        b = (y + self.offset_y) / self.dy
        return sum(w * self.h(i, j) for i, j, w in bilinear(a, b))

    def lattice_node_slope(self, i, j):
        s = self.slope_step
        sx = (self.h(i, j) - self.h(i - s, j)) / (s * self.dx)
        sy = (self.h(i, j) - self.h(i, j - s)) / (s * self.dy)
        return sx, sy

    def lattice_slope(self, x, y):
        s = self.slope_step
        sx = 0.0
        for i, j, w in bilinear((x + self.offset_x + 0.5 * s * self.dx) / self.dx,
                                (y + self.offset_y) / self.dy):
            sx += w * self.lattice_node_slope(i, j)[0]
        sy = 0.0
        for i, j, w in bilinear((x + self.offset_x) / self.dx,
                                (y + self.offset_y + 0.5 * s * self.dy) / self.dy):
            sy += w * self.lattice_node_slope(i, j)[1]
        return sx, sy

    def direct_height(self, x, y):
        """Lattice and details at one point, without the mean level."""
        add = 0.0
        mul = 1.0
        for d in self.details:
            if d.is_multiplier():
                mul *= d.value(x, y)
            else:
                add += d.value(x, y)
        return mul * (self.lattice_height(x, y) + add)

    def direct_slope(self, x, y):
        sx, sy = self.lattice_slope(x, y)
        mul = 1.0
        for d in self.details:
            if d.is_multiplier():
                mul *= d.value(x, y)
            else:
                dsx, dsy = d.slope(x, y, self.dx, self.slope_step)
                sx += dsx
                sy += dsy
        return mul * sx, mul * sy

    def mirror(self, line, x, y):
        x0, y0, nx, ny = line
        q = (x - x0) * nx + (y - y0) * ny
        return 2.0 * q * nx + 2.0 * x0 - x, 2.0 * q * ny + 2.0 * y0 - y

    def uncusped_height(self, x, y):
        h = self.direct_height(x, y) + self.z_offset
        for line in self.lines:
            h += self.direct_height(*self.mirror(line, x, y))
        return h

    def height_at(self, x, y, keep_flat):
        h = self.uncusped_height(x, y)
        if self.cusp_on:
            h += self.cusp_factor * (h - self.z_offset) ** 2
        if self.round_flag == 1 and keep_flat == 0:
            h -= 0.5 * (x * x + y * y) / self.radius
        return h

    def slope_at(self, x, y, keep_flat):
        cx = cy = 0.0
        if self.round_flag == 1 and keep_flat == 0:
            cx, cy = -x / self.radius, -y / self.radius
        sx, sy = self.direct_slope(x, y)
        for line in self.lines:
            nx, ny = line[2], line[3]
            mx, my = self.direct_slope(*self.mirror(line, x, y))
            q = mx * nx + my * ny
            sx += 2.0 * q * nx - mx
            sy += 2.0 * q * ny - my
        if self.cusp_on:
            h0 = self.uncusped_height(x, y)
            k = 2.0 * (h0 - self.z_offset) * self.cusp_factor
            sx += k * sx
            sy += k * sy
        return sx + cx, sy + cy


def build_scene():
    rng = np.random.default_rng(SEED)
    lattice = dict(n_x=16, n_y=12, dx=2.0, dy=2.0, offset_x=16.0,
                   offset_y=12.0, z_offset=0.3, slope_step=2, periodic_x=1,
                   periodic_y=1, cusp_on=1, cusp_factor=0.04, round_flag=1,
                   radius=300.0)
    heights = rng.uniform(-0.8, 0.8, lattice["n_x"] * lattice["n_y"])
    # mode, periodic, rotated, angle, n_x, n_y, dx, dy, offset, value range
    layout = [
        (0, 0, 1, 0.5235987755, 8, 6, 1.5, 1.25, (3.0, -2.0), (-0.5, 0.5)),
        (2, 0, 0, 0.0, 6, 5, 3.0, 3.0, (-8.0, 7.5), (0.5, 1.5)),
        (0, 1, 0, 0.0, 4, 4, 2.5, 2.5, (1.0, 0.5), (-0.2, 0.2)),
        (1, 0, 0, 0.0, 10, 1, 1.0, 1.0, (5.0, -4.0), (-0.6, 0.6)),
    ]
    details = []
    for mode, per, rot, ang, nx, ny, dx, dy, off, rng_range in layout:
        values = rng.uniform(rng_range[0], rng_range[1], nx * ny)
        details.append(Detail(mode, per, rot, ang, nx, ny, dx, dy,
                              off[0], off[1], values))
    lines = [(12.0, -3.0, 100.0 * DEG)]
    xs = rng.uniform(-20.0, 20.0, N_POINTS)
    ys = rng.uniform(-16.0, 16.0, N_POINTS)
    return Holder(lattice, heights, details, lines), lines, xs, ys


def g17(v):
    # Shortest text that reads back as the same double.
    return repr(float(v))


def g9(v):
    return "%.9g" % v


def write_fixture(path, holder, lines, xs, ys):
    out = []
    out.append(" ".join(["lattice", str(holder.n_x), str(holder.n_y),
                         g17(holder.dx), g17(holder.dy), g17(holder.offset_x),
                         g17(holder.offset_y), g17(holder.z_offset),
                         str(holder.slope_step), str(holder.periodic_x),
                         str(holder.periodic_y), str(holder.cusp_on),
                         g17(holder.cusp_factor), str(holder.round_flag),
                         g17(holder.radius)]))
    out.append(" ".join(g9(v) for v in holder.heights))
    out.append("details %d" % len(holder.details))
    for d in holder.details:
        out.append(" ".join([str(d.mode), str(d.periodic), str(d.rotated),
                             g17(d.angle), str(d.n_x), str(d.n_y), g17(d.dx),
                             g17(d.dy), g17(d.off_x), g17(d.off_y)]))
        out.append(" ".join(g9(v) for v in d.values))
    out.append("lines %d" % len(lines))
    for x0, y0, a in lines:
        out.append(" ".join([g17(x0), g17(y0), g17(a)]))
    out.append("points %d" % len(xs))
    for x, y in zip(xs, ys):
        x = float(x)
        y = float(y)
        h = holder.height_at(x, y, 0)
        sx, sy = holder.slope_at(x, y, 0)
        out.append(" ".join([g17(x), g17(y), g17(h), g17(sx), g17(sy)]))
    with open(path, "w") as f:
        f.write("\n".join(out) + "\n")


def main():
    holder, lines, xs, ys = build_scene()
    here = os.path.dirname(os.path.abspath(__file__))
    path = os.path.join(here, "..", "data", "disturbances", "holder_points.txt")
    write_fixture(os.path.normpath(path), holder, lines, xs, ys)


if __name__ == "__main__":
    main()

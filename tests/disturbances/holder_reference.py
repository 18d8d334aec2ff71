#!/usr/bin/python3
"""Reference heights and slopes of a sea lattice with disturbances, computed apart from the engine.

Builds one scene (a periodic primary lattice; a rotated, non-periodic additive detail; a
multiplying detail lying half over the lattice's edge; a periodic additive detail; an additive
radial ring; one mirror wall; cusps and a round surface) and samples it at random points with
numpy, written straight from the rules for combining details with the primary lattice:

  u = x + offset, rotated u' = u c - v s, v' = v c + u s (c = cos a, s = sin(-a));
  bilinear corners (i, j), (i, j+1), (i+1, j), (i+1, j+1); missing corners 0 (added) or 1
  (multiplied); the primary lattice always wraps; h = M (lattice + A) + mean, plus the same at
  each mirror point less the mean, then cusps, then the round drop;
  slopes: backward node differences over L nodes sampled half a stencil ahead, details over
  S = trunc(L dx / detail_dx) + 1 nodes (edge nodes clamped, nodes past the edge 0), radial
  details by one-sided differences over L dx, turned back, times M, mirrored, cusps, curvature.

Writes the scene and the expected values to tests/data/disturbances/holder_points.txt:
  lattice n_x n_y dx dy offset_x offset_y z_offset slope_step periodic_x periodic_y
          cusp_on cusp_factor round_flag radius
  n_x * n_y floats (node (i, j) at i + n_x j)
  details N; per detail: mode periodic rotated angle n_x n_y dx dy offset_x offset_y,
          then n_x * n_y floats
  lines M; per line: x y angle
  points K; per point: x y height dzdx dzdy
Run with the system interpreter, which has numpy: /usr/bin/python3 holder_reference.py
"""
import os

import numpy as np

rng = np.random.default_rng(20261125)


def f32(a):
    return np.asarray(a, dtype=np.float32)


# The scene.
lat = dict(nx=16, ny=12, dx=2.0, dy=2.0, ox=16.0, oy=12.0, z=0.3, L=2, px=1, py=1,
           cusp=1, cf=0.04, round=1, R=300.0)
lat_h = f32(rng.uniform(-0.8, 0.8, size=lat['nx'] * lat['ny']))

details = []
# Rotated additive ramp-and-noise, not periodic.
d = dict(mode=0, per=0, rot=1, ang=0.5235987755, nx=8, ny=6, dx=1.5, dy=1.25, ox=3.0, oy=-2.0)
d['f'] = f32(rng.uniform(-0.5, 0.5, size=d['nx'] * d['ny']))
details.append(d)
# Multiplier over x in [8, 26): the lattice spans [-16, 16).
d = dict(mode=2, per=0, rot=0, ang=0.0, nx=6, ny=5, dx=3.0, dy=3.0, ox=-8.0, oy=7.5)
d['f'] = f32(rng.uniform(0.5, 1.5, size=d['nx'] * d['ny']))
details.append(d)
# Periodic additive tile.
d = dict(mode=0, per=1, rot=0, ang=0.0, nx=4, ny=4, dx=2.5, dy=2.5, ox=1.0, oy=0.5)
d['f'] = f32(rng.uniform(-0.2, 0.2, size=d['nx'] * d['ny']))
details.append(d)
# Radial ring centred at (-5, 4).
d = dict(mode=1, per=0, rot=0, ang=0.0, nx=10, ny=1, dx=1.0, dy=1.0, ox=5.0, oy=-4.0)
d['f'] = f32(rng.uniform(-0.6, 0.6, size=d['nx'] * d['ny']))
details.append(d)
lines = [(12.0, -3.0, 100.0 * 0.017453292519444445)]


def to_detail(d, x, y):
    u = x + d['ox']
    v = y + d['oy']
    if d['rot']:
        c = np.cos(d['ang'])
        s = np.sin(-d['ang'])
        u, v = u * c - v * s, v * c + u * s
    return u, v


def corners(a, b):
    i = np.floor(a).astype(np.int64)
    j = np.floor(b).astype(np.int64)
    fa = a - i
    fb = b - j
    return [(i, j, (1 - fa) * (1 - fb)), (i, j + 1, (1 - fa) * fb), (i + 1, j, fa * (1 - fb)),
            (i + 1, j + 1, fa * fb)]


def grid_value(f, nx, ny, a, b, periodic, missing):
    total = np.zeros_like(a)
    for i, j, w in corners(a, b):
        if periodic:
            total += w * f[np.mod(i, nx) + nx * np.mod(j, ny)].astype(np.float64)
        else:
            inside = (i >= 0) & (i < nx) & (j >= 0) & (j < ny)
            vals = np.where(inside, f[np.clip(i, 0, nx - 1) + nx * np.clip(j, 0, ny - 1)], missing)
            total += w * vals.astype(np.float64)
    return total


def radial(d, r):
    f = d['f'].astype(np.float64)
    inside = r < (d['nx'] - 1) * d['dx']
    s = np.where(inside, r / d['dx'], 0.0)
    i = np.floor(s).astype(np.int64)
    w = 1 - (s - i)
    val = f[i] * w + (1 - w) * f[np.minimum(i + 1, d['nx'] - 1)]
    return inside, val


def detail_value(d, x, y):
    u, v = to_detail(d, x, y)
    if d['mode'] in (1, 3):
        inside, val = radial(d, np.hypot(u, v))
        return np.where(inside, val, 1.0 if d['mode'] == 3 else 0.0)
    return grid_value(d['f'], d['nx'], d['ny'], u / d['dx'], v / d['dy'], d['per'],
                      1.0 if d['mode'] == 2 else 0.0)


def combined(x, y):
    lattice = grid_value(lat_h, lat['nx'], lat['ny'], (x + lat['ox']) / lat['dx'],
                         (y + lat['oy']) / lat['dy'], 1, 0.0)
    A = np.zeros_like(x)
    M = np.ones_like(x)
    for d in details:
        val = detail_value(d, x, y)
        if d['mode'] in (2, 3):
            M = M * val
        else:
            A = A + val
    return M * (lattice + A), M


def mirror(line, x, y):
    x0, y0, a = line
    n = np.array([np.cos(a), np.sin(a)])
    along = (x - x0) * n[0] + (y - y0) * n[1]
    return 2 * along * n[0] + 2 * x0 - x, 2 * along * n[1] + 2 * y0 - y, n


def height_uncusped(x, y):
    h = combined(x, y)[0] + lat['z']
    for line in lines:
        mx, my, _ = mirror(line, x, y)
        h = h + combined(mx, my)[0]
    return h


def height(x, y):
    h = height_uncusped(x, y)
    if lat['cusp']:
        h = h + lat['cf'] * (h - lat['z'])**2
    if lat['round']:
        h = h - 0.5 * (x * x + y * y) / lat['R']
    return h


def node_diff(f, nx, ny, i, j, di, dj, step, periodic, edge_rule):
    """Backward difference f(i, j) - f(i - di, j - dj), over step metres."""
    if periodic:
        here = f[np.mod(i, nx) + nx * np.mod(j, ny)].astype(np.float64)
        back = f[np.mod(i - di, nx) + nx * np.mod(j - dj, ny)].astype(np.float64)
        return (here - back) / step
    if edge_rule:
        s = max(di, dj)
        dead = (i < 0) | (i - s >= nx) | (j < 0) | (j - s >= ny)
    else:
        dead = np.zeros(i.shape, dtype=bool)
    here = f[np.clip(i, 0, nx - 1) + nx * np.clip(j, 0, ny - 1)].astype(np.float64)
    back = f[np.clip(i - di, 0, nx - 1) + nx * np.clip(j - dj, 0, ny - 1)].astype(np.float64)
    return np.where(dead, 0.0, (here - back) / step)


def stencil_slope(f, nx, ny, a_x, b_x, a_y, b_y, S, step_x, step_y, periodic, edge_rule):
    sx = np.zeros_like(a_x)
    for i, j, w in corners(a_x, b_x):
        sx += w * node_diff(f, nx, ny, i, j, S, 0, step_x, periodic, edge_rule)
    sy = np.zeros_like(a_y)
    for i, j, w in corners(a_y, b_y):
        sy += w * node_diff(f, nx, ny, i, j, 0, S, step_y, periodic, edge_rule)
    return sx, sy


def combined_slope(x, y):
    L = lat['L']
    u = x + lat['ox']
    v = y + lat['oy']
    sx, sy = stencil_slope(lat_h, lat['nx'], lat['ny'], (u + 0.5 * L * lat['dx']) / lat['dx'],
                           v / lat['dy'], u / lat['dx'], (v + 0.5 * L * lat['dy']) / lat['dy'], L,
                           L * lat['dx'], L * lat['dy'], lat['px'] and lat['py'], False)
    M = np.ones_like(x)
    for d in details:
        if d['mode'] in (2, 3):
            M = M * detail_value(d, x, y)
            continue
        du, dv = to_detail(d, x, y)
        if d['mode'] == 1:
            delta = L * lat['dx']
            inside, f0 = radial(d, np.hypot(du, dv))
            i1, f1 = radial(d, np.hypot(du - delta, dv))
            i2, f2 = radial(d, np.hypot(dv - delta, du))
            f1 = np.where(i1, f1, 0.0)
            f2 = np.where(i2, f2, 0.0)
            ksx = np.where(inside, (f0 - f1) / delta, 0.0)
            ksy = np.where(inside, (f0 - f2) / delta, 0.0)
        else:
            S = int(L * lat['dx'] / d['dx']) + 1
            ksx, ksy = stencil_slope(d['f'], d['nx'], d['ny'], (du + 0.5 * S * d['dx']) / d['dx'],
                                     dv / d['dy'], du / d['dx'], (dv + 0.5 * S * d['dy']) / d['dy'],
                                     S, S * d['dx'], S * d['dy'], d['per'], True)
        if d['rot']:
            c = np.cos(d['ang'])
            s = np.sin(-d['ang'])
            ksx, ksy = ksx * c + ksy * s, ksy * c - ksx * s
        sx = sx + ksx
        sy = sy + ksy
    return sx * M, sy * M


def slope(x, y):
    sx, sy = combined_slope(x, y)
    for line in lines:
        mx, my, n = mirror(line, x, y)
        msx, msy = combined_slope(mx, my)
        q = msx * n[0] + msy * n[1]
        sx = sx + 2 * q * n[0] - msx
        sy = sy + 2 * q * n[1] - msy
    if lat['cusp']:
        h0 = height_uncusped(x, y) - lat['z']
        sx = sx * (1 + 2 * h0 * lat['cf'])
        sy = sy * (1 + 2 * h0 * lat['cf'])
    if lat['round']:
        sx = sx - x / lat['R']
        sy = sy - y / lat['R']
    return sx, sy


def main():
    n = 3000
    x = rng.uniform(-20.0, 30.0, size=n)
    y = rng.uniform(-15.0, 15.0, size=n)
    h = height(x, y)
    sx, sy = slope(x, y)
    here = os.path.dirname(os.path.abspath(__file__))
    out_dir = os.path.join(here, '..', 'data', 'disturbances')
    os.makedirs(out_dir, exist_ok=True)

    def floats(a):
        return ' '.join('%.9g' % v for v in a) + '\n'

    with open(os.path.join(out_dir, 'holder_points.txt'), 'w') as out:
        out.write('lattice %d %d %r %r %r %r %r %d %d %d %d %r %d %r\n' %
                  (lat['nx'], lat['ny'], lat['dx'], lat['dy'], lat['ox'], lat['oy'], lat['z'],
                   lat['L'], lat['px'], lat['py'], lat['cusp'], lat['cf'], lat['round'], lat['R']))
        out.write(floats(lat_h))
        out.write('details %d\n' % len(details))
        for d in details:
            out.write('%d %d %d %r %d %d %r %r %r %r\n' %
                      (d['mode'], d['per'], d['rot'], d['ang'], d['nx'], d['ny'], d['dx'], d['dy'],
                       d['ox'], d['oy']))
            out.write(floats(d['f']))
        out.write('lines %d\n' % len(lines))
        for line in lines:
            out.write('%r %r %r\n' % line)
        out.write('points %d\n' % n)
        for k in range(n):
            out.write('%r %r %.17g %.17g %.17g\n' % (x[k], y[k], h[k], sx[k], sy[k]))


if __name__ == '__main__':
    main()

#!/usr/bin/python3
"""Reference transmission and single-scattered radiance of a uniform slab.

Writes tests/data/volumes/slab_reference.txt (run from anywhere; the path is
taken relative to this script).

Scene
-----
A box lattice of nx * ny * nz points with spacings dx, dy, dz and the same
density rho at every point. The box is centred on the origin of its own frame
and its sizes are (n - 1) * spacing per axis, so lattice point (i, j, k) sits
at (-X/2 + i dx, -Y/2 + j dy, -Z/2 + k dz) and the box spans [-X/2, X/2] etc.
Here 21 x 17 x 5 points at 10 x 12.5 x 5 m: a 200 x 200 x 20 m slab.

Each band has absorption a, scattering b and extinction x, all per unit of
density per metre. Along the view ray the attenuation uses e = a + b (the
opacity flag argument 0) or e = a (flag set); the sun's path uses x. Bands 0
and 1 have x = a + b; band 2 deliberately has x != a + b, so that a test can
tell which coefficient is applied where.

Conventions
-----------
* Sun: given by the file angles theta (zenith, 0 = overhead) and phi
  (azimuth), in degrees. The unit vector towards the sun, in the box frame, is
  s = (sin theta cos phi, sin theta sin phi, cos theta). (The sun's direction
  is (-sin z cos a, -sin z sin a, -cos z) with the stored zenith z = pi -
  theta and azimuth a = phi + pi, which is the vector above.) The file lists
  s itself, so a test need not repeat the angle convention.
* View ray: origin o and unit direction d in the box frame; the march runs
  from the box entry (or the origin when it lies inside) to the box exit, cut
  at the far limit, a distance from the origin along the ray (99999999.0 for
  none).
* Scattering angle: acos(d . s); for an isotropic phase function it does not
  matter.
* Phase function: the 181-angle table holds the phase function per
  steradian, normalised to unit integral over the sphere, so the isotropic
  table is 1 / (4 pi) = 0.07957747154594767 at every angle (the multiple
  scattering factor fades towards "the isotropic value 1 / (4 pi)" and divides
  by 12.566371 P). With that table the multiple scattering factor is within
  3.1e-8 of 1, so these numbers serve both scattering methods.
* Radiance: scattered radiance per unit of sun irradiance,
      L / E = b * P * rho * integral over the path of
              exp(-e rho (t - t_in) - x rho S(t)) dt,
  with S(t) the length of the sun ray from the point at t to the box's edge.
  Transmission T = exp(-e rho (t_out - t_in)).

Derivation
----------
S(t) is the minimum over the axes with s_i != 0 of (sign(s_i) h_i - o_i -
t d_i) / s_i (h_i the half size), a concave piecewise linear function of t.
The path is cut at every crossing of two of these lines; on each piece the
integrand is exp(c0 + c1 t) and is integrated in closed form (with expm1 so
that c1 near 0 stays accurate).

Checks (the script stops if one fails)
--------------------------------------
1. Every radiance is compared with a composite Simpson rule on 200001 points
   in which S(t) is computed independently per point by the slab method
   (far exit of the sun ray from the box); relative difference < 1e-9.
2. Hand formulas: sun overhead, ray straight down through the slab depth H:
   L/E = b P (1 - exp(-(e + x) rho H)) / (e + x); ray straight up from below
   with x = e: L/E = b P rho H exp(-x rho H); with x != e:
   L/E = b P exp(-x rho H) (1 - exp(-(e - x) rho H)) / (e - x).
   Relative difference < 1e-12.
3. Transmission against exp(-e rho path) with the path from a separate
   entry/exit computation.

Tolerance guide
---------------
The column trap_rel gives, for each radiance, the relative difference of a
plain trapezoid of the same integrand (exact sun path) at one step of about
a cell along the ray (n = floor(length / step) + 2 samples, step = sum of
w_i L_i with w_i = (d_i / L_i)^2 normalised, not below the smallest
spacing) from the closed form. It estimates the discretisation part of the
error of a march at that step; interpolating the sun's optical depth from
the lattice adds error near the points where S(t) has a kink. Band 0's view
optical depth stays below -ln(0.0001) = 9.21 on every ray, so the early
stop of a march at the default cutoff never applies in band 0.
"""

import math
import os

import numpy as np

NOTHING = 99999999.0
PHASE_ISO = 1.0 / (4.0 * math.pi)

N = (21, 17, 5)
SPACING = (10.0, 12.5, 5.0)
RHO = 0.5
HALF = np.array([(n - 1) * L / 2.0 for n, L in zip(N, SPACING)])

# index, id, absorption, scattering, extinction (per unit density per metre)
BANDS = [
    (0, 1, 0.002, 0.010, 0.012),
    (1, 2, 0.000, 0.030, 0.030),
    (2, 3, 0.004, 0.016, 0.040),
]

# id, theta (zenith, deg), phi (azimuth, deg)
SUNS = [
    (0, 0.0, 0.0),
    (1, 30.0, 0.0),
    (2, 60.0, 45.0),
    (3, 60.0, 200.0),
    (4, 80.0, 120.0),
    (5, 45.0, 270.0),
    (6, 135.0, 300.0),  # below the slab's horizon in the box frame
]


def unit(v):
    v = np.asarray(v, dtype=float)
    return v / np.linalg.norm(v)


# id, origin, direction (normalised below), far limit, description
RAYS = [
    (0, (0.0, 0.0, 50.0), (0.0, 0.0, -1.0), NOTHING, "from above, straight down"),
    (1, (10.0, -20.0, 60.0), (0.3, 0.2, -1.0), NOTHING, "from above, oblique"),
    (2, (5.0, 5.0, -40.0), (0.0, 0.0, 1.0), NOTHING, "from below, straight up"),
    (3, (30.0, -25.0, -30.0), (-0.5, 0.4, 0.7), NOTHING, "from below, oblique"),
    (4, (-150.0, 10.0, 2.0), (1.0, 0.0, 0.0), NOTHING, "sideways along x"),
    (5, (-120.0, -130.0, -3.0), (1.0, 1.1, 0.05), NOTHING, "sideways, oblique"),
    (6, (0.0, 0.0, 50.0), (0.0, 0.0, -1.0), 55.0, "from above, ends inside"),
    (7, (10.0, -20.0, 60.0), (0.3, 0.2, -1.0), 60.0, "from above oblique, ends inside"),
    (8, (-150.0, 10.0, 2.0), (1.0, 0.0, 0.0), 150.0, "sideways, ends inside"),
    (9, (40.0, 70.0, 30.0), (0.1, -0.6, -0.45), NOTHING, "enters top, leaves a side"),
    (10, (20.0, -15.0, 1.0), (0.6, 0.3, -0.2), NOTHING, "origin inside the slab"),
    (11, (0.0, 0.0, 50.0), (1.0, 0.0, 0.2), NOTHING, "misses the box"),
]


def sun_vector(theta_deg, phi_deg):
    th = math.radians(theta_deg)
    ph = math.radians(phi_deg)
    v = np.array([math.sin(th) * math.cos(ph), math.sin(th) * math.sin(ph), math.cos(th)])
    v[np.abs(v) < 1e-15] = 0.0
    return v


def entry_exit(o, d):
    """Slab method: distances (t_in, t_out) from the origin, or None on a miss."""
    t_lo, t_hi = -math.inf, math.inf
    for i in range(3):
        if d[i] == 0.0:
            if abs(o[i]) > HALF[i]:
                return None
            continue
        a = (-HALF[i] - o[i]) / d[i]
        b = (HALF[i] - o[i]) / d[i]
        t_lo = max(t_lo, min(a, b))
        t_hi = min(t_hi, max(a, b))
    if t_hi <= max(t_lo, 0.0):
        return None
    return max(t_lo, 0.0), t_hi


def sun_lines(o, d, s):
    """S(t) = min over lines (A + B t)."""
    lines = []
    for i in range(3):
        if s[i] == 0.0:
            continue
        face = math.copysign(HALF[i], s[i])
        lines.append(((face - o[i]) / s[i], -d[i] / s[i]))
    return lines


def exp_linear_integral(c0, c1, a, b):
    """Integral of exp(c0 + c1 t) from a to b."""
    w = b - a
    z = c1 * w
    ratio = 1.0 if abs(z) < 1e-300 else math.expm1(z) / z
    return math.exp(c0 + c1 * a) * w * ratio


def closed_form(o, d, s, t_in, t_out, e, x):
    lines = sun_lines(o, d, s)
    cuts = {t_in, t_out}
    for p in range(len(lines)):
        for q in range(p + 1, len(lines)):
            A1, B1 = lines[p]
            A2, B2 = lines[q]
            if B1 != B2:
                t = (A2 - A1) / (B1 - B2)
                if t_in < t < t_out:
                    cuts.add(t)
    cuts = sorted(cuts)
    total = 0.0
    for a, b in zip(cuts[:-1], cuts[1:]):
        m = 0.5 * (a + b)
        A, B = min(lines, key=lambda l: l[0] + l[1] * m)
        # exponent: -e rho (t - t_in) - x rho (A + B t)
        c0 = e * RHO * t_in - x * RHO * A
        c1 = -e * RHO - x * RHO * B
        total += exp_linear_integral(c0, c1, a, b)
    return RHO * total


def sun_path_direct(points, s):
    """Per point: far exit distance of the ray p + u s from the box."""
    u = np.full(points.shape[0], np.inf)
    for i in range(3):
        if s[i] == 0.0:
            continue
        a = (-HALF[i] - points[:, i]) / s[i]
        b = (HALF[i] - points[:, i]) / s[i]
        u = np.minimum(u, np.maximum(a, b))
    return np.maximum(u, 0.0)


def simpson_check(o, d, s, t_in, t_out, e, x, n=200001):
    t = np.linspace(t_in, t_out, n)
    p = o[None, :] + t[:, None] * d[None, :]
    f = np.exp(-e * RHO * (t - t_in) - x * RHO * sun_path_direct(p, s))
    h = (t_out - t_in) / (n - 1)
    integral = h / 3.0 * (f[0] + f[-1] + 4.0 * f[1:-1:2].sum() + 2.0 * f[2:-1:2].sum())
    return RHO * integral


def march_step(d):
    w = np.array([(d[i] / SPACING[i]) ** 2 for i in range(3)])
    w /= w.sum()
    return max(float(np.dot(w, SPACING)), min(SPACING))


def trapezoid_at_step(o, d, s, t_in, t_out, e, x):
    length = t_out - t_in
    n = int(math.floor(length / march_step(d))) + 2
    t = np.linspace(t_in, t_out, n)
    p = o[None, :] + t[:, None] * d[None, :]
    f = np.exp(-e * RHO * (t - t_in) - x * RHO * sun_path_direct(p, s))
    h = length / (n - 1)
    return RHO * h * (f.sum() - 0.5 * (f[0] + f[-1]))


def rel(a, b):
    return abs(a - b) / max(abs(b), 1e-300)


def hand_checks():
    H = 2.0 * HALF[2]
    s = np.array([0.0, 0.0, 1.0])
    for _, _, a, b, x in BANDS:
        e = a + b
        # straight down from above, sun overhead
        o, d = np.array([0.0, 0.0, 50.0]), np.array([0.0, 0.0, -1.0])
        t_in, t_out = entry_exit(o, d)
        got = b * PHASE_ISO * closed_form(o, d, s, t_in, t_out, e, x)
        want = b * PHASE_ISO * (1.0 - math.exp(-(e + x) * RHO * H)) / (e + x)
        assert rel(got, want) < 1e-12, (got, want)
        # straight up from below, sun overhead
        o, d = np.array([5.0, 5.0, -40.0]), np.array([0.0, 0.0, 1.0])
        t_in, t_out = entry_exit(o, d)
        got = b * PHASE_ISO * closed_form(o, d, s, t_in, t_out, e, x)
        if x == e:
            want = b * PHASE_ISO * RHO * H * math.exp(-x * RHO * H)
        else:
            want = b * PHASE_ISO * math.exp(-x * RHO * H) * (-math.expm1(-(e - x) * RHO * H)) / (e - x)
        assert rel(got, want) < 1e-12, (got, want)


def main():
    hand_checks()
    out_dir = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", "volumes")
    os.makedirs(out_dir, exist_ok=True)
    path = os.path.normpath(os.path.join(out_dir, "slab_reference.txt"))
    lines = []
    w = lines.append
    w("# Uniform slab: transmission and single-scattered radiance per unit sun irradiance.")
    w("# Written by tests/volumes/slab_reference.py (its docstring gives the derivation and checks).")
    w("# Box centred on the origin of its frame, size (n - 1) * spacing per axis; lattice point")
    w("# (i, j, k) at (-X/2 + i dx, -Y/2 + j dy, -Z/2 + k dz); density rho at every point.")
    w("# Sun vector s points towards the sun: s = (sin theta cos phi, sin theta sin phi, cos theta),")
    w("# theta, phi the file angles in degrees (theta 0 = overhead).")
    w("# Isotropic phase table: every one of the 181 values = 1/(4 pi) (per steradian, unit integral).")
    w("# Coefficients are per unit density per metre; view attenuation e = a + b (flag 0) or e = a")
    w("# (flag set); the sun's path uses x. Band 2 has x != a + b on purpose.")
    w("# Distances t_in, t_out, far are measured from the ray origin along the unit direction.")
    w("# Line formats (one record per line, first word is the tag):")
    w("#   box nx ny nz dx dy dz rho half_x half_y half_z")
    w("#   band index id a b x")
    w("#   phase value")
    w("#   sun id theta_deg phi_deg sx sy sz")
    w("#   ray id ox oy oz dx dy dz far hit t_in t_out path   (hit 0: misses; then t_in = t_out = path = 0)")
    w("#   trans ray band T_flag0 T_flag1   (T = exp(-e rho path); 1 for a miss)")
    w("#   rad ray sun band scatter_angle_rad L_flag0 L_flag1 trap_rel")
    w("#       L = radiance per unit irradiance (same units as radiance / irradiance, i.e. per sr);")
    w("#       trap_rel = relative difference of a trapezoid at about one cell per step (flag 0),")
    w("#       a guide to the discretisation error of a march; 0 for a miss.")
    w("box %d %d %d %.17g %.17g %.17g %.17g %.17g %.17g %.17g" % (N + SPACING + (RHO,) + tuple(HALF)))
    for idx, bid, a, b, x in BANDS:
        w("band %d %d %.17g %.17g %.17g" % (idx, bid, a, b, x))
    w("phase %.17g" % PHASE_ISO)
    suns = []
    for sid, th, ph in SUNS:
        s = sun_vector(th, ph)
        suns.append((sid, s))
        w("sun %d %.17g %.17g %.17g %.17g %.17g" % (sid, th, ph, s[0], s[1], s[2]))
    rays = []
    max_tau0 = 0.0
    for rid, o, d, far, desc in RAYS:
        o = np.array(o, dtype=float)
        d = unit(d)
        ee = entry_exit(o, d)
        if ee is None:
            hit, t_in, t_out = 0, 0.0, 0.0
        else:
            hit = 1
            t_in, t_out = ee
            t_out = min(t_out, far)
            assert t_out > t_in, desc
        path_len = t_out - t_in
        rays.append((rid, o, d, hit, t_in, t_out))
        w("# ray %d: %s" % (rid, desc))
        w("ray %d %.17g %.17g %.17g %.17g %.17g %.17g %.17g %d %.17g %.17g %.17g"
          % (rid, o[0], o[1], o[2], d[0], d[1], d[2], far, hit, t_in, t_out, path_len))
    for rid, o, d, hit, t_in, t_out in rays:
        path_len = t_out - t_in
        for idx, bid, a, b, x in BANDS:
            T0 = math.exp(-(a + b) * RHO * path_len)
            T1 = math.exp(-a * RHO * path_len)
            if hit:
                # independent entry: the path from the clipped segment's end points
                p_in, p_out = o + t_in * d, o + t_out * d
                assert np.all(np.abs(p_in) <= HALF + 1e-9) and np.all(np.abs(p_out) <= HALF + 1e-9)
                assert rel(T0, math.exp(-(a + b) * RHO * np.linalg.norm(p_out - p_in))) < 1e-12
            if idx == 0:
                max_tau0 = max(max_tau0, (a + b) * RHO * path_len)
            w("trans %d %d %.17g %.17g" % (rid, idx, T0, T1))
    worst_check = 0.0
    worst_trap = 0.0
    for rid, o, d, hit, t_in, t_out in rays:
        for sid, s in suns:
            angle = math.acos(max(-1.0, min(1.0, float(np.dot(d, s)))))
            for idx, bid, a, b, x in BANDS:
                if not hit:
                    w("rad %d %d %d %.17g 0 0 0" % (rid, sid, idx, angle))
                    continue
                vals = []
                for e in (a + b, a):
                    integral = closed_form(o, d, s, t_in, t_out, e, x)
                    check = simpson_check(o, d, s, t_in, t_out, e, x)
                    r = rel(integral, check)
                    worst_check = max(worst_check, r)
                    assert r < 1e-9, (rid, sid, idx, integral, check)
                    vals.append(b * PHASE_ISO * integral)
                trap = trapezoid_at_step(o, d, s, t_in, t_out, a + b, x)
                tr = rel(trap * b * PHASE_ISO, vals[0])
                worst_trap = max(worst_trap, tr)
                w("rad %d %d %d %.17g %.17g %.17g %.3e" % (rid, sid, idx, angle, vals[0], vals[1], tr))
    assert max_tau0 < -math.log(0.0001)
    with open(path, "w") as f:
        f.write("\n".join(lines) + "\n")
    print("wrote", path)
    print("largest relative difference closed form vs Simpson: %.3e" % worst_check)
    print("largest trap_rel: %.3e" % worst_trap)
    print("largest band-0 view optical depth: %.4f" % max_tau0)


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""Expected values for the air tests, worked out apart from the engine.

Run: /usr/bin/python3 air_reference.py > ../data/atmosphere/air_reference.txt

Every path integral here is taken numerically along the ray (composite
Gauss-Legendre, refined until it settles) from the single-scattering
integrand itself, never from the engine's closed forms:

  I = integral of E * exp(-z(s)/H) * T_ray(s_start, s) * T_sun(s) ds

with z the height of the point over the base. Over a flat base each layer
is seen through its own optical depth, as in the engine, with the sun's
elevation sine raised by 0.001 (aerosol) or 0.0001 (molecules). Over a round
base z(s) is the parabolic height z + (x^2 + y^2) / 2R and both layers dim
both integrals; the shadow is where the ray towards the sun meets the
sphere, found by bisection.

The scene of every case: bands 1 and 2 with centres 0.45 and 0.65 um and
widths 0.1 um; sun irradiance 1.8 and 1.5; molecular scale height 8000 m,
density 1.0, exponent 4.1; dirty aerosol of scale height 1200 m, density 1.0,
factor 0.93; round base of radius 6371000 m. The sun's angles are given in
the sun's own convention: direction (-sin z cos a, -sin z sin a, -cos z).

Lines (whitespace separated; '#' starts a comment):
  gaussian x value
  molecular_tau exponent tau1 tau2
  dirty band g1 g2 w1 w2 tau
  phase zenith azimuth dx dy dz pm1 pm2 pa1 pa2   (dirty air)
  flat zenith azimuth ox oy oz dx dy dz s1 s2 mol1 mol2 aer1 aer2 t1 t2 bound1 bound2
  column ox oy oz dx dy dz s1 s2 H value bound
  round zenith azimuth ox oy oz dx dy dz s1 s2 mol1 mol2 aer1 aer2
Floats print in repr. 'inf' for s2 stands for 99999999.0, the engine's
infinity.
"""
import math

import numpy as np

PI = 3.1415926535  # the engine's pi
RADIUS = 6371000.0
CENTRES = [0.45, 0.65]
WIDTHS = [0.1, 0.1]
SUN = [1.8, 1.5]
H_M = 8000.0
H_A = 1200.0
DENSITY_M = 1.0
DENSITY_A = 1.0
FACTOR = 0.93
INFINITY = 99999999.0
FOUR_PI = 12.566371  # the engine's 4 pi in the lobe weights

NODES, WEIGHTS = np.polynomial.legendre.leggauss(16)

# Table error of the Gaussian integral G(x) = integral of exp(-t^2) from 0,
# at a point x in the cell [x_i, x_i + 0.025]: linear interpolation is off by
# at most step^2 / 8 * max |G''| over the cell, G''(t) = -2t exp(-t^2), and
# the 10-part trapezoid sums up to x by (h^2 / 6) |x| exp(-x^2) with
# h = 0.0025, to leading order. Beyond 4 the table keeps G(4), short of the
# whole half integral by erfc(4) sqrt(pi) / 2 < 1.6e-8.
STEP = 0.025
SUB_STEP = 0.0025


def g_error(x):
    x = abs(x)
    if x >= 4.0:
        return 1.6e-8 + SUB_STEP ** 2 / 6 * 4.0 * math.exp(-16.0)
    low = math.floor(x / STEP) * STEP
    high = low + STEP
    peak = 1.0 / math.sqrt(2.0)
    t = peak if low <= peak <= high else (high if high < peak else low)
    curvature = 2.0 * t * math.exp(-t * t)
    return STEP ** 2 / 8 * curvature + SUB_STEP ** 2 / 6 * x * math.exp(-x * x)


def integrate(f, a, b, rel=1e-13, pieces=8, most=1 << 15):
    """Composite 16-point Gauss-Legendre over [a, b], halved until settled."""
    if not b > a:
        return 0.0
    previous = None
    while True:
        edges = np.linspace(a, b, pieces + 1)
        half = 0.5 * (edges[1:] - edges[:-1])
        mid = 0.5 * (edges[1:] + edges[:-1])
        s = (mid[:, None] + half[:, None] * NODES[None, :]).ravel()
        w = (half[:, None] * WEIGHTS[None, :]).ravel()
        total = float(np.sum(w * f(s)))
        if previous is not None and abs(total - previous) <= rel * abs(total):
            return total
        if pieces >= most:
            return total
        previous = total
        pieces *= 2


# ---- Setup ----

def molecular_tau(exponent):
    lbar = sum(CENTRES) / len(CENTRES)
    taus = []
    for c, w in zip(CENTRES, WIDTHS):
        l1, l2 = c - w / 2, c + w / 2
        f = lambda l: 1.07e-06 * H_M * DENSITY_M * l ** -exponent * lbar ** (exponent - 4.1)
        taus.append(integrate(f, l1, l2) / (l2 - l1))
    return taus


TAU_M = molecular_tau(4.1)
TAU_A = [DENSITY_A * 0.000106 * H_A] * 2


def dirty_lobes(centre):
    g1 = FACTOR - 0.1064 * centre
    g2 = 0.07964 * centre - 0.613408
    w = 0.05528 * centre + 0.935354
    w1 = (1.0 - g1 * g1) * w / FOUR_PI
    w2 = (1.0 - w) * (1.0 - g2 * g2) / FOUR_PI
    return g1, g2, w1, w2


def sun_direction(zenith, azimuth):
    return np.array([-math.sin(zenith) * math.cos(azimuth),
                     -math.sin(zenith) * math.sin(azimuth), -math.cos(zenith)])


# ---- Flat base ----

def flat_layer(oz, mu, s1, s2, mu_s, h, tau, e):
    """E * integral of v exp(-tau v / mu_s) exp(-ray depth) over [s1, s2]."""
    v = lambda s: np.exp(-(oz + mu * s) / h)
    v1 = math.exp(-(oz + mu * s1) / h)

    def depth(s):
        if mu == 0.0:
            return tau * v1 * (s - s1) / h
        return tau * (v1 - v(s)) / mu

    g = lambda s: e * v(s) * np.exp(-tau * v(s) / mu_s) * np.exp(-depth(s))
    if s2 < INFINITY:
        return integrate(g, s1, s2)
    # To infinity: far enough that what is left is below 1e-20 of the start.
    if mu > 0.0:
        upper = s1 + 46.0 * h / mu
    elif mu == 0.0:
        upper = s1 + 46.0 * h / (tau * v1)
    else:
        v_end = v1 + 46.0 * -mu / tau
        upper = -(h * math.log(v_end) + oz) / mu
    # Most of the weight sits near the start; split the range geometrically.
    total, a, step = 0.0, s1, (upper - s1) / 2 ** 20
    while a < upper:
        b = min(upper, a + step)
        total += integrate(g, a, b)
        a, step = b, step * 2
    return total


def flat_column(oz, mu, s1, s2, h):
    """(1/H) integral of exp(-z/H), exact for a straight line."""
    v1 = math.exp(-(oz + mu * s1) / h)
    if s2 >= INFINITY:
        return v1 / mu if mu > 0.0 else math.inf
    if mu == 0.0:
        return v1 * (s2 - s1) / h
    return (v1 - math.exp(-(oz + mu * s2) / h)) / mu


def flat_case(zenith, azimuth, o, d, s1, s2):
    mu_s = sun_direction(zenith, azimuth)[2]
    mu = d[2]
    oz = o[2]
    zero = [0.0, 0.0]
    if mu_s <= 0.0 or (oz < 0.0 and mu <= 0.0):
        return zero, zero, None
    if oz < 0.0:
        s = -oz / mu
        if s >= s2:
            return zero, zero, None
        s1 = max(s1, s)
    mol, aer, bounds = [], [], []
    for b in range(2):
        aer.append(flat_layer(oz, mu, s1, s2, mu_s + 0.001, H_A, TAU_A[b], SUN[b]))
        m = flat_layer(oz, mu, s1, s2, mu_s + 0.0001, H_M, TAU_M[b], SUN[b])
        if s2 < 94999999.05 and mu > 0.0:
            through = math.exp(-(TAU_M[b] * flat_column(oz, mu, s1, s2, H_M) +
                                 TAU_A[b] * flat_column(oz, mu, s1, s2, H_A)))
            m += through * flat_layer(oz, mu + 0.01, s2, INFINITY, mu_s + 0.01, H_A, TAU_A[b],
                                      SUN[b])
        mol.append(m)
        # The engine's series for small x = tau u m r keeps only the first
        # term of (1 - exp(-x)) / r, off by about x / 2.
        worst = 0.0
        for h, tau, off in ((H_A, TAU_A[b], 0.001), (H_M, TAU_M[b], 0.0001)):
            ms = mu_s + off
            u = math.exp(-(mu * s1 + oz) / h)
            if s2 >= INFINITY:
                mm = 1 / mu if mu > 0.0 else INFINITY
            else:
                mm = (1 - math.exp(-(s2 - s1) * mu / h)) / mu if mu != 0.0 else (s2 - s1) / h
            x = tau * u * mm * (1 - mu / ms)
            if abs(x) < 0.001:
                worst = max(worst, abs(x) / 2 * 1.01)
        bounds.append(max(1e-4, worst))
    return mol, aer, bounds


def flat_transmission(o, d, s1, s2):
    oz, mu = o[2], d[2]
    if oz < 0.0:
        if mu <= 0.0:
            return [1.0, 1.0]
        s = -oz / mu
        if s >= s2:
            return [1.0, 1.0]
        s1 = max(s1, s)
    if s1 >= s2:
        return [1.0, 1.0]
    out = []
    for b in range(2):
        depth = TAU_M[b] * flat_column(oz, mu, s1, s2, H_M)
        depth += TAU_A[b] * flat_column(oz, mu, s1, s2, H_A)
        out.append(math.exp(-depth))
    return out


# ---- Round base ----

def quadratic_height(o, d):
    z0 = o[2] + (o[0] ** 2 + o[1] ** 2) / 2 / RADIUS
    a = (o[0] * d[0] + o[1] * d[1]) / RADIUS + d[2]
    b = (1 - d[2] ** 2) / (2 * RADIUS)
    return z0, a, b


def round_column(o, d, s1, s2, h):
    """(1/H) integral of exp(-z(s)/H) ds, numerically."""
    z0, a, b = quadratic_height(o, d)
    z = lambda s: z0 + a * s + b * s * s
    g = lambda s: np.exp(-z(s) / h) / h
    lowest = -a / (2 * b) if b > 0.0 else -math.inf
    if s2 >= INFINITY:
        z_ref = z(lowest) if lowest > s1 else z(s1)
        far = max(s1, lowest) + 1.0
        while z(far) < z_ref + 60.0 * h:
            far = max(s1, lowest) + 2.0 * (far - max(s1, lowest))
        s2 = far
    cuts = [s1]
    if s1 < lowest < s2:
        cuts.append(lowest)
    cuts.append(s2)
    total = 0.0
    for lo, hi in zip(cuts[:-1], cuts[1:]):
        # Geometric pieces from the low end outward keep each piece's
        # exponent change small.
        width = hi - lo
        edges = [lo]
        step = min(width, max(h * 1e-3, 1.0))
        while edges[-1] < hi:
            edges.append(min(hi, edges[-1] + step))
            step *= 1.5
        if lowest == hi:
            edges = [hi - (e - lo) for e in reversed(edges)]
        for p, q in zip(edges[:-1], edges[1:]):
            total += integrate(g, p, q)
    return total


def column_bound(o, d, s1, s2, h, tau):
    """What the table's step allows in tau * column: a Gaussian end carries
    g_error(x) times exp(p^2/4 - z0/H) / q, an asymptotic end the first
    dropped term of the tail, 3 / (8 |x|^5) exp(-z/H) / q; an infinite end in
    the Gaussian form is G(4) in place of sqrt(pi) / 2."""
    z0, a, b = quadratic_height(o, d)
    if b == 0.0:
        return 1e-12
    q = math.sqrt(b * h)
    p = a / q
    bound = 0.0
    ends = [s1] + ([] if s2 >= INFINITY else [s2])
    for s in ends:
        x = q * s / h + p / 2
        height = z0 + a * s + b * s * s
        if abs(x) < 3.0:
            # exp(p^2/4 - z0/H) written at this end, where it cannot overflow.
            bound += g_error(x) * math.exp(x * x - height / h) / q
        else:
            bound += 3.0 / (8.0 * abs(x) ** 5) * math.exp(-height / h) / q
    if s2 >= INFINITY:
        x1 = q * s1 / h + p / 2
        if abs(x1) < 3.0:
            bound += g_error(100.0) * math.exp(x1 * x1 - z0 / h) / q
    return tau * bound + 1e-12


def sphere_hit(o, d):
    """First forward root of the exact sphere, or None."""
    half_b = float(np.dot(d, o)) + RADIUS * d[2]
    c = float(np.dot(o, o)) + 2 * RADIUS * o[2]
    disc = half_b * half_b - c
    if disc <= 0.0:
        return None
    r = math.sqrt(disc)
    roots = sorted([-half_b - r, -half_b + r])
    return roots


def in_shadow(point, u):
    roots = sphere_hit(point, u)
    return roots is not None and roots[1] > 0.0


def round_case(zenith, azimuth, o, d, s1, s2):
    u = sun_direction(zenith, azimuth)
    o = np.array(o, dtype=float)
    d = np.array(d, dtype=float)
    z0, a, b = quadratic_height(o, d)
    z = lambda s: z0 + a * s + b * s * s
    top = 6.0 * max(H_M, H_A)
    # Below the top between the roots of z(s) = top.
    if b > 0.0:
        disc = a * a - 4 * b * (z0 - top)
        if disc <= 0.0:
            return [0.0, 0.0], [0.0, 0.0]
        low = (-a - math.sqrt(disc)) / (2 * b)
        high = (-a + math.sqrt(disc)) / (2 * b)
    else:
        crossing = (top - z0) / a
        low, high = (crossing, math.inf) if a < 0 else (-math.inf, crossing)
    if z(s1) >= top:
        if not s1 < low:
            return [0.0, 0.0], [0.0, 0.0]
        s1 = low + 0.01
    s2 = min(s2, high)
    roots = sphere_hit(o, d)
    if roots is not None:
        if roots[0] < 0.0 < roots[1]:
            s1 = max(s1, roots[1])
        elif roots[0] >= 0.0:
            s2 = min(s2, roots[0])
    if not s1 < s2:
        return [0.0, 0.0], [0.0, 0.0]

    # Lit pieces: shadow boundaries by bisection on a fine scan.
    scan = np.linspace(s1, s2, 2001)
    lit = [not in_shadow(o + d * s, u) for s in scan]
    pieces, start = [], (s1 if lit[0] else None)
    for i in range(1, len(scan)):
        if lit[i] != lit[i - 1]:
            lo, hi = scan[i - 1], scan[i]
            for _ in range(80):
                mid = 0.5 * (lo + hi)
                if (not in_shadow(o + d * mid, u)) == lit[i - 1]:
                    lo = mid
                else:
                    hi = mid
            edge = 0.5 * (lo + hi)
            if lit[i - 1]:
                pieces.append((start, edge))
            else:
                start = edge
    if lit[-1]:
        pieces.append((start, s2))

    def layer_values(s):
        p = o + d * s
        zs = z(s)
        cm = round_column(o, d, s1, s, H_M) if s > s1 else 0.0
        ca = round_column(o, d, s1, s, H_A) if s > s1 else 0.0
        cm += round_column(p, u, 0.0, INFINITY, H_M)
        ca += round_column(p, u, 0.0, INFINITY, H_A)
        out = []
        for band in range(2):
            t = math.exp(-(TAU_M[band] * cm + TAU_A[band] * ca))
            out.append((math.exp(-zs / H_M) * t, math.exp(-zs / H_A) * t))
        return out

    mol, aer = [0.0, 0.0], [0.0, 0.0]
    for lo, hi in pieces:
        edges = np.linspace(lo, hi, 65)
        for p, q in zip(edges[:-1], edges[1:]):
            half, mid = 0.5 * (q - p), 0.5 * (q + p)
            xs, ws = np.polynomial.legendre.leggauss(8)
            for node, weight in zip(xs, ws):
                values = layer_values(mid + half * node)
                for band in range(2):
                    mol[band] += half * weight * values[band][0]
                    aer[band] += half * weight * values[band][1]
    return ([mol[b] * SUN[b] for b in range(2)], [aer[b] * SUN[b] for b in range(2)])


def unit(v):
    v = np.array(v, dtype=float)
    return v / math.sqrt(float(np.dot(v, v)))


def elevation_direction(elevation_deg, azimuth_deg):
    e = math.radians(elevation_deg)
    a = math.radians(azimuth_deg)
    return np.array([math.cos(e) * math.cos(a), math.cos(e) * math.sin(a), math.sin(e)])


def sun_angles(elevation_deg, azimuth_deg):
    """Sun convention angles for a sun at this elevation and bearing."""
    # direction = (-sin z cos a, -sin z sin a, -cos z) = (cos e cos b, ...)
    zenith = PI / 2 + math.radians(elevation_deg)
    azimuth = math.radians(azimuth_deg) + PI
    return zenith, azimuth


def fmt(x):
    if x >= INFINITY:
        return "inf"
    return repr(float(x))


def main():
    print("# Written by air_reference.py; do not edit by hand.")
    for x in [0.0, 0.01, 0.3, 0.5125, 1.0, 1.7, 2.5, 3.9, 4.0, 6.0, -0.8, -2.2]:
        print("gaussian", fmt(x), fmt(math.sqrt(math.pi) / 2 * math.erf(x)))
    for e in [4.1, 1.0, 3.0, 5.5]:
        t = molecular_tau(e)
        print("molecular_tau", fmt(e), fmt(t[0]), fmt(t[1]))
    for band, c in enumerate(CENTRES):
        g1, g2, w1, w2 = dirty_lobes(c)
        print("dirty", band + 1, fmt(g1), fmt(g2), fmt(w1), fmt(w2), fmt(TAU_A[band]))

    # Phase factors per unit integral: Rayleigh (1 + 0.9324 c^2) normalised
    # over the sphere, and the two Henyey-Greenstein lobes, times tau / H.
    # The engine's normalisation constant, within 1e-5 of 1 / (4 pi (1 + 0.9324 / 3)).
    rayleigh_norm = 0.060709651179326155
    assert abs(rayleigh_norm * 4 * math.pi * (1.0 + 0.9324 / 3.0) - 1.0) < 1e-5
    zenith, azimuth = sun_angles(35.0, 20.0)
    u = sun_direction(zenith, azimuth)
    side = unit(np.cross(u, [0.0, 0.0, 1.0]))
    for angle in [0.0, 0.3, 1.2, math.pi / 2, 2.5, math.pi]:
        d = math.cos(angle) * u + math.sin(angle) * side
        c = float(np.dot(d, u))
        pm = [TAU_M[b] * (1 + 0.9324 * c * c) * rayleigh_norm / H_M for b in range(2)]
        pa = []
        for b in range(2):
            g1, g2, w1, w2 = dirty_lobes(CENTRES[b])
            lobes = w1 / (1 - 2 * g1 * c + g1 * g1) ** 1.5 + w2 / (1 - 2 * g2 * c + g2 * g2) ** 1.5
            pa.append(TAU_A[b] / H_A * lobes)
        print("phase", fmt(zenith), fmt(azimuth), *[fmt(v) for v in d], *[fmt(v) for v in pm + pa])

    flat_cases = [
        # sun elevation, bearing; origin; view elevation, bearing; s1, s2
        (30.0, 0.0, (0.0, 0.0, 10.0), (10.0, 90.0), 0.0, INFINITY),
        (30.0, 0.0, (0.0, 0.0, 10.0), (30.0, 0.0), 0.0, INFINITY),  # along the sun
        (45.0, 20.0, (0.0, 0.0, 0.0), (0.0, 200.0), 0.0, INFINITY),  # horizontal
        (60.0, 0.0, (0.0, 0.0, 500.0), (-20.0, 45.0), 0.0, INFINITY),  # downward
        (10.0, 180.0, (0.0, 0.0, 2.0), (5.0, 30.0), 100.0, 20000.0),  # finite upward
        (10.0, 180.0, (0.0, 0.0, 2.0), (5.0, 30.0), 0.0, 5.0),  # short
        (50.0, 10.0, (0.0, 0.0, 3000.0), (-10.0, 120.0), 0.0, 15000.0),  # finite down
        (25.0, 90.0, (0.0, 0.0, -50.0), (20.0, 0.0), 0.0, INFINITY),  # from below
        (70.0, 0.0, (0.0, 0.0, 1.0), (0.0, 10.0), 0.0, 4000.0),  # finite level
        (5.0, 0.0, (0.0, 0.0, 100.0), (80.0, 0.0), 10.0, 300000.0),  # steep finite
    ]
    for sun_e, sun_b, o, (ve, vb), s1, s2 in flat_cases:
        zenith, azimuth = sun_angles(sun_e, sun_b)
        d = elevation_direction(ve, vb)
        mol, aer, bounds = flat_case(zenith, azimuth, o, d, s1, s2)
        if bounds is None:
            bounds = [1e-4, 1e-4]
        t = flat_transmission(o, d, s1, s2)
        print("flat", fmt(zenith), fmt(azimuth), *[fmt(v) for v in o], *[fmt(v) for v in d],
              fmt(s1), fmt(s2), *[fmt(v) for v in mol + aer + t + bounds])

    column_cases = [
        # origin, direction, s1, s2
        ((0.0, 0.0, 0.0), elevation_direction(0.0, 0.0), 0.0, INFINITY),  # horizon
        ((0.0, 0.0, 10.0), elevation_direction(10.0, 30.0), 0.0, INFINITY),
        ((0.0, 0.0, 0.0), unit((1e-4, 0.0, 1.0)), 0.0, INFINITY),  # nearly vertical
        ((0.0, 0.0, 0.0), (0.0, 0.0, 1.0), 0.0, INFINITY),  # vertical
        ((0.0, 0.0, 0.0), (0.0, 0.0, 1.0), 100.0, 9000.0),  # vertical, finite
        ((0.0, 0.0, 20000.0), elevation_direction(-4.4, 0.0), 0.0, INFINITY),  # grazing
        ((0.0, 0.0, 20000.0), elevation_direction(-4.4, 0.0), 50000.0, 400000.0),
        ((0.0, 0.0, 5000.0), elevation_direction(-2.0, 60.0), 0.0, 50000.0),  # down, finite
        ((0.0, 0.0, 2.0), elevation_direction(1.0, 0.0), 0.0, 150000.0),  # mixed ends
        ((1000.0, -2000.0, 50.0), elevation_direction(3.0, 250.0), 500.0, 80000.0),
        ((0.0, 0.0, 0.0), elevation_direction(0.5, 0.0), 0.0, 2000000.0),
    ]
    for o, d, s1, s2 in column_cases:
        for h in (H_M, H_A):
            value = round_column(np.array(o), np.array(d), s1, s2, h)
            bound = column_bound(np.array(o), np.array(d), s1, s2, h, 1.0)
            print("column", *[fmt(v) for v in o], *[fmt(v) for v in d], fmt(s1), fmt(s2),
                  fmt(h), fmt(value), fmt(bound))

    round_cases = [
        (30.0, 0.0, (0.0, 0.0, 10.0), (10.0, 90.0), 0.0, INFINITY),
        (30.0, 0.0, (0.0, 0.0, 10.0), (30.0, 0.0), 0.0, INFINITY),
        (5.0, 180.0, (0.0, 0.0, 2.0), (0.0, 0.0), 0.0, INFINITY),  # horizon
        (60.0, 40.0, (0.0, 0.0, 300.0), (-5.0, 90.0), 0.0, INFINITY),  # into the sphere
        (20.0, 0.0, (0.0, 0.0, 2.0), (3.0, 45.0), 50.0, 30000.0),  # finite
        (-3.0, 0.0, (0.0, 0.0, 2.0), (10.0, 180.0), 0.0, INFINITY),  # twilight, shadow
        (-3.0, 0.0, (0.0, 0.0, 2.0), (1.0, 0.0), 0.0, INFINITY),  # towards the set sun
        (-1.0, 0.0, (0.0, 0.0, 2.0), (20.0, 90.0), 0.0, INFINITY),  # sideways in twilight
        (40.0, 0.0, (0.0, 0.0, 60000.0), (-30.0, 0.0), 0.0, INFINITY),  # from above
    ]
    for sun_e, sun_b, o, (ve, vb), s1, s2 in round_cases:
        zenith, azimuth = sun_angles(sun_e, sun_b)
        d = elevation_direction(ve, vb)
        mol, aer = round_case(zenith, azimuth, o, d, s1, s2)
        print("round", fmt(zenith), fmt(azimuth), *[fmt(v) for v in o], *[fmt(v) for v in d],
              fmt(s1), fmt(s2), *[fmt(v) for v in mol + aer])


if __name__ == "__main__":
    main()

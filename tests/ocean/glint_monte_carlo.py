#!/usr/bin/python3
"""Sun glint on a Gaussian sea by brute-force Monte Carlo over facets.

The surface under a pixel is a crowd of small flat mirrors.  Each has slopes
(zx, zy) = (px, py) + sigma * (g1, g2), g1 and g2 independent standard normal
deviates: the facet the lattice resolves plus unresolved roughness of
standard deviation sigma in each component.  A facet of slopes (zx, zy) has
the upward normal (-zx, -zy, 1) / sqrt(1 + zx^2 + zy^2).

The camera's ray d (unit, from the camera down to the water) lands on a facet
with probability proportional to the facet's area projected towards the
camera.  Per unit of horizontal sea that area is proportional to

    w = max(0, -d_z + zx d_x + zy d_y),

zero for facets turned away from the camera.  Facets are drawn from the slope
density and carry the weight w, which is the same as drawing them in
proportion to their visible projected area.  Each facet mirrors the ray into
r = d - 2 (d . n) n.

The sun is modelled as a uniform disc of half-angle alpha around its direction
s, of radiance E / Omega with Omega = 2 pi (1 - cos alpha) its solid angle, so
that its irradiance across the beam is E.  A mirrored ray inside the disc
(r . s >= cos alpha) brings back R E / Omega, R the unpolarised Fresnel
reflectance of water at the facet's own angle of incidence; any other ray
brings back no sunlight.  The reflected sun radiance per unit irradiance is
therefore

    L / E = (sum of w R [r in disc]) / (sum of w) / Omega,

and its standard error is that of a ratio of means (first-order delta
method).  Neither the sun's light hidden by other waves nor second
reflections are counted.

The disc is kept small enough that the facets hitting it span at most about
7.5 % of sigma in slope: alpha = 0.15 sigma k cos^2(tilt), with k the cosine
of incidence and tilt that of the facet mirroring the sun's centre.
Averaging the glint over such a disc instead of taking it at the sun's
centre moves the result by under 0.2 % (checked by integrating the same
disc over a fine slope grid), below the standard errors here (0.5-1.5 %);
the stated standard error is the statistical one only.

Each case is built from the view, the resolved slopes, the width and a
chosen mirror slope, given as an offset from the resolved slopes in units of
sigma along and across the view's horizontal direction; the sun is placed
where that facet mirrors the view ray.

Writes tests/data/ocean/glint_monte_carlo.txt, lines
"sun_zenith sun_azimuth vx vy vz px py sigma n expected stderr" (angles in
radians; sun direction (sin z cos a, sin z sin a, cos z); expected = L / E).
The seed is fixed.  Run with /usr/bin/python3 (needs numpy); under a minute.
"""

import os
import time

import numpy as np

DEG = np.pi / 180.0
SEED = 20261125
SAMPLES = 20_000_000
CHUNK = 2_000_000
N_WATER = 1.34


def fresnel_unpolarised(cos_i, n):
    sin_t2 = (1.0 - cos_i * cos_i) / (n * n)
    cos_t = np.sqrt(1.0 - sin_t2)
    rs = (cos_i - n * cos_t) / (cos_i + n * cos_t)
    rp = (n * cos_i - cos_t) / (n * cos_i + cos_t)
    return 0.5 * (rs * rs + rp * rp)


def view_ray(zen, azi):
    return np.array([np.sin(zen) * np.cos(azi), np.sin(zen) * np.sin(azi), -np.cos(zen)])


def facet_normal(zx, zy):
    inv = 1.0 / np.sqrt(1.0 + zx * zx + zy * zy)
    return -zx * inv, -zy * inv, inv


def build_case(view_zen, view_azi, px, py, sigma, off_along, off_across):
    d = view_ray(view_zen * DEG, view_azi * DEG)
    along = np.array([np.cos(view_azi * DEG), np.sin(view_azi * DEG)])
    across = np.array([-along[1], along[0]])
    z = np.array([px, py]) + sigma * (off_along * along + off_across * across)
    # the resolved facet itself faces the camera in every case
    assert -d[2] + px * d[0] + py * d[1] > 0.0
    n = np.array(facet_normal(z[0], z[1]))
    cos_i = -float(np.dot(d, n))
    assert cos_i > 0.0
    s = d + 2.0 * cos_i * n
    s /= np.sqrt(np.dot(s, s))
    assert s[2] > 0.0, (view_zen, view_azi, px, py, sigma, off_along, off_across, s)
    sun_zen = float(np.arccos(s[2]))
    sun_azi = float(np.arctan2(s[1], s[0]))
    alpha = 0.15 * sigma * cos_i * n[2] ** 2
    return d, sun_zen, sun_azi, alpha, cos_i


def monte_carlo(rng, d, sun, px, py, sigma, alpha, n_water):
    cos_alpha = np.cos(alpha)
    omega = 2.0 * np.pi * (1.0 - cos_alpha)
    sum_w = 0.0
    sum_wh = 0.0
    sum_w2 = 0.0
    sum_w2h = 0.0
    sum_w2h2 = 0.0
    hits = 0
    done = 0
    while done < SAMPLES:
        m = min(CHUNK, SAMPLES - done)
        g = rng.standard_normal((2, m))
        zx = px + sigma * g[0]
        zy = py + sigma * g[1]
        w = np.maximum(0.0, -d[2] + zx * d[0] + zy * d[1])
        nx, ny, nz = facet_normal(zx, zy)
        cos_i = -(d[0] * nx + d[1] * ny + d[2] * nz)
        rx = d[0] + 2.0 * cos_i * nx
        ry = d[1] + 2.0 * cos_i * ny
        rz = d[2] + 2.0 * cos_i * nz
        inside = (w > 0.0) & (rx * sun[0] + ry * sun[1] + rz * sun[2] >= cos_alpha)
        h = np.zeros(m)
        h[inside] = fresnel_unpolarised(cos_i[inside], n_water)
        sum_w += float(np.sum(w))
        sum_wh += float(np.sum(w * h))
        sum_w2 += float(np.sum(w * w))
        sum_w2h += float(np.sum(w * w * h))
        sum_w2h2 += float(np.sum((w * h) ** 2))
        hits += int(np.count_nonzero(inside))
        done += m
    mu = sum_wh / sum_w
    # variance of the ratio estimator: sum of (w (h - mu))^2 over (sum w)^2
    resid = sum_w2h2 - 2.0 * mu * sum_w2h + mu * mu * sum_w2
    var = max(resid, 0.0) / (sum_w * sum_w)
    return mu / omega, np.sqrt(var) / omega, hits


# (view zenith deg, view azimuth deg, px, py, sigma, mirror offset along, across)
CASES = [
    # near nadir, no resolved slope: the classical glint
    (10.0, 0.0, 0.0, 0.0, 0.1, 0.5, 0.3),
    (5.0, 120.0, 0.0, 0.0, 0.05, -0.7, 0.4),
    # oblique views over a level resolved facet
    (40.0, 30.0, 0.0, 0.0, 0.1, 0.8, -0.4),
    (60.0, 200.0, 0.0, 0.0, 0.2, -0.5, 0.7),
    (85.0, -45.0, 0.0, 0.0, 0.2, 0.6, 0.2),
    # a resolved facet tilted (0.1, -0.05)
    (30.0, 75.0, 0.1, -0.05, 0.05, 0.3, 0.9),
    (55.0, -20.0, 0.1, -0.05, 0.1, -1.0, -0.5),
    (75.0, 0.0, 0.1, -0.05, 0.05, 1.0, 0.0),
    (80.0, 160.0, 0.1, -0.05, 0.2, 0.6, -0.8),
    # a resolved facet tilted (-0.12, 0.18)
    (20.0, 250.0, -0.12, 0.18, 0.2, -1.2, 0.3),
    (65.0, 90.0, -0.12, 0.18, 0.1, 0.4, 0.4),
    (80.0, 90.0, -0.12, 0.18, 0.05, -0.5, -1.1),
]


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    out_path = os.path.join(here, "..", "data", "ocean", "glint_monte_carlo.txt")
    rng = np.random.default_rng(SEED)
    lines = [
        "# Sun glint per unit sun irradiance by Monte Carlo over Gaussian facets",
        "# (resolved slopes px, py plus unresolved width sigma per component), facets",
        "# weighted by their area facing the camera, sun a uniform disc of half-angle",
        "# alpha: L/E = mean(R [mirror ray in disc]) / (2 pi (1 - cos alpha)).",
        "# Written by tests/ocean/glint_monte_carlo.py, seed %d, %d facets a case." % (SEED, SAMPLES),
        "# Sun direction (sin z cos a, sin z sin a, cos z); view ray camera->water.",
        "# stderr is statistical; the finite disc adds a bias under 0.2 % of expected.",
        "# columns: sun_zenith sun_azimuth vx vy vz px py sigma n expected stderr",
    ]
    start = time.time()
    for vz, va, px, py, sigma, oa, oc in CASES:
        d, sun_zen, sun_azi, alpha, cos_i = build_case(vz, va, px, py, sigma, oa, oc)
        sun = np.array(
            [np.sin(sun_zen) * np.cos(sun_azi), np.sin(sun_zen) * np.sin(sun_azi), np.cos(sun_zen)]
        )
        value, err, hits = monte_carlo(rng, d, sun, px, py, sigma, alpha, N_WATER)
        lines.append(
            "# view %g deg az %g deg, resolved (%g, %g), sigma %g, mirror facet %g sigma "
            "along %g across: sun %.4g deg az %.4g deg, incidence %.4g deg, disc %.3g mrad, "
            "%d hits, rel. error %.3g"
            % (vz, va, px, py, sigma, oa, oc, sun_zen / DEG, sun_azi / DEG,
               np.arccos(cos_i) / DEG, alpha * 1000.0, hits, err / value)
        )
        lines.append(
            " ".join(
                repr(float(x))
                for x in (sun_zen, sun_azi, d[0], d[1], d[2], px, py, sigma, N_WATER, value, err)
            )
        )
        print(lines[-2])
    with open(out_path, "w") as f:
        f.write("\n".join(lines) + "\n")
    print("wrote %s (%d cases) in %.1f s" % (out_path, len(CASES), time.time() - start))


if __name__ == "__main__":
    main()

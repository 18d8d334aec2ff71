#!/usr/bin/python3
"""Sun glint on a rough sea seen from above, from the classical facet model.

The sea within a pixel is a crowd of small flat mirrors whose two slope
components are independent Gaussians of standard deviation sigma around
zero.  A facet with slopes (zx, zy) has the upward normal
(-zx, -zy, 1) / sqrt(1 + zx^2 + zy^2).  The sun is a small, distant source of
irradiance E (measured across the beam); the camera sees its glint where a
facet's normal is the half vector between the direction to the sun and the
direction back to the camera.  Counting how many facets, per unit of solid
angle around the sun, send sunlight to the camera gives the reflected
radiance per unit irradiance

    L / E = R * p(zx, zy) / (4 * cos(view zenith) * cos^4(tilt))

with p the slope density at the specular slopes, tilt the specular facet's
tilt from the vertical, and R the unpolarised Fresnel reflectance of water at
the angle between the half vector and the sun.  Views here are steep enough
that no facet worth counting is hidden from the camera, so the density needs
no visibility correction (the script checks this numerically).

Conventions of the fixture:
  - the view ray (vx, vy, vz) runs from the camera down to the water, unit
    length, vz < 0;
  - the sun is given by its zenith angle and azimuth in radians; its direction
    from the water is (sin z cos a, sin z sin a, cos z), azimuth counted from
    +x towards +y;
  - px, py are the slopes of the facet the lattice resolves (zero here);
  - sigma is the standard deviation of each unresolved slope component;
  - n is the refractive index of water;
  - expected is L / E, the reflected sun radiance per unit sun irradiance.

Writes tests/data/ocean/glint_cox_munk.txt next to this script's tree.
Run with /usr/bin/python3 (needs numpy).
"""

import os

import numpy as np

DEG = np.pi / 180.0


def unit(v):
    v = np.asarray(v, dtype=float)
    return v / np.sqrt(np.dot(v, v))


def fresnel_unpolarised(cos_i, n):
    """Reflectance of light arriving from air onto water of index n, the mean
    of the s and p amplitude reflectances squared (cosine form)."""
    sin_t2 = (1.0 - cos_i * cos_i) / (n * n)
    cos_t = np.sqrt(1.0 - sin_t2)
    rs = (cos_i - n * cos_t) / (cos_i + n * cos_t)
    rp = (n * cos_i - cos_t) / (n * cos_i + cos_t)
    return 0.5 * (rs * rs + rp * rp)


def sun_vector(zen, azi):
    return np.array(
        [np.sin(zen) * np.cos(azi), np.sin(zen) * np.sin(azi), np.cos(zen)]
    )


def view_ray(zen, azi):
    """Unit ray from the camera down to the water, looking towards azimuth
    azi with the camera zen off the vertical."""
    return np.array(
        [np.sin(zen) * np.cos(azi), np.sin(zen) * np.sin(azi), -np.cos(zen)]
    )


def visible_fraction(ray, px, py, sigma):
    """Mean over the slope density of the facet area facing the camera,
    relative to a flat sea: 1 when every facet worth counting faces it."""
    mu_v = -ray[2]
    horiz = np.hypot(ray[0], ray[1])
    if horiz == 0.0:
        return 1.0
    t = horiz / mu_v
    along = (px * ray[0] + py * ray[1]) / horiz
    # Gauss-Hermite over the along-view slope: exact for the linear weight
    # when no facet is hidden; the clip shows whether any is.
    x, w = np.polynomial.hermite_e.hermegauss(200)
    s = along + sigma * x
    return float(np.sum(w * np.maximum(1.0 + t * s, 0.0)) / np.sqrt(2.0 * np.pi))


def glint(sun_zen, sun_azi, ray, px, py, sigma, n):
    s = sun_vector(sun_zen, sun_azi)
    to_camera = -ray
    h = unit(s + to_camera)
    zx = -h[0] / h[2]
    zy = -h[1] / h[2]
    p = np.exp(-((zx - px) ** 2 + (zy - py) ** 2) / (2.0 * sigma * sigma)) / (
        2.0 * np.pi * sigma * sigma
    )
    cos_view = to_camera[2]
    cos_tilt = h[2]
    cos_i = float(np.dot(h, s))
    r = fresnel_unpolarised(cos_i, n)
    value = r * p / (4.0 * cos_view * cos_tilt**4)
    offset = np.hypot(zx - px, zy - py) / sigma
    return value, offset, np.degrees(np.arccos(cos_i))


# (sun zenith deg, sun azimuth deg, view zenith deg, view azimuth deg, sigma)
CASES = [
    # sun overhead, camera almost straight down
    (0.0, 0.0, 0.25, 0.0, 0.05),
    (0.0, 0.0, 2.0, 45.0, 0.05),
    (0.0, 0.0, 5.0, 130.0, 0.1),
    (0.0, 0.0, 10.0, -60.0, 0.1),
    (0.0, 0.0, 20.0, 200.0, 0.2),
    (0.0, 0.0, 15.0, 90.0, 0.15),
    # camera looking towards the sun
    (10.0, 0.0, 10.0, 0.0, 0.05),
    (10.0, 30.0, 5.0, 30.0, 0.05),
    (20.0, 45.0, 20.0, 45.0, 0.1),
    (20.0, -120.0, 12.0, -120.0, 0.08),
    (30.0, 90.0, 20.0, 90.0, 0.05),
    (30.0, 160.0, 10.0, 160.0, 0.1),
    (40.0, 10.0, 20.0, 10.0, 0.1),
    (40.0, 270.0, 15.0, 270.0, 0.15),
    (35.0, 75.0, 18.0, 75.0, 0.2),
    # camera looking away from the sun or across its azimuth
    (10.0, 0.0, 5.0, 180.0, 0.1),
    (15.0, 60.0, 10.0, 240.0, 0.2),
    (20.0, 0.0, 10.0, 90.0, 0.1),
    (25.0, -45.0, 8.0, 45.0, 0.15),
    (30.0, 200.0, 12.0, 110.0, 0.2),
    (40.0, 0.0, 20.0, 180.0, 0.2),
    (5.0, 300.0, 3.0, 30.0, 0.05),
    # glint off to the side of the view
    (15.0, 20.0, 12.0, 40.0, 0.05),
    (25.0, 100.0, 20.0, 80.0, 0.08),
    (35.0, -30.0, 16.0, 0.0, 0.12),
    (40.0, 135.0, 20.0, 150.0, 0.05),
    (12.0, 250.0, 7.0, 230.0, 0.07),
    (28.0, 310.0, 4.0, 280.0, 0.18),
    # far tail: little glint, still a finite value to match
    (40.0, 0.0, 5.0, 180.0, 0.05),
    (30.0, 90.0, 20.0, 270.0, 0.1),
    (0.0, 0.0, 20.0, 0.0, 0.05),
]

N_WATER = 1.34


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    out_path = os.path.join(here, "..", "data", "ocean", "glint_cox_munk.txt")
    lines = [
        "# Sun glint on a Gaussian sea seen from above, per unit sun irradiance.",
        "# L/E = R p(zx, zy) / (4 cos(view zenith) cos^4(tilt)), p the Gaussian",
        "# slope density at the specular slopes, R the unpolarised Fresnel",
        "# reflectance at the half angle. Written by tests/ocean/glint_reference.py.",
        "# Sun direction (sin z cos a, sin z sin a, cos z); view ray camera->water.",
        "# Angles in radians. Every facet worth counting faces the camera here",
        "# (mean visible facet area relative to flat differs from 1 by < 1e-12).",
        "# columns: sun_zenith_rad sun_azimuth_rad vx vy vz px py sigma n expected",
    ]
    worst_visibility = 0.0
    for sz, sa, vz, va, sigma in CASES:
        ray = view_ray(vz * DEG, va * DEG)
        px = py = 0.0
        value, offset, incidence = glint(sz * DEG, sa * DEG, ray, px, py, sigma, N_WATER)
        vis = visible_fraction(ray, px, py, sigma)
        worst_visibility = max(worst_visibility, abs(vis - 1.0))
        lines.append(
            "# sun %g deg az %g deg, view %g deg az %g deg: specular slope %.3g sigma "
            "off centre, incidence %.4g deg" % (sz, sa, vz, va, offset, incidence)
        )
        lines.append(
            " ".join(
                repr(float(x))
                for x in (sz * DEG, sa * DEG, ray[0], ray[1], ray[2], px, py, sigma, N_WATER, value)
            )
        )
    assert worst_visibility < 1e-12, worst_visibility
    with open(out_path, "w") as f:
        f.write("\n".join(lines) + "\n")
    print("wrote %s (%d cases), visibility deviation %.3g" % (out_path, len(CASES), worst_visibility))


if __name__ == "__main__":
    main()

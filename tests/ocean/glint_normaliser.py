#!/usr/bin/python3
"""Normaliser of the slope density as the camera sees it, by quadrature.

Seen from a camera, a facet counts in proportion to its area facing the
camera.  Per unit of horizontal sea, a facet of along-view slope p (the slope
component in the camera's horizontal viewing direction, positive where the
facet tilts towards the camera) presents 1 + T p to the camera, relative to a
flat facet, where T = tan(view zenith); facets with 1 + T p <= 0 turn their
backs and are not seen.  Around a resolved slope pu the unresolved slope is
Gaussian with standard deviation sigma, so the camera's density of along-view
slopes is proportional to

    (1 + T p) * exp(-(p - pu)^2 / (2 sigma^2))   for 1 + T p > 0,

and its normaliser is

    D(T, pu, sigma) = integral over 1 + T p > 0 of
                      (1 + T p) * exp(-(p - pu)^2 / (2 sigma^2)) dp.

The Gaussian is deliberately left without its 1 / (sigma sqrt(2 pi)): with
every facet visible D is sigma * sqrt(2 pi) * (1 + T pu).  Divide by
sigma * sqrt(2 pi) for the mean visible area relative to a flat sea.

The integral is done numerically: composite Gauss-Legendre (many panels of
20 points) from the horizon slope p = -1/T, or pu - 14 sigma if higher, to
pu + 14 sigma, with the integrand taken exactly as written above.  The script
repeats each integral with twice the panels and refuses to write if the two
disagree by more than 1e-13 relative.

Writes tests/data/ocean/glint_normaliser.txt, lines "T pu sigma D".
Run with /usr/bin/python3 (needs numpy).
"""

import os

import numpy as np

NODES, WEIGHTS = np.polynomial.legendre.leggauss(20)


def integrand(p, t, pu, sigma):
    vis = 1.0 + t * p
    return np.where(vis > 0.0, vis, 0.0) * np.exp(-((p - pu) ** 2) / (2.0 * sigma * sigma))


def normaliser(t, pu, sigma, panels):
    lo = max(-1.0 / t, pu - 14.0 * sigma)
    hi = pu + 14.0 * sigma
    if hi <= lo:
        return 0.0
    edges = np.linspace(lo, hi, panels + 1)
    a = edges[:-1][:, None]
    b = edges[1:][:, None]
    p = 0.5 * (b - a) * NODES[None, :] + 0.5 * (b + a)
    f = integrand(p, t, pu, sigma)
    return float(np.sum(0.5 * (b - a) * WEIGHTS[None, :] * f))


def cases():
    out = []
    # grazing and near-grazing views: T from tan(5.7 deg) to tan(88.9 deg)
    for t in (0.1, 0.5, 1.0, 2.0, 5.0, 10.0, 20.0, 50.0):
        for sigma in (0.02, 0.05, 0.1, 0.2, 0.3):
            for pu in (-0.2, -0.1, -0.05, -0.02, -0.01, 0.0, 0.05, 0.2):
                # the resolved facet must face the camera
                if 1.0 + t * pu <= 0.0:
                    continue
                out.append((t, pu, sigma))
    # near the horizon slope: the resolved facet barely faces the camera, so
    # a large share of the unresolved facets is hidden
    for t, sigma in ((5.0, 0.05), (10.0, 0.02), (20.0, 0.1), (50.0, 0.3), (5.0, 0.3)):
        for frac in (0.9, 0.99):
            out.append((t, -frac / t, sigma))
    return out


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    out_path = os.path.join(here, "..", "data", "ocean", "glint_normaliser.txt")
    lines = [
        "# D(T, pu, sigma) = integral over 1 + T p > 0 of",
        "#     (1 + T p) exp(-(p - pu)^2 / (2 sigma^2)) dp",
        "# (Gaussian without its 1/(sigma sqrt(2 pi)); D = sigma sqrt(2 pi) (1 + T pu)",
        "# when no facet is hidden). Numerical quadrature, written by",
        "# tests/ocean/glint_normaliser.py. A closed form that reads the normal",
        "# distribution from a table at steps of 0.01 in z = -(1/T + pu)/sigma",
        "# without interpolating can differ from D by up to 0.01 sigma (1 + T pu).",
        "# columns: T pu sigma D",
    ]
    worst = 0.0
    rows = cases()
    for t, pu, sigma in rows:
        d1 = normaliser(t, pu, sigma, 400)
        d2 = normaliser(t, pu, sigma, 800)
        rel = abs(d1 - d2) / abs(d2)
        worst = max(worst, rel)
        lines.append(" ".join(repr(float(x)) for x in (t, pu, sigma, d2)))
    assert worst < 1e-13, worst
    with open(out_path, "w") as f:
        f.write("\n".join(lines) + "\n")
    print("wrote %s (%d cases), panel-doubling change %.3g" % (out_path, len(rows), worst))


if __name__ == "__main__":
    main()

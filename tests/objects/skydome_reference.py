#!/usr/bin/python3
"""Which pixels of a tilted, rolled camera see the sky dome.

A pixel shows the dome when any of its samples (2 x 2 below imaging method
2, else 4 x 4, at (i + 0.5) / n of the pixel) has a ray whose z exceeds
-sin(horizon). The camera's rotation is the object rotation from chi, phi and
theta; its image plane carries (-e, -a, 1) in its own frame; the dome sits at
the origin, unrotated. Prints one line of 0/1 per row, for the masks used in
skydome_imaging_test.cpp, and the smallest distance of any sample's z from
the horizon (the masks are only meaningful when it is well above rounding).
"""
import numpy as np

DEGREES = 0.017453292519444445


def rotation(chi, phi, theta):
    c, s = np.cos, np.sin
    return np.array([
        [c(theta) * c(chi) * c(phi) - s(theta) * s(phi),
         c(theta) * c(chi) * s(phi) + s(theta) * c(phi), -c(theta) * s(chi)],
        [-s(theta) * c(chi) * c(phi) - c(theta) * s(phi),
         -s(theta) * c(chi) * s(phi) + c(theta) * c(phi), s(theta) * s(chi)],
        [s(chi) * c(phi), s(chi) * s(phi), c(chi)],
    ])


def mask(chi_deg, phi_deg, theta_deg, rows, e_range, cols, a_range, samples,
         horizon_deg):
    to_world = rotation(chi_deg * DEGREES, phi_deg * DEGREES,
                        theta_deg * DEGREES).T
    sin_h = np.sin(horizon_deg * DEGREES)
    step_e = (e_range[1] - e_range[0]) / rows
    step_a = (a_range[1] - a_range[0]) / cols
    lines = []
    margin = np.inf
    for r in range(rows):
        line = ""
        for c in range(cols):
            e0 = e_range[0] + r * step_e
            a0 = a_range[0] + c * step_a
            seen = False
            for i in range(samples):
                e = e0 + step_e * (i + 0.5) / samples
                for j in range(samples):
                    a = a0 + step_a * (j + 0.5) / samples
                    d = np.array([-e, -a, 1.0]) / np.sqrt(e * e + a * a + 1.0)
                    z = (to_world @ d)[2]
                    margin = min(margin, abs(z + sin_h))
                    seen = seen or z > -sin_h
            line += "1" if seen else "0"
        lines.append(line)
    return lines, margin


if __name__ == "__main__":
    cases = [
        ("two by two samples, horizon 0", 2, 0.0),
        ("four by four samples, horizon 0", 4, 0.0),
        ("four by four samples, horizon 4 degrees", 4, 4.0),
    ]
    for title, samples, horizon in cases:
        lines, margin = mask(85.0, 30.0, 20.0, 12, (-0.3, 0.3), 16, (-0.4, 0.4),
                             samples, horizon)
        print(title, "(smallest margin %.3g)" % margin)
        for line in lines:
            print('      "%s",' % line)

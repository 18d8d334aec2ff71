#!/usr/bin/env python3
"""Expected values for the sun tests, worked out apart from the engine.

Run: python3 sun_reference.py. Floats print in repr (shortest round-trip) and,
where the engine writes text, in the writer's 15 significant digits (%.15g)
or the default stream form (%g).
"""
import math

PI = 3.1415926535  # the engine's pi, never math.pi
D2R = 0.017453292519444445
R2D = 57.29577951471995
HALF_PI_EXACT = 1.5707963267948966


def zenith_from_list(theta):
    return PI - theta * D2R


def azimuth_from_list(phi):
    return phi * D2R + PI


def theta_for_list(zenith):
    return 180.0 - zenith * R2D


def phi_for_list(azimuth):
    return azimuth * R2D - 180.0


def direction(zenith, azimuth):
    return (-math.sin(zenith) * math.cos(azimuth),
            -math.sin(zenith) * math.sin(azimuth),
            -math.cos(zenith))


def g15(x):
    return "%.15g" % x


print("list block read")
for theta, phi in ((30.0, 90.0), (60.0, 180.0), (0.0, 0.0), (-12.5, 270.0)):
    z, a = zenith_from_list(theta), azimuth_from_list(phi)
    print("  theta %g phi %g -> chi %r phi %r" % (theta, phi, z, a))
    print("    written back: %s %s" % (g15(theta_for_list(z)), g15(phi_for_list(a))))

print("list block write of chi 2.0, phi 4.0:", g15(theta_for_list(2.0)), g15(phi_for_list(4.0)))

# Keys at t=0 (30, 90) and t=10 (60, 180): halfway, and one segment past.
z0, a0 = zenith_from_list(30.0), azimuth_from_list(90.0)
z1, a1 = zenith_from_list(60.0), azimuth_from_list(180.0)
for t in (5.0, 20.0, -10.0):
    f = (t - 0.0) / (10.0 - 0.0)
    print("track at %g: zenith %r azimuth %r" % (t, z0 + f * (z1 - z0), a0 + f * (a1 - a0)))

print("direction of (1, 2):", tuple(repr(c) for c in direction(1.0, 2.0)))
d = direction(1.0, 2.0)
print("print_state of (1, 2): 'sun zenith %g azimuth %g direction %g %g %g'"
      % (1.0 * 180.0 / PI, 2.0 * 180.0 / PI, d[0] + 0.0, d[1] + 0.0, d[2] + 0.0))
d = direction(z0, a0)
print("direction of theta 30 phi 90 (list angles):", tuple(repr(c) for c in d))

print("clock")
for t in (6.0, 12.0, 18.0, 24.0):
    z = ((t - 6.0) / 12.0 + 0.5) * PI
    print("  t %g: zenith %r direction %s" % (t, z,
          tuple(repr(c) for c in direction(z, HALF_PI_EXACT))))

#!/usr/bin/python3
"""Angles below the horizontal at which a line of sight from height h meets
a sphere of radius R, for the round-surface cases of surface_object_test.cpp.

b is the ray's horizontal component along the azimuth asked for, s its sign
(+1 at b = 0):
    acos((s b - sqrt((R + h)^2 - R^2)) / (b^2 / (R + h) + R + h)) - 1.57079632675
With b = 0 this is the dip of the horizon, acos(R / (R + h)), printed beside
it as a check on the formula's meaning.
"""
import numpy as np

R = 6.371e6
H = 10.0
HALF_PI = 1.57079632675
PI = 3.1415926535


def angle(b):
    s = -1.0 if b < 0.0 else 1.0
    rh = R + H
    return np.arccos((s * b - np.sqrt(rh * rh - R * R)) / (b * b / rh + rh)) - HALF_PI


print("vertical ray      %.17g   horizon dip %.17g" % (angle(0.0), np.arccos(R / (R + H))))
print("b = 0.6           %.17g" % angle(0.6))
print("b = 0.6 cos(pi)   %.17g" % angle(0.6 * np.cos(PI)))
b = 0.28 * np.cos(1.0) + 0.96 * np.sin(1.0)
print("b = %.17g  %.17g" % (b, angle(b)))

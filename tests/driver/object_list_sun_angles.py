#!/usr/bin/env python3
"""Sun angles of the object list's sun block, read and written again.

On reading, a file angle theta becomes the zenith pi - theta * d and phi the
azimuth phi * d + pi; on writing they turn back as 180 - zenith * r and
azimuth * r - 180, with the engine's literal pi and factors. Printed with 15
significant digits, as the writers do, the angles of the tests come back
unchanged.
"""

PI = 3.1415926535
DEGREES_TO_RADIANS = 0.017453292519444445
RADIANS_TO_DEGREES = 57.29577951471995

for theta, phi in [(30.0, 90.0), (45.5, -120.25)]:
    zenith = PI - theta * DEGREES_TO_RADIANS
    azimuth = phi * DEGREES_TO_RADIANS + PI
    back_theta = "%.15g" % (180.0 - zenith * RADIANS_TO_DEGREES)
    back_phi = "%.15g" % (azimuth * RADIANS_TO_DEGREES - 180.0)
    print(theta, phi, "->", zenith, azimuth, "->", back_theta, back_phi)
    assert back_theta == "%.15g" % theta and back_phi == "%.15g" % phi

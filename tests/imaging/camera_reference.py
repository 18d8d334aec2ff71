#!/usr/bin/env python3
"""Reference numbers for the camera tests, computed independently of the engine.

Image plane: half angle h = fov * pi / 360 with the engine's pi 3.1415926535,
pixel size 2 tan(h) / n, plane size n * pixel size, and the plane bounds of a
window of pixels. Sea plane fit: pitch and roll of known slopes.
Run with the system interpreter, which has numpy: /usr/bin/python3 camera_reference.py
"""
import math

import numpy as np

PI = 3.1415926535
HALF_ANGLE_PER_DEGREE = PI / 360.0


def image_plane(fov, n):
    h = fov * HALF_ANGLE_PER_DEGREE
    pixel = 2.0 * math.tan(h) / n
    return h, pixel, n * pixel


def window(size, n, first, last):
    return size * -0.5 + (size / n) * first, size * -0.5 + (size / n) * (last + 1)


def main():
    print("half angle per degree %.17g (engine literal 0.008726646259722222)"
          % HALF_ANGLE_PER_DEGREE)
    for fov, n in ((90.0, 4), (40.0, 640), (30.0, 3)):
        h, pixel, size = image_plane(fov, n)
        print("fov %g n %d: half angle %.17g pixel %.17g size %.17g" % (fov, n, h, pixel, size))
    h, pixel, size = image_plane(40.0, 640)
    print("fov 40 n 640 window 10..319: %.17g %.17g" % window(size, 640, 10, 319))

    # Pixel-centre rays of a 2 by 2 picture with fov 90 on both axes, camera
    # unrotated at the origin: direction (-e, -a, 1) / |.|.
    h, pixel, size = image_plane(90.0, 2)
    for row in range(2):
        for col in range(2):
            e = -size / 2 + pixel * (row + 0.5)
            a = -size / 2 + pixel * (col + 0.5)
            d = np.array([-e, -a, 1.0]) / math.sqrt(e * e + a * a + 1.0)
            print("ray row %d col %d: %.17g %.17g %.17g" % (row, col, d[0], d[1], d[2]))

    # Sea plane fits: pitch -atan(a), roll atan(b), as floats.
    for a, b in ((0.1, -0.05), (0.0, 0.2)):
        print("slopes %g %g: pitch %.9g roll %.9g" % (a, b, np.float32(-math.atan(a)),
                                                      np.float32(math.atan(b))))

    # A pixel of 2 by 2 samples under "log", half lit at radiance r.
    for r in (4.0, 100.0):
        print("half-lit log mean of %g: %.9g" % (r, np.float32((2 * math.log10(r) - 40.0) / 4.0)))


if __name__ == "__main__":
    main()

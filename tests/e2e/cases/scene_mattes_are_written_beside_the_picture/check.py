import os
import sys

import numpy

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker, sgi_header  # noqa: E402

c = Checker()
c.all_equal("runc1cam0001.img", c.planes("runc1cam0001.img", 1, 4, 6), 0.0)
# Nothing is in the scene: every pixel's distance is the "nothing" marker,
# 1e8 m, and nothing fills any of it.
c.all_equal("runc1cam_scene_distance0001.img", c.planes("runc1cam_scene_distance0001.img", 1, 4, 6), 1e8)
c.all_equal("runc1cam_fraction_filled0001.img", c.planes("runc1cam_fraction_filled0001.img", 1, 4, 6), 0.0)
xyz = c.planes("runc1cam_scene_xyz0001.img", 3, 4, 6)
# Each pixel's position lies along its unit ray from the camera, (0, 0, 10),
# at that distance.
if len(xyz) == 3:
    reach = numpy.sqrt(xyz[0].astype(numpy.float64) ** 2 + xyz[1].astype(numpy.float64) ** 2
                       + (xyz[2].astype(numpy.float64) - 10.0) ** 2)
    c.expect(numpy.allclose(reach, 1e8, rtol=1e-6), f"positions not 1e8 m away: {reach}")
c.done()

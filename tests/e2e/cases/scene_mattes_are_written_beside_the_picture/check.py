import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker, sgi_header  # noqa: E402

c = Checker()
c.all_equal("runc1cam0001.img", c.planes("runc1cam0001.img", 1, 4, 6), 0.0)
c.all_equal("runc1cam_scene_distance0001.img", c.planes("runc1cam_scene_distance0001.img", 1, 4, 6), 0.0)
c.all_equal("runc1cam_fraction_filled0001.img", c.planes("runc1cam_fraction_filled0001.img", 1, 4, 6), 0.0)
xyz = c.planes("runc1cam_scene_xyz0001.img", 3, 4, 6)
# Nothing was hit, so every pixel's position is the camera's, (0, 0, 10).
for plane, value in zip(xyz, (0.0, 0.0, 10.0)):
    c.all_equal("runc1cam_scene_xyz0001.img", [plane], value)
c.done()

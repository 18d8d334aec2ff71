import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker, sgi_header  # noqa: E402

c = Checker()
c.all_equal("runc1cams10001.img", c.planes("runc1cams10001.img", 1, 4, 2), 0.0)
c.expect(sorted(os.listdir(".")) == ["cam.cam", "runc1cams10001.img", "scene.dat"], f"files: {sorted(os.listdir('.'))}")
c.done()

import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker  # noqa: E402

# The picture stands square across the camera's whole view. Each frame's
# picture is one grey level b, shown as radiance b with the range 0 to 255.
c = Checker()
c.all_equal("runc1cam0001.img", c.planes("runc1cam0001.img", 1, 4, 6), 60.0)
c.all_equal("runc1cam0002.img", c.planes("runc1cam0002.img", 1, 4, 6), 220.0)
c.done()

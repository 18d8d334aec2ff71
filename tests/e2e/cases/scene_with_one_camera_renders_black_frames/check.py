import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker, sgi_header  # noqa: E402

c = Checker()
c.files({"runc1cam0001.img", "runc1cam0002.img"})
c.all_equal("runc1cam0001.img", c.planes("runc1cam0001.img", 1, 4, 6), 0.0)
c.all_equal("runc1cam0002.img", c.planes("runc1cam0002.img", 1, 4, 6), 0.0)
c.expect(len(os.listdir(".")) == 4, f"unexpected files: {sorted(os.listdir('.'))}")
c.done()

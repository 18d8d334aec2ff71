import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker, sgi_header  # noqa: E402

c = Checker()
name = "runc1cam0001.rgb"
c.expect(sgi_header(name) == (474, 0, 1, 3, 6, 4, 1), f"header {sgi_header(name)}")
data = open(name, "rb").read()
c.expect(len(data) == 512 + 24, f"size {len(data)}")
# -20 over (-30, 10): (10 / 40) * 255 = 63.75, truncated to 63; the cleared
# border outside the window is -20 as well.
c.expect(set(data[512:]) == {63}, f"bytes {sorted(set(data[512:]))}")
c.done()

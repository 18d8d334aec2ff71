import os
import sys

import numpy

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker  # noqa: E402

c = Checker()
frames = {f"runc1cam000{k}.img" for k in (1, 2, 3)}
# Both generated spectra are written beside the ocean file: a header of two
# ints (17 columns of the half spectrum, 32 rows) and a complex float each.
spectra = {"sea.spectrum", "swell.spectrum"}
inputs = {"scene.dat", "cam.cam", "sea.ocean", "swell.detail", "mound.detail", "mound.hdf"}
present = c.files(frames | spectra)
c.expect(present <= frames | spectra | inputs, f"unexpected files: {sorted(present)}")
for name in sorted(spectra & present):
    c.expect(os.path.getsize(name) == 8 + 17 * 32 * 2 * 4,
             f"{name}: {os.path.getsize(name)} bytes")
for name in sorted(frames):
    for p in c.planes(name, 1, 4, 6):
        c.expect(bool(numpy.all(numpy.isfinite(p))), f"{name}: values that are not finite")
c.done()

"""The one pixel, straight down through a uniform slab under a sun 30
degrees from overhead, against the slab's reference: the sun's irradiance
times scattering, the isotropic phase value and the trapezoid of the
single-scattering integrand at the march's own samples (the sun's path
from each sample is exact here, so the lattice adds nothing)."""
import os
import sys

import numpy

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", ".."))
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "volumes"))
from e2e.e2e_files import hdf_planes  # noqa: E402
import slab_reference as slab  # noqa: E402

planes = hdf_planes("slabc1view0001.img")
assert len(planes) == 3, f"{len(planes)} planes"
o = numpy.array([3.0, -7.0, 60.0])
d = numpy.array([0.0, 0.0, -1.0])
s = slab.sun_vector(30.0, 0.0)
t_in, t_out = slab.entry_exit(o, d)
irradiance = [10.0, 12.0, 13.0]
failures = 0
for (k, _, a, b, x), E, plane in zip(slab.BANDS, irradiance, planes):
    expected = E * b * 0.079577471545947673 * slab.trapezoid_at_step(o, d, s, t_in, t_out, a + b, x)
    got = float(plane[0, 0])
    if abs(got / expected - 1.0) > 2e-6:
        print(f"band {k}: got {got!r}, expected {expected!r}")
        failures += 1
sys.exit(1 if failures else 0)

import math
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
from e2e_files import Checker  # noqa: E402

c = Checker()
# "tower" sorts after "scene" and still names the box: its matte carries the
# box's name, and is the box's coverage, not the scene's. The 2 m box stands
# 10 m ahead, its face at x = 9 over |y|, |z| <= 1, that is |e|, |a| <= 1/9 on
# the image plane; the 4 x 4 pixels span +-tan(20 deg) in steps of
# p = 2 tan(20 deg) / 4, so the middle pixels (edges 0 and p = 0.182 > 1/9)
# hold (1/9) / p each way of the box: (1/9 / p)^2 of their area.
present = c.files({"namedc1tower0001.img", "namedc1tower_tower_fraction_filled0001.img"})
c.expect(not any(name.startswith("namedc1tower_fraction") for name in present),
         "the tower's matte was written as a scene matte")
c.expect(not any(name.startswith("missingc1") for name in present),
         "the scene with the missing name wrote files")
half = math.tan(40 * 0.008726646259722222)
p = 2 * half / 4
inner = (1 / 9) / p
planes = c.planes("namedc1tower_tower_fraction_filled0001.img", 1, 4, 4)
if planes:
    for i in range(4):
        for j in range(4):
            want = inner * inner if i in (1, 2) and j in (1, 2) else 0.0
            got = float(planes[0][i, j])
            c.expect(abs(got - want) <= 1e-5, f"pixel ({i}, {j}): {got}, want {want}")
c.done()

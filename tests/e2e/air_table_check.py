#!/usr/bin/env python3
"""Checks that a picture imaged through the air's tables stays close to the
same picture with every sky ray integrated exactly.

    air_table_check.py ENGINE FIXTURE_DIR AIR_FILE LIMIT

The fixture folder holds scene.dat and the files it names. It is rendered
twice, each in a fresh folder: as it is, and with AIR_FILE closed by
`external_exact 1` (every ray exact). Every pixel of every band of every
picture written must agree within LIMIT, relative to the exact value.
"""
import os
import shutil
import subprocess
import sys
import tempfile

import numpy

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from e2e_files import hdf_planes  # noqa: E402


def render(work, fixture, air_file, exact):
    shutil.copytree(fixture, work)
    if exact:
        path = os.path.join(work, air_file)
        with open(path) as f:
            lines = f.read().split("\n")
        # The flag comes after sun_max_radiance, in place of the closing end.
        while lines and lines[-1].strip() in ("", "end"):
            lines.pop()
        if not lines[-1].startswith("sun_max_radiance"):
            raise SystemExit(f"{air_file} must end with sun_max_radiance")
        with open(path, "w") as f:
            f.write("\n".join(lines + ["external_exact 1", "end", ""]))
    run = subprocess.run([ENGINE, "scene.dat"], cwd=work, stdout=subprocess.PIPE,
                         stderr=subprocess.PIPE)
    if run.returncode != 0:
        sys.stdout.write(run.stdout.decode("latin-1") + run.stderr.decode("latin-1"))
        raise SystemExit(f"render exited with {run.returncode}")
    return {name: numpy.array(hdf_planes(os.path.join(work, name)))
            for name in sorted(os.listdir(work)) if name.endswith(".img")}


def main():
    global ENGINE
    ENGINE = os.path.abspath(sys.argv[1])
    fixture, air_file, limit = sys.argv[2], sys.argv[3], float(sys.argv[4])
    with tempfile.TemporaryDirectory() as top:
        tables = render(os.path.join(top, "tables"), fixture, air_file, False)
        exact = render(os.path.join(top, "exact"), fixture, air_file, True)
    if not exact or sorted(tables) != sorted(exact):
        raise SystemExit(f"pictures {sorted(tables)} and {sorted(exact)}")
    failures = 0
    for name in sorted(exact):
        a, b = tables[name], exact[name]
        if not (numpy.all(numpy.isfinite(a)) and numpy.all(b > 0.0)):
            print(f"{name}: non-finite or unlit pixels")
            failures += 1
            continue
        rel = numpy.abs(a - b) / b
        worst = numpy.unravel_index(numpy.argmax(rel), rel.shape)
        over = numpy.argwhere(rel > limit)
        print(f"{name}: worst {rel[worst]:.4f} at band, row, col {tuple(int(k) for k in worst)}"
              f" ({a[worst]:.6g} against {b[worst]:.6g}); {len(over)} values beyond {limit}")
        if len(over):
            print(f"  rows beyond: {sorted(set(int(k) for k in over[:, 1]))}")
            failures += 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3
"""Writes the height-grid file of the ocean end-to-end case.

    make_mound_hdf.py [FILE]      (default: the case's files/mound.hdf)

One rank-2 float32 data set of 12 rows by 16 columns: a Gaussian mound
0.3 exp(-((i - 7.5)^2 + (j - 5.5)^2) / 8), i the column 0..15 and j the row
0..11, so that element (i, j) sits at i + 16 j as the engine reads it.
Needs Debian's /usr/bin/python3 with numpy and pyhdf.
"""
import os
import sys

import numpy
from pyhdf.SD import SD, SDC

ROWS, COLS = 12, 16


def mound():
    j, i = numpy.mgrid[0:ROWS, 0:COLS].astype(numpy.float64)
    return 0.3 * numpy.exp(-((i - 7.5) ** 2 + (j - 5.5) ** 2) / 8.0)


def write(name):
    sd = SD(name, SDC.WRITE | SDC.CREATE | SDC.TRUNC)
    sds = sd.create("mound", SDC.FLOAT32, (ROWS, COLS))
    sds[:] = mound().astype(numpy.float32)
    sds.endaccess()
    sd.end()


def main(argv):
    here = os.path.dirname(os.path.abspath(__file__))
    default = os.path.join(here, "cases", "ocean_with_swell_and_height_grid_runs_frames", "files",
                           "mound.hdf")
    write(argv[1] if len(argv) > 1 else default)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

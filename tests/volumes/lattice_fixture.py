#!/usr/bin/env python3
"""Makes tests/data/volumes/lattice_3x2x5.dat with tools/write_density.py:
a 3 by 2 by 5 lattice whose value at [x, y, z] is (x + 10 y + 100 z) / 2 - 7.25,
every one exact in single precision, so that a reader can be checked to the bit
against the formula alone.

Run: python3 lattice_fixture.py [output file]
"""
import os
import sys

import numpy

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "..", "tools"))
import write_density  # noqa: E402


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "..", "data", "volumes",
                                                             "lattice_3x2x5.dat")
    x, y, z = numpy.meshgrid(numpy.arange(3), numpy.arange(2), numpy.arange(5), indexing="ij")
    write_density.write_density(out, (x + 10 * y + 100 * z) / 2.0 - 7.25)


if __name__ == "__main__":
    main()

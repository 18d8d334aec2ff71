#!/usr/bin/python3
"""An independent reader and writer of HDF 4 float planes, for the image tests.

    hdf_tool.py dump FILE
        One line per data set (dimension records left out), in the order they were written:
        "<type> <rows> <cols> <n attributes> : v v v ..." (values row-major, %.9g).
    hdf_tool.py make FILE TYPE ROWS COLS N_PLANES
        N_PLANES data sets of TYPE (float32, float64, int16), ROWS x COLS;
        element (r, c) of plane p is p * 1000 + r * COLS + c + 0.25 (int16: without 0.25).
"""
import sys

import numpy
from pyhdf.SD import SD, SDC

TYPES = {"float32": (SDC.FLOAT32, numpy.float32), "float64": (SDC.FLOAT64, numpy.float64),
         "int16": (SDC.INT16, numpy.int16)}
NAMES = {SDC.FLOAT32: "float32", SDC.FLOAT64: "float64", SDC.INT16: "int16"}


def dump(name):
    sd = SD(name, SDC.READ)
    sets = sorted(sd.datasets().items(), key=lambda item: item[1][3])
    for set_name, (_, shape, kind, index) in sets:
        sds = sd.select(index)
        if sds.iscoordvar():
            # A dimension record the library keeps beside each data set, not a data set.
            sds.endaccess()
            continue
        values = numpy.array(sds.get()).reshape(-1)
        n_attributes = len(sds.attributes())
        print("%s %s : %s" % (NAMES.get(kind, str(kind)),
                              " ".join(str(s) for s in shape) + " " + str(n_attributes),
                              " ".join("%.9g" % v for v in values)))
        sds.endaccess()
    if sd.attributes():
        print("file attributes %d" % len(sd.attributes()))
    sd.end()


def make(name, kind, rows, cols, n_planes):
    sd_type, numpy_type = TYPES[kind]
    sd = SD(name, SDC.WRITE | SDC.CREATE | SDC.TRUNC)
    for p in range(n_planes):
        values = numpy.arange(rows * cols, dtype=numpy.float64).reshape(rows, cols) + p * 1000
        if kind != "int16":
            values += 0.25
        sds = sd.create("plane%d" % p, sd_type, (rows, cols))
        sds[:] = values.astype(numpy_type)
        sds.endaccess()
    sd.end()


def main(argv):
    if len(argv) == 3 and argv[1] == "dump":
        dump(argv[2])
    elif len(argv) == 7 and argv[1] == "make":
        make(argv[2], argv[3], int(argv[4]), int(argv[5]), int(argv[6]))
    else:
        sys.stderr.write(__doc__)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

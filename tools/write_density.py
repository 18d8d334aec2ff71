#!/usr/bin/env python3
"""Writes and reads the engine's binary lattice files: a cloud's "binary"
density file and its small-scale fluctuation file.

Layout: the 8 ASCII bytes "TCLATTIC", then n_x, n_y, n_z as 32-bit
little-endian signed ints, then n_x * n_y * n_z 32-bit little-endian IEEE
floats with x varying fastest, then y, then z. A numpy array indexed
[x, y, z] is written in that order.

As a module:
    import write_density
    write_density.write_density("cloud.dat", array)    # array[x, y, z]
    array = write_density.read_density("cloud.dat")    # float32, [x, y, z]

As a command:
    write_density.py ARRAY.npy DENSITY_FILE       an array saved by numpy.save
    write_density.py --uniform NX NY NZ VALUE DENSITY_FILE
    write_density.py --show DENSITY_FILE          sizes, minimum, maximum, mean
"""
import struct
import sys

import numpy

MAGIC = b"TCLATTIC"
LARGEST_COUNT = 1 << 28


def write_density(path, array):
    """Writes a 3-D array indexed [x, y, z] (a 1- or 2-D one gets sizes of 1
    for its missing trailing axes)."""
    values = numpy.asarray(array, dtype=numpy.float64)
    while values.ndim < 3:
        values = values[..., numpy.newaxis]
    if values.ndim != 3:
        raise ValueError("a density lattice has three axes, this array has %d" % values.ndim)
    n_x, n_y, n_z = values.shape
    if min(n_x, n_y, n_z) < 1 or n_x * n_y * n_z > LARGEST_COUNT:
        raise ValueError("sizes %d %d %d are not valid for a lattice file" % (n_x, n_y, n_z))
    # Fortran order puts x fastest.
    data = values.astype("<f4").ravel(order="F").tobytes()
    with open(path, "wb") as out:
        out.write(MAGIC)
        out.write(struct.pack("<3i", n_x, n_y, n_z))
        out.write(data)


def read_density(path):
    """The array of a lattice file, float32, indexed [x, y, z]."""
    with open(path, "rb") as source:
        raw = source.read()
    if len(raw) < 20 or raw[:8] != MAGIC:
        raise ValueError("%s is not a lattice file" % path)
    n_x, n_y, n_z = struct.unpack("<3i", raw[8:20])
    if min(n_x, n_y, n_z) < 1 or n_x * n_y * n_z > LARGEST_COUNT:
        raise ValueError("%s holds sizes %d %d %d that are not valid" % (path, n_x, n_y, n_z))
    if len(raw) != 20 + 4 * n_x * n_y * n_z:
        raise ValueError("%s is %d bytes long, its sizes need %d"
                         % (path, len(raw), 20 + 4 * n_x * n_y * n_z))
    flat = numpy.frombuffer(raw, dtype="<f4", offset=20)
    return flat.reshape((n_x, n_y, n_z), order="F").astype(numpy.float32)


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "--show":
        values = read_density(arguments[1])
        print("sizes %d %d %d" % values.shape)
        print("minimum %.9g maximum %.9g mean %.9g"
              % (values.min(), values.max(), values.mean(dtype=numpy.float64)))
        return 0
    if len(arguments) == 6 and arguments[0] == "--uniform":
        n_x, n_y, n_z = (int(a) for a in arguments[1:4])
        write_density(arguments[5], numpy.full((n_x, n_y, n_z), float(arguments[4])))
        return 0
    if len(arguments) == 2 and not arguments[0].startswith("--"):
        write_density(arguments[1], numpy.load(arguments[0]))
        return 0
    sys.stderr.write(__doc__)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

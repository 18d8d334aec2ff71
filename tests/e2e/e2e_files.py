"""Readers for the checks of end-to-end cases (check.py in a case folder).

A check runs in the case's working folder after TCEngine has run; it imports
this module with sys.path set to tests/e2e.
"""
import os
import sys

import numpy
from pyhdf.SD import SD, SDC


def hdf_planes(name):
    """The float planes of an HDF file in the order they were written, as
    (rows, cols) float32 arrays; dimension records are left out."""
    sd = SD(name, SDC.READ)
    sets = sorted(sd.datasets().items(), key=lambda item: item[1][3])
    planes = []
    for _, (_, shape, kind, index) in sets:
        sds = sd.select(index)
        if not sds.iscoordvar():
            if kind != SDC.FLOAT32:
                raise AssertionError(f"{name}: data set of type {kind}, not float32")
            planes.append(numpy.array(sds.get(), dtype=numpy.float32).reshape(shape))
        sds.endaccess()
    sd.end()
    return planes


def sgi_header(name):
    """(magic, storage, bpc, dimension, xsize, ysize, zsize) of an SGI image."""
    with open(name, "rb") as f:
        head = f.read(12)
    return (int.from_bytes(head[0:2], "big"), head[2], head[3], int.from_bytes(head[4:6], "big"),
            int.from_bytes(head[6:8], "big"), int.from_bytes(head[8:10], "big"),
            int.from_bytes(head[10:12], "big"))


class Checker:
    """Collects failures and reports them all at the end."""

    def __init__(self):
        self.failures = []

    def expect(self, condition, message):
        if not condition:
            self.failures.append(message)

    def files(self, wanted, folder="."):
        """The folder holds exactly the wanted names (a set), besides inputs."""
        present = set(os.listdir(folder))
        missing = wanted - present
        self.expect(not missing, f"missing files: {sorted(missing)} (have {sorted(present)})")
        return present

    def planes(self, name, count, rows, cols):
        if not os.path.exists(name):
            self.failures.append(f"{name} was not written")
            return []
        planes = hdf_planes(name)
        self.expect(len(planes) == count, f"{name}: {len(planes)} planes, expected {count}")
        for i, p in enumerate(planes):
            self.expect(p.shape == (rows, cols),
                        f"{name} plane {i}: shape {p.shape}, expected {(rows, cols)}")
        return planes

    def all_equal(self, name, planes, value):
        for i, p in enumerate(planes):
            self.expect(bool(numpy.all(p == numpy.float32(value))),
                        f"{name} plane {i}: not all {value}: {numpy.unique(p)[:8]}")

    def done(self):
        for f in self.failures:
            print(f)
        sys.exit(1 if self.failures else 0)

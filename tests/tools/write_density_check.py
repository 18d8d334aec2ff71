#!/usr/bin/env python3
"""Checks tools/write_density.py against the lattice layout written out by hand.

    write_density_check.py

The bytes of a small array are put together here with struct alone (magic,
three little-endian ints, little-endian floats x fastest) and must equal the
module's file; the module must read its files back, refuse short files and
other magics, and its command forms must write and show files.
"""
import os
import struct
import subprocess
import sys
import tempfile

import numpy

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools",
                    "write_density.py")
sys.path.insert(0, os.path.dirname(TOOL))
import write_density  # noqa: E402


def expect(condition, text, failures):
    print(("ok      " if condition else "FAILED  ") + text)
    if not condition:
        failures.append(text)


def main():
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        # Value at [x, y, z] is x + 10 y + 100 z on 2 by 3 by 2 cells.
        array = numpy.zeros((2, 3, 2))
        expected = b"TCLATTIC" + struct.pack("<iii", 2, 3, 2)
        for z in range(2):
            for y in range(3):
                for x in range(2):
                    array[x, y, z] = x + 10 * y + 100 * z
                    expected += struct.pack("<f", x + 10 * y + 100 * z)
        path = os.path.join(folder, "small.dat")
        write_density.write_density(path, array)
        with open(path, "rb") as source:
            expect(source.read() == expected, "bytes are the layout, x fastest", failures)
        back = write_density.read_density(path)
        expect(back.shape == (2, 3, 2) and (back == array).all(), "read back exactly", failures)

        with open(path, "wb") as out:
            out.write(expected[:-1])
        try:
            write_density.read_density(path)
            expect(False, "a short file is refused", failures)
        except ValueError:
            expect(True, "a short file is refused", failures)
        with open(path, "wb") as out:
            out.write(b"TCLATTIX" + expected[8:])
        try:
            write_density.read_density(path)
            expect(False, "another magic is refused", failures)
        except ValueError:
            expect(True, "another magic is refused", failures)

        uniform = os.path.join(folder, "uniform.dat")
        subprocess.run([sys.executable, TOOL, "--uniform", "3", "1", "2", "0.25", uniform],
                       check=True)
        with open(uniform, "rb") as source:
            expect(source.read() == b"TCLATTIC" + struct.pack("<iii", 3, 1, 2)
                   + struct.pack("<6f", *([0.25] * 6)), "--uniform writes the layout", failures)
        shown = subprocess.run([sys.executable, TOOL, "--show", uniform], check=True,
                               capture_output=True, text=True).stdout
        expect(shown.startswith("sizes 3 1 2\n") and "mean 0.25" in shown,
               "--show prints sizes and mean", failures)

        saved = os.path.join(folder, "saved.npy")
        numpy.save(saved, array)
        from_npy = os.path.join(folder, "from_npy.dat")
        subprocess.run([sys.executable, TOOL, saved, from_npy], check=True)
        with open(from_npy, "rb") as source:
            expect(source.read() == expected, "an array saved by numpy writes the layout",
                   failures)
    if failures:
        print("%d checks failed" % len(failures))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

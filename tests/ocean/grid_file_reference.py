#!/usr/bin/python3
"""Reference numbers for the height grid file tests, computed apart from the engine.

The rectangle starts at centre - count * 0.5 * spacing, rounded to single precision, and each
position is the previous one plus the spacing, both in single precision. The lattice holds
h = 0.5 * u (u the lattice x in metres), so a sample is 0.5 * x exactly, rounded to a float.
Run with the system interpreter, which has numpy: /usr/bin/python3 grid_file_reference.py
"""
import numpy as np


def stepped_positions(centre, count, spacing):
    x = np.float32(centre - count * 0.5 * spacing)
    positions = []
    for _ in range(count):
        positions.append(x)
        x = np.float32(x + np.float32(spacing))
    return positions


def main():
    # Definition: centre x 10.0, 180 points 0.1 m apart; centre y 2.0, 1 point 1.0 m apart.
    xs = stepped_positions(10.0, 180, 0.1)
    for index in (0, 1, 90, 179):
        stepped = np.float32(0.5 * float(xs[index]))
        exact = np.float32(0.5 * (10.0 - 180 * 0.5 * 0.1 + index * 0.1))
        print("element %3d: %.9g (in double steps it would be %.9g)" % (index, stepped, exact))


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Expected pixels of a uniformly glowing cube turned about the vertical, seen
level from the side, for the seam tests. The box's outline is the convex hull
of its eight corners on the image plane, clipped to every pixel; the faces are
projected one by one to find the column where two of them meet. Works on its
own apart from the rotation and clipping helpers of box_scan_reference.py."""
import math
import numpy as np

from box_scan_reference import PI, rotation, clip_half, area, face_image, coverage

LENGTH = (2.0, 2.0, 2.0)
BOX = ((10.0, 0.13, 0.05), (0.0, 30.0 * 0.017453292519444445, 0.0))
VIEW = ((0.0, 0.0, 0.0), (PI / 2, 0.0, 0.0))
GRID = (16, -0.2, 0.2, 16, -0.2, 0.2)


def hull(points):
    pts = sorted(set(points))

    def cross(o, a, b):
        return (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0])

    lower, upper = [], []
    for p in pts:
        while len(lower) >= 2 and cross(lower[-2], lower[-1], p) <= 0:
            lower.pop()
        lower.append(p)
    for p in reversed(pts):
        while len(upper) >= 2 and cross(upper[-2], upper[-1], p) <= 0:
            upper.pop()
        upper.append(p)
    return lower[:-1] + upper[:-1]


def outline():
    rows, e0, e1, cols, a0, a1 = GRID
    rb = rotation(*BOX[1])
    rv = rotation(*VIEW[1])
    half = np.array(LENGTH) / 2
    image = []
    for sx in (-1, 1):
        for sy in (-1, 1):
            for sz in (-1, 1):
                world = rb.T @ (half * np.array([sx, sy, sz])) + np.array(BOX[0])
                x, y, z = rv @ (world - np.array(VIEW[0]))
                assert z > 0
                e, a = -x / z, -y / z
                image.append(((a - a0) * cols / (a1 - a0), (e - e0) * rows / (e1 - e0)))
    return hull(image)


if __name__ == "__main__":
    rows, cols = GRID[0], GRID[3]
    whole = coverage(outline(), rows, cols)
    # Faces seen: those whose plane the view lies beyond.
    rb = rotation(*BOX[1])
    local = rb @ (np.array(VIEW[0]) - np.array(BOX[0]))
    faces = []
    for axis in range(3):
        if abs(local[axis]) > LENGTH[axis] / 2:
            faces.append((axis, 1 if local[axis] > 0 else -1))
    print("faces seen:", faces)
    parts = [coverage(face_image(LENGTH, BOX, VIEW, GRID, axis, sign), rows, cols)
             for axis, sign in faces]
    print("faces add up to the outline: %.3g" % np.abs(sum(parts) - whole).max())
    # The column where both faces have a share in the middle row.
    mid = rows // 2
    seam = [c for c in range(cols) if all(p[mid, c] > 1e-9 for p in parts)]
    print("seam columns:", seam, "shares", [[p[mid, c] for p in parts] for c in seam])
    print("rows fully covered in the seam column:",
          [r for r in range(rows) if whole[r, seam[0]] > 1 - 1e-12])
    for r in range(rows):
        print("    {" + ", ".join("%.9f" % v for v in whole[r]) + "},")

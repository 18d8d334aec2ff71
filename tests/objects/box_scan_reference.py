#!/usr/bin/env python3
"""Expected pixel coverage of one box face seen by a view, for the face scan
tests. Works on its own: the rotation written out from its definition,
the face clipped in 3-D to the space in front of the view, projected onto
the image plane and clipped to every pixel. Prints the values the tests
hold."""
import math
import numpy as np

PI = 3.1415926535  # the engine's pi


def rotation(chi, phi, theta):
    """World to object (or view): rows as the object frame's axes."""
    c, s = math.cos, math.sin
    return np.array([
        [c(theta) * c(chi) * c(phi) - s(theta) * s(phi),
         c(theta) * c(chi) * s(phi) + s(theta) * c(phi),
         -c(theta) * s(chi)],
        [-s(theta) * c(chi) * c(phi) - c(theta) * s(phi),
         -s(theta) * c(chi) * s(phi) + c(theta) * c(phi),
         s(theta) * s(chi)],
        [s(chi) * c(phi), s(chi) * s(phi), c(chi)],
    ])


def clip_half(poly, keep):
    """Polygon (list of points) cut by a half space given as a signed
    function keep(p) >= 0."""
    out = []
    n = len(poly)
    for i in range(n):
        p, q = poly[i], poly[(i + 1) % n]
        fp, fq = keep(p), keep(q)
        if fp >= 0:
            out.append(p)
        if (fp >= 0) != (fq >= 0):
            t = fp / (fp - fq)
            out.append(tuple(pi + t * (qi - pi) for pi, qi in zip(p, q)))
    return out


def area(poly):
    if len(poly) < 3:
        return 0.0
    s = 0.0
    for i in range(len(poly)):
        x0, y0 = poly[i]
        x1, y1 = poly[(i + 1) % len(poly)]
        s += x0 * y1 - x1 * y0
    return abs(s) / 2


def face_image(length, box_pose, view_pose, grid, axis, sign):
    """The face on `axis`, side `sign`, as a polygon in pixel coordinates
    (x columns, y rows)."""
    box_pos, box_angles = box_pose
    view_pos, view_angles = view_pose
    rows, e0, e1, cols, a0, a1 = grid
    rb = rotation(*box_angles)
    rv = rotation(*view_angles)
    half = np.array(length) / 2
    corners = []
    for u, v in ((1, 1), (1, -1), (-1, -1), (-1, 1)):
        p = np.zeros(3)
        p[axis] = sign * half[axis]
        p[(axis + 1) % 3] = u * half[(axis + 1) % 3]
        p[(axis + 2) % 3] = v * half[(axis + 2) % 3]
        world = rb.T @ p + np.array(box_pos)
        corners.append(tuple(rv @ (world - np.array(view_pos))))
    front = clip_half(corners, lambda p: p[2] - 1e-7)
    image = []
    for x, y, z in front:
        e, a = -x / z, -y / z
        image.append(((a - a0) * cols / (a1 - a0), (e - e0) * rows / (e1 - e0)))
    return image


def coverage(image, rows, cols):
    table = np.zeros((rows, cols))
    for r in range(rows):
        for c in range(cols):
            piece = clip_half(image, lambda p: p[0] - c)
            piece = clip_half(piece, lambda p: c + 1 - p[0])
            piece = clip_half(piece, lambda p: p[1] - r)
            piece = clip_half(piece, lambda p: r + 1 - p[1])
            table[r, c] = area(piece)
    return table


def show(name, table):
    print(name)
    for row in table:
        print("    {" + ", ".join("%.9f" % v for v in row) + "},")


if __name__ == "__main__":
    # A turned 2 m cube seen from above through a tilted view: its top face
    # only, wholly inside a 32 x 32 picture.
    grid = (32, -0.8, 0.8, 32, -0.8, 0.8)
    image = face_image((2, 2, 2), ((0.4, -0.1, 0.2), (0.0, 0.3, 0.0)),
                       ((0.3, -0.2, 5.0), (PI - 0.2, 0.4, 0.1)), grid, 2, 1)
    xs = [p[0] for p in image]
    ys = [p[1] for p in image]
    assert min(xs) > 0 and max(xs) < 32 and min(ys) > 0 and max(ys) < 32
    print("top face area in pixels: %.12f" % area(image))
    print("coverage total: %.12f" % coverage(image, 32, 32).sum())

    # The top face of a 2 m cube at the origin seen from 0.5 m above it,
    # level, along +x (two corners behind the view), along (1, 1) and down
    # (three behind), and back along (-1, -1) (one behind).
    small = (8, -2.0, 0.0, 8, -2.0, 2.0)
    show("two behind", coverage(face_image(
        (2, 2, 2), ((0, 0, 0), (0, 0, 0)), ((0, 0, 1.5), (PI / 2, 0.0, 0.0)), small, 2, 1),
        8, 8))
    below = (8, -3.0, -1.0, 8, -1.0, 1.0)
    show("three behind", coverage(face_image(
        (2, 2, 2), ((0, 0, 0), (0, 0, 0)), ((0.9, 0.9, 1.5), (PI / 2 + 0.3, PI / 4, 0.0)),
        below, 2, 1), 8, 8))
    square = (8, -1.0, 1.0, 8, -1.0, 1.0)
    show("one behind", coverage(face_image(
        (2, 2, 2), ((0, 0, 0), (0, 0, 0)),
        ((0.9, 0.9, 1.5), (PI / 2 + 0.1, PI / 4 + PI, 0.0)), square, 2, 1), 8, 8))

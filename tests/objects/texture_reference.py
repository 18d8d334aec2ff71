#!/usr/bin/python3
"""Reference values for the texture plane tests, worked out independently of
the C++ code with numpy: the pyramid of a picture and the radiance of lookups
by position and footprint. Run it and paste what it prints into
texture_plane_test.cpp; the C++ tests never compute their expectations with
the code under test.

Pictures are indexed [band, x, y]; byte(x, y, b) = (37 x + 11 y + 61 b + 7) % 256.
"""

import math

import numpy as np


def picture(n_x, n_y, n_bands):
    x = np.arange(n_x).reshape(n_x, 1)
    y = np.arange(n_y).reshape(1, n_y)
    return np.array([(37 * x + 11 * y + 61 * b + 7) % 256 for b in range(n_bands)], dtype=np.int64)


def level_count(n_x, n_y, make_levels=True):
    count = 1
    if make_levels:
        m = min(n_x, n_y)
        while m > 2:
            m //= 2
            count += 1
    return count


def pyramid(pic):
    """Level 0 is the picture; inside a level the 2x2 box of the level below,
    on its last row and column the level-0 box of scale x scale pixels, both
    clipped to the source; the mean plus 0.499, truncated."""
    n_b, n_x, n_y = pic.shape
    levels = [pic.copy()]
    for i in range(1, level_count(n_x, n_y)):
        scale = 2 ** i
        sx, sy = -(-n_x // scale), -(-n_y // scale)
        below = levels[-1]
        out = np.zeros((n_b, sx, sy), dtype=np.int64)
        for x in range(sx):
            for y in range(sy):
                if x < sx - 1 and y < sy - 1:
                    box = below[:, 2 * x:2 * x + 2, 2 * y:2 * y + 2]
                else:
                    box = pic[:, x * scale:(x + 1) * scale, y * scale:(y + 1) * scale]
                count = box.shape[1] * box.shape[2]
                for b in range(n_b):
                    out[b, x, y] = math.floor(box[b].sum() / count + 0.499)
        levels.append(out)
    return levels


def bilinear(level_pic, u, v, periodic):
    """One level's sample at (u, v) in that level's pixels, before the half
    pixel shift."""
    n_b, sx, sy = level_pic.shape

    def wrap(t, s):
        if s < 2:
            return t - math.floor(t)
        return t - math.floor(t / (s - 1)) * (s - 1)

    if periodic:
        u = wrap(u, sx) - 0.5
        v = wrap(v, sy) - 0.5
    else:
        u = min(max(u - 0.5, 0.0), sx - 1)
        v = min(max(v - 0.5, 0.0), sy - 1)
    i, j = math.floor(u), math.floor(v)
    f, g = u - i, v - j
    corners = {(i, j): (1 - g) * (1 - f), (i, j + 1): (1 - f) * g,
               (i + 1, j): (1 - g) * f, (i + 1, j + 1): f * g}
    total = np.zeros(n_b)
    for (a, c), w in corners.items():
        # A corner off the level has no weight.
        if 0 <= a < sx and 0 <= c < sy:
            total += w * level_pic[:, a, c]
    return total


def lookup(pic, width, height, periodic, x, y, footprint):
    levels = pyramid(pic)
    n_x, n_y = pic.shape[1], pic.shape[2]
    px, py = width / n_x, height / n_y

    def at(level):
        scale = 2 ** level
        return bilinear(levels[level], (x + width / 2) / (px * scale),
                        (y + height / 2) / (py * scale), periodic)

    s = max(footprint / px, footprint / py)
    last = len(levels) - 1
    if s <= 1:
        return at(0)
    if s >= 2 ** last:
        return at(last)
    low = max(k for k in range(last + 1) if 2 ** k < s)
    w = (2 ** (low + 1) - s) / (2 ** (low + 1) - 2 ** low)
    return w * at(low) + (1 - w) * at(low + 1)


def radiance(values, lo, hi, mode=0, gamma=None):
    r = np.asarray(lo) + (np.asarray(hi) - np.asarray(lo)) / 255.0 * values
    if mode == 1:
        return 10.0 ** r
    if mode == 2:
        return r ** (1.0 / np.asarray(gamma))
    return r


def show(name, values):
    print(f"  // {name}")
    print("  {" + ", ".join(repr(float(v)) for v in np.ravel(values)) + "},")


def main():
    print("Levels of 7 by 6, band 0, each level x-major:")
    for i, lev in enumerate(pyramid(picture(7, 6, 1))):
        print(f"  level {i} ({lev.shape[1]} x {lev.shape[2]}):",
              ", ".join(str(int(v)) for v in lev[0].ravel()))
    print("Levels of 3 by 5, two bands:")
    for i, lev in enumerate(pyramid(picture(3, 5, 2))):
        print(f"  level {i}:", [", ".join(str(int(v)) for v in lev[b].ravel()) for b in range(2)])
    print("Level counts:", {k: level_count(*k) for k in [(512, 512), (2, 2), (3, 5), (8, 8), (1, 1), (640, 3)]})

    # Lookups in bytes (before radiance), "name": (picture, width, height, periodic, x, y, footprint).
    cases = [
        ("2x2 below a pixel", (2, 2, 3), 2.0, 2.0, False, 0.2, -0.3, 0.1),
        ("2x2 periodic below a pixel", (2, 2, 3), 2.0, 2.0, True, 0.2, -0.3, 0.1),
        ("2x2 far outside", (2, 2, 3), 2.0, 2.0, False, 50.0, -40.0, 0.1),
        ("3x5 below a pixel", (3, 5, 2), 3.0, 2.5, False, 0.35, 0.6, 0.2),
        ("3x5 periodic beyond the picture", (3, 5, 2), 3.0, 2.5, True, 4.1, -2.2, 0.2),
        ("3x5 between the levels", (3, 5, 2), 3.0, 2.5, False, -0.4, 0.3, 0.6),
        ("3x5 footprint beyond the picture", (3, 5, 2), 3.0, 2.5, False, 0.7, -0.9, 10.0),
        ("8x8 below a pixel", (8, 8, 2), 4.0, 4.0, False, 0.3, 1.1, 0.25),
        ("8x8 between levels 0 and 1", (8, 8, 2), 4.0, 4.0, False, 0.3, 1.1, 0.75),
        ("8x8 between levels 1 and 2", (8, 8, 2), 4.0, 4.0, False, -1.3, 0.45, 1.5),
        ("8x8 periodic between levels 1 and 2", (8, 8, 2), 4.0, 4.0, True, 5.7, -6.05, 1.5),
        ("8x8 footprint beyond the picture", (8, 8, 2), 4.0, 4.0, False, 0.3, 1.1, 10.0),
        ("8x8 periodic at the seam", (8, 8, 2), 4.0, 4.0, True, -1.9, 1.95, 0.1),
        ("1x4 periodic one-pixel axis", (1, 4, 1), 1.0, 4.0, True, 0.8, 0.4, 0.1),
    ]
    print("Byte-scale lookups:")
    for name, shape, w, h, per, x, y, fp in cases:
        show(name, lookup(picture(*shape), w, h, per, x, y, fp))

    # Radiance of the 8x8 case between levels 1 and 2, ranges per band.
    raw = lookup(picture(8, 8, 2), 4.0, 4.0, False, -1.3, 0.45, 1.5)
    lo_above, hi_above = [0.5, 1.0], [10.0, 3.0]
    lo_below, hi_below = [0.25, 0.0], [2.0, 5.0]
    print("Radiance:")
    show("above, linear", radiance(raw, lo_above, hi_above))
    show("below, linear", radiance(raw, lo_below, hi_below))
    show("above, log", radiance(raw, lo_above, hi_above, 1))
    show("below, gamma 2.2 and 1.5", radiance(raw, lo_below, hi_below, 2, [2.2, 1.5]))
    # average_grid: the mean of the bytes plus the minimum, then to radiance.
    xs = [[-1.3, 0.2], [1.6, 0.9]]
    ys = [[0.45, -1.7], [1.2, 0.05]]
    mean = sum(lookup(picture(8, 8, 2), 4.0, 4.0, False, xs[i][j], ys[i][j], 1.5)
               for i in range(2) for j in range(2)) / 4
    show("average over the 2x2 grid of positions, bytes", mean)
    show("average_grid above, linear", radiance(mean + np.asarray(lo_above), lo_above, hi_above))
    show("average_list above, linear", radiance(mean, lo_above, hi_above))
    show("sample_point plus the minimum entering twice",
         radiance(raw + np.asarray(lo_above), lo_above, hi_above))


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""Writes the texture files of the example scenes, as 8-bit SGI RGB images.

    make_textures.py FOLDER [NAME ...]

Writes the named textures (all when none is named) into FOLDER:

    sky.rgb    256 x 256  the skydome: blue zenith, warm horizon, a low sun to +x, cloud bands
    sea.rgb    256 x 256  a picture laid flat: water with wave crests and the sun's path along x
    chart.rgb  128 x 96   a picture stood upright: colour bars over a grey ramp, on a grid
    swell_mound.hdf       a height map for a sea's height_grid: a 2.5 m mound, 128 x 128
                          nodes (written only when named, or when FOLDER's files name it)

Every value is worked out from closed formulas (no random numbers), so every
run writes the same bytes. Bytes 0 to 255 stand for values 0 to 1, which each
object file maps onto its own min_radiance to max_radiance; planes are red,
green, blue, the bands 1, 2, 3 of the scenes. Row 0 is written first: it is the picture's
bottom row (the texture's y = -height/2).
"""
import os
import struct
import sys

import numpy


def write_sgi(path, planes):
    """planes: array (n_planes, rows, columns) of values 0..1, row 0 first."""
    data = numpy.clip(numpy.floor(numpy.asarray(planes) * 255.0 + 0.5), 0, 255).astype(numpy.uint8)
    n_planes, rows, columns = data.shape
    # magic, verbatim storage, 1 byte per channel, 3 dimensions, sizes, pixel min and max.
    header = struct.pack(">hBBHHHHii", 474, 0, 1, 3, columns, rows, n_planes, 0, 255)
    header += bytes(84) + struct.pack(">i", 0) + bytes(404)
    with open(path, "wb") as f:
        f.write(header)
        f.write(data.tobytes())


def smoothstep(a, b, x):
    t = numpy.clip((x - a) / (b - a), 0.0, 1.0)
    return t * t * (3.0 - 2.0 * t)


def mix(a, b, t):
    """Colour a to colour b by t (arrays of any shape); colours are 3-tuples."""
    a = numpy.asarray(a, dtype=float).reshape(3, 1, 1)
    b = numpy.asarray(b, dtype=float).reshape(3, 1, 1)
    return a + (b - a) * t


def sky(n=256):
    """The dome's texture. Texel (column i, row j) is the direction with
    u = (i + 0.5) / n - 0.5 = 0.5 x / s, v = (j + 0.5) / n - 0.5 = 0.5 y / s,
    s = sqrt(z + 1): the dome's equal-area mapping, so z = 1 - 4 (u^2 + v^2)."""
    c = (numpy.arange(n) + 0.5) / n - 0.5
    u = c[numpy.newaxis, :]           # columns: x
    v = c[:, numpy.newaxis]           # rows: y
    z = numpy.clip(1.0 - 4.0 * (u * u + v * v), 0.0, 1.0)
    s = numpy.sqrt(z + 1.0)
    x, y = 2.0 * u * s, 2.0 * v * s
    elevation = numpy.arcsin(z)

    # Deep blue overhead to a pale warm haze at the horizon.
    haze = (1.0 - z) ** 4
    colour = mix((0.10, 0.22, 0.55), (0.92, 0.70, 0.50), haze)

    # A low sun towards +x, 6 degrees up, with a wide glow.
    sun = numpy.array([numpy.cos(0.105), 0.0, numpy.sin(0.105)])
    cosine = x * sun[0] + y * sun[1] + z * sun[2]
    glow = numpy.exp((cosine - 1.0) * 12.0)
    disc = smoothstep(0.9990, 0.9995, cosine)
    colour = colour + mix((0.0, 0.0, 0.0), (0.9, 0.45, 0.12), glow * 0.8)
    colour = colour + mix((0.0, 0.0, 0.0), (1.0, 0.95, 0.8), disc)

    # Cloud bands on a flat layer: project the direction onto a plane above the viewer.
    height = numpy.maximum(numpy.sin(elevation), 0.06)
    px, py = x / height, y / height
    bands = (numpy.sin(2.3 * px + 1.5 * numpy.sin(0.9 * py)) * numpy.sin(1.1 * py + 0.7 * px)
             + 0.5 * numpy.sin(4.7 * px - 2.9 * py) * numpy.sin(3.1 * py + 1.3 * px))
    cloud = smoothstep(0.2, 0.9, bands) * smoothstep(0.02, 0.3, z) * 0.7
    lit = mix((0.85, 0.80, 0.80), (1.0, 0.62, 0.40), glow)
    colour = colour * (1.0 - cloud) + lit * cloud
    return colour


def sea(n=256):
    """Water laid flat on the picture's x-y plane: column i is x (away from the
    camera when the picture lies with its x along the view), row j is y."""
    c = (numpy.arange(n) + 0.5) / n - 0.5
    x = c[numpy.newaxis, :] * 600.0   # metres across the picture
    y = c[:, numpy.newaxis] * 600.0
    distance = smoothstep(-300.0, 300.0, x)
    base = mix((0.04, 0.12, 0.18), (0.40, 0.36, 0.40), distance ** 1.5)
    crests = 0.5 + 0.5 * numpy.sin(2.0 * numpy.pi * (x / 9.0 + 0.25 * numpy.sin(y / 13.0)))
    crests = crests * (0.5 + 0.5 * numpy.sin(2.0 * numpy.pi * (y / 21.0 + x / 47.0)))
    colour = base + mix((0.0, 0.0, 0.0), (0.10, 0.16, 0.18), crests)
    # The sun's path: a band along y = 0 that widens with distance, broken by the crests.
    width = 6.0 + 0.15 * (x + 300.0)
    path = numpy.exp(-(y / width) ** 2) * (0.2 + 0.8 * crests)
    colour = colour + mix((0.0, 0.0, 0.0), (1.0, 0.55, 0.2), path)
    return colour


def chart(columns=128, rows=96):
    """Seven colour bars over a grey ramp, with dark grid lines every 16 texels.
    Row 0 is the bottom: the ramp is in the lower third."""
    colour = numpy.zeros((3, rows, columns))
    bars = [(1, 1, 1), (1, 1, 0), (0, 1, 1), (0, 1, 0), (1, 0, 1), (1, 0, 0), (0, 0, 1)]
    ramp_rows = rows // 3
    for i in range(columns):
        bar = bars[i * len(bars) // columns]
        for k in range(3):
            colour[k, ramp_rows:, i] = 0.15 + 0.7 * bar[k]
        colour[:, :ramp_rows, i] = (i + 0.5) / columns
    grid = numpy.zeros((rows, columns), dtype=bool)
    grid[::16, :] = True
    grid[:, ::16] = True
    grid[rows - 1, :] = True
    grid[:, columns - 1] = True
    colour[:, grid] = 0.05
    return colour


def swell_mound(n=128):
    """Heights in metres on an n by n lattice of 1 m, node (i, j) at i + n j:
    a round mound 2.5 m high with an 8 m Gaussian radius, centred, so that it
    is far below a millimetre at the map's edges and joins the sea without a step."""
    j, i = numpy.mgrid[0:n, 0:n].astype(numpy.float64)
    c = 0.5 * (n - 1)
    return 2.5 * numpy.exp(-((i - c) ** 2 + (j - c) ** 2) / (2.0 * 8.0 ** 2))


def write_hdf(path, heights):
    """One rank-2 float32 data set, rows first, as the engine's height grids read it.
    pyhdf is imported here so that the textures alone need only numpy."""
    from pyhdf.SD import SD, SDC

    sd = SD(path, SDC.WRITE | SDC.CREATE | SDC.TRUNC)
    rows, columns = heights.shape
    sds = sd.create("heights", SDC.FLOAT32, (rows, columns))
    sds[:] = heights.astype(numpy.float32)
    sds.endaccess()
    sd.end()


TEXTURES = {"sky.rgb": sky, "sea.rgb": sea, "chart.rgb": chart}
HEIGHTS = {"swell_mound.hdf": swell_mound}


def named_in(folder, name):
    """Whether any file of the folder mentions the name (a detail file naming its HDF)."""
    for entry in os.listdir(folder):
        path = os.path.join(folder, entry)
        if entry == name or not os.path.isfile(path):
            continue
        with open(path, "rb") as f:
            if name.encode() in f.read():
                return True
    return False


def main(argv):
    if len(argv) < 2:
        sys.stderr.write(__doc__)
        return 2
    folder = argv[1]
    os.makedirs(folder, exist_ok=True)
    names = argv[2:]
    if not names:
        names = sorted(TEXTURES) + [h for h in sorted(HEIGHTS) if named_in(folder, h)]
    for name in names:
        if name not in TEXTURES and name not in HEIGHTS:
            sys.stderr.write("make_textures.py: no texture %s (have %s)\n"
                             % (name, " ".join(sorted(TEXTURES) + sorted(HEIGHTS))))
            return 2
    for name in names:
        if name in TEXTURES:
            write_sgi(os.path.join(folder, name), TEXTURES[name]())
        else:
            write_hdf(os.path.join(folder, name), HEIGHTS[name]())
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

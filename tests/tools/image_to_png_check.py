#!/usr/bin/python3
"""Checks of TCImage_to_png: small HDF and SGI RGB images are made here, converted,
and the PNG is decoded again (zlib only) and compared pixel by pixel with values
worked out by hand in the comments of each case.

    image_to_png_check.py TCImage_to_png

Prints one line per case and "N passed, N failed"; exit status 1 on any failure.
"""
import os
import struct
import subprocess
import sys
import tempfile
import zlib

import numpy
from pyhdf.SD import SD, SDC

TOOL = None
WORK = None


def hdf_file(name, planes):
    """An HDF file of float32 planes, each a list of rows."""
    path = os.path.join(WORK, name)
    sd = SD(path, SDC.WRITE | SDC.CREATE | SDC.TRUNC)
    for k, rows in enumerate(planes):
        values = numpy.array(rows, dtype=numpy.float32)
        sds = sd.create("plane%d" % k, SDC.FLOAT32, values.shape)
        sds[:] = values
        sds.endaccess()
    sd.end()
    return path


def sgi_header(storage, columns, rows, planes):
    head = struct.pack(">hBBHHHHii", 474, storage, 1, 3, columns, rows, planes, 0, 255)
    head += bytes(84) + struct.pack(">i", 0) + bytes(404)
    assert len(head) == 512
    return head


def sgi_verbatim(name, planes):
    """Planes of rows of bytes, row 0 first, as the engine writes them."""
    path = os.path.join(WORK, name)
    rows, columns = len(planes[0]), len(planes[0][0])
    with open(path, "wb") as f:
        f.write(sgi_header(0, columns, rows, len(planes)))
        for plane in planes:
            for row in plane:
                f.write(bytes(row))
    return path


def sgi_run_length(name, planes):
    """The same in the run-length form: one literal packet per row."""
    path = os.path.join(WORK, name)
    n_planes, rows, columns = len(planes), len(planes[0]), len(planes[0][0])
    data = b""
    starts, lengths = [], []
    first = 512 + 2 * 4 * rows * n_planes
    for plane in planes:
        for row in plane:
            packet = bytes([0x80 | columns]) + bytes(row) + b"\x00"
            starts.append(first + len(data))
            lengths.append(len(packet))
            data += packet
    with open(path, "wb") as f:
        f.write(sgi_header(1, columns, rows, n_planes))
        f.write(struct.pack(">%di" % len(starts), *starts))
        f.write(struct.pack(">%di" % len(lengths), *lengths))
        f.write(data)
    return path


def paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    if pa <= pb and pa <= pc:
        return a
    return b if pb <= pc else c


def read_png(path):
    """(colour type, rows of pixel tuples) of an 8-bit grey or RGB PNG."""
    with open(path, "rb") as f:
        data = f.read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", "not a PNG signature"
    at, idat, header = 8, b"", None
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        crc = struct.unpack(">I", data[at + 8 + length:at + 12 + length])[0]
        assert zlib.crc32(kind + body) == crc, "bad CRC in %s" % kind
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        at += 12 + length
    width, height, depth, colour, _, _, interlace = header
    assert depth == 8 and interlace == 0 and colour in (0, 2), header
    channels = 3 if colour == 2 else 1
    raw = zlib.decompress(idat)
    stride = width * channels
    rows, previous = [], [0] * stride
    for r in range(height):
        kind = raw[r * (stride + 1)]
        line = list(raw[r * (stride + 1) + 1:(r + 1) * (stride + 1)])
        for i in range(stride):
            left = line[i - channels] if i >= channels else 0
            up = previous[i]
            upper_left = previous[i - channels] if i >= channels else 0
            predictor = [0, left, up, (left + up) // 2, paeth(left, up, upper_left)][kind]
            line[i] = (line[i] + predictor) & 0xFF
        rows.append([tuple(line[c * channels:(c + 1) * channels]) for c in range(width)])
        previous = line
    return colour, rows


SANITIZER_FINDINGS = []


def run(*args, leaks_checked=True):
    environment = dict(os.environ)
    if not leaks_checked:
        environment["ASAN_OPTIONS"] = environment.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
    result = subprocess.run([TOOL] + [str(a) for a in args], capture_output=True, text=True,
                            env=environment)
    if "Sanitizer" in result.stderr or "runtime error" in result.stderr:
        SANITIZER_FINDINGS.append("%r: %s" % (args, result.stderr[-2000:]))
    return result.returncode, result.stdout, result.stderr


class Case:
    def __init__(self, name):
        self.name = name
        self.failures = []

    def expect(self, condition, message):
        if not condition:
            self.failures.append(message)

    def equal(self, got, wanted, what):
        self.expect(got == wanted, "%s: got %r, wanted %r" % (what, got, wanted))

    def converted(self, args, png):
        """Runs the tool, expecting success; the PNG's colour type and rows."""
        status, out, err = run(*args)
        self.equal(status, 0, "exit status (stderr %r)" % err)
        if status != 0 or not os.path.exists(png):
            return None, [], out
        colour, rows = read_png(png)
        return colour, rows, out


def grey_rows(rows):
    return [[p[0] for p in row] for row in rows]


CASES = []


def case(function):
    CASES.append(function)
    return function


@case
def linear_scale_spans_the_planes_minimum_to_maximum(c):
    # Range 0..5: byte = floor(255 * v / 5 + 0.5) = 51 v. File row 0 is the bottom row.
    src = hdf_file("linear.hdf", [[[0, 1, 2], [3, 4, 5]]])
    png = os.path.join(WORK, "linear.png")
    colour, rows, out = c.converted([src, png], png)
    c.equal(colour, 0, "a single plane is a grey PNG")
    c.equal(grey_rows(rows), [[153, 204, 255], [0, 51, 102]], "pixels")
    c.expect("plane 0: min 0 max 5 mean 2.5\n" in out, "statistics line in %r" % out)
    c.expect("scale: linear, range 0 to 5\n" in out, "range line in %r" % out)
    c.expect(": HDF, 2 rows by 3 columns, 1 plane\n" in out, "size line in %r" % out)


@case
def no_flip_keeps_row_zero_at_the_top(c):
    src = hdf_file("noflip.hdf", [[[0, 1, 2], [3, 4, 5]]])
    png = os.path.join(WORK, "noflip.png")
    _, rows, _ = c.converted(["--no-flip", src, png], png)
    c.equal(grey_rows(rows), [[0, 51, 102], [153, 204, 255]], "pixels")


@case
def non_finite_values_are_left_out_of_range_and_statistics(c):
    # Finite values 1, 3, 2: range 1..3, mean 2. NaN and -inf show 0, +inf saturates;
    # 2 is t = 0.5, floor(127.5 + 0.5) = 128.
    nan, inf = float("nan"), float("inf")
    src = hdf_file("nonfinite.hdf", [[[1, nan, 3], [inf, -inf, 2]]])
    png = os.path.join(WORK, "nonfinite.png")
    _, rows, out = c.converted(["--no-flip", src, png], png)
    c.equal(grey_rows(rows), [[0, 0, 255], [255, 0, 128]], "pixels")
    c.expect("plane 0: min 1 max 3 mean 2 (3 non-finite values left out)\n" in out,
             "statistics line in %r" % out)
    c.expect("range 1 to 3\n" in out, "range line in %r" % out)


@case
def log_scale_spans_the_smallest_positive_value_to_the_maximum(c):
    # Positive values 0.001 .. 1: t = (log10 v + 3) / 3, so 0.01 -> 85, 0.1 -> 170;
    # 0 and -1 have no logarithm and show 0. Mean of all finite values: 0.111 / 6.
    src = hdf_file("log.hdf", [[[0.001, 0.01, 0.1], [1, 0, -1]]])
    png = os.path.join(WORK, "log.png")
    _, rows, out = c.converted(["--no-flip", "--scale", "log", src, png], png)
    c.equal(grey_rows(rows), [[0, 85, 170], [255, 0, 0]], "pixels")
    c.expect("plane 0: min -1 max 1 mean 0.0185\n" in out, "statistics line in %r" % out)
    c.expect("scale: log, range 0.001 to 1\n" in out, "range line in %r" % out)


@case
def log_scale_with_a_given_range(c):
    # Range 1..100: t = log10(v) / 2; 10 -> 128 (127.5 rounded up), 1000 saturates,
    # 0.5 is below the range.
    src = hdf_file("logrange.hdf", [[[1, 10, 100, 1000, 0.5]]])
    png = os.path.join(WORK, "logrange.png")
    _, rows, _ = c.converted(["--scale", "log", "--range", "1", "100", src, png], png)
    c.equal(grey_rows(rows), [[0, 128, 255, 255, 0]], "pixels")


@case
def gamma_scale_raises_the_linear_value_to_one_over_gamma(c):
    # Range 0..4, gamma 2: byte = floor(255 * sqrt(v / 4) + 0.5):
    # 1 -> 127.5 -> 128; 2 -> 180.31 -> 180; 8 saturates; -1 clips to 0.
    src = hdf_file("gamma.hdf", [[[0, 1, 2], [4, 8, -1]]])
    png = os.path.join(WORK, "gamma.png")
    _, rows, out = c.converted(
        ["--no-flip", "--scale", "gamma", "--gamma", "2", "--range", "0", "4", src, png], png)
    c.equal(grey_rows(rows), [[0, 128, 180], [255, 255, 0]], "pixels")
    c.expect("scale: gamma 2, range 0 to 4\n" in out, "range line in %r" % out)


@case
def gamma_defaults_to_two_point_two(c):
    # v / 4 = 0.5: 255 * 0.5 ** (1 / 2.2) = 255 * 0.72974 = 186.08 -> 186.
    src = hdf_file("gamma22.hdf", [[[0, 2, 4]]])
    png = os.path.join(WORK, "gamma22.png")
    _, rows, out = c.converted(["--scale", "gamma", src, png], png)
    c.equal(grey_rows(rows), [[0, 186, 255]], "pixels")
    c.expect("scale: gamma 2.2, range 0 to 4\n" in out, "range line in %r" % out)


@case
def rgb_option_picks_planes_for_red_green_and_blue(c):
    # Shown planes 3, 1, 0 hold 30 31, 10 11, 0 1; plane 2 (500, 600) is not shown and
    # stays out of the automatic range, 0..31. byte = floor(255 v / 31 + 0.5):
    # 30 -> 247, 10 -> 82, 11 -> 90, 1 -> 8.
    planes = [[[0, 1]], [[10, 11]], [[500, 600]], [[30, 31]]]
    src = hdf_file("rgb.hdf", planes)
    png = os.path.join(WORK, "rgb.png")
    colour, rows, out = c.converted(["--rgb", "3,1,0", src, png], png)
    c.equal(colour, 2, "three planes make an RGB PNG")
    c.equal(rows, [[(247, 82, 0), (255, 90, 8)]], "pixels")
    c.expect("plane 3: min 30 max 31 mean 30.5\nplane 1: min 10 max 11 mean 10.5\n"
             "plane 0: min 0 max 1 mean 0.5\n" in out, "statistics in %r" % out)
    c.expect("range 0 to 31\n" in out, "range line in %r" % out)


@case
def files_of_three_planes_or_more_show_planes_zero_one_two(c):
    # Range 0..2 over planes 0..2 (plane 3, 100, is not shown): byte = 127.5 v rounded.
    planes = [[[0.0]], [[1.0]], [[2.0]], [[100.0]]]
    src = hdf_file("default.hdf", planes)
    png = os.path.join(WORK, "default.png")
    _, rows, out = c.converted([src, png], png)
    c.equal(rows, [[(0, 128, 255)]], "pixels")
    c.expect("plane 3" not in out, "only shown planes have statistics: %r" % out)


@case
def false_colour_follows_the_blue_to_red_ramp(c):
    # Range 0..8: t = v / 8. Stops blue, cyan, green, yellow, red at quarters;
    # t = 1/8 is half way blue to cyan, 3/8 half way cyan to green; NaN is black.
    nan = float("nan")
    src = hdf_file("false.hdf", [[[0, 1, 2, 3], [4, 6, 8, nan]]])
    png = os.path.join(WORK, "false.png")
    colour, rows, _ = c.converted(
        ["--no-flip", "--plane", "0", "--false-colour", "--range", "0", "8", src, png], png)
    c.equal(colour, 2, "false colour makes an RGB PNG")
    c.equal(rows, [[(0, 0, 255), (0, 128, 255), (0, 255, 255), (0, 255, 128)],
                   [(0, 255, 0), (255, 255, 0), (255, 0, 0), (0, 0, 0)]], "pixels")


@case
def false_colour_of_one_plane_of_several(c):
    # Plane 1 alone, automatic range 5..7: t = 0, 0.5, 1 -> blue, green, red.
    src = hdf_file("falseplane.hdf", [[[100, 0, 50]], [[5, 6, 7]]])
    png = os.path.join(WORK, "falseplane.png")
    _, rows, out = c.converted(["--plane", "1", "--false-colour", src, png], png)
    c.equal(rows, [[(0, 0, 255), (0, 255, 0), (255, 0, 0)]], "pixels")
    c.expect("plane 1: min 5 max 7 mean 6\n" in out and "plane 0" not in out,
             "statistics in %r" % out)


@case
def a_constant_picture_is_black(c):
    src = hdf_file("constant.hdf", [[[3, 3], [3, 3]]])
    png = os.path.join(WORK, "constant.png")
    _, rows, out = c.converted([src, png], png)
    c.equal(grey_rows(rows), [[0, 0], [0, 0]], "pixels")
    c.expect("range 3 to 3\n" in out, "range line in %r" % out)


@case
def log_of_a_picture_without_positive_values_is_black(c):
    src = hdf_file("nonpositive.hdf", [[[0, -2]]])
    png = os.path.join(WORK, "nonpositive.png")
    _, rows, out = c.converted(["--scale", "log", src, png], png)
    c.equal(grey_rows(rows), [[0, 0]], "pixels")
    c.expect("no value to set a range by" in out, "range line in %r" % out)


@case
def sgi_verbatim_bytes_show_as_they_are_over_0_to_255(c):
    planes = [[[0, 10, 20], [30, 40, 50]], [[60, 70, 80], [90, 100, 110]],
              [[120, 130, 140], [250, 251, 255]]]
    src = sgi_verbatim("verbatim.rgb", planes)
    png = os.path.join(WORK, "verbatim.png")
    _, rows, out = c.converted(["--range", "0", "255", src, png], png)
    wanted = [[(planes[0][r][x], planes[1][r][x], planes[2][r][x]) for x in range(3)]
              for r in (1, 0)]
    c.equal(rows, wanted, "pixels")
    c.expect(": SGI RGB, 2 rows by 3 columns, 3 planes\n" in out, "size line in %r" % out)
    c.expect("plane 2: min 120 max 255 mean 191\n" in out, "statistics in %r" % out)


@case
def sgi_run_length_file_reads_like_a_verbatim_one(c):
    planes = [[[5, 6, 7, 8], [9, 10, 11, 12]]]
    src = sgi_run_length("runlength.rgb", planes)
    png = os.path.join(WORK, "runlength.png")
    _, rows, _ = c.converted(["--no-flip", "--range", "0", "255", src, png], png)
    c.equal(grey_rows(rows), planes[0], "pixels")


def refused(c, args, text, stream="stderr"):
    png = os.path.join(WORK, "refused.png")
    if os.path.exists(png):
        os.remove(png)
    status, out, err = run(*(list(args) + [png] if args is not None else []))
    c.equal(status, 1, "exit status for %r" % (args,))
    c.expect(text in (err if stream == "stderr" else out), "%r not in %r" % (text, err))
    c.expect(not os.path.exists(png), "no PNG is written for %r" % (args,))


@case
def bad_arguments_print_usage_and_exit_1(c):
    src = hdf_file("args.hdf", [[[1, 2]], [[3, 4]]])
    refused(c, [], "usage: TCImage_to_png")
    refused(c, ["--bogus", src], "unknown option '--bogus'")
    refused(c, ["--scale", "cubic", src], "--scale needs linear, log or gamma 'cubic'")
    refused(c, ["--gamma", "0", "--scale", "gamma", src], "--gamma needs a positive number '0'")
    refused(c, ["--gamma", "2", src], "--gamma goes with --scale gamma")
    refused(c, ["--range", "2", "1", src], "--range needs LO below HI")
    refused(c, ["--range", "1", src], "--range needs two numbers")
    refused(c, ["--scale", "log", "--range", "0", "1", src], "needs a positive LO")
    refused(c, ["--rgb", "0,1", src], "--rgb needs three planes R,G,B '0,1'")
    refused(c, ["--rgb", "0,1,-2", src], "--rgb needs three planes")
    refused(c, ["--plane", "x", src], "--plane needs a plane number 'x'")
    refused(c, ["--rgb", "0,1,1", "--plane", "1", src], "--rgb and --plane exclude each other")
    refused(c, ["--rgb", "0,1,1", "--false-colour", src], "--false-colour shows one plane")
    refused(c, [src, src], "one image file and one PNG file, not more")
    refused(c, ["--rgb", "0,1,2", src], "plane 2 is not in")
    refused(c, ["--plane", "2", src], "which has 2 planes (numbered from 0)")
    status, out, err = run("--help")
    c.equal(status, 0, "--help exit status")
    c.expect(out.startswith("usage: TCImage_to_png") and err == "", "--help text on stdout")


@case
def unreadable_inputs_exit_1(c):
    missing = os.path.join(WORK, "missing.hdf")
    refused(c, [missing], "can't open " + missing)
    text = os.path.join(WORK, "text.hdf")
    with open(text, "w") as f:
        f.write("Tidecast_data_file scene 2 2\n")
    refused(c, [text], "is neither an HDF nor an SGI RGB image")
    with open(os.path.join(WORK, "rgb.hdf"), "rb") as f:
        whole = f.read()
    cut = os.path.join(WORK, "cut.hdf")
    with open(cut, "wb") as f:
        f.write(whole[:200])
    # The HDF library keeps the records of a file it failed to read until the
    # process ends, which the leak checker of a sanitizer build reports.
    status, _, _ = run(cut, os.path.join(WORK, "cut.png"), leaks_checked=False)
    c.equal(status, 1, "a cut HDF file")
    # A run-length row whose packets overrun the row.
    bad = os.path.join(WORK, "badrow.rgb")
    good = sgi_run_length("goodrow.rgb", [[[1, 2], [3, 4]]])
    with open(good, "rb") as f:
        data = bytearray(f.read())
    data[512 + 16] = 0x85  # first row's literal count 2 -> 5
    with open(bad, "wb") as f:
        f.write(data)
    refused(c, [bad], "a run-length row does not decode")
    header_only = os.path.join(WORK, "header.rgb")
    with open(header_only, "wb") as f:
        f.write(sgi_header(0, 4, 4, 1))
    refused(c, [header_only], "unable to read plane 0")
    no_planes = os.path.join(WORK, "noplanes.rgb")
    with open(no_planes, "wb") as f:
        f.write(sgi_header(0, 4, 4, 0))
    refused(c, [no_planes], "has no usable image")


def main(argv):
    global TOOL, WORK
    if len(argv) != 2:
        sys.stderr.write(__doc__)
        return 2
    TOOL = os.path.abspath(argv[1])
    passed = failed = 0
    with tempfile.TemporaryDirectory() as work:
        WORK = work
        for function in CASES:
            c = Case(function.__name__)
            function(c)
            if c.failures:
                failed += 1
                print("FAIL %s" % c.name)
                for f in c.failures:
                    print("    " + f)
            else:
                passed += 1
                print("ok   %s" % c.name)
    if SANITIZER_FINDINGS:
        failed += 1
        print("FAIL the sanitizer found nothing")
        for finding in SANITIZER_FINDINGS:
            print("    " + finding)
    else:
        passed += 1
        print("ok   the sanitizer found nothing")
    print("%d passed, %d failed" % (passed, failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

#!/usr/bin/env python3
"""Runs every complete file that the pages under docs/ show through TCEngine.

    docs_examples_check.py TCENGINE DOCS_FOLDER

A shown file is a code block (fenced, or indented by four blanks) whose first
line is a header "Tidecast_data_file <type> <n> <n>" and which holds no
placeholder ("<...>" or "..."). The words a page writes at the right of a line
are its comments: from the third word of a line on, a word that stands three or
more blanks after the one before, or two and is not a number, starts the
comment; a line indented deeper than its block is a comment as a whole.

Each shown file is put into a small scene of its own (or, for a scene, run
with the files its page names) and run; the run must end with status 0 and
print none of the engine's failure words. Where a page says the file shows
something, the picture must hold finite values that are not all 0. Every shown
file must be run by some case here, so that a new example is never skipped
silently. Exits non-zero with a list of what went wrong.
"""
import glob
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile

import numpy
from pyhdf.SD import SD, SDC

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e"))
from e2e_files import hdf_planes  # noqa: E402

HEADER = re.compile(r"^Tidecast_data_file (\w+) \d+ \d+\s*$")
NUMBER = re.compile(r"^[-+]?(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?$")
FAILURE_WORDS = ("unable", "invalid", "TCError", "not valid", "cannot", "instead of end",
                 "incorrect header", "must", "Error", "ERROR")


def code_blocks(text):
    """(first line number, lines) of every fenced or four-blank indented block."""
    lines = text.split("\n")
    blocks = []
    i = 0
    while i < len(lines):
        if lines[i].startswith("```"):
            j = i + 1
            while j < len(lines) and not lines[j].startswith("```"):
                j += 1
            blocks.append((i + 2, lines[i + 1:j]))
            i = j + 1
        elif lines[i].startswith("    ") and (i == 0 or lines[i - 1].strip() == ""):
            j = i
            while j < len(lines) and (lines[j].startswith("    ") or lines[j].strip() == ""):
                j += 1
            block = [line[4:] for line in lines[i:j]]
            while block and block[-1].strip() == "":
                block.pop()
            blocks.append((i + 1, block))
            i = j
        else:
            i += 1
    return blocks


def without_comments(lines):
    kept = []
    for line in lines:
        if line.strip() == "":
            continue
        if line[0].isspace():
            continue  # a comment continued from the line above
        words = list(re.finditer(r"(\s*)(\S+)", line))
        out = []
        for k, match in enumerate(words):
            gap, word = match.group(1), match.group(2)
            if k >= 2 and (len(gap) >= 3 or (len(gap) >= 2 and not NUMBER.match(word))):
                break
            out.append(word)
        kept.append(" ".join(out))
    return "\n".join(kept) + "\n"


def shown_files(docs):
    """{(page, type): [text, ...]} of the complete files the pages show."""
    shown = {}
    for page in sorted(glob.glob(os.path.join(docs, "*.md"))):
        name = os.path.basename(page)
        with open(page) as f:
            text = f.read()
        for line_number, block in code_blocks(text):
            if not block:
                continue
            match = HEADER.match(block[0])
            if match is None:
                continue
            content = without_comments(block)
            if "..." in content or re.search(r"<[a-z_ ]+>", content):
                continue
            shown.setdefault((name, match.group(1)), []).append((line_number, content))
    return shown


def write_sgi(path, columns, rows, planes, value):
    data = numpy.full((planes, rows, columns), value, dtype=numpy.uint8)
    header = struct.pack(">hBBHHHHii", 474, 0, 1, 3, columns, rows, planes, 0, 255)
    header += bytes(84) + struct.pack(">i", 0) + bytes(404)
    with open(path, "wb") as f:
        f.write(header + data.tobytes())


def write_mound(path, columns, rows):
    """A float data set of rows x columns (node (i, j) at i + columns j): a
    bump of 0.3 m at the middle, as a height grid file."""
    j, i = numpy.mgrid[0:rows, 0:columns].astype(numpy.float64)
    values = 0.3 * numpy.exp(-((i - 0.5 * (columns - 1)) ** 2 + (j - 0.5 * (rows - 1)) ** 2) / 8.0)
    sd = SD(path, SDC.WRITE | SDC.CREATE | SDC.TRUNC)
    sds = sd.create("heights", SDC.FLOAT32, (rows, columns))
    sds[:] = values.astype(numpy.float32)
    sds.endaccess()
    sd.end()


def write_spectrum(path, n_x, n_y):
    """A stored wave spectrum of a lattice of n_x by n_y, all modes 0: its
    header (columns of the half spectrum, rows) as big-endian ints, then a
    complex float per mode."""
    columns = n_x // 2 + 1
    with open(path, "wb") as f:
        f.write(struct.pack(">ii", columns, n_y) + bytes(columns * n_y * 8))


def camera(bands, columns=32, rows=20, fov=(40, 25)):
    return ("Tidecast_data_file camera 3 3\n"
            f"n_pixel_azimuth {columns}\nn_pixel_elevation {rows}\n"
            f"fov_azimuth {fov[0]}\nfov_elevation {fov[1]}\n"
            "image_method 1\npicture_fraction_flag 0\nn_sub_azimuth 1\nn_sub_elevation 1\n"
            f"number_of_bands {len(bands)}\nband_id {' '.join(str(b) for b in bands)}\n"
            "anti_alias 0\nefficiency_matte 0\nimage_slices 1\nimage_format img\nend\n"
            "use_mattes: 0\n")


def track(x, y, z, chi, phi, theta=0):
    return f"number_of_times 1\ntime x y z chi phi theta\n0 {x} {y} {z} {chi} {phi} {theta}\n"


def scene(bands, objects, cameras, sun=None):
    """objects: (name, kind, file, track); cameras: (kind, file, track); sun: (theta, phi, file)."""
    widths = {1: (0.55, 0.1), 2: (0.65, 0.05), 3: (0.45, 0.1)}
    text = "Tidecast_data_file scene 2 2\noutput_file: run\noutput_format: -b-C-c-f-.-t-\n"
    text += f"number_of_bands: {len(bands)}\nwidth center_wavelength band_id\n"
    for b in bands:
        text += f"{b} {widths[b][0]} {widths[b][1]}\n"
    if sun is None:
        text += "sun_flag: 0\n"
    else:
        text += (f"sun_flag: 1\nnumber_of_times 1\ntime theta phi\n0 {sun[0]} {sun[1]}\n"
                 f"data_file: {sun[2]}\n")
    text += f"number_of_objects: {len(objects)}\n"
    for name, kind, path, key in objects:
        text += key + (f"object_name: {name}\nobject_type: {kind}\nobject_file: {path}\n"
                       "priority: 2.0\n")
    text += f"number_of_cameras: {len(cameras)}\n"
    for kind, path, key in cameras:
        text += key + f"object_type: {kind}\nobject_file: {path}\n"
    text += ("number_of_frames: 1\ntod_flag: 0\nframe_number time\n1 0.0\nend\n"
             "first_frame: 1\nlast_frame: 1\nincrement: 1\n")
    return text


class Runner:
    def __init__(self, engine, shown):
        self.engine = os.path.abspath(engine)
        self.shown = shown
        self.used = set()
        self.failures = []

    def file(self, page, kind, index=0):
        self.used.add((page, kind, index))
        entries = self.shown.get((page, kind), [])
        if index >= len(entries):
            self.failures.append(f"{page}: no complete {kind} file shown (block {index + 1})")
            return None
        return entries[index][1]

    def run(self, label, files, scene_name="scene.dat", picture=None, bands=None,
            shows=False, textures=(), folders=(), grids=(), spectra=()):
        """Runs a scene in a fresh folder; checks status, failure words and the picture.
        grids: (name, columns, rows) height grid files; spectra: (name, n_x, n_y)
        stored spectra of zeros."""
        if any(text is None for text in files.values()):
            return
        with tempfile.TemporaryDirectory() as work:
            for name, text in files.items():
                with open(os.path.join(work, name), "w") as f:
                    f.write(text)
            for name, columns, rows in grids:
                write_mound(os.path.join(work, name), columns, rows)
            for name, n_x, n_y in spectra:
                write_spectrum(os.path.join(work, name), n_x, n_y)
            for name, columns, rows, planes in textures:
                write_sgi(os.path.join(work, name), columns, rows, planes, 180)
            for folder in folders:
                os.makedirs(os.path.join(work, folder), exist_ok=True)
            run = subprocess.run([self.engine, scene_name], cwd=work, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, timeout=600)
            out = run.stdout.decode("latin-1")
            if run.returncode != 0:
                self.failures.append(f"{label}: status {run.returncode}\n{out[-1500:]}")
                return
            bad = [line for line in out.split("\n") if any(w in line for w in FAILURE_WORDS)]
            if bad:
                self.failures.append(f"{label}: the run printed {bad}")
            if picture is None:
                return
            path = os.path.join(work, picture)
            if not os.path.exists(path):
                self.failures.append(f"{label}: {picture} was not written")
                return
            planes = hdf_planes(path)
            if bands is not None and len(planes) != bands:
                self.failures.append(f"{label}: {len(planes)} planes, not {bands}")
            for k, plane in enumerate(planes):
                if not numpy.all(numpy.isfinite(plane)):
                    self.failures.append(f"{label}: plane {k} has values that are not finite")
                elif shows and not numpy.any(plane > 0):
                    self.failures.append(f"{label}: plane {k} is all black")


def main():
    engine, docs = sys.argv[1], sys.argv[2]
    shown = shown_files(docs)
    r = Runner(engine, shown)
    look = camera([1, 2])

    # The air of air.md, lit by the sun of sun.md: a camera looking level sees sky.
    r.run("air.md air file (with sun.md's sun file)",
          {"sky.air": r.file("air.md", "air"), "sun.dat": r.file("sun.md", "sun"),
           "look.cam": look,
           "scene.dat": scene([1, 2], [("sky", "air", "sky.air", track(0, 0, 0, 0, 0))],
                              [("camera", "look.cam", track(0, 0, 2, 85, 0))],
                              sun=(60, 180, "sun.dat"))},
          picture="runc1look0001.img", bands=2, shows=True)

    # Each box 10 m ahead of the camera, filling the middle of the picture.
    box_text = r.file("boxes.md", "box")
    r.run("boxes.md solid box file",
          {"shed.box": box_text, "look.cam": look,
           "scene.dat": scene([1, 2], [("shed", "box", "shed.box", track(10, 0, 2, 0, 0))],
                              [("camera", "look.cam", track(0, 0, 2, 90, 0))])},
          picture="runc1look0001.img", bands=2, shows=True)
    r.run("boxes.md thermal box file",
          {"gas.box": r.file("boxes.md", "thermal_box"), "look.cam": camera([1]),
           "scene.dat": scene([1], [("gas", "boxcloud", "gas.box", track(40, 0, 2, 0, 0))],
                              [("camera", "look.cam", track(0, 0, 2, 90, 0))])},
          picture="runc1look0001.img", bands=1, shows=True)

    # The skydome seen from below; the picture stood up 10 m ahead, its front
    # (+z) turned towards the camera.
    r.run("skydome-picture.md skydome file",
          {"sky.dome": r.file("skydome-picture.md", "skydome"), "look.cam": camera([1, 2, 3]),
           "scene.dat": scene([1, 2, 3], [("sky", "skydome", "sky.dome", track(0, 0, 0, 0, 0))],
                              [("camera", "look.cam", track(0, 0, 2, 45, 0))])},
          picture="runc1look0001.img", bands=3, shows=True, textures=[("sky.rgb", 16, 16, 3)])
    r.run("skydome-picture.md picture file",
          {"poster.pic": r.file("skydome-picture.md", "picture"), "look.cam": camera([1, 2, 3]),
           "scene.dat": scene([1, 2, 3],
                              [("poster", "picture", "poster.pic", track(10, 0, 2, 90, 180))],
                              [("camera", "look.cam", track(0, 0, 2, 90, 0))])},
          picture="runc1look0001.img", bands=3, shows=True, textures=[("poster.rgb", 8, 6, 3)])

    # The camera files of cameras.md: read and run over an empty scene.
    shown_camera = r.file("cameras.md", "camera")
    r.run("cameras.md camera file",
          {"eye.cam": shown_camera,
           "scene.dat": scene([1, 2, 3], [], [("camera", "eye.cam", track(0, 0, 2, 90, 0))])})
    bobbing = r.file("cameras.md", "bobbing_camera")
    if shown_camera is not None and bobbing is not None:
        r.run("cameras.md bobbing camera file (behind its camera file)",
              {"bob.cam": shown_camera + bobbing,
               "scene.dat": scene([1, 2, 3], [],
                                  [("bobbing_camera", "bob.cam", track(0, 0, 2, 90, 0))])})

    # The scenes of scene.md, with the files the page names.
    # The minimal scene has band 1 alone; its page has eye.cam narrowed to it.
    eye = r.file("scene.md", "camera")
    one_band_eye = None
    if eye is not None:
        one_band_eye = eye.replace("number_of_bands 2\nband_id 1 2\n",
                                   "number_of_bands 1\nband_id 1\n")
        if one_band_eye == eye:
            r.failures.append("scene.md: eye.cam no longer names bands 1 and 2")
    r.run("scene.md minimal scene (with eye.cam narrowed to band 1 as cam.cam)",
          {"scene.dat": r.file("scene.md", "scene", 0), "cam.cam": one_band_eye},
          folders=["out"])
    r.run("scene.md first picture",
          {"first.dat": r.file("scene.md", "scene", 1), "eye.cam": eye,
           "shed.box": box_text, "sky.air": r.file("air.md", "air"),
           "sun.dat": r.file("sun.md", "sun")},
          scene_name="first.dat", picture="firstc1eye0001.img", bands=2, shows=True)

    # The oceans of ocean.md, seen from 10 m up. The sea is not drawn yet,
    # so the picture need only hold finite values. The complete file names a
    # swell detail file that no page shows and a stored spectrum for its
    # further lattice (written here, all zeros), and the page's whitecap file.
    swell = ("swell_height: 0.5\nswell_wavelenth: 40\nlong_spread: 0.1\ntrans_spread: 0.2\n"
             "direction: 60\nrandom_seed: 7\nend\n")
    r.run("ocean.md ocean file (with its whitecap file)",
          {"sea.ocean": r.file("ocean.md", "ocean", 0), "caps.dat": r.file("ocean.md", "whitecaps"),
           "swell_spectrum.dat": swell, "look.cam": look,
           "scene.dat": scene([1, 2], [("sea", "ocean", "sea.ocean", track(0, 0, 0, 0, 0))],
                              [("camera", "look.cam", track(0, 0, 10, 60, 0))])},
          picture="runc1look0001.img", bands=2, spectra=[("far.spectrum", 64, 64)])
    r.run("ocean.md ocean file with a height grid (and its detail file)",
          {"calm.ocean": r.file("ocean.md", "ocean", 1),
           "mound.detail": r.file("ocean.md", "height_grid"), "look.cam": camera([1]),
           "scene.dat": scene([1], [("sea", "ocean", "calm.ocean", track(0, 0, 0, 0, 0))],
                              [("camera", "look.cam", track(0, 0, 10, 60, 0))])},
          picture="runc1look0001.img", bands=1, grids=[("mound.hdf", 16, 12)])

    for (page, kind), entries in sorted(shown.items()):
        for index, (line_number, _) in enumerate(entries):
            if (page, kind, index) not in r.used and (page, kind) not in UNRUN:
                r.failures.append(f"{page}:{line_number}: the {kind} file shown there is run "
                                  "by no case of this check")

    for failure in r.failures:
        print(failure)
    if r.failures:
        print(f"{len(r.failures)} failures")
        return 1
    print(f"ran the files shown in {len(r.used)} blocks")
    return 0


# Shown files this check cannot run, and why.
UNRUN = {
    ("polygon-objects.md", "poly"): "the examples name meshes (ship.obj, hull.poly, mast.poly, "
                                    "buoy.poly) and pictures the page does not show",
}

if __name__ == "__main__":
    sys.exit(main())

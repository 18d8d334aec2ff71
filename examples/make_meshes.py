#!/usr/bin/python3
"""Writes the meshes of the example scenes, as Wavefront OBJ files.

    make_meshes.py FOLDER [NAME ...]

Writes the named meshes (when none is named: those that FOLDER's files name)
into FOLDER:

    ship.obj   a small ship, 30 m long: hull, deck, a deckhouse with the
               chart picture on its sides, a mast. Metres, x forward, z up,
               the waterline at z = 0.

The file is written the way modelling tools export: "mtllib", "o", "v",
"vt", "usemtl", "s off", "f v/vt" corners turning counter-clockwise seen
from outside the mesh. Every number comes from closed formulas, so every
run writes the same bytes.
"""
import os
import sys

import numpy

# Whether a file of the folder names a file: the textures' rule.
from make_textures import named_in


class Mesh:
    def __init__(self):
        self.vertices = []
        self.texture = []
        self.groups = []  # (material, [faces]); a face is [(v, vt or None)]

    def vertex(self, p):
        self.vertices.append(tuple(float(c) for c in p))
        return len(self.vertices)

    def uv(self, u, v):
        self.texture.append((float(u), float(v)))
        return len(self.texture)

    def group(self, material):
        self.groups.append((material, []))

    def face(self, corners, outward_from):
        """corners: vertex ids (with optional texture ids); turned so that
        they run counter-clockwise seen from the side away from outward_from."""
        points = numpy.array([self.vertices[c[0] - 1] for c in corners])
        normal = numpy.zeros(3)
        for i in range(len(points)):
            a, b = points[i], points[(i + 1) % len(points)]
            normal += numpy.cross(a, b)
        centre = points.mean(axis=0)
        if numpy.dot(normal, centre - numpy.asarray(outward_from)) < 0.0:
            corners = corners[::-1]
        self.groups[-1][1].append(corners)

    def text(self, name):
        lines = ["# Tidecast example mesh", "mtllib %s.mtl" % name, "o %s" % name]
        lines += ["v %.6f %.6f %.6f" % v for v in self.vertices]
        lines += ["vt %.6f %.6f" % t for t in self.texture]
        for material, faces in self.groups:
            lines.append("usemtl %s" % material)
            lines.append("s off")
            for corners in faces:
                words = []
                for c in corners:
                    words.append("%d/%d" % c if c[1] is not None else "%d" % c[0])
                lines.append("f " + " ".join(words))
        return "\n".join(lines) + "\n"


def block(mesh, low, high, material, textured):
    """A closed box between corners low and high; with textured, each side
    face carries the whole picture."""
    mesh.group(material)
    x0, y0, z0 = low
    x1, y1, z1 = high
    corner = {}
    for i, x in enumerate((x0, x1)):
        for j, y in enumerate((y0, y1)):
            for k, z in enumerate((z0, z1)):
                corner[i, j, k] = mesh.vertex((x, y, z))
    centre = [(a + b) / 2.0 for a, b in zip(low, high)]
    faces = [
        [(0, 0, 0), (1, 0, 0), (1, 0, 1), (0, 0, 1)],
        [(1, 0, 0), (1, 1, 0), (1, 1, 1), (1, 0, 1)],
        [(1, 1, 0), (0, 1, 0), (0, 1, 1), (1, 1, 1)],
        [(0, 1, 0), (0, 0, 0), (0, 0, 1), (0, 1, 1)],
        [(0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)],
        [(0, 0, 0), (0, 1, 0), (1, 1, 0), (1, 0, 0)],
    ]
    for n, f in enumerate(faces):
        if textured and n < 4:
            ts = [mesh.uv(0, 0), mesh.uv(1, 0), mesh.uv(1, 1), mesh.uv(0, 1)]
            corners = [(corner[c], t) for c, t in zip(f, ts)]
        else:
            corners = [(corner[c], None) for c in f]
        mesh.face(corners, centre)


def ship():
    mesh = Mesh()
    # Hull stations along x: half beam at the deck (z = 3) and at the keel
    # (z = -2); the bow closes to a stem at x = 15.
    stations = [(-15.0, 3.6, 2.4), (-10.0, 4.0, 2.8), (0.0, 4.0, 2.8), (7.0, 3.6, 2.2),
                (11.0, 2.4, 1.2), (15.0, 0.0, 0.0)]
    deck, keel = 3.0, -2.0
    rings = []
    for x, b, k in stations:
        rings.append([mesh.vertex((x, -b, deck)), mesh.vertex((x, -k, keel)),
                      mesh.vertex((x, k, keel)), mesh.vertex((x, b, deck))])
    inside = (0.0, 0.0, 0.5)
    mesh.group("hull")
    for a, b in zip(rings[:-1], rings[1:]):
        for s in range(3):
            quad = [a[s], a[s + 1], b[s + 1], b[s]]
            # The stem's ring is one point twice on each side: triangles there.
            unique = []
            for q in quad:
                if mesh.vertices[q - 1] not in [mesh.vertices[u - 1] for u in unique]:
                    unique.append(q)
            if len(unique) >= 3:
                mesh.face([(q, None) for q in unique], inside)
    mesh.face([(q, None) for q in rings[0]], inside)  # the transom
    mesh.group("deck")
    deck_outline = [r[0] for r in rings] + [r[3] for r in reversed(rings[:-1])]
    mesh.face([(q, None) for q in deck_outline], inside)
    block(mesh, (-11.0, -3.0, deck), (-3.0, 3.0, deck + 3.5), "chart", True)
    block(mesh, (-7.2, -0.2, deck + 3.5), (-6.8, 0.2, deck + 12.0), "mast", False)
    return mesh


MESHES = {"ship.obj": ship}


def main(argv):
    if len(argv) < 2:
        sys.stderr.write(__doc__)
        return 1
    folder = argv[1]
    names = argv[2:] or [n for n in MESHES if named_in(folder, n)]
    for name in names:
        if name not in MESHES:
            sys.stderr.write("make_meshes.py: no mesh called %s\n" % name)
            return 1
        with open(os.path.join(folder, name), "w") as f:
            f.write(MESHES[name]().text(os.path.splitext(name)[0]))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

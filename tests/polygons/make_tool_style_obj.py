#!/usr/bin/env python3
"""Writes an OBJ file in the style of a common modelling tool's export and
prints what a reader must find in it, one "key value" per line.

    make_tool_style_obj.py OUT.obj [ROWS]

The file holds a box (every face with its own normal and texture corners,
so each corner of the box meets three different triples) and a flat grid
of ROWS x ROWS quads whose vertices each have one texture vertex and one
normal (no vertex meets two triples). The expected counts are worked out
here from the faces as written: a vertex's first (v, vt, vn) triple is
its own point, every further distinct triple one more point.
"""
import sys


def main():
    out = sys.argv[1]
    rows = int(sys.argv[2]) if len(sys.argv) > 2 else 4
    lines = ["# Blender 3.6.0", "# www.blender.org", "mtllib scene.mtl"]
    faces = []  # (material, [(v, vt, vn), ...]) with 1-based ids
    n_v = n_vt = n_vn = 0

    # The box.
    lines.append("o Box")
    corners = [(x, y, z) for x in (-1, 1) for y in (-1, 1) for z in (-1, 1)]
    for c in corners:
        lines.append("v %.6f %.6f %.6f" % c)
    box_v = n_v
    n_v += 8
    quads = [  # corner indices (0-based into corners), outward normal
        ([0, 1, 3, 2], (-1, 0, 0)), ([4, 6, 7, 5], (1, 0, 0)),
        ([0, 4, 5, 1], (0, -1, 0)), ([2, 3, 7, 6], (0, 1, 0)),
        ([0, 2, 6, 4], (0, 0, -1)), ([1, 5, 7, 3], (0, 0, 1))]
    uv = [(0.0, 0.0), (1.0, 0.0), (1.0, 1.0), (0.0, 1.0)]
    for i in range(len(quads)):
        for u, v in uv:
            lines.append("vt %.6f %.6f" % (u + i, v))
    box_vt = n_vt
    n_vt += 4 * len(quads)
    for _, normal in quads:
        lines.append("vn %.4f %.4f %.4f" % normal)
    box_vn = n_vn
    n_vn += len(quads)
    lines.append("usemtl Painted_Wood")
    lines.append("s off")
    for i, (quad, _) in enumerate(quads):
        corner_ids = [(box_v + k + 1, box_vt + 4 * i + j + 1, box_vn + i + 1)
                      for j, k in enumerate(quad)]
        faces.append(("Painted_Wood", corner_ids))
        lines.append("f " + " ".join("%d/%d/%d" % c for c in corner_ids))

    # The grid, in triangles, at z = -1.
    lines.append("o Plane")
    grid_v = n_v
    for j in range(rows + 1):
        for i in range(rows + 1):
            lines.append("v %.6f %.6f %.6f" % (i - rows / 2.0, j - rows / 2.0, -1.0))
    n_v += (rows + 1) ** 2
    grid_vt = n_vt
    for j in range(rows + 1):
        for i in range(rows + 1):
            lines.append("vt %.6f %.6f" % (i / rows, j / rows))
    n_vt += (rows + 1) ** 2
    lines.append("vn 0.0000 0.0000 1.0000")
    grid_vn = n_vn
    n_vn += 1
    lines.append("usemtl Sea_Foam")
    lines.append("s 1")

    def grid_corner(i, j):
        k = j * (rows + 1) + i
        return (grid_v + k + 1, grid_vt + k + 1, grid_vn + 1)

    for j in range(rows):
        for i in range(rows):
            a, b = grid_corner(i, j), grid_corner(i + 1, j)
            c, d = grid_corner(i + 1, j + 1), grid_corner(i, j + 1)
            for tri in ((a, b, c), (a, c, d)):
                faces.append(("Sea_Foam", list(tri)))
                lines.append("f " + " ".join("%d/%d/%d" % t for t in tri))

    with open(out, "w") as f:
        f.write("\n".join(lines) + "\n")

    # Points: one per vertex, then one per further distinct triple.
    triples = {}
    for _, corner_ids in faces:
        for t in corner_ids:
            triples.setdefault(t[0], [])
            if t not in triples[t[0]]:
                triples[t[0]].append(t)
    duplicates = sum(len(ts) - 1 for ts in triples.values())
    materials = []
    for m, _ in faces:
        if m not in materials:
            materials.append(m)
    print("vertices", n_v)
    print("texture_vertices", n_vt)
    print("normals", n_vn)
    print("points", n_v + duplicates)
    print("faces", len(faces))
    print("corners", sum(len(c) for _, c in faces))
    print("surfaces", len(materials))
    for i, m in enumerate(materials):
        print("surface_faces_%d" % i, sum(1 for n, _ in faces if n == m))
        print("texture_%d" % i, m + ".rgb")
    print("o_lines", 2)
    print("mtllib_lines", 1)
    print("s_lines", 2)
    print("comment_lines", 2)


if __name__ == "__main__":
    main()

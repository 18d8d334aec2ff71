#ifndef POLY_MESH_H
#define POLY_MESH_H

#include <cstdio>

// The ".poly" mesh form: a text file of points, each with optional colour,
// normal and texture coordinates, then polygons of point ids. A small
// library of its own: it knows nothing of the renderer.
//
//   POINTS
//   1: 0 0 0 c(1, 0, 0) uv(0, 0)
//   2: 1 0 0 n(0, 0, 1)
//   3: 0 1 0
//   POLYS
//   1: 1 2 3 <
//   END
//
// Points and polygons are kept in rings (next / previous links, the head's
// previous being the last and the last's next the head), in file order; ids
// count from 1. Walk them by n_points / n_polys.
struct Poly_point {
  int id;
  double x, y, z, weight;
  double u, v;
  double r, g, b, a;
  double nx, ny, nz;
  int has_colour, has_uv, has_normal;
  Poly_point* next;
  Poly_point* previous;
};

struct Poly_polygon {
  int id;
  int n_ids;
  int* ids;  // point ids, from 1
  int closed;
  Poly_polygon* next;
  Poly_polygon* previous;
};

struct Poly_mesh {
  int n_points;
  int n_polys;
  Poly_point* points;  // ring head, null when empty
  Poly_polygon* polys;
};

// Extension code of a file name, from the text after its last dot:
// "bpoly", "bramp" 1 (packed form), "poly", "ramp" 0, "d" 2, others -1.
int poly_type_of_name(const char* name);
// Opens a mesh file for reading ("stdin" is standard input); null after
// "Error opening prisms poly file: <name>\n".
std::FILE* poly_open_read(const char* name);
// Reads a whole mesh; null after the reasons on standard error.
Poly_mesh* poly_read(std::FILE* file);
// Writes the text form ("stdout" names standard output when opened by the
// caller); 1, or 0 when writing fails.
int poly_write(std::FILE* file, const Poly_mesh* mesh);
// Frees a mesh and everything in it; null is allowed.
void poly_free(Poly_mesh* mesh);

#endif

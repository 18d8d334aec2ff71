#include "Poly_mesh.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// Longest line the format allows, newline not counted.
const int longest_line = 4096;
// An id takes at least a digit and a separator, so a line holds fewer ids.
const int most_ids_on_line = longest_line / 2 + 1;

enum Line_result { line_read, line_at_end, line_bad };

// Reads one line without its newline into buffer (longest_line + 1 bytes).
// A longer line, or one holding a NUL byte, is bad; its rest is consumed.
Line_result read_line(std::FILE* file, char* buffer) {
  int length = 0;
  int bad = 0;
  int c = std::getc(file);
  if (c == EOF) return line_at_end;
  while (c != EOF && c != '\n') {
    if (c == '\0' || length >= longest_line)
      bad = 1;
    else
      buffer[length++] = static_cast<char>(c);
    c = std::getc(file);
  }
  buffer[length] = '\0';
  return bad ? line_bad : line_read;
}

int begins_with(const char* line, const char* word) {
  return std::strncmp(line, word, std::strlen(word)) == 0;
}

// Separators between numbers; a carriage return left by another system's
// line ends counts as one too.
int is_separator(char c) {
  return c == ' ' || c == ',' || c == '\t' || c == '\r';
}

const char* skip_separators(const char* p) {
  while (is_separator(*p)) p++;
  return p;
}

// A number must end at a separator, the line's end or (in an attribute) ")".
int ends_number(char c) {
  return c == '\0' || c == ')' || is_separator(c);
}

// Reads the double at p; the cursor moves past it. 0 when there is none.
int read_double(const char*& p, double& value) {
  p = skip_separators(p);
  char* end = nullptr;
  errno = 0;
  value = std::strtod(p, &end);
  if (end == p || !ends_number(*end) || !std::isfinite(value)) return 0;
  p = end;
  return 1;
}

// Reads a line's leading "<id>:"; the id must be expected.
int read_line_id(const char*& p, int expected) {
  p = skip_separators(p);
  char* end = nullptr;
  errno = 0;
  const long id = std::strtol(p, &end, 10);
  if (end == p || *end != ':' || errno == ERANGE || id != expected) return 0;
  p = end + 1;
  return 1;
}

// The numbers of an attribute from after its "(" to its ")": between
// fewest and most of them.
int read_attribute(const char*& p, double* values, int fewest, int most, int& count) {
  count = 0;
  for (;;) {
    p = skip_separators(p);
    if (*p == ')') {
      p++;
      return count >= fewest;
    }
    if (count == most || !read_double(p, values[count])) return 0;
    count++;
  }
}

// "<id>: x y z" and attributes in any order, each at most once.
int parse_point(const char* line, int expected_id, Poly_point* point) {
  const char* p = line;
  if (!read_line_id(p, expected_id)) return 0;
  point->id = expected_id;
  if (!read_double(p, point->x) || !read_double(p, point->y) || !read_double(p, point->z)) return 0;
  for (;;) {
    p = skip_separators(p);
    if (*p == '\0') return 1;
    double values[4];
    int count = 0;
    if (begins_with(p, "c(") && !point->has_colour) {
      p += 2;
      if (!read_attribute(p, values, 3, 4, count)) return 0;
      point->r = values[0];
      point->g = values[1];
      point->b = values[2];
      point->a = count == 4 ? values[3] : 1.0;
      point->has_colour = 1;
    } else if (begins_with(p, "n(") && !point->has_normal) {
      p += 2;
      if (!read_attribute(p, values, 3, 3, count)) return 0;
      point->nx = values[0];
      point->ny = values[1];
      point->nz = values[2];
      point->has_normal = 1;
    } else if (begins_with(p, "uv(") && !point->has_uv) {
      p += 3;
      if (!read_attribute(p, values, 2, 2, count)) return 0;
      point->u = values[0];
      point->v = values[1];
      point->has_uv = 1;
    } else {
      return 0;
    }
  }
}

// "<id>: i1 i2 ... in", a "<" anywhere among them closing the polygon.
// ids receives the point ids (most_ids_on_line of room).
int parse_polygon(const char* line, int expected_id, int n_points, int* ids, int& n_ids,
                  int& closed) {
  const char* p = line;
  n_ids = 0;
  closed = 0;
  if (!read_line_id(p, expected_id)) return 0;
  for (;;) {
    p = skip_separators(p);
    if (*p == '\0') return 1;
    if (*p == '<') {
      if (!ends_number(p[1])) return 0;
      closed = 1;
      p++;
      continue;
    }
    char* end = nullptr;
    errno = 0;
    const long id = std::strtol(p, &end, 10);
    if (end == p || !ends_number(*end) || *end == ')' || errno == ERANGE) return 0;
    if (id < 1 || id > n_points || n_ids == most_ids_on_line) return 0;
    ids[n_ids++] = static_cast<int>(id);
    p = end;
  }
}

// Appends node to the ring whose head is head.
void append_point(Poly_mesh* mesh, Poly_point* point) {
  if (mesh->points == nullptr) {
    point->next = point;
    point->previous = point;
    mesh->points = point;
  } else {
    Poly_point* last = mesh->points->previous;
    point->previous = last;
    point->next = mesh->points;
    last->next = point;
    mesh->points->previous = point;
  }
  mesh->n_points++;
}

void append_polygon(Poly_mesh* mesh, Poly_polygon* polygon) {
  if (mesh->polys == nullptr) {
    polygon->next = polygon;
    polygon->previous = polygon;
    mesh->polys = polygon;
  } else {
    Poly_polygon* last = mesh->polys->previous;
    polygon->previous = last;
    polygon->next = mesh->polys;
    last->next = polygon;
    mesh->polys->previous = polygon;
  }
  mesh->n_polys++;
}

Poly_mesh* failed_read(Poly_mesh* mesh) {
  std::fprintf(stderr, "Error reading in .poly file: \n");
  std::fprintf(stderr, "      read in %d points\n", mesh->n_points);
  std::fprintf(stderr, "      read in %d polys\n", mesh->n_polys);
  poly_free(mesh);
  return nullptr;
}

// Reads the lines after "POINTS" into mesh; 1 at "END" or at the end of
// the file in the polygon section.
int read_body(std::FILE* file, Poly_mesh* mesh, char* line, int* ids) {
  int in_polygons = 0;
  for (;;) {
    const Line_result got = read_line(file, line);
    if (got == line_at_end) return in_polygons;
    if (got == line_bad) return 0;
    if (*skip_separators(line) == '\0') continue;  // blank lines carry nothing
    if (begins_with(line, "END")) return 1;
    if (!in_polygons) {
      if (begins_with(line, "POLYS")) {
        in_polygons = 1;
        continue;
      }
      Poly_point* point = new (std::nothrow) Poly_point();
      if (point == nullptr) return 0;
      point->weight = 1.0;
      point->a = 1.0;
      if (!parse_point(line, mesh->n_points + 1, point)) {
        delete point;
        return 0;
      }
      append_point(mesh, point);
    } else {
      int n_ids = 0;
      int closed = 0;
      if (!parse_polygon(line, mesh->n_polys + 1, mesh->n_points, ids, n_ids, closed)) return 0;
      Poly_polygon* polygon = new (std::nothrow) Poly_polygon();
      if (polygon == nullptr) return 0;
      polygon->ids = new (std::nothrow) int[n_ids > 0 ? n_ids : 1];
      if (polygon->ids == nullptr) {
        delete polygon;
        return 0;
      }
      std::memcpy(polygon->ids, ids, sizeof(int) * n_ids);
      polygon->id = mesh->n_polys + 1;
      polygon->n_ids = n_ids;
      polygon->closed = closed;
      append_polygon(mesh, polygon);
    }
  }
}

}  // namespace

int poly_type_of_name(const char* name) {
  if (name == nullptr) return -1;
  const char* dot = std::strrchr(name, '.');
  if (dot == nullptr) return -1;
  const char* extension = dot + 1;
  if (std::strcmp(extension, "bpoly") == 0 || std::strcmp(extension, "bramp") == 0) return 1;
  if (std::strcmp(extension, "poly") == 0 || std::strcmp(extension, "ramp") == 0) return 0;
  if (std::strcmp(extension, "d") == 0) return 2;
  return -1;
}

std::FILE* poly_open_read(const char* name) {
  if (name != nullptr && std::strcmp(name, "stdin") == 0) return stdin;
  std::FILE* file = name != nullptr ? std::fopen(name, "r") : nullptr;
  if (file == nullptr)
    std::fprintf(stderr, "Error opening prisms poly file: %s\n", name ? name : "");
  return file;
}

Poly_mesh* poly_read(std::FILE* file) {
  if (file == nullptr) return nullptr;
  char* line = new (std::nothrow) char[longest_line + 1];
  int* ids = new (std::nothrow) int[most_ids_on_line];
  Poly_mesh* mesh = new (std::nothrow) Poly_mesh();
  if (line == nullptr || ids == nullptr || mesh == nullptr) {
    delete[] line;
    delete[] ids;
    delete mesh;
    return nullptr;
  }
  const Line_result first = read_line(file, line);
  if (first != line_read || !begins_with(line, "POINTS")) {
    if (first == line_at_end) line[0] = '\0';
    std::fprintf(stderr, "ERROR in .poly file: first line != POINTS\n");
    std::fprintf(stderr, "      First line is: %s\n", line);
    delete[] line;
    delete[] ids;
    poly_free(mesh);
    return nullptr;
  }
  const int ok = read_body(file, mesh, line, ids);
  delete[] line;
  delete[] ids;
  if (!ok) return failed_read(mesh);
  return mesh;
}

int poly_write(std::FILE* file, const Poly_mesh* mesh) {
  if (file == nullptr || mesh == nullptr) return 0;
  int failed = std::fprintf(file, "POINTS\n") < 0;
  const Poly_point* point = mesh->points;
  for (int i = 0; i < mesh->n_points && point != nullptr; i++, point = point->next) {
    failed |= std::fprintf(file, "%d: %g %g %g", point->id, point->x, point->y, point->z) < 0;
    if (point->has_colour) {
      if (point->a == 1.0)
        failed |= std::fprintf(file, " c(%g, %g, %g)", point->r, point->g, point->b) < 0;
      else
        failed |=
            std::fprintf(file, " c(%g, %g, %g, %g)", point->r, point->g, point->b, point->a) < 0;
    }
    if (point->has_uv) failed |= std::fprintf(file, " uv(%g, %g)", point->u, point->v) < 0;
    if (point->has_normal)
      failed |= std::fprintf(file, " n(%g, %g, %g)", point->nx, point->ny, point->nz) < 0;
    failed |= std::fprintf(file, "\n") < 0;
  }
  failed |= std::fprintf(file, "POLYS\n") < 0;
  const Poly_polygon* polygon = mesh->polys;
  for (int i = 0; i < mesh->n_polys && polygon != nullptr; i++, polygon = polygon->next) {
    failed |= std::fprintf(file, "%d:", polygon->id) < 0;
    for (int k = 0; k < polygon->n_ids; k++)
      failed |= std::fprintf(file, " %d", polygon->ids[k]) < 0;
    if (polygon->closed) failed |= std::fprintf(file, " <") < 0;
    failed |= std::fprintf(file, "\n") < 0;
  }
  if (std::fflush(file) != 0 || std::ferror(file)) failed = 1;
  return failed ? 0 : 1;
}

void poly_free(Poly_mesh* mesh) {
  if (mesh == nullptr) return;
  Poly_point* point = mesh->points;
  for (int i = 0; i < mesh->n_points && point != nullptr; i++) {
    Poly_point* next = point->next;
    delete point;
    point = next;
  }
  Poly_polygon* polygon = mesh->polys;
  for (int i = 0; i < mesh->n_polys && polygon != nullptr; i++) {
    Poly_polygon* next = polygon->next;
    delete[] polygon->ids;
    delete polygon;
    polygon = next;
  }
  delete mesh;
}

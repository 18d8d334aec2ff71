#include "TCObj_file.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <string>

#include "Point_list.h"

namespace {

// Command words by code, 1 to 34; 0 stands for no word.
const char* const command_words[35] = {
    nullptr,    "v",   "vt",     "vn",     "vp",         "deg",       "bmat",  "step",  "p",
    "l",        "f",   "curv",   "curv2",  "surf",       "parm",      "trim",  "hole",  "scrv",
    "sp",       "end", "con",    "g",      "s",          "mg",        "o",     "bevel", "c_interp",
    "d_interp", "lod", "usemtl", "mtllib", "shadow_obj", "trace_obj", "ctech", "stech"};

const int code_v = 1, code_vt = 2, code_vn = 3, code_f = 10, code_g = 21, code_s = 22,
          code_usemtl = 29;

// A list of ints that grows as the file is read; grow failure leaves ok 0.
class Int_list {
 public:
  Int_list() : n(0), room(0), data(nullptr), ok(1) {}
  ~Int_list() { delete[] data; }
  void add(int value) {
    if (!ok) return;
    if (n == room) {
      const int new_room = room == 0 ? 1024 : (room > INT_MAX / 2 ? INT_MAX : room * 2);
      if (new_room == room) {
        ok = 0;
        return;
      }
      int* bigger = new (std::nothrow) int[new_room];
      if (bigger == nullptr) {
        ok = 0;
        return;
      }
      if (n > 0) std::memcpy(bigger, data, sizeof(int) * n);
      delete[] data;
      data = bigger;
      room = new_room;
    }
    data[n++] = value;
  }
  int n, room;
  int* data;
  int ok;

 private:
  Int_list(const Int_list&);
  Int_list& operator=(const Int_list&);
};

// Triples of doubles: vertices, texture vertices or normals.
class Triple_list {
 public:
  Triple_list() : n(0), room(0), data(nullptr), ok(1) {}
  ~Triple_list() { delete[] data; }
  void add(double a, double b, double c) {
    if (!ok) return;
    if (n == room) {
      const int new_room = room == 0 ? 1024 : room * 2;  // bounded by the 50000 limit
      double* bigger = new (std::nothrow) double[3 * new_room];
      if (bigger == nullptr) {
        ok = 0;
        return;
      }
      if (n > 0) std::memcpy(bigger, data, sizeof(double) * 3 * n);
      delete[] data;
      data = bigger;
      room = new_room;
    }
    data[3 * n] = a;
    data[3 * n + 1] = b;
    data[3 * n + 2] = c;
    n++;
  }
  int n, room;
  double* data;
  int ok;

 private:
  Triple_list(const Triple_list&);
  Triple_list& operator=(const Triple_list&);
};

int is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}

// Splits text at blanks, in place; words points into it. Returns the count,
// at most most_words (the rest of the line is then one more word, so that
// an overfull line is noticed).
int split_words(char* text, char** words, int most_words) {
  int n = 0;
  char* p = text;
  for (;;) {
    while (is_blank(*p)) p++;
    if (*p == '\0') return n;
    if (n == most_words) return n + 1;
    words[n++] = p;
    while (*p != '\0' && !is_blank(*p)) p++;
    if (*p == '\0') return n;
    *p++ = '\0';
  }
}

// A whole word as a finite double.
int word_double(const char* word, double& value) {
  char* end = nullptr;
  value = std::strtod(word, &end);
  return end != word && *end == '\0' && std::isfinite(value);
}

// Digits from p (with an optional sign) as an int; p moves past them.
int read_int(const char*& p, int& value) {
  char* end = nullptr;
  errno = 0;
  const long got = std::strtol(p, &end, 10);
  if (end == p || errno == ERANGE || got < INT_MIN || got > INT_MAX) return 0;
  value = static_cast<int>(got);
  p = end;
  return 1;
}

// A corner "v", "v/t", "v//n" or "v/t/n"; t and n are 0 when absent.
int parse_corner(const char* word, int& v, int& t, int& n) {
  const char* p = word;
  t = 0;
  n = 0;
  if (*p == '+' || !read_int(p, v)) return 0;
  if (*p == '\0') return 1;
  if (*p++ != '/') return 0;
  if (*p != '/') {
    // Texture and normal ids count from 1; relative (negative) ones are
    // not taken.
    if (*p == '+' || !read_int(p, t) || t < 1) return 0;
    if (*p == '\0') return 1;
    if (*p != '/') return 0;
  }
  p++;
  if (*p == '+' || !read_int(p, n) || n < 1) return 0;
  return *p == '\0';
}

}  // namespace

int TCObj_file::command_code(const char* word) {
  for (int code = 1; code <= 34; code++)
    if (std::strcmp(word, command_words[code]) == 0) return code;
  return code_unknown;
}

const char* TCObj_file::command_word(int code) {
  return code >= 1 && code <= 34 ? command_words[code] : "";
}

TCObj_file::TCObj_file()
    : n_points(0),
      x(nullptr),
      y(nullptr),
      z(nullptr),
      has_texture(nullptr),
      u(nullptr),
      v(nullptr),
      has_normal(nullptr),
      nx(nullptr),
      ny(nullptr),
      nz(nullptr),
      n_surfaces(0),
      texture_names(nullptr),
      n_faces(0),
      face_surface(nullptr),
      face_size(nullptr),
      face_first(nullptr),
      n_corners(0),
      corners(nullptr) {
  for (int i = 0; i < 37; i++) counts[i] = 0;
}

TCObj_file::~TCObj_file() {
  clear();
}

void TCObj_file::clear() {
  delete[] x;
  delete[] y;
  delete[] z;
  delete[] has_texture;
  delete[] u;
  delete[] v;
  delete[] has_normal;
  delete[] nx;
  delete[] ny;
  delete[] nz;
  delete[] texture_names;
  delete[] face_surface;
  delete[] face_size;
  delete[] face_first;
  delete[] corners;
  x = y = z = u = v = nx = ny = nz = nullptr;
  has_texture = has_normal = nullptr;
  texture_names = nullptr;
  face_surface = face_size = face_first = corners = nullptr;
  n_points = n_surfaces = n_faces = n_corners = 0;
  for (int i = 0; i < 37; i++) counts[i] = 0;
}

int TCObj_file::read(const char* path) {
  clear();
  if (path == nullptr) path = "";
  std::cout << "Opening file: " << path << "\n";
  std::FILE* file = std::fopen(path, "r");
  if (file == nullptr) {
    std::cout << "Error opening " << path << "\n";
    return 0;
  }
  const int result = read_file(file, path);
  std::fclose(file);
  return result;
}

int TCObj_file::read_file(std::FILE* file, const char* path) {
  clear();
  if (file == nullptr) return 0;
  if (path == nullptr) path = "";

  Triple_list vertices, texture_vertices, normals;
  Int_list faces_surface, faces_size, faces_first, face_corners;
  Point_list points(most_vertices);
  char names[most_surfaces][256];
  int surface_faces[most_surfaces];
  int surfaces = 0;
  char* line = new (std::nothrow) char[longest_line + 2];
  char* words_text = new (std::nothrow) char[longest_line + 2];
  char** words = new (std::nothrow) char*[longest_line + 1];
  int ok = 1;
  if (line == nullptr || words_text == nullptr || words == nullptr || !points.ok()) {
    std::cout << "Error allocating temporary memory to read in OBJ files!\n";
    ok = 0;
  }

  while (ok) {
    // One line, its newline removed; a longer one is reported and skipped.
    int length = 0;
    int too_long = 0;
    int c = std::getc(file);
    if (c == EOF) break;
    while (c != EOF && c != '\n') {
      if (length < longest_line)
        line[length++] = static_cast<char>(c);
      else
        too_long = 1;
      c = std::getc(file);
    }
    line[length] = '\0';
    // Text after a NUL byte is beyond what the words can see.
    const std::string shown(line, length);
    if (too_long) {
      std::cout << "line too long: SKIPPING OVER LINE\n";
      std::cout << "line:  " << shown << "\n";
      continue;
    }
    std::memcpy(words_text, line, length + 1);
    const int n_words = split_words(words_text, words, longest_line);
    int code = code_unknown;
    if (line[0] == '#')
      code = code_comment;
    else if (n_words == 0)
      code = code_blank_line;
    else
      code = command_code(words[0]);
    counts[code] += 1;

    if (code == code_v || code == code_vt || code == code_vn) {
      double value[3] = {0.0, 0.0, 0.0};
      const int needed = code == code_vt ? 2 : 3;
      // "vt" may carry a third value; anything beyond is not read.
      const int taken = code == code_vt && n_words > 3 ? 3 : needed;
      int parsed = n_words > needed;
      for (int k = 0; parsed && k < taken; k++) parsed = word_double(words[k + 1], value[k]);
      if (!parsed) {
        std::cout << "Error processing OBJ line: " << shown << "\n";
        ok = 0;
      } else if (code == code_v) {
        if (vertices.n >= most_vertices) {
          std::cout << "Opps! Too many vertices: " << vertices.n + 1 << "\n";
          ok = 0;
        } else {
          vertices.add(value[0], value[1], value[2]);
        }
      } else if (code == code_vt) {
        if (texture_vertices.n >= most_vertices) {
          std::cout << "Opps! Too many texture vertices " << texture_vertices.n + 1 << "\n";
          ok = 0;
        } else {
          texture_vertices.add(value[0], value[1], value[2]);
        }
      } else {
        if (normals.n >= most_vertices) {
          std::cout << "Too many NORMALS\n";
          ok = 0;
        } else {
          normals.add(value[0], value[1], value[2]);
        }
      }
    } else if (code == code_usemtl) {
      if (surfaces >= most_surfaces) {
        std::cout << "surface index is greater than expected!\nBye.\n";
        ok = 0;
      } else if (n_words < 2 || std::strlen(words[1]) > 255 - std::strlen(".rgb")) {
        std::cout << "Error processing OBJ line: " << shown << "\n";
        ok = 0;
      } else {
        std::snprintf(names[surfaces], 256, "%s.rgb", words[1]);
        surface_faces[surfaces] = 0;
        surfaces++;
      }
    } else if (code == code_f) {
      const int n_given = n_words - 1;
      if (surfaces == 0) {
        std::cout << "Opps! Defining a polygon face with NO texture.\nBye.\n";
        ok = 0;
      } else if (n_given >= most_corners) {
        std::cout << "Too many vertices: " << n_given << " >= " << most_corners << "\n";
        ok = 0;
      } else if (surface_faces[surfaces - 1] >= most_faces_per_surface) {
        std::cout << "Gee, somethings wrong in the poly input file:\n";
        std::cout << "Error processing OBJ line: " << shown << "\n";
        ok = 0;
      } else if (n_given < 3) {
        std::cout << "Error processing OBJ line: " << shown << "\n";
        ok = 0;
      } else {
        const int first = face_corners.n;
        for (int k = 1; ok && k < n_words; k++) {
          int cv = 0, ct = 0, cn = 0;
          // A corner must name what is already read: no forward references.
          if (!parse_corner(words[k], cv, ct, cn) || cv > vertices.n || ct > texture_vertices.n ||
              cn > normals.n) {
            std::cout << "Error processing OBJ line: " << shown << "\n";
            ok = 0;
            break;
          }
          const int id = points.add(cv, ct, cn);
          if (id == 0) {
            std::cout << "Opps! Error setting polyList\n";
            ok = 0;
            break;
          }
          face_corners.add(id);
        }
        if (ok) {
          faces_surface.add(surfaces - 1);
          faces_size.add(n_given);
          faces_first.add(first);
          surface_faces[surfaces - 1]++;
        }
      }
    }
    if (!vertices.ok || !texture_vertices.ok || !normals.ok || !faces_surface.ok ||
        !faces_size.ok || !faces_first.ok || !face_corners.ok) {
      std::cout << "Error allocating temp memory to read in OBJ file.\n";
      ok = 0;
    }
  }
  delete[] line;
  delete[] words_text;
  delete[] words;
  if (!ok) {
    clear();
    return 0;
  }

  std::cout << "Read file: " << path << "\n";
  std::cout << " OBJ file information:\n";
  std::cout << "         " << counts[code_v] << " vertices.\n";
  std::cout << "         " << faces_size.n << " polygons.\n";
  std::cout << "         " << surfaces << " textured surfaces.\n";
  if (counts[code_g] > 0)
    std::cout << "         OBJ group information not used (" << counts[code_g] << " groups)\n";
  if (counts[code_s] > 0)
    std::cout << "         OBJ smoothing groups not supported - " << counts[code_s]
              << " lines ignored\n";
  for (int code = 1; code <= 34; code++) {
    if (code == code_v || code == code_vt || code == code_vn || code == code_f || code == code_g ||
        code == code_s || code == code_usemtl || counts[code] == 0)
      continue;
    std::cout << "         OBJ " << command_words[code] << " command not supported ("
              << counts[code] << " lines)\n";
  }
  int face = 0;
  for (int i = 0; i < surfaces; i++) {
    std::cout << "         Surface[" << i << "]: " << surface_faces[i] << " polygons";
    std::cout << " texture: " << names[i];
    std::cout << " Vert:";
    // The OBJ vertex numbers of the surface's first face, at most three.
    while (face < faces_surface.n && faces_surface.data[face] < i) face++;
    if (face < faces_surface.n && faces_surface.data[face] == i) {
      for (int k = 0; k < faces_size.data[face] && k < 3; k++) {
        const Point_slot* slot = points.slot_of(face_corners.data[faces_first.data[face] + k]);
        std::cout << " " << (slot ? slot->v : 0);
      }
    }
    std::cout << "\n";
  }
  if (surfaces == 0) std::cout << "         NO textures defined with usemtl\n";
  if (surfaces > most_surfaces)
    std::cout << "         " << surfaces << " surfaces is more than " << most_surfaces
              << " max surfaces\n";
  if (counts[code_vt] == 0) std::cout << "         NO VERTICE TEXTURES\n";
  if (counts[code_v] == 0) std::cout << "         Your file has NO vertices!\n";

  // Every vertex of the file is a point, in vertex order (one no face uses
  // still takes its place), then the duplicates in order of arrival.
  const int total = vertices.n + points.n_duplicates;
  x = new (std::nothrow) double[total];
  y = new (std::nothrow) double[total];
  z = new (std::nothrow) double[total];
  has_texture = new (std::nothrow) int[total];
  u = new (std::nothrow) double[total];
  v = new (std::nothrow) double[total];
  has_normal = new (std::nothrow) int[total];
  nx = new (std::nothrow) double[total];
  ny = new (std::nothrow) double[total];
  nz = new (std::nothrow) double[total];
  if (!x || !y || !z || !has_texture || !u || !v || !has_normal || !nx || !ny || !nz) {
    std::cout << "Error allocating " << total << " vertices for texture object\n";
    clear();
    return 0;
  }
  texture_names = new (std::nothrow) char[surfaces > 0 ? surfaces : 1][256];
  face_surface = new (std::nothrow) int[faces_size.n > 0 ? faces_size.n : 1];
  face_size = new (std::nothrow) int[faces_size.n > 0 ? faces_size.n : 1];
  face_first = new (std::nothrow) int[faces_size.n > 0 ? faces_size.n : 1];
  corners = new (std::nothrow) int[face_corners.n > 0 ? face_corners.n : 1];
  if (!texture_names || !face_surface || !face_size || !face_first || !corners) {
    std::cout << "Error allocating " << surfaces << " surfaces for texture object\n";
    clear();
    return 0;
  }

  n_points = total;
  for (int i = 0; i < total; i++) {
    const Point_slot* slot =
        i < vertices.n ? points.slot_of(i + 1) : points.slot_of(-(i - vertices.n + 1));
    const int vertex = i < vertices.n ? i + 1 : slot->v;
    x[i] = vertices.data[3 * (vertex - 1)];
    y[i] = vertices.data[3 * (vertex - 1) + 1];
    z[i] = vertices.data[3 * (vertex - 1) + 2];
    has_texture[i] = slot != nullptr && slot->t > 0;
    u[i] = has_texture[i] ? texture_vertices.data[3 * (slot->t - 1)] : 0.0;
    v[i] = has_texture[i] ? texture_vertices.data[3 * (slot->t - 1) + 1] : 0.0;
    has_normal[i] = slot != nullptr && slot->n > 0;
    nx[i] = has_normal[i] ? normals.data[3 * (slot->n - 1)] : 0.0;
    ny[i] = has_normal[i] ? normals.data[3 * (slot->n - 1) + 1] : 0.0;
    nz[i] = has_normal[i] ? normals.data[3 * (slot->n - 1) + 2] : 0.0;
  }
  n_surfaces = surfaces;
  for (int i = 0; i < surfaces; i++) std::memcpy(texture_names[i], names[i], 256);
  n_faces = faces_size.n;
  for (int i = 0; i < n_faces; i++) {
    face_surface[i] = faces_surface.data[i];
    face_size[i] = faces_size.data[i];
    face_first[i] = faces_first.data[i];
  }
  // A primary id v is point v - 1; a duplicate -d follows every vertex.
  n_corners = face_corners.n;
  for (int i = 0; i < n_corners; i++) {
    const int id = face_corners.data[i];
    corners[i] = id > 0 ? id - 1 : vertices.n + (-id) - 1;
  }
  return 1;
}

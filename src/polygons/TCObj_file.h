#ifndef TC_OBJ_FILE_H
#define TC_OBJ_FILE_H

#include <cstdio>

// One Wavefront OBJ file read into points and faces, split into surfaces
// by its "usemtl" lines. A mesh vertex met with two texture coordinates or
// two normals becomes two points (Point_list resolves the triples).
//
// After read: points in their final order (the primary points in vertex
// order, then the duplicates), faces in file order, each in its surface.
class TCObj_file {
 public:
  TCObj_file();
  ~TCObj_file();

  // Reads path, printing what the format promises ("Opening file: ",
  // the summary, the warnings); 1, or 0 after the message of the failure.
  int read(const char* path);
  // The same from an open file, which stays open; name is what the
  // messages call it.
  int read_file(std::FILE* file, const char* name);

  // Points, 0-based. has_texture / has_normal say whether the corner
  // triple that made the point named a "vt" / "vn".
  int n_points;
  double* x;
  double* y;
  double* z;
  int* has_texture;
  double* u;
  double* v;
  int* has_normal;
  double* nx;
  double* ny;
  double* nz;

  // Surfaces, one per "usemtl", in order: texture name is the material
  // word plus ".rgb".
  int n_surfaces;
  char (*texture_names)[256];

  // Faces in file order: the surface each belongs to, its corner count and
  // where its corners start in corners[] (0-based point indices).
  int n_faces;
  int* face_surface;
  int* face_size;
  int* face_first;
  int n_corners;
  int* corners;

  // Per command code (1 to 34, as the summary counts them), how many lines;
  // counts[0] the lines of unknown words, then comments and blank lines.
  int counts[37];

  static const int code_unknown = 0;
  static const int code_comment = 35;
  static const int code_blank_line = 36;
  // The code of a line's first word, and the word of a code from 1 to 34.
  static int command_code(const char* word);
  static const char* command_word(int code);

  static const int most_vertices = 50000;  // each of "v", "vt", "vn"
  static const int most_surfaces = 50;
  static const int most_faces_per_surface = 50000;
  static const int most_corners = 350;  // a face must have fewer
  static const int longest_line = 8192;

 private:
  void clear();
  TCObj_file(const TCObj_file&);
  TCObj_file& operator=(const TCObj_file&);
};

#endif

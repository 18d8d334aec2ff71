#ifndef TC_POLY_OBJECT_INPUT_H
#define TC_POLY_OBJECT_INPUT_H

#include <iostream>

#include "box_input.h"

// One surface of a polygon object read from a surface list: a mesh file
// and how it is shaded.
struct Poly_surface_input {
  int surface_file_type;   // 1 "poly", 2 "obj"
  char surface_file[256];  // the mesh
  int shading_model;       // 1 "texture", 4 "color"
  char texture_file[256];  // "null.dat" for a colour
  double surface_color[3];
  double surface_scale[3];
  int image_flag;  // the object's, copied
};

// A change to one surface of an OBJ mesh, made when the object starts.
struct Poly_surface_change {
  int surface;       // index
  int kind;          // 3 "off", 1 "texture", 2 "color"
  double values[3];  // u and v scales, or red, green, blue
};

// The polygon objects file: how a polygon object's shape is imported, from
// a list of ".poly" surfaces or from one OBJ file. Kind word "poly", code
// 19. Every keyword is a label the reader drops; only the order counts.
class TCPoly_object_input : public box_input {
 public:
  TCPoly_object_input();
  ~TCPoly_object_input() override;

  // read_objects_file; write_file writes the same form back.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  int read_objects_file(const char* path);
  // Header to the closing word. A fault the file format calls fatal (a bad
  // image word, surface count, shading word or surface list ending) prints
  // its lines and ends the process with status 1; others print and give 0.
  int read_stream(std::istream& in);
  // read_stream without ending the process: fatal is 1 when the fault is one
  // that read_stream ends the process for. The lines printed are the same.
  int parse_stream(std::istream& in, int& fatal);
  // Always at the newest version, 3; reads back to the same record.
  int write_stream(std::ostream& out) const;

  int scale_flag;
  double scale_x, scale_y, scale_z;
  int image_flag;  // 1 "all", 2 "primary", 3 "secondary" / "reflections"
  int image_level;
  int object_file_type;  // 1 "poly", 2 "obj"

  // Surface list ("poly" type).
  int n_surfaces;
  Poly_surface_input* surfaces;

  // OBJ block ("obj" type).
  char obj_file[256];
  double obj_scale[3];
  double obj_offset[3];
  int modify_surfaces;
  int n_modified;
  Poly_surface_change changes[49];
  int has_order;
  int n_ordered;
  int* order;

  static const int most_surfaces = 50;
  static const int most_changes = 49;

 private:
  // The two bodies that follow the header, each to its closing word.
  int read_surface_list(std::istream& in, int& fatal);
  int read_obj_block(std::istream& in);

  TCPoly_object_input(const TCPoly_object_input&);
  TCPoly_object_input& operator=(const TCPoly_object_input&);
};

#endif

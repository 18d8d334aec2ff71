#include "Wall_details_input.h"

#include "TCData_file.h"

// Packed behind the grid part: position_x, position_y, angle (radians).
namespace {
const int wall_doubles = 3;
}

Wall_details_input::Wall_details_input() : position_x(0.0), position_y(0.0), angle(0.0) {
  field_code = -3;
  has_detail_file = 0;
  copy_text(detail_file, "reflect_wall_spectrum.dat", 256);
}

Wall_details_input::~Wall_details_input() {}

int Wall_details_input::write_grid_block(std::ostream& out) const {
  set_file_precision(out);
  out << "position_x " << position_x << "\n";
  out << "position_y " << position_y << "\n";
  out << "angle " << degrees_for_file(angle) << "\n";
  return write_block_end(out);
}

int Wall_details_input::read_grid_block(std::istream& in) {
  read_position_lines(in, position_x, position_y);
  read_keyed_angle(in, angle);
  return check_block_end(in, "grid input file is invalid, read ");
}

void Wall_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCGrid_details_input::packing_sizes(n_ints, n_doubles, n_chars);
  n_doubles += wall_doubles;
}

int Wall_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                             char*& chars, int& char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!pack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, wall_words, at_int,
                      at_double, at_char)) {
    return 0;
  }
  double* d = doubles + at_double;
  d[0] = position_x;
  d[1] = position_y;
  d[2] = angle;
  return 1;
}

int Wall_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                               int double_bytes, const char* chars, int char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!unpack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, wall_words,
                        at_int, at_double, at_char)) {
    return 0;
  }
  const double* d = doubles + at_double;
  position_x = d[0];
  position_y = d[1];
  angle = d[2];
  return 1;
}

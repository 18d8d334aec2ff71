#include "Deformation_details_input.h"

#include "TCData_file.h"

// Packed behind the grid part: initial_height, final_height,
// evolution_time, width.
namespace {
const int deformation_doubles = 4;
}

Deformation_details_input::Deformation_details_input()
    : initial_height(0.0), final_height(0.0), evolution_time(0.0), width(0.0) {
  field_code = -2;
  has_detail_file = 1;
  periodic_x = 0;
  periodic_y = 0;
  copy_text(detail_file, "deform_spectrum.dat ", 256);
}

Deformation_details_input::~Deformation_details_input() {}

int Deformation_details_input::write_grid_block(std::ostream& out) const {
  write_lattice_lines(out);
  write_spectrum_lines(out, 0);
  out << "deformation_file: " << detail_file << "\n";
  return write_block_end(out);
}

int Deformation_details_input::read_grid_block(std::istream& in) {
  read_lattice_lines(in);
  read_spectrum_lines(in, 0);
  read_keyed_word(in, detail_file, 256);
  return check_block_end(in, "deformation input file is invalid, read ");
}

int Deformation_details_input::write_detail_file(std::ostream& out) const {
  set_file_precision(out);
  out << "initial_height: " << initial_height << "\n";
  out << "final_height:     " << final_height << "\n";
  out << "evolution_time:   " << evolution_time << "\n";
  out << "width:        " << width << "\n";
  return out ? 1 : 0;
}

int Deformation_details_input::read_detail_file(std::istream& in) {
  read_keyed_double(in, initial_height);
  read_keyed_double(in, final_height);
  read_keyed_double(in, evolution_time);
  read_keyed_double(in, width);
  if (in) return 1;
  std::cout << "unable to process deformation detail stream "
            << "\n";
  return 0;
}

void Deformation_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCGrid_details_input::packing_sizes(n_ints, n_doubles, n_chars);
  n_doubles += deformation_doubles;
}

int Deformation_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                                    char*& chars, int& char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!pack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, ripple_words,
                      at_int, at_double, at_char)) {
    return 0;
  }
  double* d = doubles + at_double;
  d[0] = initial_height;
  d[1] = final_height;
  d[2] = evolution_time;
  d[3] = width;
  return 1;
}

int Deformation_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                                      int double_bytes, const char* chars, int char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!unpack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, ripple_words,
                        at_int, at_double, at_char)) {
    return 0;
  }
  const double* d = doubles + at_double;
  initial_height = d[0];
  final_height = d[1];
  evolution_time = d[2];
  width = d[3];
  return 1;
}

#include "Swell_details_input.h"

#include "TCData_file.h"

// Packed behind the grid part: swell_height, swell_wavelength, long_spread,
// trans_spread, direction (radians).
namespace {
const int swell_doubles = 5;
}

Swell_details_input::Swell_details_input()
    : swell_height(0.0),
      swell_wavelength(0.0),
      long_spread(0.0),
      trans_spread(0.0),
      direction(0.0) {
  field_code = -5;
  has_detail_file = 1;
  copy_text(detail_file, "swell_spectrum.dat ", 256);
}

Swell_details_input::~Swell_details_input() {}

int Swell_details_input::write_grid_block(std::ostream& out) const {
  write_lattice_lines(out);
  write_spectrum_lines(out, 0);
  out << "swell_file: " << detail_file << "\n";
  return write_block_end(out);
}

int Swell_details_input::read_grid_block(std::istream& in) {
  read_lattice_lines(in);
  read_spectrum_lines(in, 0);
  read_keyed_word(in, detail_file, 256);
  return check_block_end(in, "grid input file is invalid, read ");
}

int Swell_details_input::write_detail_file(std::ostream& out) const {
  set_file_precision(out);
  out << "swell_height: " << swell_height << "\n";
  out << "swell_wavelenth: " << swell_wavelength << "\n";
  out << "long_spread: " << long_spread << "\n";
  out << "trans_spread: " << trans_spread << "\n";
  out << "direction: " << degrees_for_file(direction) << "\n";
  out << "random_seed: " << random_seed << "\n";
  return write_block_end(out);
}

int Swell_details_input::read_detail_file(std::istream& in) {
  read_keyed_double(in, swell_height);
  read_keyed_double(in, swell_wavelength);
  read_keyed_double(in, long_spread);
  read_keyed_double(in, trans_spread);
  read_keyed_angle(in, direction);
  read_keyed_int(in, random_seed);
  return check_end_after_fields(in, "unable to process swell detail stream ");
}

void Swell_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCGrid_details_input::packing_sizes(n_ints, n_doubles, n_chars);
  n_doubles += swell_doubles;
}

int Swell_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                              char*& chars, int& char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!pack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, swell_words,
                      at_int, at_double, at_char)) {
    return 0;
  }
  double* d = doubles + at_double;
  d[0] = swell_height;
  d[1] = swell_wavelength;
  d[2] = long_spread;
  d[3] = trans_spread;
  d[4] = direction;
  return 1;
}

int Swell_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                                int double_bytes, const char* chars, int char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!unpack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, swell_words,
                        at_int, at_double, at_char)) {
    return 0;
  }
  const double* d = doubles + at_double;
  swell_height = d[0];
  swell_wavelength = d[1];
  long_spread = d[2];
  trans_spread = d[3];
  direction = d[4];
  return 1;
}

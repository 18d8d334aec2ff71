#include "Ripple_details_input.h"

#include <string>

#include "TCData_file.h"

// Packed behind the grid part: n_r; position_x, position_y,
// ripple_start_time, radius, velocity, dr.
namespace {
const int ripple_ints = 1;
const int ripple_doubles = 6;
const int ripple_file_version = 1;
}  // namespace

Ripple_details_input::Ripple_details_input()
    : position_x(0.0),
      position_y(0.0),
      ripple_start_time(0.0),
      radius(0.0),
      velocity(0.0),
      n_r(0),
      dr(0.0) {
  field_code = -4;
  has_detail_file = 1;
  copy_text(detail_file, "ripple_spectrum.dat ", 256);
}

Ripple_details_input::~Ripple_details_input() {}

int Ripple_details_input::write_grid_block(std::ostream& out) const {
  write_lattice_lines(out);
  write_spectrum_lines(out, 0);
  out << "ripple_file: " << detail_file << "\n";
  write_position_lines(out, position_x, position_y);
  return write_block_end(out);
}

int Ripple_details_input::read_grid_block(std::istream& in) {
  read_lattice_lines(in);
  read_spectrum_lines(in, 0);
  read_keyed_word(in, detail_file, 256);
  read_position_lines(in, position_x, position_y);
  return check_block_end(in, "grid input file is invalid, read ");
}

int Ripple_details_input::write_detail_file(std::ostream& out) const {
  set_file_precision(out);
  out << "Tidecast_data_file  ripple  " << ripple_file_version << " " << ripple_file_version << " "
      << "\n";
  out << "start_time: " << ripple_start_time << "\n";
  out << "radius:     " << radius << "\n";
  out << "velocity:   " << velocity << "\n";
  out << "n_r:        " << n_r << "\n";
  out << "dr:         " << dr << "\n";
  return out ? 1 : 0;
}

int Ripple_details_input::read_detail_file(std::istream& in) {
  // The header is optional: the first word is either its magic or the
  // first keyword, which is dropped unread like any other.
  std::string first;
  in >> first;
  if (first == "Tidecast_data_file" || first == "Beavis_rules_the") {
    std::string type;
    in >> type;
    if (type != "ripple") {
      std::cout << "file type " << type << " is not of "
                << "\n"
                << "expected type ripple"
                << "\n";
      return 0;
    }
    int file_version = 0, oldest_reader = 0;
    read_int(in, file_version);
    read_int(in, oldest_reader);
    if (oldest_reader > ripple_file_version) return 0;
    skip_token(in);
  }
  read_double(in, ripple_start_time);
  read_keyed_double(in, radius);
  read_keyed_double(in, velocity);
  read_keyed_int(in, n_r);
  read_keyed_double(in, dr);
  if (in) return 1;
  std::cout << "unable to process ripple detail stream "
            << "\n";
  return 0;
}

void Ripple_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCGrid_details_input::packing_sizes(n_ints, n_doubles, n_chars);
  n_ints += ripple_ints;
  n_doubles += ripple_doubles;
}

int Ripple_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                               char*& chars, int& char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!pack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, ripple_words,
                      at_int, at_double, at_char)) {
    return 0;
  }
  ints[at_int] = n_r;
  double* d = doubles + at_double;
  d[0] = position_x;
  d[1] = position_y;
  d[2] = ripple_start_time;
  d[3] = radius;
  d[4] = velocity;
  d[5] = dr;
  return 1;
}

int Ripple_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                                 int double_bytes, const char* chars, int char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!unpack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, ripple_words,
                        at_int, at_double, at_char)) {
    return 0;
  }
  n_r = ints[at_int];
  const double* d = doubles + at_double;
  position_x = d[0];
  position_y = d[1];
  ripple_start_time = d[2];
  radius = d[3];
  velocity = d[4];
  dr = d[5];
  return 1;
}

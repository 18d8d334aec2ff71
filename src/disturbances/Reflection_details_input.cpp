#include "Reflection_details_input.h"

#include "TCData_file.h"

// Packed behind the grid part.
// ints: n_theta, n_k_radial, algorithm_method, matching_method_flag,
//       bessel_table_flag, table_size
// doubles: radius, k_min_radial, dr_radial, stretching_factor_x,
//          stretching_factor_y, table_increment
namespace {
const int reflection_ints = 6;
const int reflection_doubles = 6;
}  // namespace

Reflection_details_input::Reflection_details_input()
    : radius(0.0),
      n_theta(0),
      n_k_radial(0),
      k_min_radial(0.0),
      dr_radial(0.0),
      stretching_factor_x(1.0),
      stretching_factor_y(1.0),
      algorithm_method(0),
      matching_method_flag(0),
      bessel_table_flag(0),
      table_size(0),
      table_increment(0.0) {
  field_code = -1;
  has_detail_file = 1;
  periodic_x = 0;
  periodic_y = 0;
  copy_text(detail_file, "reflection_spectrum.dat ", 256);
}

Reflection_details_input::~Reflection_details_input() {}

int Reflection_details_input::write_grid_block(std::ostream& out) const {
  write_lattice_lines(out);
  write_spectrum_lines(out, 0);
  out << "reflection_file: " << detail_file << "\n";
  return write_block_end(out);
}

int Reflection_details_input::read_grid_block(std::istream& in) {
  read_lattice_lines(in);
  read_spectrum_lines(in, 0);
  read_keyed_word(in, detail_file, 256);
  return check_block_end(in, "grid input file is invalid, read ");
}

int Reflection_details_input::write_detail_file(std::ostream& out) const {
  set_file_precision(out);
  out << "radius: " << radius << "\n";
  out << "n_theta: " << n_theta << "\n";
  out << "n_k_radial: " << n_k_radial << "\n";
  out << "k_min_radial: " << k_min_radial << "\n";
  out << "dr_radial: " << dr_radial << "\n";
  out << "stretching_factor_x: " << stretching_factor_x << "\n";
  out << "stretching_factor_y: " << stretching_factor_y << "\n";
  out << "algorithm_method:     " << algorithm_method << "\n";
  out << "matching_method_flag: " << matching_method_flag << "\n";
  out << "bessel_table_flag:    " << bessel_table_flag << "\n";
  if (bessel_table_flag) {
    out << "table_size: " << table_size << "\n";
    out << "table_increment: " << table_increment << "\n";
  }
  return write_block_end(out);
}

int Reflection_details_input::read_detail_file(std::istream& in) {
  read_keyed_double(in, radius);
  read_keyed_int(in, n_theta);
  read_keyed_int(in, n_k_radial);
  read_keyed_double(in, k_min_radial);
  read_keyed_double(in, dr_radial);
  read_keyed_double(in, stretching_factor_x);
  read_keyed_double(in, stretching_factor_y);
  read_keyed_int(in, algorithm_method);
  read_keyed_int(in, matching_method_flag);
  read_keyed_int(in, bessel_table_flag);
  if (bessel_table_flag && in) {
    read_keyed_int(in, table_size);
    read_keyed_double(in, table_increment);
  }
  return check_end_after_fields(in, "unable to process reflection detail stream ");
}

void Reflection_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCGrid_details_input::packing_sizes(n_ints, n_doubles, n_chars);
  n_ints += reflection_ints;
  n_doubles += reflection_doubles;
}

int Reflection_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                                   char*& chars, int& char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!pack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, swell_words,
                      at_int, at_double, at_char)) {
    return 0;
  }
  int* p = ints + at_int;
  p[0] = n_theta;
  p[1] = n_k_radial;
  p[2] = algorithm_method;
  p[3] = matching_method_flag;
  p[4] = bessel_table_flag;
  p[5] = table_size;
  double* d = doubles + at_double;
  d[0] = radius;
  d[1] = k_min_radial;
  d[2] = dr_radial;
  d[3] = stretching_factor_x;
  d[4] = stretching_factor_y;
  d[5] = table_increment;
  return 1;
}

int Reflection_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                                     int double_bytes, const char* chars, int char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  if (!unpack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, swell_words,
                        at_int, at_double, at_char)) {
    return 0;
  }
  const int* p = ints + at_int;
  n_theta = p[0];
  n_k_radial = p[1];
  algorithm_method = p[2];
  matching_method_flag = p[3];
  bessel_table_flag = p[4];
  table_size = p[5];
  const double* d = doubles + at_double;
  radius = d[0];
  k_min_radial = d[1];
  dr_radial = d[2];
  stretching_factor_x = d[3];
  stretching_factor_y = d[4];
  table_increment = d[5];
  return 1;
}

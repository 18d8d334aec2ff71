#include "TCGrid_details_input.h"

#include <cstring>
#include <fstream>
#include <string>

#include "TCData_file.h"

// Several kinds print another kind's words on purpose; the tables keep them
// as they have always been printed, the swell's odd stream line included.
const TCGrid_details_input::Packing_words TCGrid_details_input::grid_words = {
    "unable to allocate grid integer packing array ",
    "unable to allocate grid double packing array ",
    "unable to allocate grid char packing array",
    "unable to open stream to packing char array ",
    "unable to pack object part of grid ",
    "unable to unpack object part of grid ",
    "grid packing integer array of the wrong size ",
    "grid packing double array of the wrong size ",
    "grid char packing array of the wrong size "};

const TCGrid_details_input::Packing_words TCGrid_details_input::swell_words = {
    "unable to allocate swell integer packing array ",
    "unable to allocate swell double packing array ",
    "unable to allocate swell char packing array",
    "unable to swell stream to packing char array ",
    "unable to pack object part of swell ",
    "unable to unpack object part of swell ",
    "swell packing integer array of the wrong size ",
    "swell packing double array of the wrong size ",
    "swell char packing array of the wrong size "};

const TCGrid_details_input::Packing_words TCGrid_details_input::ripple_words = {
    "unable to allocate ripple integer packing array ",
    "unable to allocate ripple double packing array ",
    "unable to allocate ripple char packing array",
    "unable to open stream to packing char array ",
    "unable to pack object part of ripple ",
    "unable to unpack object part of ripple ",
    "ripple packing integer array of the wrong size ",
    "ripple packing double array of the wrong size ",
    "ripple char packing array of the wrong size "};

const TCGrid_details_input::Packing_words TCGrid_details_input::wake_words = {
    "unable to allocate wake integer packing array ",
    "unable to allocate wake double packing array ",
    "unable to allocate wake char packing array",
    "unable to open stream to packing char array ",
    "unable to pack object part of wake ",
    "unable to unpack object part of wake ",
    "wake packing integer array of the wrong size ",
    "wake packing double array of the wrong size ",
    "wake char packing array of the wrong size "};

const TCGrid_details_input::Packing_words TCGrid_details_input::wall_words = {
    "unable to allocate wall integer packing array ",
    "unable to allocate wall double packing array ",
    "unable to allocate wall char packing array",
    "unable to open stream to packing char array ",
    "unable to pack object part of wall ",
    "unable to unpack object part of wall ",
    "wall packing integer array of the wrong size ",
    "wall packing double array of the wrong size ",
    "wall char packing array of the wrong size "};

const TCGrid_details_input::Packing_words TCGrid_details_input::boat_words = {
    "unable to allocate boat integer packing array ",
    "unable to allocate boat double packing array ",
    "unable to allocate boat char packing array",
    "unable to open stream to packing char array ",
    "unable to pack object part of boat ",
    "unable to unpack object part of boat ",
    "boat packing integer array of the wrong size ",
    "boat packing double array of the wrong size ",
    "boat char packing array of the wrong size "};

TCGrid_details_input::TCGrid_details_input()
    : field_code(1),
      has_detail_file(0),
      periodic_x(1),
      periodic_y(1),
      n_x(0),
      n_y(0),
      dx(0.0),
      dy(0.0),
      random_seed(1),
      generate_file(1),
      parent_ocean(nullptr),
      carries_periodicity(0) {
  copy_text(detail_file, "ocean_grid_details.dat", 256);
  // The trailing blank is the name as it has always been given.
  copy_text(spectrum_file, "ocean_spectrum.dat ", 256);
}

TCGrid_details_input::~TCGrid_details_input() {}

int TCGrid_details_input::read_file(const char* path) {
  if (!has_detail_file) return 1;
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open grid file ")) return 0;
  if (read_detail_file(in)) return 1;
  return report_file_failure("unable to process grid file ", path);
}

int TCGrid_details_input::write_file(const char* path) {
  if (!has_detail_file) return 1;
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open grid output file ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write_detail_file(out) && out.flush()) return 1;
  return report_file_failure("unable to process grid output file ", path);
}

int TCGrid_details_input::read_lattice_lines(std::istream& in) {
  read_keyed_int(in, n_x);
  if (carries_periodicity) read_int(in, periodic_x);
  read_keyed_int(in, n_y);
  if (carries_periodicity) read_int(in, periodic_y);
  read_keyed_double(in, dx);
  read_keyed_double(in, dy);
  return in ? 1 : 0;
}

void TCGrid_details_input::write_lattice_lines(std::ostream& out) const {
  set_file_precision(out);
  out << "n_points_x " << n_x;
  if (carries_periodicity) out << " " << periodic_x;
  out << "\n";
  out << "n_points_y " << n_y;
  if (carries_periodicity) out << " " << periodic_y;
  out << "\n";
  out << "dx " << dx << "\n";
  out << "dy " << dy << "\n";
}

int TCGrid_details_input::read_spectrum_lines(std::istream& in, int with_seed) {
  read_keyed_word(in, spectrum_file, 256);
  char word[256];
  if (read_keyed_word(in, word, 256)) generate_file = parse_yes_no(word);
  if (with_seed && generate_file && in) read_keyed_int(in, random_seed);
  return in ? 1 : 0;
}

void TCGrid_details_input::write_spectrum_lines(std::ostream& out, int with_seed) const {
  out << "spectrum_file: " << spectrum_file << "\n";
  if (!with_seed) {
    out << "generate_file: " << yes_no_text(generate_file) << "\n";
  } else if (generate_file) {
    out << "generate_file:  yes "
        << "\n";
    out << "random_seed " << random_seed << "\n";
  } else {
    out << "generate_file:  no "
        << "\n";
  }
}

int TCGrid_details_input::read_position_lines(std::istream& in, double& position_x,
                                              double& position_y) {
  read_keyed_double(in, position_x);
  read_keyed_double(in, position_y);
  return in ? 1 : 0;
}

void TCGrid_details_input::write_position_lines(std::ostream& out, double position_x,
                                                double position_y) {
  out << "position_x: " << position_x << "\n";
  out << "position_y: " << position_y << "\n";
}

int TCGrid_details_input::read_course_lines(std::istream& in, double& direction, double& velocity) {
  read_keyed_angle(in, direction);
  read_keyed_double(in, velocity);
  return in ? 1 : 0;
}

void TCGrid_details_input::write_course_lines(std::ostream& out, double direction,
                                              double velocity) {
  out << "direction:  " << degrees_for_file(direction) << "\n";
  out << "velocity:   " << velocity << "\n";
}

int TCGrid_details_input::write_block_end(std::ostream& out) {
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

int TCGrid_details_input::check_block_end(std::istream& in, const char* opening) {
  std::string word;
  if (read_end_word(in, word)) return 1;
  std::cout << opening << word << " instead of end"
            << "\n";
  return 0;
}

int TCGrid_details_input::write_grid_block(std::ostream& out) const {
  write_lattice_lines(out);
  write_spectrum_lines(out, 1);
  return write_block_end(out);
}

int TCGrid_details_input::read_grid_block(std::istream& in) {
  read_lattice_lines(in);
  read_spectrum_lines(in, 1);
  return check_block_end(in, "grid input file is invalid, read ");
}

int TCGrid_details_input::write_detail_file(std::ostream& out) const {
  return out ? 1 : 0;
}

int TCGrid_details_input::read_detail_file(std::istream&) {
  return 1;
}

void TCGrid_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
  n_ints += grid_part_ints;
  n_doubles += grid_part_doubles;
  n_chars += grid_part_chars;
}

void TCGrid_details_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                                 const char* chars) {
  TCObject_input::set_sizes_from_packed(ints, doubles, chars);
}

int TCGrid_details_input::packed_sizes_fit(int int_bytes, int double_bytes, int char_bytes,
                                           const Packing_words& words) const {
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  const char* wrong = nullptr;
  if (n_ints < 0 || int_bytes != n_ints * static_cast<int>(sizeof(int))) {
    wrong = words.wrong_ints;
  } else if (n_doubles < 0 || double_bytes != n_doubles * static_cast<int>(sizeof(double))) {
    wrong = words.wrong_doubles;
  } else if (n_chars < 0 || char_bytes != n_chars) {
    wrong = words.wrong_chars;
  }
  if (wrong == nullptr) return 1;
  std::cout << wrong << "\n";
  return 0;
}

int TCGrid_details_input::pack_grid_part(int*& ints, int& int_bytes, double*& doubles,
                                         int& double_bytes, char*& chars, int& char_bytes,
                                         const Packing_words& words, int& at_int, int& at_double,
                                         int& at_char) {
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      words.allocate_chars, words.allocate_ints, words.allocate_doubles,
                      words.pack_object_part, base_ints, base_doubles, base_chars)) {
    return 0;
  }
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (base_chars + grid_part_chars > n_chars) {
    std::cout << words.open_stream << "\n";
    return 0;
  }
  int* p = ints + base_ints;
  p[0] = field_code;
  p[1] = has_detail_file;
  p[2] = periodic_x;
  p[3] = periodic_y;
  p[4] = n_x;
  p[5] = n_y;
  p[6] = random_seed;
  p[7] = generate_file;
  doubles[base_doubles] = dx;
  doubles[base_doubles + 1] = dy;
  copy_text(chars + base_chars, detail_file, text_block);
  copy_text(chars + base_chars + text_block, spectrum_file, text_block);
  at_int = base_ints + grid_part_ints;
  at_double = base_doubles + grid_part_doubles;
  at_char = base_chars + grid_part_chars;
  return 1;
}

int TCGrid_details_input::unpack_grid_part(const int* ints, int int_bytes, const double* doubles,
                                           int double_bytes, const char* chars, int char_bytes,
                                           const Packing_words& words, int& at_int, int& at_double,
                                           int& at_char) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  if (!packed_sizes_fit(int_bytes, double_bytes, char_bytes, words)) return 0;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << words.unpack_object_part << "\n";
    return 0;
  }
  const int* p = ints + base_ints;
  field_code = p[0];
  has_detail_file = p[1];
  periodic_x = p[2];
  periodic_y = p[3];
  n_x = p[4];
  n_y = p[5];
  random_seed = p[6];
  generate_file = p[7];
  dx = doubles[base_doubles];
  dy = doubles[base_doubles + 1];
  text_from_block(detail_file, chars + base_chars);
  text_from_block(spectrum_file, chars + base_chars + text_block);
  at_int = base_ints + grid_part_ints;
  at_double = base_doubles + grid_part_doubles;
  at_char = base_chars + grid_part_chars;
  return 1;
}

int TCGrid_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                               char*& chars, int& char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  return pack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, grid_words,
                        at_int, at_double, at_char);
}

int TCGrid_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                                 int double_bytes, const char* chars, int char_bytes) {
  int at_int = 0, at_double = 0, at_char = 0;
  return unpack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, grid_words,
                          at_int, at_double, at_char);
}

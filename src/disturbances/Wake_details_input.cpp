#include "Wake_details_input.h"

#include <cstring>

#include "TCData_file.h"

// Packed layout, whole record (the grid part is not packed: the field needs
// only these):
// ints     periodic_x, periodic_y, n_x, n_y, generate_file, generate_wake,
//          boat_shape
// doubles  dx, dy, position_x, position_y, direction (radians), velocity,
//          boat_length, boat_width, boat_depth, damping_eps, damping_us
// chars    the root's name, wake_file, hull_file, 256 each
namespace {

const int wake_ints = 7;
const int wake_doubles = 11;
const int wake_chars = 512;
const int wake_file_version = 1;

const int shape_file = 0;
const int shape_rectangle = 1;
const int shape_ellipse = 2;

}  // namespace

Wake_details_input::Wake_details_input()
    : position_x(0.0),
      position_y(0.0),
      direction(0.0),
      velocity(0.0),
      generate_wake(0),
      boat_shape(shape_rectangle),
      boat_length(0.0),
      boat_width(0.0),
      boat_depth(0.0),
      damping_eps(0.0),
      damping_us(0.0) {
  field_code = -6;
  has_detail_file = 1;
  periodic_x = 0;
  periodic_y = 0;
  copy_text(detail_file, "boat_hull_file.dat", 256);
  copy_text(wake_file, "wake_grid.dat ", 256);
  hull_file[0] = '\0';
}

Wake_details_input::~Wake_details_input() {}

int Wake_details_input::write_grid_block(std::ostream& out) const {
  write_lattice_lines(out);
  write_spectrum_lines(out, 0);
  out << "wake_file: " << detail_file << "\n";
  write_position_lines(out, position_x, position_y);
  write_course_lines(out, direction, velocity);
  return write_block_end(out);
}

int Wake_details_input::read_grid_block(std::istream& in) {
  read_lattice_lines(in);
  read_spectrum_lines(in, 0);
  read_keyed_word(in, detail_file, 256);
  read_position_lines(in, position_x, position_y);
  read_course_lines(in, direction, velocity);
  return check_block_end(in, "grid input file is invalid, read ");
}

int Wake_details_input::write_detail_file(std::ostream& out) const {
  const char* shape_line = nullptr;
  if (boat_shape == shape_rectangle) {
    shape_line = "boat_shape:   rectangle ";
  } else if (boat_shape == shape_ellipse) {
    shape_line = "boat_shape:  ellipse ";
  } else if (boat_shape == shape_file) {
    shape_line = "boat_shape:  file ";
  }
  if (generate_wake && shape_line == nullptr) {
    std::cout << "unable to generate output for boat shape in wake "
              << "\n";
    return 0;
  }
  set_file_precision(out);
  write_header(out, "wake", wake_file_version);
  out << (generate_wake ? "generate_wake:  yes " : "generate_wake:  no ") << "\n";
  out << "wake_file_name:  " << wake_file << "\n";
  if (generate_wake) {
    out << shape_line << "\n";
    if (boat_shape == shape_file) {
      out << "file:  " << hull_file << "\n";
    }
  }
  if (!generate_wake || boat_shape != shape_file) {
    out << "boat_length: " << boat_length << "\n";
    out << "boat_width:  " << boat_width << "\n";
    out << "boat_depth:  " << boat_depth << "\n";
  }
  if (generate_wake) {
    out << "damping_eps:  " << damping_eps << "\n";
    out << "damping_us:  " << damping_us << "\n";
  }
  return write_block_end(out);
}

int Wake_details_input::read_detail_file(std::istream& in) {
  if (check_header(in, "wake", wake_file_version) == 0) {
    std::cout << "file not of wake data type "
              << "\n";
    return 0;
  }
  char word[256];
  if (read_keyed_word(in, word, 256)) generate_wake = parse_yes_no(word);
  read_keyed_word(in, wake_file, 256);
  int with_sizes = 1;
  if (generate_wake && in) {
    if (read_keyed_word(in, word, 256)) {
      // Any word but the two shapes means the hull comes from a file.
      if (std::strcmp(word, "rectangle") == 0) {
        boat_shape = shape_rectangle;
      } else if (std::strcmp(word, "ellipse") == 0) {
        boat_shape = shape_ellipse;
      } else {
        boat_shape = shape_file;
      }
    }
    if (boat_shape == shape_file) {
      with_sizes = 0;
      read_keyed_word(in, hull_file, 256);
    }
  }
  if (with_sizes) {
    read_keyed_double(in, boat_length);
    read_keyed_double(in, boat_width);
    read_keyed_double(in, boat_depth);
  }
  if (generate_wake) {
    read_keyed_double(in, damping_eps);
    read_keyed_double(in, damping_us);
  }
  return check_end_after_fields(in, "unable to process wake stream ");
}

void Wake_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
  n_ints += wake_ints;
  n_doubles += wake_doubles;
  n_chars += wake_chars;
}

int Wake_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                             char*& chars, int& char_bytes) {
  const Packing_words& words = wake_words;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      words.allocate_chars, words.allocate_ints, words.allocate_doubles,
                      words.pack_object_part, base_ints, base_doubles, base_chars)) {
    return 0;
  }
  if (base_chars + wake_chars > char_bytes) {
    std::cout << words.open_stream << "\n";
    return 0;
  }
  int* p = ints + base_ints;
  p[0] = periodic_x;
  p[1] = periodic_y;
  p[2] = n_x;
  p[3] = n_y;
  p[4] = generate_file;
  p[5] = generate_wake;
  p[6] = boat_shape;
  double* d = doubles + base_doubles;
  d[0] = dx;
  d[1] = dy;
  d[2] = position_x;
  d[3] = position_y;
  d[4] = direction;
  d[5] = velocity;
  d[6] = boat_length;
  d[7] = boat_width;
  d[8] = boat_depth;
  d[9] = damping_eps;
  d[10] = damping_us;
  copy_text(chars + base_chars, wake_file, text_block);
  copy_text(chars + base_chars + text_block, hull_file, text_block);
  return 1;
}

int Wake_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                               int double_bytes, const char* chars, int char_bytes) {
  const Packing_words& words = wake_words;
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  if (!packed_sizes_fit(int_bytes, double_bytes, char_bytes, words)) return 0;
  if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << words.unpack_object_part << "\n";
    return 0;
  }
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  const int* p = ints + base_ints;
  periodic_x = p[0];
  periodic_y = p[1];
  n_x = p[2];
  n_y = p[3];
  generate_file = p[4];
  generate_wake = p[5];
  boat_shape = p[6];
  const double* d = doubles + base_doubles;
  dx = d[0];
  dy = d[1];
  position_x = d[2];
  position_y = d[3];
  direction = d[4];
  velocity = d[5];
  boat_length = d[6];
  boat_width = d[7];
  boat_depth = d[8];
  damping_eps = d[9];
  damping_us = d[10];
  text_from_block(wake_file, chars + base_chars);
  text_from_block(hull_file, chars + base_chars + text_block);
  return 1;
}

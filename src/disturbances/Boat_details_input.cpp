#include "Boat_details_input.h"

#include <cstring>
#include <new>

#include "TCData_file.h"
#include "TCValue_lists.h"

// The detail file's branches after "wake_type:":
//   kelvin:  use_initial_wake:, wake_file_name:, eps0:, us:,
//            slope_threshold:, couple_to_ocean_waves:, and after "yes" the
//            dynamic lines below without the enhancements.
//   dynamic: use_initial_wake:, wake_file_name:, reference_time:,
//            initialization_interval:, time_increment:,
//            acceleration_threshold:, and from version 2
//            fore_wake_enhancement:, aft_wake_enhancement:;
//            then couple_to_ocean_waves:.
//   none, full: couple_to_ocean_waves: alone.
//
// Packed behind the grid part:
// ints     number_of_hull_points, hull_type, wake_type, kelvin_initial,
//          dynamic_initial, couple_to_ocean_waves
// doubles  position_x, position_y, direction (radians), velocity,
//          hull_depth, hull_dx, hull_dy, eps0, us, slope_threshold,
//          reference_time, initialization_interval, time_increment,
//          acceleration_threshold, fore_enhancement, aft_enhancement, then
//          the hull's x values, then its y values
// chars    hull_file, kelvin_file, dynamic_file, 256 each
namespace {

const int boat_ints = 6;
const int boat_doubles = 16;
const int boat_chars = 768;
const int boat_file_version = 2;

const char* const location_allocation = "unable to allocate location array in Boat Grid input ";

void boat_sizes(int n_points, long long& n_ints, long long& n_doubles, long long& n_chars) {
  n_ints = boat_ints;
  n_doubles = boat_doubles + 2 * static_cast<long long>(n_points);
  n_chars = boat_chars;
}

double* new_locations(int count) {
  return new (std::nothrow) double[count > 0 ? count : 1]();
}

const char* hull_word(int code) {
  if (code == Boat_details_input::hull_constant) return "constant";
  if (code == Boat_details_input::hull_from_file) return "file";
  if (code == Boat_details_input::hull_custom_type_one) return "custom_type_one";
  return nullptr;
}

const char* wake_word(int code) {
  if (code == Boat_details_input::wake_none) return "none";
  if (code == Boat_details_input::wake_kelvin) return "kelvin";
  if (code == Boat_details_input::wake_dynamic) return "dynamic";
  if (code == Boat_details_input::wake_full) return "full";
  return nullptr;
}

// "none", "no" and any word not in the table mean no wake.
int wake_code(const char* word) {
  if (std::strcmp(word, "kelvin") == 0) return Boat_details_input::wake_kelvin;
  if (std::strcmp(word, "dynamic") == 0) return Boat_details_input::wake_dynamic;
  if (std::strcmp(word, "full") == 0) return Boat_details_input::wake_full;
  return Boat_details_input::wake_none;
}

const char* initial_word(int code) {
  if (code == Boat_details_input::initial_no) return "no";
  if (code == Boat_details_input::initial_yes) return "yes";
  if (code == Boat_details_input::initial_yes_input_height_frames) {
    return "yes_input_height_frames";
  }
  if (code == Boat_details_input::initial_no_output_height_frames) {
    return "no_output_height_frames";
  }
  if (code == Boat_details_input::initial_yes_output_height_frames) {
    return "yes_output_height_frames";
  }
  return nullptr;
}

// "no" and any word not in the table: 0.
int initial_code(const char* word) {
  if (std::strcmp(word, "yes") == 0) return Boat_details_input::initial_yes;
  if (std::strcmp(word, "yes_input_height_frames") == 0) {
    return Boat_details_input::initial_yes_input_height_frames;
  }
  if (std::strcmp(word, "no_output_height_frames") == 0) {
    return Boat_details_input::initial_no_output_height_frames;
  }
  if (std::strcmp(word, "yes_output_height_frames") == 0) {
    return Boat_details_input::initial_yes_output_height_frames;
  }
  return Boat_details_input::initial_no;
}

int read_initial(std::istream& in, int& code) {
  char word[256];
  if (!read_keyed_word(in, word, 256)) return 0;
  code = initial_code(word);
  return 1;
}

}  // namespace

Boat_details_input::Boat_details_input()
    : position_x(0.0),
      position_y(0.0),
      direction(0.0),
      velocity(0.0),
      number_of_hull_points(0),
      hull_x(nullptr),
      hull_y(nullptr),
      hull_type(hull_constant),
      hull_depth(0.0),
      hull_dx(0.0),
      hull_dy(0.0),
      wake_type(wake_none),
      kelvin_initial(initial_no),
      eps0(0.0),
      us(0.0),
      slope_threshold(0.0),
      dynamic_initial(initial_no),
      reference_time(0.0),
      initialization_interval(0.0),
      time_increment(0.0),
      acceleration_threshold(0.0),
      fore_enhancement(1.0),
      aft_enhancement(1.0),
      couple_to_ocean_waves(0),
      has_received_counts_(0),
      received_points_(0) {
  field_code = -9;
  has_detail_file = 1;
  periodic_x = 0;
  periodic_y = 0;
  copy_text(detail_file, "boat_grid.dat ", 256);
  copy_text(hull_file, "boat_wake_height.hdf", 256);
  copy_text(kelvin_file, "boat_wake.hdf", 256);
  copy_text(dynamic_file, "boat_wake.dat", 256);
  allocate_hull(0);
}

Boat_details_input::~Boat_details_input() {
  release_hull();
}

int Boat_details_input::allocate_hull(int count) {
  double* xs = count >= 0 ? new_locations(count) : nullptr;
  double* ys = xs ? new_locations(count) : nullptr;
  if (ys == nullptr) {
    delete[] xs;
    std::cout << location_allocation << "\n";
    return 0;
  }
  release_hull();
  number_of_hull_points = count;
  hull_x = xs;
  hull_y = ys;
  return 1;
}

void Boat_details_input::release_hull() {
  delete[] hull_x;
  delete[] hull_y;
  hull_x = nullptr;
  hull_y = nullptr;
  number_of_hull_points = 0;
}

int Boat_details_input::write_grid_block(std::ostream& out) const {
  write_lattice_lines(out);
  out << "boat_file: " << detail_file << "\n";
  write_position_lines(out, position_x, position_y);
  write_course_lines(out, direction, velocity);
  return write_block_end(out);
}

int Boat_details_input::read_grid_block(std::istream& in) {
  read_lattice_lines(in);
  read_keyed_word(in, detail_file, 256);
  read_position_lines(in, position_x, position_y);
  read_course_lines(in, direction, velocity);
  return check_block_end(in, "ocean boat input file is invalid, read ");
}

int Boat_details_input::read_hull_points(std::istream& in) {
  int count = 0;
  if (!read_keyed_int(in, count)) return 1;
  if (count < 1) {
    allocate_hull(0);
    return 1;
  }
  double* columns[2] = {nullptr, nullptr};
  int failed_column = -1;
  const int outcome = read_double_rows(in, count, 2, columns, failed_column);
  if (outcome == rows_out_of_memory) {
    std::cout << location_allocation << "\n"
              << "unable to allocate location arrays "
              << "\n";
    return 0;
  }
  // A cut list has failed the stream; the closing word reports it.
  if (outcome != rows_read) return 1;
  double* xs = columns[0];
  double* ys = columns[1];
  release_hull();
  number_of_hull_points = count;
  hull_x = xs;
  hull_y = ys;
  return 1;
}

int Boat_details_input::read_hull_depth(std::istream& in) {
  char word[256] = "";
  read_keyed_word(in, word, 256);
  if (std::strcmp(word, "constant") == 0) {
    hull_type = hull_constant;
    read_keyed_double(in, hull_depth);
  } else if (std::strcmp(word, "file") == 0) {
    hull_type = hull_from_file;
    read_keyed_word(in, hull_file, 256);
    read_keyed_double(in, hull_dx);
    read_keyed_double(in, hull_dy);
    read_keyed_double(in, hull_depth);
  } else if (std::strcmp(word, "custom_type_one") == 0) {
    hull_type = hull_custom_type_one;
    read_keyed_double(in, hull_depth);
  } else {
    std::cout << "illegal boat hull type " << word << "\n";
    return 0;
  }
  return 1;
}

void Boat_details_input::read_dynamic_lines(std::istream& in, int with_enhancements) {
  read_initial(in, dynamic_initial);
  read_keyed_word(in, dynamic_file, 256);
  read_keyed_double(in, reference_time);
  read_keyed_double(in, initialization_interval);
  read_keyed_double(in, time_increment);
  read_keyed_double(in, acceleration_threshold);
  if (with_enhancements) {
    read_keyed_double(in, fore_enhancement);
    read_keyed_double(in, aft_enhancement);
  }
}

int Boat_details_input::read_detail_file(std::istream& in) {
  const int file_version = check_header(in, "boat", boat_file_version);
  if (file_version == 0) {
    std::cout << "file not of ocean boat data type "
              << "\n";
    return 0;
  }
  if (!read_hull_points(in)) return 0;
  if (!check_end_after_fields(in, "unable to process hull part of boat stream ")) return 0;
  if (!read_hull_depth(in)) return 0;
  if (!check_end_after_fields(in, "unable to process hull part of boat stream ")) return 0;

  char word[256] = "";
  if (read_keyed_word(in, word, 256)) wake_type = wake_code(word);
  if (wake_type == wake_kelvin) {
    read_initial(in, kelvin_initial);
    read_keyed_word(in, kelvin_file, 256);
    read_keyed_double(in, eps0);
    read_keyed_double(in, us);
    read_keyed_double(in, slope_threshold);
  } else if (wake_type == wake_dynamic) {
    // Files before version 2 leave both wake ends as computed.
    fore_enhancement = 1.0;
    aft_enhancement = 1.0;
    read_dynamic_lines(in, file_version >= 2);
  }
  if (read_keyed_word(in, word, 256)) couple_to_ocean_waves = parse_yes_no(word);
  if (wake_type == wake_kelvin && couple_to_ocean_waves && in) read_dynamic_lines(in, 0);
  return check_end_after_fields(in, "unable to process wake part of boat stream ");
}

void Boat_details_input::write_dynamic_lines(std::ostream& out, const char* initial,
                                             int with_enhancements) const {
  out << "use_initial_wake:  " << initial << "\n";
  out << "wake_file_name:   " << dynamic_file << "\n";
  out << "reference_time: " << reference_time << "\n";
  out << "initialization_interval: " << initialization_interval << "\n";
  out << "time_increment:  " << time_increment << "\n";
  out << "acceleration_threshold:  " << acceleration_threshold << "\n";
  if (with_enhancements) {
    out << "fore_wake_enhancement:    " << fore_enhancement << "\n";
    out << "aft_wake_enhancement:   " << aft_enhancement << "\n";
  }
}

int Boat_details_input::write_detail_file(std::ostream& out) const {
  const char* hull = hull_word(hull_type);
  if (hull == nullptr) {
    std::cout << "illegal value of boat_hull_flag in Boat Grid parameters "
              << "\n";
    return 0;
  }
  const char* wake = wake_word(wake_type);
  if (wake == nullptr) {
    std::cout << "illegal wake_type_flag in Boat input structure "
              << "\n";
    return 0;
  }
  // The dynamic lines go out for a dynamic wake, and for a Kelvin wake
  // whose coupling line is written "yes", that is, when it is not coupled.
  const int kelvin = wake_type == wake_kelvin;
  const int dynamic_lines = wake_type == wake_dynamic || (kelvin && !couple_to_ocean_waves);
  const char* kelvin_start = initial_word(kelvin_initial);
  const char* dynamic_start = initial_word(dynamic_initial);
  if ((kelvin && kelvin_start == nullptr) || (dynamic_lines && dynamic_start == nullptr)) {
    std::cout << "illegal generation flag in Boat input structure "
              << "\n";
    return 0;
  }

  set_file_precision(out);
  write_header(out, "boat", boat_file_version);
  out << "number_of_hull_points: " << number_of_hull_points << "\n";
  for (int i = 0; i < number_of_hull_points; i++) out << hull_x[i] << " " << hull_y[i] << "\n";
  out << "end "
      << "\n";
  out << "boat_hull_depth:  " << hull << "\n";
  if (hull_type == hull_constant) {
    out << "hull_depth:  " << hull_depth << "\n";
  } else if (hull_type == hull_from_file) {
    out << "hull_file:    " << hull_file << "\n";
    out << "hull_dx:      " << hull_dx << "\n";
    out << "hull_dy:      " << hull_dy << "\n";
    out << "hull_scaling: " << hull_depth << "\n";
  } else {
    out << "hull_scaling: " << hull_depth << "\n";
  }
  out << "end "
      << "\n";
  out << "wake_type:  " << wake << "\n";
  if (kelvin) {
    out << "use_initial_wake:  " << kelvin_start << "\n";
    out << "wake_file_name:   " << kelvin_file << "\n";
    out << "eps0:   " << eps0 << "\n";
    out << "us:     " << us << "\n";
    out << "slope_threshold:  " << slope_threshold << "\n";
    if (couple_to_ocean_waves) {
      out << "couple_to_ocean_waves:   no  "
          << "\n";
    } else {
      out << "couple_to_ocean_waves:   yes "
          << "\n";
      write_dynamic_lines(out, dynamic_start, 0);
    }
  } else {
    if (wake_type == wake_dynamic) write_dynamic_lines(out, dynamic_start, 1);
    out << (couple_to_ocean_waves ? "couple_to_ocean_waves:  yes "
                                  : "couple_to_ocean_waves:   no  ")
        << "\n";
  }
  return write_block_end(out);
}

void Boat_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCGrid_details_input::packing_sizes(n_ints, n_doubles, n_chars);
  const int n_points = has_received_counts_ ? received_points_ : number_of_hull_points;
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  boat_sizes(n_points, own_ints, own_doubles, own_chars);
  // -1 marks a count no array could hold; pack and unpack refuse it.
  const int sound = n_points >= 0;
  n_ints = packed_count(n_ints + own_ints, sound);
  n_doubles = packed_count(n_doubles + own_doubles, sound);
  n_chars = packed_count(n_chars + own_chars, sound);
}

void Boat_details_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                               const char* chars) {
  TCGrid_details_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCGrid_details_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_points_ = ints[base_ints];
  has_received_counts_ = 1;
}

int Boat_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                             char*& chars, int& char_bytes) {
  has_received_counts_ = 0;
  int at_int = 0, at_double = 0, at_char = 0;
  if (!pack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, boat_words, at_int,
                      at_double, at_char)) {
    return 0;
  }
  if (at_char + boat_chars > char_bytes) {
    std::cout << boat_words.open_stream << "\n";
    return 0;
  }
  int* p = ints + at_int;
  p[0] = number_of_hull_points;
  p[1] = hull_type;
  p[2] = wake_type;
  p[3] = kelvin_initial;
  p[4] = dynamic_initial;
  p[5] = couple_to_ocean_waves;
  double* d = doubles + at_double;
  const double fixed[boat_doubles] = {position_x,
                                      position_y,
                                      direction,
                                      velocity,
                                      hull_depth,
                                      hull_dx,
                                      hull_dy,
                                      eps0,
                                      us,
                                      slope_threshold,
                                      reference_time,
                                      initialization_interval,
                                      time_increment,
                                      acceleration_threshold,
                                      fore_enhancement,
                                      aft_enhancement};
  for (int i = 0; i < boat_doubles; i++) *d++ = fixed[i];
  for (int i = 0; i < number_of_hull_points; i++) *d++ = hull_x[i];
  for (int i = 0; i < number_of_hull_points; i++) *d++ = hull_y[i];
  char* c = chars + at_char;
  copy_text(c, hull_file, text_block);
  copy_text(c + text_block, kelvin_file, text_block);
  copy_text(c + 2 * text_block, dynamic_file, text_block);
  return 1;
}

int Boat_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                               int double_bytes, const char* chars, int char_bytes) {
  // A count taken by set_sizes_from_packed serves this one unpack.
  const int result = unpack_boat_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int Boat_details_input::unpack_boat_part(const int* ints, int int_bytes, const double* doubles,
                                         int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  if (!packed_sizes_fit(int_bytes, double_bytes, char_bytes, boat_words)) return 0;
  // The count in the array must be the one the sizes were worked out from.
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCGrid_details_input::packing_sizes(base_ints, base_doubles, base_chars);
  const int n_points = ints[base_ints];
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  boat_sizes(n_points, own_ints, own_doubles, own_chars);
  if (n_points < 0 || base_doubles + own_doubles != n_doubles) {
    std::cout << boat_words.wrong_ints << "\n";
    return 0;
  }

  double* xs = new_locations(n_points);
  double* ys = xs ? new_locations(n_points) : nullptr;
  if (ys == nullptr) {
    delete[] xs;
    std::cout << "unable to allocate location arrays for unpacking Boat data "
              << "\n";
    return 0;
  }
  int at_int = 0, at_double = 0, at_char = 0;
  if (!unpack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, boat_words,
                        at_int, at_double, at_char)) {
    delete[] xs;
    delete[] ys;
    return 0;
  }
  const int* p = ints + at_int;
  hull_type = p[1];
  wake_type = p[2];
  kelvin_initial = p[3];
  dynamic_initial = p[4];
  couple_to_ocean_waves = p[5];
  const double* d = doubles + at_double;
  double* fixed[boat_doubles] = {&position_x,
                                 &position_y,
                                 &direction,
                                 &velocity,
                                 &hull_depth,
                                 &hull_dx,
                                 &hull_dy,
                                 &eps0,
                                 &us,
                                 &slope_threshold,
                                 &reference_time,
                                 &initialization_interval,
                                 &time_increment,
                                 &acceleration_threshold,
                                 &fore_enhancement,
                                 &aft_enhancement};
  for (int i = 0; i < boat_doubles; i++) *fixed[i] = *d++;
  for (int i = 0; i < n_points; i++) xs[i] = *d++;
  for (int i = 0; i < n_points; i++) ys[i] = *d++;
  release_hull();
  number_of_hull_points = n_points;
  hull_x = xs;
  hull_y = ys;
  const char* c = chars + at_char;
  text_from_block(hull_file, c);
  text_from_block(kelvin_file, c + text_block);
  text_from_block(dynamic_file, c + 2 * text_block);
  return 1;
}

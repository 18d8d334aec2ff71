#include "Height_grid_details_input.h"

#include <new>

#include "TCData_file.h"
#include "TCValue_lists.h"

// Packed behind the grid part:
// ints     number_of_key_times
// doubles  position_x, position_y, orientation, velocity, direction
//          (radians), then the key times, then the key scales
// chars    field_file in 256
namespace {

const int height_ints = 1;
const int height_doubles = 5;
const int height_file_version = 2;

const char* const time_allocation = "unable to allocate time array in height grid ";

void height_sizes(int n_keys, long long& n_ints, long long& n_doubles, long long& n_chars) {
  n_ints = height_ints;
  n_doubles = height_doubles + 2 * static_cast<long long>(n_keys);
  n_chars = 256;
}

// Room for count keys, one at least; the message names the array that could
// not be made.
double* new_keys(int count, const char* message) {
  double* keys = new (std::nothrow) double[count > 0 ? count : 1]();
  if (keys == nullptr) std::cout << message << "\n";
  return keys;
}

}  // namespace

Height_grid_details_input::Height_grid_details_input()
    : Height_grid_details_input(Kind_words{-7, "height_field_file.dat", "height_grid",
                                           "file not of height_grid data type ",
                                           "height_detail_file: ", "height_file_name:  ",
                                           "height_field input file is invalid, read ",
                                           "unable to allocate scaling array in height grid "}) {}

Height_grid_details_input::Height_grid_details_input(const Kind_words& kind)
    : position_x(0.0),
      position_y(0.0),
      orientation(0.0),
      velocity(0.0),
      direction(0.0),
      number_of_key_times(0),
      key_times(nullptr),
      key_scales(nullptr),
      kind_(kind),
      has_received_counts_(0),
      received_keys_(0) {
  field_code = kind.field_code;
  has_detail_file = 1;
  periodic_x = 0;
  periodic_y = 0;
  copy_text(detail_file, kind.detail_file, 256);
  copy_text(field_file, "nouse_grid.dat ", 256);
  // A constant scale of 1 until a file says otherwise.
  if (allocate_keys(1)) key_scales[0] = 1.0;
}

Height_grid_details_input::~Height_grid_details_input() {
  release_keys();
}

int Height_grid_details_input::allocate_keys(int count) {
  if (count < 0) {
    std::cout << time_allocation << "\n";
    return 0;
  }
  double* times = new_keys(count, time_allocation);
  if (times == nullptr) return 0;
  double* scales = new_keys(count, kind_.scaling_allocation);
  if (scales == nullptr) {
    delete[] times;
    return 0;
  }
  release_keys();
  number_of_key_times = count;
  key_times = times;
  key_scales = scales;
  return 1;
}

void Height_grid_details_input::release_keys() {
  delete[] key_times;
  delete[] key_scales;
  key_times = nullptr;
  key_scales = nullptr;
  number_of_key_times = 0;
}

int Height_grid_details_input::write_grid_block(std::ostream& out) const {
  write_lattice_lines(out);
  out << kind_.detail_file_keyword << detail_file << "\n";
  write_position_lines(out, position_x, position_y);
  out << "orientation: " << degrees_for_file(orientation) << "\n";
  out << "velocity:   " << velocity << "\n";
  out << "direction:  " << degrees_for_file(direction) << "\n";
  return write_block_end(out);
}

int Height_grid_details_input::read_grid_block(std::istream& in) {
  read_lattice_lines(in);
  read_keyed_word(in, detail_file, 256);
  read_position_lines(in, position_x, position_y);
  read_keyed_angle(in, orientation);
  read_keyed_double(in, velocity);
  read_keyed_angle(in, direction);
  return check_block_end(in, kind_.block_end);
}

int Height_grid_details_input::write_detail_file(std::ostream& out) const {
  set_file_precision(out);
  write_header(out, kind_.header_type, height_file_version);
  out << kind_.file_name_keyword << field_file << "\n";
  out << "periodicity:  " << periodic_x << " " << periodic_y << "\n";
  out << "number_of_scaling_key_times:  " << number_of_key_times << "\n";
  out << "time  "
      << " scale "
      << "\n";
  for (int i = 0; i < number_of_key_times; i++) {
    out << key_times[i] << " " << key_scales[i] << "\n";
  }
  return write_block_end(out);
}

int Height_grid_details_input::read_detail_file(std::istream& in) {
  const int file_version = check_header(in, kind_.header_type, height_file_version);
  if (file_version == 0) {
    std::cout << kind_.header_failure << "\n";
    return 0;
  }
  read_keyed_word(in, field_file, 256);
  if (file_version >= 2) {
    read_keyed_int(in, periodic_x);
    read_int(in, periodic_y);
  }
  int count = 0;
  if (read_keyed_int(in, count)) {
    if (count < 0) {
      std::cout << time_allocation << "\n";
      return 0;
    }
    skip_token(in);
    skip_token(in);
    double* columns[2] = {nullptr, nullptr};
    int failed_column = -1;
    const int outcome = read_double_rows(in, count, 2, columns, failed_column);
    if (outcome == rows_out_of_memory) {
      std::cout << (failed_column == 0 ? time_allocation : kind_.scaling_allocation) << "\n";
      return 0;
    }
    // A cut table has failed the stream; the closing word reports it.
    if (outcome == rows_read) {
      release_keys();
      number_of_key_times = count;
      key_times = columns[0];
      key_scales = columns[1];
    }
  }
  return check_end_after_fields(in, "unable to process height grid stream ");
}

void Height_grid_details_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCGrid_details_input::packing_sizes(n_ints, n_doubles, n_chars);
  const int n_keys = has_received_counts_ ? received_keys_ : number_of_key_times;
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  height_sizes(n_keys, own_ints, own_doubles, own_chars);
  // -1 marks a count no array could hold; pack and unpack refuse it.
  const int sound = n_keys >= 0;
  n_ints = packed_count(n_ints + own_ints, sound);
  n_doubles = packed_count(n_doubles + own_doubles, sound);
  n_chars = packed_count(n_chars + own_chars, sound);
}

void Height_grid_details_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                                      const char* chars) {
  TCGrid_details_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_keys_ = ints[base_ints + grid_part_ints];
  has_received_counts_ = 1;
}

int Height_grid_details_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                                    char*& chars, int& char_bytes) {
  has_received_counts_ = 0;
  int at_int = 0, at_double = 0, at_char = 0;
  if (!pack_grid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes, wake_words, at_int,
                      at_double, at_char)) {
    return 0;
  }
  if (at_char + text_block > char_bytes) {
    std::cout << wake_words.open_stream << "\n";
    return 0;
  }
  ints[at_int] = number_of_key_times;
  double* d = doubles + at_double;
  d[0] = position_x;
  d[1] = position_y;
  d[2] = orientation;
  d[3] = velocity;
  d[4] = direction;
  d += height_doubles;
  for (int i = 0; i < number_of_key_times; i++) *d++ = key_times[i];
  for (int i = 0; i < number_of_key_times; i++) *d++ = key_scales[i];
  copy_text(chars + at_char, field_file, text_block);
  return 1;
}

int Height_grid_details_input::unpack(const int* ints, int int_bytes, const double* doubles,
                                      int double_bytes, const char* chars, int char_bytes) {
  // A count taken by set_sizes_from_packed serves this one unpack.
  const int result = unpack_height_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int Height_grid_details_input::unpack_height_part(const int* ints, int int_bytes,
                                                  const double* doubles, int double_bytes,
                                                  const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  if (!packed_sizes_fit(int_bytes, double_bytes, char_bytes, wake_words)) return 0;
  // The count in the array must be the one the sizes were worked out from.
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCGrid_details_input::packing_sizes(base_ints, base_doubles, base_chars);
  const int n_keys = ints[base_ints];
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  height_sizes(n_keys, own_ints, own_doubles, own_chars);
  if (n_keys < 0 || base_doubles + own_doubles != n_doubles) {
    std::cout << wake_words.wrong_ints << "\n";
    return 0;
  }

  double* times = new_keys(n_keys, time_allocation);
  double* scales = times ? new_keys(n_keys, kind_.scaling_allocation) : nullptr;
  int at_int = 0, at_double = 0, at_char = 0;
  if (scales == nullptr || !unpack_grid_part(ints, int_bytes, doubles, double_bytes, chars,
                                             char_bytes, wake_words, at_int, at_double, at_char)) {
    delete[] times;
    delete[] scales;
    return 0;
  }
  const double* d = doubles + at_double;
  position_x = d[0];
  position_y = d[1];
  orientation = d[2];
  velocity = d[3];
  direction = d[4];
  d += height_doubles;
  for (int i = 0; i < n_keys; i++) times[i] = *d++;
  for (int i = 0; i < n_keys; i++) scales[i] = *d++;
  release_keys();
  number_of_key_times = n_keys;
  key_times = times;
  key_scales = scales;
  text_from_block(field_file, chars + at_char);
  return 1;
}

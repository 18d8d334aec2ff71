#include "Picture_input.h"

#include <climits>
#include <cstring>
#include <fstream>
#include <new>

#include "TCData_file.h"
#include "TCObject_kinds.h"
#include "TCValue_lists.h"

// Packed layout of a picture, positions counted from the root's part (the
// root packs no ints and no doubles, and its name takes the first 256 chars).
//
// ints                        doubles
//   0 number of bands           0 width
//   1 animation                 1 height
//   2 alpha_channel             2 priority
//   3 auto_scale_flag           then per band: min_radiance, max_radiance,
//   4 front optical_nature      the front colour, the back colour
//   5 back optical_nature
//   6 imaging_method          chars: picture_file in 256 after the name
//   7 version
//   then the band ids

namespace {

// The reader understands versions up to this one, and the writer writes it.
const int picture_file_version = 4;

const int at_n_bands = 0;
const int fixed_ints = 8;
const int fixed_doubles = 3;
const int text_block = 256;

void write_values(std::ostream& out, const double* values, int count) {
  for (int i = 0; i < count; i++) out << values[i] << " ";
}

// The picture's part of the packed sizes, wide so that no count overflows.
void sizes_of(int n_bands, long long& n_ints, long long& n_doubles, long long& n_chars) {
  n_ints = fixed_ints + static_cast<long long>(n_bands);
  n_doubles = fixed_doubles + 4 * static_cast<long long>(n_bands);
  n_chars = text_block;
}

}  // namespace

int picture_optical_code(const char* word) {
  if (word == nullptr) return 0;
  if (std::strcmp(word, "transparent") == 0) return picture_transparent;
  if (std::strcmp(word, "solid") == 0) return picture_solid;
  if (std::strcmp(word, "picture") == 0) return picture_image;
  return 0;
}

const char* picture_optical_word(int code) {
  if (code == picture_transparent) return "transparent";
  if (code == picture_solid) return "solid";
  if (code == picture_image) return "picture";
  return nullptr;
}

Picture_input::Picture_input()
    : number_of_bands(0),
      band_ids(nullptr),
      width(0.0),
      height(0.0),
      animation(0),
      alpha_channel(0),
      auto_scale_flag(0),
      min_radiance(nullptr),
      max_radiance(nullptr),
      imaging_method(2),
      has_received_counts_(0),
      received_bands_(0) {
  picture_file[0] = '\0';
  optical_nature[0] = picture_transparent;
  optical_nature[1] = picture_transparent;
  color[0] = nullptr;
  color[1] = nullptr;
  copy_text(object_type, "picture", 256);
  type_code = TC_KIND_PICTURE;
  priority = 5.0;
}

Picture_input::~Picture_input() {
  release_arrays();
}

int Picture_input::allocate_arrays(int count) {
  if (count < 0) return 0;
  int* ids = new (std::nothrow) int[count > 0 ? count : 1]();
  double* front = new_band_values(count, 0.0);
  double* back = new_band_values(count, 0.0);
  double* mins = new_band_values(count, 0.0);
  double* maxs = new_band_values(count, 255.0);
  if (ids == nullptr || front == nullptr || back == nullptr || mins == nullptr || maxs == nullptr) {
    delete[] ids;
    delete[] front;
    delete[] back;
    delete[] mins;
    delete[] maxs;
    return 0;
  }
  release_arrays();
  number_of_bands = count;
  band_ids = ids;
  color[0] = front;
  color[1] = back;
  min_radiance = mins;
  max_radiance = maxs;
  return 1;
}

void Picture_input::release_arrays() {
  delete[] band_ids;
  delete[] color[0];
  delete[] color[1];
  delete[] min_radiance;
  delete[] max_radiance;
  band_ids = nullptr;
  color[0] = nullptr;
  color[1] = nullptr;
  min_radiance = nullptr;
  max_radiance = nullptr;
  number_of_bands = 0;
}

int Picture_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open picture input file ")) return 0;
  if (read_stream(in)) return 1;
  return report_file_failure("unable to process picture file ", object_name);
}

int Picture_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open picture output file ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write_stream(out) && out.flush()) return 1;
  return report_file_failure("unable to process picture output file ", path);
}

int Picture_input::read_stream(std::istream& in) {
  const int file_version = check_header(in, "picture", picture_file_version);
  if (file_version == 0) {
    std::cout << "error processing picture input stream "
              << "\n";
    return 0;
  }
  if (!read_band_ids(in)) return 0;

  skip_token(in);
  if (read_double(in, width)) read_double(in, height);
  skip_token(in);
  read_token(in, picture_file, 256);

  animation = 0;
  alpha_channel = 0;
  if (file_version >= 3) {
    char word[256];
    skip_token(in);
    if (read_token(in, word, 256)) animation = texture_motion_code(word);
    skip_token(in);
    read_int(in, alpha_channel);
  }
  auto_scale_flag = 0;
  if (file_version >= 4) {
    skip_token(in);
    read_int(in, auto_scale_flag);
  }

  for (int side = 0; side < 2; side++) {
    if (!read_side(in, side)) return 0;
  }

  if (file_version >= 2) {
    skip_token(in);
    read_int(in, imaging_method);
  } else {
    imaging_method = 2;
  }
  return check_end_after_fields(in, "error processing picture file ");
}

int Picture_input::read_band_ids(std::istream& in) {
  // The ids come first, so that storage for the count is only made once the
  // stream has shown that it holds that many values.
  int count = 0;
  int* ids = nullptr;
  if (!read_counted_ints(in, INT_MAX, count, ids) || (ids != nullptr && !allocate_arrays(count))) {
    delete[] ids;
    std::cout << "unable to allocate picture input arrays "
              << "\n";
    return 0;
  }
  take_ints(band_ids, ids, count);
  return 1;
}

int Picture_input::read_side(std::istream& in, int side) {
  char word[256];
  skip_token(in);
  // A stream that has already failed goes on to the closing check, which
  // names the word it stopped at.
  if (!read_token(in, word, 256)) return 1;
  const int code = picture_optical_code(word);
  if (code == 0) {
    std::cout << "invalid optical property: " << word << "\n"
              << "       for picture."
              << "\n";
    return 0;
  }
  optical_nature[side] = code;
  if (code == picture_solid) {
    skip_token(in);
    read_doubles(in, color[side], number_of_bands);
    // The file's reflectivity and transmissivity play no part.
    skip_token(in);
    read_doubles(in, nullptr, number_of_bands);
    skip_token(in);
    read_doubles(in, nullptr, number_of_bands);
  } else if (code == picture_image && auto_scale_flag == 0) {
    // Both sides share one range: a second picture side overwrites it.
    skip_token(in);
    read_doubles(in, min_radiance, number_of_bands);
    skip_token(in);
    read_doubles(in, max_radiance, number_of_bands);
  }
  return 1;
}

int Picture_input::write_stream(std::ostream& out) const {
  char animation_word[16];
  if (!texture_motion_text(animation, animation_word)) {
    std::cout << "illegal value of animation flag in skydome "
              << "\n";
    return 0;
  }
  out << "Tidecast_data_file picture " << picture_file_version << " " << picture_file_version << " "
      << "\n";
  set_file_precision(out);
  out << "number_of_bands:  " << number_of_bands << "\n";
  out << "band_ids: ";
  for (int i = 0; i < number_of_bands; i++) out << band_ids[i] << " ";
  out << "\n";
  out << "dimensions: " << width << " " << height << "\n";
  out << "picture_file: " << picture_file << "\n";
  out << "animation:  " << animation_word << "\n";
  out << "alpha_channel: " << alpha_channel << "\n";
  out << "auto_scale_flag: " << auto_scale_flag << "\n";
  for (int side = 0; side < 2; side++) {
    if (!write_side(out, side)) return 0;
  }
  out << "imaging_method: " << imaging_method << "\n";
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

int Picture_input::write_side(std::ostream& out, int side) const {
  const char* word = picture_optical_word(optical_nature[side]);
  if (word == nullptr) {
    std::cout << "illegal picture optical type "
              << "\n";
    return 0;
  }
  out << "optical_nature:  " << word << "\n";
  if (optical_nature[side] == picture_solid) {
    out << "color: ";
    write_values(out, color[side], number_of_bands);
    out << "\n";
    // Three zeros whatever the band count: the file's values are never kept.
    out << "reflectivity:  0. 0. 0. "
        << "\n";
    out << "transmissivity:  0. 0. 0. "
        << "\n";
  } else if (optical_nature[side] == picture_image && auto_scale_flag == 0) {
    out << "min_radiance: ";
    write_values(out, min_radiance, number_of_bands);
    out << "\n";
    out << "max_radiance: ";
    write_values(out, max_radiance, number_of_bands);
    out << "\n";
  }
  return 1;
}

void Picture_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
  const int n_bands = has_received_counts_ ? received_bands_ : number_of_bands;
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  sizes_of(n_bands, own_ints, own_doubles, own_chars);
  // -1 marks a count no array could hold (negative, or bytes beyond an int);
  // pack and unpack refuse it.
  const int sound = n_bands >= 0;
  n_ints = packed_count(n_ints + own_ints, sound);
  n_doubles = packed_count(n_doubles + own_doubles, sound);
  n_chars = packed_count(n_chars + own_chars, sound);
}

void Picture_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                          const char* chars) {
  TCObject_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_bands_ = ints[base_ints + at_n_bands];
  has_received_counts_ = 1;
}

int Picture_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                        char*& chars, int& char_bytes) {
  has_received_counts_ = 0;
  // The words name the camera: they have always been printed so.
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      "unable to allocate picture character packing array ",
                      "unable to allocate picture integer packing array ",
                      "unable to allocate picture double packing array ",
                      "unable to pack object part of camera ", base_ints, base_doubles,
                      base_chars)) {
    return 0;
  }
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (base_chars + text_block > n_chars) {
    std::cout << "unable to open object character packing array "
              << "\n";
    return 0;
  }

  int* p = ints + base_ints;
  p[at_n_bands] = number_of_bands;
  p[1] = animation;
  p[2] = alpha_channel;
  p[3] = auto_scale_flag;
  p[4] = optical_nature[0];
  p[5] = optical_nature[1];
  p[6] = imaging_method;
  p[7] = version;
  for (int i = 0; i < number_of_bands; i++) p[fixed_ints + i] = band_ids[i];

  double* d = doubles + base_doubles;
  d[0] = width;
  d[1] = height;
  d[2] = priority;
  d += fixed_doubles;
  for (int i = 0; i < number_of_bands; i++) *d++ = min_radiance[i];
  for (int i = 0; i < number_of_bands; i++) *d++ = max_radiance[i];
  for (int i = 0; i < number_of_bands; i++) *d++ = color[0][i];
  for (int i = 0; i < number_of_bands; i++) *d++ = color[1][i];

  copy_text(chars + base_chars, picture_file, text_block);
  return 1;
}

int Picture_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                          const char* chars, int char_bytes) {
  // Counts taken by set_sizes_from_packed serve this one unpack, the root's
  // size check included.
  const int result = unpack_picture_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int Picture_input::unpack_picture_part(const int* ints, int int_bytes, const double* doubles,
                                       int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);

  if (!packed_numbers_fit(n_ints, base_ints + fixed_ints, int_bytes, n_doubles, 0, double_bytes)) {
    return 0;
  }
  // The count in the array must be the one the sizes were worked out from.
  const int* p = ints + base_ints;
  const int n_bands = p[at_n_bands];
  long long want_ints = 0, want_doubles = 0, want_chars = 0;
  sizes_of(n_bands, want_ints, want_doubles, want_chars);
  if (n_bands < 0 || base_ints + want_ints != n_ints) return packed_ints_wrong();
  if (base_doubles + want_doubles != n_doubles) return packed_doubles_wrong();

  if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to unpack object part of camera "
              << "\n";
    return 0;
  }
  if (!allocate_arrays(n_bands)) {
    std::cout << "unable to allocate picture input arrays "
              << "\n";
    return 0;
  }
  for (int i = 0; i < n_bands; i++) band_ids[i] = p[fixed_ints + i];
  animation = p[1];
  alpha_channel = p[2];
  auto_scale_flag = p[3];
  optical_nature[0] = p[4];
  optical_nature[1] = p[5];
  imaging_method = p[6];
  version = p[7];

  const double* d = doubles + base_doubles;
  width = d[0];
  height = d[1];
  priority = d[2];
  d += fixed_doubles;
  for (int i = 0; i < n_bands; i++) min_radiance[i] = *d++;
  for (int i = 0; i < n_bands; i++) max_radiance[i] = *d++;
  for (int i = 0; i < n_bands; i++) color[0][i] = *d++;
  for (int i = 0; i < n_bands; i++) color[1][i] = *d++;

  text_from_block(picture_file, chars + base_chars);
  return 1;
}

#include "Skydome_input.h"

#include <climits>
#include <cstring>
#include <fstream>
#include <new>

#include "TCData_file.h"
#include "TCObject_kinds.h"
#include "TCValue_lists.h"

// Packed layout of a skydome, positions counted from the root's part (the
// root packs no ints and no doubles, and its name takes the first 256 chars).
//
// ints                       doubles
//   0 number of bands          0 dome_radius
//   1 animation                1 horizon_angle (radians)
//   2 alpha_channel            2 priority
//   3 imaging_method           then min_radiance, then max_radiance, per band
//   4 texture_mode
//   5 version                chars: dome_file in 256 after the name
//   then the band ids

namespace {

// The reader understands versions up to this one, and the writer writes it.
const int skydome_file_version = 4;

const int at_n_bands = 0;
const int fixed_ints = 6;
const int fixed_doubles = 3;
const int text_block = 256;

// The skydome's part of the packed sizes, wide so that no count overflows.
void sizes_of(int n_bands, long long& n_ints, long long& n_doubles, long long& n_chars) {
  n_ints = fixed_ints + static_cast<long long>(n_bands);
  n_doubles = fixed_doubles + 2 * static_cast<long long>(n_bands);
  n_chars = text_block;
}

}  // namespace

Skydome_input::Skydome_input()
    : number_of_bands(0),
      band_ids(nullptr),
      dome_radius(99999999.0),
      horizon_angle(0.0),
      animation(0),
      alpha_channel(0),
      min_radiance(nullptr),
      max_radiance(nullptr),
      imaging_method(0),
      texture_mode(1),
      has_received_counts_(0),
      received_bands_(0) {
  dome_file[0] = '\0';
  copy_text(object_type, "skydome", 256);
  type_code = TC_KIND_SKYDOME;
  // Drawn early: the sky stands behind everything.
  priority = 2.0;
}

Skydome_input::~Skydome_input() {
  release_arrays();
}

int Skydome_input::allocate_arrays(int count) {
  if (count < 0) return 0;
  int* ids = new (std::nothrow) int[count > 0 ? count : 1]();
  double* mins = new_band_values(count, 0.0);
  double* maxs = new_band_values(count, 0.0);
  if (ids == nullptr || mins == nullptr || maxs == nullptr) {
    delete[] ids;
    delete[] mins;
    delete[] maxs;
    return 0;
  }
  release_arrays();
  number_of_bands = count;
  band_ids = ids;
  min_radiance = mins;
  max_radiance = maxs;
  return 1;
}

void Skydome_input::release_arrays() {
  delete[] band_ids;
  delete[] min_radiance;
  delete[] max_radiance;
  band_ids = nullptr;
  min_radiance = nullptr;
  max_radiance = nullptr;
  number_of_bands = 0;
}

int Skydome_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open skydome input file ")) return 0;
  if (read_stream(in)) return 1;
  return report_file_failure("unable to process skydome file ", object_name);
}

int Skydome_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open skydome output file ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write_stream(out) && out.flush()) return 1;
  return report_file_failure("unable to process skydome output file ", path);
}

int Skydome_input::read_stream(std::istream& in) {
  const int file_version = check_header(in, "skydome", skydome_file_version);
  if (file_version == 0) {
    std::cout << "error processing skydome input stream "
              << "\n";
    return 0;
  }
  skip_token(in);
  read_double(in, dome_radius);

  // The ids come first, so that storage for the count is only made once the
  // stream has shown that it holds that many values.
  int count = 0;
  int* ids = nullptr;
  const int count_fits = read_counted_ints(in, INT_MAX, count, ids);
  if (!count_fits || (ids != nullptr && !allocate_arrays(count))) {
    delete[] ids;
    // The words are the picture's on purpose.
    std::cout << "unable to allocate picture input arrays "
              << "\n";
    return 0;
  }
  take_ints(band_ids, ids, count);

  skip_token(in);
  read_token(in, dome_file, 256);

  horizon_angle = 0.0;
  if (file_version >= 3) {
    double degrees = 0.0;
    skip_token(in);
    if (read_double(in, degrees)) horizon_angle = radians_from_file(degrees);
  }

  animation = 0;
  alpha_channel = 0;
  if (file_version >= 4) {
    char word[256];
    skip_token(in);
    if (read_token(in, word, 256)) animation = texture_motion_code(word);
    skip_token(in);
    read_int(in, alpha_channel);
  }

  skip_token(in);
  read_doubles(in, min_radiance, number_of_bands);
  skip_token(in);
  read_doubles(in, max_radiance, number_of_bands);

  if (file_version >= 2) {
    skip_token(in);
    read_int(in, imaging_method);
  } else {
    imaging_method = 2;
  }
  // The picture's words again.
  return check_end_after_fields(in, "error processing picture file ");
}

int Skydome_input::write_stream(std::ostream& out) const {
  char animation_word[16];
  if (!texture_motion_text(animation, animation_word)) {
    std::cout << "illegal value of animation flag in skydome "
              << "\n";
    return 0;
  }
  out << "Tidecast_data_file skydome " << skydome_file_version << " " << skydome_file_version << " "
      << "\n";
  set_file_precision(out);
  out << "dome_radius:   " << dome_radius << "\n";
  out << "number_of_bands: " << number_of_bands << "\n";
  out << "band_id: ";
  for (int i = 0; i < number_of_bands; i++) out << "  " << band_ids[i];
  out << "\n";
  out << "dome_file: " << dome_file << "\n";
  out << "horizon_angle: " << degrees_for_file(horizon_angle) << "\n";
  out << "animation:  " << animation_word << "\n";
  out << "alpha_channel:  " << alpha_channel << "\n";
  out << "min_radiance: ";
  for (int i = 0; i < number_of_bands; i++) out << " " << min_radiance[i];
  out << "\n";
  out << "max_radiance:  ";
  for (int i = 0; i < number_of_bands; i++) out << " " << max_radiance[i];
  out << "\n";
  out << "imaging_method: " << imaging_method << "\n";
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

void Skydome_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
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

void Skydome_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                          const char* chars) {
  TCObject_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_bands_ = ints[base_ints + at_n_bands];
  has_received_counts_ = 1;
}

int Skydome_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                        char*& chars, int& char_bytes) {
  has_received_counts_ = 0;
  // The character words are the picture's; the number arrays carry the
  // air's words. Both are kept as they have always been printed.
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      "unable to allocate picture character packing array ",
                      "unable to allocate air integer packing array ",
                      "unable to allocate air double packing array ",
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
  p[3] = imaging_method;
  p[4] = texture_mode;
  p[5] = version;
  for (int i = 0; i < number_of_bands; i++) p[fixed_ints + i] = band_ids[i];

  double* d = doubles + base_doubles;
  d[0] = dome_radius;
  d[1] = horizon_angle;
  d[2] = priority;
  d += fixed_doubles;
  for (int i = 0; i < number_of_bands; i++) *d++ = min_radiance[i];
  for (int i = 0; i < number_of_bands; i++) *d++ = max_radiance[i];

  copy_text(chars + base_chars, dome_file, text_block);
  return 1;
}

int Skydome_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                          const char* chars, int char_bytes) {
  // Counts taken by set_sizes_from_packed serve this one unpack, the root's
  // size check included.
  const int result = unpack_skydome_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int Skydome_input::unpack_skydome_part(const int* ints, int int_bytes, const double* doubles,
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
    std::cout << "unable to allocate skydome radiance arrays "
              << "\n";
    return 0;
  }
  for (int i = 0; i < n_bands; i++) band_ids[i] = p[fixed_ints + i];
  animation = p[1];
  alpha_channel = p[2];
  imaging_method = p[3];
  texture_mode = p[4];
  version = p[5];

  const double* d = doubles + base_doubles;
  dome_radius = d[0];
  horizon_angle = d[1];
  priority = d[2];
  d += fixed_doubles;
  for (int i = 0; i < n_bands; i++) min_radiance[i] = *d++;
  for (int i = 0; i < n_bands; i++) max_radiance[i] = *d++;

  text_from_block(dome_file, chars + base_chars);
  return 1;
}

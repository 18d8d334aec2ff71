#include "TCStar_input.h"

#include <climits>
#include <fstream>
#include <new>
#include <string>

#include "TCConstants.h"
#include "TCData_file.h"
#include "TCValue_lists.h"

// Packed layout of the sun, positions counted from the root's part (the root
// packs no ints and no doubles, and its name takes the first 256 chars).
//
// ints                         doubles
//   0 position_method_flag       irradiance, one per band
//   1 number of bands            then per key: time, x, y, z, chi, phi, theta
//   2 number of keys
//   then the band ids          chars: the sun file's name in 256 after the name

namespace {

// The sun file's reader understands this version, and writes it.
const int sun_file_version = 1;

const int at_n_bands = 1;
const int at_n_keys = 2;
const int fixed_ints = 3;
const int doubles_per_key = 7;
const int text_block = 256;

// The sun's angles between the list's degrees and the engine's radians: the
// file's theta is measured from overhead, the engine's zenith from straight
// down, and the azimuth turns half a circle.
double zenith_from_list(double theta_degrees) {
  return tc_pi - theta_degrees * tc_degrees_to_radians;
}
double azimuth_from_list(double phi_degrees) {
  return phi_degrees * tc_degrees_to_radians + tc_pi;
}
double theta_for_list(double zenith) {
  return 180.0 - zenith * tc_radians_to_degrees;
}
double phi_for_list(double azimuth) {
  return azimuth * tc_radians_to_degrees - 180.0;
}

// Keys actually held by a track: at least one, whatever its count says.
int stored_keys(const TCKeyframes& track) {
  return track.number_of_times < 1 ? 1 : track.number_of_times;
}

}  // namespace

TCStar_input::TCStar_input()
    : position_method_flag(0),
      number_of_bands(1),
      irradiance(1),
      has_received_counts_(0),
      received_bands_(0),
      received_keys_(0) {
  copy_text(object_name, "sun", 256);
  copy_text(object_type, "star", 256);
  type_code = star_type_code;
}

TCStar_input::~TCStar_input() {}

int TCStar_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open sun input file ")) return 0;
  if (read_stream(in)) return 1;
  return report_file_failure("unable to process sun file ", path);
}

int TCStar_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open star output file ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write_stream(out) && out.flush()) return 1;
  return report_file_failure("unable to process star output file ", path);
}

int TCStar_input::read_stream(std::istream& in) {
  if (check_header(in, "sun", sun_file_version) == 0) {
    std::cout << "cannot process star file "
              << "\n";
    return 0;
  }
  int method = position_method_flag;
  skip_token(in);
  read_int(in, method);
  // The ids come first and must all be there before the irradiances are
  // read, so storage never runs ahead of what the stream holds. A negative
  // count is refused before anything is read for it; the caller reports the
  // file.
  int count = 0;
  int* ids = nullptr;
  if (!read_counted_ints(in, INT_MAX, count, ids)) return 0;
  const int complete = ids != nullptr;
  TCSpectrum read_irradiance(0);
  if (complete) {
    read_irradiance = TCSpectrum(count);
    take_ints(read_irradiance.band_id, ids, count);
    skip_token(in);
    read_doubles(in, read_irradiance.radiance_in_band, count);
  }

  std::string token;
  const int ended = read_end_word(in, token);
  if (!complete || !ended) {
    std::cout << "unable to process input file "
              << "\n"
              << "where should have found end "
              << " found " << token << "\n";
    return 0;
  }
  position_method_flag = method;
  number_of_bands = count;
  irradiance = read_irradiance;
  return 1;
}

int TCStar_input::write_stream(std::ostream& out) const {
  write_header(out, "sun", sun_file_version);
  set_file_precision(out);
  out << "position_method_flag " << position_method_flag << "\n";
  // The spectrum's own count, so the lists below always match it.
  out << "number_of_bands " << irradiance.n << "\n";
  out << "band_id ";
  for (int i = 0; i < irradiance.n; i++) out << " " << irradiance.band_id[i];
  out << "\n";
  out << "irradiance ";
  for (int i = 0; i < irradiance.n; i++) out << " " << irradiance.radiance_in_band[i];
  out << "\n";
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

int TCStar_input::read_list_block(std::istream& in) {
  int count = 0;
  skip_token(in);
  if (!read_int(in, count)) return 0;
  if (count < 1) {
    std::cout << "star must be specified for atleast one time "
              << "\n";
    return 0;
  }
  for (int i = 0; i < 3; i++) skip_token(in);  // time theta phi

  int capacity = first_capacity(count);
  double* times = new (std::nothrow) double[capacity]();
  double* zeniths = new (std::nothrow) double[capacity]();
  double* azimuths = new (std::nothrow) double[capacity]();
  int rows_read = 0;
  int status = times != nullptr && zeniths != nullptr && azimuths != nullptr;
  while (status && rows_read < count) {
    if (rows_read == capacity) {
      const int new_capacity = next_capacity(capacity, count);
      double* more_times = grown(times, rows_read, new_capacity);
      double* more_zeniths = grown(zeniths, rows_read, new_capacity);
      double* more_azimuths = grown(azimuths, rows_read, new_capacity);
      if (more_times == nullptr || more_zeniths == nullptr || more_azimuths == nullptr) {
        delete[] more_times;
        delete[] more_zeniths;
        delete[] more_azimuths;
        status = 0;
        break;
      }
      delete[] times;
      delete[] zeniths;
      delete[] azimuths;
      times = more_times;
      zeniths = more_zeniths;
      azimuths = more_azimuths;
      capacity = new_capacity;
    }
    double time = 0.0, theta = 0.0, phi = 0.0;
    if (!read_double(in, time) || !read_double(in, theta) || !read_double(in, phi)) {
      status = 0;
      break;
    }
    times[rows_read] = time;
    zeniths[rows_read] = zenith_from_list(theta);
    azimuths[rows_read] = azimuth_from_list(phi);
    rows_read++;
  }

  char file_name[256];
  if (status) {
    skip_token(in);  // "data_file:"
    status = read_token(in, file_name, 256);
  }
  if (status) {
    track.set_number_of_times(count);
    for (int i = 0; i < count; i++) {
      track.times[i] = times[i];
      track.positions[i] = TCVector(0.0, 0.0, 0.0);
      track.chi[i] = zeniths[i];
      track.phi[i] = azimuths[i];
      track.theta[i] = 0.0;
    }
    copy_text(object_file, file_name, 256);
  }
  delete[] times;
  delete[] zeniths;
  delete[] azimuths;
  return status;
}

int TCStar_input::write_list_block(std::ostream& out) const {
  if (track.number_of_times < 1) {
    std::cout << "star must be specified for atleast one time "
              << "\n";
    return 0;
  }
  set_file_precision(out);
  out << "number_of_times " << track.number_of_times << "\n";
  out << "time       theta        phi"
      << "\n";
  for (int i = 0; i < track.number_of_times; i++) {
    out << track.times[i] << " " << theta_for_list(track.chi[i]) << " "
        << phi_for_list(track.phi[i]) << "\n";
  }
  out << "data_file:  " << object_file << "\n";
  return out ? 1 : 0;
}

void TCStar_input::sizes_of(int n_bands, int n_keys, long long& n_ints, long long& n_doubles,
                            long long& n_chars) {
  n_ints = fixed_ints + static_cast<long long>(n_bands);
  n_doubles = static_cast<long long>(n_bands) + doubles_per_key * static_cast<long long>(n_keys);
  n_chars = text_block;
}

void TCStar_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
  const int n_bands = has_received_counts_ ? received_bands_ : irradiance.n;
  const int n_keys = has_received_counts_ ? received_keys_ : stored_keys(track);
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  sizes_of(n_bands, n_keys, own_ints, own_doubles, own_chars);
  // -1 marks a count no array could hold (negative, or bytes beyond an int);
  // pack and unpack refuse it.
  const int sound = n_bands >= 0 && n_keys >= 1;
  n_ints = packed_count(n_ints + own_ints, sound);
  n_doubles = packed_count(n_doubles + own_doubles, sound);
  n_chars = packed_count(n_chars + own_chars, sound);
}

void TCStar_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                         const char* chars) {
  TCObject_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_bands_ = ints[base_ints + at_n_bands];
  received_keys_ = ints[base_ints + at_n_keys];
  has_received_counts_ = 1;
}

int TCStar_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                       char*& chars, int& char_bytes) {
  has_received_counts_ = 0;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      "unable to allocate star character packing array ",
                      "unable to allocate star integer packing array ",
                      "unable to allocate star double packing array ",
                      "unable to pack object part of star ", base_ints, base_doubles, base_chars)) {
    return 0;
  }
  const int n_bands = irradiance.n;
  const int n_keys = stored_keys(track);

  int* p = ints + base_ints;
  p[0] = position_method_flag;
  p[at_n_bands] = n_bands;
  p[at_n_keys] = n_keys;
  for (int i = 0; i < n_bands; i++) p[fixed_ints + i] = irradiance.band_id[i];

  double* d = doubles + base_doubles;
  for (int i = 0; i < n_bands; i++) *d++ = irradiance.radiance_in_band[i];
  for (int k = 0; k < n_keys; k++) {
    *d++ = track.times[k];
    *d++ = track.positions[k].x;
    *d++ = track.positions[k].y;
    *d++ = track.positions[k].z;
    *d++ = track.chi[k];
    *d++ = track.phi[k];
    *d++ = track.theta[k];
  }
  copy_text(chars + base_chars, object_file, text_block);
  return 1;
}

int TCStar_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                         const char* chars, int char_bytes) {
  // Counts taken by set_sizes_from_packed serve this one unpack, the root's
  // size check included.
  const int result = unpack_star_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int TCStar_input::unpack_star_part(const int* ints, int int_bytes, const double* doubles,
                                   int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);

  if (!packed_numbers_fit(n_ints, base_ints + fixed_ints, int_bytes, n_doubles, 0, double_bytes) ||
      !packed_chars_fit(n_chars, char_bytes)) {
    return 0;
  }
  // The counts in the array must be the ones the sizes were worked out from.
  const int* p = ints + base_ints;
  const int n_bands = p[at_n_bands];
  const int n_keys = p[at_n_keys];
  long long want_ints = 0, want_doubles = 0, want_chars = 0;
  sizes_of(n_bands, n_keys, want_ints, want_doubles, want_chars);
  if (n_bands < 0 || n_keys < 1 || base_ints + want_ints != n_ints) return packed_ints_wrong();
  if (base_doubles + want_doubles != n_doubles) return packed_doubles_wrong();

  if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to unpack object part of star "
              << "\n";
    return 0;
  }

  TCSpectrum unpacked(n_bands);
  const double* d = doubles + base_doubles;
  for (int i = 0; i < n_bands; i++) {
    unpacked.band_id[i] = p[fixed_ints + i];
    unpacked.radiance_in_band[i] = *d++;
  }
  TCKeyframes unpacked_track;
  unpacked_track.set_number_of_times(n_keys);
  for (int k = 0; k < n_keys; k++) {
    unpacked_track.times[k] = *d++;
    unpacked_track.positions[k].x = *d++;
    unpacked_track.positions[k].y = *d++;
    unpacked_track.positions[k].z = *d++;
    unpacked_track.chi[k] = *d++;
    unpacked_track.phi[k] = *d++;
    unpacked_track.theta[k] = *d++;
  }

  position_method_flag = p[0];
  number_of_bands = n_bands;
  irradiance = unpacked;
  track = unpacked_track;
  text_from_block(object_file, chars + base_chars);
  return 1;
}

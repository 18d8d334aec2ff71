#include "TCVolume_Object_class.h"

#include <climits>
#include <fstream>
#include <new>
#include <string>

#include "TCData_file.h"
#include "TCValue_lists.h"

// Packed layout of a volume, positions counted from the root's part (the
// root packs no ints and no doubles, and its name takes the first 256 chars).
//
// ints                          doubles
//   0 num_bands                   0..2 length x, y, z
//   1 n_phase_function_angles     3..5 lattice spacing x, y, z
//   2..4 number_points x, y, z    6 threshold_density
//   5 scattering_method           7 integration_scale
//   then the band ids             8 transmission_cutoff
//                                 9 subdivide_threshold
// chars                           10 priority
//   256 phase_function_file       then absorption, scattering, extinction
//                                 (num_bands each), then the phase
//                                 functions band after band

namespace {

const int volume_file_version = 1;
const int phase_angles_supported = 181;

const int at_n_bands = 0;
const int at_n_angles = 1;
const int fixed_ints = 6;
const int fixed_doubles = 11;
const int text_block = 256;

// Counts whose packed doubles still fit an int, with room for the fixed part.
const long long most_packed_doubles = INT_MAX / 8 - 64;

void print_line(const char* text) {
  std::cout << text << "\n";
}

// The most bands for which the packed doubles of this many angles fit.
long long most_bands_for(int angles) {
  return most_packed_doubles / (3 + static_cast<long long>(angles));
}

void own_sizes(long long n_bands, long long n_angles, long long& n_ints, long long& n_doubles) {
  n_ints = fixed_ints + n_bands;
  n_doubles = fixed_doubles + 3 * n_bands + n_bands * n_angles;
}

// count rows of angles doubles each, zeroed; null when memory runs out.
double** new_phase_rows(int count, int angles) {
  double** rows = new (std::nothrow) double*[count > 0 ? count : 1]();
  if (rows == nullptr) return nullptr;
  for (int i = 0; i < count; i++) {
    rows[i] = new (std::nothrow) double[angles > 0 ? angles : 1]();
    if (rows[i] == nullptr) {
      for (int j = 0; j < i; j++) delete[] rows[j];
      delete[] rows;
      return nullptr;
    }
  }
  return rows;
}

void delete_phase_rows(double** rows, int count) {
  if (rows == nullptr) return;
  for (int i = 0; i < count; i++) delete[] rows[i];
  delete[] rows;
}

void write_values(std::ostream& out, const char* keyword, const double* values, int count) {
  out << keyword;
  for (int i = 0; i < count; i++) out << " " << values[i];
  out << "\n";
}

}  // namespace

TCVolume_Object_class::TCVolume_Object_class()
    : number_points_x(0),
      number_points_y(0),
      number_points_z(0),
      lattice_spacing_x(1.0),
      lattice_spacing_y(1.0),
      lattice_spacing_z(1.0),
      num_bands(0),
      band_id(nullptr),
      absorption(nullptr),
      scattering(nullptr),
      extinction(nullptr),
      n_phase_function_angles(phase_angles_supported),
      phase_functions(nullptr),
      threshold_density(0.0),
      scattering_method(1),
      integration_scale(1.0),
      transmission_cutoff(0.0001),
      subdivide_threshold(0.0),
      has_received_counts_(0),
      received_bands_(0),
      received_angles_(0) {
  copy_text(phase_function_file, "phase_functions.dat", text_block);
}

TCVolume_Object_class::~TCVolume_Object_class() {
  release_arrays();
}

void TCVolume_Object_class::release_arrays() {
  delete[] band_id;
  delete[] absorption;
  delete[] scattering;
  delete[] extinction;
  delete_phase_rows(phase_functions, num_bands);
  band_id = nullptr;
  absorption = nullptr;
  scattering = nullptr;
  extinction = nullptr;
  phase_functions = nullptr;
  num_bands = 0;
}

long long TCVolume_Object_class::number_of_points() const {
  return static_cast<long long>(number_points_x) * number_points_y * number_points_z;
}

int TCVolume_Object_class::allocate_arrays(int count, int angles) {
  if (count < 0) {
    std::cout << "can not allocate volume object input arrays because num_bands = " << count
              << "\n";
    return 0;
  }
  if (angles < 1 || angles > most_packed_doubles) {
    std::cout << "can not allocate volume object input arrays because n_phase_function_angles = "
              << angles << "\n";
    return 0;
  }
  if (count > most_bands_for(angles)) {
    std::cout << "can not allocate volume object input arrays because num_bands = " << count
              << "\n";
    return 0;
  }
  int* ids = new (std::nothrow) int[count > 0 ? count : 1]();
  double* lists[3];
  if (ids == nullptr || !new_band_lists(count, lists, 3)) {
    delete[] ids;
    print_line("unable to allocate volume object input array ");
    return 0;
  }
  double** rows = new_phase_rows(count, angles);
  if (rows == nullptr) {
    delete[] ids;
    delete_band_lists(lists, 3);
    print_line("unable to allocate volume object phase function array ");
    std::cout << "num_bands = " << count << "\n";
    std::cout << "n_phase_function_angles = " << angles << "\n";
    return 0;
  }
  release_arrays();
  for (int i = 0; i < count; i++) ids[i] = i + 1;
  band_id = ids;
  absorption = lists[0];
  scattering = lists[1];
  extinction = lists[2];
  phase_functions = rows;
  num_bands = count;
  n_phase_function_angles = angles;
  return 1;
}

int TCVolume_Object_class::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open volume input file ")) return 0;
  if (read_stream(in)) return 1;
  return report_file_failure("unable to process volume file ", path);
}

int TCVolume_Object_class::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open volume output file ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write_stream(out) && out.flush()) return 1;
  // The word "air" is the message as it has always been printed.
  return report_file_failure("unable to process air output file ", path);
}

int TCVolume_Object_class::read_stream(std::istream& in) {
  if (!read_section(in)) return 0;
  if (!read_phase_file(phase_function_file)) {
    print_line("unable to process phase function file ");
    return 0;
  }
  return 1;
}

int TCVolume_Object_class::read_section(std::istream& in) {
  if (check_header(in, "volume", volume_file_version) == 0) {
    print_line("unable to process volume data ");
    return 0;
  }
  read_keyed_int(in, number_points_x);
  read_keyed_int(in, number_points_y);
  read_keyed_int(in, number_points_z);
  read_keyed_double(in, lattice_spacing_x);
  read_keyed_double(in, lattice_spacing_y);
  read_keyed_double(in, lattice_spacing_z);
  if (!read_bands(in)) return 0;
  // A name that does not read leaves the one held.
  char name[text_block];
  if (read_keyed_word(in, name, text_block)) copy_text(phase_function_file, name, text_block);
  read_keyed_double(in, threshold_density);
  std::string method = read_keyed_text(in);
  if (in) scattering_method = method == "multiple" ? 1 : 0;
  read_keyed_double(in, integration_scale);
  read_keyed_double(in, transmission_cutoff);
  read_keyed_double(in, subdivide_threshold);

  // A failed read earlier left the word it stopped at, which is shown here.
  std::string word;
  if (!read_end_word(in, word)) {
    print_line("error processing volume data ");
    std::cout << "read " << word << " instead of end "
              << "\n";
    return 0;
  }
  if (!lattice_is_sound()) {
    print_line("unable to process volume data ");
    return 0;
  }
  length =
      TCVector((number_points_x - 1) * lattice_spacing_x, (number_points_y - 1) * lattice_spacing_y,
               (number_points_z - 1) * lattice_spacing_z);
  return 1;
}

// The count, the ids, then the three coefficient lists. A list cut short
// leaves the stream failed for the end check to report.
int TCVolume_Object_class::read_bands(std::istream& in) {
  int count = 0;
  if (!read_keyed_int(in, count)) return 1;
  if (count < 0 || count > most_bands_for(phase_angles_supported)) {
    // The allocation step's own words for a count it cannot take.
    std::cout << "can not allocate volume object input arrays because num_bands = " << count
              << "\n";
    print_line("unable to allocate volume object input arrays ");
    return 0;
  }
  skip_token(in);
  // The ids come first, so that storage is only made for a count the stream
  // has shown that it holds.
  int* ids = read_int_list(in, count);
  if (ids == nullptr) {
    if (in) {
      print_line("unable to allocate volume object input arrays ");
      return 0;
    }
    return 1;
  }
  if (!allocate_arrays(count, phase_angles_supported)) {
    delete[] ids;
    print_line("unable to allocate volume object input arrays ");
    return 0;
  }
  take_ints(band_id, ids, count);
  skip_token(in);
  read_doubles(in, absorption, count);
  skip_token(in);
  read_doubles(in, scattering, count);
  skip_token(in);
  read_doubles(in, extinction, count);
  return 1;
}

// A lattice needs a point on every axis, and spacings that do not turn the
// box inside out; each test fails for NaN.
int TCVolume_Object_class::lattice_is_sound() const {
  const char* names[3] = {"number_points_x", "number_points_y", "number_points_z"};
  const int points[3] = {number_points_x, number_points_y, number_points_z};
  const char* spacing_names[3] = {"lattice_spacing_x", "lattice_spacing_y", "lattice_spacing_z"};
  const double spacings[3] = {lattice_spacing_x, lattice_spacing_y, lattice_spacing_z};
  for (int i = 0; i < 3; i++) {
    if (points[i] < 1) {
      std::cout << "volume lattice needs at least one point on each axis, read " << names[i]
                << " = " << points[i] << "\n";
      return 0;
    }
    if (!(spacings[i] >= 0.0)) {
      std::cout << "volume lattice spacing can not be negative, read " << spacing_names[i] << " = "
                << spacings[i] << "\n";
      return 0;
    }
  }
  return 1;
}

int TCVolume_Object_class::read_phase_file(const char* path) {
  if (n_phase_function_angles != phase_angles_supported) {
    print_line("currently able to use only phase functions with 181 angles ");
    return 0;
  }
  if (phase_functions == nullptr) {
    print_line("attempt to fill unallocated phase function array ");
    return 0;
  }
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open ")) return 0;

  // Read whole before anything is kept, so a bad file changes nothing.
  double* values = new_band_values(num_bands * phase_angles_supported, 0.0);
  if (values == nullptr) {
    print_line("unable to allocate volume object phase function array ");
    std::cout << "num_bands = " << num_bands << "\n";
    std::cout << "n_phase_function_angles = " << n_phase_function_angles << "\n";
    return 0;
  }
  int complete = 1;
  for (int band = 0; band < num_bands && complete; band++) {
    int id = 0;
    complete = read_int(in, id);
    double* row = values + band * phase_angles_supported;
    for (int k = 0; k < phase_angles_supported && complete; k++) {
      double angle = 0.0;
      complete = read_double(in, angle) && read_double(in, row[k]);
    }
  }
  // A file that ends early, or holds more after the last band, does not
  // have 181 angles a band; a word where a number belongs is the caller's
  // to report.
  std::string extra;
  if ((!complete && in.eof()) || (complete && (in >> extra))) {
    print_line("currently able to use only phase functions with 181 angles ");
    complete = 0;
  }
  if (complete) {
    for (int band = 0; band < num_bands; band++) {
      for (int k = 0; k < phase_angles_supported; k++) {
        phase_functions[band][k] = values[band * phase_angles_supported + k];
      }
    }
  }
  delete[] values;
  return complete;
}

int TCVolume_Object_class::write_stream(std::ostream& out) const {
  const char* method = scattering_method == 1   ? "multiple"
                       : scattering_method == 0 ? "single"
                                                : nullptr;
  if (method == nullptr) {
    print_line("attempt to output invalid volume object scattering flag ");
    return 0;
  }
  write_header(out, "volume", volume_file_version);
  set_file_precision(out);
  out << "number_points_x: " << number_points_x << "\n";
  out << "number_points_y: " << number_points_y << "\n";
  out << "number_points_z: " << number_points_z << "\n";
  out << "lattice_spacing_x: " << lattice_spacing_x << "\n";
  out << "lattice_spacing_y: " << lattice_spacing_y << "\n";
  out << "lattice_spacing_z: " << lattice_spacing_z << "\n";
  out << "number_of_bands " << num_bands << "\n";
  out << "band_id ";
  for (int i = 0; i < num_bands; i++) out << " " << band_id[i];
  out << "\n";
  write_values(out, "absorption: ", absorption, num_bands);
  write_values(out, "scattering: ", scattering, num_bands);
  write_values(out, "extinction: ", extinction, num_bands);
  out << "phase_function_file: " << phase_function_file << "\n";
  out << "threshold_density: " << threshold_density << "\n";
  out << "scattering_method: " << method << "\n";
  out << "integration_scale: " << integration_scale << "\n";
  out << "transmission_cutoff: " << transmission_cutoff << "\n";
  out << "subdivide_threshold: " << subdivide_threshold << "\n";
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

void TCVolume_Object_class::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  box_input::packing_sizes(n_ints, n_doubles, n_chars);
  const long long n_bands = packed_band_count();
  const long long n_angles = packed_angle_count();
  long long own_ints = 0, own_doubles = 0;
  // -1 marks counts no array could hold; pack and unpack refuse it.
  const int sound = n_bands >= 0 && n_angles >= 0 && n_angles <= most_packed_doubles;
  if (sound) own_sizes(n_bands, n_angles, own_ints, own_doubles);
  n_ints = packed_count(n_ints + own_ints, sound);
  n_doubles = packed_count(n_doubles + own_doubles, sound);
  n_chars = packed_count(n_chars + text_block, sound);
}

void TCVolume_Object_class::set_sizes_from_packed(const int* ints, const double* doubles,
                                                  const char* chars) {
  box_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_bands_ = ints[base_ints + at_n_bands];
  received_angles_ = ints[base_ints + at_n_angles];
  has_received_counts_ = 1;
}

int TCVolume_Object_class::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                                char*& chars, int& char_bytes) {
  has_received_counts_ = 0;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      "unable to allocate volume character packing array ",
                      "unable to allocate volume integer packing array ",
                      "unable to allocate volume double packing array ",
                      "unable to pack object part of volume ", base_ints, base_doubles,
                      base_chars)) {
    return 0;
  }
  int* p = ints + base_ints;
  p[at_n_bands] = num_bands;
  p[at_n_angles] = n_phase_function_angles;
  p[2] = number_points_x;
  p[3] = number_points_y;
  p[4] = number_points_z;
  p[5] = scattering_method;
  for (int i = 0; i < num_bands; i++) p[fixed_ints + i] = band_id[i];

  double* d = doubles + base_doubles;
  *d++ = length.x;
  *d++ = length.y;
  *d++ = length.z;
  *d++ = lattice_spacing_x;
  *d++ = lattice_spacing_y;
  *d++ = lattice_spacing_z;
  *d++ = threshold_density;
  *d++ = integration_scale;
  *d++ = transmission_cutoff;
  *d++ = subdivide_threshold;
  *d++ = priority;
  for (int i = 0; i < num_bands; i++) *d++ = absorption[i];
  for (int i = 0; i < num_bands; i++) *d++ = scattering[i];
  for (int i = 0; i < num_bands; i++) *d++ = extinction[i];
  for (int i = 0; i < num_bands; i++) {
    for (int k = 0; k < n_phase_function_angles; k++) *d++ = phase_functions[i][k];
  }
  copy_text(chars + base_chars, phase_function_file, text_block);
  return 1;
}

int TCVolume_Object_class::unpack(const int* ints, int int_bytes, const double* doubles,
                                  int double_bytes, const char* chars, int char_bytes) {
  // Counts taken by set_sizes_from_packed serve this one unpack.
  const int result = unpack_volume_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int TCVolume_Object_class::unpack_volume_part(const int* ints, int int_bytes, const double* doubles,
                                              int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  if (!packed_numbers_fit(n_ints, base_ints + fixed_ints, int_bytes, n_doubles,
                          base_doubles + fixed_doubles, double_bytes) ||
      !packed_chars_fit(n_chars, char_bytes)) {
    return 0;
  }
  // The counts in the array must be those the sizes were worked out from.
  const int* p = ints + base_ints;
  const int count = p[at_n_bands];
  const int angles = p[at_n_angles];
  if (count != packed_band_count() || angles != packed_angle_count()) return packed_ints_wrong();

  if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    print_line("unable to unpack object part of volume ");
    return 0;
  }
  if (!allocate_arrays(count, angles)) {
    print_line("unable to allocate volume object input arrays ");
    return 0;
  }
  number_points_x = p[2];
  number_points_y = p[3];
  number_points_z = p[4];
  scattering_method = p[5];
  for (int i = 0; i < count; i++) band_id[i] = p[fixed_ints + i];

  const double* d = doubles + base_doubles;
  length = TCVector(d[0], d[1], d[2]);
  lattice_spacing_x = d[3];
  lattice_spacing_y = d[4];
  lattice_spacing_z = d[5];
  threshold_density = d[6];
  integration_scale = d[7];
  transmission_cutoff = d[8];
  subdivide_threshold = d[9];
  priority = d[10];
  d += fixed_doubles;
  for (int i = 0; i < count; i++) absorption[i] = *d++;
  for (int i = 0; i < count; i++) scattering[i] = *d++;
  for (int i = 0; i < count; i++) extinction[i] = *d++;
  for (int i = 0; i < count; i++) {
    for (int k = 0; k < angles; k++) phase_functions[i][k] = *d++;
  }
  text_from_block(phase_function_file, chars + base_chars);
  return 1;
}

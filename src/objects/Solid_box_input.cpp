#include "Solid_box_input.h"

#include <fstream>

#include "TCData_file.h"
#include "TCObject_kinds.h"
#include "TCValue_lists.h"

// Packed layout of a solid box, positions counted from the root's part (the
// root packs no ints and no doubles, and its name takes the first 256 chars).
//
// ints                         doubles
//   0 number of bands            0..2 length x, y, z
//   then the band ids            then radiance, reflectivity and
//                                transmissivity, one per band each
// A bobbing box appends its two doubles after these.

namespace {

const int solid_box_file_version = 1;

const int at_n_bands = 0;
const int fixed_ints = 1;
const int fixed_doubles = 3;
const int per_band_doubles = 3;

void print_line(const char* text) {
  std::cout << text << "\n";
}

}  // namespace

Solid_box_input::Solid_box_input() : Solid_box_input("box", TC_KIND_SOLID_BOX) {}

Solid_box_input::Solid_box_input(const char* kind, int code)
    : number_of_bands(0),
      band_ids(0),
      reflectivity(nullptr),
      transmissivity(nullptr),
      has_received_counts_(0),
      received_bands_(0) {
  copy_text(object_type, kind, 256);
  type_code = code;
  priority = 2.0;
}

Solid_box_input::~Solid_box_input() {
  delete[] reflectivity;
  delete[] transmissivity;
}

int Solid_box_input::allocate_bands(int count) {
  if (count < 0 || count > most_bands) return 0;
  double* lists[2];
  if (!new_band_lists(count, lists, 2)) return 0;
  band_ids = TCSpectrum(count);
  keep_bands(count, lists[0], lists[1]);
  return 1;
}

void Solid_box_input::keep_bands(int count, double* new_reflectivity, double* new_transmissivity) {
  delete[] reflectivity;
  delete[] transmissivity;
  reflectivity = new_reflectivity;
  transmissivity = new_transmissivity;
  number_of_bands = count;
}

int Solid_box_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open box file ")) return 0;
  if (read_stream(in)) return 1;
  return report_file_failure("unable to process box file ", path);
}

int Solid_box_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open box file ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write_stream(out) && out.flush()) return 1;
  return report_file_failure("unable to process box file ", path);
}

int Solid_box_input::read_stream(std::istream& in) {
  if (check_header(in, "box", solid_box_file_version) == 0) {
    print_line(" cannot process box file ");
    return 0;
  }
  const TCVector old_length = length;
  read_lengths(in);

  // Radiance, reflectivity, transmissivity.
  int count = 0;
  int* ids = nullptr;
  double* lists[3];
  if (!read_band_lists(in, "unable to allocate memory in Solid_box_input", count, ids, lists, 3) ||
      !check_end_after_fields(in, "error processing solid_box file ") || ids == nullptr) {
    delete[] ids;
    delete_band_lists(lists, 3);
    length = old_length;
    return 0;
  }
  band_ids = TCSpectrum(count);
  for (int i = 0; i < count; i++) {
    band_ids.band_id[i] = ids[i];
    band_ids.radiance_in_band[i] = lists[0][i];
  }
  delete[] ids;
  keep_bands(count, lists[1], lists[2]);
  delete[] lists[0];
  return 1;
}

int Solid_box_input::write_stream(std::ostream& out) const {
  out << "Tidecast_data_file box " << solid_box_file_version << " " << solid_box_file_version << " "
      << "\n";
  write_lengths(out);
  out << "number_of_bands: " << number_of_bands << "\n";
  write_list(out, "band_id:", band_ids.band_id, number_of_bands);
  write_list(out, "radiance:", band_ids.radiance_in_band, number_of_bands);
  write_list(out, "reflectivity:", reflectivity, number_of_bands);
  write_list(out, "transmissivity:", transmissivity, number_of_bands);
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

void Solid_box_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
  const long long n_bands = packed_band_count();
  // -1 marks a count no array could hold (negative, or bytes beyond an int);
  // pack and unpack refuse it.
  const int sound = n_bands >= 0;
  n_ints = packed_count(n_ints + fixed_ints + n_bands, sound);
  n_doubles = packed_count(n_doubles + fixed_doubles + per_band_doubles * n_bands, sound);
}

void Solid_box_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                            const char* chars) {
  box_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_bands_ = ints[base_ints + at_n_bands];
  has_received_counts_ = 1;
}

int Solid_box_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                          char*& chars, int& char_bytes) {
  drop_received_counts();
  // The words of other kinds of record, as they have always been printed.
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      "unable to allocate bobbing box character packing arrays ",
                      "unable to allocate air integer packing array ",
                      "unable to allocate air double packing array ",
                      "unable to pack object part of box ", base_ints, base_doubles, base_chars)) {
    return 0;
  }
  int* p = ints + base_ints;
  p[at_n_bands] = number_of_bands;
  for (int i = 0; i < number_of_bands; i++) p[fixed_ints + i] = band_ids.band_id[i];
  double* d = doubles + base_doubles;
  *d++ = length.x;
  *d++ = length.y;
  *d++ = length.z;
  for (int i = 0; i < number_of_bands; i++) *d++ = band_ids.radiance_in_band[i];
  for (int i = 0; i < number_of_bands; i++) *d++ = reflectivity[i];
  for (int i = 0; i < number_of_bands; i++) *d++ = transmissivity[i];
  return 1;
}

int Solid_box_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                            const char* chars, int char_bytes) {
  // Counts taken by set_sizes_from_packed serve this one unpack, the root's
  // size check included.
  const int result = unpack_solid_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  drop_received_counts();
  return result;
}

int Solid_box_input::unpack_solid_part(const int* ints, int int_bytes, const double* doubles,
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
  // The count in the array must be the one the sizes were worked out from.
  const int* p = ints + base_ints;
  const int count = p[at_n_bands];
  if (count < 0 || count != packed_band_count()) return packed_ints_wrong();

  double* lists[2];
  if (!new_band_lists(count, lists, 2)) {
    print_line("unable to allocate reflectity array in unpack ");
    return 0;
  }
  if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    delete_band_lists(lists, 2);
    print_line("unable to unpack object part of box ");
    return 0;
  }

  TCSpectrum unpacked(count);
  const double* d = doubles + base_doubles;
  length = TCVector(d[0], d[1], d[2]);
  d += fixed_doubles;
  for (int i = 0; i < count; i++) {
    unpacked.band_id[i] = p[fixed_ints + i];
    unpacked.radiance_in_band[i] = *d++;
  }
  for (int i = 0; i < count; i++) lists[0][i] = *d++;
  for (int i = 0; i < count; i++) lists[1][i] = *d++;
  band_ids = unpacked;
  keep_bands(count, lists[0], lists[1]);
  return 1;
}

// The ocean record in three flat arrays, after the surface's part.
//
// ints                                  doubles
//   0 packing version                     the grid records' doubles
//   1 grid records (primary, secondary,   the scalar doubles (table below)
//     then each disturbance)              wind time, speed, direction
//   2 their ints, 3 doubles, 4 chars        (n_wind_values each)
//   5 n_wind_values                       sharpening angle, value
//   6 n_sharpening_angles                 sub_saturation_scale,
//   7 number_of_bands                       saturation_values
//   8 n_saturation_values                 the whitecap texture block's
//   9 whitecap textures                   index_of_refraction, a, b, c, k,
//  10 their range values                    refl (number_of_bands each)
//  11 per record: code, ints, doubles,
//     chars                             chars
//     then the records' ints              the grid records' chars
//     then the scalar ints (table)        wind_file, sharpening_file,
//     then the whitecap texture block       whitecap_file,
//     then band_ids                         initial_state_file, frame_file
//                                           (256 each)
//                                         the whitecap texture block's
//
// Each grid record is packed by its own class into arrays of its own, which
// stand here one after the other; the codes let the receiver make the right
// classes.
#include <iostream>
#include <new>

#include "TCData_file.h"
#include "TCDisturbance_inputs.h"
#include "TCValue_lists.h"
#include "ocean_input.h"

namespace {

const int packing_version = 1;

const int at_version = 0;
const int at_records = 1;
const int at_record_ints = 2;
const int at_record_doubles = 3;
const int at_record_chars = 4;
const int at_wind_values = 5;
const int at_sharpening_angles = 6;
const int at_bands = 7;
const int at_saturation_values = 8;
const int at_whitecap_textures = 9;
const int at_whitecap_range_values = 10;
const int header_ints = 11;
const int directory_ints = 4;  // code, ints, doubles, chars
const int fixed_records = 2;   // primary and secondary grid
const int text_block = 256;

// The scalar fields in the order of the record.
int ocean_input::*const int_fields[] = {
    &ocean_input::number_aux_oceans,
    &ocean_input::round_surface,
    &ocean_input::variable_wind,
    &ocean_input::ocean_spectrum_type,
    &ocean_input::jerlov_water_type,
    &ocean_input::external_exact,
    &ocean_input::include,
    &ocean_input::reflection_method,
    &ocean_input::shadow_method,
    &ocean_input::glitter,
    &ocean_input::sharpening_type,
    &ocean_input::saturation_type,
    &ocean_input::saturation_band,
    &ocean_input::whitecaps,
    &ocean_input::whitecap_generation,
    &ocean_input::fluctuation_mode,
    &ocean_input::fluctuation_n_x,
    &ocean_input::fluctuation_n_y,
    &ocean_input::fluctuation_seed,
    &ocean_input::texture_maps,
    &ocean_input::cusps,
    &ocean_input::exclude_mask,
    &ocean_input::render_disturbances_interior,
    &ocean_input::version,
};
const int n_int_fields = sizeof(int_fields) / sizeof(int_fields[0]);

double ocean_input::*const double_fields[] = {
    &ocean_input::box_depth,
    &ocean_input::reference_time,
    &ocean_input::surface_radius,
    &ocean_input::max_distance,
    &ocean_input::doubling_distance,
    &ocean_input::wind_direction,
    &ocean_input::wind_velocity,
    &ocean_input::glassy_scale,
    &ocean_input::max_exact_distance,
    &ocean_input::exact_sharpening_factor,
    &ocean_input::max_shadow_fraction,
    &ocean_input::shadow_distance,
    &ocean_input::sharpening_factor,
    &ocean_input::glitter_threshold,
    &ocean_input::saturation_threshold,
    &ocean_input::whitecap_center_x,
    &ocean_input::whitecap_center_y,
    &ocean_input::whitecap_length_x,
    &ocean_input::whitecap_length_y,
    &ocean_input::whitecap_interval_x,
    &ocean_input::whitecap_interval_y,
    &ocean_input::whitecap_max_distance,
    &ocean_input::whitecap_reference_time,
    &ocean_input::whitecap_time_increment,
    &ocean_input::whitecap_initialization_time,
    &ocean_input::whitecap_initialization_increment,
    &ocean_input::whitecap_formation_time,
    &ocean_input::whitecap_decay_time,
    &ocean_input::acceleration_threshold_low,
    &ocean_input::acceleration_threshold_high,
    &ocean_input::whitecap_reflectivity_low,
    &ocean_input::whitecap_reflectivity_high,
    &ocean_input::smear_x,
    &ocean_input::smear_y,
    &ocean_input::smear_t,
    &ocean_input::acceleration_time_offset,
    &ocean_input::fluctuation_dx,
    &ocean_input::fluctuation_dy,
    &ocean_input::fluctuation_length_scale,
    &ocean_input::fluctuation_power_law,
    &ocean_input::fluctuation_time_scale,
    &ocean_input::fluctuation_log_normal_width,
    &ocean_input::cusps_scale,
    &ocean_input::priority,
};
const int n_double_fields = sizeof(double_fields) / sizeof(double_fields[0]);

char (ocean_input::*const text_fields[])[256] = {
    &ocean_input::wind_file,          &ocean_input::sharpening_file, &ocean_input::whitecap_file,
    &ocean_input::initial_state_file, &ocean_input::frame_file,
};
const int n_text_fields = sizeof(text_fields) / sizeof(text_fields[0]);

// The ocean's part of the packed sizes for its counts, worked out wide. 0
// when a count is not sound.
int ocean_part_sizes(const long long counts[], long long& n_ints, long long& n_doubles,
                     long long& n_chars) {
  long long texture_ints = 0, texture_doubles = 0, texture_chars = 0;
  surface_object_input::texture_block_sizes(counts[at_whitecap_textures],
                                            counts[at_whitecap_range_values], texture_ints,
                                            texture_doubles, texture_chars);
  const long long bands = counts[at_bands];
  n_ints = header_ints + directory_ints * counts[at_records] + counts[at_record_ints] +
           n_int_fields + texture_ints + bands;
  n_doubles = counts[at_record_doubles] + n_double_fields + 3 * counts[at_wind_values] +
              2 * counts[at_sharpening_angles] + 2 * counts[at_saturation_values] +
              texture_doubles + 6 * bands;
  n_chars = counts[at_record_chars] + n_text_fields * text_block + texture_chars;
  if (counts[at_records] < fixed_records) return 0;
  for (int i = at_record_ints; i < header_ints; i++) {
    if (counts[i] < 0) return 0;
  }
  return 1;
}

// n doubles, or null for none; copied from source when there is one.
double* new_copy(const double* source, int n) {
  double* values = new (std::nothrow) double[n > 0 ? n : 1]();
  if (values == nullptr) return nullptr;
  for (int i = 0; source != nullptr && i < n; i++) values[i] = source[i];
  return values;
}

// Takes n doubles from d into a new array replacing target; 0 when memory
// runs out.
int take_doubles(double*& target, const double*& d, int n) {
  double* values = nullptr;
  if (n > 0) {
    values = new_copy(d, n);
    if (values == nullptr) return 0;
  }
  delete[] target;
  target = values;
  d += n;
  return 1;
}

int wrong_chars() {
  std::cout << "ocean char packing array of the wrong size "
            << "\n";
  return 0;
}

}  // namespace

void ocean_input::ocean_counts(long long counts[]) const {
  if (has_received_counts_) {
    for (int i = 0; i < packed_counts; i++) counts[i] = received_[i];
    return;
  }
  counts[at_version] = packing_version;
  counts[at_records] = fixed_records + static_cast<long long>(n_disturbances);
  long long sums[3] = {0, 0, 0};
  for (long long i = 0; i < counts[at_records]; i++) {
    const TCGrid_details_input* record =
        i == 0 ? &primary_grid : (i == 1 ? &secondary_grid : disturbances[i - fixed_records]);
    int record_counts[3] = {0, 0, 0};
    record->packing_sizes(record_counts[0], record_counts[1], record_counts[2]);
    for (int j = 0; j < 3; j++) {
      // One record that cannot be packed makes the whole unsound.
      if (record_counts[j] < 0 || sums[j] < 0) {
        sums[j] = -1;
      } else {
        sums[j] += record_counts[j];
      }
    }
  }
  counts[at_record_ints] = sums[0];
  counts[at_record_doubles] = sums[1];
  counts[at_record_chars] = sums[2];
  counts[at_wind_values] = (wind_time && wind_speed && wind_direction_series) ? n_wind_values : 0;
  counts[at_sharpening_angles] = (sharpening_angle && sharpening_value) ? n_sharpening_angles : 0;
  counts[at_bands] = band_ids ? number_of_bands : 0;
  counts[at_saturation_values] =
      (sub_saturation_scale && saturation_values) ? n_saturation_values : 0;
  // A negative texture count travels in the block's own header.
  counts[at_whitecap_textures] =
      (whitecap_textures.textures != nullptr && whitecap_textures.n_textures > 0)
          ? whitecap_textures.n_textures
          : 0;
  counts[at_whitecap_range_values] = texture_range_values(whitecap_textures);
}

void ocean_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  surface_object_input::packing_sizes(n_ints, n_doubles, n_chars);
  long long counts[packed_counts];
  ocean_counts(counts);
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  // -1 marks a count no array could hold (negative, or bytes beyond an int);
  // pack and unpack refuse it.
  const int sound = ocean_part_sizes(counts, own_ints, own_doubles, own_chars) && n_ints >= 0 &&
                    n_doubles >= 0 && n_chars >= 0;
  n_ints = packed_count(n_ints + own_ints, sound);
  n_doubles = packed_count(n_doubles + own_doubles, sound);
  n_chars = packed_count(n_chars + own_chars, sound);
}

void ocean_input::set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) {
  surface_object_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  surface_object_input::packing_sizes(base_ints, base_doubles, base_chars);
  if (base_ints < 0) return;  // the surface's counts already fail the unpack
  for (int i = 0; i < packed_counts; i++) received_[i] = ints[base_ints + i];
  has_received_counts_ = 1;
}

int ocean_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
                      int& char_bytes) {
  has_received_counts_ = 0;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (!packing_counts_fit(n_ints, n_doubles, n_chars,
                          "unable to allocate ocean character packing array ",
                          "unable to allocate ocean integer packing array ",
                          "unable to allocate ocean double packing array ")) {
    return 0;
  }
  if (!surface_object_input::pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to pack surface part of ocean "
              << "\n";
    return 0;
  }
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  surface_object_input::packing_sizes(base_ints, base_doubles, base_chars);
  long long counts[packed_counts];
  ocean_counts(counts);

  int* header = ints + base_ints;
  for (int i = 0; i < packed_counts; i++) header[i] = static_cast<int>(counts[i]);
  int* directory = header + header_ints;
  const int n_records = static_cast<int>(counts[at_records]);
  int* p = directory + directory_ints * n_records;
  double* d = doubles + base_doubles;
  char* text = chars + base_chars;

  for (int i = 0; i < n_records; i++) {
    TCGrid_details_input* record =
        i == 0 ? &primary_grid : (i == 1 ? &secondary_grid : disturbances[i - fixed_records]);
    int expected[3] = {0, 0, 0};
    record->packing_sizes(expected[0], expected[1], expected[2]);
    int* record_ints = nullptr;
    double* record_doubles = nullptr;
    char* record_chars = nullptr;
    int record_int_bytes = 0, record_double_bytes = 0, record_char_bytes = 0;
    const int packed = record->pack(record_ints, record_int_bytes, record_doubles,
                                    record_double_bytes, record_chars, record_char_bytes);
    // The record's arrays must be the sizes the ocean made room for.
    const int fits = packed && record_int_bytes == expected[0] * static_cast<int>(sizeof(int)) &&
                     record_double_bytes == expected[1] * static_cast<int>(sizeof(double)) &&
                     record_char_bytes == expected[2];
    if (fits) {
      for (int j = 0; j < expected[0]; j++) *p++ = record_ints[j];
      for (int j = 0; j < expected[1]; j++) *d++ = record_doubles[j];
      for (int j = 0; j < expected[2]; j++) *text++ = record_chars[j];
    }
    delete[] record_ints;
    delete[] record_doubles;
    delete[] record_chars;
    if (!fits) {
      std::cout << "unable to pack grid part of ocean "
                << "\n";
      return 0;
    }
    int* entry = directory + directory_ints * i;
    entry[0] = record->field_code;
    entry[1] = expected[0];
    entry[2] = expected[1];
    entry[3] = expected[2];
  }

  for (int i = 0; i < n_int_fields; i++) *p++ = this->*int_fields[i];
  for (int i = 0; i < n_double_fields; i++) *d++ = this->*double_fields[i];

  const int n_wind = static_cast<int>(counts[at_wind_values]);
  for (int i = 0; i < n_wind; i++) *d++ = wind_time[i];
  for (int i = 0; i < n_wind; i++) *d++ = wind_speed[i];
  for (int i = 0; i < n_wind; i++) *d++ = wind_direction_series[i];
  const int n_angles = static_cast<int>(counts[at_sharpening_angles]);
  for (int i = 0; i < n_angles; i++) *d++ = sharpening_angle[i];
  for (int i = 0; i < n_angles; i++) *d++ = sharpening_value[i];
  const int n_saturation = static_cast<int>(counts[at_saturation_values]);
  for (int i = 0; i < n_saturation; i++) *d++ = sub_saturation_scale[i];
  for (int i = 0; i < n_saturation; i++) *d++ = saturation_values[i];

  pack_texture_block(whitecap_textures, p, d, text + n_text_fields * text_block);
  long long texture_ints = 0, texture_doubles = 0, texture_chars = 0;
  texture_block_sizes(counts[at_whitecap_textures], counts[at_whitecap_range_values], texture_ints,
                      texture_doubles, texture_chars);
  p += texture_ints;
  d += texture_doubles;

  const int bands = static_cast<int>(counts[at_bands]);
  for (int i = 0; i < bands; i++) *p++ = band_ids[i];
  const double* optics[6] = {index_of_refraction, a, b, c, k, refl};
  for (const double* values : optics) {
    for (int i = 0; i < bands; i++) *d++ = values != nullptr ? values[i] : 0.0;
  }

  for (int i = 0; i < n_text_fields; i++) {
    copy_text(text + i * text_block, this->*text_fields[i], text_block);
  }
  return 1;
}

int ocean_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                        const char* chars, int char_bytes) {
  // Counts taken by set_sizes_from_packed serve this one unpack.
  const int result = unpack_ocean_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int ocean_input::unpack_ocean_part(const int* ints, int int_bytes, const double* doubles,
                                   int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  // Where the ocean's part starts, worked out before the surface's unpack
  // lets go of the counts it received.
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  surface_object_input::packing_sizes(base_ints, base_doubles, base_chars);
  if (base_ints < 0 || base_doubles < 0) return packed_ints_wrong();
  if (base_chars < 0) return wrong_chars();

  // With the sender's counts the version stands where this build looks for
  // it, and a sender of another layout is told apart before its sizes are
  // judged; without them the sizes must agree first.
  const int version_in_reach = int_bytes / static_cast<int>(sizeof(int)) > base_ints;
  if (has_received_counts_ && version_in_reach && ints[base_ints + at_version] != packing_version) {
    std::cout << "packing version number " << ints[base_ints + at_version] << "\n";
    return 0;
  }
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (n_ints < base_ints + header_ints || int_bytes != n_ints * static_cast<int>(sizeof(int))) {
    return packed_ints_wrong();
  }
  if (ints[base_ints + at_version] != packing_version) {
    std::cout << "packing version number " << ints[base_ints + at_version] << "\n";
    return 0;
  }
  if (n_doubles < 0 || double_bytes != n_doubles * static_cast<int>(sizeof(double))) {
    return packed_doubles_wrong();
  }
  if (n_chars < 0 || char_bytes != n_chars) return wrong_chars();

  // The counts in the array must be those the sizes were worked out from.
  long long counts[packed_counts];
  ocean_counts(counts);
  const int* header = ints + base_ints;
  for (int i = at_records; i < packed_counts; i++) {
    if (header[i] != counts[i]) return packed_ints_wrong();
  }
  // The whitecap texture block carries its counts again in its own header;
  // they must be the ones its room was sized by, or it would be read past.
  const int* whitecap_block = header + header_ints + directory_ints * header[at_records] +
                              header[at_record_ints] + n_int_fields;
  if ((whitecap_block[1] > 0 ? whitecap_block[1] : 0) != header[at_whitecap_textures] ||
      whitecap_block[2] != header[at_whitecap_range_values]) {
    return packed_ints_wrong();
  }

  // The directory must account for the records' parts exactly, each with at
  // least the ints and chars its class always packs, before anything is
  // made. Doubles vary with a record's counts (a height grid's key times
  // may be none) and are judged by the record's own unpack.
  const int n_records = header[at_records];
  const int* directory = header + header_ints;
  long long sums[3] = {0, 0, 0};
  for (int i = 0; i < n_records; i++) {
    const int* entry = directory + directory_ints * i;
    for (int j = 0; j < 3; j++) {
      if (entry[1 + j] < 0) return j == 2 ? wrong_chars() : packed_ints_wrong();
      sums[j] += entry[1 + j];
    }
  }
  if (sums[0] != header[at_record_ints]) return packed_ints_wrong();
  if (sums[1] != header[at_record_doubles]) return packed_doubles_wrong();
  if (sums[2] != header[at_record_chars]) return wrong_chars();

  const int n_new = n_records - fixed_records;
  TCGrid_details_input** made = new (std::nothrow) TCGrid_details_input*[n_new > 0 ? n_new : 1]();
  if (made == nullptr) {
    std::cout << "unable to allocate disturbance grid "
              << "\n";
    return 0;
  }
  int result = 1;
  for (int i = 0; i < n_new && result; i++) {
    made[i] = new_grid_details_input(directory[directory_ints * (i + fixed_records)]);
    if (made[i] == nullptr) {
      std::cout << "unable to allocate disturbance grid "
                << "\n";
      result = 0;
    }
  }
  TCGrid_details_input empty_grid;
  for (int i = 0; i < n_records && result; i++) {
    const TCGrid_details_input* shape = i < fixed_records ? &empty_grid : made[i - fixed_records];
    int least[3] = {0, 0, 0};
    shape->packing_sizes(least[0], least[1], least[2]);
    const int* entry = directory + directory_ints * i;
    if (entry[1] < least[0]) result = packed_ints_wrong();
    if (result && entry[3] < least[2]) result = wrong_chars();
  }

  if (result &&
      !surface_object_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to unpack surface part of ocean "
              << "\n";
    result = 0;
  }

  const int* p = directory + directory_ints * n_records;
  const double* d = doubles + base_doubles;
  const char* text = chars + base_chars;
  for (int i = 0; i < n_records && result; i++) {
    TCGrid_details_input* record =
        i == 0 ? &primary_grid : (i == 1 ? &secondary_grid : made[i - fixed_records]);
    const int* entry = directory + directory_ints * i;
    record->set_sizes_from_packed(p, d, text);
    if (!record->unpack(p, entry[1] * static_cast<int>(sizeof(int)), d,
                        entry[2] * static_cast<int>(sizeof(double)), text, entry[3])) {
      std::cout << "unable to unpack grid part of ocean "
                << "\n";
      result = 0;
    }
    p += entry[1];
    d += entry[2];
    text += entry[3];
  }
  if (!result) {
    for (int i = 0; i < n_new; i++) delete made[i];
    delete[] made;
    return 0;
  }

  clear_disturbances();
  delete[] disturbances;
  disturbances = made;
  disturbance_capacity = n_new > 0 ? n_new : 1;
  n_disturbances = n_new;
  for (int i = 0; i < n_new; i++) made[i]->parent_ocean = this;

  for (int i = 0; i < n_int_fields; i++) this->*int_fields[i] = *p++;
  for (int i = 0; i < n_double_fields; i++) this->*double_fields[i] = *d++;

  const int n_wind = header[at_wind_values];
  const int n_angles = header[at_sharpening_angles];
  const int n_saturation = header[at_saturation_values];
  if (!take_doubles(wind_time, d, n_wind) || !take_doubles(wind_speed, d, n_wind) ||
      !take_doubles(wind_direction_series, d, n_wind) ||
      !take_doubles(sharpening_angle, d, n_angles) ||
      !take_doubles(sharpening_value, d, n_angles) ||
      !take_doubles(sub_saturation_scale, d, n_saturation) ||
      !take_doubles(saturation_values, d, n_saturation)) {
    std::cout << "unable to allocate ocean arrays in unpack "
              << "\n";
    return 0;
  }
  n_wind_values = n_wind;
  n_sharpening_angles = n_angles;
  n_saturation_values = n_saturation;

  const char* texture_chars_at = text + n_text_fields * text_block;
  if (!unpack_texture_block(whitecap_textures, p, d, texture_chars_at)) {
    return packed_ints_wrong();
  }
  long long texture_ints = 0, texture_doubles = 0, texture_chars = 0;
  texture_block_sizes(header[at_whitecap_textures], header[at_whitecap_range_values], texture_ints,
                      texture_doubles, texture_chars);
  p += texture_ints;
  d += texture_doubles;

  const int bands = header[at_bands];
  if (!allocate_bands(bands)) {
    std::cout << "unable to allocate ocean arrays in unpack "
              << "\n";
    return 0;
  }
  for (int i = 0; i < bands; i++) band_ids[i] = *p++;
  double* optics[6] = {index_of_refraction, a, b, c, k, refl};
  for (double* values : optics) {
    for (int i = 0; i < bands; i++) values[i] = *d++;
  }

  for (int i = 0; i < n_text_fields; i++)
    text_from_block(this->*text_fields[i], text + i * text_block);
  return 1;
}

#include "TCAir_input.h"

#include <climits>
#include <cstring>
#include <fstream>
#include <new>
#include <string>

#include "TCData_file.h"
#include "TCObject_kinds.h"
#include "TCObject_list_input.h"
#include "TCValue_lists.h"

// Packed layout of an atmosphere, positions counted from the root's part
// (the root packs no ints and no doubles, and its name takes 256 chars).
//
// ints                       doubles
//   0 number of bands          0 surface_radius      5 aerosol_density
//   1 surface_shape            1 molecular_height    6 aerosol_scattering_factor
//   2 air_type                 2 molecular_density   7 sun_max_radiance
//   3 external_exact           3 molecular_wavelength_dependence
//   4 version                  4 aerosol_height      8 priority
//   then the band ids        then radiance_value, then haze_phase_function

namespace {

const int air_file_version = 2;

const int at_n_bands = 0;
const int fixed_ints = 5;
const int fixed_doubles = 9;

// The dirty air's forward lobe narrows by this per micrometre of band centre.
const double dirty_width_per_micrometre = 0.1064;

// No limit on the sun disc's radiance.
const double unlimited_radiance = 99999999.0;

void sizes_of(int n_bands, long long& n_ints, long long& n_doubles) {
  n_ints = fixed_ints + static_cast<long long>(n_bands);
  n_doubles = fixed_doubles + 2 * static_cast<long long>(n_bands);
}

// Any word but these three is the dirty air, misspellings included.
int air_type_code(const std::string& word) {
  if (word == "uniform") return 0;
  if (word == "clean") return 1;
  if (word == "haze") return 3;
  return 2;
}

const char* air_type_word(int code) {
  switch (code) {
    case 0:
      return "uniform";
    case 1:
      return "clean";
    case 2:
      return "dirty";
    case 3:
      return "haze";
    default:
      return nullptr;
  }
}

// Names the file and the value that cannot make light; always 0.
int refuse_value(const char* file, const char* field, double value, const char* need) {
  std::cout << "air file " << file << ": " << field << " " << value << " " << need << "\n";
  return 0;
}

int refuse_band_value(const char* file, const char* field, double value, int band,
                      const char* need) {
  std::cout << "air file " << file << ": " << field << " " << value << " of band " << band << " "
            << need << "\n";
  return 0;
}

void write_band_values(std::ostream& out, const char* keyword, const double* values, int count) {
  out << keyword;
  for (int i = 0; i < count; i++) out << "  " << values[i];
  out << "\n";
}

}  // namespace

TCAir_input::TCAir_input()
    : number_of_bands(0),
      band_id(0),
      radiance_value(nullptr),
      haze_phase_function(nullptr),
      surface_shape(1),
      air_type(1),
      surface_radius(0.0),
      molecular_height(1.0),
      molecular_density(1.0),
      molecular_wavelength_dependence(4.1),
      aerosol_height(1.0),
      aerosol_density(1.0),
      aerosol_scattering_factor(0.93),
      external_exact(0),
      sun_max_radiance(unlimited_radiance),
      has_received_counts_(0),
      received_bands_(0) {
  copy_text(object_type, "air", 256);
  copy_text(object_name, "air_type_name", 256);
  type_code = TC_KIND_AIR;
  priority = 1.0;
  version = 2;
}

TCAir_input::~TCAir_input() {
  release_arrays();
}

int TCAir_input::allocate_arrays(int count) {
  if (count < 0) return 0;
  double* radiances = new_band_values(count, 0.0);
  if (radiances == nullptr) return 0;
  double* widths = new_band_values(count, 0.95);
  if (widths == nullptr) {
    delete[] radiances;
    std::cout << "TCAir_input:: unable to allocate haze_phase_function"
              << "\n";
    return 0;
  }
  release_arrays();
  TCSpectrum bands(count);
  band_id.assign(bands);
  number_of_bands = count;
  radiance_value = radiances;
  haze_phase_function = widths;
  return 1;
}

void TCAir_input::release_arrays() {
  delete[] radiance_value;
  delete[] haze_phase_function;
  radiance_value = nullptr;
  haze_phase_function = nullptr;
  number_of_bands = 0;
}

int TCAir_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open air input file ")) return 0;
  if (read_stream(in, path)) return 1;
  return report_file_failure("unable to process air file ", path);
}

int TCAir_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open air output file ")) return 0;
  if (write_stream(out) && out.flush()) return 1;
  return report_file_failure("unable to process air output file ", path);
}

int TCAir_input::read_stream(std::istream& in, const char* name) {
  external_exact = 0;
  const int file_version = check_header(in, "air", air_file_version);
  if (file_version == 0) {
    std::cout << " TCAir_input:: cannot process air input  file "
              << "\n";
    return 0;
  }

  // The ids are read before storage is made, so that a count the file does
  // not back costs nothing.
  int count = 0;
  int* ids = nullptr;
  const int count_fits = read_counted_ints(in, INT_MAX / 8, count, ids);
  if (!count_fits || (ids != nullptr && !allocate_arrays(count))) {
    delete[] ids;
    std::cout << "TCAir_input::unable to allocate air input arrays "
              << "\n";
    return 0;
  }
  if (ids == nullptr) return 0;
  take_ints(band_id.band_id, ids, count);

  std::string word = read_keyed_text(in);
  air_type = air_type_code(word);
  // A shape word that does not read leaves the type's word in place.
  skip_token(in);
  in >> word;
  surface_shape = word == "round" ? 1 : 0;
  if (surface_shape == 1) read_keyed_double(in, surface_radius);

  if (air_type == 0) {
    for (int i = 0; i < number_of_bands; i++) read_keyed_double(in, radiance_value[i]);
  } else if (air_type >= 1 && air_type <= 3) {
    read_keyed_double(in, molecular_height);
    read_keyed_double(in, molecular_density);
    molecular_wavelength_dependence = 4.1;
    if (file_version >= 2) read_keyed_double(in, molecular_wavelength_dependence);
    if (air_type >= 2) {
      read_keyed_double(in, aerosol_height);
      read_keyed_double(in, aerosol_density);
    }
    if (air_type == 2) {
      read_keyed_double(in, aerosol_scattering_factor);
    } else if (air_type == 3) {
      skip_token(in);
      read_doubles(in, radiance_value, number_of_bands);
      skip_token(in);
      read_doubles(in, haze_phase_function, number_of_bands);
    }
  } else {
    std::cout << "air type flag invalid "
              << "\n";
    return 0;
  }
  // Everything so far is required; only the tail may be missing.
  if (!in) return 0;
  if (!values_make_light(name != nullptr ? name : "")) return 0;

  // A file that stops here has no limit and the tables on.
  sun_max_radiance = unlimited_radiance;
  if (!(in >> word) || word == "end") return 1;
  read_double(in, sun_max_radiance);
  if (sun_max_radiance < 0.0) sun_max_radiance = unlimited_radiance;
  word.clear();
  in >> word;
  if (word == "end") return 1;
  read_int(in, external_exact);
  word.clear();
  in >> word;
  if (word == "end") return 1;
  // The word and "instead" have always run together.
  std::cout << "air file invalid, read " << word << "instead of end"
            << "\n";
  return 0;
}

// Values from which the air would make NaN or negative light are refused
// here rather than discovered in a picture. Each test is written so that a
// NaN fails it.
int TCAir_input::values_make_light(const char* file) const {
  if (surface_shape == 1 && !(surface_radius > 0.0))
    return refuse_value(file, "surface_radius", surface_radius, "must be above 0");
  if (air_type == 0) {
    for (int i = 0; i < number_of_bands; i++) {
      if (!(radiance_value[i] >= 0.0))
        return refuse_band_value(file, "radiance_value", radiance_value[i], band_id.band_id[i],
                                 "must not be negative");
    }
    return 1;
  }
  if (!(molecular_height > 0.0))
    return refuse_value(file, "molecular_height", molecular_height, "must be above 0");
  if (!(molecular_density >= 0.0))
    return refuse_value(file, "molecular_density", molecular_density, "must not be negative");
  if (air_type == 1) return 1;
  if (!(aerosol_height > 0.0))
    return refuse_value(file, "aerosol_height", aerosol_height, "must be above 0");
  if (!(aerosol_density >= 0.0))
    return refuse_value(file, "aerosol_density", aerosol_density, "must not be negative");
  if (air_type == 3) {
    // A lobe of width 1 or more has a weight of 0 or below and a pole.
    for (int i = 0; i < number_of_bands; i++) {
      const double g = haze_phase_function[i];
      if (!(g > -1.0 && g < 1.0))
        return refuse_band_value(file, "aerosol_scattering_width", g, band_id.band_id[i],
                                 "must lie strictly between -1 and 1");
    }
    return 1;
  }
  // The dirty air's forward lobe is the factor less 0.1064 per micrometre
  // of the band's centre; the list's band table gives the centres.
  if (list == nullptr) return 1;
  for (int i = 0; i < number_of_bands; i++) {
    for (int k = 0; k < list->number_of_bands; k++) {
      if (list->objects_spectrum[k].band_id != band_id.band_id[i]) continue;
      const double g = aerosol_scattering_factor -
                       dirty_width_per_micrometre * list->objects_spectrum[k].center_wavelength;
      if (!(g > -1.0 && g < 1.0)) {
        std::cout << "air file " << file << ": aerosol_scattering_factor "
                  << aerosol_scattering_factor << " gives band " << band_id.band_id[i]
                  << " a scattering width of " << g << ", which must lie strictly between -1 and 1"
                  << "\n";
        return 0;
      }
    }
  }
  return 1;
}

int TCAir_input::write_stream(std::ostream& out) const {
  const char* kind = air_type_word(air_type);
  if (kind == nullptr) {
    std::cout << "air type flag invalid "
              << "\n";
    return 0;
  }
  if (surface_shape != 0 && surface_shape != 1) {
    std::cout << "air surface type invalid "
              << "\n";
    return 0;
  }
  out << "Tidecast_data_file air " << air_file_version << " " << air_file_version << " "
      << "\n";
  set_file_precision(out);
  out << "number_of_bands " << number_of_bands << "\n";
  out << "band_id ";
  for (int i = 0; i < number_of_bands; i++) out << " " << band_id.band_id[i];
  out << "\n";
  out << "air_type: " << kind << "\n";
  out << "surface_shape " << (surface_shape == 1 ? "round" : "flat") << "\n";
  if (surface_shape == 1) out << "surface_radius " << surface_radius << "\n";

  if (air_type == 0) {
    for (int i = 0; i < number_of_bands; i++) {
      out << "radiance_value " << radiance_value[i] << "\n";
    }
  } else {
    out << "molecular_height " << molecular_height << "\n";
    out << "molecular_density " << molecular_density << "\n";
    out << "molecular_wavelength_dependence:  " << molecular_wavelength_dependence << "\n";
    if (air_type >= 2) {
      out << "aerosol_height " << aerosol_height << "\n";
      out << "aerosol_density " << aerosol_density << "\n";
    }
    if (air_type == 2) {
      out << "aerosol_scattering_factor " << aerosol_scattering_factor << "\n";
    } else if (air_type == 3) {
      write_band_values(out, "aerosol_scattering_strength:  ", radiance_value, number_of_bands);
      write_band_values(out, "aerosol_scattering_width:  ", haze_phase_function, number_of_bands);
    }
  }
  out << "sun_max_radiance " << sun_max_radiance << "\n";
  out << (external_exact ? "external_exact 1 " : "external_exact 0 ") << "\n";
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

void TCAir_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
  const int n_bands = has_received_counts_ ? received_bands_ : number_of_bands;
  long long own_ints = 0, own_doubles = 0;
  sizes_of(n_bands, own_ints, own_doubles);
  // -1 marks a count no array could hold; pack and unpack refuse it.
  const int sound = n_bands >= 0;
  n_ints = packed_count(n_ints + own_ints, sound);
  n_doubles = packed_count(n_doubles + own_doubles, sound);
  n_chars = packed_count(n_chars, sound);
}

void TCAir_input::set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) {
  TCObject_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_bands_ = ints[base_ints + at_n_bands];
  has_received_counts_ = 1;
}

int TCAir_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
                      int& char_bytes) {
  has_received_counts_ = 0;
  // The char and root words say "camera": the historic texts are kept.
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      "unable to allocate camera character packing array ",
                      "unable to allocate air integer packing array ",
                      "unable to allocate air double packing array ",
                      "unable to pack object part of camera ", base_ints, base_doubles,
                      base_chars)) {
    return 0;
  }
  int* p = ints + base_ints;
  p[at_n_bands] = number_of_bands;
  p[1] = surface_shape;
  p[2] = air_type;
  p[3] = external_exact;
  p[4] = version;
  for (int i = 0; i < number_of_bands; i++) p[fixed_ints + i] = band_id.band_id[i];

  double* d = doubles + base_doubles;
  d[0] = surface_radius;
  d[1] = molecular_height;
  d[2] = molecular_density;
  d[3] = molecular_wavelength_dependence;
  d[4] = aerosol_height;
  d[5] = aerosol_density;
  d[6] = aerosol_scattering_factor;
  d[7] = sun_max_radiance;
  d[8] = priority;
  d += fixed_doubles;
  for (int i = 0; i < number_of_bands; i++) *d++ = radiance_value[i];
  for (int i = 0; i < number_of_bands; i++) *d++ = haze_phase_function[i];
  return 1;
}

int TCAir_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                        const char* chars, int char_bytes) {
  const int result = unpack_air_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int TCAir_input::unpack_air_part(const int* ints, int int_bytes, const double* doubles,
                                 int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  if (!packed_numbers_fit(n_ints, base_ints + fixed_ints, int_bytes, n_doubles, 0, double_bytes)) {
    return 0;
  }
  const int* p = ints + base_ints;
  const int n_bands = p[at_n_bands];
  long long want_ints = 0, want_doubles = 0;
  sizes_of(n_bands, want_ints, want_doubles);
  if (n_bands < 0 || base_ints + want_ints != n_ints) return packed_ints_wrong();
  if (base_doubles + want_doubles != n_doubles) return packed_doubles_wrong();

  if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to unpack object part of camera "
              << "\n";
    return 0;
  }
  if (!allocate_arrays(n_bands)) {
    std::cout << "unable to allocate air arrays for unpacking "
              << "\n";
    return 0;
  }
  for (int i = 0; i < n_bands; i++) band_id.band_id[i] = p[fixed_ints + i];
  surface_shape = p[1];
  air_type = p[2];
  external_exact = p[3];
  version = p[4];

  const double* d = doubles + base_doubles;
  surface_radius = d[0];
  molecular_height = d[1];
  molecular_density = d[2];
  molecular_wavelength_dependence = d[3];
  aerosol_height = d[4];
  aerosol_density = d[5];
  aerosol_scattering_factor = d[6];
  sun_max_radiance = d[7];
  priority = d[8];
  d += fixed_doubles;
  for (int i = 0; i < n_bands; i++) radiance_value[i] = *d++;
  for (int i = 0; i < n_bands; i++) haze_phase_function[i] = *d++;
  return 1;
}

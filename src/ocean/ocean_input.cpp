#include "ocean_input.h"

#include <climits>
#include <fstream>
#include <new>
#include <string>

#include "TCConstants.h"
#include "TCData_file.h"
#include "TCDisturbance_inputs.h"
#include "TCObject_kinds.h"
#include "TCOcean_words.h"
#include "TCValue_lists.h"

namespace {

const int text_block = 256;

// Water types with tabled optics, and 0 for the file's own values.
const int first_water_type = 0;
const int last_water_type = 5;

// Disturbance records the list makes room for at first; it then doubles.
const int first_disturbance_capacity = 4;

// The yes-or-no switches of the file: only "yes" sets one.
int read_switch(std::istream& in) {
  return ocean_yes_no_code(read_keyed_text(in).c_str());
}

// Sums of counts and flags as file values can make them: modulo 2^32 like
// the engine's ints have always been, rather than undefined at the ends.
int wrapped_sum(int a, int b) {
  return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
}

int spectrum_is_supported(int code) {
  return code == ocean_spectrum_phillips || code == ocean_spectrum_phillips_smoothed ||
         code == ocean_spectrum_glassy;
}

// The two glitter models that take sharpening, threshold and saturation.
int glitter_is_enhanced(int code) {
  return code == ocean_glitter_enhanced || code == ocean_glitter_exact_enhanced;
}

// The external-exact modes that carry their lines; every other code is
// written "no".
int external_exact_is_on(int code) {
  return code == ocean_external_exact_yes || code == ocean_external_exact_no_air;
}

const char* shadow_word(int code) {
  return code == 0 ? "no" : (code == 1 ? "yes" : nullptr);
}

// A lattice filled by a real inverse transform (the wave spectra and the
// swell) pairs each row and column with its mirror, which an odd count cannot
// do, and the transform refuses an odd n_points_x. Such a lattice is refused
// here, naming it and the count; 1 when both counts are even.
int lattice_is_even(const TCGrid_details_input& grid, const std::string& lattice) {
  const char* axis = nullptr;
  int count = 0;
  if (grid.n_x % 2 != 0) {
    axis = "n_points_x";
    count = grid.n_x;
  } else if (grid.n_y % 2 != 0) {
    axis = "n_points_y";
    count = grid.n_y;
  }
  if (axis == nullptr) return 1;
  std::cout << lattice << " lattice has an odd " << axis << " of " << count
            << ": wave lattices need even numbers of points"
            << "\n";
  return 0;
}

// The disturbances whose lattice a wave spectrum fills.
int disturbance_is_spectral(int code) {
  return code == ocean_disturbance_grid || code == ocean_disturbance_swell;
}

}  // namespace

ocean_input::ocean_input()
    : number_aux_oceans(0),
      n_disturbances(0),
      disturbances(nullptr),
      box_depth(20.0),
      reference_time(0.0),
      round_surface(0),
      surface_radius(0.0),
      max_distance(0.0),
      doubling_distance(0.0),
      variable_wind(0),
      n_wind_values(0),
      wind_time(nullptr),
      wind_speed(nullptr),
      wind_direction_series(nullptr),
      wind_direction(0.0),
      wind_velocity(0.0),
      ocean_spectrum_type(ocean_spectrum_phillips_smoothed),
      glassy_scale(0.0),
      jerlov_water_type(3),
      external_exact(ocean_external_exact_none),
      max_exact_distance(0.0),
      exact_sharpening_factor(1.0),
      include(ocean_include_nothing),
      reflection_method(ocean_reflection_specular),
      shadow_method(0),
      max_shadow_fraction(1.0),
      shadow_distance(tc_nothing),
      glitter(ocean_glitter_off),
      sharpening_type(0),
      sharpening_factor(1.0),
      n_sharpening_angles(0),
      sharpening_angle(nullptr),
      sharpening_value(nullptr),
      glitter_threshold(0.0),
      saturation_type(0),
      saturation_band(0),
      saturation_threshold(0.0),
      n_saturation_values(0),
      sub_saturation_scale(nullptr),
      saturation_values(nullptr),
      whitecaps(0),
      whitecap_center_x(0.0),
      whitecap_center_y(0.0),
      whitecap_length_x(0.0),
      whitecap_length_y(0.0),
      whitecap_interval_x(0.0),
      whitecap_interval_y(0.0),
      whitecap_max_distance(0.0),
      whitecap_reference_time(0.0),
      whitecap_time_increment(0.0),
      whitecap_initialization_time(0.0),
      whitecap_initialization_increment(0.0),
      whitecap_formation_time(0.0),
      whitecap_decay_time(0.0),
      acceleration_threshold_low(0.0),
      acceleration_threshold_high(0.0),
      whitecap_reflectivity_low(0.0),
      whitecap_reflectivity_high(0.0),
      smear_x(0.0),
      smear_y(0.0),
      smear_t(0.0),
      acceleration_time_offset(0.0),
      whitecap_generation(0),
      fluctuation_mode(0),
      fluctuation_n_x(0),
      fluctuation_n_y(0),
      fluctuation_dx(0.0),
      fluctuation_dy(0.0),
      fluctuation_seed(0),
      fluctuation_length_scale(0.0),
      fluctuation_power_law(0.0),
      fluctuation_time_scale(0.0),
      fluctuation_log_normal_width(0.0),
      texture_maps(0),
      cusps(0),
      cusps_scale(0.0),
      exclude_mask(0),
      render_disturbances_interior(ocean_interior_black),
      number_of_bands(0),
      band_ids(nullptr),
      index_of_refraction(nullptr),
      a(nullptr),
      b(nullptr),
      c(nullptr),
      k(nullptr),
      refl(nullptr),
      has_received_counts_(0),
      disturbance_capacity(0) {
  for (int i = 0; i < packed_counts; i++) received_[i] = 0;
  copy_text(object_type, "ocean", text_block);
  copy_text(object_name, "ocean", text_block);
  type_code = TC_KIND_OCEAN;
  primary_grid.carries_periodicity = 1;
  primary_grid.parent_ocean = this;
  secondary_grid.parent_ocean = this;
  copy_text(wind_file, "ocean_wind_file.dat", text_block);
  copy_text(sharpening_file, "sharpening_file.dat", text_block);
  copy_text(whitecap_file, "ocean_whitecaps_file.dat", text_block);
  copy_text(initial_state_file, "ocean_whitecaps_state.dat", text_block);
  copy_text(frame_file, "ocean_whitecaps_frame", text_block);
}

ocean_input::~ocean_input() {
  clear_disturbances();
  delete[] disturbances;
  delete[] wind_time;
  delete[] wind_speed;
  delete[] wind_direction_series;
  delete[] sharpening_angle;
  delete[] sharpening_value;
  delete[] sub_saturation_scale;
  delete[] saturation_values;
  release_bands();
}

// ---- Bands ----

int ocean_input::allocate_bands(int count) {
  if (count < 0) {
    std::cout << "unable to allocate index of refraction array "
              << "\n";
    return 0;
  }
  if (count == 0) {
    release_bands();
    return 1;
  }
  int* ids = new (std::nothrow) int[count]();
  double* index = new_band_values(count, 1.34);
  if (ids == nullptr || index == nullptr) {
    delete[] ids;
    delete[] index;
    std::cout << "unable to allocate index of refraction array "
              << "\n";
    return 0;
  }
  double* optics[5];
  if (!new_band_lists(count, optics, 5)) {
    delete[] ids;
    delete[] index;
    std::cout << "unable to allocate optical array "
              << "\n";
    return 0;
  }
  release_bands();
  number_of_bands = count;
  band_ids = ids;
  index_of_refraction = index;
  a = optics[0];
  b = optics[1];
  c = optics[2];
  k = optics[3];
  refl = optics[4];
  return 1;
}

void ocean_input::release_bands() {
  delete[] band_ids;
  delete[] index_of_refraction;
  delete[] a;
  delete[] b;
  delete[] c;
  delete[] k;
  delete[] refl;
  band_ids = nullptr;
  index_of_refraction = nullptr;
  a = nullptr;
  b = nullptr;
  c = nullptr;
  k = nullptr;
  refl = nullptr;
  number_of_bands = 0;
}

int ocean_input::allocate_saturation() {
  double* lists[2];
  if (!new_band_lists(number_of_bands, lists, 2)) return 0;
  delete[] sub_saturation_scale;
  delete[] saturation_values;
  sub_saturation_scale = lists[0];
  saturation_values = lists[1];
  n_saturation_values = number_of_bands;
  return 1;
}

// ---- Disturbances ----

TCGrid_details_input* ocean_input::add_disturbance(int code) {
  if (n_disturbances == disturbance_capacity) {
    const int capacity = disturbance_capacity < first_disturbance_capacity
                             ? first_disturbance_capacity
                             : (disturbance_capacity > INT_MAX / 2 ? 0 : 2 * disturbance_capacity);
    TCGrid_details_input** more =
        capacity > 0 ? new (std::nothrow) TCGrid_details_input*[capacity]() : nullptr;
    if (more == nullptr) {
      std::cout << "unable to allocate disturbance grid "
                << "\n";
      return nullptr;
    }
    for (int i = 0; i < n_disturbances; i++) more[i] = disturbances[i];
    delete[] disturbances;
    disturbances = more;
    disturbance_capacity = capacity;
  }
  TCGrid_details_input* record = new_grid_details_input(code);
  if (record == nullptr) {
    std::cout << "unable to allocate disturbance grid "
              << "\n";
    return nullptr;
  }
  record->parent_ocean = this;
  disturbances[n_disturbances++] = record;
  return record;
}

int ocean_input::remove_disturbance(TCGrid_details_input* record) {
  for (int i = 0; record != nullptr && i < n_disturbances; i++) {
    if (disturbances[i] != record) continue;
    delete record;
    for (int j = i + 1; j < n_disturbances; j++) disturbances[j - 1] = disturbances[j];
    n_disturbances--;
    disturbances[n_disturbances] = nullptr;
    return 1;
  }
  return 0;
}

void ocean_input::clear_disturbances() {
  for (int i = 0; i < n_disturbances; i++) {
    delete disturbances[i];
    disturbances[i] = nullptr;
  }
  n_disturbances = 0;
}

TCGrid_details_input* ocean_input::disturbance(int i) const {
  return (i >= 0 && i < n_disturbances) ? disturbances[i] : nullptr;
}

// ---- The file ----

int ocean_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open ocean input file ")) return 0;
  if (read(in)) return 1;
  return report_file_failure("unable to process ocean file ", path);
}

int ocean_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open ocean output file ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write(out) && out.flush()) return 1;
  return report_file_failure("unable to process ocean output file ", path);
}

int ocean_input::read(std::istream& in) {
  const int version = check_header(in, "ocean", newest_reader);
  if (version == 0) {
    std::cout << "unable to process ocean file "
              << "\n";
    return 0;
  }
  if (!read_grids(in)) return 0;
  // Each group is read only while the stream holds. A value that did not
  // read leaves the stream failed where it stopped, and the closing check
  // shows that word, rather than a later group taking an empty word for a
  // choice it refuses.
  if (in && !read_disturbances(in, version)) return 0;
  read_keyed_double(in, box_depth);
  read_keyed_double(in, reference_time);
  if (in && !read_surface_and_wind(in)) return 0;
  if (in && !read_spectrum_and_water(in)) return 0;
  if (in && !read_external_exact(in, version)) return 0;
  if (in && !read_glitter(in)) return 0;
  if (in && !read_whitecaps_and_textures(in, version)) return 0;
  cusps = read_switch(in);
  if (cusps) read_keyed_double(in, cusps_scale);
  if (in && !read_exclusions(in, version)) return 0;
  if (in && !read_bands(in)) return 0;

  std::string word;
  if (read_end_word(in, word)) return 1;
  std::cout << "ocean input file is invalid, read " << word << " instead of end"
            << "\n";
  return 0;
}

int ocean_input::read_grids(std::istream& in) {
  if (!primary_grid.read_grid_block(in)) {
    std::cout << "unable to process primary grid "
              << "\n";
    return 0;
  }
  if (!lattice_is_even(primary_grid, "primary")) return 0;
  read_keyed_int(in, number_aux_oceans);
  // However many further oceans are named, one block follows; the object
  // refuses more than one.
  if (number_aux_oceans != 0) {
    if (!secondary_grid.read_grid_block(in)) {
      std::cout << "unable to process secondary grid "
                << "\n";
      return 0;
    }
    if (!lattice_is_even(secondary_grid, "secondary")) return 0;
    secondary_grid.periodic_x = primary_grid.periodic_x;
    secondary_grid.periodic_y = primary_grid.periodic_y;
  }
  return 1;
}

int ocean_input::read_disturbances(std::istream& in, int version) {
  int count = 0;
  read_keyed_int(in, count);
  clear_disturbances();
  render_disturbances_interior = ocean_interior_black;
  if (count == 0) return 1;
  if (version >= 4) {
    render_disturbances_interior = ocean_interior_code(read_keyed_text(in).c_str());
  }
  // Records are made as their blocks arrive, so a wild count costs no more
  // than the file holds.
  for (int i = 0; i < count; i++) {
    const std::string word = read_keyed_text(in);
    if (!in) return 1;
    TCGrid_details_input* record = add_disturbance(ocean_disturbance_type_code(word.c_str()));
    if (record == nullptr) {
      std::cout << "unable to allocate disturbance " << word << "\n";
      return 0;
    }
    if (!record->read_grid_block(in)) {
      std::cout << "unable to process disturbance stream of " << word << "\n";
      return 0;
    }
    if (disturbance_is_spectral(record->field_code) &&
        !lattice_is_even(*record, "disturbance " + std::to_string(i + 1) + " (" + word + ")")) {
      return 0;
    }
    if (!record->read_file(record->detail_file)) {
      std::cout << "unable to read detail file of " << word << "\n";
      return 0;
    }
  }
  return 1;
}

int ocean_input::read_surface_and_wind(std::istream& in) {
  round_surface = ocean_surface_type_code(read_keyed_text(in).c_str());
  if (round_surface) {
    read_keyed_double(in, surface_radius);
  } else {
    surface_radius = 0.0;
  }
  read_keyed_double(in, max_distance);
  read_keyed_double(in, doubling_distance);

  variable_wind = read_switch(in);
  if (variable_wind) {
    read_keyed_word(in, wind_file, text_block);
    if (in && !read_variable_wind(wind_file)) {
      std::cout << "unable to process variable wind file " << wind_file << "\n";
      return 0;
    }
  } else {
    read_keyed_angle(in, wind_direction);
    read_keyed_double(in, wind_velocity);
  }
  return 1;
}

int ocean_input::read_spectrum_and_water(std::istream& in) {
  const std::string spectrum = read_keyed_text(in);
  if (!in) return 1;
  ocean_spectrum_type = ocean_spectrum_code(spectrum.c_str());
  // Only the Phillips family is generated; "flat" and "dp" have words and
  // are refused all the same.
  if (!spectrum_is_supported(ocean_spectrum_type)) {
    std::cout << "non-phillips ocean spectra not yet supported "
              << "\n";
    return 0;
  }
  if (ocean_spectrum_type == ocean_spectrum_glassy) read_keyed_double(in, glassy_scale);
  if (!read_keyed_int(in, jerlov_water_type)) return 1;
  if (jerlov_water_type < first_water_type || jerlov_water_type > last_water_type) {
    std::cout << "jerlov water type " << jerlov_water_type << " not yet supported"
              << "\n";
    return 0;
  }
  return 1;
}

int ocean_input::read_external_exact(std::istream& in, int version) {
  external_exact = ocean_external_exact_code(read_keyed_text(in).c_str());
  if (external_exact == ocean_external_exact_none) {
    include = ocean_include_nothing;
    max_exact_distance = 0.0;
    return 1;
  }
  read_keyed_double(in, max_exact_distance);
  if (version >= 3) {
    read_keyed_double(in, exact_sharpening_factor);
  } else {
    exact_sharpening_factor = 1.0;
  }
  include = ocean_include_code(read_keyed_text(in).c_str());
  // Rays that serve nothing are no coupling; the lines after are read all
  // the same.
  if (include == ocean_include_nothing) external_exact = ocean_external_exact_none;
  if (version >= 5) {
    reflection_method = ocean_reflection_method_code(read_keyed_text(in).c_str());
    shadow_method = read_switch(in);
    if (shadow_method) {
      read_keyed_double(in, max_shadow_fraction);
      read_keyed_double(in, shadow_distance);
    }
  } else {
    reflection_method = ocean_reflection_specular;
    shadow_method = 0;
    max_shadow_fraction = 1.0;
    shadow_distance = tc_nothing;
  }
  return 1;
}

int ocean_input::read_glitter(std::istream& in) {
  glitter = ocean_glitter_code(read_keyed_text(in).c_str());
  if (!glitter_is_enhanced(glitter)) {
    // No sharpening or saturation lines: neither is in use.
    sharpening_type = 0;
    saturation_type = 0;
    return 1;
  }
  sharpening_type = read_switch(in);
  if (sharpening_type) {
    read_keyed_word(in, sharpening_file, text_block);
    if (in && !read_sharpening(sharpening_file)) {
      std::cout << "error in processeing sharpening file " << sharpening_file << "\n";
      return 0;
    }
  } else {
    read_keyed_double(in, sharpening_factor);
  }
  read_keyed_double(in, glitter_threshold);
  saturation_type = read_switch(in);
  return 1;
}

int ocean_input::read_whitecaps_and_textures(std::istream& in, int version) {
  if (version < 2) {
    whitecaps = 0;
    texture_maps = 0;
    return 1;
  }
  whitecaps = read_switch(in);
  if (whitecaps) {
    read_keyed_word(in, whitecap_file, text_block);
    if (in && !read_whitecaps(whitecap_file)) {
      std::cout << "unable to read whitecaps file " << whitecap_file << "\n";
      return 0;
    }
  }
  texture_maps = read_switch(in);
  if (texture_maps && in && !textures.process_texture_grid_input(in)) {
    std::cout << "unable to process ocean texture maps "
              << "\n";
    return 0;
  }
  return 1;
}

int ocean_input::read_exclusions(std::istream& in, int version) {
  exclude_mask = 0;
  if (version < 4) return 1;
  if (!read_switch(in)) return 1;
  int count = 0;
  if (!read_keyed_int(in, count)) return 1;
  if (count < 1 || count > 3) {
    std::cout << "unable to exclude items from ocean texture\n";
    return 0;
  }
  for (int i = 0; i < count; i++) {
    std::string word;
    in >> word;
    if (!in) return 1;
    const int item = ocean_exclude_item_code(word.c_str());
    if (item == 0) return 0;  // the word table has said why
    exclude_mask |= item;
  }
  return 1;
}

int ocean_input::read_bands(std::istream& in) {
  int count = 0;
  // A count that does not read leaves the stream failed: the closing check
  // shows where.
  if (!read_keyed_int(in, count)) return 1;
  if (count < 1) {
    std::cout << "number of bands must be positive "
              << "\n";
    return 0;
  }
  // The ids come first, so that storage for the count is only made once the
  // stream has shown that it holds that many values.
  skip_token(in);
  int* ids = read_int_list(in, count);
  if (ids == nullptr) {
    if (in.fail()) return 1;
    std::cout << "unable to allocate optical arrays "
              << "\n";
    return 0;
  }
  if (!allocate_bands(count)) {
    delete[] ids;
    std::cout << "unable to allocate optical arrays "
              << "\n";
    return 0;
  }
  take_ints(band_ids, ids, count);
  skip_token(in);
  read_doubles(in, index_of_refraction, count);
  if (jerlov_water_type == 0) {
    double* optics[5] = {a, b, c, k, refl};
    for (double* values : optics) {
      skip_token(in);
      read_doubles(in, values, count);
    }
  }
  if (saturation_type) {
    if (!allocate_saturation()) {
      std::cout << "unable to allocate glitter saturation array "
                << "\n";
      return 0;
    }
    int band = 0;
    if (read_keyed_int(in, band)) saturation_band = wrapped_sum(band, -1);
    read_keyed_double(in, saturation_threshold);
    skip_token(in);
    read_doubles(in, sub_saturation_scale, count);
    skip_token(in);
    read_doubles(in, saturation_values, count);
  }
  return 1;
}

// ---- Writing ----

int ocean_input::has_words() const {
  if (ocean_spectrum_word(ocean_spectrum_type) == nullptr) {
    std::cout << "ocean spectrum type not supported "
              << "\n";
    return 0;
  }
  if (n_disturbances != 0 && ocean_interior_word(render_disturbances_interior) == nullptr) {
    std::cout << "image_water_within_objects_flag value not supported "
              << "\n";
    return 0;
  }
  for (int i = 0; i < n_disturbances; i++) {
    if (ocean_disturbance_type_word(disturbances[i]->field_code) == nullptr) {
      std::cout << "illegal ocean type " << disturbances[i]->field_code << "\n";
      return 0;
    }
  }
  if (external_exact_is_on(external_exact)) {
    if (ocean_include_word(include) == nullptr) {
      std::cout << "illegal value of external_exact_include_flag "
                << "\n";
      return 0;
    }
    if (ocean_reflection_method_word(reflection_method) == nullptr) {
      std::cout << "illegal value of external_exact_reflection_method_flag "
                << "\n";
      return 0;
    }
    if (shadow_word(shadow_method) == nullptr) {
      std::cout << "illegal value of external_exact_shadow_method_flag "
                << "\n";
      return 0;
    }
  }
  if (ocean_glitter_word(glitter) == nullptr) {
    std::cout << "illegal glitter flag value "
              << "\n";
    return 0;
  }
  return 1;
}

int ocean_input::write(std::ostream& out) const {
  if (!has_words()) return 0;
  set_file_precision(out);
  write_header(out, "ocean", file_version);
  if (!primary_grid.write_grid_block(out)) {
    std::cout << "unable to process primary grid "
              << "\n";
    return 0;
  }
  out << "number_aux_oceans  " << number_aux_oceans << "\n";
  if (number_aux_oceans != 0 && !secondary_grid.write_grid_block(out)) {
    std::cout << "unable to process secondary grid "
              << "\n";
    return 0;
  }
  if (!write_disturbances(out)) return 0;
  set_file_precision(out);
  out << "box_depth  " << box_depth << "\n";
  out << "reference_time  " << reference_time << "\n";
  if (round_surface) {
    out << "surface_type:  round "
        << "\n";
    out << "surface_radius:  " << surface_radius << "\n";
  } else {
    out << "surface_type:  flat "
        << "\n";
  }
  out << "max_distance  " << max_distance << "\n";
  out << "doubling_distance  " << doubling_distance << "\n";

  if (variable_wind) {
    out << "variable_wind:   yes "
        << "\n";
    out << "wind_file:  " << wind_file << "\n";
    if (!write_variable_wind(wind_file)) {
      std::cout << "unable to generate variable wind file "
                << "\n";
      return 0;
    }
  } else {
    out << "variable_wind:  no "
        << "\n";
    out << "wind_direction:  " << degrees_for_file(wind_direction) << "\n";
    out << "wind_velocity:  " << wind_velocity << "\n";
  }

  out << "ocean_spectrum_type:  " << ocean_spectrum_word(ocean_spectrum_type) << "\n";
  if (ocean_spectrum_type == ocean_spectrum_glassy) {
    out << "glassy_scale:  " << glassy_scale << "\n";
  }
  // A type the reader would refuse is left out, not written.
  if (jerlov_water_type >= first_water_type && jerlov_water_type <= last_water_type) {
    out << "jerlov_water_type:  " << jerlov_water_type << "\n";
  }

  if (external_exact_is_on(external_exact)) {
    out << "external_exact:  " << ocean_external_exact_word(external_exact) << "\n";
    out << "max_exact_distance:  " << max_exact_distance << "\n";
    out << "exact_sharpening_factor:  " << exact_sharpening_factor << "\n";
    out << "include:  " << ocean_include_word(include) << "\n";
    out << "reflection_method:  " << ocean_reflection_method_word(reflection_method) << "\n";
    out << "shadow_method:  " << shadow_word(shadow_method) << "\n";
    if (shadow_method) {
      out << "max_shadow_fraction:  " << max_shadow_fraction << "\n";
      out << "shadow_distance:  " << shadow_distance << "\n";
    }
  } else {
    out << "external_exact:  no"
        << "\n";
  }

  out << "glitter:  " << ocean_glitter_word(glitter) << "\n";
  if (glitter_is_enhanced(glitter)) {
    if (sharpening_type) {
      out << "sharpening_type:    yes"
          << "\n";
      out << "sharpening_file:  " << sharpening_file << "\n";
      if (!write_sharpening(sharpening_file)) {
        std::cout << "error in writing sharpening file "
                  << "\n";
        return 0;
      }
    } else {
      out << "sharpening_type:   no "
          << "\n";
      out << "sharpening_factor:  " << sharpening_factor << "\n";
    }
    out << "glitter_threshold:  " << glitter_threshold << "\n";
    out << (saturation_type ? "saturation_type:   yes  " : "saturation_type:   no  ") << "\n";
  }

  if (whitecaps) {
    out << "whitecaps:  yes"
        << "\n";
    out << "whitecap_file:  " << whitecap_file << "\n";
    if (!write_whitecaps(whitecap_file)) {
      std::cout << "unable to write whitecap file "
                << "\n";
      return 0;
    }
  } else {
    out << "whitecaps: no"
        << "\n";
  }
  if (texture_maps) {
    out << "texture_maps:  yes"
        << "\n";
    if (!textures.print_texture_grid_input(out)) return 0;
    set_file_precision(out);
  } else {
    out << "texture_maps:  no "
        << "\n";
  }

  // The keyword of the "no" form has always been another one; it is never
  // compared.
  if (cusps) {
    out << "cusps:   yes"
        << "\n";
    out << "cusps_scale:  " << cusps_scale << "\n";
  } else {
    out << "sunbeams:  no"
        << "\n";
  }
  // Exclusions are not carried into a written file.
  out << "exclude_items:   no "
      << "\n";

  if (!write_optics(out)) return 0;
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

int ocean_input::write_disturbances(std::ostream& out) const {
  out << "number_disturbances  " << n_disturbances << "\n";
  if (n_disturbances == 0) return 1;
  out << "render_disturbances_interior:  " << ocean_interior_word(render_disturbances_interior)
      << "\n";
  for (int i = 0; i < n_disturbances; i++) {
    TCGrid_details_input* record = disturbances[i];
    const char* word = ocean_disturbance_type_word(record->field_code);
    out << "disturbance_type:  " << word << "\n";
    if (!record->write_grid_block(out)) {
      std::cout << "unable to process disturbance stream of " << word << "\n";
      return 0;
    }
    // The detail file under the name the block gives, so that the written
    // file reads.
    if (!record->write_file(record->detail_file)) {
      std::cout << "unable to write detail file of " << word << "\n";
      return 0;
    }
  }
  return 1;
}

void ocean_input::write_values(std::ostream& out, const char* keyword, const double* values,
                               int stored) const {
  out << keyword;
  for (int i = 0; i < number_of_bands; i++) {
    out << " " << ((values != nullptr && i < stored) ? values[i] : 0.0);
  }
  out << "\n";
}

int ocean_input::write_optics(std::ostream& out) const {
  set_file_precision(out);
  out << "number_of_bands:  " << number_of_bands << "\n";
  out << "band_ids: ";
  for (int i = 0; i < number_of_bands; i++) out << " " << band_ids[i];
  out << "\n";
  write_values(out, "index_of_refraction: ", index_of_refraction, number_of_bands);
  if (jerlov_water_type == 0) {
    write_values(out, "a: ", a, number_of_bands);
    write_values(out, "b: ", b, number_of_bands);
    write_values(out, "c: ", c, number_of_bands);
    write_values(out, "k: ", k, number_of_bands);
    write_values(out, "refl: ", refl, number_of_bands);
  }
  // Only where the reader looks for them: after an enhanced glitter's yes.
  if (saturation_type && glitter_is_enhanced(glitter)) {
    out << "saturation_band:  " << wrapped_sum(saturation_band, 1) << "\n";
    out << "saturation_threshold:  " << saturation_threshold << "\n";
    write_values(out, "sub_saturation_scale: ", sub_saturation_scale, n_saturation_values);
    write_values(out, "saturation_values: ", saturation_values, n_saturation_values);
  }
  return 1;
}

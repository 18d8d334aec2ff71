#ifndef TC_TESTS_OCEAN_TEST_RECORDS_H
#define TC_TESTS_OCEAN_TEST_RECORDS_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "TCData_file.h"
#include "TCGrid_details_input.h"
#include "TCOcean_textures_input.h"
#include "ocean_input.h"
#include "stream_capture.h"

// Ocean files for the tests: the fixtures under data/ocean, small files
// built in place, and a field-by-field comparison of two records.

inline std::string ocean_data_dir() {
  return std::string(TC_TEST_DATA_DIR) + "/ocean";
}

// The fixtures name their side files relative to their own folder; while
// one of these lives the process works there.
class Working_folder {
 public:
  explicit Working_folder(const std::string& path) {
    char buffer[4096];
    old_ = getcwd(buffer, sizeof(buffer)) ? buffer : "";
    ok_ = chdir(path.c_str()) == 0;
  }
  ~Working_folder() {
    if (!old_.empty() && chdir(old_.c_str()) != 0) std::cerr << "cannot return to " << old_ << "\n";
  }
  bool ok() const { return ok_; }

 private:
  std::string old_;
  bool ok_;
};

inline std::string file_text(const std::string& path) {
  std::ifstream in(path.c_str());
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

inline void put_file(const std::string& path, const std::string& text) {
  std::ofstream out(path.c_str());
  out << text;
}

// Reads text into ocean; the result, and what was printed in printed.
inline int read_ocean_text(ocean_input& ocean, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = ocean.read(in);
  printed = out.text();
  return result;
}

inline std::string written_ocean(const ocean_input& ocean, int& result, std::string& printed) {
  std::ostringstream out;
  Stream_capture capture(std::cout);
  result = ocean.write(out);
  printed = capture.text();
  return out.str();
}

// Replaces the first occurrence of from by to; fails the test when from is
// not there, so that a changed fixture cannot quietly test nothing.
inline std::string replaced(const std::string& text, const std::string& from,
                            const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << "not in the text: " << from;
  if (at == std::string::npos) return text;
  return text.substr(0, at) + to + text.substr(at + from.size());
}

// The smallest complete ocean file of each version, keywords as the writer
// spells them: one primary grid, no disturbances, a flat sea with a steady
// wind, no exact rays, plain glitter, one band.
inline std::string plain_ocean(int version) {
  std::ostringstream text;
  text << "Tidecast_data_file ocean " << version << " " << version << "\n"
       << "n_points_x 32 1\n"
          "n_points_y 16 1\n"
          "dx 2\n"
          "dy 4\n"
          "spectrum_file: sea.spectrum\n"
          "generate_file:  yes\n"
          "random_seed 5\n"
          "end\n"
          "number_aux_oceans  0\n"
          "number_disturbances  0\n"
          "box_depth  25\n"
          "reference_time  1.5\n"
          "surface_type:  flat\n"
          "max_distance  1000\n"
          "doubling_distance  100\n"
          "variable_wind:  no\n"
          "wind_direction:  30\n"
          "wind_velocity:  8\n"
          "ocean_spectrum_type:  phillips_smoothed\n"
          "jerlov_water_type:  3\n"
          "external_exact:  no\n"
          "glitter:  yes\n";
  if (version >= 2) {
    text << "whitecaps: no\n"
            "texture_maps:  no\n";
  }
  text << "sunbeams:  no\n";
  if (version >= 4) text << "exclude_items:   no\n";
  text << "number_of_bands:  1\n"
          "band_ids:  7\n"
          "index_of_refraction:  1.33\n"
          "end\n";
  return text.str();
}

// A base disturbance block as the base record writes it.
inline std::string grid_block(int n_x, int n_y, const char* spectrum) {
  std::ostringstream text;
  text << "n_points_x " << n_x << "\nn_points_y " << n_y
       << "\ndx 1\ndy 1\nspectrum_file: " << spectrum << "\ngenerate_file:  no \nend\n";
  return text.str();
}

inline void expect_same_grid(const TCGrid_details_input& a, const TCGrid_details_input& b,
                             const std::string& where) {
  EXPECT_EQ(a.field_code, b.field_code) << where;
  EXPECT_STREQ(a.detail_file, b.detail_file) << where;
  EXPECT_EQ(a.has_detail_file, b.has_detail_file) << where;
  EXPECT_EQ(a.periodic_x, b.periodic_x) << where;
  EXPECT_EQ(a.periodic_y, b.periodic_y) << where;
  EXPECT_EQ(a.n_x, b.n_x) << where;
  EXPECT_EQ(a.n_y, b.n_y) << where;
  EXPECT_EQ(a.dx, b.dx) << where;
  EXPECT_EQ(a.dy, b.dy) << where;
  EXPECT_EQ(a.random_seed, b.random_seed) << where;
  EXPECT_EQ(a.generate_file, b.generate_file) << where;
  EXPECT_STREQ(a.spectrum_file, b.spectrum_file) << where;
  // Whatever a derived kind adds shows in its block.
  std::ostringstream block_a, block_b;
  a.write_grid_block(block_a);
  b.write_grid_block(block_b);
  EXPECT_EQ(block_a.str(), block_b.str()) << where;
}

inline void expect_same_values(const double* a, const double* b, int n, const std::string& where) {
  if (n <= 0) return;
  ASSERT_NE(a, nullptr) << where;
  ASSERT_NE(b, nullptr) << where;
  for (int i = 0; i < n; i++) EXPECT_EQ(a[i], b[i]) << where << " [" << i << "]";
}

// Angles travel through degrees on file: equal to the last bits or nearly.
inline void expect_near_values(const double* a, const double* b, int n, const std::string& where) {
  if (n <= 0) return;
  ASSERT_NE(a, nullptr) << where;
  ASSERT_NE(b, nullptr) << where;
  for (int i = 0; i < n; i++) EXPECT_NEAR(a[i], b[i], 1e-14) << where << " [" << i << "]";
}

inline void expect_same_textures(const TCOcean_textures_input& a, const TCOcean_textures_input& b,
                                 const std::string& where) {
  EXPECT_EQ(a.active, b.active) << where;
  ASSERT_EQ(a.n_textures, b.n_textures) << where;
  for (int i = 0; i < a.n_textures; i++) {
    const std::string at = where + " texture " + std::to_string(i);
    EXPECT_EQ(a.order[i], b.order[i]) << at;
    EXPECT_EQ(a.priorities[i], b.priorities[i]) << at;
    EXPECT_EQ(a.alpha_above[i], b.alpha_above[i]) << at;
    EXPECT_EQ(a.alpha_below[i], b.alpha_below[i]) << at;
    EXPECT_EQ(a.above_flag[i], b.above_flag[i]) << at;
    EXPECT_EQ(a.below_flag[i], b.below_flag[i]) << at;
    const TCTexture_plane_input& s = a.textures[i];
    const TCTexture_plane_input& t = b.textures[i];
    EXPECT_EQ(s.width, t.width) << at;
    EXPECT_EQ(s.height, t.height) << at;
    EXPECT_STREQ(s.picture_file, t.picture_file) << at;
    EXPECT_EQ(s.whole_picture, t.whole_picture) << at;
    EXPECT_EQ(s.first_x, t.first_x) << at;
    EXPECT_EQ(s.last_x, t.last_x) << at;
    EXPECT_EQ(s.first_y, t.first_y) << at;
    EXPECT_EQ(s.last_y, t.last_y) << at;
    EXPECT_EQ(s.make_levels, t.make_levels) << at;
    EXPECT_EQ(s.periodic, t.periodic) << at;
    EXPECT_EQ(s.side_code, t.side_code) << at;
    EXPECT_EQ(s.n_bands, t.n_bands) << at;
    ASSERT_EQ(s.above_values(), t.above_values()) << at;
    ASSERT_EQ(s.below_values(), t.below_values()) << at;
    expect_same_values(s.min_above, t.min_above, s.above_values(), at + " min_above");
    expect_same_values(s.max_above, t.max_above, s.above_values(), at + " max_above");
    expect_same_values(s.min_below, t.min_below, s.below_values(), at + " min_below");
    expect_same_values(s.max_below, t.max_below, s.below_values(), at + " max_below");
    EXPECT_EQ(s.priority, t.priority) << at;
    EXPECT_EQ(s.center_x, t.center_x) << at;
    EXPECT_EQ(s.center_y, t.center_y) << at;
    EXPECT_NEAR(s.orientation, t.orientation, 1e-14) << at;
    EXPECT_EQ(s.animation_flag, t.animation_flag) << at;
    EXPECT_EQ(s.v_x, t.v_x) << at;
    EXPECT_EQ(s.v_y, t.v_y) << at;
    EXPECT_EQ(s.t_o, t.t_o) << at;
    EXPECT_STREQ(s.base_file_name, t.base_file_name) << at;
    EXPECT_EQ(s.new_picture_flag, t.new_picture_flag) << at;
    EXPECT_EQ(s.update_flag, t.update_flag) << at;
  }
}

// Every field of two records. Angles may differ in the last bits, having
// gone to degrees and back; with exact set they must not (packing).
inline void expect_same_ocean(const ocean_input& a, const ocean_input& b, bool exact,
                              bool with_exclusions = true) {
  expect_same_grid(a.primary_grid, b.primary_grid, "primary grid");
  expect_same_grid(a.secondary_grid, b.secondary_grid, "secondary grid");
  EXPECT_EQ(a.number_aux_oceans, b.number_aux_oceans);
  ASSERT_EQ(a.n_disturbances, b.n_disturbances);
  for (int i = 0; i < a.n_disturbances; i++) {
    expect_same_grid(*a.disturbance(i), *b.disturbance(i), "disturbance " + std::to_string(i));
  }
  EXPECT_EQ(a.box_depth, b.box_depth);
  EXPECT_EQ(a.reference_time, b.reference_time);
  EXPECT_EQ(a.round_surface, b.round_surface);
  EXPECT_EQ(a.surface_radius, b.surface_radius);
  EXPECT_EQ(a.max_distance, b.max_distance);
  EXPECT_EQ(a.doubling_distance, b.doubling_distance);
  EXPECT_EQ(a.variable_wind, b.variable_wind);
  EXPECT_STREQ(a.wind_file, b.wind_file);
  ASSERT_EQ(a.n_wind_values, b.n_wind_values);
  expect_same_values(a.wind_time, b.wind_time, a.n_wind_values, "wind_time");
  expect_same_values(a.wind_speed, b.wind_speed, a.n_wind_values, "wind_speed");
  if (exact) {
    expect_same_values(a.wind_direction_series, b.wind_direction_series, a.n_wind_values,
                       "wind_direction_series");
    EXPECT_EQ(a.wind_direction, b.wind_direction);
  } else {
    expect_near_values(a.wind_direction_series, b.wind_direction_series, a.n_wind_values,
                       "wind_direction_series");
    EXPECT_NEAR(a.wind_direction, b.wind_direction, 1e-14);
  }
  EXPECT_EQ(a.wind_velocity, b.wind_velocity);
  EXPECT_EQ(a.ocean_spectrum_type, b.ocean_spectrum_type);
  EXPECT_EQ(a.glassy_scale, b.glassy_scale);
  EXPECT_EQ(a.jerlov_water_type, b.jerlov_water_type);
  EXPECT_EQ(a.external_exact, b.external_exact);
  EXPECT_EQ(a.max_exact_distance, b.max_exact_distance);
  EXPECT_EQ(a.exact_sharpening_factor, b.exact_sharpening_factor);
  EXPECT_EQ(a.include, b.include);
  EXPECT_EQ(a.reflection_method, b.reflection_method);
  EXPECT_EQ(a.shadow_method, b.shadow_method);
  EXPECT_EQ(a.max_shadow_fraction, b.max_shadow_fraction);
  EXPECT_EQ(a.shadow_distance, b.shadow_distance);
  EXPECT_EQ(a.glitter, b.glitter);
  EXPECT_EQ(a.sharpening_type, b.sharpening_type);
  EXPECT_STREQ(a.sharpening_file, b.sharpening_file);
  EXPECT_EQ(a.sharpening_factor, b.sharpening_factor);
  ASSERT_EQ(a.n_sharpening_angles, b.n_sharpening_angles);
  if (exact) {
    expect_same_values(a.sharpening_angle, b.sharpening_angle, a.n_sharpening_angles,
                       "sharpening_angle");
  } else {
    expect_near_values(a.sharpening_angle, b.sharpening_angle, a.n_sharpening_angles,
                       "sharpening_angle");
  }
  expect_same_values(a.sharpening_value, b.sharpening_value, a.n_sharpening_angles,
                     "sharpening_value");
  EXPECT_EQ(a.glitter_threshold, b.glitter_threshold);
  EXPECT_EQ(a.saturation_type, b.saturation_type);
  EXPECT_EQ(a.saturation_band, b.saturation_band);
  EXPECT_EQ(a.saturation_threshold, b.saturation_threshold);
  ASSERT_EQ(a.n_saturation_values, b.n_saturation_values);
  expect_same_values(a.sub_saturation_scale, b.sub_saturation_scale, a.n_saturation_values,
                     "sub_saturation_scale");
  expect_same_values(a.saturation_values, b.saturation_values, a.n_saturation_values,
                     "saturation_values");
  EXPECT_EQ(a.whitecaps, b.whitecaps);
  EXPECT_STREQ(a.whitecap_file, b.whitecap_file);
  EXPECT_EQ(a.whitecap_center_x, b.whitecap_center_x);
  EXPECT_EQ(a.whitecap_center_y, b.whitecap_center_y);
  EXPECT_EQ(a.whitecap_length_x, b.whitecap_length_x);
  EXPECT_EQ(a.whitecap_length_y, b.whitecap_length_y);
  EXPECT_EQ(a.whitecap_interval_x, b.whitecap_interval_x);
  EXPECT_EQ(a.whitecap_interval_y, b.whitecap_interval_y);
  EXPECT_EQ(a.whitecap_max_distance, b.whitecap_max_distance);
  EXPECT_EQ(a.whitecap_reference_time, b.whitecap_reference_time);
  EXPECT_EQ(a.whitecap_time_increment, b.whitecap_time_increment);
  EXPECT_EQ(a.whitecap_initialization_time, b.whitecap_initialization_time);
  EXPECT_EQ(a.whitecap_initialization_increment, b.whitecap_initialization_increment);
  EXPECT_EQ(a.whitecap_formation_time, b.whitecap_formation_time);
  EXPECT_EQ(a.whitecap_decay_time, b.whitecap_decay_time);
  EXPECT_EQ(a.acceleration_threshold_low, b.acceleration_threshold_low);
  EXPECT_EQ(a.acceleration_threshold_high, b.acceleration_threshold_high);
  EXPECT_EQ(a.whitecap_reflectivity_low, b.whitecap_reflectivity_low);
  EXPECT_EQ(a.whitecap_reflectivity_high, b.whitecap_reflectivity_high);
  EXPECT_EQ(a.smear_x, b.smear_x);
  EXPECT_EQ(a.smear_y, b.smear_y);
  EXPECT_EQ(a.smear_t, b.smear_t);
  EXPECT_EQ(a.acceleration_time_offset, b.acceleration_time_offset);
  EXPECT_EQ(a.whitecap_generation, b.whitecap_generation);
  EXPECT_STREQ(a.initial_state_file, b.initial_state_file);
  EXPECT_STREQ(a.frame_file, b.frame_file);
  EXPECT_EQ(a.fluctuation_mode, b.fluctuation_mode);
  EXPECT_EQ(a.fluctuation_n_x, b.fluctuation_n_x);
  EXPECT_EQ(a.fluctuation_n_y, b.fluctuation_n_y);
  EXPECT_EQ(a.fluctuation_dx, b.fluctuation_dx);
  EXPECT_EQ(a.fluctuation_dy, b.fluctuation_dy);
  EXPECT_EQ(a.fluctuation_seed, b.fluctuation_seed);
  EXPECT_EQ(a.fluctuation_length_scale, b.fluctuation_length_scale);
  EXPECT_EQ(a.fluctuation_power_law, b.fluctuation_power_law);
  EXPECT_EQ(a.fluctuation_time_scale, b.fluctuation_time_scale);
  EXPECT_EQ(a.fluctuation_log_normal_width, b.fluctuation_log_normal_width);
  expect_same_textures(a.whitecap_textures, b.whitecap_textures, "whitecap textures");
  EXPECT_EQ(a.texture_maps, b.texture_maps);
  expect_same_textures(a.textures, b.textures, "ocean textures");
  EXPECT_EQ(a.cusps, b.cusps);
  EXPECT_EQ(a.cusps_scale, b.cusps_scale);
  if (with_exclusions) {
    EXPECT_EQ(a.exclude_mask, b.exclude_mask);
  }
  EXPECT_EQ(a.render_disturbances_interior, b.render_disturbances_interior);
  ASSERT_EQ(a.number_of_bands, b.number_of_bands);
  for (int i = 0; i < a.number_of_bands; i++) EXPECT_EQ(a.band_ids[i], b.band_ids[i]) << i;
  expect_same_values(a.index_of_refraction, b.index_of_refraction, a.number_of_bands, "index");
  expect_same_values(a.a, b.a, a.number_of_bands, "a");
  expect_same_values(a.b, b.b, a.number_of_bands, "b");
  expect_same_values(a.c, b.c, a.number_of_bands, "c");
  expect_same_values(a.k, b.k, a.number_of_bands, "k");
  expect_same_values(a.refl, b.refl, a.number_of_bands, "refl");
  EXPECT_EQ(a.length.x, b.length.x);
  EXPECT_EQ(a.length.y, b.length.y);
  EXPECT_EQ(a.length.z, b.length.z);
}

#endif

#ifndef TC_TESTS_VOLUME_TEST_FILES_H
#define TC_TESTS_VOLUME_TEST_FILES_H

#include <fstream>
#include <sstream>
#include <string>

// The phase value written for band b (from 0) at whole degree k: band and
// degree can both be told from it, 1.5 + b + k / 1000.
inline double test_phase_value(int band, int degree) {
  return 1.5 + band + degree / 1000.0;
}

// A phase file of n_bands bands with ids first_id.., n_angles pairs each,
// the angle in degrees counting from 0.
inline std::string phase_text(int n_bands, int n_angles, int first_id = 1) {
  std::ostringstream text;
  text.precision(17);
  for (int b = 0; b < n_bands; b++) {
    text << first_id + b << "\n";
    for (int k = 0; k < n_angles; k++) text << k << " " << test_phase_value(b, k) << "\n";
  }
  return text.str();
}

inline void write_text_file(const std::string& path, const std::string& text) {
  std::ofstream out(path.c_str());
  out << text;
}

// A volume section with two bands whose phase file is phase_path.
inline std::string volume_text(const std::string& phase_path) {
  return "Tidecast_data_file volume 1 1\n"
         "number_points_x: 11\n"
         "number_points_y: 3\n"
         "number_points_z: 6\n"
         "lattice_spacing_x: 10\n"
         "lattice_spacing_y: 0.5\n"
         "lattice_spacing_z: 20\n"
         "number_of_bands 2\n"
         "band_id  4 9\n"
         "absorption:  0.001 0.002\n"
         "scattering:  0.125 0.25\n"
         "extinction:  0.375 0.5\n"
         "phase_function_file: " +
         phase_path +
         "\n"
         "threshold_density: 0.01\n"
         "scattering_method: single\n"
         "integration_scale: 0.25\n"
         "transmission_cutoff: 0.001\n"
         "subdivide_threshold: 0.05\n"
         "end\n";
}

#endif

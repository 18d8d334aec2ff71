#ifndef TC_TESTS_OCEAN_OBJECT_RECORDS_H
#define TC_TESTS_OCEAN_OBJECT_RECORDS_H

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Height_grid_details_input.h"
#include "TCHdf_image.h"
#include "TCOcean.h"
#include "TCSettings.h"
#include "ocean_input.h"
#include "scratch_folder.h"
#include "stream_capture.h"

// Ocean records built in code for the runtime ocean's tests, and the few
// helpers that go with them.

// 30 degrees as the reader converts it.
const double ocean_test_wind_direction = 30.0 * 0.017453292519444445;

// A small periodic sea: a 16 by 8 lattice of 2 m cells writing its
// spectrum file into folder, a steady 8 m/s wind towards 30 degrees, one
// band of custom water (no band table needed), glitter off, no coupling.
inline void small_sea(ocean_input& input, const Scratch_folder& folder) {
  input.primary_grid.n_x = 16;
  input.primary_grid.n_y = 8;
  input.primary_grid.dx = 2.0;
  input.primary_grid.dy = 2.0;
  input.primary_grid.periodic_x = 1;
  input.primary_grid.periodic_y = 1;
  input.primary_grid.generate_file = 1;
  input.primary_grid.random_seed = 5;
  std::snprintf(input.primary_grid.spectrum_file, 256, "%s",
                folder.file("primary.spectrum").c_str());
  input.secondary_grid.n_x = 8;
  input.secondary_grid.n_y = 8;
  input.secondary_grid.dx = 8.0;
  input.secondary_grid.dy = 8.0;
  input.secondary_grid.generate_file = 1;
  input.secondary_grid.random_seed = 9;
  std::snprintf(input.secondary_grid.spectrum_file, 256, "%s",
                folder.file("secondary.spectrum").c_str());
  input.box_depth = 20.0;
  input.reference_time = 1.5;
  input.max_distance = 1000.0;
  input.doubling_distance = 100.0;
  input.wind_velocity = 8.0;
  input.wind_direction = ocean_test_wind_direction;
  input.ocean_spectrum_type = 103;
  input.jerlov_water_type = 0;
  input.external_exact = 0;
  input.glitter = 0;
  input.allocate_bands(1);
  input.band_ids[0] = 7;
  input.index_of_refraction[0] = 1.34;
}

// A second band, and water optics for both.
inline void two_bands(ocean_input& input) {
  input.allocate_bands(2);
  input.band_ids[0] = 7;
  input.band_ids[1] = 8;
  const double a[2] = {0.1, 0.2}, b[2] = {0.01, 0.02}, c[2] = {0.11, 0.22}, k[2] = {0.05, 0.06},
               refl[2] = {0.02, 0.025};
  for (int i = 0; i < 2; i++) {
    input.index_of_refraction[i] = 1.34;
    input.a[i] = a[i];
    input.b[i] = b[i];
    input.c[i] = c[i];
    input.k[i] = k[i];
    input.refl[i] = refl[i];
  }
}

// A swell on an n by n lattice of spacing d, writing its spectrum file
// into folder.
inline TCGrid_details_input* add_swell(ocean_input& input, const Scratch_folder& folder,
                                       const std::string& name, int n, double d) {
  TCGrid_details_input* swell = input.add_disturbance(-5);
  swell->n_x = n;
  swell->n_y = n;
  swell->dx = d;
  swell->dy = d;
  swell->generate_file = 1;
  swell->random_seed = 3;
  std::snprintf(swell->spectrum_file, 256, "%s", folder.file(name).c_str());
  return swell;
}

// A disturbance of a kind given only its lattice.
inline TCGrid_details_input* add_kind(ocean_input& input, int code, int n_x, int n_y, double dx,
                                      double dy) {
  TCGrid_details_input* record = input.add_disturbance(code);
  record->n_x = n_x;
  record->n_y = n_y;
  record->dx = dx;
  record->dy = dy;
  return record;
}

// A 4 by 3 grid data set of values first + step * (i + 4 j), written with
// the project's own writer.
inline void write_small_grid(const std::string& path, float first, float step) {
  std::vector<float> values(12);
  for (int k = 0; k < 12; k++) values[k] = first + step * k;
  const int dims[2] = {3, 4};
  int first_flag = 1;
  ASSERT_EQ(hdf_write_plane(path.c_str(), values.data(), dims, first_flag), 1);
}

// A height (-7) or multiplier (-8) grid of 4 by 3 one-metre cells reading
// file, with its pose, its motion and keys (time, scale) pairs.
inline Height_grid_details_input* add_map(ocean_input& input, int code, const std::string& file,
                                          double x, double y, double orientation, double velocity,
                                          double direction, int keys, const double* times,
                                          const double* scales) {
  Height_grid_details_input* grid =
      static_cast<Height_grid_details_input*>(input.add_disturbance(code));
  grid->n_x = 4;
  grid->n_y = 3;
  grid->dx = 1.0;
  grid->dy = 1.0;
  std::snprintf(grid->field_file, 256, "%s", file.c_str());
  grid->position_x = x;
  grid->position_y = y;
  grid->orientation = orientation;
  grid->velocity = velocity;
  grid->direction = direction;
  grid->allocate_keys(keys);
  for (int k = 0; k < keys; k++) {
    grid->key_times[k] = times[k];
    grid->key_scales[k] = scales[k];
  }
  return grid;
}

// construct(), what it printed into printed.
inline int construct_quietly(TCOcean& ocean, const ocean_input& input, std::string& printed) {
  Stream_capture out(std::cout);
  const int result = ocean.construct(input);
  printed = out.text();
  return result;
}

// The verbose setting for as long as it lives.
class Verbose_as {
 public:
  explicit Verbose_as(int value) : old_(verbose) { verbose = value; }
  ~Verbose_as() { verbose = old_; }

 private:
  int old_;
};

inline std::string printed_parameters(const TCOcean& ocean) {
  std::ostringstream out;
  ocean.print_parameters(out);
  return out.str();
}

#endif

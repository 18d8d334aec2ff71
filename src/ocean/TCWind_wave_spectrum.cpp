#include "TCWind_wave_spectrum.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <new>

#include "TCData_file.h"
#include "TCSettings.h"
#include "TCValue_lists.h"

namespace {

// The wind the sea starts with, until the first evolution: m/s and radians.
const double starting_wind_speed = 4.0;
const double starting_wind_direction = 0.0;

void wind_file_failure() {
  std::cout << "Error reading wind file."
            << "\n";
  std::cout.flush();
  std::exit(1);
}

}  // namespace

TCWind_wave_spectrum::TCWind_wave_spectrum(int type, int seed_in, float* buffer, int n_x_in,
                                           int n_y_in, double dx_in, double dy_in,
                                           const char* wind_file_in, double reference_time_in,
                                           double glassy_scale)
    : TCWave_spectrum(type, seed_in, buffer, n_x_in, n_y_in, dx_in, dy_in, starting_wind_speed,
                      starting_wind_direction, reference_time_in, glassy_scale) {
  copy_text(wind_file, wind_file_in ? wind_file_in : "", sizeof(wind_file));
  read_wind_file();
}

TCWind_wave_spectrum::TCWind_wave_spectrum(int type, int seed_in, float* buffer, int n_x_in,
                                           int n_y_in, double dx_in, double dy_in,
                                           double band_low_in, double band_high_in,
                                           const char* wind_file_in, double reference_time_in,
                                           double glassy_scale)
    : TCWave_spectrum(type, seed_in, buffer, n_x_in, n_y_in, dx_in, dy_in, band_low_in,
                      band_high_in, starting_wind_speed, starting_wind_direction, reference_time_in,
                      glassy_scale) {
  copy_text(wind_file, wind_file_in ? wind_file_in : "", sizeof(wind_file));
  read_wind_file();
}

TCWind_wave_spectrum::~TCWind_wave_spectrum() {}

// Rows are taken into arrays that grow as they arrive, so a count the file
// cannot back costs no memory. A count below 1 or a short row fails.
void TCWind_wave_spectrum::read_wind_file() {
  std::cout << "wind file is :" << wind_file << "\n";
  std::ifstream in(wind_file);
  if (!in) wind_file_failure();
  skip_token(in);  // "number_of_times:"
  int count = 0;
  if (!read_int(in, count) || count < 1) wind_file_failure();
  for (int k = 0; k < 3; k++) skip_token(in);  // time speed direction

  int capacity = first_capacity(count);
  double* times = new (std::nothrow) double[capacity]();
  double* speeds = new (std::nothrow) double[capacity]();
  double* directions = new (std::nothrow) double[capacity]();
  int n_read = 0;
  while (times && speeds && directions && n_read < count) {
    if (n_read == capacity) {
      const int new_capacity = next_capacity(capacity, count);
      double* more_times = grown(times, n_read, new_capacity);
      double* more_speeds = grown(speeds, n_read, new_capacity);
      double* more_directions = grown(directions, n_read, new_capacity);
      delete[] times;
      delete[] speeds;
      delete[] directions;
      times = more_times;
      speeds = more_speeds;
      directions = more_directions;
      capacity = new_capacity;
      if (!times || !speeds || !directions) break;
    }
    if (!read_double(in, times[n_read]) || !read_double(in, speeds[n_read]) ||
        !read_double(in, directions[n_read]))
      break;
    n_read++;
  }
  if (n_read < count) {
    delete[] times;
    delete[] speeds;
    delete[] directions;
    wind_file_failure();
  }

  wind_series.set_number_of_times(count);
  for (int k = 0; k < count; k++) {
    wind_series.times[k] = times[k];
    wind_series.positions[k] = TCVector(speeds[k], 0.0, 0.0);
    wind_series.chi[k] = radians_from_file(directions[k]);
  }
  delete[] times;
  delete[] speeds;
  delete[] directions;
}

void TCWind_wave_spectrum::evolve_heights(double time) {
  TCVector speed;
  double direction = 0.0;
  double unused = 0.0;
  wind_series.position_at(time, speed);
  wind_series.angles_at(time, direction, unused);
  set_wind(speed.x, direction);
  if (verbose) {
    std::cout << "time    wind vel.   wind Direction"
              << "\n";
    std::cout << time << "  " << wind_speed << "  " << degrees_for_file(wind_direction) << "\n";
  }
  TCWave_spectrum::evolve_heights(time);
}

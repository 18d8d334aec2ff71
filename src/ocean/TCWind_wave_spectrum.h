#ifndef TC_WIND_WAVE_SPECTRUM_H
#define TC_WIND_WAVE_SPECTRUM_H

#include "TCKeyframes.h"
#include "TCWave_spectrum.h"

// A wind sea whose wind changes with time: speed and direction are
// interpolated from a wind file at every evolution of the heights, linearly
// and extrapolated past both ends.
//
// Wind file, keywords skipped unread:
//   number_of_times:  3
//   time      speed      direction
//   0.0   5.0   30.0          (seconds since the reference time, m/s, degrees)
//   ...
class TCWind_wave_spectrum : public TCWave_spectrum {
 public:
  // As the constant-wind forms, with the wind file in place of the wind;
  // the wind is 4.0 m/s towards 0.0 until the first evolution. Prints
  // "wind file is :" and the name; a file that can't be opened or read
  // prints "Error reading wind file." and exits with status 1.
  TCWind_wave_spectrum(int type, int seed_in, float* buffer, int n_x_in, int n_y_in, double dx_in,
                       double dy_in, const char* wind_file_in, double reference_time_in,
                       double glassy_scale);
  TCWind_wave_spectrum(int type, int seed_in, float* buffer, int n_x_in, int n_y_in, double dx_in,
                       double dy_in, double band_low_in, double band_high_in,
                       const char* wind_file_in, double reference_time_in, double glassy_scale);
  ~TCWind_wave_spectrum() override;

  // Takes the wind at t (seconds since the reference time), prints it when
  // verbose (direction in degrees), then evolves as the constant-wind sea.
  void evolve_heights(double time) override;

  char wind_file[256];
  // Per key: time in seconds, speed (m/s) in the first element of the
  // position, direction (radians) in chi.
  TCKeyframes wind_series;

 private:
  void read_wind_file();

  TCWind_wave_spectrum(const TCWind_wave_spectrum&);
  TCWind_wave_spectrum& operator=(const TCWind_wave_spectrum&);
};

#endif

#ifndef TC_FLUCTUATION_FIELD_H
#define TC_FLUCTUATION_FIELD_H

#include <iostream>

#include "TCRandom.h"

// The whitecaps' small-scale fluctuation: a periodic n_x by n_y field of
// log-normal factors around 1, correlated in space by a power-law spectrum
// and moving on in time step by step, each Fourier mode forgetting itself
// at a rate that grows with its wavenumber. Foam reflectivity is multiplied
// by it, so that caps break up into patches.
class TCFluctuation_field {
 public:
  // Sizes (cells), spacings (metres), the seed, the spectrum's length scale
  // (metres) and power, the time scale (seconds), the log-normal width, and
  // the step clock of the whitecaps (seconds). Prints the "FLUCT " line.
  // Exits 1 when memory runs out.
  TCFluctuation_field(int n_x_in, int n_y_in, double dx_in, double dy_in, int seed,
                      double length_scale_in, double power_law_in, double time_scale_in,
                      double width_in, double time_increment_in, double reference_time_in);
  ~TCFluctuation_field();

  // A field whose parameters come as the whitecap file's fluctuation block
  // ("lattice_size:" to "end"), on the whitecaps' clock; null after its
  // message when the block cannot be read or memory runs out.
  static TCFluctuation_field* from_stream(std::istream& in, double time_increment_in,
                                          double reference_time_in);
  // The same block in a file of its own.
  static TCFluctuation_field* from_file(const char* path, double time_increment_in,
                                        double reference_time_in);

  // The field at time t (seconds): made on the first call, then moved on a
  // step at a time; the same messages and exits as the whitecaps for a time
  // before the reference or going backwards.
  void update(double t);
  // The factor at a point (metres) for a cell of cell_x by cell_y metres:
  // bilinear, periodic, blended between the last two steps; a cell larger
  // than the field's averages it towards 1; never below 0.95.
  double factor_at(double x, double y, double cell_x, double cell_y) const;

  // Amplitude of a mode of squared wavenumber k2 (rad^2 / m^2).
  double amplitude(double k2) const;
  // Factor of cell (i, j) at the latest step.
  float value(int i, int j) const { return field_current[j + n_y * static_cast<long>(i)]; }
  float previous_value(int i, int j) const {
    return field_previous[j + n_y * static_cast<long>(i)];
  }

  int n_x, n_y;
  double dx, dy;
  double inv_dx, inv_dy;
  double time_increment;
  double reference_time;
  int step;
  double width;
  double time_scale;
  double length_scale;
  double power_law;
  double decay_rate;      // (dx / time_scale)^2
  double length_squared;  // length_scale^2
  double exponent;        // (1 + power_law) / 4
  double time_weight;     // 1 at the step before, 0 at the latest
  TCRandom random;
  float* mode_real;  // n_x * (n_y / 2 + 1), i slower
  float* mode_imag;
  float* field_previous;  // (n_y + 2) * n_x: packed factors, j fastest
  float* field_current;

 private:
  // One mode's squared wavenumber by its indices.
  double k2_of(int i, int j) const;
  // Modes to factors in field_current: mean mode 0, the j = 0 column made
  // Hermitian, amplitudes, inverse transform, unit rms, log-normal.
  void make_field();
  void first_field();
  void next_step();

  TCFluctuation_field(const TCFluctuation_field&);
  TCFluctuation_field& operator=(const TCFluctuation_field&);
};

#endif

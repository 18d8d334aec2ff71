#ifndef TC_WAVE_SPECTRUM_H
#define TC_WAVE_SPECTRUM_H

#include "TCOcean_words.h"
#include "TCRandom.h"
#include "TCSurface_field.h"

// The wind sea: a Phillips spectrum whose level is set by the Cox-Munk mean
// square slope of the wind, 2.6e-05 * cos^2(theta - wind) / k^4 (k in cycles
// per metre), over white Gaussian amplitudes kept in the spectrum file. With
// two lattices a band of wavenumbers both can carry is shared between them at
// half power each.
//
// Wavenumbers are in cycles per metre unless named otherwise; slopes are
// dimensionless, the slope_* widths being standard deviations.
class TCWave_spectrum : public TCSurface_field {
 public:
  // type: 0 (a flat sea: no amplitudes are applied), 101, 103 or 104 of the
  // ocean_spectrum_* codes; any other (102 is reserved for it) prints
  // "DP not yet implemented " and exits with status 1.
  // seed: the generator's seed, its low 16 bits the order to generate (0:
  // the spectrum file must already exist). buffer: the lattice's
  // (n_x + 2) * n_y floats. Wind in m/s and radians (the direction the waves
  // run to); reference time in seconds; glassy_scale in metres, the smallest
  // wavelength of a type 104 sea when above 0.
  TCWave_spectrum(int type, int seed_in, float* buffer, int n_x_in, int n_y_in, double dx_in,
                  double dy_in, double wind_speed_in, double wind_direction_in,
                  double reference_time_in, double glassy_scale);
  // The same with a shared band: wavenumbers between band_low and band_high
  // get half the power.
  TCWave_spectrum(int type, int seed_in, float* buffer, int n_x_in, int n_y_in, double dx_in,
                  double dy_in, double band_low_in, double band_high_in, double wind_speed_in,
                  double wind_direction_in, double reference_time_in, double glassy_scale);
  ~TCWave_spectrum() override;

  // Reads the spectrum file, turns the phases to t (seconds since the
  // reference time), applies the amplitudes of the present wind and leaves
  // the half-complex spectrum in the buffer, element (0, 0) zero.
  void evolve_heights(double time) override;
  // Zeroes the spectrum; when generating, fills it with Gaussian deviates of
  // variance dk_area / 2 per float (none for type 0), makes it Hermitian and
  // writes the spectrum file ("unable to write to " and exit 1 on failure).
  void initialize_field() override;
  // Inverse real 2D transform in place, sign -1, unscaled. Returns 0.0.
  double transform_to_lattice() override;
  // As evolve_heights into array, each element weighted by the vertical
  // acceleration -2 pi g k of its wave and box filters of widths smear_x,
  // smear_y (metres) and, when above 0, smear_t (seconds).
  void evolve_acceleration_into(float* array, double time, double smear_x, double smear_y,
                                double smear_t) override;
  // The velocity potential at the surface, transformed in place; prints
  // "upgrading potential field ".
  void evolve_potential(double time) override;

  // The wind's cut-off, the Cox-Munk level and the slope widths, from
  // wind_speed; done at every evolution since the wind can change.
  void update_wind_constants();
  // Unresolved slopes for a footprint scale cells wide; up to 0 stands for
  // the whole unresolved range down from the wind's cut-off.
  void set_footprint(double scale);
  // The same for reflections: slope_current alone.
  void set_reflection_footprint(double scale);
  // Spectral density per unit amplitude at (kx, ky) in cycles per metre:
  // the smooth cut-off for 103 and 104, the hard one for 101, 0 for a flat
  // sea; halved in the shared band.
  double spectrum_value(double kx, double ky) const;
  void get_size(int& n_x_out, int& n_y_out, double& dx_out, double& dy_out) const;
  // Sets the wind (m/s, radians) for the next evolution.
  void set_wind(double speed, double direction);

  // Direction of (kx, ky) in radians, -pi/2 to 3 pi/2, by the engine's
  // arctangent rule: straight up or down for kx = 0, with its own constants.
  static double wave_direction(double kx, double ky);

  TCRandom generator;
  double band_low;  // cycles per metre; 99999999.0 for no shared band
  double band_high;
  double cos_wind;
  double sin_wind;
  double k_max_x;  // highest wavenumbers resolved along each axis
  double k_max_y;
  double k_lattice;  // the smaller of the two
  double dk_area;    // cycles^2 per m^2 of one element
  double k_cut;      // the spectrum's upper cut-off
  double amplitude_total;
  double amplitude;  // the spectrum's level
  double k_wind;     // the wind's lower cut-off; 99999999.0 with no wind
  double k_small;    // upper limit of the slope integrals, 100.0
  int seed;
  short spectrum_type;
  double wind_direction;  // radians
  double wind_speed;      // m/s
  double slope_unresolved;
  double slope_current;
  double slope_resolved;
  double slope_per_log_k;  // slope variance per unit of ln k
  double slope_reference;
  int n_kx;
  int n_ky;
  double dk_x;  // 1 / (n_x dx)
  double dk_y;  // 1 / (n_y dy)

 private:
  void construct(int type, double glassy_scale);
  // Multiplies every element of array by its amplitude for the kind of
  // field: heights, acceleration or potential.
  void apply_amplitudes(float* array, int form, double smear_x, double smear_y,
                        double smear_t) const;

  TCWave_spectrum(const TCWave_spectrum&);
  TCWave_spectrum& operator=(const TCWave_spectrum&);
};

#endif

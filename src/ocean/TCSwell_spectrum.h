#ifndef TC_SWELL_SPECTRUM_H
#define TC_SWELL_SPECTRUM_H

#include "Swell_details_input.h"
#include "TCRandom.h"
#include "TCSurface_field.h"

// A swell train on a lattice of its own: a two-dimensional Gaussian bump of
// the spectrum around the swell's wavenumber and its mirror, with widths
// along and across the direction of travel. Unlike the wind sea the
// amplitudes are fixed and only the phases are random, so the rms height of
// the lattice is the input's to within the lattice's sampling of the bump.
//
// Wavenumbers in cycles per metre; k_swell = 1 / wavelength.
class TCSwell_spectrum : public TCSurface_field {
 public:
  // From the swell record: lattice size and spacing, spectrum file, generate
  // flag (1: write the spectrum file at initialize_field), seed, rms height,
  // wavelength, relative spreads and direction. buffer: the detail lattice's
  // (n_x + 2) * n_y floats. offset: the ocean's reference time in seconds,
  // kept as the field's reference time; callers still pass times relative to
  // it. Seeds the generator at once and prints the swell's parameters.
  TCSwell_spectrum(const Swell_details_input& input, float* buffer, double offset);
  ~TCSwell_spectrum() override;

  // As the wind sea's, along the swell direction, with the swell spectrum
  // as the amplitudes.
  void evolve_heights(double time) override;
  // Unit-modulus elements of random phase times sqrt(dk_area), made
  // Hermitian and written to the spectrum file, when generating.
  void initialize_field() override;
  // Inverse real 2D transform in place; returns the rms height in metres.
  double transform_to_lattice() override;
  void evolve_acceleration_into(float* array, double time, double smear_x, double smear_y,
                                double smear_t) override;
  void evolve_potential(double time) override;

  // S(kx, ky) in m^2 per (cycle/m)^2: half the Gaussian around the peak
  // plus half around its mirror; 0 beyond k_cut. Integrates to rms_height^2.
  double spectrum_value(double kx, double ky) const;

  TCRandom generator;
  double k_swell;  // 1 / wavelength
  double k_L;      // widths along and across the direction
  double k_T;
  double rms_height;       // metres
  double swell_direction;  // radians, the way the swell travels
  double k_swell_x;        // the peak, moved down onto a lattice node
  double k_swell_y;
  double det;  // determinant of the bump's covariance
  double cov_a;
  double cov_b;
  double cov_c;
  double dk_area;
  double k_cut;
  double peak;  // S at the peak, before the halving
  int seed;
  int n_kx;
  int n_ky;
  double dk_x;
  double dk_y;

 private:
  // The exponent of the bump at (u, v) from the peak.
  double quadratic_form(double u, double v) const;
  void apply_amplitudes(float* array, int form, double smear_x, double smear_y,
                        double smear_t) const;

  TCSwell_spectrum(const TCSwell_spectrum&);
  TCSwell_spectrum& operator=(const TCSwell_spectrum&);
};

#endif

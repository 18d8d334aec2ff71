#ifndef TC_CLOUD_FLUCTUATIONS_H
#define TC_CLOUD_FLUCTUATIONS_H

#include "TCRandom.h"

// A periodic 3-D field of multiplicative density fluctuations f, mean about 1,
// on n_x by n_y by n_z cells, value (i, j, k) at i + n_x * (j + n_y * k).
//
// A Gaussian part g is white noise filtered to the spectral density
// |k|^-power_law for 0 < |k| <= 1 / length_scale (k in cycles per cell, 0 at
// k = 0 and above the cutoff), then set to mean 0 and standard deviation 1
// over the field. f = exp(sigma g - sigma^2 / 2), so that ln f has width sigma
// over the field and f has mean near 1. A field whose band holds no Fourier
// mode (a 1x1x1 field, or a length_scale longer than the grid) is flat: g = 0,
// sigma = 0 and f = 1.
class TCCloud_fluctuations {
 public:
  TCCloud_fluctuations();
  ~TCCloud_fluctuations();

  // Seeds the generator with seed and makes a new field. length_scale is the
  // shortest wavelength in cells (2 is the grid's Nyquist); one of 0 or less
  // keeps every wavelength the grid holds. A negative width counts as its
  // size. Returns 0, keeping the field as it was, for a power_law that is not
  // above 0, a width or length_scale that is not finite, sizes below 1 or
  // above 2^28 cells in all, or memory that runs out. Prints nothing.
  int generate(int n_x_in, int n_y_in, int n_z_in, double power_law_in, double log_normal_width,
               double length_scale_in, int seed_in);

  // The spectrum and seed that evolve draws fresh parts from, for a field
  // that was read rather than generated (until then: power 1, length 2,
  // seed 1). Reseeds the generator. 0 for the refusals of generate.
  int set_spectrum(double power_law_in, double length_scale_in, int seed_in);

  // One time chunk: g = a g + sqrt(1 - a^2) g_fresh with g_fresh a new
  // Gaussian part of the same spectrum from the generator's stream, set
  // again to mean 0 and width 1; f is then remade from g and sigma. a = 1
  // keeps g, a = 0 makes a fresh field. 0 with no field, for an a outside
  // [0, 1], or when memory runs out.
  int evolve(double a);
  // The factor a of one chunk of update_time seconds for a field that
  // forgets itself over sigma_time seconds: exp(-update_time / sigma_time),
  // 0 for a sigma_time of 0 or less, held within [0, 1].
  static double evolve_factor(double update_time, double sigma_time);

  // f at continuous cell coordinates: cell (i, j, k) sits at (i, j, k), the
  // field repeats with the periods n_x, n_y, n_z, and between cells it is
  // interpolated trilinearly. 1 with no field or a coordinate not finite.
  double value_at(double u, double v, double w) const;
  // f of a cell; indices wrap around periodically. 1 with no field.
  float value(int i, int j, int k) const;

  // f in the lattice file layout. 0 with no field or a failed write.
  int write_file(const char* path) const;
  // Takes f from a lattice file as it stands and recovers sigma as the width
  // of ln f and g = (ln f - its mean) / sigma (a constant file gives sigma 0
  // and g = 0). 0, keeping the field as it was, for a file TCLattice_file
  // refuses, a value that is not finite and above 0, or memory that runs out.
  int read_file(const char* path);

  // Makes this field a copy of other: sizes, g, f, sigma, spectrum and the
  // generator's state. 0, keeping the field, when memory runs out.
  int copy_from(const TCCloud_fluctuations& other);

  int has_field() const { return f != nullptr; }
  // The n_x * n_y * n_z values of f and of g, or null with no field.
  const float* values() const { return f; }
  const float* gaussian_values() const { return g; }
  double get_power_law() const { return power_law; }
  double get_length_scale() const { return length_scale; }
  int get_seed() const { return seed; }

  int n_x;
  int n_y;
  int n_z;
  // Width of ln f.
  double sigma;

 private:
  TCCloud_fluctuations(const TCCloud_fluctuations&);
  TCCloud_fluctuations& operator=(const TCCloud_fluctuations&);

  long long cell_count() const { return static_cast<long long>(n_x) * n_y * n_z; }
  // A new Gaussian part of that spectrum and those sizes into out, drawn from
  // the generator, with mean 0 and width 1, or all 0 when the band holds no
  // mode (then flat is set). 0 when memory runs out.
  int make_gaussian_part(int nx, int ny, int nz, double power, double length, float* out,
                         int& flat);
  // f from g and sigma.
  void make_values();
  void free_arrays();

  double power_law;
  double length_scale;
  int seed;
  TCRandom generator;
  float* g;
  float* f;
};

#endif

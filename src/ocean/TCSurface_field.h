#ifndef TC_SURFACE_FIELD_H
#define TC_SURFACE_FIELD_H

// Base of every field that writes a lattice: the wave spectra, the swell and
// the disturbances. A field owns no array: it writes into the float buffer of
// the lattice it was built for, (n_x + 2) * n_y floats.
//
// Between an evolve and transform_to_lattice that buffer holds a half-complex
// spectrum: n_y rows of n_kx = n_x / 2 + 1 complex values, real part first.
// Column i is kx = i / (n_x dx); row j up to n_y / 2 is ky = j / (n_y dy), row
// n_y - j is ky = -j / (n_y dy) (cycles per metre).
//
// The random starting state lives in a spectrum file, written once and read
// back at every evolution: int32 n_kx, int32 n_ky, then n_kx * 2 * n_ky
// float32 in the layout above, every value byte-swapped when swap_bytes is 1.
class TCSurface_field {
 public:
  // Spectrum file "spectra.dat", generate 0, reference time 0 s.
  TCSurface_field(int kind_in, float* field_in, int n_x_in, int n_y_in, double dx_in, double dy_in);

  virtual ~TCSurface_field();
  // The lattice at time t (seconds since the reference time). Base: nothing.
  virtual void evolve_heights(double time);
  // Writes the spectrum file when generate says so. Base: nothing.
  virtual void initialize_field();
  // Turns what the evolve left in the buffer into heights. Returns the rms
  // height in metres where a field computes it (the swell), else 0.0.
  // Base: zero the buffer.
  virtual double transform_to_lattice();
  // Vertical acceleration (m/s^2) at time t into array, laid out like the
  // buffer, box-filtered over smear_x, smear_y (metres) and smear_t
  // (seconds); left for the caller to transform. Base: zero the array.
  virtual void evolve_acceleration_into(float* array, double time, double smear_x, double smear_y,
                                        double smear_t);
  // Velocity potential (m^2/s) at the surface, at time t, left in the buffer
  // until the next evolve. Base: zero the buffer.
  virtual void evolve_potential(double time);
  // For a field that travels over the sea: the detail offset (metres) that
  // places it at time t (seconds since the reference time), and 1. Fields
  // that stay where they were placed answer 0 and leave x, y alone.
  virtual int moving_offset(double& x, double& y, double time) const;

  // Copies a name into spectrum_file, cut to fit.
  void set_spectrum_file(const char* name);
  // Floats in the lattice buffer, (n_x + 2) * n_y; 0 for sizes below 1.
  long buffer_floats() const;

  char spectrum_file[256];
  int kind;  // 0 the wave spectra, -5 swell, the disturbance code otherwise
  int n_x;
  int n_y;
  double dx;  // metres
  double dy;
  float* field;  // the lattice's buffer, borrowed
  // Order to write a new spectrum file, holding the low half of the seed:
  // a seed that is a multiple of 65536 generates nothing, by design.
  short generate;
  // Seconds: where the field's clock starts. Callers pass times relative to
  // it; the wave spectra keep their reference time here.
  double reference_time;

 protected:
  // How a spectrum element is turned to a time: a height (or acceleration)
  // keeps its amplitude and rotates its phase; a potential takes sin / w and
  // cos / w.
  static const int height_phases = 0;
  static const int potential_phases = 1;

  // The shared first half of an evolution: allocate the per-column terms,
  // read the spectrum file into array, and turn every element's phase to
  // time t for waves travelling into the half plane of direction (cos_dir,
  // sin_dir). Allocation and file failures print and exit with status 1.
  void load_and_turn_phases(float* array, double t, double cos_dir, double sin_dir,
                            int phase_form) const;
  // Zeroes the imaginary parts at (0, 0), (0, n_y/2), (n_kx-1, 0) and
  // (n_kx-1, n_y/2), and makes rows n_y-j of columns 0 and n_kx-1 the
  // conjugates of rows j, so that the inverse transform is real.
  void make_hermitian(float* array) const;
  // Writes the header and array as the spectrum file; "unable to write to "
  // and exit 1 on failure.
  void write_spectrum_file(const float* array) const;
  // Zeroes n_kx * 2 * n_ky floats of array.
  void zero_spectrum(float* array) const;
  // Zeroes the whole buffer-sized array.
  void zero_buffer(float* array) const;
  int spectrum_columns() const;  // n_kx, 0 for sizes below 1
  int spectrum_rows() const;     // n_ky, 0 for sizes below 1

  // Multiplier of one element for the three kinds of field, from the
  // density of height variance at kx, ky (m^2 per (cycle/m)^2, the level
  // included; kx, ky in cycles per metre).
  static double height_factor(double density);
  static double acceleration_factor(double density, double kx, double ky, double smear_x,
                                    double smear_y, double smear_t);
  static double potential_factor(double density);

 private:
  // The spectrum file into array: 1, or 0 after printing "unable to open "
  // or the dimensions found.
  int read_spectrum_file(float* array) const;

  TCSurface_field(const TCSurface_field&);
  TCSurface_field& operator=(const TCSurface_field&);
};

#endif

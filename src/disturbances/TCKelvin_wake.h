#ifndef TC_KELVIN_WAKE_H
#define TC_KELVIN_WAKE_H

#include "TCSurface_field.h"
#include "Wake_details_input.h"

// One corner of a hull's outline, world metres.
struct TCWake_corner {
  double x;
  double y;
};

// A ship's Kelvin wake: the stationary pattern a hull moving at constant
// speed leaves behind it, computed once in wavenumber space as the linear
// response of deep water to a source shaped like the hull (or read from the
// file an earlier run wrote), then only carried across the sea with the ship.
//
// In the lattice the ship stands at the far x end, centred in y, and the
// pattern trails towards x = 0. The wake file holds the pattern per metre of
// hull depth: one float plane of n_y rows by n_x columns.
class TCKelvin_wake : public TCSurface_field {
 public:
  // Copies the input, works out the damping and generates or reads the
  // pattern into buffer ((n_x + 2) * n_y floats). Any failure prints its
  // lines, then "unable to allocate space for wake ", and exits with status 1.
  TCKelvin_wake(const Wake_details_input& input, float* buffer);
  ~TCKelvin_wake() override;

  // The pattern stands still in the ship's frame: nothing to evolve.
  void evolve_heights(double time) override;
  void initialize_field() override;
  double transform_to_lattice() override;
  // Vertical acceleration seen at a fixed point as the pattern passes,
  // -U^2 d2h/dx2 taken spectrally, with the stern columns and the seam
  // zeroed. The smearing arguments are not used.
  void evolve_acceleration_into(float* array, double time, double smear_x, double smear_y,
                                double smear_t) override;
  // No potential is kept for the pattern: zeroes the buffer.
  void evolve_potential(double time) override;
  // The detail offset (metres) at time t (seconds since the ocean's
  // reference time) that puts the lattice's ship centre on the ship; 1.
  int moving_offset(double& x, double& y, double time) const override;

  // 1 when lattice point (u, v) (metres) lies in the hull's footprint: the
  // box for a rectangle; for an ellipse the box cut by an ellipse of
  // semi-axes boat_length and boat_width / 2 centred on the stern. Else 0.
  int inside_hull(double u, double v) const;
  // Lattice point (u, v) to world (x, y) at time t.
  void lattice_to_world(double u, double v, double time, double& x, double& y) const;
  // Its inverse: the lattice coordinates (metres) of a sea point at that time.
  void world_to_lattice(double x, double y, double time, double& u, double& v) const;
  // 1 when a sea point (metres) lies in the hull at that time (seconds from
  // the reference time).
  int hull_covers(double x, double y, double time) const;
  // The hull's box as four world corners, count 4, in the order stern
  // starboard (-L/2, -W/2), bow starboard, bow port, stern port; the ring
  // closes from the last back to the first.
  void hull_outline(int& count, TCWake_corner ring[4], double time) const;

  int generate_wake;
  char wake_file[256];
  double center_x;  // metres, the ship's centre in the lattice
  double center_y;
  double boat_length;  // metres
  double boat_width;
  double boat_depth;
  int boat_shape;  // 0 from a file (flat), 1 rectangle, 2 ellipse
  char hull_file[256];
  double damping_eps;
  double damping_us;
  double damping;     // seconds: eps * U^3 / (us^2 g), 0 when reading
  double position_x;  // metres, the ship at the reference time
  double position_y;
  double direction;  // radians
  double velocity;   // metres per second

 private:
  // 1, or 0 after printing why.
  int generate_or_read();
  int read_wake_file();
  int generate();
  // Every node value divided or multiplied by a factor, rounded to float
  // the same way on both roads so that a read-back equals what was
  // generated.
  void divide_field(double factor);
  void multiply_field(double factor);

  TCKelvin_wake(const TCKelvin_wake&);
  TCKelvin_wake& operator=(const TCKelvin_wake&);
};

#endif

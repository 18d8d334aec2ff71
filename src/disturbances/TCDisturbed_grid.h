#ifndef TC_DISTURBED_GRID_H
#define TC_DISTURBED_GRID_H

#include "TCGrid.h"

// The sea lattice together with its disturbances: up to 100 detail lattices
// (swell, wakes, ripples, height and multiplier grids, ...) placed on the sea
// and combined with the primary heights at the moment of sampling, and up to
// 100 mirror lines (walls). Nothing is ever resampled into the primary array.
//
// A detail is additive or multiplying, cartesian (a lattice of n_x by n_y
// nodes) or radial (one row, f[i] at radius i * dx), optionally rotated. A
// world point (x, y) reaches detail coordinates by u = x + offset_x,
// v = y + offset_y, then, if rotated, u' = u c - v s, v' = v c + u s with
// c = cos(a), s = sin(-a).
//
// The holder owns the detail arrays; the field objects that fill them only
// borrow them. Sampling writes nothing: it runs per ray.
class TCDisturbed_grid : public TCGrid {
 public:
  static const int capacity = 100;

  // Detail modes.
  static const int additive_cartesian = 0;
  static const int additive_radial = 1;
  static const int multiplying_cartesian = 2;
  static const int multiplying_radial = 3;

  // Three pairs, one per lattice form of TCGrid (no doubling; doubling with
  // last_index serving twice; doubling with its own size), each for one
  // detail or for count details given by arrays of sizes. primary, when not
  // null, is a height buffer of (n_x + 2) * n_y floats handed in: the holder
  // samples it in place of its own and leaves it to its owner. Every detail
  // array is allocated at construction, (n_x + 2) * n_y floats, zero filled;
  // a failure prints "unable to allocate grid " with the index and exits 1.
  TCDisturbed_grid(int n_x_in, int n_y_in, int detail_nx, int detail_ny, double detail_dx_in,
                   double detail_dy_in, float* primary, double dx_in, double dy_in);
  TCDisturbed_grid(int n_x_in, int n_y_in, int count, const int* detail_nx, const int* detail_ny,
                   const double* detail_dx_in, const double* detail_dy_in, float* primary,
                   double dx_in, double dy_in);
  TCDisturbed_grid(int n_x_in, int n_y_in, int last_index_in, int detail_nx, int detail_ny,
                   double detail_dx_in, double detail_dy_in, float* primary, double dx_in,
                   double dy_in);
  TCDisturbed_grid(int n_x_in, int n_y_in, int last_index_in, int count, const int* detail_nx,
                   const int* detail_ny, const double* detail_dx_in, const double* detail_dy_in,
                   float* primary, double dx_in, double dy_in);
  TCDisturbed_grid(int n_x_in, int n_y_in, int last_index_in, int doubling_size_in, int detail_nx,
                   int detail_ny, double detail_dx_in, double detail_dy_in, float* primary,
                   double dx_in, double dy_in);
  TCDisturbed_grid(int n_x_in, int n_y_in, int last_index_in, int doubling_size_in, int count,
                   const int* detail_nx, const int* detail_ny, const double* detail_dx_in,
                   const double* detail_dy_in, float* primary, double dx_in, double dy_in);

  ~TCDisturbed_grid() override;
  // The node value (wrapped) with the details and mirrors at the node's
  // world point, then cusps; no round drop.
  double height_at_node(int i, int j) override;
  // h = M * (lattice + A) + z_offset, A the sum of additive details and M
  // the product of multiplying ones; each mirror line adds the same at the
  // mirror point less z_offset; then cusps and the round drop unless
  // keep_flat. The lattice part always wraps on both axes.
  double height_at(double x, double y, int keep_flat) override;
  // The lattice's raw range; each detail node's value is added to the
  // lattice's lowest and highest and widens the range, so details do not
  // stack. Both ends are doubled when there is any mirror line.
  void height_range(float& min, float& max) override;
  // Slopes of the lattice and the additive details, times the multipliers'
  // product (their own gradients left out), plus mirrors, cusps, curvature.
  void slope_at(double x, double y, double& dzdx, double& dzdy, int keep_flat) override;
  void slope_at_node(int i, int j, double& dzdx, double& dzdy) override;

  // Mode and rotation setters: an index below 0 or at or past n_details is
  // ignored. angle in radians.
  void set_detail_radial(int i);
  void set_detail_cartesian(int i);
  void set_detail_multiplier(int i);
  void set_detail_radial_multiplier(int i);
  void set_detail_rotation(int i, double angle);
  void clear_detail_rotation(int i);
  // A mirror line through (x, y) along angle (radians). Beyond the hundredth
  // it prints its two lines and exits with status 1.
  void add_reflecting_line(double x, double y, double angle);
  // World to detail frame and back, metres. A bad index leaves the point as
  // it is.
  void detail_coordinates(int i, double x, double y, double& u, double& v) const;
  void detail_to_world(int i, double u, double v, double& x, double& y) const;
  // 1 when the point lies on the blank side of any line; 0 with no lines.
  int behind_reflecting_line(double x, double y) const;

  int n_lines;
  double line_x[capacity];
  double line_y[capacity];
  double line_cos[capacity];
  double line_sin[capacity];

  int n_details;
  int detail_n_x[capacity];
  int detail_n_y[capacity];
  double detail_dx[capacity];  // metres
  double detail_dy[capacity];
  double detail_inv[capacity][2];  // 1/dx, 1/dy
  int detail_periodic[capacity];   // wraps on both axes or on neither
  int detail_mode[capacity];
  int detail_rotated[capacity];
  double detail_cos[capacity];        // cos(a)
  double detail_sin[capacity];        // sin(-a): the sign is part of the convention
  double detail_offset[capacity][2];  // metres, added to world x, y
  float* detail_field[capacity];      // owned here, borrowed by the fields

 private:
  void set_up(int count, const int* detail_nx, const int* detail_ny, const double* detail_dx_in,
              const double* detail_dy_in, float* primary);
  int valid_index(int i) const;

  // Steps of a sample, none of which writes anything.
  // Backward differences over slope_step nodes of the raw node heights.
  void lattice_node_slope(long long i, long long j, double& sx, double& sy) const;
  double lattice_value(double x, double y) const;
  void lattice_slope(double x, double y, double& sx, double& sy) const;
  double detail_value(int k, double u, double v) const;
  void detail_slope(int k, double u, double v, double& sx, double& sy) const;
  // Additive sum and multiplying product of the details at a world point.
  void details_at(double x, double y, double& add, double& product) const;
  // Additive detail slopes (turned back to world axes) and the product.
  void detail_slopes_at(double x, double y, double& sx, double& sy, double& product) const;
  // M * (lattice + A) at a world point, without z_offset.
  double disturbed_value(double x, double y) const;
  void disturbed_slope(double x, double y, double& sx, double& sy) const;
  void mirror_point(int line, double x, double y, double& mx, double& my) const;
  // Everything but cusps and the round drop, z_offset included.
  double uncusped_height(double x, double y) const;
  double uncusped_node_height(int i, int j) const;
  void mirrored_slopes(double x, double y, double& sx, double& sy) const;

  int owns_primary;

  TCDisturbed_grid(const TCDisturbed_grid&);
  TCDisturbed_grid& operator=(const TCDisturbed_grid&);
};

#endif

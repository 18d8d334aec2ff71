#ifndef TC_GRID_H
#define TC_GRID_H

#include "TCVector.h"

// The sea-surface lattice: heights in metres on an even spacing, sampled
// bilinearly, with backward-difference slopes, optional periodic wrapping,
// cusp sharpening of crests, the drop of a round surface, and the radial
// distance-doubling rule of the ridge-line sampler.
//
// The float buffer doubles as the half-complex spectrum of a real 2D
// transform: n_y rows of n_x / 2 + 1 complex values, (n_x + 2) * n_y floats.
// Once transformed back, the heights sit packed at i + n_x * j and the last
// 2 * n_y floats are spare.
class TCGrid {
 public:
  // No doubling: last_index is the larger of n_x and n_y.
  TCGrid(int n_x_in, int n_y_in, double dx_in, double dy_in);
  // Doubling, last_index also serving as the doubling size.
  TCGrid(int n_x_in, int n_y_in, int last_index_in, double dx_in, double dy_in);
  // Doubling; the size is cut to a multiple of 4, and at least 4.
  TCGrid(int n_x_in, int n_y_in, int last_index_in, int doubling_size_in, double dx_in,
         double dy_in);

  virtual ~TCGrid();
  // Node height plus z_offset, wrapped on periodic axes; -99999999.0 plus
  // z_offset off the lattice. Cusped when cusps are on, the off-lattice
  // value excepted.
  virtual double height_at_node(int i, int j);
  // World x, y in metres. Bilinear over four nodes; every node off the
  // lattice takes 99999999.0 off the sum, so an edge sample is far below
  // any wave. Then z_offset, cusps (not on a sample that touches a node off
  // the lattice, which stays far below), and the round drop unless
  // keep_flat.
  virtual double height_at(double x, double y, int keep_flat);
  // Lowest and highest raw node height (no z_offset, no cusps).
  virtual void height_range(float& min, float& max);
  // World x, y in metres; slopes dz/dx, dz/dy of the surface height_at gives.
  virtual void slope_at(double x, double y, double& dzdx, double& dzdy, int keep_flat);
  // Backward differences over slope_step nodes, on raw heights; periodic
  // axes wrap, others clamp to the lattice.
  virtual void slope_at_node(int i, int j, double& dzdx, double& dzdy);

  // Lattice coordinates (metres from node (0, 0)) to world and back.
  void lattice_to_world(double u, double v, double& x, double& y) const;
  void world_to_lattice(double x, double y, double& u, double& v) const;
  // The same, carrying z: z_offset is added on the way to the world.
  void lattice_to_world(const TCVector& lattice, TCVector& world) const;
  void world_to_lattice(const TCVector& world, TCVector& lattice) const;

  void set_cusps(double factor);
  void clear_cusps();
  void set_height_limits(float min, float max);
  void refresh_height_limits();

  // Unit upward normal at world x, y.
  void normal_at(double x, double y, TCVector& normal);

  // Index i of a radial walk to its sample position (lattice steps from the
  // centre) and the stride there; fraction is how far i is through its
  // stride level, 0.0 up to the doubling size.
  void index_to_sample(int i, int& sample, int& stride) const;
  void index_to_sample(int i, int& sample, int& stride, double& fraction) const;
  // The first index from 1 to last_index - 1 whose sample is beyond s; s
  // itself when there is none.
  int index_for_sample(int s) const;
  // The stride at the index that reaches last_index.
  int coarsest_stride() const;

  // Samples the surface on the rectangle a definition file gives and writes
  // it as plane 0 of the float image "<object_name>_grid.<suffix>.img":
  // x outer, y inner, so dims are (x points, y points). Failures print their
  // line and end the process with status 1; 1 when written.
  int write_height_grid(const char* definition_file, const char* object_name, const char* suffix);

  int n_x;
  int n_y;
  double dx;
  double dy;
  double inv_dx;
  double inv_dy;
  // Added to world x, y (metres) before lookup.
  double offset_x;
  double offset_y;
  float* height;
  float height_min;
  float height_max;
  // Box-centring offset in metres, added to every height returned.
  double z_offset;
  int periodic_x;
  int periodic_y;
  int round_flag;
  // Metres; 99999999.0 for a flat surface.
  double radius;
  int doubling_on;
  int last_index;
  int slope_step;
  int doubling_size;
  int cusp_on;
  // Per metre: h becomes h + cusp_factor * h^2.
  double cusp_factor;

 protected:
  // Raw node height with wrapping on periodic axes and clamping on others.
  double clamped_height(long long i, long long j) const;

 private:
  void allocate();
  // The four bilinear nodes around lattice position (a, b), in node units:
  // node indices, already wrapped on periodic axes, and weights.
  void bilinear_nodes(double a, double b, long long ii[2], long long jj[2], double w[4]) const;
  // 1 and the element index of node (i, j) when it lies on the lattice after
  // wrapping periodic axes; 0 otherwise.
  int node_element(long long i, long long j, long long& element) const;
  double cusped(double h) const;

  TCGrid(const TCGrid&);
  TCGrid& operator=(const TCGrid&);
};

#endif

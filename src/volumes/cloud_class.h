#ifndef TC_CLOUD_CLASS_H
#define TC_CLOUD_CLASS_H

#include "TCVolume_Object.h"

class Cloud_input;
class TCCloud_fluctuations;

// A volume whose density comes from a file (a lattice of liquid water
// content, or one number for all of it), optionally times a periodic field
// of small-scale fluctuations that may change with time. In the dynamic
// mode the field is a chain of states one update_time apart from the seed
// on; a frame between two states blends them.
class cloud_class : public TCVolume_Object {
 public:
  // Reads the density and makes (or reads) the fluctuation field; every
  // failure prints and ends the run with status 1.
  explicit cloud_class(const Cloud_input& input);
  ~cloud_class() override;

  // The volume's printout, then "CLOUD PARAMETERS".
  void print_dimensions() override;
  // Pose, then, in the dynamic mode, the fluctuation field at that time.
  void set_time(double t) override;

  // Lattice density (trilinear) times the fluctuation at the point, and the
  // lattice's column towards the sun; 0 outside the box.
  double density_point(const TCVector& point, double& density, double& extinction) override;
  // The lattice alone.
  double density_lattice(const TCVector& point, double& density) override;
  // The fluctuation field's cell against the lattice's smallest spacing,
  // at most 1: the sub-step a march needs to see it. 0 without one.
  double small_scale_factor() override;
  double density_of_index(long index) override;
  void set_extinction(long index, double value) override;
  double get_extinction(long index) override;

  // The fluctuation field at time t ("evolving cloud to time ", ...).
  void evolve_cloud(double t);

  char density_file[256];
  int density_format;
  int small_scale_fluctuations;  // 0 no, 1 yes, 2 yes and dump, 3 dynamic
  double relative_scale;
  double reference_time;
  double update_time;
  double sigma_time;
  double min_density;
  double max_density;
  float* density;     // lattice, index i + n_x (j + n_y k)
  float* extinction;  // column of density towards the sun, same layout
  // The fluctuation states: the one at current_step and the next.
  TCCloud_fluctuations* state_now;
  TCCloud_fluctuations* state_next;
  // Step 0 as made or read, from which the chain starts again.
  TCCloud_fluctuations* state_zero;
  float* blended;  // (1 - r) now + r next, what density_point reads
  int current_step;
  double interpolation;  // r
  int ss_n[3];
  double ss_cell[3];  // metres a fluctuation cell spans along each axis

 private:
  void read_density(const Cloud_input& input);
  void make_fluctuations(const Cloud_input& input);
  // The chain back at step 0, from the seed.
  void restart_chain();
  void blend(double r);
  double blended_at(const TCVector& point) const;
  void lattice_at(const TCVector& point, double& rho, double& column) const;

  double power_law_;
  double length_cells_;
  int seed_;
  double log_normal_width_;

  cloud_class(const cloud_class&);
  cloud_class& operator=(const cloud_class&);
};

#endif

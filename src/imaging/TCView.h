#ifndef TC_VIEW_H
#define TC_VIEW_H

#include "TCMatrix.h"
#include "TCVector.h"

// The part of an image plane an object is asked to paint: a pose and a grid
// of n_rows by n_cols pixels over [first, last] in elevation and azimuth.
class TCView {
 public:
  TCView();

  // Rebuilds both matrices from the angles (radians), as an object's pose.
  void set_pose(const TCVector& position_in, double chi_in, double phi_in, double theta_in);
  void set_grid(int n_rows_in, double first_e, double last_e, int n_cols_in, double first_a,
                double last_a);
  // New pixel counts over the same ranges.
  void set_resolution(int n_rows_in, int n_cols_in);
  void copy(const TCView& other);

  TCMatrix object_to_world;  // view frame to world
  TCMatrix world_to_view;
  TCVector position;
  double chi;
  double phi;
  double theta;
  int n_rows;
  int n_cols;
  double first_elevation;
  double last_elevation;
  double first_azimuth;
  double last_azimuth;
  double step_elevation;
  double step_azimuth;
  int mode;
  int anti_alias;
  int resampling_elevation;
  int resampling_azimuth;

 private:
  void update_steps();
};

#endif

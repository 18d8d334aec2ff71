#include "TCView.h"

TCView::TCView()
    : chi(0.0),
      phi(0.0),
      theta(0.0),
      n_rows(1),
      n_cols(1),
      first_elevation(-1.0),
      last_elevation(1.0),
      first_azimuth(-1.0),
      last_azimuth(1.0),
      step_elevation(0.0),
      step_azimuth(0.0),
      mode(101),
      anti_alias(1),
      resampling_elevation(0),
      resampling_azimuth(0) {
  update_steps();
}

// The view's rotation is an object's: world_to_view plays world_to_object.
void TCView::set_pose(const TCVector& position_in, double chi_in, double phi_in, double theta_in) {
  position = position_in;
  chi = chi_in;
  phi = phi_in;
  theta = theta_in;
  world_to_view = TCMatrix::rotation(chi, phi, theta);
  object_to_world = world_to_view.transpose();
}

void TCView::set_grid(int n_rows_in, double first_e, double last_e, int n_cols_in, double first_a,
                      double last_a) {
  n_rows = n_rows_in;
  n_cols = n_cols_in;
  first_elevation = first_e;
  last_elevation = last_e;
  first_azimuth = first_a;
  last_azimuth = last_a;
  update_steps();
}

void TCView::set_resolution(int n_rows_in, int n_cols_in) {
  n_rows = n_rows_in;
  n_cols = n_cols_in;
  update_steps();
}

void TCView::copy(const TCView& other) {
  if (this == &other) return;
  object_to_world = other.object_to_world;
  world_to_view = other.world_to_view;
  position = other.position;
  chi = other.chi;
  phi = other.phi;
  theta = other.theta;
  n_rows = other.n_rows;
  n_cols = other.n_cols;
  first_elevation = other.first_elevation;
  last_elevation = other.last_elevation;
  first_azimuth = other.first_azimuth;
  last_azimuth = other.last_azimuth;
  step_elevation = other.step_elevation;
  step_azimuth = other.step_azimuth;
  mode = other.mode;
  anti_alias = other.anti_alias;
  resampling_elevation = other.resampling_elevation;
  resampling_azimuth = other.resampling_azimuth;
}

// Pixel pitch on the image plane. A grid of no pixels has no pitch: it keeps
// 0 rather than dividing by zero.
void TCView::update_steps() {
  step_elevation = n_rows != 0 ? (last_elevation - first_elevation) / n_rows : 0.0;
  step_azimuth = n_cols != 0 ? (last_azimuth - first_azimuth) / n_cols : 0.0;
}

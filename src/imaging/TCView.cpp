#include "TCView.h"

#include <cmath>

#include "TCConstants.h"

namespace {

// The polygon scan wraps bearings by this step, a shade short of two pi.
const double bearing_wrap_step = 6.2831853;

// Fixed units of the polygon scan: thousandths of the angle's measure.
const double polar_units = 1000.0;

}  // namespace

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
      resampling_azimuth(0),
      whole_n_rows(1),
      whole_n_cols(1),
      whole_first_elevation(-1.0),
      whole_last_elevation(1.0),
      whole_first_azimuth(-1.0),
      whole_last_azimuth(1.0),
      whole_first_row(0),
      whole_first_col(0) {
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
  whole_is_own();
}

void TCView::set_resolution(int n_rows_in, int n_cols_in) {
  n_rows = n_rows_in;
  n_cols = n_cols_in;
  update_steps();
  whole_is_own();
}

void TCView::whole_is_own() {
  whole_n_rows = n_rows;
  whole_n_cols = n_cols;
  whole_first_elevation = first_elevation;
  whole_last_elevation = last_elevation;
  whole_first_azimuth = first_azimuth;
  whole_last_azimuth = last_azimuth;
  whole_first_row = 0;
  whole_first_col = 0;
}

void TCView::set_whole(int n_rows_in, double first_e, double last_e, int n_cols_in, double first_a,
                       double last_a, int first_row, int first_col) {
  whole_n_rows = n_rows_in;
  whole_n_cols = n_cols_in;
  whole_first_elevation = first_e;
  whole_last_elevation = last_e;
  whole_first_azimuth = first_a;
  whole_last_azimuth = last_a;
  whole_first_row = first_row;
  whole_first_col = first_col;
}

void TCView::whole_view(TCView& out) const {
  out.copy(*this);
  out.set_grid(whole_n_rows, whole_first_elevation, whole_last_elevation, whole_n_cols,
               whole_first_azimuth, whole_last_azimuth);
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
  whole_n_rows = other.whole_n_rows;
  whole_n_cols = other.whole_n_cols;
  whole_first_elevation = other.whole_first_elevation;
  whole_last_elevation = other.whole_last_elevation;
  whole_first_azimuth = other.whole_first_azimuth;
  whole_last_azimuth = other.whole_last_azimuth;
  whole_first_row = other.whole_first_row;
  whole_first_col = other.whole_first_col;
}

void TCView::pixel_bounds(int row, int col, double& e0, double& e1, double& a0, double& a1) const {
  e0 = first_elevation + row * step_elevation;
  e1 = first_elevation + (row + 1) * step_elevation;
  a0 = first_azimuth + col * step_azimuth;
  a1 = first_azimuth + (col + 1) * step_azimuth;
}

void TCView::pixel_view(int row, int col, TCView& out) const {
  double e0, e1, a0, a1;
  pixel_bounds(row, col, e0, e1, a0, a1);
  out.copy(*this);
  out.set_grid(1, e0, e1, 1, a0, a1);
}

void TCView::point_to_view(const TCVector& p, TCVector& out) const {
  out = world_to_view.times(p - position);
}

void TCView::direction_to_view(const TCVector& d, TCVector& out) const {
  out = world_to_view.times(d);
}

void TCView::point_from_view(const TCVector& p, TCVector& out) const {
  out = object_to_world.times(p) + position;
}

void TCView::direction_from_view(const TCVector& d, TCVector& out) const {
  out = object_to_world.times(d);
}

// The view looks along its +z; the plane at unit distance carries -x as
// elevation and -y as azimuth.
int TCView::project(const TCVector& world_point, double& e, double& a) const {
  const TCVector v = world_to_view.times(world_point - position);
  if (v.z == 0.0) return 0;
  e = -v.x / v.z;
  a = -v.y / v.z;
  return 1;
}

void TCView::plane_ray(double e, double a, TCRay& ray) const {
  const double length = std::sqrt(e * e + a * a + 1.0);
  const TCVector in_view(-e / length, -a / length, 1.0 / length);
  ray.set_origin(position);
  ray.set_direction(object_to_world.times(in_view));
}

void TCView::pixel_ray(int row, int col, TCRay& ray) const {
  double e0, e1, a0, a1;
  pixel_bounds(row, col, e0, e1, a0, a1);
  plane_ray((e0 + e1) * 0.5, (a0 + a1) * 0.5, ray);
}

// The pixel is a rectangle on the plane, so bilinear interpolation of its
// corners is a blend of each axis's bounds.
void TCView::fractional_ray(int row, int col, double row_fraction, double col_fraction,
                            TCRay& ray) const {
  double e0, e1, a0, a1;
  pixel_bounds(row, col, e0, e1, a0, a1);
  plane_ray(e0 + row_fraction * (e1 - e0), a0 + col_fraction * (a1 - a0), ray);
}

void TCView::polar_of(const TCVector& point, double bearing_offset, double& elevation,
                      double& bearing) const {
  const TCVector d = point - position;
  const double distance = std::sqrt(d.dot(d));
  elevation = distance > 0.0 ? d.z / distance : 0.0;
  bearing = std::atan2(d.x, -d.y) + bearing_offset;
  while (bearing > tc_pi) bearing -= bearing_wrap_step;
  while (bearing < -tc_pi) bearing += bearing_wrap_step;
  elevation *= polar_units;
  bearing *= polar_units;
}

int TCView::view_limits(double& min_azimuth, double& max_azimuth) const {
  const double low_e = first_elevation < last_elevation ? first_elevation : last_elevation;
  const double high_e = first_elevation < last_elevation ? last_elevation : first_elevation;
  const double low_a = first_azimuth < last_azimuth ? first_azimuth : last_azimuth;
  const double high_a = first_azimuth < last_azimuth ? last_azimuth : first_azimuth;

  // Straight down or up, as a direction: only one of the two can lie ahead.
  for (int sign = -1; sign <= 1; sign += 2) {
    const TCVector v = world_to_view.times(TCVector(0.0, 0.0, sign));
    if (v.z <= 0.0) continue;
    const double e = -v.x / v.z;
    const double a = -v.y / v.z;
    if (e >= low_e && e <= high_e && a >= low_a && a <= high_a) {
      min_azimuth = -tc_pi;
      max_azimuth = tc_pi;
      return 1;
    }
  }

  // Without a pole in the window, azimuth is monotonic along its edges, so
  // the corners bound it. Each is measured from the centre's azimuth to
  // keep an interval across the -pi/pi seam in one piece.
  TCRay ray;
  plane_ray((first_elevation + last_elevation) * 0.5, (first_azimuth + last_azimuth) * 0.5, ray);
  const double centre = std::atan2(ray[4], ray[3]);
  const double corner_e[4] = {first_elevation, first_elevation, last_elevation, last_elevation};
  const double corner_a[4] = {first_azimuth, last_azimuth, first_azimuth, last_azimuth};
  for (int corner = 0; corner < 4; corner++) {
    plane_ray(corner_e[corner], corner_a[corner], ray);
    double offset = std::atan2(ray[4], ray[3]) - centre;
    while (offset > tc_pi) offset -= tc_two_pi;
    while (offset < -tc_pi) offset += tc_two_pi;
    if (corner == 0 || centre + offset < min_azimuth) min_azimuth = centre + offset;
    if (corner == 0 || centre + offset > max_azimuth) max_azimuth = centre + offset;
  }
  return 0;
}

// Pixel pitch on the image plane. A grid of no pixels has no pitch: it keeps
// 0 rather than dividing by zero.
void TCView::update_steps() {
  step_elevation = n_rows != 0 ? (last_elevation - first_elevation) / n_rows : 0.0;
  step_azimuth = n_cols != 0 ? (last_azimuth - first_azimuth) / n_cols : 0.0;
}

double TCView::whole_pixel_width() const {
  return (whole_last_azimuth - whole_first_azimuth) / whole_n_cols;
}

double TCView::whole_pixel_height() const {
  return (whole_last_elevation - whole_first_elevation) / whole_n_rows;
}

int TCView::whole_window(double x0, double x1, double y0, double y1, int& row0, int& row1,
                         int& col0, int& col1) const {
  const int first_col = whole_first_col, first_row = whole_first_row;
  const int last_col = first_col + n_cols, last_row = first_row + n_rows;
  if (!(x1 >= first_col && y1 >= first_row && x0 < last_col && y0 < last_row)) return 0;
  col0 = x0 < first_col ? first_col : static_cast<int>(std::floor(x0));
  row0 = y0 < first_row ? first_row : static_cast<int>(std::floor(y0));
  col1 = x1 >= last_col ? last_col - 1 : static_cast<int>(std::floor(x1));
  row1 = y1 >= last_row ? last_row - 1 : static_cast<int>(std::floor(y1));
  return 1;
}

#ifndef TC_VIEW_H
#define TC_VIEW_H

#include "TCMatrix.h"
#include "TCRay.h"
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
  // New pixel counts over the same ranges. Both make the grid its own whole
  // picture.
  void set_resolution(int n_rows_in, int n_cols_in);
  // The whole picture this grid is a part of (a camera's slice): its pixel
  // counts and plane ranges, and the whole picture's row and column of this
  // grid's first pixel. Whatever is laid out over the picture (the air's
  // tables) follows the whole, so that slices merged equal it.
  void set_whole(int n_rows_in, double first_e, double last_e, int n_cols_in, double first_a,
                 double last_a, int first_row, int first_col);
  // This view with the whole picture as its grid.
  void whole_view(TCView& out) const;
  // Plane units one pixel of the whole picture spans, across and up.
  double whole_pixel_width() const;
  double whole_pixel_height() const;
  // The pixels of this view's part of the whole picture (whole-picture rows
  // and columns) that a box of whole-picture pixel coordinates touches,
  // clamped to the part: 0 when it touches none.
  int whole_window(double x0, double x1, double y0, double y1, int& row0, int& row1, int& col0,
                   int& col1) const;
  void copy(const TCView& other);

  // Image-plane bounds of one pixel: row spans [e0, e1] in elevation from
  // first_elevation + row * step_elevation, column [a0, a1] likewise.
  void pixel_bounds(int row, int col, double& e0, double& e1, double& a0, double& a1) const;
  // A 1 by 1 view with this pose, mode and flags whose range is that pixel.
  void pixel_view(int row, int col, TCView& out) const;

  // Between the world frame and this view's frame (metres); points are
  // taken about the view's position, directions are only rotated.
  void point_to_view(const TCVector& p, TCVector& out) const;
  void direction_to_view(const TCVector& d, TCVector& out) const;
  void point_from_view(const TCVector& p, TCVector& out) const;
  void direction_from_view(const TCVector& d, TCVector& out) const;

  // Image-plane coordinates of a world point. 0, with e and a untouched,
  // when the point lies in the plane through the view position square to
  // the line of sight; a point behind the view still projects (mirrored).
  int project(const TCVector& world_point, double& e, double& a) const;
  // Unit world ray from the view position through plane point (e, a).
  void plane_ray(double e, double a, TCRay& ray) const;
  // Ray through the pixel's centre, the mean of its bounds.
  void pixel_ray(int row, int col, TCRay& ray) const;
  // Ray through a point inside the pixel: fractions 0..1 of the way from
  // its first to its last elevation and azimuth bound, interpolated on the
  // image plane; 0.5, 0.5 is the centre, values outside reach neighbours.
  void fractional_ray(int row, int col, double row_fraction, double col_fraction, TCRay& ray) const;

  // A point's elevation, (z - position.z) / distance, and its bearing,
  // atan2(x, -y) + bearing_offset wrapped into -pi..pi, with x, y, z taken
  // about the view position; both times 1000 for the polygon scan's fixed
  // units. A point at the view position has elevation 0.
  void polar_of(const TCVector& point, double bearing_offset, double& elevation,
                double& bearing) const;
  // World azimuth, atan2(y, x) in radians, of the window's four corner rays
  // as one unbroken interval about the centre ray's azimuth, so min can be
  // below -pi or max above pi. Returns 1 with the whole circle, -pi..pi,
  // when the point straight down (or up) lies ahead of the view and inside
  // the window, bounds included; else 0.
  int view_limits(double& min_azimuth, double& max_azimuth) const;

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
  int whole_n_rows;
  int whole_n_cols;
  double whole_first_elevation;
  double whole_last_elevation;
  double whole_first_azimuth;
  double whole_last_azimuth;
  int whole_first_row;  // of this grid's first pixel in the whole picture
  int whole_first_col;

 private:
  void whole_is_own();
  void update_steps();
};

#endif

#ifndef SLICE_H
#define SLICE_H

#include "TCSurface_object.h"
#include "TCVector.h"

class TCGrid;
class TCPolygon;
class TCView;
class object_contour;

// A lattice node on a ring, seen from the camera. x, y are whole-picture
// pixel coordinates with y multiplied by the side, so that "higher" always
// means farther towards the horizon; tau is the node's place around the
// square ring (0 to 8 per turn, the same for every ring size); u, v are
// lattice coordinates in metres.
struct Ring_vertex {
  double x, y;
  double u, v;
  double tau;
  long long i, j;
  int valid;  // 0 behind the camera or over no water
};

// Draws a height field by the floating-horizon method on its lattice: rings
// of nodes around the point under the camera, near to far, each pair of
// rings cut into triangles, and a ridge line holding, per image column, the
// highest row any nearer ring has reached. A triangle shows only above it.
// Far rings take coarser strides (the lattice's distance doubling), so the
// work follows the nodes in view, not pixels times ray steps.
class Slice {
 public:
  // The fov is worked out from the view at once. max_points bounds a ring;
  // the ridge holds four times as many points. side 1 draws the surface
  // from above, -1 from below.
  Slice(TCGrid* lattice_in, int max_points_in, TCSurface_object* surface_object_in, int side_in,
        const TCView& view);
  ~Slice();

  // Shades every visible triangle into the contour; run_mattes goes
  // through the matte-only slot.
  void run(TCView& view, object_contour& contour);
  void run_mattes(TCView& view, object_contour& contour);

  // The ridge as it stands: n_ridge points in descending columns.
  int n_ridge;
  double* ridge_x;
  double* ridge_y;

  // Ring k & 1 of the walk: its vertices in order around the ring.
  Ring_vertex* ring[2];
  int n_ring_points[2];

  TCGrid* lattice;
  TCSurface_object* surface_object;
  int max_points;
  int periodic;
  int side;
  int straight_down;
  int image_mode;  // 1 draws radiance, 0 mattes only
  long long center_i, center_j;
  double ridge_bias;  // rows the horizon dips below the level line
  int start_ring, end_ring;
  double tau_min, tau_max;  // the fov's span around the ring, unwrapped
  int full_turn;            // the fov takes in the whole ring
  int parity;               // +1 when the image keeps the lattice's turning sense

  // The part of image triangle t (side-multiplied coordinates) that stands
  // above the ridge, into visible: 0 when none of it does. A triangle the
  // ridge does not reach passes whole.
  int clip_to_ridge(const Ring_vertex* const t[3], TCPolygon& visible);
  // The ridge index whose segment holds column x, searched from start.
  int get_ridge_point(double x, int start) const;
  // Merges the valid runs of ring k's polyline into the ridge: per column
  // the higher row wins.
  void update_ridge(int k);
  // The upper envelope of the ridge and one polyline of descending
  // columns (n points, at least two).
  void merge_into_ridge(const double* px, const double* py, int n);
  // Fills ring parity k with ring sample r at stride s; 0 when the
  // lattice holds no ring there.
  int build_ring(int k, int r, int s, const TCView& view);
  // The ridge before anything is drawn: two sentinels far below.
  void clear_ridge();

  // One triangle of a band (side-multiplied coordinates): drawn unless a
  // vertex is missing, it faces away (the first ring excepted) or the ridge
  // hides it; horizon selects the horizon slot.
  void draw_triangle(const Ring_vertex* const t[3], int first_ring, TCView& view,
                     object_contour& contour, int horizon);

  static const int most_ridge_polygon_points = 50;

 private:
  // Per-view constants of the projection into whole-picture pixels.
  void set_projection(const TCView& view);
  void initialize_fov(const TCView& view);
  // A node's image position: 0 when it is behind the camera or over no
  // water.
  int place_vertex(Ring_vertex& vertex, long long i, long long j) const;
  int project_point(const TCVector& object_point, double& x, double& y) const;
  // The triangles between the previous ring and ring k, zipped by their
  // place around the ring; horizon selects the horizon slot.
  void draw_band(int k, int first_ring, TCView& view, object_contour& contour, int horizon);
  // The last ring carried out to where its lines of sight meet the horizon.
  void build_horizon_ring(int from, int to, const TCView& view);
  void walk(TCView& view, object_contour& contour);

  double* scratch_x;
  double* scratch_y;
  int ridge_capacity;
  int ridge_cursor;
  TCVector camera;  // object frame
  double pixel_width, pixel_height;
  double first_azimuth, first_elevation;
  const TCView* projection_view;

  Slice(const Slice&);
  Slice& operator=(const Slice&);
};

// Linear interpolation of (xs, ys), descending in x, at x, searching from
// index start by columns; refuses fewer than two points.
double TCInterp_help8(const double* xs, const double* ys, int n, double x, int& start);

#endif

#include "Slice.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCError.h"
#include "TCGrid.h"
#include "TCPolygon.h"
#include "TCSettings.h"
#include "TCView.h"
#include "object_contour.h"

namespace {

// Rows and columns standing for "nothing drawn yet" and "no edge".
const double far_below = -99999999.0;
const double far_column = 99999999.0;
// Heights this far down mean "no surface here" (off a lattice that does
// not repeat).
const double no_surface = -1.0e7;
// Nodes taken beyond each end of the fov's span, so that every triangle
// reaching into the picture is built whole, and the ring about the centre
// node differs a little from the one about the camera.
const int ring_margin = 2;
// Node indices of the horizon ring are shifted by this, so that they are
// never mistaken for nodes.
const int horizon_marker = 1000;

double larger(double a, double b) {
  return a > b ? a : b;
}
double smaller(double a, double b) {
  return a < b ? a : b;
}

// Place around a square ring of a direction in the lattice plane: 0 to 8
// per turn, starting at the corner (+r, -r) and turning counter-clockwise,
// linear along each side, so that node q of a ring of m nodes per half side
// sits at q / m whatever the ring's size.
double square_place(double dx, double dy) {
  const double ax = std::fabs(dx), ay = std::fabs(dy);
  if (dx > 0.0 && dx >= ay) return 1.0 + dy / dx;
  if (dy > 0.0 && dy >= ax) return 3.0 - dx / dy;
  if (dx < 0.0 && -dx >= ay) return 5.0 + dy / dx;
  if (dy < 0.0) return 7.0 - dx / dy;
  return 0.0;
}

// Keeps the part of the polygon (xs, ys) on the side of the line through p
// and q where sense * cross >= 0; returns the new count.
int clip_half_plane(const double* xs, const double* ys, int n, double px, double py, double qx,
                    double qy, double sense, double* ox, double* oy) {
  int m = 0;
  const double ex = qx - px, ey = qy - py;
  for (int k = 0; k < n; k++) {
    const int l = k + 1 < n ? k + 1 : 0;
    const double ck = sense * (ex * (ys[k] - py) - ey * (xs[k] - px));
    const double cl = sense * (ex * (ys[l] - py) - ey * (xs[l] - px));
    if (ck >= 0.0) {
      ox[m] = xs[k];
      oy[m] = ys[k];
      m++;
    }
    if ((ck >= 0.0) != (cl >= 0.0)) {
      const double f = ck / (ck - cl);
      ox[m] = xs[k] + (xs[l] - xs[k]) * f;
      oy[m] = ys[k] + (ys[l] - ys[k]) * f;
      m++;
    }
  }
  return m;
}

}  // namespace

double TCInterp_help8(const double* xs, const double* ys, int n, double x, int& start) {
  if (n < 2) {
    std::cerr << "Error: Interpolating into " << n << " points in TCInterp_help8" << std::endl;
    return 0.0;
  }
  int k = start < 0 ? 0 : (start > n - 2 ? n - 2 : start);
  while (k < n - 2 && xs[k + 1] > x) k++;
  while (k > 0 && xs[k] < x) k--;
  start = k;
  const double width = xs[k] - xs[k + 1];
  if (!(width > 0.0)) return ys[k + 1];
  const double f = (xs[k] - x) / width;
  return ys[k] + (ys[k + 1] - ys[k]) * f;
}

Slice::Slice(TCGrid* lattice_in, int max_points_in, TCSurface_object* surface_object_in,
             int side_in, const TCView& view)
    : n_ridge(0),
      ridge_x(nullptr),
      ridge_y(nullptr),
      lattice(lattice_in),
      surface_object(surface_object_in),
      max_points(max_points_in < 16 ? 16 : max_points_in),
      periodic(lattice_in->periodic_x && lattice_in->periodic_y),
      side(side_in < 0 ? -1 : 1),
      straight_down(0),
      image_mode(1),
      center_i(0),
      center_j(0),
      ridge_bias(0.0),
      start_ring(0),
      end_ring(0),
      tau_min(0.0),
      tau_max(8.0),
      full_turn(1),
      parity(1),
      scratch_x(nullptr),
      scratch_y(nullptr),
      ridge_capacity(0),
      ridge_cursor(0),
      pixel_width(1.0),
      pixel_height(1.0),
      first_azimuth(0.0),
      first_elevation(0.0),
      projection_view(nullptr) {
  ring[0] = ring[1] = nullptr;
  n_ring_points[0] = n_ring_points[1] = 0;
  ridge_capacity = 4 * max_points;
  ridge_x = new (std::nothrow) double[ridge_capacity];
  ridge_y = new (std::nothrow) double[ridge_capacity];
  scratch_x = new (std::nothrow) double[ridge_capacity];
  scratch_y = new (std::nothrow) double[ridge_capacity];
  ring[0] = new (std::nothrow) Ring_vertex[2 * max_points];
  ring[1] = new (std::nothrow) Ring_vertex[2 * max_points];
  if (ridge_x == nullptr || ridge_y == nullptr || scratch_x == nullptr || scratch_y == nullptr ||
      ring[0] == nullptr || ring[1] == nullptr) {
    std::cerr << "unable to allocate ridge line arrays " << std::endl;
    std::exit(1);
  }
  clear_ridge();
  initialize_fov(view);
}

Slice::~Slice() {
  delete[] ridge_x;
  delete[] ridge_y;
  delete[] scratch_x;
  delete[] scratch_y;
  delete[] ring[0];
  delete[] ring[1];
}

void Slice::clear_ridge() {
  n_ridge = 2;
  ridge_x[0] = far_column;
  ridge_y[0] = far_below;
  ridge_x[1] = -far_column;
  ridge_y[1] = far_below;
  ridge_cursor = 0;
}

// Pixels are laid out over the whole picture, not this strip of it, so that
// a sliced render computes every pixel exactly as the whole one does.
void Slice::set_projection(const TCView& view) {
  projection_view = &view;
  pixel_width = view.whole_pixel_width();
  pixel_height = view.whole_pixel_height();
  first_azimuth = view.whole_first_azimuth;
  first_elevation = view.whole_first_elevation;
  surface_object->point_to_object(view.position, camera);
  // A triangle turning counter-clockwise seen from the camera keeps a
  // positive area unless an axis of the picture runs backwards; seen from
  // below, the lattice's turning sense is reversed, as is the row axis.
  parity = (pixel_width > 0.0) == (pixel_height > 0.0) ? 1 : -1;
}

int Slice::project_point(const TCVector& object_point, double& x, double& y) const {
  TCVector world;
  surface_object->point_to_world(object_point, world);
  const TCVector v = projection_view->world_to_view.times(world - projection_view->position);
  if (!(v.z > 0.0)) return 0;
  const double e = -v.x / v.z;
  const double a = -v.y / v.z;
  x = (a - first_azimuth) / pixel_width;
  y = (e - first_elevation) / pixel_height * side;
  return std::isfinite(x) && std::isfinite(y);
}

int Slice::place_vertex(Ring_vertex& vertex, long long i, long long j) const {
  vertex.i = i;
  vertex.j = j;
  vertex.u = static_cast<double>(i) * lattice->dx;
  vertex.v = static_cast<double>(j) * lattice->dy;
  vertex.x = far_below;
  vertex.y = far_below;
  vertex.valid = 0;
  double x = 0.0, y = 0.0;
  lattice->lattice_to_world(vertex.u, vertex.v, x, y);
  const double z = lattice->height_at(x, y, 0) - lattice->z_offset;
  if (!(z > no_surface)) return 0;
  vertex.valid = project_point(TCVector(x, y, z), vertex.x, vertex.y);
  return vertex.valid;
}

void Slice::initialize_fov(const TCView& view) {
  set_projection(view);
  double u = 0.0, v = 0.0;
  lattice->world_to_lattice(camera.x, camera.y, u, v);
  const double limit = 1.0e9;
  double ci = std::floor(u * lattice->inv_dx), cj = std::floor(v * lattice->inv_dy);
  if (!(ci > -limit)) ci = -limit;
  if (!(ci < limit)) ci = limit;
  if (!(cj > -limit)) cj = -limit;
  if (!(cj < limit)) cj = limit;
  center_i = static_cast<long long>(ci);
  center_j = static_cast<long long>(cj);

  // Straight down (up, from below): a node next to the centre in the
  // picture, or the point under the camera inside the whole window.
  straight_down = 0;
  for (int di = -1; di <= 1 && !straight_down; di++) {
    for (int dj = -1; dj <= 1 && !straight_down; dj++) {
      Ring_vertex near;
      if (!place_vertex(near, center_i + di, center_j + dj)) continue;
      const double y = near.y * side;
      if (near.x >= 0.0 && near.x <= view.whole_n_cols && y >= 0.0 && y <= view.whole_n_rows)
        straight_down = 1;
    }
  }
  TCVector nadir;
  surface_object->direction_to_world(TCVector(0.0, 0.0, -side), nadir);
  const TCVector in_view = view.world_to_view.times(nadir);
  if (in_view.z > 0.0) {
    const double a = (-in_view.y / in_view.z - first_azimuth) / pixel_width;
    const double e = (-in_view.x / in_view.z - first_elevation) / pixel_height;
    if (a >= 0.0 && a <= view.whole_n_cols && e >= 0.0 && e <= view.whole_n_rows) straight_down = 1;
  }
  if (verbose) {
    if (straight_down)
      std::cout << "fov sees straight down (up)" << std::endl;
    else
      std::cout << "fov does not see straight down" << std::endl;
  }

  // Height over the mean level; a round surface drops away under the camera.
  double h = camera.z;
  if (lattice->round_flag) h += (camera.x * camera.x + camera.y * camera.y) * 0.5 / lattice->radius;
  ridge_bias = 0.0;
  if (lattice->round_flag && h > 0.0) ridge_bias = -1000.0 * std::sqrt(2.0 * h / lattice->radius);

  // The span of the fov around the ring, from its four edges.
  full_turn = straight_down;
  if (!full_turn) {
    const int steps_a = view.n_cols > 1 ? view.n_cols : 1;
    const int steps_e = view.n_rows > 1 ? view.n_rows : 1;
    TCRay centre;
    view.plane_ray(0.5 * (view.first_elevation + view.last_elevation),
                   0.5 * (view.first_azimuth + view.last_azimuth), centre);
    TCVector d;
    surface_object->direction_to_object(TCVector(centre[3], centre[4], centre[5]), d);
    const double tau_centre = square_place(d.x, d.y);
    const double phi_center = std::atan2(d.y, d.x);
    double phi_min = phi_center, phi_max = phi_center;
    tau_min = tau_centre;
    tau_max = tau_centre;
    const int n_edge = 2 * (steps_a + steps_e);
    for (int k = 0; k <= n_edge && !full_turn; k++) {
      double e = 0.0, a = 0.0;
      if (k <= steps_a) {
        e = view.first_elevation;
        a = view.first_azimuth + (view.last_azimuth - view.first_azimuth) * k / steps_a;
      } else if (k <= steps_a + steps_e) {
        a = view.last_azimuth;
        e = view.first_elevation +
            (view.last_elevation - view.first_elevation) * (k - steps_a) / steps_e;
      } else if (k <= 2 * steps_a + steps_e) {
        e = view.last_elevation;
        a = view.first_azimuth +
            (view.last_azimuth - view.first_azimuth) * (k - steps_a - steps_e) / steps_a;
      } else {
        a = view.first_azimuth;
        e = view.first_elevation +
            (view.last_elevation - view.first_elevation) * (k - 2 * steps_a - steps_e) / steps_e;
      }
      TCRay ray;
      view.plane_ray(e, a, ray);
      surface_object->direction_to_object(TCVector(ray[3], ray[4], ray[5]), d);
      if (d.x == 0.0 && d.y == 0.0) {
        full_turn = 1;
        break;
      }
      double tau = square_place(d.x, d.y);
      while (tau > tau_centre + 4.0) tau -= 8.0;
      while (tau <= tau_centre - 4.0) tau += 8.0;
      tau_min = smaller(tau_min, tau);
      tau_max = larger(tau_max, tau);
      double phi = std::atan2(d.y, d.x);
      while (phi > phi_center + 3.1415926535) phi -= 6.283185307;
      while (phi <= phi_center - 3.1415926535) phi += 6.283185307;
      phi_min = smaller(phi_min, phi);
      phi_max = larger(phi_max, phi);
    }
    if (tau_max - tau_min >= 7.5) full_turn = 1;
    if (verbose) {
      // The sides of the square ring the fov crosses: 0 east, 1 north,
      // 2 west, 3 south.
      const int quad_first = ((static_cast<int>(std::floor(tau_min * 0.5)) % 4) + 4) % 4;
      const int quad_last = ((static_cast<int>(std::floor(tau_max * 0.5)) % 4) + 4) % 4;
      std::cout << "quads : " << quad_first << " " << quad_last << std::endl;
      std::cout << "phiCenter = " << phi_center << " phiMax = " << phi_max << std::endl;
      std::cout << "phiMin = " << phi_min << std::endl;
    }
  }
  if (full_turn) {
    tau_min = 0.0;
    tau_max = 8.0;
  }

  // The rings that reach the lattice.
  if (periodic) {
    start_ring = 0;
    end_ring = lattice->index_for_sample(lattice->last_index);
  } else {
    const long long last_i = lattice->n_x - 1, last_j = lattice->n_y - 1;
    const long long out_i = center_i < 0 ? -center_i : (center_i > last_i ? center_i - last_i : 0);
    const long long out_j = center_j < 0 ? -center_j : (center_j > last_j ? center_j - last_j : 0);
    long long reach = center_i > last_i - center_i ? center_i : last_i - center_i;
    const long long reach_j = center_j > last_j - center_j ? center_j : last_j - center_j;
    if (reach_j > reach) reach = reach_j;
    const long long first = out_i > out_j ? out_i : out_j;
    const long long most = 1000000;
    start_ring = static_cast<int>(first < most ? first : most);
    end_ring = static_cast<int>(reach + 1 < most ? reach + 1 : most);
  }
}

int Slice::build_ring(int k, int r, int s, const TCView&) {
  Ring_vertex* out = ring[k];
  n_ring_points[k] = 0;
  const int capacity = 2 * max_points;
  if (r <= 0) {
    place_vertex(out[0], center_i, center_j);
    out[0].tau = 0.0;
    n_ring_points[k] = 1;
    return 1;
  }
  if (s < 1) s = 1;
  const long long m = r / s > 0 ? r / s : 1;
  const long long turn = 8 * m;
  long long q_first = 0, q_last = turn;
  if (!full_turn) {
    q_first = static_cast<long long>(std::floor(tau_min * m)) - ring_margin;
    q_last = static_cast<long long>(std::ceil(tau_max * m)) + ring_margin;
    if (q_last - q_first >= turn) {
      q_first = 0;
      q_last = turn;
    }
  }
  int n = 0;
  for (long long q = q_first; q <= q_last; q++) {
    if (n >= capacity) {
      std::cout << "maxed out in get new slice " << std::endl;
      break;
    }
    long long w = q % turn;
    if (w < 0) w += turn;
    const long long quad = w / (2 * m), t = w % (2 * m);
    long long a = 0, b = 0;
    switch (quad) {
      case 0:
        a = r;
        b = -r + t * s;
        break;
      case 1:
        a = r - t * s;
        b = r;
        break;
      case 2:
        a = -r;
        b = r - t * s;
        break;
      default:
        a = -r + t * s;
        b = -r;
        break;
    }
    Ring_vertex& vertex = out[n++];
    place_vertex(vertex, center_i + a, center_j + b);
    vertex.tau = static_cast<double>(q) / static_cast<double>(m);
  }
  n_ring_points[k] = n;
  return n > 0;
}

int Slice::get_ridge_point(double x, int start) const {
  int k = start < 0 ? 0 : (start > n_ridge - 2 ? n_ridge - 2 : start);
  while (k < n_ridge - 2 && ridge_x[k + 1] > x) k++;
  while (k > 0 && ridge_x[k] < x) k--;
  if (!(ridge_x[k] >= x && x >= ridge_x[k + 1])) {
    report_error("Slice::get_ridge_point", "opps! missed the ridgeline!!", "");
    return 0;
  }
  return k;
}

int Slice::clip_to_ridge(const Ring_vertex* const t[3], TCPolygon& visible) {
  visible.clear();
  double x_lo = t[0]->x, x_hi = t[0]->x, top = t[0]->y, bottom = t[0]->y;
  for (int k = 1; k < 3; k++) {
    x_lo = smaller(x_lo, t[k]->x);
    x_hi = larger(x_hi, t[k]->x);
    top = larger(top, t[k]->y);
    bottom = smaller(bottom, t[k]->y);
  }
  const int whole = n_ridge <= 2 || x_hi < ridge_x[n_ridge - 1] || x_lo > ridge_x[0];
  double px[most_ridge_polygon_points + 2], py[most_ridge_polygon_points + 2];
  int n = 0;
  double ridge_low = 0.0, ridge_high = 0.0;
  if (!whole) {
    const int k_hi = get_ridge_point(x_hi, ridge_cursor);
    const int k_lo = get_ridge_point(x_lo, k_hi);
    ridge_cursor = k_hi;
    int cursor = k_hi;
    px[n] = x_hi;
    py[n++] = TCInterp_help8(ridge_x, ridge_y, n_ridge, x_hi, cursor);
    for (int k = k_hi + 1; k <= k_lo; k++) {
      if (n >= most_ridge_polygon_points - 3) {
        std::cerr << "nRidgePoly > MAXPOINTS " << std::endl;
        std::exit(1);
      }
      px[n] = ridge_x[k];
      py[n++] = ridge_y[k];
    }
    cursor = k_lo;
    px[n] = x_lo;
    py[n++] = TCInterp_help8(ridge_x, ridge_y, n_ridge, x_lo, cursor);
    ridge_low = py[0];
    ridge_high = py[0];
    for (int k = 1; k < n; k++) {
      ridge_low = smaller(ridge_low, py[k]);
      ridge_high = larger(ridge_high, py[k]);
    }
    // Wholly below every ridge point of its columns: hidden.
    if (top <= ridge_low) return 0;
  }
  if (whole || bottom >= ridge_high) {
    for (int k = 0; k < 3; k++) visible.add_vertex(t[k]->x, t[k]->y);
    return 1;
  }
  // The region above the ridge over the triangle's columns, closed above
  // the triangle, cut by the triangle's three edges.
  const double lid = larger(ridge_high, top) + 1.0;
  px[n] = x_lo;
  py[n++] = lid;
  px[n] = x_hi;
  py[n++] = lid;
  const double twice_area =
      (t[1]->x - t[0]->x) * (t[2]->y - t[0]->y) - (t[2]->x - t[0]->x) * (t[1]->y - t[0]->y);
  const double sense = twice_area < 0.0 ? -1.0 : 1.0;
  double ax[2 * most_ridge_polygon_points + 8], ay[2 * most_ridge_polygon_points + 8];
  double bx[2 * most_ridge_polygon_points + 8], by[2 * most_ridge_polygon_points + 8];
  int m = clip_half_plane(px, py, n, t[0]->x, t[0]->y, t[1]->x, t[1]->y, sense, ax, ay);
  m = clip_half_plane(ax, ay, m, t[1]->x, t[1]->y, t[2]->x, t[2]->y, sense, bx, by);
  m = clip_half_plane(bx, by, m, t[2]->x, t[2]->y, t[0]->x, t[0]->y, sense, ax, ay);
  if (m < 3) return 0;
  for (int k = 0; k < m; k++) visible.add_vertex(ax[k], ay[k]);
  return visible.area() > 0.0;
}

void Slice::merge_into_ridge(const double* px, const double* py, int n) {
  if (n < 2 || !(px[0] > px[n - 1])) return;
  const double p_hi = px[0], p_lo = px[n - 1];
  int m = 0;
  // Appends a point of the new ridge, dropping exact repeats.
  auto push = [&](double x, double y) {
    if (m > 0 && scratch_x[m - 1] == x && scratch_y[m - 1] == y) return;
    if (m >= ridge_capacity) {
      std::cerr << "ridge array too small " << std::endl;
      std::exit(1);
    }
    scratch_x[m] = x;
    scratch_y[m] = y;
    m++;
  };
  int a = 0;
  while (a < n_ridge && ridge_x[a] > p_hi) {
    push(ridge_x[a], ridge_y[a]);
    a++;
  }
  // Events: every point of either line over the overlap, in descending
  // columns. At each, the limits from the right and from the left of both
  // lines (they differ at a step, and the new line is nothing outside its
  // ends); between two events both are straight, so they cross at most once.
  int b = 0;
  int have_previous = 0;
  double previous_x = 0.0, previous_r = 0.0, previous_p = 0.0;
  int cursor_r = a > 0 ? a - 1 : 0, cursor_p = 0;
  while (true) {
    const int has_r = a < n_ridge && ridge_x[a] >= p_lo;
    const int from_p = b < n;
    if (!has_r && !from_p) break;
    double x = 0.0;
    if (has_r && from_p)
      x = larger(ridge_x[a], px[b]);
    else
      x = has_r ? ridge_x[a] : px[b];
    const int r_here = has_r && ridge_x[a] == x;
    const int p_here = from_p && px[b] == x;
    double r_right = 0.0, r_left = 0.0, p_right = 0.0, p_left = 0.0;
    if (r_here) {
      int e = a;
      while (e + 1 < n_ridge && ridge_x[e + 1] == x) e++;
      r_right = ridge_y[a];
      r_left = ridge_y[e];
      a = e + 1;
    } else {
      r_right = r_left = TCInterp_help8(ridge_x, ridge_y, n_ridge, x, cursor_r);
    }
    if (p_here) {
      int e = b;
      while (e + 1 < n && px[e + 1] == x) e++;
      p_right = b == 0 ? far_below : py[b];
      p_left = e == n - 1 ? far_below : py[e];
      b = e + 1;
    } else {
      p_right = p_left = TCInterp_help8(px, py, n, x, cursor_p);
    }
    if (have_previous) {
      const double dl = previous_p - previous_r;
      const double dr = p_right - r_right;
      if ((dl > 0.0 && dr < 0.0) || (dl < 0.0 && dr > 0.0)) {
        const double f = dl / (dl - dr);
        push(previous_x + (x - previous_x) * f, previous_r + (r_right - previous_r) * f);
      }
    }
    const double top_right = larger(r_right, p_right);
    const double top_left = larger(r_left, p_left);
    const int needed = (r_here && (r_right >= p_right || r_left >= p_left)) ||
                       (p_here && (p_right >= r_right || p_left >= r_left)) ||
                       top_right != top_left;
    if (needed) {
      push(x, top_right);
      if (top_left != top_right) push(x, top_left);
    }
    previous_x = x;
    previous_r = r_left;
    previous_p = p_left;
    have_previous = 1;
  }
  for (; a < n_ridge; a++) push(ridge_x[a], ridge_y[a]);
  double* swap_x = ridge_x;
  double* swap_y = ridge_y;
  ridge_x = scratch_x;
  ridge_y = scratch_y;
  scratch_x = swap_x;
  scratch_y = swap_y;
  n_ridge = m;
  ridge_cursor = 0;
}

void Slice::update_ridge(int k) {
  const Ring_vertex* r = ring[k];
  const int n = n_ring_points[k];
  double* xs = new double[n > 0 ? n : 1];
  double* ys = new double[n > 0 ? n : 1];
  // Runs of valid vertices, each cut where its columns turn back, merged
  // one piece at a time with the piece's columns descending.
  int first = 0;
  while (first < n) {
    if (!r[first].valid) {
      first++;
      continue;
    }
    int last = first;
    int direction = 0;
    while (last + 1 < n && r[last + 1].valid) {
      const double step = r[last + 1].x - r[last].x;
      const int d = step > 0.0 ? 1 : (step < 0.0 ? -1 : 0);
      if (d != 0 && direction != 0 && d != direction) break;
      if (d != 0) direction = d;
      last++;
    }
    const int count = last - first + 1;
    if (count >= 2 && direction != 0) {
      for (int p = 0; p < count; p++) {
        const int from = direction < 0 ? first + p : last - p;
        xs[p] = r[from].x;
        ys[p] = r[from].y;
      }
      merge_into_ridge(xs, ys, count);
    }
    first = last > first ? last : first + 1;
  }
  delete[] xs;
  delete[] ys;
}

void Slice::draw_triangle(const Ring_vertex* const t[3], int first_ring, TCView& view,
                          object_contour& contour, int horizon) {
  if (!t[0]->valid || !t[1]->valid || !t[2]->valid) return;
  const double twice_area =
      (t[1]->x - t[0]->x) * (t[2]->y - t[0]->y) - (t[2]->x - t[0]->x) * (t[1]->y - t[0]->y);
  if (!first_ring && !(parity * twice_area > 0.0)) return;
  TCPolygon visible;
  if (!clip_to_ridge(t, visible)) return;
  for (int k = 0; k < visible.n; k++) visible.y[k] *= side;
  TCSurface_vertex corners[3];
  for (int k = 0; k < 3; k++) {
    corners[k].x = t[k]->x;
    corners[k].y = t[k]->y * side;
    corners[k].u = t[k]->u;
    corners[k].v = t[k]->v;
  }
  if (horizon)
    surface_object->horizon_triangle(view, contour, corners, visible, side);
  else if (image_mode)
    surface_object->image_triangle(view, contour, corners, visible, side);
  else
    surface_object->matte_triangle(view, contour, corners, visible, side);
}

void Slice::draw_band(int k, int first_ring, TCView& view, object_contour& contour, int horizon) {
  const Ring_vertex* inner = ring[k ^ 1];
  const Ring_vertex* outer = ring[k];
  const int n_in = n_ring_points[k ^ 1], n_out = n_ring_points[k];
  if (n_in == 0 || n_out == 0) return;
  // Zip the two rings by their place around the square: each step adds the
  // next node of whichever ring comes first, so the triangles tile the band
  // however the two strides compare.
  int a = 0, b = 0;
  while (a < n_in - 1 || b < n_out - 1) {
    const Ring_vertex* t[3];
    if (b >= n_out - 1 || (a < n_in - 1 && inner[a + 1].tau <= outer[b + 1].tau)) {
      t[0] = &inner[a];
      t[1] = &outer[b];
      t[2] = &inner[a + 1];
      a++;
    } else {
      t[0] = &inner[a];
      t[1] = &outer[b];
      t[2] = &outer[b + 1];
      b++;
    }
    draw_triangle(t, first_ring, view, contour, horizon);
  }
}

void Slice::build_horizon_ring(int from, int to, const TCView& view) {
  const Ring_vertex* last = ring[from];
  Ring_vertex* out = ring[to];
  const int n = n_ring_points[from];
  // A last ring cut short by its room leaves the horizon short too.
  if (n >= 2 * max_points) std::cout << "maxed out" << std::endl;
  // Lines of sight that just graze the mean surface: level on a flat one,
  // dipping by the curvature angle on a round one.
  TCVector in_box;
  surface_object->point_to_box(view.position, in_box);
  for (int k = 0; k < n; k++) {
    out[k] = last[k];
    out[k].i += horizon_marker;
    out[k].j += horizon_marker;
    out[k].valid = 0;
    double x = 0.0, y = 0.0;
    lattice->lattice_to_world(last[k].u, last[k].v, x, y);
    const double dx = x - camera.x, dy = y - camera.y;
    const double across = std::sqrt(dx * dx + dy * dy);
    if (!(across > 0.0)) continue;
    TCRay level(in_box, TCVector(dx / across, dy / across, 0.0));
    const double dip = surface_object->curvature_angle(level, std::atan2(dy, dx));
    const TCVector direction(dx / across * std::cos(dip), dy / across * std::cos(dip),
                             -std::sin(dip));
    TCVector world;
    surface_object->direction_to_world(direction, world);
    const TCVector v = view.world_to_view.times(world);
    if (!(v.z > 0.0)) continue;
    out[k].x = (-v.y / v.z - first_azimuth) / pixel_width;
    out[k].y = (-v.x / v.z - first_elevation) / pixel_height * side;
    out[k].valid = std::isfinite(out[k].x) && std::isfinite(out[k].y);
  }
  n_ring_points[to] = n;
}

void Slice::walk(TCView& view, object_contour& contour) {
  if (verbose) {
    std::cout << (side > 0 ? "fov is above the surface " : "fov is below the surface ")
              << std::endl;
    std::cout << "startR = " << start_ring << std::endl;
    std::cout << "endR =   " << end_ring << std::endl;
  }
  int sample = 0, stride = 1;
  lattice->index_to_sample(start_ring, sample, stride);
  surface_object->set_footprint(stride);
  build_ring(start_ring & 1, sample, stride, view);
  clear_ridge();
  int last = start_ring;
  for (int i = start_ring + 1; i < end_ring; i++) {
    int previous_stride = stride;
    lattice->index_to_sample(i, sample, stride);
    if (verbose && view.n_cols > 1 && i % 10 == 0)
      std::cout << "current Radius = " << sample << " out of " << end_ring
                << "  increment = " << stride << std::endl;
    if (stride != previous_stride) surface_object->set_footprint(stride);
    build_ring(i & 1, sample, stride, view);
    draw_band(i & 1, i == start_ring + 1, view, contour, 0);
    if (!straight_down) update_ridge(i & 1);
    last = i;
  }
  if (side > 0 && periodic && last > start_ring) {
    if (verbose) std::cout << "extending to horizon" << std::endl;
    surface_object->set_footprint(-1.0);
    build_horizon_ring(last & 1, (last & 1) ^ 1, view);
    draw_band((last & 1) ^ 1, 0, view, contour, 1);
  }
}

void Slice::run(TCView& view, object_contour& contour) {
  image_mode = 1;
  walk(view, contour);
}

void Slice::run_mattes(TCView& view, object_contour& contour) {
  image_mode = 0;
  walk(view, contour);
}

#include "air_table.h"

#include <climits>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCAir.h"
#include "TCConstants.h"
#include "TCRay.h"
#include "TCSettings.h"
#include "TCView.h"
#include "object_contour.h"

namespace {

// Row 0 of each kind is computed this fraction of a step off the horizon.
const double horizon_offset = 0.01;
// A far end at or beyond this runs to the top of the air, metres.
const double open_far_end = 98999999.01;
// Share of the path length by which a cell's ends may differ from a ray's.
const double end_fraction = 0.05;
// A pixel covered this much or more is taken as wholly covered.
const float full_coverage = 0.9999f;
// Blend weights below this are too small for their cell to matter.
const double negligible_weight = 1e-6;
// Doubles in all of one table's arrays beyond which no allocation is tried.
const double most_doubles = 1e11;
// Ground distances of blended down cells may differ by this ratio at most
// for a path to the top of the air: beyond it, next to the horizon, a blend
// in elevation no longer follows the path.
const double most_ground_ratio = 1.25;

// An angle into -pi..pi; one far out of range is first cut by whole turns.
double wrapped(double angle) {
  if (!(std::fabs(angle) <= 4.0 * tc_two_pi)) angle = std::fmod(angle, tc_two_pi);
  while (angle > tc_pi) angle -= tc_two_pi;
  while (angle < -tc_pi) angle += tc_two_pi;
  return angle;
}

double* new_doubles(long count) {
  double* values = new (std::nothrow) double[count > 0 ? count : 1];
  if (values == nullptr) air_table::allocation_failed();
  return values;
}

// Rows from the horizon to an elevation limit at this step, the horizon row
// included; never past the pole.
double row_count(double reach, double pole_reach, double step) {
  if (!(reach > 0.0)) return 1.0;
  double count = std::ceil(reach / step) + 1.0;
  const double most = std::floor(pole_reach / step) + 1.0;
  if (count > most) count = most;
  return count < 1.0 ? 1.0 : count;
}

}  // namespace

air_table::air_table(TCAir* air_in)
    : air(air_in),
      sun_side_flag(0),
      number_of_bands(air_in != nullptr ? air_in->number_of_bands : 0),
      n_phi(0),
      n_down(0),
      n_up(0),
      phi_low(0.0),
      phi_high(0.0),
      phi_step(0.0),
      phi_offset(0.0),
      theta_low(0.0),
      theta_high(0.0),
      theta_step_down(0.0),
      theta_step_up(0.0),
      inverse_theta_step_down(0.0),
      inverse_theta_step_up(0.0),
      spectrum(0),
      horizon(nullptr),
      radiance_down(nullptr),
      radiance_up(nullptr),
      transmission_down(nullptr),
      transmission_up(nullptr),
      near_down(nullptr),
      far_down(nullptr),
      near_up(nullptr),
      far_up(nullptr),
      ground_down(nullptr),
      inverse_phi_step(0.0),
      computed_cells(0),
      work_(nullptr) {
  if (air != nullptr) spectrum.assign(air->band_list);
  work_ = new (std::nothrow) double[3 * (number_of_bands > 0 ? number_of_bands : 1)]();
  if (work_ == nullptr) allocation_failed();
}

void air_table::allocation_failed() {
  std::cout << "Not enough memory to allocate air table "
            << "\n";
  std::cout.flush();
  std::exit(1);
}

air_table::~air_table() {
  release();
  delete[] work_;
}

void air_table::release() {
  delete[] horizon;
  delete[] radiance_down;
  delete[] radiance_up;
  delete[] transmission_down;
  delete[] transmission_up;
  delete[] near_down;
  delete[] far_down;
  delete[] near_up;
  delete[] far_up;
  delete[] ground_down;
  ground_down = nullptr;
  horizon = nullptr;
  radiance_down = radiance_up = nullptr;
  transmission_down = transmission_up = nullptr;
  near_down = far_down = near_up = far_up = nullptr;
  n_phi = n_down = n_up = 0;
}

void air_table::define(const TCVector& viewpoint_in, double phi_offset_in, double theta_step,
                       double phi_step_in, double e_low, double e_high, double a_low, double a_high,
                       double margin) {
  release();
  viewpoint = viewpoint_in;
  phi_offset = phi_offset_in;
  theta_step_down = theta_step;
  theta_step_up = theta_step;
  phi_step = phi_step_in;
  if (!(theta_step > 0.0) || !(phi_step > 0.0) || !std::isfinite(theta_step) ||
      !std::isfinite(phi_step)) {
    allocation_failed();
  }
  inverse_theta_step_down = 1.0 / theta_step_down;
  inverse_theta_step_up = 1.0 / theta_step_up;
  inverse_phi_step = 1.0 / phi_step;
  if (!(margin >= 0.0) || !std::isfinite(margin)) margin = 0.0;

  // The round base's horizon dips below the horizontal by acos(R / (R + h))
  // at height h; from on or under the base there is none to dip.
  double horizon_angle = 0.0;
  const int round_base = air != nullptr && air->surface_shape == 1 && air->surface_radius > 0.0;
  if (round_base) {
    const double h = air->height_of(viewpoint);
    const double r = air->surface_radius;
    if (h > 0.0 && std::isfinite(h)) horizon_angle = -std::acos(r / (r + h));
  }

  // Azimuths: one unbroken interval, the whole circle when it would reach
  // round.
  double low = a_low - margin;
  double high = a_high + margin;
  if (!(high - low < tc_two_pi) || !std::isfinite(low) || !std::isfinite(high)) {
    low = -tc_pi;
    high = tc_pi;
  }
  phi_low = std::floor(low * inverse_phi_step) * phi_step;
  double count_phi = std::ceil(high * inverse_phi_step) - std::floor(low * inverse_phi_step) + 1.0;
  if (count_phi < 2.0) count_phi = 2.0;

  double e_bottom = e_low - margin;
  double e_top = e_high + margin;
  if (!(e_bottom >= -tc_half_pi)) e_bottom = -tc_half_pi;
  if (!(e_top <= tc_half_pi)) e_top = tc_half_pi;
  const double count_down =
      row_count(horizon_angle - e_bottom, horizon_angle + tc_half_pi, theta_step_down);
  const double count_up =
      row_count(e_top - horizon_angle, tc_half_pi - horizon_angle, theta_step_up);

  const double planes = 3.0 * number_of_bands + 2.0;
  if (count_phi > INT_MAX / 4 || count_down > INT_MAX / 4 || count_up > INT_MAX / 4 ||
      count_phi * (count_down + count_up) * planes > most_doubles) {
    allocation_failed();
  }
  n_phi = static_cast<int>(count_phi);
  n_down = static_cast<int>(count_down);
  n_up = static_cast<int>(count_up);
  phi_high = phi_low + (n_phi - 1) * phi_step;
  theta_low = horizon_angle - (n_down - 1) * theta_step_down;
  theta_high = horizon_angle + (n_up - 1) * theta_step_up;

  const long cells_down = static_cast<long>(n_down) * n_phi;
  const long cells_up = static_cast<long>(n_up) * n_phi;
  const int n = number_of_bands;
  horizon = new_doubles(n_phi);
  radiance_down = new_doubles(2L * n * cells_down);
  radiance_up = new_doubles(2L * n * cells_up);
  transmission_down = new_doubles(static_cast<long>(n) * cells_down);
  transmission_up = new_doubles(static_cast<long>(n) * cells_up);
  near_down = new_doubles(cells_down);
  far_down = new_doubles(cells_down);
  near_up = new_doubles(cells_up);
  far_up = new_doubles(cells_up);
  ground_down = new_doubles(cells_down);
  for (int i = 0; i < n_phi; i++) {
    horizon[i] = horizon_angle;
    // Off the air's axis the horizon tilts with the azimuth.
    if (round_base && horizon_angle < 0.0 && (viewpoint.x != 0.0 || viewpoint.y != 0.0))
      horizon[i] = exact_horizon(phi_offset + phi_low + i * phi_step);
  }
  // Down rows strike the base: the distance to it along each cell's ray.
  for (int i = 0; i < n_phi; i++) {
    for (int j = 0; j < n_down; j++) {
      double ground = tc_nothing;
      if (round_base) {
        TCVector d;
        node_direction(0, j, i, d);
        double hit_near = 0.0, hit_far = 0.0;
        if (air->sphere_roots(viewpoint, d, hit_near, hit_far) && hit_far > 0.0)
          ground = hit_near > 0.0 ? hit_near : hit_far;
      }
      ground_down[cell(j, i)] = ground;
    }
  }

  // The bearing towards the sun, on the same scale as the columns.
  sun_side_flag = 0;
  if (air != nullptr) {
    const TCVector& s = air->sun_direction;
    if (s.x != 0.0 || s.y != 0.0) {
      double bearing = wrapped(std::atan2(s.y, s.x) - phi_offset);
      if (bearing < phi_low) bearing += tc_two_pi;
      sun_side_flag = bearing >= phi_low && bearing <= phi_high;
    }
  }
}

double air_table::exact_horizon(double azimuth) const {
  // From a viewpoint off the air's axis the base's horizon is tilted: the
  // tangent rays d from p to the sphere about (0, 0, -R) have
  // q . d = -sqrt(q . q - R^2) with q = p + (0, 0, R), and at this azimuth
  // q . d = A cos(e) + B sin(e).
  const double r = air->surface_radius;
  const TCVector q(viewpoint.x, viewpoint.y, viewpoint.z + r);
  const double tangent_sq = q.dot(q) - r * r;
  const double a = q.x * std::cos(azimuth) + q.y * std::sin(azimuth);
  const double b = q.z;
  const double c = std::sqrt(a * a + b * b);
  if (!(tangent_sq > 0.0) || !(c > 0.0)) return 0.0;
  double ratio = -std::sqrt(tangent_sq) / c;
  if (ratio < -1.0) ratio = -1.0;
  double e = std::atan2(b, a) - std::acos(ratio);
  e = wrapped(e);
  if (e < -tc_half_pi) e = -tc_half_pi;
  if (e > tc_half_pi) e = tc_half_pi;
  return e;
}

long air_table::plane_cell(int up, int band, int j, int i) const {
  return (static_cast<long>(band) * rows(up) + j) * n_phi + i;
}

void air_table::node_direction(int up, int j, int i, TCVector& direction) const {
  const double step = up ? theta_step_up : theta_step_down;
  const double offset = j == 0 ? horizon_offset * step : j * step;
  double e = up ? horizon[i] + offset : horizon[i] - offset;
  if (e < -tc_half_pi) e = -tc_half_pi;
  if (e > tc_half_pi) e = tc_half_pi;
  const double a = phi_offset + phi_low + i * phi_step;
  direction = TCVector(std::cos(e) * std::cos(a), std::cos(e) * std::sin(a), std::sin(e));
}

double air_table::end_tolerance(double near, double far) {
  if (far >= open_far_end) return tc_nothing;
  const double length = far - near;
  return length > 0.0 ? end_fraction * length : 0.0;
}

double air_table::pixel_near(const object_contour& contour, int row, int col) {
  double near = contour.min_distance;
  if (contour.near_limit_flag && contour.near_limit != nullptr) near = contour.near_limit[row][col];
  if (!(near > 0.0)) return 0.0;
  const double s = std::sqrt(near);
  return s < tc_nothing ? s : tc_nothing;
}

double air_table::pixel_depth(const object_contour& contour, int row, int col) {
  const double depth = contour.total_distance[row][col];
  if (!(depth > 0.0)) return 0.0;
  const double s = std::sqrt(depth);
  return s < tc_nothing ? s : tc_nothing;
}

// The pixel of a view (n_rows by n_cols) that a ray in this direction passes
// through, or the nearest edge pixel when it passes within the margin.
static int view_pixel_of(const TCView& view, int n_rows, int n_cols, double window_margin,
                         const TCVector& direction, int& row, int& col) {
  if (n_rows <= 0 || n_cols <= 0) return 0;
  const TCVector v = view.world_to_view.times(direction);
  if (!(v.z > 0.0)) return 0;
  const double e = -v.x / v.z;
  const double a = -v.y / v.z;
  const double first_e = view.first_elevation;
  const double last_e = view.first_elevation + n_rows * view.step_elevation;
  const double first_a = view.first_azimuth;
  const double last_a = view.first_azimuth + n_cols * view.step_azimuth;
  const double low_e = (first_e < last_e ? first_e : last_e) - window_margin;
  const double high_e = (first_e < last_e ? last_e : first_e) + window_margin;
  const double low_a = (first_a < last_a ? first_a : last_a) - window_margin;
  const double high_a = (first_a < last_a ? last_a : first_a) + window_margin;
  if (!(e >= low_e && e <= high_e && a >= low_a && a <= high_a)) return 0;

  double row_at = 0.0, col_at = 0.0;
  if (view.step_elevation != 0.0) row_at = std::floor((e - first_e) / view.step_elevation);
  if (view.step_azimuth != 0.0) col_at = std::floor((a - first_a) / view.step_azimuth);
  row = row_at < 0.0 ? 0 : (row_at > n_rows - 1 ? n_rows - 1 : static_cast<int>(row_at));
  col = col_at < 0.0 ? 0 : (col_at > n_cols - 1 ? n_cols - 1 : static_cast<int>(col_at));
  return 1;
}

int air_table::cell_ends(const TCView& local_view, const object_contour& contour,
                         double window_margin, const TCVector& direction, double& near_end,
                         double& far_end) const {
  const int n_rows = local_view.n_rows < contour.n_rows ? local_view.n_rows : contour.n_rows;
  const int n_cols = local_view.n_cols < contour.n_cols ? local_view.n_cols : contour.n_cols;
  int row = 0, col = 0;
  if (!view_pixel_of(local_view, n_rows, n_cols, window_margin, direction, row, col)) return 0;
  near_end = pixel_near(contour, row, col);
  // A pixel not wholly covered lends the sky's end: the sample behind its
  // object runs to the top of the air, and that is the one a cell can serve.
  far_end = contour.total_coverage[row][col] >= full_coverage ? pixel_depth(contour, row, col)
                                                              : tc_nothing;
  return 1;
}

air_table::pixel_ends::pixel_ends(int n_rows_in, int first_col_in, int n_cols_in)
    : n_rows(n_rows_in > 0 ? n_rows_in : 0),
      first_col(first_col_in),
      n_cols(n_cols_in > 0 ? n_cols_in : 0),
      near_end(nullptr),
      far_end(nullptr) {
  const long count = static_cast<long>(n_rows) * n_cols;
  near_end = new_doubles(count);
  far_end = new_doubles(count);
  for (long k = 0; k < count; k++) near_end[k] = far_end[k] = tc_nothing;
}

air_table::pixel_ends::~pixel_ends() {
  delete[] near_end;
  delete[] far_end;
}

void air_table::pixel_ends::take(const object_contour& contour, int first_col_of_contour) {
  const int rows = contour.n_rows < n_rows ? contour.n_rows : n_rows;
  for (int row = 0; row < rows; row++) {
    for (int col = 0; col < contour.n_cols; col++) {
      const int whole_col = first_col_of_contour + col;
      if (!has(whole_col)) continue;
      near_end[at(row, whole_col)] = pixel_near(contour, row, col);
      // As in cell_ends: a pixel not wholly covered lends the sky's end.
      far_end[at(row, whole_col)] = contour.total_coverage[row][col] >= full_coverage
                                        ? pixel_depth(contour, row, col)
                                        : tc_nothing;
    }
  }
}

int air_table::whole_cell_ends(const TCView& whole_view, const pixel_ends& ends,
                               double window_margin, const TCVector& direction, double& near_end,
                               double& far_end) const {
  const int n_rows = whole_view.n_rows < ends.n_rows ? whole_view.n_rows : ends.n_rows;
  int row = 0, col = 0;
  if (!view_pixel_of(whole_view, n_rows, whole_view.n_cols, window_margin, direction, row, col))
    return 0;
  if (!ends.has(col)) return 0;
  near_end = ends.near_end[ends.at(row, col)];
  far_end = ends.far_end[ends.at(row, col)];
  return 1;
}

void air_table::fill(const TCView& local_view, const object_contour& contour, double window_margin,
                     double s_primary_min) {
  fill_cells(&local_view, &contour, nullptr, window_margin, s_primary_min);
}

void air_table::fill_whole(const TCView& whole_view, const pixel_ends& ends, double window_margin,
                           double s_primary_min) {
  fill_cells(&whole_view, nullptr, &ends, window_margin, s_primary_min);
}

void air_table::fill_cells(const TCView* local_view, const object_contour* contour,
                           const pixel_ends* ends, double window_margin, double s_primary_min) {
  if (verbose) {
    std::cout << "table data  "
              << "\n";
    std::cout << "phi : " << phi_low << " " << phi_high << " " << phi_step << "\n";
    std::cout << "theta " << theta_low << " " << theta_high << " " << theta_step_down << " "
              << theta_step_up << "\n";
    std::cout << "discretizations " << n_phi << " " << n_down << " " << n_up << "\n";
    std::cout << "s_primary_min = " << s_primary_min << "\n";
  }
  computed_cells = 0;
  const int n = number_of_bands;
  double* molecular = work_;
  double* aerosol = work_ + n;
  double* through = work_ + 2 * n;
  for (int up = 0; up < 2; up++) {
    double* rad = radiance(up);
    double* trans = transmission(up);
    double* near_cells = near(up);
    double* far_cells = far(up);
    for (int i = 0; i < n_phi; i++) {
      for (int j = 0; j < rows(up); j++) {
        TCVector d;
        node_direction(up, j, i, d);
        const long c = cell(j, i);
        double near_end = tc_nothing, far_end = tc_nothing;
        const int found =
            ends != nullptr
                ? whole_cell_ends(*local_view, *ends, window_margin, d, near_end, far_end)
                : cell_ends(*local_view, *contour, window_margin, d, near_end, far_end);
        if (air == nullptr || !found) {
          for (int b = 0; b < n; b++) {
            rad[plane_cell(up, b, j, i)] = 0.0;
            rad[plane_cell(up, n + b, j, i)] = 0.0;
            trans[plane_cell(up, b, j, i)] = 1.0;
          }
          near_cells[c] = tc_nothing;
          far_cells[c] = tc_nothing;
          continue;
        }
        const TCRay ray(viewpoint, d);
        air->local_path_radiance(ray, molecular, aerosol, near_end, far_end);
        air->local_path_transmission(ray, through, near_end, far_end);
        computed_cells++;
        for (int b = 0; b < n; b++) {
          rad[plane_cell(up, b, j, i)] = molecular[b];
          rad[plane_cell(up, n + b, j, i)] = aerosol[b];
          trans[plane_cell(up, b, j, i)] = through[b];
        }
        near_cells[c] = near_end;
        far_cells[c] = far_end;
      }
    }
  }
}

void air_table::angles_of(const TCVector& direction, double& elevation, double& azimuth) const {
  const double length = std::sqrt(direction.dot(direction));
  double sine = length > 0.0 ? direction.z / length : 0.0;
  if (sine > 1.0) sine = 1.0;
  if (sine < -1.0) sine = -1.0;
  elevation = std::asin(sine);
  azimuth = wrapped(std::atan2(direction.y, direction.x) - phi_offset);
}

void air_table::row_weights(int up, int i, double elevation, int& j0, int& j1, double& g) const {
  const double below = up ? elevation - horizon[i] : horizon[i] - elevation;
  const double step = up ? theta_step_up : theta_step_down;
  const double inverse = up ? inverse_theta_step_up : inverse_theta_step_down;
  const int last = rows(up) - 1;
  const double j = std::floor(below * inverse);
  if (j < 0.0) {
    j0 = j1 = 0;
    g = 1.0;
  } else if (j >= last) {
    j0 = j1 = last;
    g = 1.0;
  } else {
    j0 = static_cast<int>(j);
    j1 = j0 + 1;
    g = 1.0 - (below - j0 * step) * inverse;
  }
}

int air_table::lookup(double elevation, double azimuth, double near_req, double far_req,
                      double* molecular, double* aerosol, double* transmission_out) const {
  if (n_phi < 2 || !std::isfinite(elevation) || !std::isfinite(azimuth)) return 0;
  // The columns may run past -pi or pi: take the azimuth on their side.
  if (azimuth < phi_low) {
    azimuth += tc_two_pi;
  } else if (azimuth > phi_high) {
    azimuth -= tc_two_pi;
  }
  const double column = std::floor((azimuth - phi_low) * inverse_phi_step);
  if (column < 0.0 || column >= n_phi - 1) return 0;
  const int i = static_cast<int>(column);
  const double f = 1.0 - ((azimuth - phi_low) - i * phi_step) * inverse_phi_step;

  const double horizon_here = (1.0 - f) * horizon[i + 1] + f * horizon[i];
  const int up = !(elevation < horizon_here || n_up == 1);
  int ja0, ja1, jb0, jb1;
  double ga, gb;
  row_weights(up, i, elevation, ja0, ja1, ga);
  row_weights(up, i + 1, elevation, jb0, jb1, gb);
  const long cells[4] = {cell(ja0, i), cell(ja1, i), cell(jb0, i + 1), cell(jb1, i + 1)};
  const int row_of[4] = {ja0, ja1, jb0, jb1};
  const int col_of[4] = {i, i, i + 1, i + 1};
  const double weight[4] = {f * ga, f * (1.0 - ga), (1.0 - f) * gb, (1.0 - f) * (1.0 - gb)};

  const double* near_cells = near(up);
  const double* far_cells = far(up);
  double cell_near = 0.0, cell_far = 0.0;
  // Cells of negligible weight are left out whole, so that what they hold
  // never shows.
  int used[4];
  double least_ground = 0.0, most_ground = 0.0;
  int grounds = 0;
  for (int k = 0; k < 4; k++) {
    used[k] = weight[k] > negligible_weight;
    if (!used[k]) continue;
    // A cell no ray was computed for has nothing to lend.
    if (near_cells[cells[k]] >= open_far_end) return 0;
    // An open sky ray is never served by a cell that ends on an object: the
    // open-ended tolerance would accept it and darken the sky at every edge.
    if (far_req >= open_far_end && far_cells[cells[k]] < open_far_end) return 0;
    cell_near += weight[k] * near_cells[cells[k]];
    cell_far += weight[k] * far_cells[cells[k]];
    if (!up && ground_down != nullptr) {
      const double g = ground_down[cells[k]];
      if (grounds == 0 || g < least_ground) least_ground = g;
      if (grounds == 0 || g > most_ground) most_ground = g;
      grounds++;
    }
  }
  if (far_req >= open_far_end && grounds > 1 && least_ground < tc_nothing &&
      !(most_ground <= most_ground_ratio * least_ground)) {
    return 0;
  }
  const double tolerance = end_tolerance(near_req, far_req);
  if (!(std::fabs(near_req - cell_near) <= tolerance) ||
      !(std::fabs(far_req - cell_far) <= tolerance)) {
    return 0;
  }

  const int n = number_of_bands;
  const double* rad = radiance(up);
  const double* trans = transmission(up);
  for (int b = 0; b < n; b++) {
    double m = 0.0, a = 0.0, t = 0.0;
    for (int k = 0; k < 4; k++) {
      if (!used[k]) continue;
      m += weight[k] * rad[plane_cell(up, b, row_of[k], col_of[k])];
      a += weight[k] * rad[plane_cell(up, n + b, row_of[k], col_of[k])];
      t += weight[k] * trans[plane_cell(up, b, row_of[k], col_of[k])];
    }
    if (molecular != nullptr) molecular[b] = m;
    if (aerosol != nullptr) aerosol[b] = a;
    if (transmission_out != nullptr) transmission_out[b] = t;
  }
  return 1;
}

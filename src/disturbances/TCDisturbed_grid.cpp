#include "TCDisturbed_grid.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCConstants.h"

namespace {

long long wrap_index(long long i, int n) {
  long long r = i % n;
  if (r < 0) r += n;
  return r;
}

// floor(a) reduced into 0 .. n-1; any finite coordinate lands on the array,
// anything else on node 0.
long long wrapped_floor(double a, int n) {
  const double fa = std::floor(a);
  if (!std::isfinite(fa)) return 0;
  double r = fa - n * std::floor(fa / n);
  if (!(r >= 0.0)) r = 0.0;
  if (r > n - 1) r = n - 1;
  return static_cast<long long>(r);
}

// floor(a) kept within margin nodes beyond either edge: further out every
// corner is off the array all the same. Not a number goes below the edge.
long long bounded_floor(double a, int n, int margin) {
  const double fa = std::floor(a);
  if (!(fa >= -margin)) return -margin;
  if (fa > n + margin) return n + margin;
  return static_cast<long long>(fa);
}

// The bilinear fraction of a coordinate; 0 when it is not finite.
double fraction_of(double a) {
  const double f = a - std::floor(a);
  return std::isfinite(f) ? f : 0.0;
}

// One radial row at radius r (metres): 0 at and beyond the last radius.
double radial_row(const float* f, int n, double step, double r, int* inside) {
  if (r < (n - 1) * step) {
    const double s = r / step;
    const int i = static_cast<int>(std::floor(s));
    const double w = 1.0 - (s - i);
    *inside = 1;
    return f[i] * w + (1.0 - w) * f[i + 1];
  }
  *inside = 0;
  return 0.0;
}

}  // namespace

TCDisturbed_grid::TCDisturbed_grid(int n_x_in, int n_y_in, int detail_nx, int detail_ny,
                                   double detail_dx_in, double detail_dy_in, float* primary,
                                   double dx_in, double dy_in)
    : TCGrid(n_x_in, n_y_in, dx_in, dy_in) {
  set_up(1, &detail_nx, &detail_ny, &detail_dx_in, &detail_dy_in, primary);
}

TCDisturbed_grid::TCDisturbed_grid(int n_x_in, int n_y_in, int count, const int* detail_nx,
                                   const int* detail_ny, const double* detail_dx_in,
                                   const double* detail_dy_in, float* primary, double dx_in,
                                   double dy_in)
    : TCGrid(n_x_in, n_y_in, dx_in, dy_in) {
  set_up(count, detail_nx, detail_ny, detail_dx_in, detail_dy_in, primary);
}

TCDisturbed_grid::TCDisturbed_grid(int n_x_in, int n_y_in, int last_index_in, int detail_nx,
                                   int detail_ny, double detail_dx_in, double detail_dy_in,
                                   float* primary, double dx_in, double dy_in)
    : TCGrid(n_x_in, n_y_in, last_index_in, dx_in, dy_in) {
  set_up(1, &detail_nx, &detail_ny, &detail_dx_in, &detail_dy_in, primary);
}

TCDisturbed_grid::TCDisturbed_grid(int n_x_in, int n_y_in, int last_index_in, int count,
                                   const int* detail_nx, const int* detail_ny,
                                   const double* detail_dx_in, const double* detail_dy_in,
                                   float* primary, double dx_in, double dy_in)
    : TCGrid(n_x_in, n_y_in, last_index_in, dx_in, dy_in) {
  set_up(count, detail_nx, detail_ny, detail_dx_in, detail_dy_in, primary);
}

TCDisturbed_grid::TCDisturbed_grid(int n_x_in, int n_y_in, int last_index_in, int doubling_size_in,
                                   int detail_nx, int detail_ny, double detail_dx_in,
                                   double detail_dy_in, float* primary, double dx_in, double dy_in)
    : TCGrid(n_x_in, n_y_in, last_index_in, doubling_size_in, dx_in, dy_in) {
  set_up(1, &detail_nx, &detail_ny, &detail_dx_in, &detail_dy_in, primary);
}

TCDisturbed_grid::TCDisturbed_grid(int n_x_in, int n_y_in, int last_index_in, int doubling_size_in,
                                   int count, const int* detail_nx, const int* detail_ny,
                                   const double* detail_dx_in, const double* detail_dy_in,
                                   float* primary, double dx_in, double dy_in)
    : TCGrid(n_x_in, n_y_in, last_index_in, doubling_size_in, dx_in, dy_in) {
  set_up(count, detail_nx, detail_ny, detail_dx_in, detail_dy_in, primary);
}

TCDisturbed_grid::~TCDisturbed_grid() {
  for (int k = 0; k < n_details; k++) delete[] detail_field[k];
  // A buffer handed in stays with its owner.
  if (!owns_primary) height = nullptr;
}

void TCDisturbed_grid::set_up(int count, const int* detail_nx, const int* detail_ny,
                              const double* detail_dx_in, const double* detail_dy_in,
                              float* primary) {
  owns_primary = 1;
  if (primary != nullptr) {
    delete[] height;
    height = primary;
    owns_primary = 0;
  }
  n_lines = 0;
  n_details = 0;
  for (int k = 0; k < capacity; k++) {
    line_x[k] = line_y[k] = line_cos[k] = line_sin[k] = 0.0;
    detail_n_x[k] = detail_n_y[k] = 0;
    detail_dx[k] = detail_dy[k] = 0.0;
    detail_inv[k][0] = detail_inv[k][1] = 0.0;
    detail_periodic[k] = 0;
    detail_mode[k] = additive_cartesian;
    detail_rotated[k] = 0;
    detail_cos[k] = 1.0;
    detail_sin[k] = 0.0;
    detail_offset[k][0] = detail_offset[k][1] = 0.0;
    detail_field[k] = nullptr;
  }
  if (count < 0) {
    std::cout << "unable to allocate grid " << count << "\n";
    std::cout.flush();
    std::exit(1);
  }
  if (count > capacity) {
    // The tables hold 100; more would be written past their ends.
    std::cout << "too many disturbances on surface: " << count << ", at most " << capacity
              << " fit\n";
    std::cout.flush();
    std::exit(1);
  }
  // Node indices a stencil beyond either edge must still fit an int.
  const int widest = INT32_MAX / 4;
  const long long largest = PTRDIFF_MAX / static_cast<long long>(sizeof(float)) / 4;
  for (int k = 0; k < count; k++) {
    const int nx = detail_nx[k];
    const int ny = detail_ny[k];
    float* field = nullptr;
    if (nx >= 1 && ny >= 1 && nx <= widest && ny <= widest &&
        (static_cast<long long>(nx) + 2) <= largest / ny) {
      field = new (std::nothrow) float[(static_cast<size_t>(nx) + 2) * static_cast<size_t>(ny)]();
    }
    if (field == nullptr) {
      std::cout << "unable to allocate grid " << k << "\n";
      std::cout.flush();
      std::exit(1);
    }
    detail_field[k] = field;
    detail_n_x[k] = nx;
    detail_n_y[k] = ny;
    detail_dx[k] = detail_dx_in[k];
    detail_dy[k] = detail_dy_in[k];
    detail_inv[k][0] = 1.0 / detail_dx_in[k];
    detail_inv[k][1] = 1.0 / detail_dy_in[k];
    n_details = k + 1;
  }
}

int TCDisturbed_grid::valid_index(int i) const {
  return i >= 0 && i < n_details;
}

void TCDisturbed_grid::set_detail_radial(int i) {
  if (valid_index(i)) detail_mode[i] = additive_radial;
}

void TCDisturbed_grid::set_detail_cartesian(int i) {
  if (valid_index(i)) detail_mode[i] = additive_cartesian;
}

void TCDisturbed_grid::set_detail_multiplier(int i) {
  if (valid_index(i)) detail_mode[i] = multiplying_cartesian;
}

void TCDisturbed_grid::set_detail_radial_multiplier(int i) {
  if (valid_index(i)) detail_mode[i] = multiplying_radial;
}

void TCDisturbed_grid::set_detail_rotation(int i, double angle) {
  if (!valid_index(i)) return;
  detail_rotated[i] = 1;
  detail_cos[i] = std::cos(angle);
  detail_sin[i] = std::sin(-angle);
}

void TCDisturbed_grid::clear_detail_rotation(int i) {
  if (!valid_index(i)) return;
  detail_rotated[i] = 0;
  detail_cos[i] = 1.0;
  detail_sin[i] = 0.0;
}

void TCDisturbed_grid::add_reflecting_line(double x, double y, double angle) {
  if (n_lines >= capacity) {
    std::cout << "unable to allocate reflecting line \n";
    std::cout << "too many disturbances on surface \n";
    std::cout.flush();
    std::exit(1);
  }
  line_x[n_lines] = x;
  line_y[n_lines] = y;
  line_cos[n_lines] = std::cos(angle);
  line_sin[n_lines] = std::sin(angle);
  n_lines++;
}

void TCDisturbed_grid::detail_coordinates(int i, double x, double y, double& u, double& v) const {
  u = x;
  v = y;
  if (!valid_index(i)) return;
  u = x + detail_offset[i][0];
  v = y + detail_offset[i][1];
  if (detail_rotated[i]) {
    const double c = detail_cos[i];
    const double s = detail_sin[i];
    const double uu = u * c - v * s;
    v = v * c + u * s;
    u = uu;
  }
}

void TCDisturbed_grid::detail_to_world(int i, double u, double v, double& x, double& y) const {
  x = u;
  y = v;
  if (!valid_index(i)) return;
  if (detail_rotated[i]) {
    // The turn is a rotation, so its inverse is its transpose.
    const double c = detail_cos[i];
    const double s = detail_sin[i];
    const double uu = u * c + v * s;
    v = v * c - u * s;
    u = uu;
  }
  x = u - detail_offset[i][0];
  y = v - detail_offset[i][1];
}

int TCDisturbed_grid::behind_reflecting_line(double x, double y) const {
  for (int k = 0; k < n_lines; k++) {
    if ((x - line_x[k]) * line_sin[k] - (y - line_y[k]) * line_cos[k] < 0.0) return 1;
  }
  return 0;
}

void TCDisturbed_grid::lattice_node_slope(long long i, long long j, double& sx, double& sy) const {
  const long long s = slope_step;
  const double h = clamped_height(i, j);
  sx = (h - clamped_height(i - s, j)) / (s * dx);
  sy = (h - clamped_height(i, j - s)) / (s * dy);
}

double TCDisturbed_grid::lattice_value(double x, double y) const {
  // Always wrapped, periodic or not: the holder samples the primary array
  // as a repeating tile.
  const double a = (x + offset_x) * inv_dx;
  const double b = (y + offset_y) * inv_dy;
  const long long i0 = wrapped_floor(a, n_x);
  const long long j0 = wrapped_floor(b, n_y);
  const long long i1 = (i0 + 1 == n_x) ? 0 : i0 + 1;
  const long long j1 = (j0 + 1 == n_y) ? 0 : j0 + 1;
  const double f = fraction_of(a);
  const double g = fraction_of(b);
  const long long row0 = static_cast<long long>(n_x) * j0;
  const long long row1 = static_cast<long long>(n_x) * j1;
  double sum = 0.0;
  sum += (1.0 - f) * (1.0 - g) * height[i0 + row0];
  sum += (1.0 - f) * g * height[i0 + row1];
  sum += f * (1.0 - g) * height[i1 + row0];
  sum += f * g * height[i1 + row1];
  return sum;
}

void TCDisturbed_grid::lattice_slope(double x, double y, double& sx, double& sy) const {
  const double u = x + offset_x;
  const double v = y + offset_y;
  const long long s = slope_step;
  // Node backward differences over s nodes, sampled half a stencil ahead so
  // that they are centred.
  double a = (u + 0.5 * slope_step * dx) * inv_dx;
  double b = v * inv_dy;
  long long ii[2], jj[2];
  double f = fraction_of(a);
  double g = fraction_of(b);
  ii[0] = periodic_x ? wrapped_floor(a, n_x) : bounded_floor(a, n_x, 2);
  jj[0] = periodic_y ? wrapped_floor(b, n_y) : bounded_floor(b, n_y, 2);
  ii[1] = ii[0] + 1;
  jj[1] = jj[0] + 1;
  double w[4] = {(1.0 - f) * (1.0 - g), (1.0 - f) * g, f * (1.0 - g), f * g};
  sx = 0.0;
  for (int k = 0; k < 4; k++) {
    const long long i = ii[k / 2];
    const long long j = jj[k % 2];
    double node_x, node_y;
    lattice_node_slope(i, j, node_x, node_y);
    sx += w[k] * node_x;
  }
  a = u * inv_dx;
  b = (v + 0.5 * s * dy) * inv_dy;
  f = fraction_of(a);
  g = fraction_of(b);
  ii[0] = periodic_x ? wrapped_floor(a, n_x) : bounded_floor(a, n_x, 2);
  jj[0] = periodic_y ? wrapped_floor(b, n_y) : bounded_floor(b, n_y, 2);
  ii[1] = ii[0] + 1;
  jj[1] = jj[0] + 1;
  w[0] = (1.0 - f) * (1.0 - g);
  w[1] = (1.0 - f) * g;
  w[2] = f * (1.0 - g);
  w[3] = f * g;
  sy = 0.0;
  for (int k = 0; k < 4; k++) {
    double node_x, node_y;
    lattice_node_slope(ii[k / 2], jj[k % 2], node_x, node_y);
    sy += w[k] * node_y;
  }
}

double TCDisturbed_grid::detail_value(int k, double u, double v) const {
  const int mode = detail_mode[k];
  const int nx = detail_n_x[k];
  const int ny = detail_n_y[k];
  const float* f = detail_field[k];
  if (mode == additive_radial || mode == multiplying_radial) {
    int inside;
    const double value = radial_row(f, nx, detail_dx[k], std::sqrt(u * u + v * v), &inside);
    if (inside) return value;
    return mode == multiplying_radial ? 1.0 : 0.0;
  }
  // A corner off a non-periodic array counts as the identity of the mode.
  const double missing = (mode == multiplying_cartesian) ? 1.0 : 0.0;
  const double a = u * detail_inv[k][0];
  const double b = v * detail_inv[k][1];
  const double fa = fraction_of(a);
  const double fb = fraction_of(b);
  const double w[4] = {(1.0 - fa) * (1.0 - fb), (1.0 - fa) * fb, fa * (1.0 - fb), fa * fb};
  long long ii[2], jj[2];
  if (detail_periodic[k]) {
    ii[0] = wrapped_floor(a, nx);
    jj[0] = wrapped_floor(b, ny);
    ii[1] = (ii[0] + 1 == nx) ? 0 : ii[0] + 1;
    jj[1] = (jj[0] + 1 == ny) ? 0 : jj[0] + 1;
  } else {
    ii[0] = bounded_floor(a, nx, 2);
    jj[0] = bounded_floor(b, ny, 2);
    ii[1] = ii[0] + 1;
    jj[1] = jj[0] + 1;
  }
  double sum = 0.0;
  for (int c = 0; c < 4; c++) {
    const long long i = ii[c / 2];
    const long long j = jj[c % 2];
    if (i < 0 || i >= nx || j < 0 || j >= ny) {
      sum += w[c] * missing;
    } else {
      sum += w[c] * f[i + static_cast<long long>(nx) * j];
    }
  }
  return sum;
}

void TCDisturbed_grid::detail_slope(int k, double u, double v, double& sx, double& sy) const {
  const int nx = detail_n_x[k];
  const int ny = detail_n_y[k];
  const float* f = detail_field[k];
  sx = 0.0;
  sy = 0.0;
  if (detail_mode[k] == additive_radial) {
    const double step = detail_dx[k];
    int inside;
    const double f0 = radial_row(f, nx, step, std::sqrt(u * u + v * v), &inside);
    if (!inside) return;
    const double delta = slope_step * dx;
    const double f1 =
        radial_row(f, nx, step, std::sqrt((u - delta) * (u - delta) + v * v), &inside);
    const double f2 =
        radial_row(f, nx, step, std::sqrt((v - delta) * (v - delta) + u * u), &inside);
    sx = (f0 - f1) / delta;
    sy = (f0 - f2) / delta;
    return;
  }
  // The stencil spans at least the primary lattice's: S detail nodes.
  double ratio = slope_step * dx / detail_dx[k];
  // A spacing of 0 or less would give no stencil: one node then.
  if (!(ratio >= 0.0)) ratio = 0.0;
  if (ratio > 1000000.0) ratio = 1000000.0;
  const long long s = static_cast<long long>(ratio) + 1;
  const double run_x = s * detail_dx[k];
  const double run_y = s * detail_dy[k];
  const int periodic = detail_periodic[k];
  const int margin = static_cast<int>(s) + 2;
  for (int axis = 0; axis < 2; axis++) {
    const double a = (axis == 0 ? u + 0.5 * run_x : u) * detail_inv[k][0];
    const double b = (axis == 1 ? v + 0.5 * run_y : v) * detail_inv[k][1];
    const double fa = fraction_of(a);
    const double fb = fraction_of(b);
    const double w[4] = {(1.0 - fa) * (1.0 - fb), (1.0 - fa) * fb, fa * (1.0 - fb), fa * fb};
    long long ii[2], jj[2];
    ii[0] = periodic ? wrapped_floor(a, nx) : bounded_floor(a, nx, margin);
    jj[0] = periodic ? wrapped_floor(b, ny) : bounded_floor(b, ny, margin);
    ii[1] = ii[0] + 1;
    jj[1] = jj[0] + 1;
    double sum = 0.0;
    for (int c = 0; c < 4; c++) {
      long long i = ii[c / 2];
      long long j = jj[c % 2];
      long long i_back = axis == 0 ? i - s : i;
      long long j_back = axis == 1 ? j - s : j;
      if (periodic) {
        i = wrap_index(i, nx);
        j = wrap_index(j, ny);
        i_back = wrap_index(i_back, nx);
        j_back = wrap_index(j_back, ny);
      } else {
        // A node whose stencil misses the array has no slope; one that
        // hangs over an edge is clamped to it, over the same run.
        if (i < 0 || i - s >= nx || j < 0 || j - s >= ny) continue;
        if (i > nx - 1) i = nx - 1;
        if (j > ny - 1) j = ny - 1;
        if (i_back < 0) i_back = 0;
        if (j_back < 0) j_back = 0;
        if (i_back > nx - 1) i_back = nx - 1;
        if (j_back > ny - 1) j_back = ny - 1;
      }
      const double here = f[i + static_cast<long long>(nx) * j];
      const double back = f[i_back + static_cast<long long>(nx) * j_back];
      sum += w[c] * (here - back);
    }
    if (axis == 0) {
      sx = sum / run_x;
    } else {
      sy = sum / run_y;
    }
  }
}

void TCDisturbed_grid::details_at(double x, double y, double& add, double& product) const {
  add = 0.0;
  product = 1.0;
  for (int k = 0; k < n_details; k++) {
    double u, v;
    detail_coordinates(k, x, y, u, v);
    const double value = detail_value(k, u, v);
    if (detail_mode[k] == multiplying_cartesian || detail_mode[k] == multiplying_radial) {
      product *= value;
    } else {
      add += value;
    }
  }
}

void TCDisturbed_grid::detail_slopes_at(double x, double y, double& sx, double& sy,
                                        double& product) const {
  sx = 0.0;
  sy = 0.0;
  product = 1.0;
  for (int k = 0; k < n_details; k++) {
    double u, v;
    detail_coordinates(k, x, y, u, v);
    if (detail_mode[k] == multiplying_cartesian || detail_mode[k] == multiplying_radial) {
      product *= detail_value(k, u, v);
      continue;
    }
    double ksx, ksy;
    detail_slope(k, u, v, ksx, ksy);
    if (detail_rotated[k]) {
      const double c = detail_cos[k];
      const double s = detail_sin[k];
      const double turned = ksx * c + ksy * s;
      ksy = ksy * c - ksx * s;
      ksx = turned;
    }
    sx += ksx;
    sy += ksy;
  }
}

double TCDisturbed_grid::disturbed_value(double x, double y) const {
  double add, product;
  details_at(x, y, add, product);
  return product * (lattice_value(x, y) + add);
}

void TCDisturbed_grid::disturbed_slope(double x, double y, double& sx, double& sy) const {
  double dsx, dsy, product;
  lattice_slope(x, y, sx, sy);
  detail_slopes_at(x, y, dsx, dsy, product);
  sx = (sx + dsx) * product;
  sy = (sy + dsy) * product;
}

void TCDisturbed_grid::mirror_point(int line, double x, double y, double& mx, double& my) const {
  const double nx = line_cos[line];
  const double ny = line_sin[line];
  const double x0 = line_x[line];
  const double y0 = line_y[line];
  const double along = (x - x0) * nx + (y - y0) * ny;
  mx = 2.0 * along * nx + 2.0 * x0 - x;
  my = 2.0 * along * ny + 2.0 * y0 - y;
}

double TCDisturbed_grid::uncusped_height(double x, double y) const {
  double h = disturbed_value(x, y) + z_offset;
  // One reflection deep: the mirror images are not mirrored again.
  for (int k = 0; k < n_lines; k++) {
    double mx, my;
    mirror_point(k, x, y, mx, my);
    h += disturbed_value(mx, my);
  }
  return h;
}

double TCDisturbed_grid::uncusped_node_height(int i, int j) const {
  const double node = height[wrap_index(i, n_x) + static_cast<long long>(n_x) * wrap_index(j, n_y)];
  const double x = i * dx - offset_x;
  const double y = j * dy - offset_y;
  double add, product;
  details_at(x, y, add, product);
  double h = product * (node + add) + z_offset;
  for (int k = 0; k < n_lines; k++) {
    double mx, my;
    mirror_point(k, x, y, mx, my);
    h += disturbed_value(mx, my);
  }
  return h;
}

void TCDisturbed_grid::mirrored_slopes(double x, double y, double& sx, double& sy) const {
  for (int k = 0; k < n_lines; k++) {
    double mx, my, msx, msy;
    mirror_point(k, x, y, mx, my);
    disturbed_slope(mx, my, msx, msy);
    const double nx = line_cos[k];
    const double ny = line_sin[k];
    const double q = msx * nx + msy * ny;
    sx += 2.0 * q * nx - msx;
    sy += 2.0 * q * ny - msy;
  }
}

double TCDisturbed_grid::height_at_node(int i, int j) {
  double h = uncusped_node_height(i, j);
  if (cusp_on) h = h + cusp_factor * (h - z_offset) * (h - z_offset);
  return h;
}

double TCDisturbed_grid::height_at(double x, double y, int keep_flat) {
  double h = uncusped_height(x, y);
  if (cusp_on) h = h + cusp_factor * (h - z_offset) * (h - z_offset);
  if (round_flag == 1 && keep_flat == 0) h -= (x * x + y * y) * 0.5 / radius;
  return h;
}

void TCDisturbed_grid::height_range(float& min, float& max) {
  double low = tc_nothing;
  double high = tc_nothing_below;
  const long long count = static_cast<long long>(n_x) * n_y;
  for (long long k = 0; k < count; k++) {
    if (height[k] < low) low = height[k];
    if (height[k] > high) high = height[k];
  }
  // Each detail is weighed against the bare lattice alone: the estimate
  // does not add details to one another.
  const double lattice_low = low;
  const double lattice_high = high;
  for (int d = 0; d < n_details; d++) {
    const long long nodes = static_cast<long long>(detail_n_x[d]) * detail_n_y[d];
    const float* f = detail_field[d];
    for (long long k = 0; k < nodes; k++) {
      if (f[k] + lattice_low < low) low = f[k] + lattice_low;
      if (f[k] + lattice_high > high) high = f[k] + lattice_high;
    }
  }
  if (n_lines > 0) {
    low *= 2.0;
    high *= 2.0;
  }
  min = static_cast<float>(low);
  max = static_cast<float>(high);
}

void TCDisturbed_grid::slope_at(double x, double y, double& dzdx, double& dzdy, int keep_flat) {
  double round_x = 0.0;
  double round_y = 0.0;
  if (round_flag == 1 && keep_flat == 0) {
    round_x = -x / radius;
    round_y = -y / radius;
  }
  disturbed_slope(x, y, dzdx, dzdy);
  mirrored_slopes(x, y, dzdx, dzdy);
  if (cusp_on) {
    // d/dx of h + c h^2 is (1 + 2 c h) dh/dx, h measured from z_offset.
    const double h0 = uncusped_height(x, y);
    dzdx += 2.0 * (h0 - z_offset) * cusp_factor * dzdx;
    dzdy += 2.0 * (h0 - z_offset) * cusp_factor * dzdy;
  }
  dzdx += round_x;
  dzdy += round_y;
}

void TCDisturbed_grid::slope_at_node(int i, int j, double& dzdx, double& dzdy) {
  lattice_node_slope(i, j, dzdx, dzdy);
  const double x = i * dx - offset_x;
  const double y = j * dy - offset_y;
  double dsx, dsy, product;
  detail_slopes_at(x, y, dsx, dsy, product);
  dzdx = (dzdx + dsx) * product;
  dzdy = (dzdy + dsy) * product;
  mirrored_slopes(x, y, dzdx, dzdy);
  if (cusp_on) {
    const double h0 = uncusped_node_height(i, j);
    dzdx += 2.0 * (h0 - z_offset) * cusp_factor * dzdx;
    dzdy += 2.0 * (h0 - z_offset) * cusp_factor * dzdy;
  }
}

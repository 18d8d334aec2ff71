#include "TCGrid.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <new>
#include <string>

#include "TCConstants.h"
#include "TCData_file.h"
#include "TCImage_file.h"

namespace {

const int no_doubling_size = 99999999;

// Largest stride level the doubling rule keeps: 2^30 lattice steps is far
// beyond any sea, and keeps strides and samples within an int.
const int largest_level = 30;

void exit_with(const char* message, const char* detail) {
  std::cout << message << detail << "\n";
  std::cout.flush();
  std::exit(1);
}

// For messages that carry their own line end.
void exit_with_text(const std::string& text) {
  std::cout << text;
  std::cout.flush();
  std::exit(1);
}

// i modulo n into 0 .. n-1, n at least 1.
long long wrap_index(long long i, int n) {
  long long r = i % n;
  if (r < 0) r += n;
  return r;
}

// The node index floor(a) as an integer. Periodic axes reduce it modulo n
// first, so any finite coordinate lands on the lattice; other axes keep it
// within a node or two beyond the edges, which are off the lattice all
// the same. Not a number goes to node 0 or beyond the low edge.
long long floor_index(double a, int n, int periodic) {
  double fa = std::floor(a);
  if (periodic) {
    if (!std::isfinite(fa)) return 0;
    double r = fa - n * std::floor(fa / n);
    if (!(r >= 0.0)) r = 0.0;
    if (r > n - 1) r = n - 1;
    return static_cast<long long>(r);
  }
  if (!(fa >= -2.0)) return -2;
  if (fa > n + 1.0) return n + 1;
  return static_cast<long long>(fa);
}

}  // namespace

TCGrid::TCGrid(int n_x_in, int n_y_in, double dx_in, double dy_in)
    : n_x(n_x_in),
      n_y(n_y_in),
      dx(dx_in),
      dy(dy_in),
      inv_dx(1.0 / dx_in),
      inv_dy(1.0 / dy_in),
      offset_x(0.0),
      offset_y(0.0),
      height(nullptr),
      height_min(100000000.0f),
      height_max(-100000000.0f),
      z_offset(0.0),
      periodic_x(0),
      periodic_y(0),
      round_flag(0),
      radius(tc_nothing),
      doubling_on(0),
      last_index(n_x_in > n_y_in ? n_x_in : n_y_in),
      slope_step(1),
      doubling_size(no_doubling_size),
      cusp_on(0),
      cusp_factor(0.0) {
  allocate();
}

TCGrid::TCGrid(int n_x_in, int n_y_in, int last_index_in, double dx_in, double dy_in)
    : TCGrid(n_x_in, n_y_in, last_index_in, last_index_in, dx_in, dy_in) {}

TCGrid::TCGrid(int n_x_in, int n_y_in, int last_index_in, int doubling_size_in, double dx_in,
               double dy_in)
    : TCGrid(n_x_in, n_y_in, dx_in, dy_in) {
  doubling_on = 1;
  last_index = last_index_in;
  // A multiple of 4 keeps half the size even, so doubled strides stay on nodes.
  doubling_size = (doubling_size_in / 4) * 4;
  if (doubling_size < 4) doubling_size = 4;
}

TCGrid::~TCGrid() {
  delete[] height;
}

void TCGrid::allocate() {
  // Sizes that cannot be allocated are refused as a failed allocation.
  const long long largest = PTRDIFF_MAX / static_cast<long long>(sizeof(float)) / 4;
  // Node indices a step or two beyond either edge must still fit an int.
  const int widest = INT32_MAX - 4;
  if (n_x < 1 || n_y < 1 || n_x > widest || n_y > widest ||
      (static_cast<long long>(n_x) + 2) > largest / n_y) {
    exit_with("error allocating grid ", "");
  }
  const size_t count = (static_cast<size_t>(n_x) + 2) * static_cast<size_t>(n_y);
  height = new (std::nothrow) float[count]();
  if (height == nullptr) exit_with("error allocating grid ", "");
}

int TCGrid::node_element(long long i, long long j, long long& element) const {
  if (periodic_x) i = wrap_index(i, n_x);
  if (periodic_y) j = wrap_index(j, n_y);
  if (i < 0 || i >= n_x || j < 0 || j >= n_y) return 0;
  element = i + static_cast<long long>(n_x) * j;
  return 1;
}

double TCGrid::clamped_height(long long i, long long j) const {
  if (periodic_x) {
    i = wrap_index(i, n_x);
  } else if (i < 0) {
    i = 0;
  } else if (i > n_x - 1) {
    i = n_x - 1;
  }
  if (periodic_y) {
    j = wrap_index(j, n_y);
  } else if (j < 0) {
    j = 0;
  } else if (j > n_y - 1) {
    j = n_y - 1;
  }
  return height[i + static_cast<long long>(n_x) * j];
}

double TCGrid::cusped(double h) const {
  const double above = h - z_offset;
  return h + cusp_factor * above * above;
}

void TCGrid::bilinear_nodes(double a, double b, long long ii[2], long long jj[2],
                            double w[4]) const {
  ii[0] = floor_index(a, n_x, periodic_x);
  jj[0] = floor_index(b, n_y, periodic_y);
  // The fraction comes from the coordinate itself, before any wrapping.
  const double f = a - std::floor(a);
  const double g = b - std::floor(b);
  ii[1] = ii[0] + 1;
  jj[1] = jj[0] + 1;
  if (periodic_x && ii[1] == n_x) ii[1] = 0;
  if (periodic_y && jj[1] == n_y) jj[1] = 0;
  w[0] = (1.0 - f) * (1.0 - g);
  w[1] = (1.0 - f) * g;
  w[2] = f * (1.0 - g);
  w[3] = f * g;
}

double TCGrid::height_at_node(int i, int j) {
  long long element = 0;
  // Off the lattice the marker stays as it is: squared, it would be a spike.
  if (!node_element(i, j, element)) return tc_nothing_below + z_offset;
  double h = height[element] + z_offset;
  if (cusp_on) h = cusped(h);
  return h;
}

double TCGrid::height_at(double x, double y, int keep_flat) {
  long long ii[2], jj[2];
  double w[4];
  bilinear_nodes((x + offset_x) * inv_dx, (y + offset_y) * inv_dy, ii, jj, w);
  double sum = 0.0;
  int off_lattice = 0;
  for (int k = 0; k < 4; k++) {
    // Node order (i, j), (i, j+1), (i+1, j), (i+1, j+1).
    long long element = 0;
    if (node_element(ii[k / 2], jj[k % 2], element)) {
      sum += w[k] * height[element];
    } else {
      sum -= tc_nothing;
      off_lattice = 1;
    }
  }
  double h = sum + z_offset;
  // Cusps sharpen waves, not the far-below marker of a sample off the edge.
  if (cusp_on && !off_lattice) h = cusped(h);
  if (round_flag == 1 && keep_flat == 0) h -= (x * x + y * y) * 0.5 / radius;
  return h;
}

void TCGrid::height_range(float& min, float& max) {
  double low = tc_nothing;
  double high = tc_nothing_below;
  const long long count = static_cast<long long>(n_x) * n_y;
  for (long long k = 0; k < count; k++) {
    if (height[k] < low) low = height[k];
    if (height[k] > high) high = height[k];
  }
  min = static_cast<float>(low);
  max = static_cast<float>(high);
}

void TCGrid::slope_at_node(int i, int j, double& dzdx, double& dzdy) {
  const long long s = slope_step;
  const double h = clamped_height(i, j);
  dzdx = (h - clamped_height(i - s, j)) / (s * dx);
  dzdy = (h - clamped_height(i, j - s)) / (s * dy);
}

void TCGrid::slope_at(double x, double y, double& dzdx, double& dzdy, int keep_flat) {
  dzdx = 0.0;
  dzdy = 0.0;
  double round_x = 0.0;
  double round_y = 0.0;
  if (round_flag == 1 && keep_flat == 0) {
    round_x = -x / radius;
    round_y = -y / radius;
  }
  const double u = x + offset_x;
  const double v = y + offset_y;
  long long ii[2], jj[2];
  double w[4];
  double node_dzdx, node_dzdy;
  // A backward difference belongs half a step behind its node; sampling
  // half a step ahead centres it.
  bilinear_nodes((u + 0.5 * slope_step * dx) * inv_dx, v * inv_dy, ii, jj, w);
  for (int k = 0; k < 4; k++) {
    slope_at_node(static_cast<int>(ii[k / 2]), static_cast<int>(jj[k % 2]), node_dzdx, node_dzdy);
    dzdx += w[k] * node_dzdx;
  }
  bilinear_nodes(u * inv_dx, (v + 0.5 * slope_step * dy) * inv_dy, ii, jj, w);
  for (int k = 0; k < 4; k++) {
    slope_at_node(static_cast<int>(ii[k / 2]), static_cast<int>(jj[k % 2]), node_dzdx, node_dzdy);
    dzdy += w[k] * node_dzdy;
  }
  if (cusp_on) {
    // d/dx of h + c h^2 is (1 + 2 c h) dh/dx, h measured from z_offset.
    cusp_on = 0;
    const double h0 = height_at(x, y, 1);
    cusp_on = 1;
    // Past an open edge the height is the marker, which cusps leave alone.
    if (h0 - z_offset > tc_nothing_below * 0.5) {
      dzdx += 2.0 * (h0 - z_offset) * cusp_factor * dzdx;
      dzdy += 2.0 * (h0 - z_offset) * cusp_factor * dzdy;
    }
  }
  dzdx += round_x;
  dzdy += round_y;
}

void TCGrid::lattice_to_world(double u, double v, double& x, double& y) const {
  x = u * dx - offset_x;
  y = v * dy - offset_y;
}

void TCGrid::world_to_lattice(double x, double y, double& u, double& v) const {
  u = (x + offset_x) * inv_dx;
  v = (y + offset_y) * inv_dy;
}

void TCGrid::lattice_to_world(const TCVector& lattice, TCVector& world) const {
  lattice_to_world(lattice.x, lattice.y, world.x, world.y);
  world.z = lattice.z + z_offset;
}

void TCGrid::world_to_lattice(const TCVector& world, TCVector& lattice) const {
  world_to_lattice(world.x, world.y, lattice.x, lattice.y);
  lattice.z = world.z - z_offset;
}

void TCGrid::set_cusps(double factor) {
  cusp_on = 1;
  cusp_factor = factor;
}

void TCGrid::clear_cusps() {
  cusp_on = 0;
}

void TCGrid::set_height_limits(float min, float max) {
  height_min = min;
  height_max = max;
}

void TCGrid::refresh_height_limits() {
  height_range(height_min, height_max);
}

void TCGrid::normal_at(double x, double y, TCVector& normal) {
  double dzdx, dzdy;
  slope_at(x, y, dzdx, dzdy, 0);
  const TCVector up(-dzdx, -dzdy, 1.0);
  const double length = std::sqrt(up.dot(up));
  if (length > 0.0) normal = up * (1.0 / length);
}

void TCGrid::index_to_sample(int i, int& sample, int& stride) const {
  double fraction;
  index_to_sample(i, sample, stride, fraction);
}

void TCGrid::index_to_sample(int i, int& sample, int& stride, double& fraction) const {
  const int d = doubling_size;
  if (i <= d) {
    sample = i;
    stride = 1;
    fraction = 0.0;
    return;
  }
  const int h = d / 2;
  if (h < 1) {
    // Only a size set by hand below 2 gets here: no doubling then.
    sample = i;
    stride = 1;
    fraction = 0.0;
    return;
  }
  const long long m = static_cast<long long>(i) - d - 1;
  long long level = m / h + 1;
  const long long r = m % h + 1;
  if (level > largest_level) level = largest_level;
  const long long wide = (1LL << level) * (h + r);
  stride = static_cast<int>(1LL << level);
  sample = wide > INT32_MAX ? INT32_MAX : static_cast<int>(wide);
  fraction = static_cast<double>(r - 1) / h;
}

int TCGrid::index_for_sample(int s) const {
  int sample, stride;
  for (int i = 1; i < last_index; i++) {
    index_to_sample(i, sample, stride);
    if (sample > s) return i;
  }
  return s;
}

int TCGrid::coarsest_stride() const {
  int sample, stride;
  index_to_sample(index_for_sample(last_index), sample, stride);
  return stride;
}

int TCGrid::write_height_grid(const char* definition_file, const char* object_name,
                              const char* suffix) {
  std::ifstream in(definition_file);
  if (!in) exit_with("Error opening grid-file: ", definition_file);
  // Keyword and value pairs; the keywords are not looked at.
  double centre_x = 0.0, centre_y = 0.0, spacing_x = 0.0, spacing_y = 0.0;
  int count_x = 0, count_y = 0;
  skip_token(in);
  read_double(in, centre_x);
  skip_token(in);
  read_double(in, centre_y);
  skip_token(in);
  read_int(in, count_x);
  skip_token(in);
  read_double(in, spacing_x);
  skip_token(in);
  read_int(in, count_y);
  skip_token(in);
  read_double(in, spacing_y);

  // A count that is missing, not positive or too large cannot be allocated.
  const long long largest = PTRDIFF_MAX / static_cast<long long>(sizeof(float)) / 4;
  if (count_x < 1 || count_y < 1 || count_x > largest / count_y) {
    exit_with("unable to allocate array for ocean height grid ", "");
  }
  const size_t count = static_cast<size_t>(count_x) * static_cast<size_t>(count_y);
  float* values = new (std::nothrow) float[count];
  if (values == nullptr) exit_with("unable to allocate array for ocean height grid ", "");

  // Positions in single precision, stepped by adding the spacing.
  const float x0 = static_cast<float>(centre_x - count_x * 0.5 * spacing_x);
  const float y0 = static_cast<float>(centre_y - count_y * 0.5 * spacing_y);
  const float step_x = static_cast<float>(spacing_x);
  const float step_y = static_cast<float>(spacing_y);
  size_t k = 0;
  float x = x0;
  for (int ix = 0; ix < count_x; ix++) {
    float y = y0;
    for (int iy = 0; iy < count_y; iy++) {
      values[k++] = static_cast<float>(height_at(x, y, 0));
      y += step_y;
    }
    x += step_x;
  }

  std::string name = std::string(object_name) + "_grid." + suffix + ".img";
  const int dims[2] = {count_x, count_y};
  int first_flag = 0;
  if (!open_image(image_format_hdf, name.c_str(), dims, first_flag, 1, 0)) {
    delete[] values;
    exit_with_text("Error initializing " + name + " for ocean grid\n");
  }
  if (!write_plane(image_format_hdf, name.c_str(), 0, values, dims, first_flag, 0, 0, 0.0, 1.0)) {
    delete[] values;
    exit_with_text("Error writing " + name + " for ocean grid\n");
  }
  delete[] values;
  return 1;
}

#include "TCKelvin_wake.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCData_file.h"
#include "TCHdf_image.h"
#include "TCImage_file.h"
#include "fourt.h"

namespace {

const int wake_kind = -6;
const int shape_file = 0;
const double gravity = 9.81;  // m/s^2
const double two_pi = 6.2831853;

}  // namespace

TCKelvin_wake::TCKelvin_wake(const Wake_details_input& input, float* buffer)
    : TCSurface_field(wake_kind, buffer, input.n_x, input.n_y, input.dx, input.dy),
      generate_wake(input.generate_wake),
      center_x(0.0),
      center_y(0.0),
      boat_length(input.boat_length),
      boat_width(input.boat_width),
      boat_depth(input.boat_depth),
      boat_shape(input.boat_shape),
      damping_eps(input.damping_eps),
      damping_us(input.damping_us),
      damping(0.0),
      position_x(input.position_x),
      position_y(input.position_y),
      direction(input.direction),
      velocity(input.velocity) {
  copy_text(wake_file, input.wake_file, sizeof(wake_file));
  copy_text(hull_file, input.hull_file, sizeof(hull_file));
  if (generate_wake) {
    damping = damping_eps * velocity * velocity * velocity / (damping_us * damping_us * gravity);
  }
  if (field == nullptr || !generate_or_read()) {
    std::cout << "unable to allocate space for wake "
              << "\n";
    std::cout.flush();
    std::exit(1);
  }
}

TCKelvin_wake::~TCKelvin_wake() {}

void TCKelvin_wake::evolve_heights(double) {}

void TCKelvin_wake::initialize_field() {}

double TCKelvin_wake::transform_to_lattice() {
  return 0.0;
}

void TCKelvin_wake::evolve_potential(double) {
  zero_buffer(field);
}

int TCKelvin_wake::moving_offset(double& x, double& y, double time) const {
  const double c = std::cos(direction);
  const double s = std::sin(direction);
  x = c * center_x - s * center_y - position_x - c * velocity * time;
  y = s * center_x + c * center_y - position_y - s * velocity * time;
  return 1;
}

int TCKelvin_wake::inside_hull(double u, double v) const {
  if (boat_shape != 1 && boat_shape != 2) return 0;
  if (std::fabs(u - center_x) > 0.5 * boat_length) return 0;
  if (std::fabs(v - center_y) > 0.5 * boat_width) return 0;
  if (boat_shape == 1) return 1;
  // The ellipse is centred on the stern, so only its forward half lies in the box.
  const double across = v - center_y;
  const double along = u - (center_x - 0.5 * boat_length);
  const double length2 = boat_length * boat_length;
  return length2 * across * across / (0.25 * boat_width * boat_width) + along * along <= length2
             ? 1
             : 0;
}

void TCKelvin_wake::lattice_to_world(double u, double v, double time, double& x, double& y) const {
  const double c = std::cos(direction);
  const double s = std::sin(direction);
  const double a = u - center_x;
  const double b = v - center_y;
  x = a * c - b * s + position_x + velocity * c * time;
  y = b * c + a * s + position_y + velocity * s * time;
}

void TCKelvin_wake::world_to_lattice(double x, double y, double time, double& u, double& v) const {
  const double c = std::cos(direction);
  const double s = std::sin(direction);
  const double along_x = x - position_x - velocity * c * time;
  const double along_y = y - position_y - velocity * s * time;
  u = along_x * c + along_y * s + center_x;
  v = -along_x * s + along_y * c + center_y;
}

int TCKelvin_wake::hull_covers(double x, double y, double time) const {
  double u = 0.0, v = 0.0;
  world_to_lattice(x, y, time, u, v);
  return inside_hull(u, v);
}

void TCKelvin_wake::hull_outline(int& count, TCWake_corner ring[4], double time) const {
  const double half_length = 0.5 * boat_length;
  const double half_width = 0.5 * boat_width;
  const double along[4] = {-half_length, half_length, half_length, -half_length};
  const double across[4] = {-half_width, -half_width, half_width, half_width};
  count = 4;
  for (int k = 0; k < 4; k++) {
    lattice_to_world(center_x + along[k], center_y + across[k], time, ring[k].x, ring[k].y);
  }
}

void TCKelvin_wake::evolve_acceleration_into(float* array, double, double, double, double) {
  if (array == nullptr || n_x < 1 || n_y < 1) return;
  const long nodes = static_cast<long>(n_x) * n_y;
  zero_buffer(array);
  for (long k = 0; k < nodes; k++) array[k] = field[k];
  fourt2(array, n_x, n_y, 1);
  array[0] = 0.0f;
  array[1] = 0.0f;
  // A stationary pattern passing a fixed point at speed U: d2h/dt2 = U^2 d2h/dx2.
  const double dkx = two_pi / (n_x * dx);
  const int columns = n_x / 2 + 1;
  for (int i = 0; i < columns; i++) {
    const double kx = i * dkx;
    const float factor = static_cast<float>(-1.0 * velocity * velocity * kx * kx);
    for (int j = (i == 0 ? 1 : 0); j < n_y; j++) {
      const long e = 2L * (i + static_cast<long>(columns) * j);
      array[e] *= factor;
      array[e + 1] *= factor;
    }
  }
  fourt2(array, n_x, n_y, -1);
  const double count = static_cast<double>(nodes);
  for (long k = 0; k < nodes; k++) array[k] = static_cast<float>(array[k] / count);
  // The stern end of the lattice and the periodic seam would otherwise feed
  // false whitecaps.
  for (int j = 0; j < n_y; j++) {
    float* row = array + static_cast<long>(n_x) * j;
    for (int i = 0; i < n_x / 20; i++) row[i] = 0.0f;
    for (int i = n_x - 2; i < n_x; i++) {
      if (i >= 0) row[i] = 0.0f;
    }
  }
}

int TCKelvin_wake::generate_or_read() {
  zero_buffer(field);
  return generate_wake ? generate() : read_wake_file();
}

void TCKelvin_wake::divide_field(double factor) {
  const long nodes = static_cast<long>(n_x) * n_y;
  for (long k = 0; k < nodes; k++) field[k] = static_cast<float>(field[k] / factor);
}

void TCKelvin_wake::multiply_field(double factor) {
  const long nodes = static_cast<long>(n_x) * n_y;
  for (long k = 0; k < nodes; k++) field[k] = static_cast<float>(field[k] * factor);
}

int TCKelvin_wake::read_wake_file() {
  const int dims[2] = {n_y, n_x};
  int found[2] = {0, 0};
  const int status = hdf_read_grid(wake_file, field, dims, found);
  if (status == hdf_grid_wrong_size) {
    std::cout << "wake file " << wake_file << " is not of correct dimension\n";
    std::cout << "file size : " << found[1] << " x " << found[0] << "\n";
    std::cout << "array size: " << n_x << " x " << n_y << "\n";
    return 0;
  }
  if (status != hdf_grid_read) {
    std::cout << "wake file " << wake_file << "can not be opened\n";
    return 0;
  }
  // The file holds the pattern per metre of depth.
  multiply_field(boat_depth);
  center_y = dy * 0.5 * n_y;
  center_x = n_x * dx - 0.5 * boat_length;
  return 1;
}

int TCKelvin_wake::generate() {
  // Twice as wide, so that the periodic transform cannot wrap the wake round
  // into the bow.
  const int m = 2 * n_x;
  const int n = n_y;
  float* padded = nullptr;
  if (n_x > 0 && n_y > 0) {
    padded = new (std::nothrow) float[(static_cast<long>(m) + 2) * n]();
  }
  if (padded == nullptr) {
    std::cout << "unable to allocate space for generating wake "
              << "\n";
    return 0;
  }

  // The source: a sharp-ended hull, deepest on its centre line. A hull
  // from a file takes no part and leaves the source zero.
  if (boat_shape == shape_file) {
    center_x = 0.0;
    center_y = 0.0;
  } else {
    center_y = dy * 0.5 * n_y;
    center_x = n_x * dx - 0.5 * boat_length;
    for (int j = 0; j < n_y; j++) {
      for (int i = 0; i < n_x; i++) {
        const double xn = std::fabs(i * dx - center_x) / (0.5 * boat_length);
        const double yn = std::fabs(j * dy - center_y) / (0.5 * boat_width);
        if (xn >= 1.0 || yn >= 1.0) continue;
        const double d = 1.0 - yn / (1.0 - xn * xn);
        if (d <= 0.0) continue;
        padded[n_x + i + static_cast<long>(m) * j] = static_cast<float>(-boat_depth * std::sqrt(d));
      }
    }
  }

  fourt2(padded, m, n, 1);
  padded[0] = 0.0f;
  padded[1] = 0.0f;

  // Each mode times the response of deep water to a source moving at U
  // along x; r = 1 is the ship's resonance a^2 = g k.
  const double dkx = two_pi / (m * dx);
  const double dky = two_pi / (n * dy);
  const int half = m / 2;
  for (int i = 0; i <= half; i++) {
    const double kx = i * dkx;
    for (int j = (i == 0 ? 1 : 0); j < n; j++) {
      const double ky = dky * (j < n / 2 + 1 ? j : -(n - j));
      const float k = static_cast<float>(std::sqrt(kx * kx + ky * ky));
      const double a = velocity * kx;
      const float r = static_cast<float>(a * a / (gravity * k));
      const float c = static_cast<float>(a * damping);
      // H = (r + i c) / ((1 - r) - i c), in single precision.
      const float den_re = 1.0f - r;
      const float den_im = -c;
      const double modulus =
          static_cast<double>(den_re) * den_re + static_cast<double>(den_im) * den_im;
      const float h_re = static_cast<float>((r * den_re + c * den_im) / modulus);
      const float h_im = static_cast<float>((c * den_re - r * den_im) / modulus);
      const long e = 2L * (i + static_cast<long>(half + 1) * j);
      const float f_re = padded[e];
      const float f_im = padded[e + 1];
      padded[e] = f_re * h_re - f_im * h_im;
      padded[e + 1] = f_re * h_im + f_im * h_re;
    }
  }

  fourt2(padded, m, n, -1);
  const long values = static_cast<long>(m) * n;
  const double count = static_cast<double>(values);
  for (long k = 0; k < values; k++) padded[k] = static_cast<float>(padded[k] / count);

  // The right half of the padded rows is the lattice.
  for (int j = 0; j < n_y; j++) {
    for (int i = 0; i < n_x; i++) {
      field[i + static_cast<long>(n_x) * j] = padded[n_x + i + static_cast<long>(m) * j];
    }
  }
  delete[] padded;

  // Stored per metre of depth, so that a later run may read it at another
  // depth. A file that cannot be written is reported by the writer; the
  // pattern in memory stands.
  const int dims[2] = {n_y, n_x};
  int first_flag = 1;
  if (boat_depth > 0.0) {
    divide_field(boat_depth);
    write_plane(image_format_hdf, wake_file, 0, field, dims, first_flag, 0, 0, 0.0, 1.0);
    multiply_field(boat_depth);
  } else {
    write_plane(image_format_hdf, wake_file, 0, field, dims, first_flag, 0, 0, 0.0, 1.0);
  }
  return 1;
}

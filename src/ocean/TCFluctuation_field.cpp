#include "TCFluctuation_field.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <new>

#include "TCSettings.h"
#include "fourt.h"
#include "ocean_input.h"

namespace {

void arrays_failed() {
  std::cout << "unable to allocate fluctuation field data arrays"
            << "\n";
  std::exit(1);
}

}  // namespace

TCFluctuation_field::TCFluctuation_field(int n_x_in, int n_y_in, double dx_in, double dy_in,
                                         int seed, double length_scale_in, double power_law_in,
                                         double time_scale_in, double width_in,
                                         double time_increment_in, double reference_time_in)
    : n_x(n_x_in > 0 ? n_x_in : 1),
      n_y(n_y_in > 0 ? n_y_in : 1),
      dx(dx_in),
      dy(dy_in),
      inv_dx(dx_in != 0.0 ? 1.0 / dx_in : 0.0),
      inv_dy(dy_in != 0.0 ? 1.0 / dy_in : 0.0),
      time_increment(time_increment_in),
      reference_time(reference_time_in),
      step(-1),
      width(width_in),
      time_scale(time_scale_in),
      length_scale(length_scale_in),
      power_law(power_law_in),
      decay_rate((dx_in / time_scale_in) * (dx_in / time_scale_in)),
      length_squared(length_scale_in * length_scale_in),
      exponent((1.0 + power_law_in) * 0.25),
      time_weight(0.0),
      random(),
      mode_real(nullptr),
      mode_imag(nullptr),
      field_previous(nullptr),
      field_current(nullptr) {
  std::cout << "FLUCT " << length_squared << " " << exponent << " " << decay_rate << "\n";
  random.seed_generator(seed);
  const long modes = static_cast<long>(n_x) * (n_y / 2 + 1);
  const long floats = static_cast<long>(n_y + 2) * n_x;
  mode_real = new (std::nothrow) float[modes]();
  mode_imag = new (std::nothrow) float[modes]();
  field_previous = new (std::nothrow) float[floats]();
  field_current = new (std::nothrow) float[floats]();
  if (!mode_real || !mode_imag || !field_previous || !field_current) arrays_failed();
}

TCFluctuation_field* TCFluctuation_field::from_stream(std::istream& in, double time_increment_in,
                                                      double reference_time_in) {
  ocean_input block;
  if (!block.read_fluctuations(in)) {
    std::cout << "unable to process input stream in 2D fluctuation field "
              << "\n";
    return nullptr;
  }
  TCFluctuation_field* field = new (std::nothrow) TCFluctuation_field(
      block.fluctuation_n_x, block.fluctuation_n_y, block.fluctuation_dx, block.fluctuation_dy,
      block.fluctuation_seed, block.fluctuation_length_scale, block.fluctuation_power_law,
      block.fluctuation_time_scale, block.fluctuation_log_normal_width, time_increment_in,
      reference_time_in);
  if (field == nullptr)
    std::cout << "unable to allocate memory for fluctuation field "
              << "\n";
  return field;
}

TCFluctuation_field* TCFluctuation_field::from_file(const char* path, double time_increment_in,
                                                    double reference_time_in) {
  std::ifstream in(path);
  if (!in) {
    std::cout << "unable to open file " << path << "\n";
    return nullptr;
  }
  TCFluctuation_field* field = from_stream(in, time_increment_in, reference_time_in);
  if (field == nullptr) std::cout << "unable to read 2D fluctuation field file " << path << "\n";
  return field;
}

TCFluctuation_field::~TCFluctuation_field() {
  delete[] mode_real;
  delete[] mode_imag;
  delete[] field_previous;
  delete[] field_current;
}

double TCFluctuation_field::k2_of(int i, int j) const {
  const double kx = 6.283185307 / (n_x * dx) * (i <= n_x / 2 ? i : i - n_x);
  const double ky = 6.283185307 / (n_y * dy) * j;
  return kx * kx + ky * ky;
}

double TCFluctuation_field::amplitude(double k2) const {
  if (k2 == 0.0) return 0.0;
  return std::sqrt(std::sqrt(k2)) / std::pow(1.0 + length_squared * k2, exponent) /
         std::sqrt(n_x * dx * dy * n_y);
}

void TCFluctuation_field::make_field() {
  const int n_ky = n_y / 2 + 1;
  mode_real[0] = 0.0f;
  mode_imag[0] = 0.0f;
  // The j = 0 column of a real field's transform is Hermitian in i.
  for (int i = 1; i < n_x / 2; i++) {
    mode_real[i * n_ky] = mode_real[(n_x - i) * n_ky];
    mode_imag[i * n_ky] = -mode_imag[(n_x - i) * n_ky];
  }
  for (int i = 0; i < n_x; i++) {
    for (int j = 0; j < n_ky; j++) {
      const long m = static_cast<long>(i) * n_ky + j;
      const double a = amplitude(k2_of(i, j));
      field_current[2 * m] = static_cast<float>(mode_real[m] * a);
      field_current[2 * m + 1] = static_cast<float>(mode_imag[m] * a);
    }
  }
  // Half-complex in, n_y fastest; packed real factors out.
  fourt2(field_current, n_y, n_x, -1);
  const long n = static_cast<long>(n_x) * n_y;
  double squares = 0.0;
  for (long k = 0; k < n; k++) squares += static_cast<double>(field_current[k]) * field_current[k];
  const double rms = n > 0 ? std::sqrt(squares / n) : 0.0;
  for (long k = 0; k < n; k++) {
    const double unit = rms > 0.0 ? field_current[k] / rms : 0.0;
    field_current[k] = static_cast<float>(std::exp(unit * width - 0.5 * width * width));
  }
}

void TCFluctuation_field::first_field() {
  if (verbose)
    std::cout << "generating initial fluctuations "
              << "\n";
  const int n_ky = n_y / 2 + 1;
  long m = 0;
  for (int i = 0; i < n_x; i++) {
    for (int j = 0; j < n_ky; j++, m++) {
      if (i == n_x / 2 || j == n_y / 2) {
        mode_real[m] = static_cast<float>(random.gaussian());
        mode_imag[m] = 0.0f;
      } else {
        mode_real[m] = static_cast<float>(random.gaussian());
        mode_imag[m] = static_cast<float>(random.gaussian());
      }
    }
  }
  make_field();
  next_step();
}

void TCFluctuation_field::next_step() {
  if (verbose)
    std::cout << "incrementing initial configuration "
              << "\n";
  step += 1;
  const long floats = static_cast<long>(n_y + 2) * n_x;
  for (long k = 0; k < floats; k++) field_previous[k] = field_current[k];
  const int n_ky = n_y / 2 + 1;
  const double dt2 = time_increment * time_increment;
  long m = 0;
  for (int i = 0; i < n_x; i++) {
    for (int j = 0; j < n_ky; j++, m++) {
      const double a = std::exp(-k2_of(i, j) * dt2 * decay_rate);
      const double p = std::sqrt(a), q = std::sqrt(1.0 - a);
      if (i == n_x / 2 || j == n_y / 2) {
        mode_real[m] = static_cast<float>(p * mode_real[m] + q * random.gaussian());
      } else {
        mode_real[m] = static_cast<float>(p * mode_real[m] + q * random.gaussian());
        mode_imag[m] = static_cast<float>(p * mode_imag[m] + q * random.gaussian());
      }
    }
  }
  make_field();
}

void TCFluctuation_field::update(double t) {
  if (verbose) std::cout << "generating fluctuation field at " << t << "\n";
  if (t < reference_time) {
    std::cout << "impossible to image whitecaps prior to whitecap"
              << " reference time"
              << "\n";
    std::exit(1);
  }
  if (step < 0) first_field();
  if ((step - 1) * time_increment + reference_time > t) {
    std::cout << "can not evolve whitecap backwards in time "
              << "\n";
    std::exit(1);
  }
  const double steps = (t - reference_time) / time_increment;
  const int target = static_cast<int>(std::trunc(steps)) + 1;
  while (step < target) next_step();
  time_weight = target - steps;
}

double TCFluctuation_field::factor_at(double x, double y, double cell_x, double cell_y) const {
  double u = std::fmod(x * inv_dx, static_cast<double>(n_x));
  if (u < 0.0) u += n_x;
  double w_y = std::fmod(y * inv_dy, static_cast<double>(n_y));
  if (w_y < 0.0) w_y += n_y;
  int i0 = static_cast<int>(std::floor(u));
  int j0 = static_cast<int>(std::floor(w_y));
  if (i0 >= n_x) i0 = 0;
  if (j0 >= n_y) j0 = 0;
  const double fu = u - i0, fv = w_y - j0;
  const int i1 = i0 + 1 < n_x ? i0 + 1 : 0;
  const int j1 = j0 + 1 < n_y ? j0 + 1 : 0;
  const int is[2] = {i0, i1};
  const int js[2] = {j0, j1};
  double v = 0.0;
  for (int a = 0; a < 2; a++) {
    for (int b = 0; b < 2; b++) {
      const double w = (a ? fu : 1.0 - fu) * (b ? fv : 1.0 - fv);
      const double corner =
          time_weight * previous_value(is[a], js[b]) + (1.0 - time_weight) * value(is[a], js[b]);
      v += w * corner;
    }
  }
  const double q = std::sqrt((cell_x * inv_dx) * (cell_y * inv_dy));
  if (q > 1.0) v = (v - 1.0) / q + 1.0;
  if (v < 0.95) v = 0.95;
  return v;
}
